// Polyline segments with a bulge, as arcs and as chords.

#include "support/test.h"

using vek0::detail::kPi;

namespace {

std::vector<PNT_3D> chordsOf(const PNT_3D& p0, const PNT_3D& p1, double bulge) {
  std::vector<PNT_3D> points;
  bulgePoints(p0, p1, bulge, points);
  return points;
}

TEST(Bulge, ArcOfASegment) {
  const double s = std::sqrt(0.5);
  const struct {
    const char* name;
    double bulge;
    ARC_3D arc;
  } cases[] = {
      {"half circle to the right of the way", 1, {1, 0, 3, 1, kPi, 0}},
      {"half circle to its left", -1, {1, 0, 3, 1, 0, kPi}},
      {"quarter turning left", std::sqrt(2) - 1, {1, 1, 3, 2 * s, kPi * 5 / 4, kPi * 7 / 4}},
      {"quarter turning right", 1 - std::sqrt(2), {1, -1, 3, 2 * s, kPi / 4, kPi * 3 / 4}},
      {"three quarters turning left", std::sqrt(2) + 1, {1, -1, 3, 2 * s, kPi * 3 / 4, kPi / 4}},
  };
  for (const auto& t : named(cases)) {
    ARC_3D arc;
    ASSERT_TRUE(createArcFromBulge(PNT_3D(0, 0, 2), PNT_3D(2, 0, 4), t.bulge, arc));
    EXPECT_NEAR(arc.PNT_3D::dist(t.arc.x, t.arc.y, t.arc.z), 0, 1e-15);
    EXPECT_NEAR(arc.radius, t.arc.radius, 1e-15);
    EXPECT_NEAR(arc.startAngle, t.arc.startAngle, 1e-14);
    EXPECT_NEAR(arc.endAngle, t.arc.endAngle, 1e-14);
  }
}

// Half circles are common (slots, doughnuts) and must be exact.
TEST(Bulge, HalfCirclesAreExact) {
  ARC_3D arc;
  ASSERT_TRUE(createArcFromBulge(PNT_3D(0, 0, 2), PNT_3D(2, 0, 4), 1, arc));
  EXPECT_TRUE(arc == ARC_3D(1, 0, 3, 1, kPi, 0));
  ASSERT_TRUE(createArcFromBulge(PNT_3D(0, 0, 2), PNT_3D(2, 0, 4), -1, arc));
  EXPECT_TRUE(arc == ARC_3D(1, 0, 3, 1, 0, kPi));
}

TEST(Bulge, StraightSegments) {
  for (const Row& t : rows()) {
    ARC_3D arc(1, 2, 3, 4, 5, 6);
    EXPECT_FALSE(createArcFromBulge(t.point("p0"), t.point("p1"), t.real("bulge"), arc));
    EXPECT_TRUE(arc == ARC_3D(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(chordsOf(t.point("p0"), t.point("p1"), t.real("bulge")).size(), 1u);
  }
}

// From the flattest valid arc to almost full circles, anywhere and of any size.
TEST(Bulge, ArcEndsAtThePointsAndHasTheAngle) {
  std::mt19937 random(41);
  std::uniform_real_distribution<double> real(-1, 1);
  for ([[maybe_unused]] const int i : rounds(2000)) {
    const double size = std::pow(10, 4 * real(random)), bulge = std::pow(10, 2 * real(random));
    const PNT_3D p0(size * real(random), size * real(random), 0);
    const PNT_3D p1(size * real(random), size * real(random), 0);
    ARC_3D left, right;
    ASSERT_TRUE(createArcFromBulge(p0, p1, bulge, left));
    ASSERT_TRUE(createArcFromBulge(p0, p1, -bulge, right));
    const double near = 1e-9 * (left.radius + size);
    PNT_3D ps, pe;
    left.end_points(ps, pe);
    EXPECT_LT(PNT_2D(ps).dist(p0) + PNT_2D(pe).dist(p1), near);
    right.end_points(ps, pe);
    EXPECT_LT(PNT_2D(ps).dist(p1) + PNT_2D(pe).dist(p0), near);
    double s = 0, e = 0;
    left.getSafeAngles(s, e);
    EXPECT_NEAR(std::tan((e - s) / 4), bulge, 1e-6 * (1 + bulge * bulge));
    // Traversed backward, the same arc has the opposite bulge.
    ARC_3D back;
    ASSERT_TRUE(createArcFromBulge(p1, p0, -bulge, back));
    EXPECT_LT(PNT_2D(left).dist(back), near);
  }
}

TEST(ArcChords, CountForAngles) {
  for (const Row& t : rows()) EXPECT_EQ(arcChords(t.real("angle")), t.whole("count"));
  // The smallest number of chords with an error of at most 1e-4 radii.
  for (const double angle : {0.5, 1.0, 3.0, 6.0}) {
    EXPECT_LE(1 - std::cos(angle / arcChords(angle) / 2), 1e-4);
    EXPECT_GT(1 - std::cos(angle / (arcChords(angle) - 1) / 2), 1e-4);
  }
}

// Compares with points computed from their angles about the center, in long double.
TEST(BulgePoints, LieOnTheArcAtEqualSteps) {
  std::mt19937 random(42);
  std::uniform_real_distribution<double> real(-1, 1);
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const double size = std::pow(10, 4 * real(random)), sign = real(random) < 0 ? -1 : 1;
    const double bulge = sign * std::pow(10, 3 * real(random));
    const PNT_3D p0(size * real(random), size * real(random), real(random));
    const PNT_3D p1(size * real(random), size * real(random), real(random));
    const std::vector<PNT_3D> points = chordsOf(p0, p1, bulge);
    const long double angle = 4 * std::atan(static_cast<long double>(bulge));
    ASSERT_EQ(points.size(), static_cast<std::size_t>(arcChords(static_cast<double>(angle))));
    EXPECT_TRUE(points.back() == p1);
    const long double hx = (static_cast<long double>(p1.x) - p0.x) / 2;
    const long double hy = (static_cast<long double>(p1.y) - p0.y) / 2;
    const long double d = (1 / static_cast<long double>(bulge) - bulge) / 2;
    const long double cx = p0.x + hx - d * hy, cy = p0.y + hy + d * hx;
    const long double rx = p0.x - cx, ry = p0.y - cy, radius = std::hypot(rx, ry);
    for (std::size_t k = 0; k + 1 < points.size(); ++k) {
      const long double share = static_cast<long double>(k + 1) / points.size();
      const long double c = std::cos(angle * share), s = std::sin(angle * share);
      const long double error =
          std::hypot(cx + rx * c - ry * s - points[k].x, cy + rx * s + ry * c - points[k].y);
      ASSERT_LT(error, 1e-12L * (radius + size)) << "point " << k;
      EXPECT_NEAR(points[k].z, std::lerp(p0.z, p1.z, static_cast<double>(share)), 1e-15);
    }
  }
}

// The center of an arc of 1e-7 radians is 1e7 chord lengths away; its points must not jump.
TEST(BulgePoints, FlatArcsKeepTheirDigits) {
  const std::vector<PNT_3D> points = chordsOf(PNT_3D(0, 0, 0), PNT_3D(2, 0, 0), 2.5e-8);
  ASSERT_EQ(points.size(), 2u);
  EXPECT_NEAR(points[0].x, 1, 1e-15);
  EXPECT_NEAR(points[0].y, -2.5e-8, 1e-22);
}

TEST(BulgePoints, AppendToWhatIsThere) {
  std::vector<PNT_3D> points{PNT_3D(0, 0, 0)};
  bulgePoints(points.back(), PNT_3D(1, 0, 0), 0, points);
  bulgePoints(points.back(), PNT_3D(2, 0, 0), 1, points);
  ASSERT_EQ(points.size(), 114u);
  EXPECT_LT(points[57].y, -0.499);
}

}  // namespace
