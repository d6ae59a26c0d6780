#include "geometry/boxindex.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

PATH_3D randomPath(std::mt19937& random, int n, double reach, bool closed) {
  std::uniform_real_distribution<double> place(-reach, reach), bulge(-1, 1);
  std::vector<PNT_3D> points;
  std::vector<double> bulges;
  for (int i = 0; i < n; ++i) {
    points.emplace_back(place(random), place(random), 0);
    bulges.push_back(random() % 2 == 0 ? 0 : bulge(random));
  }
  return PATH_3D(points, bulges, closed);
}

TEST(Path, MeasuresOfKnownShapes) {
  const PATH_3D square({PNT_3D(0, 0, 0), PNT_3D(4, 0, 0), PNT_3D(4, 4, 0), PNT_3D(0, 4, 0)}, {},
                       true);
  EXPECT_DOUBLE_EQ(square.length(), 16);
  EXPECT_DOUBLE_EQ(square.area(), 16);
  EXPECT_DOUBLE_EQ(square.reversed().area(), -16);
  const PATH_3D pill({PNT_3D(0, 0, 0), PNT_3D(4, 0, 0), PNT_3D(4, 2, 0), PNT_3D(0, 2, 0)},
                     {0, 1, 0, 1}, true);
  EXPECT_NEAR(pill.area(), 8 + kPi, 1e-13);
  EXPECT_NEAR(pill.length(), 8 + 2 * kPi, 1e-13);
  EXPECT_NEAR(PATH_3D(CIRCLE_3D(7, 7, 0, 3)).area(), 9 * kPi, 1e-12);
}

TEST(Path, PartsAddUpToTheWhole) {
  std::mt19937 random(1);
  for (const bool closed : {false, true}) {
    const PATH_3D path = randomPath(random, 7, 10, closed);
    const PATH_3D middle = path.part(1, 0.25, 4, 0.5);
    const PATH_3D around = path.part(4, 0.5, 1, 0.25);
    EXPECT_EQ(around.empty(), !closed);
    const double whole = closed ? path.length() : middle.length();
    EXPECT_NEAR(middle.length() + around.length(), whole, 1e-12 * whole);
    EXPECT_TRUE(middle.start() == path.edges[1].at(0.25) && middle.end() == path.edges[4].at(0.5));
  }
}

// Compares the index with a search over all pairs.
TEST(Path, CrossingsAreThoseOfAllPairsOfEdges) {
  std::mt19937 random(3);
  for (const int round : rounds(100)) {
    const PATH_3D a = randomPath(random, 12, 5, round % 2 == 0);
    const PATH_3D b = randomPath(random, 12, 5, false);
    std::vector<EDGE_CROSSING> all;
    for (const EDGE_3D& e : a.edges)
      for (const EDGE_3D& f : b.edges) e.intersect(f, all, 1e-11);
    const std::vector<PATH_CROSSING> found = intersectPaths(a, b);
    EXPECT_EQ(found.size(), all.size());
    for (const PATH_CROSSING& c : found)
      EXPECT_NEAR(a.edges[c.edge1].at(c.t).PNT_2D::dist(b.edges[c.edge2].at(c.u)), 0, 1e-9);
  }
}

TEST(Path, MeetsItselfWhereItCrosses) {
  const PATH_3D bow({PNT_3D(0, 0, 0), PNT_3D(2, 2, 0), PNT_3D(2, 0, 0), PNT_3D(0, 2, 0)}, {}, true);
  const std::vector<PATH_CROSSING> found = selfIntersections(bow);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_NEAR(found[0].pnt.PNT_2D::dist(1, 1), 0, 1e-12);
  EXPECT_EQ(found[0].edge1, 0u);
  EXPECT_EQ(found[0].edge2, 2u);
  const PATH_3D square({PNT_3D(0, 0, 0), PNT_3D(4, 0, 0), PNT_3D(4, 4, 0), PNT_3D(0, 4, 0)}, {},
                       true);
  EXPECT_TRUE(selfIntersections(square).empty());
}

// A vertex lies on two edges; the start of a closed path lies on the first and the last one.
TEST(Path, CornersCountOnceWhereverThePathBegins) {
  PATH_3D path(
      {PNT_3D(0, 0, 0), PNT_3D(4, 0, 0), PNT_3D(4, 4, 0), PNT_3D(-4, -4, 0), PNT_3D(-4, 0, 0)}, {},
      true);
  const PATH_3D upright(LINE_3D(0, -9, 0, 0, 9, 0));
  for ([[maybe_unused]] const std::size_t turn : rounds<std::size_t>(path.edges.size())) {
    EXPECT_EQ(selfIntersections(path).size(), 1u);
    EXPECT_EQ(intersectPaths(upright, path).size(), 1u);
    EXPECT_EQ(intersectPaths(path, upright).size(), 2u) << "passed twice";
    std::rotate(path.edges.begin(), path.edges.begin() + 1, path.edges.end());
  }
}

TEST(Path, NumbersThatAreNoneHaveNoCrossings) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const PATH_3D bad(LINE_3D(nan, 0, 0, 1, 1, 0)), good(LINE_3D(0, 1, 0, 1, 0, 0));
  EXPECT_TRUE(intersectPaths(bad, good).empty());
  EXPECT_TRUE(intersectPaths(good, bad).empty());
  EXPECT_TRUE(intersectPaths(PATH_3D(), good).empty());
  EXPECT_TRUE(selfIntersections(bad).empty());
}

TEST(BoxIndex, FindsWhatAScanFinds) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> place(0, 100), size(0, 5);
  for (const int n : {0, 1, 2, 7, 300}) {
    std::vector<RECT_2D> boxes;
    for (int i = 0; i < n; ++i) {
      const double x = place(random), y = place(random);
      boxes.emplace_back(x, y, x + size(random), y + size(random));
    }
    const vek0::detail::BoxIndex index(boxes);
    for (int round = 0; round < 50; ++round) {
      const double x = place(random), y = place(random);
      const RECT_2D box(x, y, x + 10, y + 10);
      std::size_t expected = 0, found = 0;
      for (const RECT_2D& b : boxes) expected += b.intersect(box);
      index.find(box, [&](std::size_t i) { return ++found, boxes[i].intersect(box); });
      EXPECT_EQ(found, expected);
    }
  }
}

}  // namespace
