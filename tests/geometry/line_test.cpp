#include "support/test.h"

namespace {

/// Random points of the plane within 100 units, from a fixed seed.
class Points {
 public:
  explicit Points(unsigned seed) : m_random(seed) {}
  double real() { return m_real(m_random); }
  PNT_2D next() { return {real(), real()}; }

 private:
  std::mt19937 m_random;
  std::uniform_real_distribution<double> m_real{-100, 100};
};

TEST(Line, SegmentsMeetWithinTheirEnds) {
  const Definitions names{{"kUntouched", kUntouched}};
  for (const Row& t : rowsWith(names)) {
    PNT_2D at(kUntouched, kUntouched);
    EXPECT_EQ(t.shape<LINE_2D>("a").intersect(t.shape<LINE_2D>("b"), at), t.flag("meet"));
    EXPECT_EQ(t.shape<LINE_2D>("b").intersect(t.shape<LINE_2D>("a")), t.flag("meet"));
    EXPECT_NEAR(at.dist(t.point("at")), 0, 2e-13);
  }
}

TEST(Line, IntersectionAgreesWithBothImplicitLines) {
  Points points(5);
  int met = 0;
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const LINE_2D a(points.next(), points.next()), b(points.next(), points.next());
    PNT_2D at(0, 0), ofLines(0, 0);
    const bool meets = a.intersect(b, at);
    const bool separated =
        IMP_LINE_2D(a).sameSide(b.p1, b.p2) || IMP_LINE_2D(b).sameSide(a.p1, a.p2);
    EXPECT_NE(meets, separated);
    if (!meets) continue;
    ++met;
    EXPECT_NEAR(a.dist(at), 0, 1e-9);
    EXPECT_NEAR(b.dist(at), 0, 1e-9);
    EXPECT_TRUE(IMP_LINE_2D(a).intersect(IMP_LINE_2D(b), ofLines));
    EXPECT_NEAR(at.dist(ofLines), 0, 1e-9);
  }
  EXPECT_GT(met, 100);
}

TEST(Line, DistanceSignComesFromTheLineNotItsDirection) {
  const LINE_2D line(0, 1, 4, 1), back(4, 1, 0, 1);
  EXPECT_DOUBLE_EQ(line.dist(PNT_2D(7, 3)), 2);
  EXPECT_DOUBLE_EQ(back.dist(PNT_2D(7, 3)), 2);
  EXPECT_DOUBLE_EQ(back.dist(PNT_2D(-7, 0)), -1);
  EXPECT_EQ(line.dist(PNT_2D(2, 1)), 0);
  // A segment of length 0: the distance between two points.
  EXPECT_EQ(LINE_2D(1, 1, 1, 1 + 1e-13).dist(PNT_2D(4, 5)), 5);
}

TEST(Line, LeftSideInThePlaneTurnsWithTheSegmentAndInSpaceNotWhenVertical) {
  const PNT_3D left(-1, 5, 0);
  EXPECT_TRUE(LINE_2D(0, 0, 0, 9).ptLeftSide(left));
  EXPECT_FALSE(LINE_2D(0, 9, 0, 0).ptLeftSide(left));
  EXPECT_TRUE(LINE_3D(0, 0, 0, 0, 9, 0).ptLeftSide(left));
  EXPECT_TRUE(LINE_3D(0, 9, 0, 0, 0, 0).ptLeftSide(left));
  EXPECT_FALSE(LINE_3D(1e-9, 9, 0, 0, 0, 0).ptLeftSide(left));
  EXPECT_FALSE(LINE_2D(0, 0, 3, 3).ptLeftSide(PNT_2D(1, 1)));
}

TEST(Line, SpaceSegmentMovesWithItsEnds) {
  LINE_3D line(1, 0, 5, 3, 0, 7);
  PNT_3D middle;
  line.rotate(PNT_3D(0, 0, 99), 1.5707963267948966);
  line.move(PNT_3D(1, 1, 1));
  line.scale(PNT_3D(1, 0, 0), 2);
  line.ptMedio(middle);
  EXPECT_NEAR(middle.dist(1, 6, 14), 0, 1e-12);
  RECT_3D box;
  line.calc_bdry(box);
  EXPECT_NEAR(box.min.dist(1, 4, 12) + box.max.dist(1, 8, 16), 0, 1e-12);
}

TEST(ImpLine, NormalizeFixesTheSigns) {
  for (const Row& t : rows()) {
    IMP_LINE_2D line = t.shape<IMP_LINE_2D>("line");
    line.normalize();
    EXPECT_DOUBLE_EQ(line.a, t.shape<IMP_LINE_2D>("normal").a);
    EXPECT_DOUBLE_EQ(line.b, t.shape<IMP_LINE_2D>("normal").b);
    EXPECT_DOUBLE_EQ(line.c, t.shape<IMP_LINE_2D>("normal").c);
  }
}

TEST(ImpLine, ParallelsAndPerpendicularsKeepTheirPromises) {
  Points points(9);
  for ([[maybe_unused]] const int i : rounds(500)) {
    const IMP_LINE_2D line(points.next(), points.next());
    const PNT_2D p = points.next();
    const double d = points.real(), length = std::hypot(line.a, line.b);
    EXPECT_NEAR((IMP_LINE_2D(line, d).eval(p) - line.eval(p)) / length, -d, 1e-9);
    IMP_LINE_2D across;
    line.perpend(p, across);
    EXPECT_NEAR(across.eval(p), 0, 1e-9);
    EXPECT_NEAR(across.a * line.a + across.b * line.b, 0, 1e-9);
    PNT_2D unused(0, 0);
    EXPECT_FALSE(line.intersect(IMP_LINE_2D(line, d), unused));
    EXPECT_FALSE(line.intersect(line, unused));
  }
}

// The coefficients are not normalized: 1e-12 is relatively far less for a long line than for a
// short one.
TEST(ImpLine, NearlyEqualLinesDoNotMeet) {
  for (const Row& t : rows()) {
    const auto a = t.shape<IMP_LINE_2D>("a"), b = t.shape<IMP_LINE_2D>("b");
    PNT_2D at(0, 0);
    EXPECT_EQ(a.intersect(b, at), t.flag("meet"));
    EXPECT_EQ(b.intersect(a, at), t.flag("meet"));
  }
}

TEST(ImpLine, PerpendicularTurnsClockwise) {
  IMP_LINE_2D across;
  IMP_LINE_2D(2, 3, 7).perpend(PNT_2D(5, 11), across);
  EXPECT_EQ(across.a, 3);
  EXPECT_EQ(across.b, -2);
  EXPECT_EQ(across.c, 7);
}

TEST(ImpLine, NoSideForAPointOnTheLine) {
  const IMP_LINE_2D line(0, 1, -2);
  EXPECT_TRUE(line.sameSide(PNT_2D(0, 3), PNT_2D(9, 4)));
  EXPECT_FALSE(line.sameSide(PNT_2D(0, 3), PNT_2D(9, 1)));
  EXPECT_FALSE(line.sameSide(PNT_2D(0, 2), PNT_2D(9, 2)));
}

TEST(ParLine, CodesOfCommonPoints) {
  const PAR_LINE_2D ray(1, 1, 2, 0);
  double t = kUntouched, u = kUntouched;
  EXPECT_EQ(ray.intersect(PAR_LINE_2D(5, 1, -4, 0), t, u), 1);
  EXPECT_EQ(ray.intersect(PAR_LINE_2D(1, 2, 2, 0), t, u), 0);
  EXPECT_EQ(ray.intersect(IMP_LINE_2D(0, 1, -1), t), 1);
  EXPECT_EQ(ray.intersect(IMP_LINE_2D(0, 1, -2), t), 0);
  EXPECT_EQ(t, kUntouched);
  EXPECT_EQ(u, kUntouched);
  EXPECT_EQ(ray.intersect(PAR_LINE_2D(5, 0, 0, 4), t, u), 2);
  EXPECT_EQ(t, 2);
  EXPECT_EQ(u, 0.25);
  EXPECT_EQ(ray.intersect(IMP_LINE_2D(1, 0, -7), t), 2);
  EXPECT_EQ(t, 3);
  // Only an exact 0 counts as parallel, so the shortest direction still has an intersection.
  const PAR_LINE_2D brief(0, 0, 1e-13, 0);
  EXPECT_EQ(brief.intersect(IMP_LINE_2D(1, 0, -1), t), 2);
  EXPECT_DOUBLE_EQ(t, 1e13);
  EXPECT_EQ(brief.intersect(PAR_LINE_2D(1, 0, 0, 1), t, u), 2);
  EXPECT_DOUBLE_EQ(t, 1e13);
  EXPECT_EQ(u, 0);
}

TEST(ParLine, ParameterOfAPointOrItsProjection) {
  for (const Row& t : rows())
    EXPECT_DOUBLE_EQ(t.shape<PAR_LINE_2D>("line").calcParam(t.point("p")), t.real("t"));
  EXPECT_EQ(PAR_LINE_3D(1, 1, 1, 0, 0, 0).calcParam(PNT_3D(5, 5, 5)), 0);
  EXPECT_DOUBLE_EQ(PAR_LINE_3D(0, 0, 0, 0, 3, 4).calcParam(PNT_3D(7, 6, 8)), 2);
}

TEST(ParLine, ParameterAndPointUndoEachOther) {
  Points points(13);
  for ([[maybe_unused]] const int i : rounds(500)) {
    const PAR_LINE_2D line(points.next(), points.next());
    const double t = points.real();
    PNT_2D p(0, 0);
    line.calcPt(t, p);
    EXPECT_NEAR(line.calcParam(p), t, 1e-8);
    EXPECT_NEAR(line.dist(p), 0, 1e-9);
    const LINE_2D segment(line);
    EXPECT_NEAR(std::fabs(line.dist(PNT_2D(3, 4))), std::fabs(segment.dist(PNT_2D(3, 4))), 1e-9);
  }
}

TEST(ParLine, DistanceIsPositiveOnTheRight) {
  EXPECT_EQ(PAR_LINE_2D(0, 0, 0, 5).dist(PNT_2D(3, 1)), 3);
  EXPECT_EQ(PAR_LINE_2D(0, 0, 0, -5).dist(PNT_2D(3, 1)), -3);
  EXPECT_EQ(PAR_LINE_2D(0, 0, 0, 0).dist(PNT_2D(3, 4)), 5);
  EXPECT_TRUE(PAR_LINE_2D(0, 0, 0, 5).sameSide(PNT_2D(3, 1), PNT_2D(1, -9)));
  EXPECT_FALSE(PAR_LINE_2D(0, 0, 0, 5).sameSide(PNT_2D(3, 1), PNT_2D(0, 1)));
  const PAR_LINE_2D slope(4, 6, 1, 2);  // passes (1, 0)
  EXPECT_TRUE(slope.sameSide(PNT_2D(0, 0), PNT_2D(4, 7)));
  EXPECT_FALSE(slope.sameSide(PNT_2D(0, 0), PNT_2D(4, 5)));
}

TEST(ParLine, DirectionFromAnImplicitLineIsAUnitVectorOrNothing) {
  const PAR_LINE_2D line(IMP_LINE_2D(3, 4, 9), 1, 2);
  EXPECT_TRUE(PNT_2D(line.dx, line.dy) == PNT_2D(0.8, -0.6));
  EXPECT_TRUE(PAR_LINE_2D(IMP_LINE_2D(1e-12, -1e-12, 9), 1, 2).IsNull());
  PAR_LINE_2D tiny(0, 0, 3e-150, 4e-150);
  EXPECT_TRUE(tiny.IsNull());
  tiny.Normalize();
  EXPECT_DOUBLE_EQ(tiny.length(), 1);
  PAR_LINE_2D none(1, 1, 0, 0);
  none.Normalize();
  EXPECT_TRUE(none.IsNull());
}

}  // namespace
