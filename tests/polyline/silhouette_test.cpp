#include "support/test.h"

namespace {

using Ring = std::vector<PNT_3D>;
using Wide = std::vector<WIDE_VERTEX>;

/// Parses points written as "0,0 10,0"; a vertex may add its widths: "0,0,1,2".
std::vector<std::vector<double>> numbers(const std::string& text) {
  std::vector<std::vector<double>> out;
  std::istringstream points(text);
  for (std::string point; points >> point;) {
    out.emplace_back();
    std::istringstream values(point);
    for (std::string value; std::getline(values, value, ',');)
      out.back().push_back(std::stod(value));
  }
  return out;
}

/// Vertices with the given width, unless the text specifies one.
Wide wide(const std::string& text, double width) {
  Wide out;
  for (const auto& v : numbers(text)) {
    const bool own = v.size() == 4;
    out.push_back({PNT_3D(v[0], v[1], 0), own ? v[2] : width, own ? v[3] : width});
  }
  return out;
}

void expectRing(const Ring& got, const std::string& want) {
  const auto points = numbers(want);
  ASSERT_EQ(got.size(), points.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    EXPECT_NEAR(got[i].PNT_2D::dist(points[i][0], points[i][1]), 0, 1e-12)
        << "point " << i << ": " << got[i].x << "," << got[i].y;
  }
}

double area(const Ring& ring) {
  double twice = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const PNT_3D &a = ring[i], &b = ring[(i + 1) % ring.size()];
    twice += a.x * b.y - a.y * b.x;
  }
  return twice / 2;
}

TEST(Silhouette, Rings) {
  for (const Row& t : rows()) {
    const CPolylineSilhouette silhouette(wide(t.text("vertexes"), 2), t.flag("closed"));
    const std::vector<std::string> rings = t.list("rings");
    ASSERT_EQ(silhouette.getNoRuns(), rings.size());
    for (std::size_t i = 0; i < rings.size(); ++i) expectRing(silhouette.getRun(i), rings[i]);
  }
}

// Along a straight line, rounding decides how the sides meet.
TEST(Silhouette, StraightJointsStayAtTheirVertexes) {
  for (int degrees = 0; degrees < 360; degrees += 7) {
    SCOPED_TRACE(degrees);
    Wide path;
    for (int i = 0; i < 20; ++i) {
      PNT_3D at(i * (i + 0.1), 0, 0);
      at.rotate(PNT_3D(-7, 3, 0), degrees * 3.141592653589793 / 180);
      path.push_back({at, 2, 2});
    }
    const CPolylineSilhouette silhouette(path, false);
    for (const PNT_3D& p : silhouette.getRun(0)) {
      double nearest = 1e9;
      for (const WIDE_VERTEX& v : path) nearest = std::fmin(nearest, p.dist(v.pnt));
      EXPECT_NEAR(nearest, 1, 1e-6);
    }
  }
}

// A miter reaches 1 / sin(a / 2) half widths out of a corner of angle a; the limit is 8.
TEST(Silhouette, SharpCornersAreBevelled) {
  for (const double degrees : named<double>({20.0, 15.0, 14.0, 5.0, 0.1})) {
    const double a = degrees * 3.141592653589793 / 180;
    const Wide corner{{PNT_3D(100, 0, 0), 2, 2},
                      {PNT_3D(0, 0, 0), 2, 2},
                      {PNT_3D(100 * std::cos(a), 100 * std::sin(a), 0), 2, 2}};
    const CPolylineSilhouette silhouette(corner, false);
    double farthest = 0;
    for (const PNT_3D& p : silhouette.getRun(0))
      if (p.x < 2) farthest = std::fmax(farthest, p.PNT_2D::dist(0, 0));
    const double reach = 1 / std::sin(a / 2);
    EXPECT_NEAR(farthest, reach <= 8 ? reach : 1, 1e-9);
  }
}

TEST(Silhouette, KeepsTheHeightOfItsVertices) {
  const Wide slope{{PNT_3D(0, 0, 1), 2, 2}, {PNT_3D(10, 0, 2), 2, 2}, {PNT_3D(10, 10, 3), 2, 2}};
  const CPolylineSilhouette silhouette(slope, false);
  const double want[] = {1, 2, 3, 3, 2, 1};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(silhouette.getRun(0)[i].z, want[i]);
}

/// A path of constant width with gentle turns.
Wide gentlePath(std::mt19937& random, std::size_t n, double width) {
  std::uniform_real_distribution<double> real(-1, 1);
  Wide path;
  double x = 0, y = 0, heading = 0;
  for (std::size_t i = 0; i < n; ++i) {
    path.push_back({PNT_3D(x, y, 0), width, width});
    heading += 0.5 * real(random);
    x += (10 + 3 * real(random)) * std::cos(heading);
    y += (10 + 3 * real(random)) * std::sin(heading);
  }
  return path;
}

// A miter adds to one side what it removes from the other, so the area is width * length.
TEST(Silhouette, AreaIsWidthTimesLengthAndDirectionDoesNotMatter) {
  std::mt19937 random(61);
  for ([[maybe_unused]] const int round : rounds(200)) {
    const Wide path = gentlePath(random, 20, 1.5);
    double length = 0;
    for (std::size_t i = 0; i + 1 < path.size(); ++i) length += path[i].pnt.dist(path[i + 1].pnt);
    const Wide back(path.rbegin(), path.rend());
    const CPolylineSilhouette there(path, false), again(back, false);
    EXPECT_NEAR(area(there.getRun(0)), -1.5 * length, 1e-9);
    EXPECT_NEAR(area(again.getRun(0)), -1.5 * length, 1e-9);
    // Each side of the outline runs half the width away from the line of its segment.
    const Ring& ring = there.getRun(0);
    ASSERT_EQ(ring.size(), 2 * path.size());
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      const LINE_2D line(path[i].pnt, path[i + 1].pnt);
      for (const std::size_t k : {i, i + 1, ring.size() - 1 - i, ring.size() - 2 - i})
        EXPECT_NEAR(std::fabs(line.dist(ring[k])), 0.75, 1e-9);
    }
  }
}

TEST(Silhouette, MovesAndTurnsWithThePolyline) {
  std::mt19937 random(62);
  std::uniform_real_distribution<double> real(-50, 50);
  for ([[maybe_unused]] const int round : rounds(300)) {
    Wide path, moved;
    for (int i = 0; i < 8; ++i)
      path.push_back({PNT_3D(real(random), real(random), 0), std::fabs(real(random)) / 5, 3});
    const PNT_3D center(real(random), real(random), 0);
    for (const WIDE_VERTEX& v : path) {
      moved.push_back(v);
      moved.back().pnt.rotate(center, 1);
    }
    for (const bool closed : {false, true}) {
      const CPolylineSilhouette before(path, closed), after(moved, closed);
      ASSERT_EQ(before.getNoRuns(), after.getNoRuns());
      for (std::size_t r = 0; r < before.getNoRuns(); ++r) {
        Ring turned = before.getRun(r);
        ASSERT_EQ(turned.size(), after.getRun(r).size());
        for (std::size_t i = 0; i < turned.size(); ++i) {
          turned[i].rotate(center, 1);
          EXPECT_LT(turned[i].dist(after.getRun(r)[i]), 1e-6);
        }
      }
    }
  }
}

// Winding number of the rings about a point.
int windings(const CPolylineSilhouette& silhouette, const PNT_2D& p) {
  int turns = 0;
  for (std::size_t r = 0; r < silhouette.getNoRuns(); ++r) {
    const Ring& ring = silhouette.getRun(r);
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const PNT_3D &a = ring[i], &b = ring[(i + 1) % ring.size()];
      if ((a.y <= p.y) == (b.y <= p.y)) continue;
      if (a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x) > p.x)
        turns += (b.y > a.y) == (r == 0) ? 1 : -1;
    }
  }
  return turns;
}

// The point of segment `i` at `along` of its length, `across` half widths to the left.
PNT_2D bodyPoint(const Wide& path, std::size_t i, double along, double across) {
  const PNT_3D &from = path[i].pnt, &to = path[(i + 1) % path.size()].pnt;
  const double half = (path[i].widthStart * (1 - along) + path[i].widthEnd * along) / 2;
  const double k = across * half / from.dist(to);
  return {from.x + along * (to.x - from.x) - k * (to.y - from.y),
          from.y + along * (to.y - from.y) + k * (to.x - from.x)};
}

bool isInBody(const Wide& path, std::size_t i, const PNT_2D& p) {
  const PNT_3D &from = path[i].pnt, way = path[(i + 1) % path.size()].pnt - from;
  const double length = std::hypot(way.x, way.y), dx = p.x - from.x, dy = p.y - from.y;
  const double along = (dx * way.x + dy * way.y) / length / length;
  const double half = (path[i].widthStart * (1 - along) + path[i].widthEnd * along) / 2;
  return along >= 0 && along <= 1 && std::fabs(dx * way.y - dy * way.x) <= half * length;
}

// The bodies of segments lie within the outline, and the outline within the extents, whether widths
// are constant, taper or jump. Nothing connects bodies where the width jumps.
TEST(Silhouette, HoldsWhatIsDrawn) {
  std::mt19937 random(64);
  std::uniform_real_distribution<double> real(-50, 50), share(0.001, 0.999);
  for (const int round : rounds(3000)) {
    const bool closed = round % 2 == 0, jumps = round % 3 == 0, tapers = round % 3 == 1;
    Wide path;
    for (int i = 0; i < 3 + round % 5; ++i) {
      const double own = std::fabs(real(random)), before = i > 0 ? path.back().widthEnd : 20;
      path.push_back({PNT_3D(real(random), real(random), 0), jumps ? own : before,
                      jumps || tapers ? std::fabs(real(random)) : before});
    }
    if (tapers && closed) path.back().widthEnd = path.front().widthStart;
    const CPolylineSilhouette silhouette(path, closed);
    RECT_2D box;
    box.initRegion();
    for (std::size_t r = 0; r < silhouette.getNoRuns(); ++r)
      for (const PNT_3D& p : silhouette.getRun(r)) box.updateRegion(p);
    box.inflate(1e-9, 1e-9);
    const std::size_t segments = path.size() - (closed ? 0 : 1);
    for (std::size_t i = 0; i < segments; ++i) {
      for (const double end : {0, 1})
        for (const double side : {-1, 1})
          EXPECT_TRUE(box.inside(bodyPoint(path, i, end, side))) << i;
      const PNT_2D within = bodyPoint(path, i, share(random), 2 * share(random) - 1);
      EXPECT_NE(windings(silhouette, within), 0) << i;
    }
    const PNT_2D anywhere(real(random), real(random));
    std::size_t bodies = 0;
    for (std::size_t i = 0; i < segments; ++i) bodies += isInBody(path, i, anywhere);
    EXPECT_TRUE(windings(silhouette, anywhere) != 0 || bodies == 0);
    EXPECT_TRUE(windings(silhouette, anywhere) == 0 || bodies > 0 || !jumps);
  }
}

RECT_3D boxOf(const std::vector<CPolylineSilhouette>& silhouettes) {
  RECT_3D box;
  box.initRegion();
  for (const CPolylineSilhouette& silhouette : silhouettes)
    for (std::size_t i = 0; i < silhouette.getNoRuns(); ++i)
      for (const PNT_3D& p : silhouette.getRun(i)) box.updateRegion(p);
  return box;
}

// The pieces may be filled one by one; those that do not enlarge the box are skipped.
TEST(SilhouettePieces, CoverWhatTheWholeCovers) {
  std::mt19937 random(65);
  std::uniform_real_distribution<double> real(-50, 50);
  std::size_t most = 0;
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(testing::Message() << "seed 65, round " << round);
    const bool closed = round % 2 == 0;
    Wide path;
    for (int i = 0; i < 3 + round % 11; ++i) {
      const bool repeats = i > 0 && real(random) < -20;
      const PNT_3D at = repeats ? path.back().pnt : PNT_3D(real(random), real(random), 0);
      path.push_back({at, 20, real(random) < 0 ? 20.0 : 30.0});
    }
    const CPolylineSilhouette whole(path, closed);
    std::vector<CPolylineSilhouette> pieces;
    CSilhouettePieces cut([&](const CPolylineSilhouette& piece) { pieces.push_back(piece); }, 4);
    for (const WIDE_VERTEX& vertex : path) cut.add(vertex);
    cut.finish(closed);
    most = std::max(most, pieces.size());
    RECT_3D box = boxOf({whole}), grown = boxOf({});
    CSilhouettePieces outer([&](const auto& piece) { grown.updateRegion(boxOf({piece})); }, 4);
    outer.leaveOutWithin(grown);
    for (const WIDE_VERTEX& vertex : path) outer.add(vertex);
    outer.finish(closed);
    EXPECT_LT(grown.min.dist(box.min) + grown.max.dist(box.max), 1e-9);
    for (const WIDE_VERTEX& vertex : path) {
      const PNT_2D p(vertex.pnt.x + real(random) / 2, vertex.pnt.y + real(random) / 2);
      bool isCovered = false;
      for (const auto& piece : pieces) isCovered = isCovered || windings(piece, p) != 0;
      EXPECT_EQ(isCovered, windings(whole, p) != 0);
    }
  }
  EXPECT_GT(most, 4u);
}

TEST(Silhouette, WildInputStaysBoundedAndANumber) {
  std::mt19937 random(63);
  std::uniform_real_distribution<double> real(-1, 1);
  std::uniform_int_distribution<int> exponent(-300, 300), pick(0, 3);
  for (const int round : rounds(3000)) {
    const int spread = round % 2 == 0 ? 0 : 300;
    const auto value = [&] {
      return real(random) * std::pow(10, std::min(spread, std::max(-spread, exponent(random))));
    };
    Wide path;
    double widest = 0, farthest = 0;
    for (int i = 0; i < 7; ++i) {
      const bool repeat = !path.empty() && pick(random) == 0;
      const PNT_3D at = repeat ? path.back().pnt : PNT_3D(value(), value(), value());
      path.push_back({at, value(), pick(random) == 0 ? 0 : value()});
      widest = std::fmax(
          widest, std::fmax(std::fabs(path.back().widthStart), std::fabs(path.back().widthEnd)));
      farthest = std::fmax(farthest, std::fmax(std::fabs(at.x), std::fabs(at.y)));
    }
    const double limit = (farthest + 4 * widest) * (1 + 1e-9);
    const bool isDot =
        std::all_of(path.begin(), path.end(), [&](const auto& v) { return v.pnt == path[0].pnt; });
    for (const bool closed : {false, true}) {
      const CPolylineSilhouette silhouette(path, closed);
      EXPECT_EQ(silhouette.getNoRuns(), closed && !isDot ? 2u : 1u);
      for (std::size_t r = 0; r < silhouette.getNoRuns(); ++r) {
        for (const PNT_3D& p : silhouette.getRun(r)) {
          ASSERT_FALSE(std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z));
          ASSERT_LE(std::fmax(std::fabs(p.x), std::fabs(p.y)), limit);
        }
      }
    }
  }
}

}  // namespace
