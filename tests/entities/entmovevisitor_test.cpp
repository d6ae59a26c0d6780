#include "entities/blockworld.h"
#include "support/test.h"

namespace {

constexpr double kQuarter = 1.5707963267948966;

class MoveVisitor : public testing::Test, protected BlockWorld {
 protected:
  CEntPolyline* wide(short flags) {
    CEntPolyline* made = ents.createEntPolyline(gestor, nullptr, nullptr, 256, flags, 0, 0);
    made->addBulgedVertex(PNT_3D(0, 0, 0), 0.5, 0.5, 1, 0);
    made->addBulgedVertex(PNT_3D(4, 0, 0), 0.5, 0.25, 0, 0);
    made->addBulgedVertex(PNT_3D(4, 4, 0), 0, 0, 0, 0);
    return made;
  }
};

// Whether the cached extents were moved or recomputed, they must match the moved geometry.
TEST_F(MoveVisitor, EveryKindMovesWithItsExtents) {
  CBlock* shown = block("B");
  shown->add(line(0, 0, 1, 1));
  table.add(shown);
  CEntInsert* turned = insert(shown, PNT_3D(1, 1, 1), 2, 3, 0.5);
  const PNT_3D p(1, 2, 3);
  std::vector<std::pair<const char*, CEnt*>> kinds;
  kinds.emplace_back("point", ents.createEntPnt(gestor, nullptr, nullptr, 256, p, 0));
  kinds.emplace_back("line", line(1, 2, 3, 4));
  kinds.emplace_back("circle",
                     ents.createEntCircle(gestor, nullptr, nullptr, 256, CIRCLE_3D(1, 2, 3, 4), 0));
  kinds.emplace_back(
      "arc", ents.createEntArc(gestor, nullptr, nullptr, 256, ARC_3D(1, 2, 3, 4, 0, kQuarter), 0));
  kinds.emplace_back("wide polyline with an arc", wide(1));
  kinds.emplace_back("text",
                     ents.createEntText(gestor, nullptr, nullptr, 256, text(u"abc", 1, 2), 0));
  kinds.emplace_back("definition", attdef(u"TAG", 5, 5));
  kinds.emplace_back("attribute", attrib(u"value", 5, 5));
  kinds.emplace_back("insert", turned);
  kinds.emplace_back("fixed insert", ents.createEntFixedInsert(gestor, nullptr, nullptr, 256, shown,
                                                               p, 1, 1, 0, 0));
  kinds.emplace_back("triangle",
                     ents.createEnt3DFace(gestor, nullptr, nullptr, 256, PNT_3D(0, 0, 0),
                                          PNT_3D(1, 0, 5), PNT_3D(1, 1, 0), PNT_3D(1, 1, 0), 0, 0));
  const PNT_3D delta(10, 20, 30);
  for (const auto& [name, raw] : kinds) {
    SCOPED_TRACE(name);
    const std::unique_ptr<CEnt> ent(raw);
    RECT_3D expected = ent->getBdry();
    expected.move(delta);
    CEntMoveVisitor mover(delta);
    ent->accept(mover);
    EXPECT_LT(ent->getBdry().min.dist(expected.min), 1e-9);
    EXPECT_LT(ent->getBdry().max.dist(expected.max), 1e-9);
    const RECT_3D moved = ent->getBdry();
    ent->calcBdry();
    EXPECT_LT(ent->getBdry().min.dist(moved.min), 1e-9);
    EXPECT_LT(ent->getBdry().max.dist(moved.max), 1e-9);
  }
}

TEST_F(MoveVisitor, APolylineKeepsArcsAndWidths) {
  const std::unique_ptr<CEntPolyline> ent(wide(0));
  CEntMoveVisitor mover(PNT_3D(1, 2, 3));
  ent->accept(mover);
  EXPECT_TRUE(ent->hasArcRuns());
  std::vector<double> widths;
  ent->forEachBulged([&](const PNT_3D&, double start, double end, double, long) {
    widths.insert(widths.end(), {start, end});
  });
  EXPECT_EQ(widths, (std::vector<double>{0.5, 0.5, 0.5, 0.25, 0, 0}));
}

TEST_F(MoveVisitor, ControlPointsMoveAlong) {
  const std::unique_ptr<CEntPolyline> ent(
      ents.createEntPolyline(gestor, nullptr, nullptr, 256, 4, 2, 0));
  for (const double x : {0.0, 1.0, 2.0, 3.0})
    ent->addVertex(*ents.createVertex(gestor, PNT_3D(x, x * x, 0), 0, 0, 0));
  ent->regen(gestor, ents, false);
  std::vector<PNT_3D> before;
  for (int i = 0; i < ent->getNoTotalVertexes(); ++i) before.push_back(ent->GetVertexPos(i));
  CEntMoveVisitor mover(PNT_3D(1, 2, 3));
  ent->accept(mover);
  ASSERT_EQ(ent->getNoTotalVertexes(), static_cast<long>(before.size()));
  for (int i = 0; i < ent->getNoTotalVertexes(); ++i)
    EXPECT_EQ(ent->GetVertexPos(i), before[static_cast<std::size_t>(i)] + PNT_3D(1, 2, 3));
}

}  // namespace
