#include "support/test.h"

using vek0::detail::kTwoPi;

namespace {

static_assert(std::is_same_v<decltype(PNT_3D(0, 0, 0) - PNT_3D(0, 0, 0)), PNT_3D>);
static_assert(std::is_same_v<decltype(PNT_3D(0, 0, 0) + PNT_2D(0, 0)), PNT_2D>);
static_assert(std::is_same_v<decltype(-PNT_3D(0, 0, 0)), PNT_3D>);

TEST(Pnt, EqualityIsExact) {
  EXPECT_TRUE(PNT_2D(1, 2) != PNT_2D(1, 2 + 1e-15));
  EXPECT_TRUE(PNT_2D(1, 2) == PNT_2D(1, 2));
  EXPECT_TRUE(PNT_3D(1, 2, 3) != PNT_3D(1, 2, std::nextafter(3, 4)));
  EXPECT_TRUE(PNT_3D(1, 2, kNan) != PNT_3D(1, 2, kNan));
}

TEST(Pnt, PlaneOperationsOnASpacePointSeeXAndYOnly) {
  const PNT_3D high(3, 4, 100);
  const PNT_2D origin(0, 0);
  EXPECT_EQ(high.dist(origin), 5);
  EXPECT_EQ(high.dist_square(0, 0), 25);
  EXPECT_EQ(high.dist(PNT_3D(3, 4, 98)), 2);
  EXPECT_TRUE(high == PNT_2D(3, 4));
  EXPECT_TRUE(high - origin == PNT_2D(3, 4));
  EXPECT_TRUE(high != PNT_2D(3, 5));
  EXPECT_EQ(PNT_3D(0, 1, 9).angle(PNT_3D(1, 1, -9)), 0);
  PNT_3D turned = high;
  turned.rotate(PNT_2D(3, 4), 1);
  turned.set(5, 6);
  double x = 0, y = 0;
  turned.get(x, y);
  EXPECT_TRUE(turned == PNT_3D(x, y, 100));
}

TEST(Pnt, AngleLiesInTheFullTurn) {
  for (const Row& t : rows())
    EXPECT_DOUBLE_EQ(PNT_2D(0, 0).angle(PNT_2D(t.real("x"), t.real("y"))), t.real("angle"));
}

TEST(Pnt, RotateKeepsDistanceAndHeightAndTurnsByTheAngle) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> real(-100, 100);
  for ([[maybe_unused]] const int i : rounds(500)) {
    const PNT_3D center(real(random), real(random), real(random));
    const PNT_3D before(real(random), real(random), real(random));
    const double angle = real(random) / 20;
    PNT_3D after = before;
    after.rotate(center, angle);
    EXPECT_EQ(after.z, before.z);
    EXPECT_NEAR(PNT_2D(center).dist(after), PNT_2D(center).dist(before), 1e-12);
    const double turned = center.angle(after) - center.angle(before) - angle;
    EXPECT_NEAR(std::remainder(turned, kTwoPi), 0, 1e-9);
    after.rotate(center, -angle);
    EXPECT_NEAR(after.dist(before), 0, 1e-12);
  }
}

TEST(Pnt, ScaleKeepsTheCentreAndIncludesZ) {
  PNT_3D p(3, 5, 7);
  p.scale(PNT_3D(1, 1, 1), -2);
  EXPECT_TRUE(p == PNT_3D(-3, -7, -11));
  p.scale(p, 1e300);
  EXPECT_TRUE(p == PNT_3D(-3, -7, -11));
}

TEST(ProdVect, NormalOfATurn) {
  EXPECT_TRUE(prodVect(PNT_3D(1, 0, 0), PNT_3D(0, 1, 0)) == PNT_3D(0, 0, 1));
  EXPECT_TRUE(prodVect(PNT_3D(2, 3, 5), PNT_3D(7, 11, 13)) == PNT_3D(-16, 9, 1));
  // Edges of 2 to the east and 3 to the north turn left, so the normal points up.
  EXPECT_TRUE(prodVect(PNT_3D(1, 1, 0), PNT_3D(3, 1, 0), PNT_3D(3, 4, 0)) == PNT_3D(0, 0, 6));
}

TEST(PntsInLine, PlaneMeasuresADistanceAndSpaceDoesNot) {
  for (const Row& t : rows()) {
    EXPECT_EQ(pntsInLine(PNT_2D(t.point("a")), PNT_2D(t.point("b")), PNT_2D(t.point("c"))),
              t.flag("plane"));
    EXPECT_EQ(pntsInLine(t.point("a"), t.point("b"), t.point("c")), t.flag("space"));
  }
}

TEST(Rounding, HalvesAndLimits) {
  const Definitions names{{"INT_MAX", INT_MAX}, {"INT_MIN", INT_MIN}};
  for (const Row& t : rowsWith(names)) {
    EXPECT_EQ(iround(t.real("v")), t.whole("up"));
    EXPECT_EQ(iround_down(t.real("v")), t.whole("down"));
  }
  EXPECT_EQ(fround(1e17), 1e17);
  EXPECT_EQ(fround_down(-2.5), -3);
}

TEST(Risolvi, CountsAndRoots) {
  const Definitions names{{"kUntouched", kUntouched}};
  for (const Row& t : rowsWith(names)) {
    double x1 = kUntouched, x2 = kUntouched;
    EXPECT_EQ(risolvi(t.real("a"), t.real("b"), t.real("c"), x1, x2), t.whole("count"));
    EXPECT_DOUBLE_EQ(x1, t.real("x1"));
    EXPECT_DOUBLE_EQ(x2, t.real("x2"));
    x1 = x2 = kUntouched;
    EXPECT_EQ(risolvi_2(t.real("a"), t.real("b") / 2, t.real("c"), x1, x2), t.whole("count"));
    EXPECT_DOUBLE_EQ(x1, t.real("x1"));
    EXPECT_DOUBLE_EQ(x2, t.real("x2"));
  }
}

TEST(Risolvi, ChosenRootsComeBack) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> real(-50, 50);
  for ([[maybe_unused]] const int i : rounds(1000)) {
    const double r = real(random), s = r + 0.1 + std::fabs(real(random)), a = real(random) + 60;
    double x1 = 0, x2 = 0;
    ASSERT_EQ(risolvi(a, -a * (r + s), a * r * s, x1, x2), 2);
    EXPECT_NEAR(std::min(x1, x2), r, 1e-9);
    EXPECT_NEAR(std::max(x1, x2), s, 1e-9);
  }
}

}  // namespace
