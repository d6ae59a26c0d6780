#include "polyline/offsetzone.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

std::vector<PATH_3D> offsetsOf(const PATH_3D& path, double dist,
                               OFFSET_JOIN join = OFFSET_JOIN::round) {
  OFFSET_OPTIONS options;
  options.join = join;
  std::vector<PATH_3D> out;
  EXPECT_TRUE(offsetPath(path, dist, options, out));
  return out;
}

PATH_3D closedPath(const std::vector<PNT_3D>& points, const std::vector<double>& bulges = {}) {
  return PATH_3D(points, bulges, true);
}

PATH_3D rectangle(double width, double height) {
  return closedPath(
      {PNT_3D(0, 0, 0), PNT_3D(width, 0, 0), PNT_3D(width, height, 0), PNT_3D(0, height, 0)});
}

double areaOf(const std::vector<PATH_3D>& paths) {
  double sum = 0;
  for (const PATH_3D& path : paths) sum += path.area();
  return sum;
}

double distanceOf(const PATH_3D& path, const PNT_2D& p) {
  std::size_t edge;
  double t;
  path.nearest(p, edge, t);
  return path.edges[edge].at(t).PNT_2D::dist(p);
}

// Each edge starts where the previous one ends, and closed paths end where they start.
void expectConnected(const PATH_3D& path) {
  ASSERT_FALSE(path.empty());
  for (std::size_t i = 0; i + 1 < path.edges.size(); ++i)
    EXPECT_TRUE(path.edges[i].p2 == path.edges[i + 1].p1);
  EXPECT_TRUE(!path.closed || path.start() == path.end());
  for (const EDGE_3D& edge : path.edges) {
    if (!edge.isArc()) continue;
    EXPECT_NEAR(edge.center.dist(edge.p1), edge.radius, 1e-6 * edge.radius);
    EXPECT_NEAR(edge.center.dist(edge.p2), edge.radius, 1e-6 * edge.radius);
  }
}

TEST(OffsetPath, KnownShapes) {
  constexpr auto round = OFFSET_JOIN::round, mitre = OFFSET_JOIN::mitre, bevel = OFFSET_JOIN::bevel;
  const PATH_3D box = rectangle(10, 6), ring(CIRCLE_3D(1, 2, 0, 3));
  const PATH_3D pill = closedPath(
      {PNT_3D(0, 0, 0), PNT_3D(8, 0, 0), PNT_3D(8, 4, 0), PNT_3D(0, 4, 0)}, {0, 1, 0, 1});
  const PATH_3D waist =
      closedPath({PNT_3D(0, 0, 0), PNT_3D(10, 0, 0), PNT_3D(10, 4, 0), PNT_3D(20, 4, 0),
                  PNT_3D(20, 0, 0), PNT_3D(30, 0, 0), PNT_3D(30, 10, 0), PNT_3D(20, 10, 0),
                  PNT_3D(20, 6, 0), PNT_3D(10, 6, 0), PNT_3D(10, 10, 0), PNT_3D(0, 10, 0)});
  // Two squares of 6, each with the rest that two arcs about the corners of the waist leave.
  const double waistArea = 72 + 4 * (2 - std::sqrt(0.75) - kPi / 3);
  const struct {
    const char* name;
    PATH_3D path;
    double dist;
    OFFSET_JOIN join;
    std::size_t paths, edges;
    double area;
  } cases[] = {
      {"rectangle inwards", box, -1, round, 1, 4, 32},
      {"rectangle outwards, round", box, 1, round, 1, 8, 92 + kPi},
      {"rectangle outwards, mitre", box, 1, mitre, 1, 12, 96},
      {"rectangle outwards, bevel", box, 1, bevel, 1, 8, 94},
      {"too far inwards", box, -4, round, 0, 0, 0},
      {"no middle line", box, -3, round, 0, 0, 0},
      {"circle outwards", ring, 1, round, 1, 1, 16 * kPi},
      {"circle inwards", ring, -1, round, 1, 1, 4 * kPi},
      {"circle to its centre", ring, -3, round, 0, 0, 0},
      {"circle beyond it", ring, -5, round, 0, 0, 0},
      {"arcs stay arcs", pill, 1, round, 1, 4, 48 + 9 * kPi},
      {"arcs stay arcs inwards", pill, -1, round, 1, 4, 16 + kPi},
      {"a waist too narrow gives two", waist, -2, round, 2, 14, waistArea},
  };
  for (const auto& c : named(cases)) {
    const std::vector<PATH_3D> out = offsetsOf(c.path, c.dist, c.join);
    EXPECT_EQ(out.size(), c.paths);
    std::size_t edges = 0;
    for (const PATH_3D& path : out) {
      edges += path.edges.size();
      EXPECT_TRUE(path.closed);
      expectConnected(path);
    }
    EXPECT_EQ(edges, c.edges);
    EXPECT_NEAR(areaOf(out), c.area, 1e-9);
  }
}

TEST(OffsetPath, OpenChainsKeepToTheirSide) {
  const PATH_3D chain({PNT_3D(0, 0, 1), PNT_3D(10, 0, 2), PNT_3D(10, 10, 4)}, {}, false);
  const std::vector<PATH_3D> right = offsetsOf(chain, 1), left = offsetsOf(chain, -1);
  ASSERT_EQ(right.size(), 1u);
  ASSERT_EQ(left.size(), 1u);
  EXPECT_EQ(right[0].edges.size(), 3u);
  EXPECT_TRUE(right[0].start() == PNT_3D(0, -1, 1) && right[0].end() == PNT_3D(11, 10, 4));
  EXPECT_EQ(left[0].edges.size(), 2u);
  EXPECT_NEAR(left[0].edges[0].p2.PNT_2D::dist(9, 1), 0, 1e-12);
  EXPECT_NEAR(left[0].edges[0].p2.z, (1.9 + 2.2) / 2, 1e-12);
}

TEST(OffsetPath, MitresStopAtTheirLimit) {
  const PATH_3D spike({PNT_3D(0, 0, 0), PNT_3D(10, 0, 0), PNT_3D(0, 1, 0)}, {}, false);
  OFFSET_OPTIONS options;
  options.join = OFFSET_JOIN::mitre;
  std::vector<PATH_3D> out;
  ASSERT_TRUE(offsetPath(spike, 1, options, out));
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(out[0].edges.size(), 3u);
  options.mitreLimit = 100;
  out.clear();
  ASSERT_TRUE(offsetPath(spike, 1, options, out));
  ASSERT_EQ(out[0].edges.size(), 4u);
  EXPECT_NEAR(out[0].edges[1].p2.y, -1, 1e-12);
  EXPECT_GT(out[0].edges[1].p2.x, 29);
}

PATH_3D randomChain(std::mt19937& random, bool closed) {
  std::uniform_real_distribution<double> place(-10, 10), bulge(-1.5, 1.5);
  std::vector<PNT_3D> points;
  std::vector<double> bulges;
  for (auto n = 2 + random() % 12; n-- > 0;) {
    points.emplace_back(place(random), place(random), 0);
    bulges.push_back(random() % 3 == 0 ? bulge(random) : 0);
  }
  return PATH_3D(points, bulges, closed);
}

// Checks the guarantees of every result, and completeness: a point at exactly the distance from the
// path that is no closer to any other part of it must lie on a result.
TEST(OffsetPath, KeepsItsDistanceAndMissesNothing) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> distance(-3, 3), share(0, 1);
  int wanted = 0;
  for (const int round : rounds(600)) {
    const PATH_3D path = randomChain(random, round % 2 == 0);
    const double dist = distance(random), d = std::fabs(dist);
    const std::vector<PATH_3D> out = offsetsOf(path, dist);
    for (const PATH_3D& result : out) {
      expectConnected(result);
      for (const EDGE_3D& edge : result.edges)
        for (const double t : {0.0, 0.2, 0.5, 0.9})
          EXPECT_NEAR(distanceOf(path, edge.at(t)), d, 1e-8 * d + 1e-11);
    }
    for (const EDGE_3D& edge : path.edges) {
      const double t = share(random);
      const PNT_2D along = edge.direction(t);
      const PNT_2D p = edge.at(t) + PNT_2D(along.y * dist, -along.x * dist);
      if (distanceOf(path, p) < d - 1e-9) continue;
      ++wanted;
      double least = std::numeric_limits<double>::infinity();
      for (const PATH_3D& result : out) least = std::min(least, distanceOf(result, p));
      EXPECT_LE(least, 1e-7);
    }
  }
  EXPECT_GT(wanted, 800);
}

// Rotating or mirroring the path, or starting elsewhere, leads to the same results.
TEST(OffsetPath, DoesNotDependOnTheStartOrTheFrame) {
  std::mt19937 random(2);
  for ([[maybe_unused]] const int round : rounds(150)) {
    const PATH_3D path = randomChain(random, true);
    const std::vector<PATH_3D> out = offsetsOf(path, 0.8);
    PATH_3D other = path;
    std::rotate(other.edges.begin(), other.edges.begin() + 1, other.edges.end());
    const std::vector<PATH_3D> later = offsetsOf(other, 0.8);
    const std::vector<PATH_3D> back = offsetsOf(path.reversed(), -0.8);
    EXPECT_EQ(later.size(), out.size());
    EXPECT_EQ(back.size(), out.size());
    EXPECT_NEAR(areaOf(later), areaOf(out), 1e-7);
    EXPECT_NEAR(areaOf(back), -areaOf(out), 1e-7);
    for (EDGE_3D& edge : other.edges) edge.move(PNT_3D(1e5, -2e5, 0));
    EXPECT_NEAR(areaOf(offsetsOf(other, 0.8)), areaOf(out), 1e-3);
  }
}

TEST(OffsetPath, RingsStayClosed) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> radius(2, 10), bulge(-0.2, 0.2);
  for (const int round : rounds(200)) {
    std::vector<PNT_3D> points;
    std::vector<double> bulges;
    const bool onLattice = round % 2 == 0;
    for (int i = 0; i < 24; ++i) {
      const double r = radius(random), a = kPi * i / 12;
      const double x = r * std::cos(a), y = r * std::sin(a);
      points.emplace_back(onLattice ? std::round(x) : x, onLattice ? std::round(y) : y, 0);
      bulges.push_back(onLattice ? 0 : bulge(random));
    }
    const PATH_3D ring = closedPath(points, bulges);
    if (!selfIntersections(ring).empty()) continue;
    for (const double dist : {-1.0, -0.5, 0.5, 1.0, 2.0})
      for (const OFFSET_JOIN join : {OFFSET_JOIN::round, OFFSET_JOIN::mitre, OFFSET_JOIN::bevel})
        for (const PATH_3D& path : offsetsOf(ring, dist, join)) {
          EXPECT_TRUE(path.closed) << "distance " << dist;
          expectConnected(path);
        }
  }
}

// A path that runs twice along itself has the same offsets as a single pass.
TEST(OffsetPath, RunningTwiceAlongItselfChangesNothing) {
  const PATH_3D once({PNT_3D(0, 0, 0), PNT_3D(10, 0, 0), PNT_3D(10, 5, 0), PNT_3D(0, 5, 0)}, {},
                     true);
  std::vector<PNT_3D> points;
  for (int turn = 0; turn < 2; ++turn)
    for (const EDGE_3D& edge : once.edges) points.push_back(edge.p1);
  const PATH_3D twice = closedPath(points);
  for (const double dist : {-1.0, 1.0}) {
    const std::vector<PATH_3D> out = offsetsOf(twice, dist);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_NEAR(out[0].area(), offsetsOf(once, dist)[0].area(), 1e-9);
  }
  const PATH_3D needle = closedPath({PNT_3D(0, 0, 0), PNT_3D(10, 0, 0)});
  const std::vector<PATH_3D> around = offsetsOf(needle, 1);
  ASSERT_EQ(around.size(), 1u);
  EXPECT_NEAR(std::fabs(around[0].area()), 20 + kPi, 1e-9);
}

TEST(OffsetPath, OddNumbersAreRefusedOrHarmless) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  std::vector<PATH_3D> out;
  const OFFSET_OPTIONS options;
  EXPECT_FALSE(offsetPath(rectangle(nan, 1), 1, options, out));
  EXPECT_FALSE(offsetPath(rectangle(inf, 1), 1, options, out));
  EXPECT_FALSE(offsetPath(rectangle(2, 1), nan, options, out));
  EXPECT_FALSE(offsetPath(rectangle(2, 1), inf, options, out));
  EXPECT_TRUE(offsetPath(PATH_3D(), 1, options, out));
  EXPECT_TRUE(offsetPath(PATH_3D(LINE_3D(1, 1, 0, 1, 1, 0)), 1, options, out));
  EXPECT_TRUE(out.empty());
  EXPECT_TRUE(offsetPath(rectangle(2, 1), 0, options, out));
  ASSERT_EQ(out.size(), 1u);
  EXPECT_TRUE(out[0].start() == PNT_3D(0, 0, 0));
  out.clear();
  EXPECT_TRUE(offsetPath(rectangle(1e90, 1e-90), 1e80, options, out));
  OFFSET_OPTIONS odd;
  odd.join = OFFSET_JOIN::mitre;
  for (const double limit : {nan, -1.0, 0.0, inf}) {
    odd.mitreLimit = limit;
    out.clear();
    EXPECT_TRUE(offsetPath(rectangle(2, 1), 1, odd, out));
    EXPECT_EQ(out.size(), 1u);
  }
}

// Time must grow linearly with the detail of a coastline: each part is compared only with its
// surroundings. This test counts the results; the benchmark measures the time.
TEST(OffsetPath, LongChainsGiveOneResult) {
  std::vector<PNT_3D> points;
  for (int i = 0; i < 8000; ++i) points.emplace_back(i, 5 * std::sin(i * 0.1), 0);
  for (const double dist : {1.0, -20.0}) {
    const std::vector<PATH_3D> out = offsetsOf(PATH_3D(points, {}, false), dist);
    EXPECT_EQ(out.size(), 1u);
  }
}

// Very long edges extend beyond their ends by more than rounding.
TEST(OffsetZone, ADiscThatMissesItIsOutside) {
  const vek0::detail::EdgeZone zone(EDGE_3D(PNT_3D(0, 0, 0), PNT_3D(1e6, 0, 0)), 1);
  for (const double x : {-5e-7, 1e6 + 5e-7}) {
    EXPECT_GT(zone.depth(PNT_2D(x, 0)), 0);
    EXPECT_FALSE(zone.misses(PNT_2D(x, 0), 1e-12));
  }
}

}  // namespace
