#include "hatch/areas.h"
#include "support/test.h"

namespace {

using Faces = std::vector<HatchFace>;

Faces fill(const Rings& area, InsideRule rule = InsideRule::EvenOdd) {
  Faces faces;
  EXPECT_EQ(fillSolid(joinHatchRings(area), 1e6, faces, rule), HatchStatus::Done);
  return faces;
}

// Twice the signed area of a triangle, positive if counterclockwise.
long double turnOf(const PNT_3D& a, const PNT_3D& b, const PNT_3D& c) {
  return (static_cast<long double>(b.x) - a.x) * (static_cast<long double>(c.y) - a.y) -
         (static_cast<long double>(b.y) - a.y) * (static_cast<long double>(c.x) - a.x);
}

double areaOf(const HatchFace& face) {
  const auto& p = face.p;
  return static_cast<double>(turnOf(p[0], p[1], p[2]) + turnOf(p[0], p[2], p[3])) / 2;
}

double areaOf(const Faces& faces) {
  double area = 0;
  for (const HatchFace& face : faces) area += areaOf(face);
  return area;
}

bool contains(const HatchFace& face, double x, double y) {
  return vek0::test::contains(Rings{{face.p, face.p + 4}}, x, y);
}

// The area by a slow method: between the heights of all vertices and of the crossings of all pairs
// of edges, the width of the inside changes linearly.
double areaOf(const Rings& area, InsideRule rule = InsideRule::EvenOdd) {
  std::vector<std::pair<PNT_3D, PNT_3D>> edges;
  for (const Points& ring : area)
    for (std::size_t i = 0; i < ring.size(); ++i)
      edges.emplace_back(ring[i], ring[(i + 1) % ring.size()]);
  std::set<long double> heights;
  for (const auto& [a, b] : edges) {
    heights.insert(a.y);
    for (const auto& [c, d] : edges) {
      const long double ac = turnOf(a, b, c), ad = turnOf(a, b, d);
      if ((ac < 0) != (ad < 0)) heights.insert(c.y + (d.y - c.y) * ac / (ac - ad));
    }
  }
  long double sum = 0;
  long double low = heights.empty() ? 0 : *heights.begin();
  for (const long double high : heights) {
    const long double y = (low + high) / 2;
    std::vector<std::pair<long double, int>> cuts;  // with what they add to the winding
    for (const auto& [a, b] : edges)
      if ((a.y > y) != (b.y > y))
        cuts.emplace_back(a.x + (b.x - a.x) * (y - a.y) / (b.y - a.y), a.y > y ? 1 : -1);
    std::sort(cuts.begin(), cuts.end());
    int winding = 0;
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
      winding += cuts[i].second;
      const bool isInside = rule == InsideRule::NonZero ? winding != 0 : winding % 2 != 0;
      if (isInside) sum += (cuts[i + 1].first - cuts[i].first) * (high - low);
    }
    low = high;
  }
  return static_cast<double>(sum);
}

// Checks that faces are counterclockwise and cover the area exactly once, and nothing else.
void expectCovered(const Rings& area, AreaMaker& make) {
  const Faces faces = fill(area);
  ASSERT_NEAR(areaOf(faces), areaOf(area), 1e-9) << vek0::test::text(joinHatchRings(area));
  ASSERT_NEAR(areaOf(fill(area, InsideRule::NonZero)), areaOf(area, InsideRule::NonZero), 1e-9);
  for (const HatchFace& face : faces) ASSERT_GT(areaOf(face), 0);
  for (int i = 0; i < 20; ++i) {
    const double x = make.number(-12, 12), y = make.number(-12, 12);
    int count = 0;
    for (const HatchFace& face : faces) count += contains(face, x, y) ? 1 : 0;
    ASSERT_EQ(count, vek0::test::contains(area, x, y) ? 1 : 0) << x << ',' << y;
  }
}

}  // namespace

TEST(FillSolid, Cases) {
  for (const Row& t : rows()) {
    const Faces faces = fill(rings(t.text("area")));
    EXPECT_EQ(faces.size(), t.count("faces"));
    EXPECT_NEAR(areaOf(faces), t.real("size") > 0 ? t.real("size") : areaOf(rings(t.text("area"))),
                1e-12);
  }
}

TEST(FillSolid, TrianglesRepeatTheirThirdCornerAtTheHeightOfTheFirstPoint) {
  Faces faces;
  fillSolid({{0, 0, 7}, {4, 0, 8}, {4, 4, 9}}, 10, faces);
  ASSERT_EQ(faces.size(), 1u);
  EXPECT_EQ(faces[0].p[3], faces[0].p[2]);
  for (const PNT_3D& p : faces[0].p) EXPECT_EQ(p.z, 7);
}

TEST(FillSolid, CoversTheInsideOnce) {
  for (const unsigned seed : rounds<unsigned>(1000)) {
    AreaMaker make(seed);
    const Rings area = make.area();
    expectCovered(area, make);
    // Quarter turns exchange horizontal and vertical; other angles fit nothing exactly.
    expectCovered(vek0::test::turned(area, 1.5707963267948966), make);
    expectCovered(vek0::test::turned(area, make.number(-3, 3)), make);
  }
}

// Hundreds of points on a line, out and back, displaced by rounding.
TEST(FillSolid, TakesEdgesThatNearlyCoincide) {
  for (const unsigned seed : rounds<unsigned>(300)) {
    AreaMaker make(seed);
    Points ring = {{0, 0, 0}, {10, 3, 0}, {10, 5, 0}};
    for (int i = make.whole(2, 60); i > 0; --i) {
      const double x = make.number(0, 10);
      ring.emplace_back(x, x * 0.3, 0);
    }
    const Rings area = vek0::test::turned({ring}, make.number(-3, 3));
    ASSERT_NEAR(areaOf(fill(area)), areaOf(area), 1e-9);
  }
}

TEST(FillSolid, LimitsWhatCrossingsCost) {
  AreaMaker make(1);
  Points ring;
  for (int i = 0; i < 400; ++i) ring.emplace_back(make.number(0, 10), make.number(0, 10), 0);
  Faces faces;
  EXPECT_EQ(fillSolid(ring, 1e6, faces), HatchStatus::Done);
  EXPECT_GT(faces.size(), 20000u);
  EXPECT_EQ(fillSolid(ring, 1000, faces), HatchStatus::TooDense);
  EXPECT_TRUE(faces.empty());
  EXPECT_EQ(fillSolid(ring, std::nan(""), faces), HatchStatus::TooDense);
}

TEST(FillSolid, RefusesCoordinatesThatAreNone) {
  const double inf = std::numeric_limits<double>::infinity();
  for (const double bad : {inf, -inf, std::nan(""), 1e200}) {
    Faces faces = fill(rings("0,0 4,0 4,4"));
    EXPECT_EQ(fillSolid({{0, 0, 0}, {bad, 0, 0}, {4, 4, 0}}, 1e6, faces), HatchStatus::BadBoundary);
    EXPECT_TRUE(faces.empty());
  }
}
