#include "support/test.h"

using vek0::detail::kPi;

namespace {

PATH_3D line(double x1, double y1, double x2, double y2) {
  return PATH_3D(LINE_3D(x1, y1, 0, x2, y2, 0));
}

PATH_3D square(double side) {
  return PATH_3D({PNT_3D(0, 0, 0), PNT_3D(side, 0, 0), PNT_3D(side, side, 0), PNT_3D(0, side, 0)},
                 {}, true);
}

TEST(Edits, TrimTakesWhatIsBetweenTheCrossings) {
  const std::vector<PATH_3D> cutters{line(2, -5, 2, 5), line(6, -5, 6, 5)};
  for (const Row& c : rows()) {
    std::vector<PATH_3D> left;
    ASSERT_TRUE(trimPath(line(0, 0, 9, 0), cutters, PNT_2D(c.real("pick"), 0.1), left));
    ASSERT_EQ(left.size() * 2, c.reals("ends").size());
    for (std::size_t i = 0; i < left.size(); ++i) {
      EXPECT_NEAR(left[i].start().x, c.reals("ends")[2 * i], 1e-12);
      EXPECT_NEAR(left[i].end().x, c.reals("ends")[2 * i + 1], 1e-12);
    }
  }
  std::vector<PATH_3D> left;
  EXPECT_FALSE(trimPath(line(0, 0, 9, 0), {line(0, 1, 9, 1)}, PNT_2D(1, 0), left));
  EXPECT_TRUE(left.empty());
}

// The half of the circle on the pick's side is removed; the rest lies on the same circle.
TEST(Edits, TrimOfACircleLeavesAnArc) {
  const CIRCLE_3D circle(1, 1, 0, 3);
  for (const double side : {-1.0, 1.0}) {
    std::vector<PATH_3D> left;
    ASSERT_TRUE(trimPath(PATH_3D(circle), {line(1, -9, 1, 9)}, PNT_2D(1 + 3 * side, 1), left));
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].edges.size(), 1u) << "an arc, through the circle's beginning too";
    EXPECT_NEAR(left[0].length(), 3 * kPi, 1e-12);
    for (const EDGE_3D& edge : left[0].edges) {
      EXPECT_EQ(edge.radius, 3);
      EXPECT_LT(side * (edge.at(0.5).x - 1), 0);
    }
    EXPECT_FALSE(left[0].closed);
  }
  std::vector<PATH_3D> left;
  EXPECT_FALSE(trimPath(PATH_3D(circle), {line(1, 4, 9, 4)}, PNT_2D(0, 0), left));
}

TEST(Edits, ExtendStopsAtTheFirstBound) {
  const std::vector<PATH_3D> bounds{line(20, -5, 20, 5), line(12, -5, 12, 5), line(5, -1, 5, 1),
                                    line(11, 3, 11, 5)};
  PATH_3D path = line(0, 0, 9, 0);
  EXPECT_FALSE(extendPath(path, bounds, PNT_2D(0, 0)));
  ASSERT_TRUE(extendPath(path, bounds, PNT_2D(8, 0)));
  EXPECT_NEAR(path.end().x, 12, 1e-12);
  EXPECT_EQ(path.start().x, 0);
  PATH_3D back = line(9, 0, 0, 0);
  ASSERT_TRUE(extendPath(back, bounds, PNT_2D(8, 0)));
  EXPECT_NEAR(back.start().x, 12, 1e-12);
}

TEST(Edits, ExtendedArcsStayOnTheirCircle) {
  PATH_3D path(ARC_3D(0, 0, 0, 2, 0, kPi / 2));
  ASSERT_TRUE(extendPath(path, {line(-9, 0, 0, 0)}, PNT_2D(0, 2)));
  EXPECT_NEAR(path.end().PNT_2D::dist(-2, 0), 0, 1e-12);
  ASSERT_TRUE(extendPath(path, {line(0, -9, 0, 0)}, PNT_2D(2, 0)));
  EXPECT_NEAR(path.start().PNT_2D::dist(0, -2), 0, 1e-12);
  EXPECT_NEAR(path.length(), 3 * kPi, 1e-12);
  EXPECT_FALSE(extendPath(path, {line(9, 9, 10, 10)}, PNT_2D(2, 0)));
  PATH_3D quarter(ARC_3D(1e6, 1, 0, 3, 0.7, 2));
  const PNT_3D start = quarter.start();
  EXPECT_FALSE(extendPath(quarter, {PATH_3D(LINE_3D(PNT_3D(1e6, 1, 0), start))}, quarter.end()))
      << "its own beginning is no bound";
}

// The joint of any two edges starts and ends on them and continues their directions.
TEST(Edits, FilletsAreTangent) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> place(-9, 9);
  const auto edge = [&] {
    const PNT_3D a(place(random), place(random), 0), b(place(random), place(random), 0);
    return random() % 2 == 0 ? EDGE_3D(a, b) : EDGE_3D(a, b, place(random) / 5);
  };
  int made = 0;
  for ([[maybe_unused]] const int round : rounds(2000)) {
    const EDGE_3D a = edge(), b = edge();
    EDGE_JOINT joint;
    if (!filletEdges(a, b, 0.5, a.at(0.3), b.at(0.6), joint)) continue;
    ++made;
    EXPECT_NEAR(joint.joint.radius, 0.5, 1e-12);
    const auto touches = [&](const EDGE_3D& kept, const PNT_3D& p, const PNT_2D& way) {
      const double t = kept.p1.PNT_2D::dist(p) < kept.p2.PNT_2D::dist(p) ? 0 : 1;
      EXPECT_NEAR(kept.at(t).PNT_2D::dist(p), 0, 1e-8);
      const PNT_2D d = kept.direction(t);
      EXPECT_NEAR(d.x * way.y - d.y * way.x, 0, 1e-5);
      EXPECT_GT((d.x * way.x + d.y * way.y) * (t - 0.5), 0) << "turns back";
    };
    touches(joint.first, joint.joint.p1, joint.joint.direction(0));
    touches(joint.second, joint.joint.p2, -joint.joint.direction(1));
  }
  EXPECT_GT(made, 500);
}

// The result does not depend on where the pick is on its side of the corner; an arc that would
// extend beyond an edge does not fit.
TEST(Edits, FilletsCutTheCornerOff) {
  const EDGE_3D x(PNT_3D(0, 0, 0), PNT_3D(10, 0, 0)), y(PNT_3D(0, 10, 0), PNT_3D(0, 0, 0));
  for (const double pick : named<double>({0.5, 1.9, 2.1, 9.0})) {
    EDGE_JOINT made;
    ASSERT_TRUE(filletEdges(x, y, 2, PNT_2D(pick, 0), PNT_2D(0, pick), made));
    EXPECT_NEAR(made.first.p1.PNT_2D::dist(2, 0), 0, 1e-12);
    EXPECT_TRUE(made.first.p2 == x.p2);
    EXPECT_TRUE(made.second.p1 == y.p1);
    EXPECT_NEAR(made.second.p2.PNT_2D::dist(0, 2), 0, 1e-12);
    EXPECT_NEAR(made.joint.length(), kPi, 1e-12);
    EXPECT_FALSE(filletEdges(x, y, 11, PNT_2D(pick, 0), PNT_2D(0, pick), made));
  }
}

TEST(Edits, FilletAndChamferOfACorner) {
  const EDGE_3D x(PNT_3D(0, 0, 0), PNT_3D(10, 0, 0)), y(PNT_3D(0, 1, 0), PNT_3D(0, 10, 0));
  const PNT_2D onX(5, 0), onY(0, 5);
  EDGE_JOINT made;
  ASSERT_TRUE(filletEdges(x, y, 2, onX, onY, made));
  EXPECT_NEAR(made.first.p1.PNT_2D::dist(2, 0), 0, 1e-12);
  EXPECT_NEAR(made.second.p1.PNT_2D::dist(0, 2), 0, 1e-12);
  EXPECT_NEAR(made.joint.length(), kPi, 1e-12);
  ASSERT_TRUE(filletEdges(x, y, 0, onX, onY, made));
  EXPECT_NEAR(made.second.p1.PNT_2D::dist(0, 0), 0, 1e-12);
  EXPECT_EQ(made.joint.length(), 0);
  ASSERT_TRUE(chamferEdges(x, y, 1, 3, onX, onY, made));
  EXPECT_NEAR(made.joint.p1.PNT_2D::dist(1, 0), 0, 1e-12);
  EXPECT_NEAR(made.joint.p2.PNT_2D::dist(0, 3), 0, 1e-12);
  EXPECT_FALSE(chamferEdges(x, y, 11, 1, onX, onY, made));
  EXPECT_FALSE(filletEdges(x, EDGE_3D(PNT_3D(0, 5, 0), PNT_3D(10, 5, 0)), 1, onX, onY, made));
  EXPECT_NEAR(made.joint.p1.PNT_2D::dist(1, 0), 0, 1e-12);
}

TEST(Edits, CornersOfAPathAreCutWhereThereIsRoom) {
  PATH_3D path = square(10);
  EXPECT_EQ(filletPath(path, 2), 4);
  EXPECT_NEAR(path.area(), 100 - (4 - kPi) * 4, 1e-11);
  EXPECT_NEAR(path.length(), 4 * 6 + 4 * kPi, 1e-11);
  EXPECT_TRUE(path.closed && path.start().PNT_2D::dist(path.end()) < 1e-12);
  path = square(10);
  EXPECT_EQ(filletPath(path, 6), 2);
  for (const double side : {2.0, 3e6 / 7}) {
    path = square(side);
    EXPECT_EQ(filletPath(path, side / 2), 4) << "a circle remains";
    EXPECT_NEAR(path.area() / (side * side), kPi / 4, 1e-9);
  }
  path = square(10);
  EXPECT_EQ(chamferPath(path, 1, 2), 4);
  EXPECT_NEAR(path.area(), 96, 1e-12);
  PATH_3D open({PNT_3D(0, 0, 0), PNT_3D(5, 0, 0), PNT_3D(5, 5, 0)}, {}, false);
  EXPECT_EQ(filletPath(open, 5), 1);
  EXPECT_EQ(open.edges.size(), 1u);
  EXPECT_EQ(filletPath(open, std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(Edits, MarksLieAtEqualLengths) {
  std::vector<PNT_3D> marks;
  ASSERT_TRUE(dividePath(square(10), 8, marks));
  ASSERT_EQ(marks.size(), 8u);
  EXPECT_TRUE(marks[0] == PNT_3D(0, 0, 0));
  EXPECT_NEAR(marks[3].PNT_2D::dist(10, 5), 0, 1e-12);
  marks.clear();
  ASSERT_TRUE(dividePath(PATH_3D(ARC_3D(0, 0, 0, 1, 0, kPi)), 2, marks));
  ASSERT_EQ(marks.size(), 1u);
  EXPECT_NEAR(marks[0].PNT_2D::dist(0, 1), 0, 1e-12);
  marks.clear();
  ASSERT_TRUE(measurePath(line(0, 0, 1, 0), 0.1, marks));
  EXPECT_EQ(marks.size(), 10u);  // in floating point, ten tenths add up to less than 1
  marks.clear();
  EXPECT_FALSE(measurePath(line(0, 0, 1, 0), 1e-300, marks));
  EXPECT_FALSE(measurePath(line(0, 0, 1, 0), 0, marks));
  EXPECT_FALSE(dividePath(line(0, 0, 0, 0), 3, marks));
  EXPECT_FALSE(dividePath(square(1), 2000000, marks));
  EXPECT_TRUE(marks.empty());
}

}  // namespace
