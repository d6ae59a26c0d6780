#include "vek0core/entities/entfactory.h"

#include <new>
#include <utility>

#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/enthatch.h"
#include "vek0core/entities/entinsert.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"

namespace {

constexpr vek0::Handle kCopyHandle = 0;  // handles are unique, so a copy has none

}  // namespace

CEntFactory::~CEntFactory() = default;

// Strings and lists inside an entity may fail to allocate as well as the object.
template <class Kind, class... Args>
Kind* CEntFactory::make(Args&&... args) {
  try {
    return new (std::nothrow) Kind(std::forward<Args>(args)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

CEntPnt* CEntFactory::createEntPnt(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                   const PNT_3D& pnt, vek0::Handle handle) {
  return make<CEntPnt>(handle, layer, ltype, color, pnt);
}

CEntPnt* CEntFactory::createEntPnt(IHandleGestor&, const CEntPnt& src) {
  return make<CEntPnt>(src, kCopyHandle);
}

CEntLine* CEntFactory::createEntLine(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                     const LINE_3D& line, vek0::Handle handle) {
  return make<CEntLine>(handle, layer, ltype, color, line);
}

CEntLine* CEntFactory::createEntLine(IHandleGestor&, const CEntLine& src) {
  return make<CEntLine>(src, kCopyHandle);
}

CEntCircle* CEntFactory::createEntCircle(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                         const CIRCLE_3D& circle, vek0::Handle handle) {
  return make<CEntCircle>(handle, layer, ltype, color, circle);
}

CEntCircle* CEntFactory::createEntCircle(IHandleGestor&, const CEntCircle& src) {
  return make<CEntCircle>(src, kCopyHandle);
}

CEntArc* CEntFactory::createEntArc(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                   const ARC_3D& arc, vek0::Handle handle) {
  return make<CEntArc>(handle, layer, ltype, color, arc);
}

CEntArc* CEntFactory::createEntArc(IHandleGestor&, const CEntArc& src) {
  return make<CEntArc>(src, kCopyHandle);
}

CEntPolyline* CEntFactory::createEntPolyline(IHandleGestor&, CLayer* layer, CLtype* ltype,
                                             short color, short flags, short degree,
                                             vek0::Handle handle) {
  return make<CEntPolyline>(handle, layer, ltype, color, flags, degree);
}

CEntPolyline* CEntFactory::createEntPolyline(IHandleGestor& gestor, const CEntPolyline& src) {
  return make<CEntPolyline>(gestor, *this, src, kCopyHandle);
}

CEntPolyline* CEntFactory::createEntPolyline(IHandleGestor& gestor, const CEntLine& src) {
  return make<CEntPolyline>(gestor, *this, src, kCopyHandle);
}

CVertex* CEntFactory::createVertex(IHandleGestor&, const PNT_3D& pnt, double widthStart,
                                   double widthEnd, vek0::Handle handle) {
  return make<CVertex>(pnt, widthStart, widthEnd, handle);
}

CVertex* CEntFactory::createVertex(IHandleGestor&, const CVertex& src) {
  return make<CVertex>(src, kCopyHandle);
}

CEntText* CEntFactory::createEntText(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                     const TEXT_3D& text, vek0::Handle handle) {
  return make<CEntText>(handle, layer, ltype, color, text);
}

CEntText* CEntFactory::createEntText(IHandleGestor&, const CEntText& src) {
  return make<CEntText>(src, kCopyHandle);
}

CEntAttdef* CEntFactory::createEntAttdef(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                         const TEXT_3D& text, const zim::WString& value,
                                         const zim::WString& prompt, long flags,
                                         vek0::Handle handle) {
  return make<CEntAttdef>(handle, layer, ltype, color, text, value, prompt, flags);
}

CEntAttdef* CEntFactory::createEntAttdef(IHandleGestor&, const CEntAttdef& src) {
  return make<CEntAttdef>(src, kCopyHandle);
}

CEntAttrib* CEntFactory::createEntAttrib(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                         const TEXT_3D& text, const zim::WString& tag, long flags,
                                         vek0::Handle handle) {
  return make<CEntAttrib>(handle, layer, ltype, color, text, tag, flags);
}

CEntAttrib* CEntFactory::createEntAttrib(IHandleGestor&, const zim::WString& value,
                                         const CEntAttdef& def, vek0::Handle handle) {
  return make<CEntAttrib>(value, def, handle);
}

CEntAttrib* CEntFactory::createEntAttrib(IHandleGestor&, const CEntAttrib& src) {
  return make<CEntAttrib>(src, kCopyHandle);
}

CEntInsert* CEntFactory::createEntInsert(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                         CBlock* block, const PNT_3D& pnt, double scaleX,
                                         double scaleY, double scaleZ, double rotation,
                                         long columns, long rows, double columnSpacing,
                                         double rowSpacing, vek0::Handle handle) {
  return make<CEntInsert>(handle, layer, ltype, color, block, pnt, scaleX, scaleY, scaleZ, rotation,
                          columns, rows, columnSpacing, rowSpacing);
}

CEntInsert* CEntFactory::createEntInsert(IHandleGestor& gestor, const CEntInsert& src) {
  return make<CEntInsert>(gestor, *this, src, kCopyHandle);
}

CEntFixedInsert* CEntFactory::createEntFixedInsert(IHandleGestor&, CLayer* layer, CLtype* ltype,
                                                   short color, CBlock* block, const PNT_3D& pnt,
                                                   double refSize, double pixels, double rotation,
                                                   vek0::Handle handle) {
  return make<CEntFixedInsert>(handle, layer, ltype, color, block, pnt, refSize, pixels, rotation);
}

CEntFixedInsert* CEntFactory::createEntFixedInsert(IHandleGestor& gestor,
                                                   const CEntFixedInsert& src) {
  return make<CEntFixedInsert>(gestor, *this, src, kCopyHandle);
}

CEntInsertXRef* CEntFactory::createEntInsertXRef(IHandleGestor&, CLayer* layer, CLtype* ltype,
                                                 short color, CBlockXRefDepend& depend,
                                                 CBlockXRef* xref, const PNT_3D& pnt, double scaleX,
                                                 double scaleY, double scaleZ, double rotation,
                                                 long columns, long rows, double columnSpacing,
                                                 double rowSpacing, vek0::Handle handle) {
  return make<CEntInsertXRef>(handle, layer, ltype, color, depend, xref, pnt, scaleX, scaleY,
                              scaleZ, rotation, columns, rows, columnSpacing, rowSpacing);
}

CEntInsertXRef* CEntFactory::createEntInsertXRef(IHandleGestor& gestor, const CEntInsertXRef& src) {
  return make<CEntInsertXRef>(gestor, *this, src, kCopyHandle);
}

CEntHatch* CEntFactory::createEntHatch(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                       CBlock* block, const HATCH_TYPE& type, double scale,
                                       double rotate, const std::vector<PNT_3D>& boundary,
                                       vek0::Handle handle) {
  return make<CEntHatch>(handle, layer, ltype, color, block, type, scale, rotate, boundary);
}

CEntHatch* CEntFactory::createEntHatch(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                       const zim::WString& name, const HATCH_TYPE& type,
                                       double scale, double rotate,
                                       const std::vector<PNT_3D>& boundary, CData& data,
                                       vek0::Handle handle) {
  try {
    return CEntHatch::Create(handle, layer, ltype, color, name, type, scale, rotate, boundary,
                             data);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

CEnt3DFace* CEntFactory::createEnt3DFace(IHandleGestor&, CLayer* layer, CLtype* ltype, short color,
                                         const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2,
                                         const PNT_3D& p3, long flags, vek0::Handle handle) {
  return make<CEnt3DFace>(handle, layer, ltype, color, p0, p1, p2, p3, flags);
}

CEnt3DFace* CEntFactory::createEnt3DFace(IHandleGestor&, const CEnt3DFace& src) {
  return make<CEnt3DFace>(src, kCopyHandle);
}

CEnt3DFace* CEntFactory::createEntSolid(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                        short color, const PNT_3D& p0, const PNT_3D& p1,
                                        const PNT_3D& p2, const PNT_3D& p3, long flags,
                                        FaceFill fill, vek0::Handle handle) {
  CEnt3DFace* face = createEnt3DFace(gestor, layer, ltype, color, p0, p1, p2, p3, flags, handle);
  if (face) face->setFill(fill);
  return face;
}

CEnt* CEntFactory::clone(IHandleGestor& gestor, CBlockFactory& blockFactory,
                         CBlockTable& blockTable, const CEnt& src) {
  try {
    return src.clone(gestor, *this, blockFactory, blockTable, kCopyHandle);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
