// The part of the factory that depends on blocks; the simple kinds are created elsewhere.

#include "entities/makeent.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"

using vek0::detail::kCopyHandle;

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
