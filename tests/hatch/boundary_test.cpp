#include "hatch/areas.h"
#include "support/test.h"

namespace {

Rings split(const Points& boundary) {
  Rings rings;
  for (const HatchRing& ring : hatchRings(boundary)) {
    const auto first = boundary.begin() + static_cast<std::ptrdiff_t>(ring.first);
    rings.emplace_back(first, first + static_cast<std::ptrdiff_t>(ring.count));
  }
  return rings;
}

std::string text(const Rings& rings) {
  std::string result;
  for (const Points& ring : rings) result += (result.empty() ? "" : " / ") + vek0::test::text(ring);
  return result;
}

// Whether two areas agree at random points off the grid.
bool coverTheSame(const Rings& a, const Rings& b, AreaMaker& make) {
  for (int i = 0; i < 40; ++i) {
    const double x = make.number(-6, 6), y = make.number(-6, 6);
    if (contains(a, x, y) != contains(b, x, y)) return false;
  }
  return true;
}

}  // namespace

TEST(HatchRings, AreReadFromABoundary) {
  for (const Row& t : rows()) EXPECT_EQ(text(split(pts(t.text("boundary")))), t.text("rings"));
}

TEST(HatchRings, ZeroHasNoSign) {
  EXPECT_EQ(hatchRings({{0.0, 1, 0}, {4, 0, 0}, {4, 4, 0}, {-0.0, 1, -0.0}})[0].count, 3u);
}

TEST(JoinHatchRings, StoresWhatCanBeReadBack) {
  for (const Row& t : rows()) {
    EXPECT_EQ(vek0::test::text(joinHatchRings(vek0::test::rings(t.text("rings")))),
              t.text("boundary"));
  }
}

TEST(JoinHatchRings, KeepsTheAreaOfAnyRings) {
  for (const unsigned seed : rounds<unsigned>(1000)) {
    AreaMaker make(seed);
    const Rings area = make.gridArea();
    const Points boundary = joinHatchRings(area);
    ASSERT_TRUE(coverTheSame(split(boundary), area, make)) << vek0::test::text(boundary);
  }
}

TEST(CompactVertex, KeepsTheAreaAndHasNothingLeftToDo) {
  for (const unsigned seed : rounds<unsigned>(1000)) {
    AreaMaker make(seed);
    Points boundary;
    for (const Points& ring : make.gridArea()) {
      for (const PNT_3D& p : ring) {
        boundary.push_back(p);
        if (make.whole(0, 1) > 0) boundary.push_back(p);
      }
      if (make.whole(0, 1) > 0) boundary.push_back(ring[0]);
    }
    Points compact;
    _hatch_compactVertex(boundary, compact);
    ASSERT_TRUE(coverTheSame(split(compact), split(boundary), make)) << vek0::test::text(boundary);
    const Points once = compact;
    _hatch_compactVertex(compact, compact);
    ASSERT_EQ(vek0::test::text(compact), vek0::test::text(once));
  }
}

TEST(CompactVertex, Cases) {
  for (const Row& t : rows()) {
    Points out = pts("1,1");
    _hatch_compactVertex(pts(t.text("in")), out);
    EXPECT_EQ(vek0::test::text(out), t.text("out"));
  }
}

TEST(JoinHatchRings, TakesNumbersThatAreNone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Points ring = {{nan, 0, 0}, {1, nan, 0}, {nan, 0, 0}, {1, 1, nan}};
  const Points boundary = joinHatchRings({ring, ring, pts("0,0 1,0 1,1")});
  EXPECT_FALSE(hatchRings(boundary).empty());
}
