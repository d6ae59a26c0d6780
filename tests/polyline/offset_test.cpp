#include "support/test.h"

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
  for (const std::size_t i : rounds<std::size_t>(got.size())) {
    EXPECT_NEAR(got[i].x, want[i].x, 1e-9);
    EXPECT_NEAR(got[i].y, want[i].y, 1e-9);
  }
}

TEST(CalcParalLine, KnownChains) {
  for (const Row& c : rows()) {
    const std::vector<PNT_2D> points = pts(c.text("points"));
    expectPoints(CalcParalLine(points, c.real("dist"), c.flag("closed")), c.text("expected"));
    std::vector<PNT_2D> out(points.size() + 2, PNT_2D(77, 77));
    const int n = CalcParalLine(points.data(), static_cast<int>(points.size()), c.real("dist"),
                                c.flag("closed"), out.data());
    out.resize(static_cast<std::size_t>(n));
    expectPoints(out, c.text("expected"));
  }
  EXPECT_EQ(CalcParalLine(static_cast<const PNT_2D*>(nullptr), 0, 1, true, nullptr), 0);
}

// The offsets of two long segments meet directly and swallow the short step between them.
TEST(CalcParalLine, SwallowedSegmentLeavesItsNeighboursToMeet) {
  const std::vector<PNT_2D> out = CalcParalLine(pts("0,0 10,0 10.5,0.5 10.5,10"), -2, false);
  expectPoints(out, "0,2 8.5,2 8.5,10");
}

// The algorithm as specified, which starts over after every removal.
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
  for (const int round : rounds(5000)) {
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
  // The short step is removed; the corner lies on the first segment, at 85 % of it.
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
  for (const Row& c : rows()) {
    const std::vector<PNT_2D> points = pts(c.text("points"));
    EXPECT_EQ(PtLeftSide(points.data(), static_cast<int>(points.size()), c.flag("closed"),
                         PNT_2D(c.real("x"), c.real("y"))),
              c.flag("left"));
  }
}

// The left side of a counterclockwise ring is its inside.
TEST(PtLeftSide, OfARingIsItsInside) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> radius(2, 10), place(-11, 11);
  for ([[maybe_unused]] const int round : rounds(200)) {
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
