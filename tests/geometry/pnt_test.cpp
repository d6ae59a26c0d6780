#include "vek0core/geometry/pnt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

#include "vek0core/geometry/rect.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

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
  const struct {
    const char* name;
    double x, y, angle;
  } cases[] = {
      {"east", 1, 0, 0},
      {"north", 0, 2, kPi / 2},
      {"west", -1e-9, 0, kPi},
      {"south", 0, -1, 4.71238898038469},
      {"same point", 0, 0, 0},
      {"west by minus zero", -1, -0.0, kPi},
      {"just below east", 1, -1e-15, kTwoPi - 1e-15},
      {"rounds to the turn", 1, -1e-17, 0},
      {"smallest number", 1, -5e-324, 0},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_DOUBLE_EQ(PNT_2D(0, 0).angle(PNT_2D(t.x, t.y)), t.angle);
  }
}

TEST(Pnt, RotateKeepsDistanceAndHeightAndTurnsByTheAngle) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> real(-100, 100);
  for (int i = 0; i < 500; ++i) {
    SCOPED_TRACE(testing::Message() << "seed 7, round " << i);
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

TEST(Pnt, ExtentsAreThePointItself) {
  RECT_3D box;
  PNT_3D(1, -2, 3).calc_bdry(box);
  EXPECT_TRUE(box == RECT_3D(1, -2, 3, 1, -2, 3));
}

TEST(ProdVect, NormalOfATurn) {
  EXPECT_TRUE(prodVect(PNT_3D(1, 0, 0), PNT_3D(0, 1, 0)) == PNT_3D(0, 0, 1));
  EXPECT_TRUE(prodVect(PNT_3D(2, 3, 5), PNT_3D(7, 11, 13)) == PNT_3D(-16, 9, 1));
  // From (1,1,0) east by 2, then north by 3: a left turn, so the normal points up.
  EXPECT_TRUE(prodVect(PNT_3D(1, 1, 0), PNT_3D(3, 1, 0), PNT_3D(3, 4, 0)) == PNT_3D(0, 0, 6));
}

TEST(PntsInLine, PlaneMeasuresADistanceAndSpaceDoesNot) {
  const struct {
    const char* name;
    PNT_3D a, b, c;
    bool plane, space;
  } cases[] = {
      {"plainly in line", {0, 0, 0}, {1, 1, 0}, {5, 5, 0}, true, true},
      {"a corner", {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, false, false},
      {"first two equal", {1, 1, 0}, {1, 1, 0}, {1, 1, 0}, false, true},
      {"last two equal", {0, 0, 0}, {1, 0, 0}, {1, 0, 0}, true, true},
      {"tiny bend of long legs", {0, 0, 0}, {1e4, 0, 0}, {2e4, 5e-7, 0}, true, false},
      {"large bend of short legs", {0, 0, 0}, {1e-4, 0, 0}, {1e-4, 1e-4, 0}, false, true},
      {"far beyond a short leg", {0, 0, 0}, {1, 0, 0}, {1e3, 1e-5, 0}, false, false},
      {"only z leaves the line", {0, 0, 0}, {1, 0, 0}, {2, 0, 1}, true, false},
      {"z leaves a line along y", {0, 0, 0}, {0, 1, 0}, {0, 2, 1}, true, false},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(pntsInLine(PNT_2D(t.a), PNT_2D(t.b), PNT_2D(t.c)), t.plane);
    EXPECT_EQ(pntsInLine(t.a, t.b, t.c), t.space);
  }
}

TEST(Rounding, HalvesAndLimits) {
  const struct {
    double v;
    int up, down;
  } cases[] = {
      {2.5, 3, 2},
      {-2.5, -2, -3},
      {0.49999, 0, 0},
      {-0.5, 0, -1},
      {7, 7, 7},
      {3e9, INT_MAX, INT_MAX},
      {-1e300, INT_MIN, INT_MIN},
      {kInf, INT_MAX, INT_MAX},
      {-kInf, INT_MIN, INT_MIN},
      {kNan, 0, 0},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.v);
    EXPECT_EQ(iround(t.v), t.up);
    EXPECT_EQ(iround_down(t.v), t.down);
  }
  EXPECT_EQ(fround(1e17), 1e17);
  EXPECT_EQ(fround_down(-2.5), -3);
}

constexpr double kUntouched = 77;  // what x1 and x2 hold before the call

TEST(Risolvi, CountsAndRoots) {
  const struct {
    const char* name;
    double a, b, c;
    int count;
    double x1, x2;
  } cases[] = {
      {"two roots", 1, -3, 2, 2, 2, 1},
      {"double root", 1, 2, 1, 2, -1, -1},
      {"linear", 0, 2, -8, 1, 4, kUntouched},
      {"no real root", 1, 0, 1, 0, kUntouched, kUntouched},
      {"nothing fits", 0, 0, 5, -1, kUntouched, kUntouched},
      {"everything fits", 0, 0, 0, -2, kUntouched, kUntouched},
      {"would cancel if naive", 1, 1e9, 1, 2, -1e9, -1e-9},
      {"b is nothing", 1, 0, -4, 2, 2, -2},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    double x1 = kUntouched, x2 = kUntouched;
    EXPECT_EQ(risolvi(t.a, t.b, t.c, x1, x2), t.count);
    EXPECT_DOUBLE_EQ(x1, t.x1);
    EXPECT_DOUBLE_EQ(x2, t.x2);
    x1 = x2 = kUntouched;
    EXPECT_EQ(risolvi_2(t.a, t.b / 2, t.c, x1, x2), t.count);
    EXPECT_DOUBLE_EQ(x1, t.x1);
    EXPECT_DOUBLE_EQ(x2, t.x2);
  }
}

TEST(Risolvi, ChosenRootsComeBack) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> real(-50, 50);
  for (int i = 0; i < 1000; ++i) {
    SCOPED_TRACE(testing::Message() << "seed 11, round " << i);
    const double r = real(random), s = r + 0.1 + std::fabs(real(random)), a = real(random) + 60;
    double x1 = 0, x2 = 0;
    ASSERT_EQ(risolvi(a, -a * (r + s), a * r * s, x1, x2), 2);
    EXPECT_NEAR(std::min(x1, x2), r, 1e-9);
    EXPECT_NEAR(std::max(x1, x2), s, 1e-9);
  }
}

}  // namespace
