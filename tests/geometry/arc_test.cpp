#include "support/test.h"

using vek0::detail::kPi;
using vek0::detail::kTwoPi;

namespace {

double degrees(double d) { return d * kPi / 180; }

/// An arc of radius 1 about the origin, angles in degrees.
ARC_3D arcOf(double start, double end) { return {0, 0, 0, 1, degrees(start), degrees(end)}; }

class Randoms {
 public:
  explicit Randoms(unsigned seed) : m_random(seed) {}
  double real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(m_random);
  }
  PNT_3D point() { return {real(-9, 9), real(-9, 9), real(-9, 9)}; }
  ARC_3D arc() {
    return {real(-9, 9), real(-9, 9), 0, real(0.5, 9), real(0, kTwoPi), real(0, kTwoPi)};
  }

 private:
  std::mt19937 m_random;
};

TEST(Arc, AnglesAreNormalised) {
  for (const Row& t : rows()) {
    EXPECT_DOUBLE_EQ(ARC_3D(0, 0, 0, 1, t.real("given"), 0).startAngle, t.real("stored"));
    EXPECT_DOUBLE_EQ(ARC_3D(0, 0, 0, 1, 0, t.real("given")).endAngle, t.real("stored"));
  }
}

// A loop that adds full turns would not terminate here.
TEST(Arc, HugeAnglesAreNormalisedAtOnce) {
  for (const double angle :
       named<double>({1e9, -1e9, 1e17, -1e300, std::numeric_limits<double>::max()})) {
    const double a = ARC_3D::normal(angle);
    EXPECT_GE(a, 0);
    EXPECT_LT(a, kTwoPi);
    EXPECT_NEAR(std::sin(a), std::sin(std::fmod(angle, kTwoPi)), 1e-9);
  }
}

TEST(Arc, SafeAnglesSweepForward) {
  double s = 0, e = 0;
  arcOf(350, 10).getSafeAngles(s, e);
  EXPECT_DOUBLE_EQ(s, degrees(350));
  EXPECT_DOUBLE_EQ(e, degrees(370));
  arcOf(30, 30).getSafeAngles(s, e);
  EXPECT_DOUBLE_EQ(e - s, kTwoPi);
  arcOf(30, 40).getSafeAngles(s, e);
  EXPECT_DOUBLE_EQ(e - s, degrees(10));
}

TEST(Arc, AnglesInAndOutOfTheSweep) {
  for (const Row& t : rows())
    EXPECT_EQ(arcOf(t.real("from"), t.real("to")).angle_in_arc(t.real("radians")), t.flag("in"));
}

TEST(Arc, Extents) {
  const Definitions names{{"h", std::sqrt(0.5)}};
  for (const Row& t : rowsWith(names)) {
    RECT_3D box;
    arcOf(t.real("from"), t.real("to")).calc_bdry(box);
    EXPECT_NEAR(box.min.dist(t.rect("box").min), 0, 1e-15);
    EXPECT_NEAR(box.max.dist(t.rect("box").max), 0, 1e-15);
  }
}

TEST(Arc, ExtentsAreThoseOfManyOfItsPoints) {
  Randoms random(31);
  for ([[maybe_unused]] const int i : rounds(300)) {
    const ARC_3D arc = random.arc();
    RECT_3D box, sampled;
    arc.calc_bdry(box);
    sampled.initRegion();
    double s = 0, e = 0;
    arc.getSafeAngles(s, e);
    for (int k = 0; k <= 2000; ++k) sampled.updateRegion(arc.getPntAngle(s + (e - s) * k / 2000));
    // With 2000 steps, an extreme is missed by at most r * (pi / 2000)^2 / 2.
    EXPECT_LT(box.min.dist(sampled.min) + box.max.dist(sampled.max), 1e-4);
  }
}

TEST(Arc, RotateTurnsItsEnds) {
  Randoms random(32);
  for ([[maybe_unused]] const int i : rounds(300)) {
    ARC_3D arc = random.arc();
    const PNT_3D center = random.point();
    const double angle = random.real(-20, 20);
    PNT_3D ends[2], after[2];
    arc.end_points(ends[0], ends[1]);
    arc.rotate(center, angle);
    arc.end_points(after[0], after[1]);
    for (int k = 0; k < 2; ++k) {
      ends[k].rotate(center, angle);
      EXPECT_LT(ends[k].dist(after[k]), 1e-12 * 100);
    }
    EXPECT_EQ(arc.startAngle, ARC_3D::normal(arc.startAngle));
    EXPECT_EQ(arc.endAngle, ARC_3D::normal(arc.endAngle));
  }
}

TEST(Arc, CreatePassesThroughTheMiddleAndIsCounterClockwise) {
  Randoms random(33);
  for ([[maybe_unused]] const int i : rounds(500)) {
    const PNT_3D a = random.point(), b = random.point(), c = random.point();
    ARC_3D arc, back;
    ASSERT_TRUE(arc.Create(a, b, c));
    ASSERT_TRUE(back.Create(c, b, a));
    EXPECT_EQ(arc.z, a.z);
    EXPECT_TRUE(arc.angle_in_arc(arc.angle(b)));
    EXPECT_LT(arc.dist(b), 1e-8);
    EXPECT_LT(arc.dist_endpoints(a) + arc.dist_endpoints(c), 1e-8);
    EXPECT_NEAR(arc.startAngle, back.startAngle, 1e-8);
    EXPECT_NEAR(arc.endAngle, back.endAngle, 1e-8);
  }
  ARC_3D arc(1, 2, 3, 4, 5, 6);
  EXPECT_FALSE(arc.Create(PNT_3D(0, 0, 0), PNT_3D(1, 1, 0), PNT_3D(2, 2, 0)));
  EXPECT_TRUE(arc == ARC_3D(1, 2, 3, 4, 5, 6));
}

TEST(Arc, DistanceIsThatOfTheNearestPoint) {
  Randoms random(34);
  for ([[maybe_unused]] const int i : rounds(200)) {
    const ARC_3D arc = random.arc();
    const PNT_2D p = random.point();
    double s = 0, e = 0, nearest = kInf;
    arc.getSafeAngles(s, e);
    for (int k = 0; k <= 2000; ++k)
      nearest = std::fmin(nearest, p.dist(arc.getPntAngle(s + (e - s) * k / 2000)));
    EXPECT_NEAR(arc.dist(p), nearest, 0.03);
    EXPECT_LE(arc.dist(p), nearest + 1e-9);
    EXPECT_LE(arc.dist(p), arc.dist_endpoints(p) + 1e-9);
  }
}

TEST(Arc, LinesMeetOnlyThePartThatIsThere) {
  const ARC_3D upper = arcOf(0, 180);
  for (const Row& t : rows()) {
    PNT_2D p1(0, 0), p2(0, 0);
    EXPECT_EQ(upper.intersect(t.shape<LINE_2D>("line"), p1, p2), t.whole<long>("count"));
    EXPECT_EQ(upper.intersect(t.shape<LINE_2D>("line")), t.whole<long>("count"));
    if (t.whole<long>("count") > 0) EXPECT_NEAR(p1.dist(t.point("first")), 0, 1e-12);
    EXPECT_EQ(upper.intersect(IMP_LINE_2D(t.shape<LINE_2D>("line")), p1, p2),
              t.whole<long>("count"));
    if (t.whole<long>("count") > 0) EXPECT_NEAR(upper.dist(p1), 0, 1e-12);
    double t1 = 0, t2 = 0;
    EXPECT_EQ(upper.intersect(PAR_LINE_2D(t.shape<LINE_2D>("line")), t1, t2),
              t.whole<long>("count"));
    PAR_LINE_2D(t.shape<LINE_2D>("line")).calcPt(t1, p1);
    if (t.whole<long>("count") > 0) EXPECT_NEAR(p1.dist(t.point("first")), 0, 1e-12);
  }
}

/// How often the arc crosses `side` = 0, counted by samples; -1 if a crossing is too close to an
/// end of the arc, or to another crossing, to be certain.
template <class Side>
int sampledCrossings(const ARC_3D& arc, Side side) {
  constexpr int kSteps = 2000;
  double s = 0, e = 0;
  arc.getSafeAngles(s, e);
  int count = 0, last = 0;
  double before = side(arc.getPntAngle(s));
  for (int k = 1; k <= kSteps; ++k) {
    const double now = side(arc.getPntAngle(s + (e - s) * k / kSteps));
    if ((before < 0) != (now < 0)) {
      if (k < 20 || k > kSteps - 20 || (count > 0 && k < last + 20)) return -1;
      ++count;
      last = k;
    }
    before = now;
  }
  return count;
}

TEST(Arc, NumberOfCommonPointsIsThatOfSampledSides) {
  Randoms random(36);
  int sure = 0, twice = 0;
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const ARC_3D arc = random.arc(), other = random.arc();
    const IMP_LINE_2D line(random.point(), random.point());
    PNT_2D p1(0, 0), p2(0, 0);
    const bool touches =
        std::fabs(std::fabs(line.eval(arc)) / std::hypot(line.a, line.b) - arc.radius) < 1e-3;
    const int ofLine = sampledCrossings(arc, [&](const PNT_2D& p) { return line.eval(p); });
    if (ofLine >= 0 && !touches) {
      ++sure;
      twice += ofLine == 2;
      EXPECT_EQ(arc.intersect(line, p1, p2), ofLine);
    }
    const CIRCLE_3D& circle = other;
    const double d = arc.PNT_2D::dist(circle);
    const bool kisses = std::fabs(d - arc.radius - circle.radius) < 1e-3 ||
                        std::fabs(d - std::fabs(arc.radius - circle.radius)) < 1e-3;
    const int ofCircle = sampledCrossings(
        arc, [&](const PNT_2D& p) { return circle.PNT_2D::dist(p) - circle.radius; });
    if (ofCircle >= 0 && !kisses) {
      ++sure;
      twice += ofCircle == 2;
      EXPECT_EQ(arc.intersect(circle, p1, p2), ofCircle);
    }
  }
  EXPECT_GT(sure, 1000);
  EXPECT_GT(twice, 100);
}

TEST(Arc, ArcsMeetInPointsOfBoth) {
  Randoms random(35);
  int counts[3] = {};
  for ([[maybe_unused]] const int i : rounds(3000)) {
    const ARC_3D a = random.arc(), b = random.arc();
    PNT_2D p1(0, 0), p2(0, 0), q1(0, 0), q2(0, 0);
    const long count = a.intersect(b, p1, p2);
    ASSERT_EQ(b.intersect(a, q1, q2), count);
    ++counts[count];
    if (count > 0) EXPECT_LT(a.dist(p1) + b.dist(p1), 1e-8);
    if (count == 2) EXPECT_LT(a.dist(p2) + b.dist(p2), 1e-8);
    if (count == 1) EXPECT_LT(p1.dist(q1), 1e-8);
    const long withCircle = a.intersect(static_cast<const CIRCLE_3D&>(b), q1, q2);
    EXPECT_GE(withCircle, count);
  }
  for (const int n : counts) EXPECT_GT(n, 50);
}

}  // namespace
