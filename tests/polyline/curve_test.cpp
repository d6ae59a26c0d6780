#include "support/test.h"

using vek0::detail::kTwoPi;

namespace {

using Vertexes = std::vector<CURVE_VERTEX>;

constexpr short kFit = 2, kSpline = 4, kBezier = 8;

PNT_3D pnt(const CURVE_VERTEX& v) { return {v.x, v.y, v.z}; }

/// Control points without width.
Vertexes frame(const std::vector<PNT_2D>& points) {
  Vertexes controls;
  for (const PNT_2D& p : points) controls.push_back({p.x, p.y, 0, 0, 0, 0});
  return controls;
}

Vertexes randomFrame(std::mt19937& random, std::size_t n) {
  std::uniform_real_distribution<double> real(-100, 100);
  Vertexes controls;
  for (std::size_t i = 0; i < n; ++i) {
    controls.push_back({real(random), real(random), real(random), std::fabs(real(random)),
                        std::fabs(real(random)), real(random)});
  }
  return controls;
}

void expectSame(const CURVE_VERTEX& got, const CURVE_VERTEX& want, double within) {
  EXPECT_NEAR(pnt(got).dist(pnt(want)), 0, within);
}

TEST(Curve, NumberOfVertexes) {
  const std::vector<PNT_2D> ring{{0, 0}, {5, -1}, {9, 2}, {9, 7}, {5, 9}, {1, 8}, {-2, 5}, {-2, 2}};
  const Definitions names{{"kSpline", kSpline}, {"kBezier", kBezier}, {"kFit", kFit}};
  for (const Row& t : rowsWith(names)) {
    const Vertexes controls =
        frame({ring.begin(), ring.begin() + static_cast<long>(t.count("controls"))});
    EXPECT_EQ(curveVertexes(controls, t.whole<short>("type"), t.whole<short>("degree"),
                            t.flag("closed"), t.whole("chords"))
                  .size(),
              t.count("vertexes"));
  }
}

TEST(Curve, OpenCurvesKeepTheirEndsExactly) {
  std::mt19937 random(51);
  for (const short type : {kFit, kSpline, kBezier}) {
    for (std::size_t n = 3; n < 12; ++n) {
      SCOPED_TRACE(testing::Message() << "seed 51, type " << type << ", controls " << n);
      const Vertexes controls = randomFrame(random, n);
      const Vertexes curve = curveVertexes(controls, type, 3, false);
      EXPECT_TRUE(pnt(curve.front()) == pnt(controls.front()));
      EXPECT_TRUE(pnt(curve.back()) == pnt(controls.back()));
      EXPECT_EQ(curve.back().bulge, 0);
      EXPECT_EQ(curve.front().widthStart, controls.front().widthStart);
    }
  }
}

TEST(Curve, DegreesBeyondTheLimitsAreTheLimits) {
  std::mt19937 random(57);
  const Vertexes controls = randomFrame(random, 7);
  for (const short type : {kSpline, kBezier}) {
    for (const short degree : {short{-9}, short{0}, short{1}, short{99}}) {
      SCOPED_TRACE(testing::Message() << "type " << type << ", degree " << degree);
      const Vertexes got = curveVertexes(controls, type, degree, false);
      const Vertexes want = curveVertexes(controls, type, degree < 2 ? 2 : 3, false);
      ASSERT_EQ(got.size(), want.size());
      for (std::size_t i = 0; i < got.size(); ++i) expectSame(got[i], want[i], 0);
    }
  }
}

// Every point of a spline or Bezier curve is a convex combination of its controls.
TEST(Curve, SplinesStayInTheBoxOfTheirControls) {
  std::mt19937 random(58);
  for (const int round : rounds(200)) {
    const Vertexes controls = randomFrame(random, 3 + static_cast<std::size_t>(round % 9));
    RECT_3D box;
    box.initRegion();
    for (const CURVE_VERTEX& v : controls) box.updateRegion(pnt(v));
    box.updateRegion(box.min - PNT_3D(1e-12, 1e-12, 1e-12));
    box.updateRegion(box.max + PNT_3D(1e-12, 1e-12, 1e-12));
    for (const short type : {kSpline, kBezier}) {
      for (const short degree : {short{2}, short{3}}) {
        for (const CURVE_VERTEX& v : curveVertexes(controls, type, degree, round % 2 == 0)) {
          ASSERT_TRUE(box.inside(pnt(v)));
          ASSERT_EQ(v.bulge, 0);
        }
      }
    }
  }
}

// With the minimum number of controls for its degree, a clamped spline is a Bezier curve, whose
// points follow from the Bernstein polynomials.
TEST(Curve, SmallestOpenSplineIsABezierPiece) {
  std::mt19937 random(52);
  for (const short degree : {short{2}, short{3}}) {
    const Vertexes controls = randomFrame(random, static_cast<std::size_t>(degree) + 1);
    const Vertexes spline = curveVertexes(controls, kSpline, degree, false);
    const Vertexes bezier = curveVertexes(controls, kBezier, degree, false);
    ASSERT_EQ(spline.size(), bezier.size());
    for (const std::size_t i : rounds<std::size_t>(spline.size())) {
      const double t = static_cast<double>(i) / static_cast<double>(spline.size() - 1), u = 1 - t;
      const double b2[] = {u * u, 2 * u * t, t * t};
      const double b3[] = {u * u * u, 3 * u * u * t, 3 * u * t * t, t * t * t};
      CURVE_VERTEX want{0, 0, 0, 0, 0, 0};
      for (std::size_t k = 0; k < controls.size(); ++k) {
        const double b = degree == 2 ? b2[k] : b3[k];
        want.x += b * controls[k].x;
        want.y += b * controls[k].y;
        want.z += b * controls[k].z;
      }
      expectSame(spline[i], want, 1e-12);
      expectSame(bezier[i], want, 1e-12);
    }
  }
}

// At a knot, a periodic cubic is the (1, 4, 1) / 6 average of three controls, a quadratic the (1,
// 1) / 2 average of two.
TEST(Curve, ClosedSplineAtItsKnots) {
  std::mt19937 random(53);
  const Vertexes controls = randomFrame(random, 6);
  for (const short degree : {short{2}, short{3}}) {
    const Vertexes curve = curveVertexes(controls, kSpline, degree, true);
    for (std::size_t k = 0; k < 6; ++k) {
      const CURVE_VERTEX &a = controls[k], &b = controls[(k + 1) % 6], &c = controls[(k + 2) % 6];
      const double x = degree == 2 ? (a.x + b.x) / 2 : (a.x + 4 * b.x + c.x) / 6;
      const double y = degree == 2 ? (a.y + b.y) / 2 : (a.y + 4 * b.y + c.y) / 6;
      const double z = degree == 2 ? (a.z + b.z) / 2 : (a.z + 4 * b.z + c.z) / 6;
      expectSame(curve[8 * k], {x, y, z, 0, 0, 0}, 1e-12);
    }
  }
}

// A clamped cubic is smooth at its inner knots: no kink, however far apart the controls.
TEST(Curve, SplinesTurnSlowly) {
  const Vertexes zigzag = frame({{0, 0}, {10, 10}, {20, 0}, {30, 10}, {40, 0}, {50, 10}});
  const Vertexes curve = curveVertexes(zigzag, kSpline, 3, false, 64);
  for (std::size_t i = 0; i + 2 < curve.size(); ++i) {
    const double a = pnt(curve[i]).angle(pnt(curve[i + 1]));
    const double b = pnt(curve[i + 1]).angle(pnt(curve[i + 2]));
    EXPECT_LT(std::fabs(std::remainder(b - a, kTwoPi)), 0.1) << "vertex " << i;
  }
}

TEST(Curve, ReversedControlsGiveTheReversedCurve) {
  std::mt19937 random(54);
  for (const short type : {kFit, kSpline, kBezier}) {
    for ([[maybe_unused]] const int round : rounds(50)) {
      // Seven controls: the Bezier curve is the same from both ends.
      const Vertexes controls = randomFrame(random, 7);
      const Vertexes reversed(controls.rbegin(), controls.rend());
      const Vertexes curve = curveVertexes(controls, type, 3, false);
      const Vertexes back = curveVertexes(reversed, type, 3, false);
      ASSERT_EQ(curve.size(), back.size());
      for (std::size_t i = 0; i < curve.size(); ++i) {
        expectSame(back[curve.size() - 1 - i], curve[i], 1e-9);
        if (i == 0) continue;
        EXPECT_NEAR(back[curve.size() - 1 - i].bulge, -curve[i - 1].bulge, 1e-9);
      }
    }
  }
}

TEST(Curve, WidthsFollowTheFrame) {
  Vertexes controls = frame({{0, 0}, {10, 0}, {20, 0}, {30, 0}});
  const double widths[][2] = {{1, 3}, {3, 0}, {8, 8}, {5, 5}};
  for (std::size_t i = 0; i < 4; ++i) {
    controls[i].widthStart = widths[i][0];
    controls[i].widthEnd = widths[i][1];
  }
  for (const short type : named<short>({kFit, kSpline, kBezier})) {
    const Vertexes curve = curveVertexes(controls, type, 3, false, 2);
    ASSERT_EQ(curve.size(), 7u);
    const double want[][2] = {{1, 2}, {2, 3}, {3, 1.5}, {1.5, 0}, {8, 8}, {8, 8}};
    for (std::size_t i = 0; i < 6; ++i) {
      EXPECT_DOUBLE_EQ(curve[i].widthStart, want[i][0]) << "vertex " << i;
      EXPECT_DOUBLE_EQ(curve[i].widthEnd, want[i][1]) << "vertex " << i;
    }
  }
}

// A closed cubic begins at the second control, hence with that control's width.
TEST(Curve, WidthsOfAClosedSplineAreThoseOfTheNearControls) {
  Vertexes controls = frame({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
  for (std::size_t i = 0; i < 4; ++i) {
    controls[i].widthStart = static_cast<double>(i);
    controls[i].widthEnd = static_cast<double>((i + 1) % 4);
  }
  const Vertexes cubic = curveVertexes(controls, kSpline, 3, true, 2);
  EXPECT_DOUBLE_EQ(cubic[0].widthStart, 1);
  EXPECT_DOUBLE_EQ(cubic[1].widthStart, 1.5);
  EXPECT_DOUBLE_EQ(cubic[5].widthEnd, 0);
  EXPECT_DOUBLE_EQ(cubic[7].widthEnd, 1);
  EXPECT_DOUBLE_EQ(curveVertexes(controls, kSpline, 2, true, 2)[0].widthStart, 0.5);
}

// --- Arcs through given points

TEST(FitCurve, PointsOfACircleGiveTheCircle) {
  const CIRCLE_3D circle(3, 4, 0, 50);
  for (const bool closed : {false, true}) {
    Vertexes controls;
    for (const double angle : {0.0, 0.7, 1.9, 2.5, 4.4, 5.5}) {
      const PNT_3D p = circle.getPntAngle(angle);
      controls.push_back({p.x, p.y, p.z, 0, 0, 0});
    }
    const Vertexes curve = curveVertexes(controls, kFit, 0, closed);
    double whole = 0;
    for (std::size_t i = 0; i + (closed ? 0 : 1) < curve.size(); ++i) {
      ARC_3D arc;
      const CURVE_VERTEX &a = curve[i], &b = curve[(i + 1) % curve.size()];
      ASSERT_TRUE(createArcFromBulge(pnt(a), pnt(b), a.bulge, arc));
      EXPECT_NEAR(arc.PNT_3D::dist(circle.x, circle.y, circle.z), 0, 1e-9);
      EXPECT_NEAR(arc.radius, 50, 1e-9);
      whole += 4 * std::atan(a.bulge);
    }
    EXPECT_NEAR(whole, closed ? kTwoPi : 5.5, 1e-9);
  }
}

/// Direction of travel at the start or the end of segment `i`.
double direction(const Vertexes& curve, std::size_t i, bool end) {
  const CURVE_VERTEX& a = curve[i];
  const double along = pnt(a).angle(pnt(curve[(i + 1) % curve.size()]));
  return along + (end ? 2 : -2) * std::atan(a.bulge);
}

TEST(FitCurve, PassesThroughAllControlsWithoutAKink) {
  std::mt19937 random(55);
  std::uniform_real_distribution<double> real(-1, 1);
  for ([[maybe_unused]] const int round : rounds(200)) {
    // A path that wanders without doubling back.
    Vertexes controls;
    double x = 0, y = 0, heading = 0;
    for (int i = 0; i < 12; ++i) {
      controls.push_back({x, y, static_cast<double>(i), 1, 1, 0});
      heading += 0.8 * real(random);
      const double step = 10 + 5 * real(random);
      x += step * std::cos(heading);
      y += step * std::sin(heading);
    }
    const Vertexes curve = curveVertexes(controls, kFit, 0, false);
    ASSERT_EQ(curve.size(), 23u);
    for (std::size_t i = 0; i < 12; ++i) EXPECT_TRUE(pnt(curve[2 * i]) == pnt(controls[i]));
    for (std::size_t i = 0; i < 11; ++i) EXPECT_EQ(curve[2 * i + 1].z, controls[i].z + 0.5);
    for (std::size_t i = 0; i + 2 < curve.size(); ++i) {
      const double kink = direction(curve, i + 1, false) - direction(curve, i, true);
      EXPECT_NEAR(std::remainder(kink, kTwoPi), 0, 1e-9) << "vertex " << i + 1;
    }
  }
}

TEST(FitCurve, EqualTangentsAcrossTheWayGiveTwoHalfCircles) {
  const Vertexes curve = curveVertexes(frame({{5, -5}, {0, 0}, {10, 0}, {5, 5}}), kFit, 0, false);
  ASSERT_EQ(curve.size(), 7u);
  EXPECT_NEAR(curve[2].bulge, -1, 1e-12);
  EXPECT_NEAR(curve[3].bulge, 1, 1e-12);
  EXPECT_NEAR(pnt(curve[3]).dist(5, 0, 0), 0, 1e-12);
}

// Points of the parabola y = s * x^2: each span turns by 2 * s, each arc by half of it.
TEST(FitCurve, FlatArcsKeepTheirDigits) {
  for (const double s : named<double>({1e-4, 1e-5, 1e-6, 1e-7})) {
    const Vertexes curve =
        curveVertexes(frame({{-1, s}, {0, 0}, {1, s}, {2, 4 * s}}), kFit, 0, false);
    ASSERT_EQ(curve.size(), 7u);
    EXPECT_NEAR(curve[2].bulge / (s / 4), 1, 1e-6);
    EXPECT_NEAR(curve[3].bulge / (s / 4), 1, 1e-6);
  }
}

TEST(FitCurve, GoingBackTheSameWayStaysStraight) {
  for (const PNT_2D& far : {PNT_2D(10, 0), PNT_2D(0, 10), PNT_2D(-3, -4)}) {
    const Vertexes curve = curveVertexes(frame({PNT_2D(0, 0), far, PNT_2D(0, 0)}), kFit, 0, false);
    for (const CURVE_VERTEX& v : curve) EXPECT_NEAR(v.bulge, 0, 1e-12) << far.x << "," << far.y;
  }
}

TEST(FitCurve, PathsThatDoubleBackStayNearTheirControls) {
  const std::vector<std::vector<PNT_2D>> cases{
      {{0, 0}, {10, 0}, {5, 0}},
      {{0, 0}, {10, 0}, {0, 0}},
      {{0, 0}, {10, 1e-9}, {0, 0}, {10, 0}},
      {{0, 0}, {0, 0}, {10, 0}, {10, 0}, {10, 5}, {10, 5}},
      {{0, 0}, {0, 0}, {0, 0}},
      {{0, 0}, {10, 1e-3}, {-10, 0}, {3, 0}, {3, 1e-7}},
      {{1e7, 1e7}, {1e7 + 1e-6, 1e7}, {1e7, 1e7 + 1e-6}},
  };
  for (const auto& points : cases) {
    for (const bool closed : {false, true}) {
      SCOPED_TRACE(testing::Message() << points.size() << " points, " << closed);
      const Vertexes curve = curveVertexes(frame(points), kFit, 0, closed);
      double longest = 0;
      for (const PNT_2D& p : points) longest = std::fmax(longest, p.dist(points[0]));
      for (const CURVE_VERTEX& v : curve) {
        EXPECT_LE(std::fabs(v.bulge), 8);
        EXPECT_LE(points[0].dist(v.x, v.y), 6 * longest);
      }
    }
  }
}

TEST(Curve, HugeAndRepeatedControlsGiveFiniteCurves) {
  std::mt19937 random(56);
  std::uniform_int_distribution<int> exponent(-300, 300);
  std::uniform_int_distribution<int> same(0, 3);
  for (const int round : rounds(2000)) {
    Vertexes controls = randomFrame(random, 3 + static_cast<std::size_t>(round % 6));
    for (std::size_t i = 0; i < controls.size(); ++i) {
      const double size = std::pow(10, exponent(random));
      controls[i].x *= size;
      controls[i].y *= size;
      if (i > 0 && same(random) == 0) controls[i] = controls[i - 1];
    }
    for (const short type : {kFit, kSpline, kBezier}) {
      for (const CURVE_VERTEX& v : curveVertexes(controls, type, 3, round % 2 == 0)) {
        ASSERT_TRUE(std::isfinite(v.x + v.y + v.z + v.widthStart + v.widthEnd + v.bulge));
        ASSERT_TRUE(type != kFit || std::fabs(v.bulge) <= 8);
      }
    }
  }
}

}  // namespace
