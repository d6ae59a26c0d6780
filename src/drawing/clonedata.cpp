// The deep copy of a drawing: every item anew, every reference to the new items.
#include <memory>
#include <new>
#include <unordered_map>
#include <vector>

#include "vek0core/drawing/datafactory.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/block.h"
#include "vek0core/entities/blockfactory.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/enthatch.h"
#include "vek0core/entities/entinsert.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/entities/vertex.h"

namespace {

template <class Item>
Item* orThrow(Item* item) {
  if (!item) throw std::bad_alloc();
  return item;
}

// From the items of the source to those of the copy. What no table of the source holds,
// and null, stay as they are.
class ItemMap {
 public:
  template <class Item>
  void add(const Item* from, Item* to) {
    m_items.emplace(from, to);
  }
  template <class Item>
  Item* operator()(Item* from) const {
    const auto found = m_items.find(from);
    return found == m_items.end() ? from : static_cast<Item*>(found->second);
  }

 private:
  std::unordered_map<const void*, void*> m_items;
};

// Makes in the copy what it visits in the source.
class Cloner final : public IEntVisitor {
 public:
  Cloner(CData& data, const ItemMap& map) : m_data(data), m_map(map) {}

  CEnt* clone(const CEnt& src) {
    // Visitors take entities that may be changed; this one only looks.
    const_cast<CEnt&>(src).accept(*this);
    if (m_clone) m_clone->setUserInfo(src.getUserType(), src.getUserData());
    return m_clone.release();
  }

  using IEntVisitor::visit;
  void visit(CEntPnt& e) override {
    keep(createEntPnt(m_data, layer(e), ltype(e), e.getColor(), e.getPnt(), e.GetHandle()));
  }
  void visit(CEntLine& e) override {
    keep(createEntLine(m_data, layer(e), ltype(e), e.getColor(), e.getLine(), e.GetHandle()));
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
    const InsertValues v(e);
    keepInsert(e, factory().createEntInsert(gestor(), layer(e), ltype(e), e.getColor(),
                                            m_map(e.getBlock()), v.pnt, v.sx, v.sy, v.sz,
                                            v.rotation, v.columns, v.rows, v.columnSpacing,
                                            v.rowSpacing, e.GetHandle()));
  }
  void visit(CEntInsertXRef& e) override {
    // Pointed to an ordinary block meanwhile, it is no more than an insert.
    if (!e.getXRef()) return visit(static_cast<CEntInsert&>(e));
    const InsertValues v(e);
    CBlock* block = m_map(e.getBlock());
    keepInsert(e, factory().createEntInsertXRef(
                      gestor(), layer(e), ltype(e), e.getColor(), m_data.getDepend(),
                      static_cast<CBlockXRef*>(block), v.pnt, v.sx, v.sy, v.sz, v.rotation,
                      v.columns, v.rows, v.columnSpacing, v.rowSpacing, e.GetHandle()));
  }
  void visit(CEntFixedInsert& e) override {
    keepInsert(e, factory().createEntFixedInsert(gestor(), layer(e), ltype(e), e.getColor(),
                                                 m_map(e.getBlock()), e.getPnt(), e.GetDefArea(),
                                                 e.GetNoPixel(), e.getRotate(), e.GetHandle()));
  }
  void visit(CEntHatch& e) override {
    keep(factory().createEntHatch(gestor(), layer(e), ltype(e), e.getColor(), m_map(e.getBlock()),
                                  m_data.getHatchTypeTable().intern(e.getHatchType()),
                                  e.getHatchScale(), e.getHatchRotate(), e.getBoundary(),
                                  e.GetHandle()));
  }
  void visit(CEnt3DFace& e) override {
    auto* face =
        createEnt3DFace(m_data, layer(e), ltype(e), e.getColor(), e.getVertex(0), e.getVertex(1),
                        e.getVertex(2), e.getVertex(3), e.getFlags(), e.GetHandle());
    keep(face);
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
    for (unsigned i = 0; i < src.GetNoAttribs(); ++i) {
      insert->add(attrib(*src.GetAttrib(i)).release());
    }
    keep(insert.release());
  }

  std::unique_ptr<CEntAttrib> attrib(const CEntAttrib& e) const {
    std::unique_ptr<CEntAttrib> copy(
        orThrow(factory().createEntAttrib(gestor(), layer(e), ltype(e), e.getColor(), text(e),
                                          e.getTag(), e.getFlags(), e.GetHandle())));
    copy->setUserInfo(e.getUserType(), e.getUserData());
    return copy;
  }

  CVertex& vertex(const PNT_3D& pnt, double widthStart, double widthEnd, long handle) const {
    return *orThrow(createVertex(m_data, pnt, widthStart, widthEnd, handle));
  }

  // A plain polyline stays as packed as it is; a curve is its frame and what is visible.
  std::unique_ptr<CEntPolyline> polyline(const CEntPolyline& e) const {
    std::unique_ptr<CEntPolyline> copy(orThrow(createEntPolyline(
        m_data, layer(e), ltype(e), e.getColor(), e.getFlags(), e.getDegree(), e.GetHandle())));
    if (!e.isCurve()) {
      std::vector<BULGED_VERTEX> vertexes;
      e.forEachBulged([&](const PNT_3D& pnt, double ws, double we, double bulge, long handle) {
        vertexes.push_back({pnt.x, pnt.y, pnt.z, ws, we, bulge, handle});
      });
      copy->setBulgedVertexes(vertexes.data(), vertexes.size());
      return copy;
    }
    for (int i = 0; i < e.getFirstVisibleVertex(); ++i) {
      const CVertex& v = e.GetVertex(i);
      copy->addVertex(vertex(v.getPnt(), v.GetWidthStart(), v.GetWidthEnd(), v.GetHandle()));
    }
    e.forEachVisible([&](const PNT_3D& pnt, double ws, double we, double, long handle) {
      copy->addVisibleVertex(vertex(pnt, ws, we, handle));
    });
    copy->calcBdry();
    return copy;
  }

  CData& m_data;
  const ItemMap& m_map;
  std::unique_ptr<CEnt> m_clone;
};

class DrawingCopy {
 public:
  DrawingCopy(const CData& src, CData& copy) : m_src(src), m_copy(copy) {}

  void run() {
    m_src.shareFonts(m_copy);
    copyTables();
    copyBlocks();
    copyEntities();
    copyVariables();
  }

 private:
  // Styles first, then what names them, and so on; each of the drawing and of all its
  // external references, which may name items of each other.
  void copyTables() {
    copyStyles(m_src.getStyleTable(), m_copy.getStyleTable());
    copyXRefs();
    mapFixedItems();
    copyLtypes(m_src.getLtypeTable());
    forEachXRef([this](const CBlockXRef& from, CBlockXRef& to) { copyLtypes(from, to); });
    copyLayers(m_src.getLayerTable());
    forEachXRef([this](const CBlockXRef& from, CBlockXRef& to) { copyLayers(from, to); });
    copyLayer(*m_src.getLayerTable().getLayer0(), m_copy.getLayer0());
  }

  // Hands each external reference that was copied to `each`, together with its copy.
  template <class Each>
  void forEachXRef(const Each& each) {
    const CBlockXRefTable& from = m_src.getBlockXRefTable();
    for (int i = 0; i < from.size(); ++i) each(*from[i], *m_copy.getBlockXRefTable()[i]);
  }

  void mapFixedItems() {
    const CLtypeTable& ltypes = m_src.getLtypeTable();
    copyFixed(*ltypes.getLtypeContinuous(), m_copy.getLtypeContinuous());
    copyFixed(*ltypes.getLtypeByLayer(), m_copy.getLtypeByLayer());
    copyFixed(*ltypes.getLtypeByBlock(), m_copy.getLtypeByBlock());
    m_map.add<CLayer>(m_src.getLayerTable().getLayer0(), &m_copy.getLayer0());
  }

  // A host may have given them elements or other descriptions.
  void copyFixed(const CLtype& from, CLtype& to) {
    to.setDesc(from.getDesc());
    to.setFlags(from.getFlags());
    to.GetDashSeq() = dashes(from);
    m_map.add(&from, &to);
  }

  void copyStyles(const CStyleTable& from, CStyleTable& to) {
    if (!from.getStyleStandard()) removeStandard(to);
    for (int i = 0; i < from.size(); ++i) {
      const CStyle& style = *from[i];
      CStyle* made = nullptr;
      if (&style == from.getStyleStandard()) {
        made = to.getStyleStandard();
        made->setMemento(CStyleMemento(style));
      } else {
        made = orThrow(m_copy.getStyleFactory().create(style));
        to.add(made);
      }
      m_map.add(&style, made);
    }
  }

  static void removeStandard(CStyleTable& table) {
    std::unique_ptr<CStyle> standard(table.getStyleStandard());
    table.remove(standard.get());
  }

  CLtypeComplexDashSeq dashes(const CLtype& ltype) const {
    CLtypeComplexDashSeq copy;
    for (int i = 0; i < ltype.getNoDashes(); ++i) {
      const ILtypeComplexDash& dash = *ltype.GetDash(i);
      if (!dash.IsText()) {
        copy.AddDashDouble(dash.GetValue());
        continue;
      }
      TEXT_3D text(*dash.GetText());
      text.setStyle(m_map(text.getStyle()));
      copy.AddDashText(text);
    }
    return copy;
  }

  void copyLtypes(const CLtypeTable& from) {
    for (int i = 0; i < from.size(); ++i) {
      CLtype* made = orThrow(m_copy.getLtypeFactory().create(
          from[i]->getName(), from[i]->getDesc(), dashes(*from[i]), from[i]->getFlags()));
      m_copy.getLtypeTable().add(made);
      m_map.add(from[i], made);
    }
  }

  void copyLayers(const CLayerTable& from) {
    for (int i = 0; i < from.size(); ++i) {
      const CLayer& layer = *from[i];
      CLayer* made = orThrow(m_copy.getLayerFactory().create(
          layer.getName(), m_map(layer.getLtype()), layer.getColor(), layer.getFlags()));
      made->setLineWidth(layer.getLineWidth());
      m_copy.getLayerTable().add(made);
      m_map.add(&layer, made);
    }
  }

  void copyLayer(const CLayer& from, CLayer& to) {
    to.setLtype(m_map(from.getLtype()));
    to.setColor(from.getColor());
    to.setFlags(from.getFlags());
    to.setLineWidth(from.getLineWidth());
  }

  void copyXRefs() {
    const CBlockXRefTable& from = m_src.getBlockXRefTable();
    for (int i = 0; i < from.size(); ++i) {
      CBlockXRef& xref = *orThrow(m_copy.getBlockFactory().createXRef(
          m_copy.getLtypeContinuous(), m_copy.getLtypeByLayer(), m_copy.getLtypeByBlock(),
          m_copy.getLayer0(), from[i]->getName(), from[i]->getPath(), from[i]->getPnt(),
          from[i]->getFlags()));
      m_copy.getBlockXRefTable().add(&xref);
      xref.setStatus(from[i]->getStatus());
      m_map.add<CBlock>(from[i], &xref);
      xref.SetUserInfo(from[i]->GetUserType(), from[i]->GetUserData());
      copyStyles(from[i]->getStyleTable(), xref.getStyleTable());
    }
  }

  void copyLtypes(const CBlockXRef& from, CBlockXRef& to) {
    for (int i = 0; i < from.getLtypeTable().size(); ++i) {
      const CLtype& ltype = *from.getLtypeTable()[i];
      CLtype* made = orThrow(m_copy.getLtypeFactory().createXRef(
          to, ltype.getName(), ltype.getDesc(), dashes(ltype), ltype.getFlags()));
      to.getLtypeTable().add(made);
      m_map.add(&ltype, made);
    }
  }

  void copyLayers(const CBlockXRef& from, CBlockXRef& to) {
    for (int i = 0; i < from.getLayerTable().size(); ++i) {
      const CLayer& layer = *from.getLayerTable()[i];
      CLayer* made = orThrow(m_copy.getLayerFactory().createXRef(
          to, layer.getName(), m_map(layer.getLtype()), layer.getColor(), layer.getFlags()));
      made->setLineWidth(layer.getLineWidth());
      to.getLayerTable().add(made);
      m_map.add(&layer, made);
    }
  }

  // All blocks first, empty: their contents name each other.
  void copyBlocks() {
    const CBlockTable& from = m_src.getBlockTable();
    for (int i = 0; i < from.size(); ++i) {
      CBlock* made = orThrow(m_copy.getBlockFactory().create(from[i]->getName(), from[i]->getPnt(),
                                                             from[i]->getFlags()));
      made->SetUserInfo(from[i]->GetUserType(), from[i]->GetUserData());
      m_copy.getBlockTable().add(made);
      m_map.add(from[i], made);
    }
    for (int i = 0; i < from.size(); ++i) fill(*from[i], *m_map(from[i]));
    forEachXRef([this](const CBlockXRef& xref, CBlockXRef& to) { fill(xref, to); });
  }

  void fill(const CBlock& from, CBlock& to) {
    Cloner cloner(m_copy, m_map);
    for (unsigned i = 0; i < from.size(); ++i) to.restore(cloner.clone(*from[i]));
    if (to.isXRef()) return;
    to.insertBlock(m_copy.getHandleGestor());
    m_copy.getBlockTable().updateBlock(&to);
  }

  void copyEntities() {
    Cloner cloner(m_copy, m_map);
    CEntTable& to = m_copy.getEntTable();
    to.invalidateBdry();
    std::unordered_map<const CEnt*, CEnt*> selected;
    for (const CEnt* ent : m_src.getEntTable().getEntityTbl()) {
      CEnt* copy = cloner.clone(*ent);
      to.add(copy);
      if (ent->isSelected()) selected.emplace(ent, copy);
    }
    for (const CEnt* ent : m_src.getEntTable().getSelectedEntityTbl()) to.select(selected[ent]);
  }

  void copyVariables() {
    CDataVariables& vars = m_copy.getVars();
    vars = m_src.getVars();
    vars.setCurLayer(m_map(vars.getCurLayer()));
    vars.setCurLtype(m_map(vars.getCurLtype()));
    vars.setCurStyle(m_map(vars.getCurStyle()));
  }

  const CData& m_src;
  CData& m_copy;
  ItemMap m_map;
};

}  // namespace

CData* cloneData(const CData& data) {
  CDataFactory factory;
  std::unique_ptr<CData> copy(factory.createData());
  if (!copy) return nullptr;
  try {
    DrawingCopy(data, *copy).run();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return copy.release();
}
