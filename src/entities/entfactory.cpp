#include "vek0core/entities/entfactory.h"

#include <new>

#include "entities/makeent.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"

using vek0::detail::kCopyHandle;

CEntFactory::~CEntFactory() = default;

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
