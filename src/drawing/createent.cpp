// The createEnt functions: each forwards to the drawing's entity factory.
#include <memory>
#include <new>

#include "entities/blocks/hatchblock.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/entities/vertex.h"

CEntPnt* createEntPnt(const CData& data, CLayer* layer, CLtype* ltype, short color,
                      const PNT_3D& pnt, vek0::Handle handle) {
  return data.getEntFactory().createEntPnt(data.getHandleGestor(), layer, ltype, color, pnt,
                                           handle);
}
CEntPnt* createEntPnt(const CData& data, const PNT_3D& pnt, vek0::Handle handle) {
  return createEntPnt(data, getCurLayer(data), getCurLtype(data), getCurColor(data), pnt, handle);
}

CEntLine* createEntLine(const CData& data, CLayer* layer, CLtype* ltype, short color,
                        const LINE_3D& line, vek0::Handle handle) {
  return data.getEntFactory().createEntLine(data.getHandleGestor(), layer, ltype, color, line,
                                            handle);
}
CEntLine* createEntLine(const CData& data, const LINE_3D& line, vek0::Handle handle) {
  return createEntLine(data, getCurLayer(data), getCurLtype(data), getCurColor(data), line, handle);
}

CEntCircle* createEntCircle(const CData& data, CLayer* layer, CLtype* ltype, short color,
                            const CIRCLE_3D& circle, vek0::Handle handle) {
  return data.getEntFactory().createEntCircle(data.getHandleGestor(), layer, ltype, color, circle,
                                              handle);
}
CEntCircle* createEntCircle(const CData& data, const CIRCLE_3D& circle, vek0::Handle handle) {
  return createEntCircle(data, getCurLayer(data), getCurLtype(data), getCurColor(data), circle,
                         handle);
}

CEntArc* createEntArc(const CData& data, CLayer* layer, CLtype* ltype, short color,
                      const ARC_3D& arc, vek0::Handle handle) {
  return data.getEntFactory().createEntArc(data.getHandleGestor(), layer, ltype, color, arc,
                                           handle);
}
CEntArc* createEntArc(const CData& data, const ARC_3D& arc, vek0::Handle handle) {
  return createEntArc(data, getCurLayer(data), getCurLtype(data), getCurColor(data), arc, handle);
}

CEntPolyline* createEntPolyline(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                long flags, short degree, vek0::Handle handle) {
  return data.getEntFactory().createEntPolyline(data.getHandleGestor(), layer, ltype, color,
                                                static_cast<short>(flags), degree, handle);
}
CEntPolyline* createEntPolyline(const CData& data, long flags, short degree, vek0::Handle handle) {
  return createEntPolyline(data, getCurLayer(data), getCurLtype(data), getCurColor(data), flags,
                           degree, handle);
}

CVertex* createVertex(const CData& data, const PNT_3D& pnt, double widthStart, double widthEnd,
                      vek0::Handle handle) {
  return data.getEntFactory().createVertex(data.getHandleGestor(), pnt, widthStart, widthEnd,
                                           handle);
}

CEntText* createEntText(const CData& data, CLayer* layer, CLtype* ltype, short color,
                        const TEXT_3D& text, vek0::Handle handle) {
  return data.getEntFactory().createEntText(data.getHandleGestor(), layer, ltype, color, text,
                                            handle);
}
CEntText* createEntText(const CData& data, const TEXT_3D& text, vek0::Handle handle) {
  return createEntText(data, getCurLayer(data), getCurLtype(data), getCurColor(data), text, handle);
}

CEntAttdef* createEntAttdef(const CData& data, CLayer* layer, CLtype* ltype, short color,
                            const TEXT_3D& text, const zim::WString& value,
                            const zim::WString& prompt, long flags, vek0::Handle handle) {
  return data.getEntFactory().createEntAttdef(data.getHandleGestor(), layer, ltype, color, text,
                                              value, prompt, flags, handle);
}
CEntAttdef* createEntAttdef(const CData& data, const TEXT_3D& text, const zim::WString& value,
                            const zim::WString& prompt, long flags, vek0::Handle handle) {
  return createEntAttdef(data, getCurLayer(data), getCurLtype(data), getCurColor(data), text, value,
                         prompt, flags, handle);
}

CEntAttrib* createEntAttrib(const CData& data, const zim::WString& value, const CEntAttdef& def,
                            vek0::Handle handle) {
  return data.getEntFactory().createEntAttrib(data.getHandleGestor(), value, def, handle);
}

CEntInsert* createEntInsert(const CData& data, CLayer* layer, CLtype* ltype, short color,
                            CBlock& block, const PNT_3D& pnt, double sx, double sy, double sz,
                            double rotation, long columns, long rows, double columnSpacing,
                            double rowSpacing, vek0::Handle handle) {
  return data.getEntFactory().createEntInsert(data.getHandleGestor(), layer, ltype, color, &block,
                                              pnt, sx, sy, sz, rotation, columns, rows,
                                              columnSpacing, rowSpacing, handle);
}
CEntInsert* createEntInsert(const CData& data, CBlock& block, const PNT_3D& pnt, double sx,
                            double sy, double sz, double rotation, long columns, long rows,
                            double columnSpacing, double rowSpacing, vek0::Handle handle) {
  return createEntInsert(data, getCurLayer(data), getCurLtype(data), getCurColor(data), block, pnt,
                         sx, sy, sz, rotation, columns, rows, columnSpacing, rowSpacing, handle);
}

CEntFixedInsert* createEntFixedInsert(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                      CBlock& block, const PNT_3D& pnt, double refSize,
                                      double pixels, double rotation, vek0::Handle handle) {
  return data.getEntFactory().createEntFixedInsert(data.getHandleGestor(), layer, ltype, color,
                                                   &block, pnt, refSize, pixels, rotation, handle);
}
CEntFixedInsert* createEntFixedInsert(const CData& data, CBlock& block, const PNT_3D& pnt,
                                      double refSize, double pixels, double rotation,
                                      vek0::Handle handle) {
  return createEntFixedInsert(data, getCurLayer(data), getCurLtype(data), getCurColor(data), block,
                              pnt, refSize, pixels, rotation, handle);
}

CEntInsertXRef* createEntInsertXRef(CData& data, CLayer* layer, CLtype* ltype, short color,
                                    CBlockXRef& xref, const PNT_3D& pnt, double sx, double sy,
                                    double sz, double rotation, long columns, long rows,
                                    double columnSpacing, double rowSpacing, vek0::Handle handle) {
  return data.getEntFactory().createEntInsertXRef(
      data.getHandleGestor(), layer, ltype, color, data.getDepend(), &xref, pnt, sx, sy, sz,
      rotation, columns, rows, columnSpacing, rowSpacing, handle);
}
CEntInsertXRef* createEntInsertXRef(const CData& data, CBlockXRefDepend& depend, CBlockXRef& xref,
                                    const PNT_3D& pnt, double sx, double sy, double sz,
                                    double rotation, long columns, long rows, double columnSpacing,
                                    double rowSpacing, vek0::Handle handle) {
  return data.getEntFactory().createEntInsertXRef(
      data.getHandleGestor(), getCurLayer(data), getCurLtype(data), getCurColor(data), depend,
      &xref, pnt, sx, sy, sz, rotation, columns, rows, columnSpacing, rowSpacing, handle);
}

CEntHatch* createEntHatch(CData& data, CLayer* layer, CLtype* ltype, short color,
                          const HATCH_TYPE& type, double scale, double rotate,
                          const std::vector<PNT_3D>& boundary, vek0::Handle handle) try {
  std::unique_ptr<CEntHatch> hatch(data.getEntFactory().createEntHatch(
      data.getHandleGestor(), layer, ltype, color, getHatchName(data.getBlockTable()), type, scale,
      rotate, boundary, data, handle));
  std::unique_ptr<CBlock> block(hatch ? hatch->getBlock() : nullptr);
  if (!block || hatch->getNoPnts() < 3) return nullptr;
  return vek0::detail::addHatchBlock(data.getBlockTable(), block) ? hatch.release() : nullptr;
} catch (const std::bad_alloc&) {
  return nullptr;
}
CEntHatch* createEntHatch(CData& data, const HATCH_TYPE& type, double scale, double rotate,
                          const std::vector<PNT_3D>& boundary, vek0::Handle handle) {
  return createEntHatch(data, getCurLayer(data), getCurLtype(data), getCurColor(data), type, scale,
                        rotate, boundary, handle);
}

CEnt3DFace* createEnt3DFace(const CData& data, CLayer* layer, CLtype* ltype, short color,
                            const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3,
                            long flags, vek0::Handle handle) {
  return data.getEntFactory().createEnt3DFace(data.getHandleGestor(), layer, ltype, color, p0, p1,
                                              p2, p3, flags, handle);
}
CEnt3DFace* createEnt3DFace(const CData& data, const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2,
                            const PNT_3D& p3, long flags, vek0::Handle handle) {
  return createEnt3DFace(data, getCurLayer(data), getCurLtype(data), getCurColor(data), p0, p1, p2,
                         p3, flags, handle);
}
