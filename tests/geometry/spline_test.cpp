// B-spline curves: validity, points, chords, and the cubic through given points.

#include "support/test.h"

namespace {

using PointList = std::vector<PNT_3D>;

SPLINE_3D spline(int degree, PointList controls, std::vector<double> knots,
                 std::vector<double> weights = {}) {
  SPLINE_3D s;
  s.degree = degree;
  s.controls = std::move(controls);
  s.knots = std::move(knots);
  s.weights = std::move(weights);
  return s;
}

PointList chordsOf(const SPLINE_3D& s, double tolerance) {
  PointList points;
  s.chords(tolerance, points);
  return points;
}

// Clamped knots from 0 to `spans`: each end occurs `degree` + 1 times.
std::vector<double> clamped(int degree, int spans) {
  std::vector<double> knots(static_cast<std::size_t>(degree), 0);
  for (int i = 0; i <= spans; ++i) knots.push_back(i);
  knots.insert(knots.end(), static_cast<std::size_t>(degree), spans);
  return knots;
}

struct RandomSplines {
  explicit RandomSplines(unsigned seed) : engine(seed) {}
  double real() { return std::uniform_real_distribution<double>(-1, 1)(engine); }
  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(engine); }
  PointList points(int n) {
    PointList p;
    for (int i = 0; i < n; ++i) p.emplace_back(real(), real(), real());
    return p;
  }
  // Any degree, including clustered knots and unclamped ends, with weights over six decades.
  SPLINE_3D spline() {
    const int degree = 1 + below(7), n = degree + 1 + below(12);
    SPLINE_3D s;
    s.degree = degree;
    s.controls = points(n);
    double knot = 100 * real();
    for (int i = 0; i < n + degree + 1; ++i) s.knots.push_back(knot += below(3) * (1 + real()));
    for (int i = 0; i < n && degree % 2 == 0; ++i) s.weights.push_back(std::pow(10, 3 * real()));
    return s;
  }
  std::mt19937 engine;
};

double distance(const PNT_3D& p, const PNT_3D& a, const PNT_3D& b) {
  const PNT_3D way = b - a, to = p - a;
  const double square = a.dist_square(b);
  double t = square > 0 ? (to.x * way.x + to.y * way.y + to.z * way.z) / square : 0;
  t = std::clamp(t, 0.0, 1.0);
  return p.dist(a.x + way.x * t, a.y + way.y * t, a.z + way.z * t);
}

double distance(const PNT_3D& p, const PointList& chain) {
  double best = p.dist(chain[0]);
  for (std::size_t i = 1; i < chain.size(); ++i)
    best = std::min(best, distance(p, chain[i - 1], chain[i]));
  return best;
}

TEST(Spline, Validity) {
  const PointList four{PNT_3D(0, 0, 0), PNT_3D(1, 2, 0), PNT_3D(3, 2, 0), PNT_3D(4, 0, 0)};
  for (const Row& t : rows()) {
    EXPECT_EQ(spline(t.whole("degree"), four, t.reals("knots"), t.reals("weights")).isValid(),
              t.flag("valid"));
  }
  EXPECT_TRUE(spline(25, PointList(40, four[0]), clamped(25, 15)).isValid());
  EXPECT_FALSE(spline(26, PointList(40, four[0]), clamped(26, 14)).isValid());
  EXPECT_FALSE(SPLINE_3D().isValid());
}

TEST(Spline, NumbersThatAreNoneAreNotValid) {
  RandomSplines random(60);
  const SPLINE_3D good = spline(2, random.points(3), clamped(2, 1), {1, 1, 1});
  ASSERT_TRUE(good.isValid());
  for (const double bad : {kNan, kInf, -kInf}) {
    for (std::size_t i = 0; i < 3; ++i) {
      SPLINE_3D knot = good, weight = good, x = good, z = good;
      knot.knots[2 * i] = weight.weights[i] = x.controls[i].x = z.controls[i].z = bad;
      EXPECT_FALSE(knot.isValid() || weight.isValid() || x.isValid() || z.isValid());
    }
  }
}

TEST(Spline, OfDegreeOneIsItsPolygon) {
  RandomSplines random(61);
  const PointList polygon = random.points(20);
  const PointList chain = chordsOf(spline(1, polygon, clamped(1, 19)), 1e-6);
  ASSERT_EQ(chain.size(), polygon.size());
  for (std::size_t i = 0; i < chain.size(); ++i) EXPECT_TRUE(chain[i] == polygon[i]);
}

// Compares with the sum of Bernstein polynomials.
TEST(Spline, OfOneSpanIsTheBezierCurve) {
  RandomSplines random(62);
  for (int degree = 1; degree <= SPLINE_3D::kMaxDegree; ++degree) {
    SCOPED_TRACE(testing::Message() << "seed 62, degree " << degree);
    const SPLINE_3D s = spline(degree, random.points(degree + 1), clamped(degree, 1));
    ASSERT_TRUE(s.isValid());
    for (int k = 0; k <= 20; ++k) {
      const double t = k / 20.0;
      PNT_3D sum(0, 0, 0);
      double binomial = 1;
      for (int j = 0; j <= degree; ++j) {
        const double b = binomial * std::pow(t, j) * std::pow(1 - t, degree - j);
        const PNT_3D& c = s.controls[static_cast<std::size_t>(j)];
        sum = sum + PNT_3D(c.x * b, c.y * b, c.z * b);
        binomial = binomial * (degree - j) / (j + 1);
      }
      EXPECT_LT(s.getPnt(t).dist(sum), 1e-13);
    }
  }
}

// Compares with the Cox-de Boor recursion for the basis functions.
double basis(const SPLINE_3D& s, std::size_t i, int degree, double t) {
  const auto p = static_cast<std::size_t>(degree);
  if (degree == 0) return s.knots[i] <= t && t < s.knots[i + 1] ? 1 : 0;
  const double up = s.knots[i + p] - s.knots[i], down = s.knots[i + p + 1] - s.knots[i + 1];
  const double left = up > 0 ? (t - s.knots[i]) / up * basis(s, i, degree - 1, t) : 0;
  const double right =
      down > 0 ? (s.knots[i + p + 1] - t) / down * basis(s, i + 1, degree - 1, t) : 0;
  return left + right;
}

TEST(Spline, PointsAreTheWeightedSumOfTheControls) {
  RandomSplines random(63);
  int valid = 0;
  for ([[maybe_unused]] const int round : rounds(300)) {
    const SPLINE_3D s = random.spline();
    if (!s.isValid()) continue;
    ++valid;
    double from = 0, to = 0;
    s.getDomain(from, to);
    for (int k = 0; k < 10; ++k) {
      const double t = from + (to - from) * k / 10;
      PNT_3D sum(0, 0, 0);
      double all = 0;
      for (std::size_t i = 0; i < s.controls.size(); ++i) {
        const double b = basis(s, i, s.degree, t) * (s.weights.empty() ? 1 : s.weights[i]);
        const PNT_3D& c = s.controls[i];
        sum = sum + PNT_3D(c.x * b, c.y * b, c.z * b);
        all += b;
      }
      EXPECT_LT(s.getPnt(t).dist(sum.x / all, sum.y / all, sum.z / all), 1e-10);
    }
  }
  EXPECT_GT(valid, 150);
}

// Every point of the curve is near the chain, every vertex of the chain is on the curve, and a
// finer tolerance never yields fewer chords.
TEST(Spline, ChordsKeepTheTolerance) {
  RandomSplines random(64);
  for ([[maybe_unused]] const int round : rounds(150)) {
    const SPLINE_3D s = random.spline();
    if (!s.isValid()) continue;
    const double tolerance = std::pow(10, -1.5 + 1.5 * random.real());
    const PointList chain = chordsOf(s, tolerance);
    double from = 0, to = 0;
    s.getDomain(from, to);
    for (int k = 0; k <= 300; ++k)
      EXPECT_LT(distance(s.getPnt(from + (to - from) * k / 300), chain), tolerance + 1e-12);
    EXPECT_LT(chain.front().dist(s.getPnt(from)) + chain.back().dist(s.getPnt(to)), 1e-12);
    EXPECT_GE(chordsOf(s, tolerance / 10).size(), chain.size());
  }
}

TEST(Spline, ClampedEndsAreExact) {
  RandomSplines random(65);
  for (int degree = 1; degree <= 10; ++degree) {
    const SPLINE_3D s = spline(degree, random.points(degree + 4), clamped(degree, 4));
    const PointList chain = chordsOf(s, 0.01);
    EXPECT_TRUE(chain.front() == s.controls.front() && chain.back() == s.controls.back());
    EXPECT_TRUE(s.getPnt(-kInf) == s.controls.front() && s.getPnt(kInf) == s.controls.back());
    EXPECT_TRUE(s.getPnt(kNan) == s.controls.front());
  }
}

// The most common rational curve in files: a circle made of quadratic pieces.
TEST(Spline, RationalQuadraticIsTheCircle) {
  const double w = std::sqrt(0.5);
  const SPLINE_3D s = spline(2,
                             {{1, 0, 0},
                              {1, 1, 0},
                              {0, 1, 0},
                              {-1, 1, 0},
                              {-1, 0, 0},
                              {-1, -1, 0},
                              {0, -1, 0},
                              {1, -1, 0},
                              {1, 0, 0}},
                             {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4}, {1, w, 1, w, 1, w, 1, w, 1});
  ASSERT_TRUE(s.isValid());
  EXPECT_EQ(s.size(), 1);
  const PointList chain = chordsOf(s, 1e-4);
  for (std::size_t i = 1; i < chain.size(); ++i) {
    EXPECT_NEAR(std::hypot(chain[i].x, chain[i].y), 1, 1e-15);
    EXPECT_LT(1 - std::hypot(chain[i].x + chain[i - 1].x, chain[i].y + chain[i - 1].y) / 2, 1e-4);
  }
  EXPECT_LT(chain.size(), 600u);
}

// A periodic curve as files store it: uniform knots, the first controls repeated at the end.
TEST(Spline, PeriodicOneClosesSmoothly) {
  RandomSplines random(66);
  PointList controls = random.points(8);
  controls.insert(controls.end(), controls.begin(), controls.begin() + 3);
  std::vector<double> knots;
  for (int i = 0; i < 15; ++i) knots.push_back(i);
  const SPLINE_3D s = spline(3, controls, knots);
  EXPECT_LT(s.getPnt(3).dist(s.getPnt(11)), 1e-15);
  const PNT_3D leaves = s.getPnt(3 + 1e-6) - s.getPnt(3),
               arrives = s.getPnt(11) - s.getPnt(11 - 1e-6);
  EXPECT_LT(leaves.dist(arrives), 1e-11);
}

// Four equal knots inside a cubic make two separate curves, connected by a chord.
TEST(Spline, JumpsAreKept) {
  const SPLINE_3D s = spline(
      3, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {3, 5, 0}, {2, 5, 0}, {1, 5, 0}, {0, 5, 0}},
      {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2});
  ASSERT_TRUE(s.isValid());
  const PointList chain = chordsOf(s, 1e-3);
  ASSERT_EQ(chain.size(), 4u);
  EXPECT_TRUE(chain[1] == PNT_3D(3, 0, 0) && chain[2] == PNT_3D(3, 5, 0));
  EXPECT_TRUE(s.getPnt(1) == PNT_3D(3, 5, 0));
}

// Invalid tolerances, and more spans than chords are allowed.
TEST(Spline, ChordsAreBounded) {
  RandomSplines random(67);
  for (const double tolerance : {0.0, -1.0, kNan}) {
    const SPLINE_3D s = spline(3, random.points(103), clamped(3, 100));
    EXPECT_EQ(chordsOf(s, tolerance).size(), 102401u);
  }
  const SPLINE_3D longOne = spline(2, random.points(100002), clamped(2, 100000));
  EXPECT_EQ(chordsOf(longOne, 0).size(), 400001u);
  // Results stay finite for weights of any size and coordinates up to the limit.
  SPLINE_3D wild = spline(3, random.points(9), clamped(3, 6));
  wild.weights = {1e-320, 1e308, 1e-320, 1, 1e300, 1e-300, 1e308, 1e308, 5e-324};
  for (PNT_3D& p : wild.controls) p.scale(PNT_3D(0, 0, 0), 1e100);
  ASSERT_TRUE(wild.isValid());
  for (const PNT_3D& p : chordsOf(wild, 1e98)) EXPECT_LE(std::fabs(p.x), 1.000001e100);
}

TEST(Spline, FallsBackOnItsControls) {
  SPLINE_3D s = spline(3, {{0, 0, 0}, {kNan, 1, 0}, {2, 4, 0}, {1e200, 0, 0}}, {});
  PointList polygon{{9, 9, 9}};
  s.controlPolygon(polygon);
  ASSERT_EQ(polygon.size(), 3u);
  EXPECT_TRUE(polygon[0] == PNT_3D(9, 9, 9) && polygon[2] == PNT_3D(2, 4, 0));
  EXPECT_EQ(s.size(), 2);
}

// --- The cubic through given points

PNT_3D derivative(const SPLINE_3D& s, double t, double h) {
  const PNT_3D d = s.getPnt(t + h) - s.getPnt(t - h);
  return {d.x / (2 * h), d.y / (2 * h), d.z / (2 * h)};
}

TEST(SplineFit, PassesThroughThePointsSmoothly) {
  RandomSplines random(68);
  for (const int round : rounds(100)) {
    const PointList points = random.points(3 + random.below(20));
    const PNT_3D start(3, 4, 0), end(0, 0, -2);
    SPLINE_3D s;
    ASSERT_TRUE(s.createFit(points, round % 2 ? &start : nullptr, round % 2 ? &end : nullptr));
    ASSERT_TRUE(s.isValid());
    double at = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (i > 0) at += points[i].dist(points[i - 1]);
      EXPECT_LT(s.getPnt(at).dist(points[i]), 1e-12);
      if (i == 0 || i + 1 == points.size()) continue;
      const double h = 1e-5;
      const PNT_3D before = derivative(s, at - h, h), after = derivative(s, at + h, h);
      const PNT_3D bend = derivative(s, at + 2 * h, h) - after;
      const PNT_3D bendBefore = before - derivative(s, at - 2 * h, h);
      EXPECT_LT(before.dist(after), 1e-2);
      EXPECT_LT(bend.dist(bendBefore), 1e-2 * (1 + bend.dist(PNT_3D(0, 0, 0)))) << "point " << i;
    }
    const PNT_3D leaves = s.controls[1] - s.controls[0];
    if (round % 2) {
      EXPECT_NEAR(leaves.x * 4, leaves.y * 3, 1e-12);
      EXPECT_GT(leaves.x, 0);
    } else {  // no curvature: the first three controls of the piece are equally spaced
      EXPECT_LT(leaves.dist(s.controls[2] - s.controls[1]), 1e-12);
    }
  }
}

TEST(SplineFit, StraightLinesStayStraight) {
  SPLINE_3D s;
  ASSERT_TRUE(s.createFit({{0, 0, 0}, {1, 2, 3}, {1, 2, 3}, {5, 10, 15}, {6, 12, 18}}));
  for (const PNT_3D& c : s.controls) {
    EXPECT_NEAR(c.y, 2 * c.x, 1e-14);
    EXPECT_NEAR(c.z, 3 * c.x, 1e-14);
  }
  EXPECT_EQ(chordsOf(s, 1e-9).size(), 4u);  // equal neighbors count once
}

TEST(SplineFit, RefusesWhatIsNoPath) {
  const struct {
    const char* name;
    PointList points;
  } cases[] = {
      {"nothing", {}},
      {"one point", {{1, 2, 3}}},
      {"one place", {{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}},
      {"not a number", {{0, 0, 0}, {1, kNan, 0}, {2, 0, 0}}},
      {"out of reach", {{0, 0, 0}, {1, 1e150, 0}, {2, 0, 0}}},
  };
  for (const auto& t : named(cases)) {
    SPLINE_3D s = spline(1, {{0, 0, 0}, {1, 1, 1}}, {0, 0, 1, 1});
    EXPECT_FALSE(s.createFit(t.points));
    EXPECT_EQ(s.degree, 1);
    EXPECT_EQ(s.controls.size(), 2u);
  }
  SPLINE_3D s;
  const PNT_3D none(0, 0, 0), lost(kNan, 0, 0);
  ASSERT_TRUE(s.createFit({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}, &none, &lost));
  EXPECT_LT((s.controls[1] - s.controls[0]).dist(s.controls[2] - s.controls[1]), 1e-15);
}

}  // namespace
