// Building rings from the edges of hatch loops, and selecting rings by style.

#include "support/test.h"

using vek0::detail::kPi;

namespace {

using Points = std::vector<PNT_3D>;
using Rings = std::vector<HATCH_RING>;

double signedArea(const HATCH_RING& ring) {
  double twice = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const PNT_3D &a = ring[i], &b = ring[(i + 1) % ring.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return twice / 2;
}

double area(const HATCH_RING& ring) { return std::fabs(signedArea(ring)); }

HATCH_RING square(double x, double y, double size) {
  return {{x, y, 0}, {x + size, y, 0}, {x + size, y + size, 0}, {x, y + size, 0}};
}

// Coordinates as x and y in turn.
HATCH_RING ring(const char* text) {
  HATCH_RING points;
  std::istringstream words(text);
  for (double x = 0, y = 0; words >> x >> y;) points.emplace_back(x, y, 0);
  return points;
}

HATCH_RING circle(double x, double y, double r, int n = 40) {
  HATCH_RING points;
  for (int k = 0; k < n; ++k)
    points.emplace_back(x + r * std::cos(2 * kPi * k / n), y + r * std::sin(2 * kPi * k / n), 0);
  return points;
}

// A star-shaped polygon about `center`, of n points.
HATCH_RING star(std::mt19937& random, const PNT_3D& center, int n) {
  std::uniform_real_distribution<double> radius(1, 3);
  HATCH_RING points;
  for (int k = 0; k < n; ++k) {
    const double r = radius(random), a = 2 * kPi * k / n;
    points.emplace_back(center.x + r * std::cos(a), center.y + r * std::sin(a), center.z);
  }
  return points;
}

bool isInside(const HATCH_RING& ring, double x, double y) {
  bool in = false;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const PNT_3D &a = ring[i], &b = ring[(i + 1) % ring.size()];
    if ((a.y > y) != (b.y > y) && x < a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y)) in = !in;
  }
  return in;
}

// --- Edges

// Parses edges separated by ';': line x y x y; arc x y radius start end ccw, with angles in
// degrees; ellipse x y majorX majorY ratio start end ccw; cubic, four controls, with knots if the
// word `knots` follows; poly x y x y ..., closed if `close` follows.
void addEdges(HatchLoopBuilder& b, const std::string& text) {
  std::istringstream edges(text);
  for (std::string edge; std::getline(edges, edge, ';');) {
    std::istringstream words(edge);
    std::string kind, tail;
    words >> kind;
    std::vector<double> n;
    for (std::string word; words >> word;) {
      char* end = nullptr;
      const double value = std::strtod(word.c_str(), &end);
      if (*end)
        tail = word;
      else
        n.push_back(value);
    }
    Points points;
    for (std::size_t i = 0; i + 1 < n.size(); i += 2) points.emplace_back(n[i], n[i + 1], 0);
    SPLINE_3D spline;
    spline.controls = points;
    if (tail == "knots") spline.knots = {0, 0, 0, 0, 1, 1, 1, 1};
    const double degree = kPi / 180;
    const bool added =
        kind == "line" ? b.addLine(points.at(0), points.at(1))
        : kind == "arc"
            ? b.addArc(points.at(0), n.at(2), n.at(3) * degree, n.at(4) * degree, n.at(5) != 0)
        : kind == "ellipse" ? b.addEllipse(points.at(0), points.at(1), n.at(4), n.at(5) * degree,
                                           n.at(6) * degree, n.at(7) != 0)
        : kind == "cubic"   ? b.addSpline(spline)
                            : b.addPolyline(points, {}, tail == "close");
    EXPECT_TRUE(added) << edge;
  }
}

TEST(HatchLoopBuilder, LoopsOfOneRing) {
  for (const Row& t : rows()) {
    HatchLoopBuilder builder;
    addEdges(builder, t.text("edges"));
    Rings rings;
    EXPECT_EQ(builder.build(rings), t.flag("closed"));
    EXPECT_TRUE(builder.empty());
    ASSERT_EQ(rings.size(), 1u);
    EXPECT_NEAR(area(rings[0]), t.real("area"), t.real("within"));
    EXPECT_FALSE(PNT_2D(rings[0].front()) == PNT_2D(rings[0].back()));
  }
}

TEST(HatchLoopBuilder, BulgesAndLinesThatEncloseNothing) {
  HatchLoopBuilder b;
  Rings rings;
  ASSERT_TRUE(b.addPolyline(square(0, 0, 2), {0, 1}, true));
  EXPECT_TRUE(b.build(rings));
  ASSERT_EQ(rings.size(), 1u);
  EXPECT_NEAR(area(rings[0]), 4 + kPi / 2, 1e-3);
  ASSERT_TRUE(b.addLine({0, 0, 0}, {1, 0, 0}));
  EXPECT_FALSE(b.build(rings));
  EXPECT_EQ(rings.size(), 1u);
}

TEST(HatchLoopBuilder, CurvesGetCoarseWhenThereIsNoRoom) {
  HatchLoopBuilder loop;
  loop.setCurveRoom(300);
  std::vector<HATCH_RING> rings;
  EXPECT_TRUE(loop.addArc({0, 0, 0}, 1, 0, 2 * kPi, true));
  EXPECT_FALSE(loop.isCoarse());
  EXPECT_TRUE(loop.addArc({9, 0, 0}, 1, 0, 2 * kPi, false));
  EXPECT_TRUE(loop.isCoarse());
  EXPECT_TRUE(loop.addPolyline({{0, 9, 0}, {2, 9, 0}}, {1, 1}, true));
  EXPECT_TRUE(loop.build(rings));
  ASSERT_EQ(rings.size(), 3u);
  EXPECT_GT(rings[0].size(), 200u);
  EXPECT_EQ(rings[1].size(), 4u) << "a square in the circle";
  EXPECT_EQ(rings[2].size(), 8u);
  for (const PNT_3D& p : rings[1]) EXPECT_NEAR(p.dist(PNT_3D(9, 0, 0)), 1, 1e-12);
  for (const PNT_3D& p : rings[2]) EXPECT_NEAR(p.dist(PNT_3D(1, 9, 0)), 1, 1e-12);
  loop.setCurveRoom(1000);
  EXPECT_FALSE(loop.isCoarse());
}

TEST(HatchLoopBuilder, RefusesBrokenEdges) {
  HatchLoopBuilder b;
  EXPECT_FALSE(b.addLine({0, 0, 0}, {kNan, 0, 0}));
  EXPECT_FALSE(b.addLine({0, 0, 0}, {1e101, 0, 0}));
  EXPECT_FALSE(b.addArc({0, 0, 0}, 0, 0, 1, true));
  EXPECT_FALSE(b.addArc({0, 0, 0}, -1, 0, 1, true));
  EXPECT_FALSE(b.addArc({0, 0, 0}, kNan, 0, 1, true));
  EXPECT_FALSE(b.addArc({0, 0, 0}, 1, kNan, 1, false));
  EXPECT_FALSE(b.addEllipse({0, 0, 0}, {1, 0, 0}, 0, 0, 1, true));
  EXPECT_FALSE(b.addSpline(SPLINE_3D()));
  EXPECT_FALSE(b.addPolyline({}, {}, true));
  EXPECT_FALSE(b.addPolyline({{0, 0, 0}, {1, 1, kNan}}, {}, true));
  EXPECT_TRUE(b.empty());
  Rings rings;
  EXPECT_TRUE(b.build(rings));
  EXPECT_TRUE(rings.empty());
}

// A clockwise edge is the mirror image of the counterclockwise edge with the same angles.
TEST(HatchLoopBuilder, ClockwiseEdgesAreMirrored) {
  std::mt19937 random(71);
  std::uniform_real_distribution<double> real(-1, 1);
  for ([[maybe_unused]] const int i : rounds(200)) {
    const double start = 7 * real(random), end = 7 * real(random), ratio = 1.01 + real(random);
    Rings left, right;
    HatchLoopBuilder b;
    ASSERT_TRUE(b.addEllipse({1, 2, 3}, {5, 0, 0}, ratio, start, end, true));
    b.build(left);
    ASSERT_TRUE(b.addEllipse({1, 2, 3}, {5, 0, 0}, ratio, start, end, false));
    b.build(right);
    ASSERT_EQ(left.size(), right.size());
    if (left.empty()) continue;
    ASSERT_EQ(left[0].size(), right[0].size());
    for (std::size_t k = 0; k < left[0].size(); ++k)
      EXPECT_LT(right[0][k].dist(left[0][k].x, 4 - left[0][k].y, 3), 1e-12);
  }
}

// Edges that are closed by themselves form separate rings, and nothing is left open.
TEST(HatchLoopBuilder, SeveralRingsInOneLoop) {
  HatchLoopBuilder b;
  addEdges(b,
           "arc 0 0 1 50 50 1; poly 10 0 12 0 12 2 10 2 close; line 20 0 24 0; "
           "arc 0 0 0.5 0 0 0; line 20 3 20 0; line 20 3 24 0");
  Rings rings;
  EXPECT_TRUE(b.build(rings));
  ASSERT_EQ(rings.size(), 4u);
  EXPECT_NEAR(area(rings[0]), kPi, 1e-3);
  EXPECT_NEAR(area(rings[1]), 4, 1e-12);
  EXPECT_NEAR(area(rings[2]), 6, 1e-12);
  EXPECT_LT(signedArea(rings[3]), 0);
}

// The polygon is rebuilt for any order and direction of its edges, also if the ends differ by less
// than the tolerance.
TEST(HatchLoopBuilder, ShuffledAndReversedEdgesChain) {
  std::mt19937 random(72);
  std::uniform_real_distribution<double> noise(-1e-7, 1e-7);
  for (const int n : {3, 4, 10, 100, 1000, 10000}) {
    for (const double off : {0.0, 1.0}) {
      SCOPED_TRACE(testing::Message() << "seed 72, edges " << n << ", noise " << off);
      const HATCH_RING polygon = star(random, PNT_3D(1000, -500, 7), n);
      std::vector<std::size_t> order(polygon.size());
      for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
      std::shuffle(order.begin(), order.end(), random);
      HatchLoopBuilder b;
      for (const std::size_t i : order) {
        PNT_3D p = polygon[i], q = polygon[(i + 1) % polygon.size()];
        p.move(PNT_3D(off * noise(random), off * noise(random), 0));
        q.move(PNT_3D(off * noise(random), off * noise(random), 0));
        if (random() % 2) std::swap(p, q);
        ASSERT_TRUE(b.addLine(p, q));
      }
      Rings rings;
      EXPECT_TRUE(b.build(rings));
      ASSERT_EQ(rings.size(), 1u);
      EXPECT_EQ(rings[0].size(), polygon.size());
      EXPECT_NEAR(area(rings[0]), area(polygon), off > 0 ? 1e-5 : 1e-9);
      EXPECT_EQ(rings[0][0].z, 7);
    }
  }
}

// Nearly coincident ends close a ring without an additional edge.
TEST(HatchLoopBuilder, RingsThatNearlyClose) {
  HatchLoopBuilder b;
  addEdges(b,
           "line 0 0 4 0; line 10 0 14 0; line 4 3 0 1e-7; line 14 1e-7 14 3; "
           "line 4 1e-7 4 3; line 14.0000001 3 10 1e-7");
  Rings rings;
  EXPECT_TRUE(b.build(rings));
  ASSERT_EQ(rings.size(), 2u);
  EXPECT_NEAR(area(rings[0]), 6, 1e-6);
  EXPECT_NEAR(area(rings[1]), 6, 1e-6);
}

// Wedges with shared tips, edge by edge in any order. The rings may differ from the wedges, but not
// the filled area.
TEST(HatchLoopBuilder, SharedVertexesFillTheSame) {
  std::mt19937 random(73);
  Rings wedges;
  for (int k = 0; k < 20; ++k) {
    const double a = 2 * kPi * k / 20, b = a + 0.2;
    wedges.push_back({{0, 0, 0}, {std::cos(a), std::sin(a), 0}, {std::cos(b), std::sin(b), 0}});
  }
  std::vector<std::pair<PNT_3D, PNT_3D>> edges;
  for (const HATCH_RING& w : wedges)
    for (std::size_t i = 0; i < 3; ++i) edges.emplace_back(w[i], w[(i + 1) % 3]);
  std::shuffle(edges.begin(), edges.end(), random);
  HatchLoopBuilder builder;
  for (const auto& e : edges) builder.addLine(e.first, e.second);
  Rings rings;
  EXPECT_TRUE(builder.build(rings));
  std::uniform_real_distribution<double> real(-1, 1);
  for (int i = 0; i < 2000; ++i) {
    const double x = real(random), y = real(random);
    const auto in = [&](const HATCH_RING& r) { return isInside(r, x, y); };
    EXPECT_EQ(std::count_if(wedges.begin(), wedges.end(), in) % 2,
              std::count_if(rings.begin(), rings.end(), in) % 2);
  }
}

// Unrelated edges in one place must not take long.
TEST(HatchLoopBuilder, ManyLooseEdges) {
  std::mt19937 random(74);
  std::uniform_real_distribution<double> real(-1, 1);
  for (const Row& t : rows()) {
    const double spread = t.real("spread");
    HatchLoopBuilder b;
    for (int i = 0; i < 8000; ++i)
      b.addLine({spread * real(random), spread * real(random), 0}, {real(random), real(random), 0});
    Rings rings;
    EXPECT_FALSE(b.build(rings));
    std::size_t points = 0;
    for (const HATCH_RING& r : rings) points += r.size();
    EXPECT_GT(points, 8000u);
  }
}

// --- Styles

struct Kept {
  std::size_t outermost, ignore;
};

Kept keptOf(const Rings& rings) {
  Rings two = rings, one = rings, all = rings;
  EXPECT_TRUE(applyHatchStyle(two, HatchStyle::kOutermost));
  EXPECT_TRUE(applyHatchStyle(one, HatchStyle::kIgnore));
  EXPECT_TRUE(applyHatchStyle(all, HatchStyle::kEvenOdd));
  EXPECT_EQ(all.size(), rings.size());
  return {two.size(), one.size()};
}

TEST(ApplyHatchStyle, Nesting) {
  const HATCH_RING pocket = ring("0 0 10 0 10 2 2 2 2 8 10 8 10 10 0 10");
  const HATCH_RING diamond = ring("5 0 10 5 5 10 0 5"), flat = ring("1 1 2 1 3 1");
  struct Case {
    const char* name;
    Rings rings;
    Kept kept;
  };
  std::vector<Case> cases;
  const auto add = [&](const char* name, const Rings& rings, std::size_t outermost,
                       std::size_t ignore) {
    cases.push_back({name, rings, {outermost, ignore}});
  };
  add("nothing", {}, 0, 0);
  add("four levels, inner first",
      {square(3, 3, 4), square(2, 2, 6), square(1, 1, 8), square(0, 0, 10)}, 2, 1);
  add("circles about one centre", {circle(0, 0, 1), circle(0, 0, 3), circle(0, 0, 2)}, 2, 1);
  add("side by side", {square(0, 0, 4), square(4, 0, 4), square(9, 9, 1)}, 3, 3);
  add("islands on the edge", {square(0, 0, 10), square(0, 3, 2), square(0, 3.5, 1)}, 2, 1);
  add("touching all sides from within", {diamond, square(0, 0, 10)}, 2, 1);
  add("in a pocket, not in the ring", {pocket, square(4, 4, 2)}, 2, 2);
  add("in a pocket, with a ring around", {pocket, square(4, 4, 2), square(-1, -1, 12)}, 3, 1);
  add("the same ring twice", {square(0, 0, 4), square(0, 0, 4)}, 2, 2);
  add("a ring without area", {square(0, 0, 4), flat}, 2, 1);
  add("less than a ring", {square(0, 0, 4), {}, {PNT_3D(1, 1, 0)}}, 3, 3);
  for (const auto& t : named(cases)) {
    const Kept kept = keptOf(t.rings);
    EXPECT_EQ(kept.outermost, t.kept.outermost);
    EXPECT_EQ(kept.ignore, t.kept.ignore);
  }
}

// Rotated squares, nested, adjacent and separate. The expected depth counts the enclosing squares.
class RandomSquares {
 public:
  explicit RandomSquares(unsigned seed) : m_random(seed) { fill(0, 0, 1024, 0); }

  void fill(double x, double y, double size, int level) {
    if (level == 6) return;
    if (m_random() % 3 > 0) squares.push_back({x + size / 8, y + size / 8, size * 3 / 4});
    for (const int quarter : {0, 1, 2, 3}) {
      if (m_random() % 4 == 0) continue;
      const double inner = size * 3 / 8 - size / 16;
      fill(x + size * 3 / 16 + (quarter % 2) * inner, y + size * 3 / 16 + (quarter / 2) * inner,
           inner, level + 1);
    }
  }

  struct Square {
    double x, y, size;
    bool holds(const Square& s) const {
      return x < s.x && y < s.y && s.x + s.size < x + size && s.y + s.size < y + size;
    }
  };
  std::vector<Square> squares;

 private:
  std::mt19937 m_random;
};

TEST(ApplyHatchStyle, AgreesWithCounting) {
  for (unsigned seed = 80; seed < 90; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    RandomSquares random(seed);
    std::shuffle(random.squares.begin(), random.squares.end(), std::mt19937(seed));
    Rings rings;
    std::vector<double> one, two;  // x of the corners of the rings that must be kept
    for (const auto& s : random.squares) {
      HATCH_RING ring = square(s.x, s.y, s.size);
      for (PNT_3D& p : ring) p.rotate(PNT_3D(0, 0, 0), 0.1 * (seed - 80));
      const auto depth =
          std::count_if(random.squares.begin(), random.squares.end(),
                        [&](const RandomSquares::Square& other) { return other.holds(s); });
      if (depth == 0) one.push_back(ring[0].x);
      if (depth <= 1) two.push_back(ring[0].x);
      rings.push_back(ring);
    }
    Rings outer = rings, both = rings;
    EXPECT_TRUE(applyHatchStyle(outer, HatchStyle::kIgnore));
    EXPECT_TRUE(applyHatchStyle(both, HatchStyle::kOutermost));
    ASSERT_EQ(outer.size(), one.size());
    ASSERT_EQ(both.size(), two.size());
    for (std::size_t i = 0; i < one.size(); ++i) EXPECT_EQ(outer[i][0].x, one[i]);
    for (std::size_t i = 0; i < two.size(); ++i) EXPECT_EQ(both[i][0].x, two[i]);
  }
}

// Sizes at which comparing all pairs would take noticeably long.
TEST(ApplyHatchStyle, ManyRings) {
  Rings rows, targets, islands{circle(0, 0, 1000, 10000)};
  for (int i = 0; i < 20000; ++i) rows.push_back(square(2 * i, 0, 1));
  for (int i = 0; i < 2000; ++i) targets.push_back(square(-i, -i, 2 * i + 1));
  for (int i = 0; i < 10000; ++i)
    islands.push_back(square(6 * (i % 100) - 300, 6 * (i / 100) - 300, 2));
  EXPECT_EQ(keptOf(rows).ignore, 20000u);
  EXPECT_EQ(keptOf(targets).outermost, 2u);
  const Kept kept = keptOf(islands);
  EXPECT_EQ(kept.ignore, 1u);
  EXPECT_EQ(kept.outermost, 10001u);
}

// Slivers whose boxes contain each other's points, although the slivers do not. The search gives up
// in time and keeps the rings that were not classified.
TEST(ApplyHatchStyle, EntangledRingsEnd) {
  Rings rings;
  for (int i = 0; i < 2000; ++i) {
    const double e = 1e-3 * i;
    rings.push_back({{-e, -e + 10, 0}, {9 + e, 1000 + e, 0}, {-e, 1000 + e, 0}});
  }
  for (int i = 0; i < 2000; ++i) rings.push_back(square(8 - 1e-4 * i, 11, 1e-5));
  Rings outer = rings;
  EXPECT_FALSE(applyHatchStyle(outer, HatchStyle::kIgnore));
  EXPECT_GE(outer.size(), 2000u);
}

}  // namespace
