// Elliptical arcs: points, extents and chords.

#include "vek0core/geometry/ellipse.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

std::vector<PNT_3D> chordsOf(const ELLIPSE_3D& e, double error = kArcChordError) {
  std::vector<PNT_3D> points;
  e.chords(points, error);
  return points;
}

TEST(Ellipse, RefusesWhatIsNone) {
  const struct {
    const char* name;
    PNT_3D center, major;
    double ratio, start, end;
    PNT_3D normal;
  } cases[] = {
      {"no major axis", {0, 0, 0}, {0, 0, 0}, 0.5, 0, 1, {0, 0, 1}},
      {"ratio 0", {0, 0, 0}, {1, 0, 0}, 0, 0, 1, {0, 0, 1}},
      {"negative ratio", {0, 0, 0}, {1, 0, 0}, -0.5, 0, 1, {0, 0, 1}},
      {"ratio is not a number", {0, 0, 0}, {1, 0, 0}, kNan, 0, 1, {0, 0, 1}},
      {"endless ratio", {0, 0, 0}, {1, 0, 0}, kInf, 0, 1, {0, 0, 1}},
      {"minor axis vanishes", {0, 0, 0}, {1e-200, 0, 0}, 1e-200, 0, 1, {0, 0, 1}},
      {"centre not a number", {0, kNan, 0}, {1, 0, 0}, 0.5, 0, 1, {0, 0, 1}},
      {"centre out of reach", {1e200, 0, 0}, {1, 0, 0}, 0.5, 0, 1, {0, 0, 1}},
      {"endless parameter", {0, 0, 0}, {1, 0, 0}, 0.5, 0, kInf, {0, 0, 1}},
      {"start not a number", {0, 0, 0}, {1, 0, 0}, 0.5, kNan, 1, {0, 0, 1}},
      {"no normal", {0, 0, 0}, {1, 0, 0}, 0.5, 0, 1, {0, 0, 0}},
      {"major along the normal", {0, 0, 0}, {0, 0, 2}, 0.5, 0, 1, {0, 0, 1}},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    ELLIPSE_3D e;
    ASSERT_TRUE(e.set(PNT_3D(1, 2, 3), PNT_3D(4, 0, 0), 0.5, 0, 1));
    EXPECT_FALSE(e.set(t.center, t.major, t.ratio, t.start, t.end, t.normal));
    EXPECT_TRUE(e.center == PNT_3D(1, 2, 3) && e.major == PNT_3D(4, 0, 0) && e.sweep == 1);
  }
}

TEST(Ellipse, SweepBetweenParameters) {
  const struct {
    const char* name;
    double start, end, sweep;
  } cases[] = {
      {"forward", 1, 2, 1},
      {"across zero", 5, 1, 2 * kPi - 4},
      {"equal is the full turn", 1, 1, 2 * kPi},
      {"a turn apart", 0, 2 * kPi, 2 * kPi},
      {"a turn apart, backwards", 2 * kPi, 0, 2 * kPi},
      {"a turn apart, as in files", 0.523598776, 6.806784083, 2 * kPi},
      {"a turn and a half", 1, 1 + 3 * kPi, kPi},
      {"a turn, rounded up", 0, 6.2832, 2 * kPi},
      {"negative, as clockwise ones", -kPi, -kPi / 2, kPi / 2},
      {"far out", 1e300, 1e300, 2 * kPi},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    ELLIPSE_3D e;
    ASSERT_TRUE(e.set(PNT_3D(0, 0, 0), PNT_3D(1, 0, 0), 0.5, t.start, t.end));
    EXPECT_NEAR(e.sweep, t.sweep, 1e-12);
    EXPECT_EQ(e.isFullTurn(), t.sweep == 2 * kPi);
  }
}

// With ratio 1 it equals the circular arc: ends, extents, number of chords, points.
TEST(Ellipse, OfRatioOneIsTheArc) {
  std::mt19937 random(51);
  std::uniform_real_distribution<double> real(-1, 1);
  for (int i = 0; i < 500; ++i) {
    SCOPED_TRACE(testing::Message() << "seed 51, round " << i);
    const ARC_3D arc(real(random), real(random), real(random), 2 + real(random), 7 * real(random),
                     7 * real(random));
    const double turn = 4 * real(random), r = arc.radius;  // where the major axis points
    ELLIPSE_3D e;
    ASSERT_TRUE(e.set(arc, PNT_3D(r * std::cos(turn), r * std::sin(turn), 0), 1,
                      arc.startAngle - turn, arc.endAngle - turn));
    PNT_3D as, ae, es, ee;
    arc.end_points(as, ae);
    e.end_points(es, ee);
    EXPECT_LT(as.dist(es) + ae.dist(ee), 1e-13);
    RECT_3D abox, ebox;
    arc.calc_bdry(abox);
    e.calc_bdry(ebox);
    EXPECT_LT(abox.min.dist(ebox.min) + abox.max.dist(ebox.max), 1e-13);
    double s = 0, t = 0;
    arc.getSafeAngles(s, t);
    const std::vector<PNT_3D> points = chordsOf(e);
    ASSERT_EQ(points.size(), static_cast<std::size_t>(arcChords(t - s)) + 1);
    for (const PNT_3D& p : points) EXPECT_NEAR(p.PNT_2D::dist(arc), arc.radius, 1e-13);
  }
}

// In any plane: the equation holds, the box is that of many points, and chords stay near.
TEST(Ellipse, LawsInSpace) {
  std::mt19937 random(52);
  std::uniform_real_distribution<double> real(-1, 1);
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(testing::Message() << "seed 52, round " << i);
    const PNT_3D normal(real(random), real(random), real(random));
    const PNT_3D major = prodVect(normal, PNT_3D(real(random), real(random), real(random)));
    const double ratio = std::pow(10, -2 * std::fabs(real(random)));
    ELLIPSE_3D e;
    ASSERT_TRUE(e.set(PNT_3D(5, 6, 7), major, ratio, 4 * real(random), 4 * real(random), normal));
    const double a = std::hypot(major.x, major.y, major.z);
    EXPECT_NEAR(std::hypot(e.minor.x, e.minor.y, e.minor.z), ratio * a, 1e-14);
    const PNT_3D across = prodVect(e.major, e.minor);  // counterclockwise about the normal
    EXPECT_GT(across.x * normal.x + across.y * normal.y + across.z * normal.z, 0);

    RECT_3D box, sampled;
    e.calc_bdry(box);
    sampled.initRegion();
    const double error = std::pow(10, -1 - 3 * std::fabs(real(random)));
    const std::vector<PNT_3D> points = chordsOf(e, error);
    const auto n = static_cast<double>(points.size() - 1);
    for (int k = 0; k <= 2000; ++k) {
      const double share = k / 2000.0;
      const PNT_3D p = e.getPnt(e.startParam + e.sweep * share);
      sampled.updateRegion(p);
      const auto chord = std::min(static_cast<std::size_t>(share * n), points.size() - 2);
      const PNT_3D from = points[chord], to = points[chord + 1];
      const PNT_3D off = prodVect(p - from, to - from);
      EXPECT_LE(std::hypot(off.x, off.y, off.z), (error * a + 1e-14) * from.dist(to));
    }
    EXPECT_LT(box.min.dist(sampled.min) + box.max.dist(sampled.max), 1e-5 * a);
    EXPECT_TRUE(box.inside(sampled.min) || box.min.dist(sampled.min) < 1e-14);
    EXPECT_TRUE(points.front() == e.getPnt(e.startParam));
  }
}

TEST(Ellipse, FullTurnComesBackExactly) {
  ELLIPSE_3D e;
  ASSERT_TRUE(e.set(PNT_3D(1e6, -1e6, 0), PNT_3D(3, 4, 0), 0.25, 1, 1));
  const std::vector<PNT_3D> points = chordsOf(e);
  EXPECT_EQ(points.size(), 224u);
  EXPECT_TRUE(points.front() == points.back());
}

TEST(ArcChords, CountForOtherErrors) {
  const struct {
    const char* name;
    double error;
    int count;
  } cases[] = {
      {"usual", 1e-4, 223},         {"coarse", 0.01, 23},     {"a radius", 1, 2},
      {"more than a radius", 5, 2}, {"too fine", 1e-9, 1024}, {"lost in the numbers", 1e-30, 1024},
      {"nothing", 0, 1024},         {"negative", -1, 1024},   {"not a number", kNan, 1024},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(arcChords(2 * kPi, t.error), t.count);
  }
}

}  // namespace
