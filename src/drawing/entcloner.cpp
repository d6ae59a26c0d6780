// Copies entities from one drawing to another, or from a reference to the drawing, with every item
// that they use replaced by its counterpart. The kind of an insert follows from the block that it
// gets, not from its source.
#include "drawing/entcloner.h"

#include <utility>
#include <vector>

#include "tables/handover.h"
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
#include "vek0core/entities/entvisitor.h"
#include "vek0core/entities/vertex.h"

namespace vek0::detail {
namespace {

// Creates copies of the visited source entities in the target.
class EntCloner final : public IEntVisitor {
 public:
  EntCloner(CData& data, const ItemMap& map, VertexHandles handles)
      : m_data(data), m_map(map), m_keeps(handles == VertexHandles::Keep) {}

  std::unique_ptr<CEnt> clone(const CEnt& src) {
    // Visitors take non-const entities, but this one only reads.
    const_cast<CEnt&>(src).accept(*this);
    if (m_clone) m_clone->copyExtras(src);
    return std::move(m_clone);
  }

  using IEntVisitor::visit;
  void visit(CEntPnt& e) override {
    keep(createEntPnt(m_data, layer(e), ltype(e), e.getColor(), e.getPnt(), e.GetHandle()));
  }
  void visit(CEntLine& e) override {
    CEntLine* made =
        createEntLine(m_data, layer(e), ltype(e), e.getColor(), e.getLine(), e.GetHandle());
    if (made) made->setReach(e.getReach());
    keep(made);
  }
  void visit(CEntCircle& e) override {
    keep(createEntCircle(m_data, layer(e), ltype(e), e.getColor(), e.getCircle(), e.GetHandle()));
  }
  void visit(CEntArc& e) override {
    keep(createEntArc(m_data, layer(e), ltype(e), e.getColor(), e.getArc(), e.GetHandle()));
  }
  void visit(CEntPolyline& e) override { keep(polyline(e).release()); }
  void visit(CEntText& e) override {
    keep(createEntText(m_data, layer(e), ltype(e), e.getColor(), text(e), e.GetHandle()));
  }
  void visit(CEntAttdef& e) override {
    keep(createEntAttdef(m_data, layer(e), ltype(e), e.getColor(), text(e), e.getValue(),
                         e.getPrompt(), e.getFlags(), e.GetHandle()));
  }
  void visit(CEntAttrib& e) override { keep(attrib(e).release()); }
  void visit(CEntInsert& e) override {
    CBlock* block = m_map(e.getBlock());
    const InsertValues v(e);
    if (block != nullptr && block->isXRef())
      keepInsert(e, factory().createEntInsertXRef(
                        gestor(), layer(e), ltype(e), e.getColor(), m_data.getDepend(),
                        static_cast<CBlockXRef*>(block), v.pnt, v.sx, v.sy, v.sz, v.rotation,
                        v.columns, v.rows, v.columnSpacing, v.rowSpacing, e.GetHandle()));
    else
      keepInsert(e,
                 factory().createEntInsert(gestor(), layer(e), ltype(e), e.getColor(), block, v.pnt,
                                           v.sx, v.sy, v.sz, v.rotation, v.columns, v.rows,
                                           v.columnSpacing, v.rowSpacing, e.GetHandle()));
    static_cast<CEntInsert&>(*m_clone).setClip(e.getClip());
  }
  void visit(CEntInsertXRef& e) override { visit(static_cast<CEntInsert&>(e)); }
  void visit(CEntFixedInsert& e) override {
    keepInsert(e, factory().createEntFixedInsert(gestor(), layer(e), ltype(e), e.getColor(),
                                                 m_map(e.getBlock()), e.getPnt(), e.GetDefArea(),
                                                 e.GetNoPixel(), e.getRotate(), e.GetHandle()));
  }
  void visit(CEntHatch& e) override {
    // The pattern may belong to the source drawing, so the target needs one of its own.
    keep(factory().createEntHatch(gestor(), layer(e), ltype(e), e.getColor(), m_map(e.getBlock()),
                                  m_data.getHatchTypeTable().intern(e.getHatchType()),
                                  e.getHatchScale(), e.getHatchRotate(), e.getBoundary(),
                                  e.GetHandle()));
  }
  void visit(CEnt3DFace& e) override {
    keep(factory().createEntSolid(gestor(), layer(e), ltype(e), e.getColor(), e.getVertex(0),
                                  e.getVertex(1), e.getVertex(2), e.getVertex(3), e.getFlags(),
                                  e.getFill(), e.GetHandle()));
  }

 private:
  struct InsertValues {
    explicit InsertValues(const CEntInsert& e) : pnt(e.getPnt()), rotation(e.getRotate()) {
      e.getScale(sx, sy, sz);
      e.getArray(columns, rows, columnSpacing, rowSpacing);
    }
    PNT_3D pnt;
    double sx, sy, sz, rotation, columnSpacing, rowSpacing;
    long columns, rows;
  };

  CEntFactory& factory() const { return m_data.getEntFactory(); }
  IHandleGestor& gestor() const { return m_data.getHandleGestor(); }
  CLayer* layer(const CEnt& e) const { return m_map(e.getLayer()); }
  CLtype* ltype(const CEnt& e) const { return m_map(e.getLtype()); }
  TEXT_3D text(const CEntText& e) const {
    TEXT_3D copy(e.getText());
    copy.setStyle(m_map(copy.getStyle()));
    return copy;
  }
  void keep(CEnt* ent) { m_clone.reset(orThrow(ent)); }

  template <class Insert>
  void keepInsert(const CEntInsertBase& src, Insert* made) {
    std::unique_ptr<Insert> insert(orThrow(made));
    insert->copyRecord(src);
    for (unsigned i = 0; i < src.GetNoAttribs(); ++i) {
      addTo(*insert, attrib(*src.GetAttrib(i)));
    }
    keep(insert.release());
  }

  std::unique_ptr<CEntAttrib> attrib(const CEntAttrib& e) const {
    std::unique_ptr<CEntAttrib> copy(
        orThrow(factory().createEntAttrib(gestor(), layer(e), ltype(e), e.getColor(), text(e),
                                          e.getTag(), e.getFlags(), e.GetHandle())));
    copy->copyExtras(e);
    return copy;
  }

  std::unique_ptr<CVertex> vertex(const PNT_3D& pnt, double widthStart, double widthEnd,
                                  vek0::Handle handle) const {
    return std::unique_ptr<CVertex>(
        orThrow(createVertex(m_data, pnt, widthStart, widthEnd, m_keeps ? handle : 0)));
  }

  // A plain polyline is copied packed or unpacked as it is; a curve consists of its frame and the
  // visible vertices.
  std::unique_ptr<CEntPolyline> polyline(const CEntPolyline& e) const {
    std::unique_ptr<CEntPolyline> copy(orThrow(createEntPolyline(
        m_data, layer(e), ltype(e), e.getColor(), e.getFlags(), e.getDegree(), e.GetHandle())));
    if (!e.isCurve()) {
      std::vector<BULGED_VERTEX> vertexes;
      e.forEachBulged(
          [&](const PNT_3D& pnt, double ws, double we, double bulge, vek0::Handle handle) {
            vertexes.push_back({pnt.x, pnt.y, pnt.z, ws, we, bulge, m_keeps ? handle : 0});
          });
      copy->setBulgedVertexes(gestor(), factory(), vertexes.data(), vertexes.size());
      return copy;
    }
    for (int i = 0; i < e.getFirstVisibleVertex(); ++i) {
      const CVertex& v = e.GetVertex(i);
      handOver(vertex(v.getPnt(), v.GetWidthStart(), v.GetWidthEnd(), v.GetHandle()),
               [&](CVertex& made) { copy->addVertex(made); });
    }
    e.forEachVisible([&](const PNT_3D& pnt, double ws, double we, double, vek0::Handle handle) {
      handOver(vertex(pnt, ws, we, handle), [&](CVertex& made) { copy->addVisibleVertex(made); });
    });
    copy->calcBdry();
    return copy;
  }

  CData& m_data;
  const ItemMap& m_map;
  const bool m_keeps;  // the handles of vertices
  std::unique_ptr<CEnt> m_clone;
};

}  // namespace

std::unique_ptr<CEnt> cloneOnto(CData& data, const ItemMap& map, const CEnt& src,
                                VertexHandles handles) {
  return EntCloner(data, map, handles).clone(src);
}

CLtypeComplexDashSeq cloneDashes(const CLtype& ltype, const ItemMap& map) {
  CLtypeComplexDashSeq copy;
  for (int i = 0; i < ltype.getNoDashes(); ++i) {
    const ILtypeComplexDash& dash = *ltype.GetDash(i);
    if (!dash.IsText()) {
      copy.AddDashDouble(dash.GetValue());
      continue;
    }
    TEXT_3D text(*dash.GetText());
    text.setStyle(map(text.getStyle()));
    copy.AddDashText(text);
  }
  return copy;
}

}  // namespace vek0::detail
