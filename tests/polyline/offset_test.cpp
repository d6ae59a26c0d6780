#include "vek0core/polyline/offset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

namespace {

std::vector<PNT_2D> pts(const std::string& text) {
  std::vector<PNT_2D> points;
  std::istringstream words(text);
  char comma;
  for (double x, y; words >> x >> comma >> y;) points.emplace_back(x, y);
  return points;
}

void expectPoints(const std::vector<PNT_2D>& got, const std::string& expected) {
  const std::vector<PNT_2D> want = pts(expected);
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_NEAR(got[i].x, want[i].x, 1e-9);
    EXPECT_NEAR(got[i].y, want[i].y, 1e-9);
  }
}

TEST(CalcParalLine, KnownChains) {
  const struct {
    const char* name;
    const char* points;
    bool closed;
    double dist;
    const char* expected;
  } cases[] = {
      {"left turn, outside", "0,0 10,0 10,10", false, 1, "0,-1 11,-1 11,10"},
      {"left turn, inside", "0,0 10,0 10,10", false, -1, "0,1 9,1 9,10"},
      {"two points", "0,0 10,0", false, 2, "0,-2 10,-2"},
      {"two points, closed or not", "0,0 10,0", true, 2, "0,-2 10,-2"},
      {"one segment and its repeats", "0,0 0,0 10,0 10,0", true, 2, "0,-2 10,-2"},
      {"square inwards from corner 1", "0,0 10,0 10,10 0,10", true, -1, "9,1 9,9 1,9 1,1"},
      {"square outwards from corner 1", "0,0 10,0 10,10 0,10", true, 1, "11,-1 11,11 -1,11 -1,-1"},
      {"closed by its last point", "0,0 10,0 10,10 0,10 0,0", true, -1, "9,1 9,9 1,9 1,1"},
      {"straight on", "0,0 5,0 10,0", false, 1, "0,-1 5,-1 10,-1"},
      {"points that coincide", "0,0 5,0 5,0 5,5", false, 1, "0,-1 6,-1 6,5"},
      {"nothing but one point", "3,3 3,3 3,3", true, 1, ""},
      {"a single point", "3,3", false, 1, ""},
      {"no distance", "0,0 10,0 10,10", false, 0, "0,0 10,0 10,10"},
      {"turns back: the second goes", "0,0 10,0 1,0", false, 1, "0,-1 10,-1"},
      {"turns back: the first goes", "0,0 9,0 -1,0", false, 1, "9,1 -1,1"},
      {"spike beyond ten lengths", "0,0 10,0 0.1,0.1", false, 1, "0,-1 10,-1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::vector<PNT_2D> points = pts(c.points);
    expectPoints(CalcParalLine(points, c.dist, c.closed), c.expected);
    std::vector<PNT_2D> out(points.size() + 2, PNT_2D(77, 77));
    const int n =
        CalcParalLine(points.data(), static_cast<int>(points.size()), c.dist, c.closed, out.data());
    out.resize(static_cast<std::size_t>(n));
    expectPoints(out, c.expected);
  }
  EXPECT_EQ(CalcParalLine(static_cast<const PNT_2D*>(nullptr), 0, 1, true, nullptr), 0);
}

// A short step between two long segments, swallowed by their offsets: these meet directly.
TEST(CalcParalLine, SwallowedSegmentLeavesItsNeighboursToMeet) {
  const std::vector<PNT_2D> out = CalcParalLine(pts("0,0 10,0 10.5,0.5 10.5,10"), -2, false);
  expectPoints(out, "0,2 8.5,2 8.5,10");
}

// The steps as they are told, with a new pass after every removal.
std::vector<PNT_2D> bySteps(const std::vector<PNT_2D>& pts, double dist, bool closed) {
  const auto same = [](const PNT_2D& a, const PNT_2D& b) {
    return std::fabs(a.x - b.x) <= 1e-12 && std::fabs(a.y - b.y) <= 1e-12;
  };
  std::vector<PNT_2D> out;
  if (pts.size() < 2) return out;
  std::vector<LINE_2D> lines;
  const auto add = [&](const PNT_2D& a, const PNT_2D& b) {
    if (!same(a, b)) lines.emplace_back(a, b);
  };
  for (std::size_t i = 0; i + 1 < pts.size(); ++i) add(pts[i], pts[i + 1]);
  if (lines.size() == 1) closed = false;
  if (closed) {
    add(pts.back(), pts.front());
    add(pts[0], pts[1]);
  }
  std::vector<PAR_LINE_2D> rays;
  for (const LINE_2D& line : lines) {
    const LINE_2D at = CalcParalLineAt(line, dist);
    if (!same(at.p1, at.p2))
      rays.emplace_back(at.p1.x, at.p1.y, line.p2.x - line.p1.x, line.p2.y - line.p1.y);
  }
  while (!rays.empty()) {
    out.clear();
    PNT_2D p(0, 0);
    if (!closed) {
      rays.front().calcPt(0, p);
      out.push_back(p);
    }
    double u0 = 0;
    bool rejected = false;
    for (std::size_t i = 0; i + 1 < rays.size() && !rejected; ++i) {
      double t = 1, u = 0;
      const int code = rays[i].intersect(rays[i + 1], t, u);
      if (code == 1) t = 1, u = 0;
      if (code != 0) {
        rays[i].calcPt(t, p);
        out.push_back(p);
      }
      rejected = code == 0 || !(t >= u0 && t <= 10 && u <= 10);
      u0 = u;
      if (!rejected) continue;
      const bool first = rays[i].length() < rays[i + 1].length();
      rays.erase(rays.begin() + static_cast<std::ptrdiff_t>(first ? i : i + 1));
    }
    if (rejected) continue;
    if (!closed) {
      rays.back().calcPt(1, p);
      out.push_back(p);
    }
    return out;
  }
  return {};
}

TEST(CalcParalLine, GoesOnWhereANewPassWouldComeAgain) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> place(-10, 10), distance(-3, 3);
  for (int round = 0; round < 5000; ++round) {
    SCOPED_TRACE(round);
    std::vector<PNT_2D> points;
    const bool onLattice = round % 4 == 0;
    for (auto n = random() % 12; n-- > 0;) {
      const double x = place(random), y = place(random);
      points.emplace_back(onLattice ? std::round(x / 4) : x, onLattice ? std::round(y / 4) : y);
    }
    const double dist = onLattice ? std::round(distance(random)) : distance(random);
    const bool closed = round % 2 == 0;
    EXPECT_EQ(CalcParalLine(points, dist, closed), bySteps(points, dist, closed));
  }
}

TEST(CalcParalLine, HeightsAreThoseOfTheSharedPoints) {
  const std::vector<PNT_3D> points{PNT_3D(0, 0, 1), PNT_3D(10, 0, 2), PNT_3D(10, 10, 4)};
  const std::vector<PNT_3D> out = CalcParalLine(points, 1, false);
  ASSERT_EQ(out.size(), 3u);
  EXPECT_TRUE(out[0] == PNT_3D(0, -1, 1));
  EXPECT_TRUE(out[1] == PNT_3D(11, -1, 2));
  EXPECT_TRUE(out[2] == PNT_3D(11, 10, 4));
  // The short step goes; the corner lies on the first segment, at 85 % of it.
  const std::vector<PNT_3D> step{PNT_3D(0, 0, 0), PNT_3D(10, 0, 10), PNT_3D(10.5, 0.5, 10),
                                 PNT_3D(10.5, 10, 0)};
  const std::vector<PNT_3D> met = CalcParalLine(step, -2, false);
  ASSERT_EQ(met.size(), 3u);
  EXPECT_NEAR(met[1].z, 8.5, 1e-12);
  const LINE_3D shifted = CalcParalLineAtPlane(LINE_3D(0, 0, 5, 10, 0, 7), 2);
  EXPECT_TRUE(shifted == LINE_3D(0, -2, 5, 10, -2, 7));
}

TEST(CalcParalLine, NumbersThatAreNoneDropTheirSegments) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(CalcParalLine({PNT_2D(nan, 0), PNT_2D(nan, 1), PNT_2D(2, nan)}, 1, true).empty());
  EXPECT_TRUE(CalcParalLine(pts("0,0 1,0 1,1"), nan, false).empty());
  expectPoints(CalcParalLine({PNT_2D(0, 0), PNT_2D(5, 0), PNT_2D(nan, 1)}, 1, false), "0,-1 5,-1");
  EXPECT_LE(CalcParalLine({PNT_2D(0, 0), PNT_2D(inf, 0), PNT_2D(1, 1)}, 1, true).size(), 5u);
  LINE_2D point(1, 1, 1, 1);
  TranslateLine(point, 5);
  EXPECT_TRUE(point == LINE_2D(1, 1, 1, 1));
}

TEST(PtLeftSide, NearestSegmentDecides) {
  const struct {
    const char* name;
    const char* points;
    bool closed;
    double x, y;
    bool left;
  } cases[] = {
      {"beside the first", "0,0 10,0 10,10", false, 5, 1, true},
      {"beside the other side of it", "0,0 10,0 10,10", false, 5, -1, false},
      {"on it", "0,0 10,0 10,10", false, 5, 0, false},
      {"outside a left turn's corner", "0,0 10,0 10,10", false, 11, -1, false},
      {"above its first, beyond the other", "0,0 10,0 10,10", false, 10.1, 9, false},
      {"inside a right turn's corner", "0,0 10,0 10,-10", false, 9, -1, false},
      {"outside a right turn's corner", "0,0 10,0 10,-10", false, 11, 1, true},
      {"beyond the start", "0,0 10,0 10,10", false, -5, 1, true},
      {"closed: nearest is the last", "0,0 10,0 10,10 0,10", true, 1, 5, true},
      {"open: nearest is the first", "0,0 10,0 10,10 0,10", false, 1, 4, true},
      {"outside the closed square", "0,0 10,0 10,10 0,10", true, -1, -1, false},
      {"repeated points", "0,0 0,0 10,0 10,0", false, 5, 1, true},
      {"one point", "0,0", false, 5, 1, false},
      {"one place", "0,0 0,0", true, 5, 1, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::vector<PNT_2D> points = pts(c.points);
    EXPECT_EQ(
        PtLeftSide(points.data(), static_cast<int>(points.size()), c.closed, PNT_2D(c.x, c.y)),
        c.left);
  }
}

// Left of a counterclockwise ring is inside it.
TEST(PtLeftSide, OfARingIsItsInside) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> radius(2, 10), place(-11, 11);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    std::vector<PNT_2D> ring;
    for (int i = 0; i < 12; ++i) {
      const double r = radius(random), a = 6.283185307179586 * i / 12;
      ring.emplace_back(r * std::cos(a), r * std::sin(a));
    }
    const PNT_2D p(place(random), place(random));
    bool inside = false;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const PNT_2D &a = ring[i], &b = ring[(i + 1) % ring.size()];
      if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x))
        inside = !inside;
    }
    EXPECT_EQ(PtLeftSide(ring.data(), 12, true, p), inside);
  }
}

}  // namespace
