#include "support/test.h"

namespace {

/// Both outputs of an intersection, preset to detect whether a call writes them.
struct Found {
  PNT_2D p1{kUntouched, kUntouched}, p2{kUntouched, kUntouched};
  bool untouched() const { return p1 == PNT_2D(kUntouched, kUntouched) && p2 == p1; }
};

class RandomCircles {
 public:
  explicit RandomCircles(unsigned seed) : m_random(seed) {}
  double real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(m_random);
  }
  CIRCLE_3D circle() { return {real(-9, 9), real(-9, 9), real(-9, 9), real(0.5, 9)}; }
  PNT_2D point() { return {real(-15, 15), real(-15, 15)}; }

 private:
  std::mt19937 m_random;
};

TEST(Circle, CommonPointsWithASegmentAndItsLine) {
  const CIRCLE_3D unit(0, 0, 7, 1);
  for (const Row& t : rows()) {
    Found onSegment, onLine;
    EXPECT_EQ(unit.intersect(t.shape<LINE_2D>("line"), &onSegment.p1, &onSegment.p2),
              t.whole<long>("segment"));
    EXPECT_EQ(unit.intersect(IMP_LINE_2D(t.shape<LINE_2D>("line")), &onLine.p1, &onLine.p2),
              t.whole<long>("total"));
    EXPECT_EQ(onSegment.untouched(), t.whole<long>("segment") == 0);
    EXPECT_EQ(onLine.untouched(), t.whole<long>("total") == 0);
    EXPECT_EQ(onSegment.p1 == onSegment.p2, t.whole<long>("segment") < 2);
    EXPECT_EQ(onLine.p1 == onLine.p2, t.whole<long>("total") < 2);
    double t1 = kUntouched, t2 = kUntouched;
    EXPECT_EQ(unit.intersect(PAR_LINE_2D(t.shape<LINE_2D>("line")), t1, t2),
              t.whole<long>("total"));
    EXPECT_LE(t1, t2);
  }
}

TEST(Circle, TouchingToleranceGrowsWithTheRadius) {
  const CIRCLE_3D large(0, 0, 0, 1e6);
  Found found;
  EXPECT_EQ(large.intersect(IMP_LINE_2D(0, 1, -1e6 - 5e-7), &found.p1, &found.p2), 1);
  EXPECT_EQ(large.intersect(IMP_LINE_2D(0, 1, -1e6 - 5e-6), &found.p1, &found.p2), 0);
}

TEST(Circle, NegativeRadiusMeetsTheSameLines) {
  const LINE_2D line(-9, 1, 9, 1);
  Found plus, minus;
  EXPECT_EQ(CIRCLE_3D(0, 0, 0, 5).intersect(line, &plus.p1, &plus.p2), 2);
  EXPECT_EQ(CIRCLE_3D(0, 0, 0, -5).intersect(line, &minus.p1, &minus.p2), 2);
  EXPECT_TRUE(plus.p1 == minus.p1 && plus.p2 == minus.p2);
}

TEST(Circle, LinePointsLieOnBoth) {
  RandomCircles random(21);
  int crossings = 0;
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const CIRCLE_3D circle = random.circle();
    const PNT_2D a = random.point(), b = random.point();
    Found found;
    const long count = circle.intersect(IMP_LINE_2D(a, b), &found.p1, &found.p2);
    EXPECT_EQ(count == 0, std::fabs(LINE_2D(a, b).dist(circle)) > circle.radius);
    if (count == 0) continue;
    ++crossings;
    for (const PNT_2D& p : {found.p1, found.p2}) {
      EXPECT_NEAR(circle.dist(p), 0, 1e-11);
      EXPECT_NEAR(LINE_2D(a, b).dist(p), 0, 1e-9);
    }
    double t[2];
    ASSERT_EQ(circle.intersect(PAR_LINE_2D(a, b), t[0], t[1]), count);
    const bool first = t[0] >= 0 && t[0] <= 1, second = t[1] >= 0 && t[1] <= 1;
    EXPECT_EQ(circle.intersect(LINE_2D(a, b), &found.p1, &found.p2), first + second);
  }
  EXPECT_GT(crossings, 200);
}

TEST(Circle, LevelAndUprightSegmentsAgreeWithTheGeneralWay) {
  RandomCircles random(22);
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const CIRCLE_3D circle = random.circle();
    const double at = random.real(-12, 12), from = random.real(-12, 12), to = random.real(-12, 12);
    const LINE_2D level(from, at, to, at), upright(at, from, at, to);
    Found general, level2, upright2;
    const long count = circle.intersect(level, &general.p1, &general.p2);
    ASSERT_EQ(circle.intersect_hor(level, &level2.p1, &level2.p2), count);
    EXPECT_EQ(level2.untouched(), count == 0);
    if (count > 0) {
      EXPECT_EQ(level2.p1.y, at);
      EXPECT_NEAR(std::fmin(level2.p1.x, level2.p2.x), std::fmin(general.p1.x, general.p2.x), 1e-9);
      EXPECT_NEAR(std::fmax(level2.p1.x, level2.p2.x), std::fmax(general.p1.x, general.p2.x), 1e-9);
    }
    const long across = circle.intersect(upright, &general.p1, &general.p2);
    ASSERT_EQ(circle.intersect_ver(upright, &upright2.p1, &upright2.p2), across);
    if (across > 0) EXPECT_EQ(upright2.p2.x, at);
  }
  Found touching;
  EXPECT_EQ(
      CIRCLE_3D(0, 0, 0, 1).intersect_hor(LINE_2D(1 + 1e-13, 0, 9, 0), &touching.p1, &touching.p2),
      1);
  EXPECT_EQ(CIRCLE_3D(1, 2, 0, 3).intersect_hor(LINE_2D(-9, 5, 9, 5), &touching.p1, &touching.p2),
            1);
  EXPECT_TRUE(touching.p1 == PNT_2D(1, 5) && touching.p2 == touching.p1);
}

TEST(Circle, CommonPointsOfTwoCircles) {
  const CIRCLE_3D circle(0, 0, 0, 5);
  for (const Row& t : rows()) {
    Found found;
    EXPECT_EQ(circle.intersect(t.shape<CIRCLE_3D>("other"), &found.p1, &found.p2),
              t.whole<long>("count"));
    EXPECT_EQ(found.untouched(), t.whole<long>("count") == 0);
    EXPECT_EQ(found.p1 == found.p2, t.whole<long>("count") < 2);
    if (t.whole<long>("count") == 0) continue;
    EXPECT_LT(circle.dist(found.p1), 1e-11);
    EXPECT_LT(t.shape<CIRCLE_3D>("other").dist(found.p1), 1e-11);
    EXPECT_LT(t.shape<CIRCLE_3D>("other").dist(found.p2), 1e-11);
  }
}

TEST(Circle, CircleIntersectionIsSymmetric) {
  RandomCircles random(23);
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const CIRCLE_3D a = random.circle(), b = random.circle();
    Found ab, ba;
    const long count = a.intersect(b, &ab.p1, &ab.p2);
    ASSERT_EQ(b.intersect(a, &ba.p1, &ba.p2), count);
    const double d = a.PNT_2D::dist(b);
    EXPECT_EQ(count == 0, d > a.radius + b.radius || d < std::fabs(a.radius - b.radius));
    if (count == 0) continue;
    EXPECT_LT(a.dist(ab.p1) + a.dist(ab.p2) + b.dist(ab.p1) + b.dist(ab.p2), 1e-8);
    EXPECT_LT(ab.p1.dist(ba.p2) + ab.p2.dist(ba.p1), 1e-8);
  }
}

TEST(Circle, CreatePassesThroughItsPoints) {
  RandomCircles random(24);
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const double size = std::pow(10, random.real(-6, 6));
    PNT_3D p[3];
    for (PNT_3D& q : p) q.set(size * random.real(-1, 1), size * random.real(-1, 1), size);
    CIRCLE_3D circle;
    ASSERT_TRUE(circle.Create(p[0], p[1], p[2]));
    EXPECT_EQ(circle.z, size);
    for (const PNT_3D& q : p) EXPECT_LT(circle.dist(q), 1e-10 * circle.radius + 1e-12 * size);
  }
}

TEST(Circle, NoCircleThroughPointsInLine) {
  const PNT_3D cases[][3] = {
      {{0, 0, 0}, {1, 1, 0}, {3, 3, 0}},
      {{0, 0, 0}, {0, 0, 0}, {3, 3, 0}},
      {{0, 0, 0}, {3, 3, 0}, {0, 0, 0}},
      {{5, 5, 5}, {5, 5, 5}, {5, 5, 5}},
      {{0, 0, 0}, {1e6, 0, 0}, {2e6, 1e-7, 0}},
      {{0, 0, 0}, {0, 1e-7, 0}, {1e6, 0, 0}},  // a corner, but negligible beside the longest side
      {{0, 0, 0}, {kNan, 0, 0}, {1, 1, 0}},
      {{0, 0, 0}, {1e200, 0, 0}, {0, 1e200, 0}},  // squares overflow
  };
  for (const auto& p : cases) {
    CIRCLE_3D circle(1, 2, 3, 4);
    EXPECT_FALSE(circle.Create(p[0], p[1], p[2]));
    EXPECT_TRUE(circle == CIRCLE_3D(1, 2, 3, 4));
  }
}

TEST(Circle, ExtentsAndDistanceUseTheMagnitudeOfTheRadius) {
  RECT_3D box;
  for (const double r : {2.0, -2.0}) {
    const CIRCLE_3D circle(1, 1, 5, r);
    circle.calc_bdry(box);
    EXPECT_TRUE(box == RECT_3D(-1, -1, 5, 3, 3, 5));
    EXPECT_EQ(circle.dist(PNT_2D(1, 1)), 2);
    EXPECT_EQ(circle.dist(PNT_2D(4, 5)), 3);
  }
}

TEST(Circle, ScaleMultipliesTheRadiusAsItStands) {
  CIRCLE_3D circle(1, 0, 2, 3);
  circle.scale(PNT_3D(0, 0, 0), -2);
  EXPECT_TRUE(circle == CIRCLE_3D(-2, 0, -4, -6));
  EXPECT_TRUE(circle.getPntAngle(0) == PNT_3D(-8, 0, -4));
}

}  // namespace
