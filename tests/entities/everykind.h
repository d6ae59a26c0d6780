#pragma once

#include "support/test.h"

namespace vek0::test {

/// A drawing with an entity of every kind, including unusual shapes, all registered.
class EveryKind {
 public:
  explicit EveryKind(unsigned seed = 1) : m_random(seed), m_data(CDataFactory().createData()) {
    CData& d = *m_data;
    for (const zim::Char* name : {u"A", u"B"}) {
      double dashes[] = {1, -1};
      addLayer(d, d.getLayerFactory().create(name, &d.getLtypeContinuous(), 1, 0));
      addLtype(d, d.getLtypeFactory().create(name, u"", dashes, 2, 0));
      addStyle(d, d.getStyleFactory().create(name, nullptr, 0, 1, 0, 1, 0));
    }
    m_block = d.getBlockFactory().create(u"B", PNT_3D(1, 1, 0), 0);
    m_block->add(createEntLine(d, LINE_3D(0, 0, 0, 5, 3, 0), 0));
    d.getBlockTable().add(m_block);
    makeAll();
    for (const auto& [name, ent] : kinds) d.getEntTable().add(ent);
  }

  CData& data() { return *m_data; }
  double number() { return static_cast<double>(m_random() % 2001) / 10 - 100; }
  PNT_3D point() { return PNT_3D(number(), number(), number()); }
  CLayer* layer() { return getLayer(*m_data, pick() ? u"A" : u"B"); }
  CLtype* ltype() { return getLtype(*m_data, pick() ? u"A" : u"B"); }
  CStyle* style() { return getStyle(*m_data, pick() ? u"A" : u"B"); }
  bool pick() { return m_random() % 2 == 0; }
  TEXT_3D text() { return TEXT_3D(u"text", style(), 3, 4, 5, 2, 0.1, 0.8, 0.5, 4); }

  std::vector<std::pair<std::string, CEnt*>> kinds;

 private:
  CEntPolyline* polyline(short flags, bool unpacked, double bulge, double width) {
    CEntPolyline* made = createEntPolyline(*m_data, flags, 0, 0);
    for (int i = 0; i < 4; ++i)
      made->addBulgedVertex(PNT_3D(number(), number(), 1), width, 2 * width, bulge, i);
    if (unpacked) made->GetVertex(0);
    return made;
  }
  CEntPolyline* curve() {
    CEntPolyline* made = createEntPolyline(*m_data, CEntPolyline::kSpline, 2, 0);
    for (int i = 0; i < 5; ++i) made->addVertex(*createVertex(*m_data, point(), 1, 2, 0));
    made->regen(m_data->getHandleGestor(), m_data->getEntFactory(), false);
    return made;
  }
  CEntInsert* insert(double sx, double sy, long columns) {
    CEntInsert* made =
        createEntInsert(*m_data, *m_block, point(), sx, sy, 1, 6.0, columns, 2, 3, -4, 0);
    made->add(m_data->getEntFactory().createEntAttrib(m_data->getHandleGestor(), layer(), ltype(),
                                                      3, text(), u"TAG", 1, 7));
    return made;
  }
  void put(const char* name, CEnt* ent) { kinds.emplace_back(name, ent); }
  void makeAll() {
    CData& d = *m_data;
    put("point", createEntPnt(d, point(), 0));
    put("line", createEntLine(d, LINE_3D(point(), point()), 0));
    put("line without length", createEntLine(d, LINE_3D(1, 2, 3, 1, 2, 3), 0));
    put("circle", createEntCircle(d, CIRCLE_3D(1, 2, 3, 4), 0));
    put("circle of radius 0", createEntCircle(d, CIRCLE_3D(1, 2, 3, 0), 0));
    put("circle of negative radius", createEntCircle(d, CIRCLE_3D(1, 2, 3, -4), 0));
    put("arc", createEntArc(d, ARC_3D(1, 2, 3, 4, 5, 6), 0));
    put("arc over angle 0", createEntArc(d, ARC_3D(1, 2, 3, 4, 6, 1), 0));
    put("arc of a full turn", createEntArc(d, ARC_3D(1, 2, 3, 4, 2, 2), 0));
    put("polyline", polyline(0, false, 0, 0));
    put("closed wide polyline with arcs", polyline(1, false, 0.5, 1));
    put("the same, unpacked", polyline(1, true, -0.5, 1));
    put("polyline of a half circle", polyline(0, false, 1, 0));
    put("polyline without vertices", createEntPolyline(d, 0, 0, 0));
    put("spline", curve());
    put("text", createEntText(d, text(), 0));
    put("attribute definition", createEntAttdef(d, text(), u"value", u"prompt", 3, 0));
    put("insert", insert(1, 1, 1));
    put("mirrored array of inserts", insert(-2, 3, 3));
    put("insert without size", insert(0, 0, 1));
    put("fixed insert", createEntFixedInsert(d, *m_block, point(), 10, 50, 1, 0));
    put("hatch", createEntHatch(d, *getHatch(zim::WString(u"ANSI31")), 10, 0.5,
                                {PNT_3D(0, 0, 0), PNT_3D(50, 0, 0), PNT_3D(50, 50, 0)}, 0));
    put("face", createEnt3DFace(d, point(), point(), point(), point(), 5, 0));
    put("filled triangle",
        d.getEntFactory().createEntSolid(d.getHandleGestor(), layer(), ltype(), 3, PNT_3D(0, 0, 0),
                                         PNT_3D(1, 0, 5), PNT_3D(1, 1, 0), PNT_3D(1, 1, 0), 0,
                                         FaceFill::Trace, 0));
  }

  std::mt19937 m_random;
  CDataPtr m_data;
  CBlock* m_block = nullptr;
};

/// All numbers that describe the shape of an entity, in a fixed order.
class ShapeNumbers final : public IEntVisitor {
 public:
  static std::vector<double> of(CEnt& ent) {
    ShapeNumbers shape;
    ent.accept(shape);
    return shape.m_numbers;
  }

  using IEntVisitor::visit;
  void visit(CEntPnt& e) override { put(e.getPnt()); }
  void visit(CEntLine& e) override {
    put(e.getLine().p1);
    put(e.getLine().p2);
  }
  void visit(CEntCircle& e) override { put(e.getCircle(), e.getCircle().radius); }
  void visit(CEntArc& e) override {
    put(e.getArc(), e.getArc().radius);
    putAngle(e.getArc().startAngle);
    putAngle(e.getArc().endAngle);
  }
  void visit(CEntPolyline& e) override {
    put(static_cast<double>(e.getNoTotalVertexes()));
    for (int i = 0; i < e.getFirstVisibleVertex(); ++i) put(e.GetVertexPos(i));
    e.forEachBulged([this](const PNT_3D& p, double ws, double we, double bulge,
                           vek0::Handle handle) { put(p, ws, we, bulge, handle); });
    e.forEachVisible(
        [this](const PNT_3D& p, double ws, double we, double, long) { put(p, ws, we); });
  }
  void visit(CEntText& e) override { putText(e.getText()); }
  void visit(CEntAttdef& e) override { putText(e.getText()); }
  void visit(CEntAttrib& e) override { putText(e.getText()); }
  void visit(CEntInsert& e) override {
    double sx, sy, sz, dx, dy;
    long columns, rows;
    e.getScale(sx, sy, sz);
    e.getArray(columns, rows, dx, dy);
    put(e.getPnt(), sx, sy, sz, columns, rows, dx, dy);
    putAngle(e.getRotate());
    putAttribs(e);
  }
  void visit(CEntInsertXRef& e) override { visit(static_cast<CEntInsert&>(e)); }
  void visit(CEntFixedInsert& e) override {
    put(e.getPnt(), e.GetDefArea(), e.GetNoPixel());
    putAngle(e.getRotate());
    putAttribs(e);
  }
  void visit(CEntHatch& e) override {
    put(e.getHatchScale());
    putAngle(e.getHatchRotate());
    for (const PNT_3D& p : e.getBoundary()) put(p);
    for (unsigned i = 0; i < e.getBlock()->size(); ++i) (*e.getBlock())[i]->accept(*this);
  }
  void visit(CEnt3DFace& e) override {
    for (long i = 0; i < 4; ++i) put(e.getVertex(i));
    put(static_cast<double>(e.getFlags()), e.isTriangular(), static_cast<int>(e.getFill()));
  }

 private:
  template <class... More>
  void put(const PNT_3D& p, More... more) {
    put(p.x, p.y, p.z, more...);
  }
  template <class... Numbers>
  void put(double first, Numbers... more) {
    m_numbers.insert(m_numbers.end(), {first, static_cast<double>(more)...});
  }
  // Directions, so that angles compare equal modulo full turns.
  void putAngle(double angleRad) { put(std::cos(angleRad), std::sin(angleRad)); }
  void putText(const TEXT_3D& t) {
    const CTextContext& c = t.getContext();
    put(t, c.getHeight(), c.getOblique(), c.getWidthScale(), t.getAlign());
    putAngle(c.getRotate());
  }
  void putAttribs(CEntInsertBase& e) {
    for (unsigned i = 0; i < e.GetNoAttribs(); ++i) e.GetAttrib(i)->accept(*this);
  }

  std::vector<double> m_numbers;
};

}  // namespace vek0::test
