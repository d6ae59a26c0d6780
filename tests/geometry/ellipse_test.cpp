// Elliptical arcs: points, extents and chords.

#include "support/test.h"

using vek0::detail::kPi;

namespace {

std::vector<PNT_3D> chordsOf(const ELLIPSE_3D& e, double error = kArcChordError) {
  std::vector<PNT_3D> points;
  e.chords(points, error);
  return points;
}

TEST(Ellipse, RefusesWhatIsNone) {
  for (const Row& t : rows()) {
    ELLIPSE_3D e;
    ASSERT_TRUE(e.set(PNT_3D(1, 2, 3), PNT_3D(4, 0, 0), 0.5, 0, 1));
    EXPECT_FALSE(e.set(t.point("center"), t.point("major"), t.real("ratio"), t.real("start"),
                       t.real("end"), t.point("normal")));
    EXPECT_TRUE(e.center == PNT_3D(1, 2, 3) && e.major == PNT_3D(4, 0, 0) && e.sweep == 1);
  }
}

TEST(Ellipse, SweepBetweenParameters) {
  for (const Row& t : rows()) {
    ELLIPSE_3D e;
    ASSERT_TRUE(e.set(PNT_3D(0, 0, 0), PNT_3D(1, 0, 0), 0.5, t.real("start"), t.real("end")));
    EXPECT_NEAR(e.sweep, t.real("sweep"), 1e-12);
    EXPECT_EQ(e.isFullTurn(), t.real("sweep") == 2 * kPi);
  }
}

// With ratio 1 it equals the circular arc in ends, extents, number of chords and points.
TEST(Ellipse, OfRatioOneIsTheArc) {
  std::mt19937 random(51);
  std::uniform_real_distribution<double> real(-1, 1);
  for ([[maybe_unused]] const int i : rounds(500)) {
    const ARC_3D arc(real(random), real(random), real(random), 2 + real(random), 7 * real(random),
                     7 * real(random));
    const double turn = 4 * real(random), r = arc.radius;  // direction of the major axis
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

// In any plane, points satisfy the equation, the box is that of many samples, and chords stay
// within tolerance.
TEST(Ellipse, LawsInSpace) {
  std::mt19937 random(52);
  std::uniform_real_distribution<double> real(-1, 1);
  for ([[maybe_unused]] const int i : rounds(200)) {
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
  for (const Row& t : rows()) EXPECT_EQ(arcChords(2 * kPi, t.real("error")), t.whole("count"));
}

}  // namespace
