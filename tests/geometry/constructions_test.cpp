#include "support/test.h"

using vek0::detail::kPi;

namespace {

struct Random {
  explicit Random(unsigned seed) : engine(seed) {}
  double operator()(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine);
  }
  PNT_3D point() { return {(*this)(-9, 9), (*this)(-9, 9), (*this)(-9, 9)}; }
  CIRCLE_3D circle() { return {(*this)(-9, 9), (*this)(-9, 9), 0, (*this)(0.1, 6)}; }
  std::mt19937 engine;
};

TEST(Constructions, WhatIsNotThereLeavesTheOutputAlone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  PNT_2D out(kUntouched, kUntouched), other(kUntouched, kUntouched);
  CIRCLE_3D circle(kUntouched, 0, 0, 0);
  EXPECT_FALSE(pntPerp(PNT_2D(1, 1), LINE_2D(2, 2, 2, 2), out));
  EXPECT_FALSE(pntPerp(PNT_2D(nan, 1), LINE_2D(0, 0, 1, 0), out));
  EXPECT_FALSE(CalcolaPuntoIntersezione(LINE_2D(0, 0, 1, 2), LINE_2D(1, 0, 2, 2), out));
  EXPECT_FALSE(pntPerp(PNT_2D(1, 1), CIRCLE_3D(1, 1, 0, 5), out));
  EXPECT_FALSE(pntNearest(PNT_2D(nan, 1), CIRCLE_3D(1, 1, 0, 5), out));
  EXPECT_EQ(pntTang(PNT_2D(1, 2), CIRCLE_3D(1, 1, 0, 5), out, other), 0);
  EXPECT_EQ(pntTang(PNT_2D(nan, 2), CIRCLE_3D(1, 1, 0, 5), out, other), 0);
  EXPECT_FALSE(CreateCircle(PNT_3D(0, 0, 0), 0, circle));
  EXPECT_FALSE(CreateCircle(PNT_3D(0, 0, 0), nan, circle));
  EXPECT_FALSE(CreateCircle(PNT_3D(1, 1, 0), PNT_3D(1, 1, 0), circle));
  EXPECT_FALSE(CreateCircle(PNT_3D(0, 0, 0), PNT_3D(1, 1, 0), PNT_3D(2, 2, 0), circle));
  const EDGE_3D low(PNT_3D(0, 0, 0), PNT_3D(9, 0, 0)), high(PNT_3D(0, 9, 0), PNT_3D(9, 9, 0));
  EXPECT_FALSE(CreateCircle(low, high, 1, PNT_2D(0, 0), PNT_2D(0, 9), circle));
  EXPECT_EQ(out.x, kUntouched);
  EXPECT_EQ(circle.x, kUntouched);
  EXPECT_EQ(circle.radius, 0);
}

TEST(Constructions, FeetArePerpendicularAndNearestIsClamped) {
  Random random(1);
  for ([[maybe_unused]] const int round : rounds(1000)) {
    const PNT_2D p = random.point();
    const LINE_2D line(random.point(), random.point());
    PNT_2D foot(0, 0), near(0, 0);
    ASSERT_TRUE(pntPerp(p, line, foot));
    const PNT_2D d = line.p2 - line.p1, off = p - foot;
    EXPECT_NEAR(d.x * off.x + d.y * off.y, 0, 1e-10);
    const LINE_2D across(p.x, p.y, p.x - d.y, p.y + d.x);
    ASSERT_TRUE(CalcolaPuntoIntersezione(line, across, near));
    EXPECT_NEAR(near.dist(foot), 0, 1e-10);
    ASSERT_TRUE(pntNearest(p, line, near));
    EXPECT_GE(p.dist(near) + 1e-12, p.dist(foot));
    EXPECT_LE(p.dist(near), std::min(p.dist(line.p1), p.dist(line.p2)) + 1e-12);
    const ARC_3D arc(1, 2, 0, random(0.1, 5), random(0, 6), random(0, 6));
    ASSERT_TRUE(pntNearest(p, arc, near));
    EXPECT_NEAR(p.dist(near), arc.dist(p), 1e-12);
    ASSERT_TRUE(pntPerp(p, arc, foot));
    EXPECT_NEAR(arc.PNT_2D::dist(foot), arc.radius, 1e-12);
  }
}

TEST(Constructions, CirclesTouchWhatTheyWereMadeFrom) {
  Random random(2);
  for ([[maybe_unused]] const int round : rounds(1000)) {
    const PNT_3D a = random.point(), b = random.point();
    CIRCLE_3D circle;
    ASSERT_TRUE(CreateCircle(a, b, circle));
    EXPECT_NEAR(circle.dist(a), 0, 1e-12);
    EXPECT_NEAR(circle.dist(b), 0, 1e-12);
    EXPECT_EQ(circle.z, a.z);
    const EDGE_3D line(a, b), arc{random.circle()};
    const double radius = random(0.1, 5);
    PNT_2D onLine(0, 0), onArc(0, 0);
    if (!CreateCircle(line, arc, radius, a, arc.p1, circle, &onLine, &onArc)) continue;
    EXPECT_NEAR(circle.dist(onLine), 0, 1e-9);
    EXPECT_NEAR(circle.dist(onArc), 0, 1e-9);
    EXPECT_NEAR(arc.center.dist(onArc), arc.radius, 1e-9);
    EXPECT_NEAR(std::fabs(LINE_2D(a, b).dist(circle)), radius, 1e-9);
    const double apart = arc.center.dist(circle);
    EXPECT_NEAR(std::min(std::fabs(apart - arc.radius - radius),
                         std::fabs(apart - std::fabs(arc.radius - radius))),
                0, 1e-9);
  }
}

// Four circles of radius 1 touch two crossing lines; the picks select one of them.
TEST(Constructions, PicksChooseTheCornerOfTheCircle) {
  const EDGE_3D x(PNT_3D(-9, 0, 0), PNT_3D(9, 0, 0)), y(PNT_3D(0, -9, 0), PNT_3D(0, 9, 0));
  for (const double sx : {-1.0, 1.0}) {
    for (const double sy : {-1.0, 1.0}) {
      CIRCLE_3D circle;
      ASSERT_TRUE(CreateCircle(x, y, 1, PNT_2D(3 * sx, 0), PNT_2D(0, 3 * sy), circle));
      EXPECT_NEAR(circle.PNT_2D::dist(sx, sy), 0, 1e-12);
    }
  }
}

TEST(Constructions, TangentsFromAPointAreSquareToTheRadius) {
  Random random(3);
  for ([[maybe_unused]] const int round : rounds(1000)) {
    const CIRCLE_3D circle = random.circle();
    const PNT_2D p = random.point();
    PNT_2D t[2] = {PNT_2D(0, 0), PNT_2D(0, 0)};
    const int count = pntTang(p, circle, t[0], t[1]);
    EXPECT_EQ(count, circle.PNT_2D::dist(p) > circle.radius ? 2 : 0);
    for (int i = 0; i < count; ++i) {
      EXPECT_NEAR(circle.dist(t[i]), 0, 1e-12);
      EXPECT_NEAR((t[i].x - p.x) * (t[i].x - circle.x) + (t[i].y - p.y) * (t[i].y - circle.y), 0,
                  1e-10);
    }
    EXPECT_TRUE(count != 2 || LINE_2D(p, circle).ptLeftSide(t[0]));
  }
  PNT_2D t1(0, 0), t2(0, 0);
  EXPECT_EQ(pntTang(PNT_2D(0, 2), ARC_3D(0, 0, 0, 1, 0, kPi / 2), t1, t2), 1);
  EXPECT_NEAR(t1.dist(std::sqrt(0.75), 0.5), 0, 1e-12);
  EXPECT_EQ(pntTang(PNT_2D(1, 0), CIRCLE_3D(0, 0, 0, 1), t1, t2), 1);
  EXPECT_TRUE(t1 == PNT_2D(1, 0));
}

TEST(Constructions, CommonTangentsTouchBothCircles) {
  Random random(4);
  for ([[maybe_unused]] const int round : rounds(1000)) {
    const CIRCLE_3D a = random.circle(), b = random.circle();
    LINE_2D lines[4];
    const int count = lineTang(a, b, lines);
    const double d = a.PNT_2D::dist(b);
    const int expected = d < std::fabs(a.radius - b.radius) ? 0 : d < a.radius + b.radius ? 2 : 4;
    EXPECT_EQ(count, expected);
    for (int i = 0; i < count; ++i) {
      EXPECT_NEAR(a.dist(lines[i].p1), 0, 1e-9);
      EXPECT_NEAR(b.dist(lines[i].p2), 0, 1e-9);
      EXPECT_NEAR(std::fabs(lines[i].dist(a)), a.radius, 1e-6);
      EXPECT_NEAR(std::fabs(lines[i].dist(b)), b.radius, 1e-6);
    }
  }
  LINE_2D lines[4];
  EXPECT_EQ(lineTang(CIRCLE_3D(0, 0, 0, 1), CIRCLE_3D(3, 0, 0, 2), lines), 3);
  EXPECT_TRUE(lines[2].p1 == PNT_2D(1, 0) && lines[2].p2 == PNT_2D(1, 0));
  EXPECT_EQ(lineTang(CIRCLE_3D(0, 0, 0, 1), CIRCLE_3D(0, 0, 0, 1), lines), 0);
}

}  // namespace
