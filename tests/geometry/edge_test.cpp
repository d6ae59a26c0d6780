#include "support/test.h"

using vek0::detail::kPi;

namespace {

EDGE_3D randomEdge(std::mt19937& random) {
  std::uniform_real_distribution<double> place(-5, 5);
  const auto at = [&] { return PNT_3D(place(random), place(random), place(random)); };
  const PNT_3D a = at(), b = at();
  return random() % 2 == 0 ? EDGE_3D(a, b) : EDGE_3D(a, b, place(random));
}

TEST(Edge, ArcsRunAsTheirEntitiesDo) {
  const EDGE_3D arc(ARC_3D(1, 2, 3, 4, 1.5 * kPi, 0.5 * kPi));
  EXPECT_NEAR(arc.sweep, kPi, 1e-15);
  EXPECT_NEAR(arc.p1.dist(PNT_3D(1, -2, 3)), 0, 1e-14);
  EXPECT_NEAR(arc.at(0.5).dist(PNT_3D(5, 2, 3)), 0, 1e-14);
  EXPECT_TRUE(arc.toArc() == ARC_3D(1, 2, 3, 4, 1.5 * kPi, 0.5 * kPi));
  const EDGE_3D circle(CIRCLE_3D(0, 0, 0, -2));
  EXPECT_TRUE(circle.p1 == circle.p2);
  EXPECT_DOUBLE_EQ(circle.length(), 4 * kPi);
  EXPECT_EQ(EDGE_3D(ARC_3D(0, 0, 0, 1, 2, 2)).toArc().startAngle, 2);
}

TEST(Edge, BulgesComeBack) {
  for (const double bulge : named<double>({-3.0, -1.0, -0.25, 1e-3, 1.0, 2.5})) {
    const EDGE_3D edge(PNT_3D(0, 0, 0), PNT_3D(3, 1, 6), bulge);
    EXPECT_NEAR(edge.bulge(), bulge, 1e-12);
    EXPECT_NEAR(edge.reversed().bulge(), -bulge, 1e-12);
    EXPECT_NEAR(edge.center.dist(edge.at(0.3)), edge.radius, 1e-12 * edge.radius);
    EXPECT_DOUBLE_EQ(edge.at(0.5).z, 3);
  }
}

TEST(Edge, ParametersOfItsPointsComeBack) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> share(0, 1);
  for ([[maybe_unused]] const int round : rounds(2000)) {
    const EDGE_3D edge = randomEdge(random);
    const double t = share(random);
    EXPECT_NEAR(edge.paramOf(edge.at(t)), t, 1e-9);
    EXPECT_NEAR(edge.dist(edge.at(t)), 0, 1e-12 * (1 + edge.radius));
    EXPECT_TRUE(edge.bdry().intersect(RECT_2D(edge.at(t), edge.at(t))) ||
                edge.bdry().min.dist(edge.at(t)) < 1e-9 || edge.bdry().max.dist(edge.at(t)) < 1e-9);
    const EDGE_3D part = edge.part(t / 2, t);
    EXPECT_NEAR(part.length(), edge.length() * t / 2, 1e-9 * edge.length());
    EXPECT_NEAR(part.at(0.5).dist(edge.at(0.75 * t)), 0, 1e-9 * edge.length());
  }
}

// Compares the computed nearest point with the nearest of many samples.
TEST(Edge, NoPointIsNearerThanTheNearest) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> place(-8, 8);
  for ([[maybe_unused]] const int round : rounds(500)) {
    const EDGE_3D edge = randomEdge(random);
    const PNT_2D p(place(random), place(random));
    const double least = edge.dist(p);
    for (int i = 0; i <= 200; ++i)
      EXPECT_LE(least, edge.at(i / 200.0).PNT_2D::dist(p) + 1e-12 * (1 + edge.radius));
  }
}

TEST(Edge, CrossingsOfEveryPairOfKinds) {
  const EDGE_3D line(PNT_3D(-5, 0, 0), PNT_3D(5, 0, 10));
  const EDGE_3D half(ARC_3D(0, 0, 0, 2, 0, kPi));
  const EDGE_3D circle(CIRCLE_3D(2, 0, 0, 2));
  const EDGE_3D crossing(PNT_3D(1, -1, 0), PNT_3D(1, 1, 0)),
      above(PNT_3D(1, 1, 0), PNT_3D(1, 2, 0));
  const EDGE_3D parallel(PNT_3D(1, 1, 0), PNT_3D(3, 1, 0)), upon(PNT_3D(4, 0, 0), PNT_3D(9, 0, 0));
  const EDGE_3D onwards(PNT_3D(5, 0, 0), PNT_3D(9, 0, 0)),
      touching(PNT_3D(0, 2, 0), PNT_3D(9, 2, 0));
  const EDGE_3D inner(CIRCLE_3D(2, 0, 0, 1)), otherHalf(ARC_3D(0, 0, 0, 2, kPi, 0));
  const struct {
    const char* name;
    EDGE_3D a, b;
    std::size_t count, carriers;
  } cases[] = {
      {"lines that cross", line, crossing, 1, 1},
      {"lines that would", line, above, 0, 1},
      {"parallels", line, parallel, 0, 0},
      {"lines upon each other", line, upon, 2, 0},
      {"lines in line, end to end", line, onwards, 1, 0},
      {"a line through an arc's ends", line, half, 2, 2},
      {"a line that touches", circle, touching, 1, 1},
      {"an arc and a circle", half, circle, 1, 2},
      {"circles inside each other", circle, inner, 0, 0},
      {"halves of one circle", half, otherHalf, 2, 0},
  };
  for (const auto& c : named(cases)) {
    for (const bool swapped : {false, true}) {
      const EDGE_3D &a = swapped ? c.b : c.a, &b = swapped ? c.a : c.b;
      std::vector<EDGE_CROSSING> found, endless;
      a.intersect(b, found, 1e-12);
      a.intersect(b, endless, 1e-12, true);
      EXPECT_EQ(found.size(), c.count);
      EXPECT_EQ(endless.size(), c.carriers);
      for (const EDGE_CROSSING& at : found) {
        EXPECT_NEAR(a.at(at.t).PNT_2D::dist(b.at(at.u)), 0, 1e-9);
        EXPECT_TRUE(at.t >= 0 && at.t <= 1 && at.u >= 0 && at.u <= 1);
      }
    }
  }
}

}  // namespace
