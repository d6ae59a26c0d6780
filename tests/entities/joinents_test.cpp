#include "entities/scene.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

const ENT_TRAITS kWide{.lineweight = 50};

class Join : public testing::Test, protected Scene {
 protected:
  ~Join() {
    for (CEnt* ent : ents) delete ent;
  }

  CEntLine* segment(const PNT_3D& a, const PNT_3D& b, short color = 7) {
    CEntLine* made = factory.createEntLine(gestor, layer(), ltype(), color, LINE_3D(a, b), 0);
    ents.push_back(made);
    return made;
  }
  CEntArc* arc(double x, double y, double r, double from, double to) {
    CEntArc* made =
        factory.createEntArc(gestor, layer(), ltype(), 7, ARC_3D(x, y, 0, r, from, to), 0);
    ents.push_back(made);
    return made;
  }
  CEntPolyline* chain(const std::vector<BULGED_VERTEX>& vertexes) {
    CEntPolyline* made = factory.createEntPolyline(gestor, layer(), ltype(), 7, 0, 0, 0);
    made->setBulgedVertexes(vertexes.data(), vertexes.size());
    ents.push_back(made);
    return made;
  }
  std::vector<JOINED_ENT> join(double tolerance, JOIN_LAYERS layers = JOIN_LAYERS::apart) {
    return joinEnts(gestor, factory, ents, tolerance, layers);
  }

  std::vector<CEnt*> ents;
};

double lengthOf(const CEnt& ent) {
  PATH_3D path;
  EXPECT_TRUE(getEntPath(ent, path));
  return path.length();
}

TEST_F(Join, EitherEndEitherWay) {
  // The first gives its properties and its direction.
  segment(PNT_3D(10, 0, 0), PNT_3D(20, 0, 0), 3)->setTraits(kWide);
  segment(PNT_3D(30, 5, 0), PNT_3D(20, 0, 0));  // onwards, reversed
  segment(PNT_3D(0, 5, 0), PNT_3D(10, 0, 0));   // before it
  segment(PNT_3D(0, 5, 0), PNT_3D(-10, 5, 0));  // before that, reversed
  segment(PNT_3D(99, 0, 0), PNT_3D(99, 9, 0));  // by itself
  segment(PNT_3D(30, 5, 1), PNT_3D(30, 9, 1));  // above
  const std::vector<JOINED_ENT> made = join(1e-9);
  ASSERT_EQ(made.size(), 1u);
  const CEntPolyline& p = *made[0].polyline;
  EXPECT_EQ(p.getColor(), 3);
  EXPECT_TRUE(p.getTraits() == kWide);
  EXPECT_FALSE(p.isClosed());
  const double xs[] = {-10, 0, 10, 20, 30};
  ASSERT_EQ(p.getNoTotalVertexes(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(p.GetVertexPos(i).x, xs[i]);
  const std::vector<const CEnt*> parts{ents[3], ents[2], ents[0], ents[1]};
  EXPECT_EQ(made[0].parts, parts);
}

// Equal angles mean a full turn, so an arc of length 0 must not become one.
TEST_F(Join, AnArcWithoutLengthIsNotTakenForACircle) {
  const CEnt& like = *segment(PNT_3D(0, 0, 0), PNT_3D(1, 0, 0));
  const Definitions names{
      {"Line", CEntLine::kType}, {"Arc", CEntArc::kType}, {"Circle", CEntCircle::kType}};
  for (const Row& c : rowsWith(names)) {
    const PATH_3D path(EDGE_3D(PNT_2D(0, 0), 2, 1, c.real("sweep"), 0, 0));
    ents.push_back(createEntFromPath(gestor, factory, path, like));
    EXPECT_EQ(ents.back()->getType(), c.whole<short>("kind")) << c.real("sweep");
  }
}

TEST_F(Join, ArcsStayArcsAndRingsClose) {
  segment(PNT_3D(0, 0, 0), PNT_3D(4, 0, 0));
  arc(4, 1, 1, -kPi / 2, kPi / 2);
  segment(PNT_3D(0, 2, 0), PNT_3D(4, 2, 0));
  arc(0, 1, 1, kPi / 2, -kPi / 2);
  const std::vector<JOINED_ENT> made = join(1e-9);
  ASSERT_EQ(made.size(), 1u);
  EXPECT_TRUE(made[0].polyline->isClosed());
  PATH_3D path;
  ASSERT_TRUE(getEntPath(*made[0].polyline, path));
  EXPECT_EQ(path.edges.size(), 4u);
  EXPECT_NEAR(path.area(), 8 + kPi, 1e-9);
}

TEST_F(Join, WidthsAndBulgesTurnWithTheirSegments) {
  segment(PNT_3D(-5, 0, 0), PNT_3D(0, 0, 0));
  chain({{6, 0, 0, 1, 2, 0.5, 0}, {3, 0, 0, 3, 4, -1, 0}, {0, 0, 0, 0, 0, 0, 0}});
  const std::vector<JOINED_ENT> made = join(0);
  ASSERT_EQ(made.size(), 1u);
  std::vector<BULGED_VERTEX> v;
  made[0].polyline->forEachBulged([&](const PNT_3D& p, double start, double end, double b, long) {
    v.push_back({p.x, p.y, p.z, start, end, b, 0});
  });
  ASSERT_EQ(v.size(), 4u);
  EXPECT_TRUE(v[1].widthStart == 4 && v[1].widthEnd == 3 && v[1].bulge == 1);
  EXPECT_TRUE(v[2].widthStart == 2 && v[2].widthEnd == 1 && v[2].bulge == -0.5);
}

TEST_F(Join, GapsWithinTheToleranceOnly) {
  segment(PNT_3D(0, 0, 0), PNT_3D(1, 0, 0));
  segment(PNT_3D(1.01, 0, 0), PNT_3D(2, 0, 0));
  EXPECT_TRUE(join(0.005).empty());
  EXPECT_TRUE(join(std::numeric_limits<double>::quiet_NaN()).empty());
  EXPECT_TRUE(join(-1).empty());
  const std::vector<JOINED_ENT> made = join(0.02);
  ASSERT_EQ(made.size(), 1u);
  EXPECT_EQ(made[0].polyline->GetVertexPos(1).x, 1);
}

// A chain of segments on random layers: two shown, one frozen, one hidden.
TEST_F(Join, LayersStayApartUnlessAsked) {
  CLayer* layers[4];
  for (CLayer*& each : layers) {
    each = data->getLayerFactory().create(u"L", ltype(), 7, 0);
    data->getLayerTable().add(each);
  }
  layers[2]->setFrozen(true);
  layers[3]->setOff(true);
  std::mt19937 random(3);
  for (int i = 0; i < 300; ++i)
    segment(PNT_3D(i, 0, 0), PNT_3D(i + 1, 0, 0))->setLayer(layers[random() % 4]);
  for (const bool isTogether : {false, true}) {
    std::size_t mixed = 0;
    for (const JOINED_ENT& made :
         join(1e-9, isTogether ? JOIN_LAYERS::together : JOIN_LAYERS::apart)) {
      std::set<const CLayer*> met;
      for (const CEnt* part : made.parts) met.insert(part->getLayer());
      if (met.size() < 2) continue;
      ++mixed;
      EXPECT_FALSE(met.count(layers[2]) || met.count(layers[3]));
    }
    EXPECT_EQ(mixed > 10, isTogether) << mixed;
  }
}

// Segments of many chains in any order and direction are rejoined, each exactly once.
TEST_F(Join, ShuffledSegmentsComeTogetherAgain) {
  std::mt19937 random(1);
  constexpr int kChains = 20, kSegments = 500;
  double length = 0;
  for (int c = 0; c < kChains; ++c) {
    const bool ring = c % 2 == 0;
    PNT_3D last(1000.0 * c, 0, 0);
    const PNT_3D first = last;
    for (int i = 1; i <= kSegments; ++i) {
      PNT_3D next(last.x + 1, std::sin(i * 0.7) * 3, 0);
      if (i == kSegments && ring) next = first;
      random() % 2 == 0 ? segment(last, next) : segment(next, last);
      length += last.dist(next);
      last = next;
    }
  }
  std::shuffle(ents.begin(), ents.end(), random);
  const std::vector<JOINED_ENT> made = join(joinTolerance(ents));
  ASSERT_EQ(made.size(), static_cast<std::size_t>(kChains));
  double joined = 0;
  std::size_t closed = 0, parts = 0;
  for (const JOINED_ENT& j : made) {
    joined += lengthOf(*j.polyline);
    closed += j.polyline->isClosed();
    parts += j.parts.size();
  }
  EXPECT_EQ(closed, static_cast<std::size_t>(kChains / 2));
  EXPECT_EQ(parts, ents.size());
  EXPECT_NEAR(joined, length, 1e-6);
}

// Many ends at one point, and invalid coordinates: every entity is used at most once.
TEST_F(Join, CrowdsAndOddNumbersAreHarmless) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (int i = 0; i < 2000; ++i)
    segment(PNT_3D(0, 0, 0), PNT_3D(std::cos(i) * 9, std::sin(i) * 9, 0));
  segment(PNT_3D(nan, 0, 0), PNT_3D(0, 0, 0));
  segment(PNT_3D(0, 0, 0), PNT_3D(0, 0, 0));
  segment(PNT_3D(1e300, 0, 0), PNT_3D(0, 0, 0));
  ents.push_back(nullptr);
  const std::vector<JOINED_ENT> made = join(1e-9);
  ents.pop_back();
  std::vector<const CEnt*> used;
  for (const JOINED_ENT& j : made) used.insert(used.end(), j.parts.begin(), j.parts.end());
  EXPECT_GE(used.size(), 2000u);
  std::sort(used.begin(), used.end());
  EXPECT_EQ(std::unique(used.begin(), used.end()), used.end());
}

// Polylines are exploded and joined again.
TEST_F(Join, UndoesExploding) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> bulge(-2, 2);
  std::vector<BULGED_VERTEX> vertexes;
  for (int i = 0; i < 40; ++i)
    vertexes.push_back({i * 2.0, std::sin(i), 0, 0, 0, i % 3 == 0 ? bulge(random) : 0, 0});
  const std::unique_ptr<CEntPolyline> whole(chain(vertexes));
  ents.clear();
  CEntExploderVisitor exploder(data->getHandleGestor(), data->getEntFactory(),
                               data->getBlockFactory(), data->getBlockTable());
  whole->accept(exploder);
  for (std::unique_ptr<CEnt>& ent : exploder.getEnts()) ents.push_back(ent.release());
  std::shuffle(ents.begin(), ents.end(), random);
  const std::vector<JOINED_ENT> made = join(1e-9);
  ASSERT_EQ(made.size(), 1u);
  EXPECT_NEAR(lengthOf(*made[0].polyline), lengthOf(*whole), 1e-9);
  EXPECT_EQ(made[0].parts.size(), 39u);
}

TEST_F(Join, AdderLengthensOnePolyline) {
  CEntPolyline* p = chain({{0, 0, 0, 0, 0, 0, 0}, {4, 0, 0, 0, 0, 0, 0}});
  CEntPolyAdderVisitor adder(*p, 1e-9);
  segment(PNT_3D(9, 9, 0), PNT_3D(8, 8, 0))->accept(adder);
  EXPECT_FALSE(adder.isAdded());
  p->accept(adder);
  EXPECT_FALSE(adder.isAdded());
  segment(PNT_3D(4, 4, 0), PNT_3D(4, 0, 0))->accept(adder);
  EXPECT_TRUE(adder.isAdded());
  arc(0, 2, 2, kPi / 2, 3 * kPi / 2)->accept(adder);
  EXPECT_TRUE(adder.isAdded());
  EXPECT_EQ(p->getNoTotalVertexes(), 2);
  segment(PNT_3D(0, 4, 0), PNT_3D(4, 4, 0))->accept(adder);
  EXPECT_TRUE(adder.finish(gestor, factory));
  EXPECT_TRUE(p->isClosed());
  PATH_3D path;
  ASSERT_TRUE(getEntPath(*p, path));
  EXPECT_NEAR(std::fabs(path.area()), 16 + 2 * kPi, 1e-9);
  segment(PNT_3D(0, 0, 0), PNT_3D(1, 1, 0))->accept(adder);
  EXPECT_FALSE(adder.isAdded());
}

TEST_F(Join, PathsBecomeTheKindThatFits) {
  CEntLine* like = segment(PNT_3D(0, 0, 0), PNT_3D(1, 0, 0), 4);
  like->setTraits(kWide);
  const auto kindOf = [&](const PATH_3D& path) {
    const std::unique_ptr<CEnt> made(createEntFromPath(gestor, factory, path, *like));
    EXPECT_EQ(made->getColor(), 4);
    EXPECT_TRUE(made->getTraits() == kWide);
    EXPECT_NEAR(lengthOf(*made), path.length(), 1e-9);
    return made->getType();
  };
  EXPECT_EQ(kindOf(PATH_3D(LINE_3D(0, 0, 0, 3, 4, 0))), CEntLine::kType);
  EXPECT_EQ(kindOf(PATH_3D(ARC_3D(0, 0, 0, 3, 1, 6))), CEntArc::kType);
  EXPECT_EQ(kindOf(PATH_3D(CIRCLE_3D(0, 0, 0, 3))), 3);
  EXPECT_EQ(kindOf(PATH_3D(vek0::test::pts("0,0 1,0 1,1"), {5, 0, -1}, true)), CEntPolyline::kType);
  EXPECT_EQ(createEntFromPath(gestor, factory, PATH_3D(), *like), nullptr);
}

}  // namespace
