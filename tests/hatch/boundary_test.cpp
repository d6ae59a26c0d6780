#include "vek0core/hatch/boundary.h"

#include <gtest/gtest.h>

#include <limits>

#include "hatch/areas.h"

using vek0::test::AreaMaker;
using vek0::test::contains;
using vek0::test::Points;
using vek0::test::pts;
using vek0::test::Rings;

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
  for (const Points& ring : rings) {
    result += (result.empty() ? "" : " / ") + vek0::test::text(ring);
  }
  return result;
}

// Whether two areas are the same wherever a point off the grid is looked up.
bool coverTheSame(const Rings& a, const Rings& b, AreaMaker& make) {
  for (int i = 0; i < 40; ++i) {
    const double x = make.number(-6, 6), y = make.number(-6, 6);
    if (contains(a, x, y) != contains(b, x, y)) return false;
  }
  return true;
}

}  // namespace

TEST(HatchRings, AreReadFromABoundary) {
  const struct {
    const char* name;
    const char* boundary;
    const char* rings;
  } cases[] = {
      {"nothing", "", ""},
      {"open ring", "0,0 4,0 4,4", "0,0 4,0 4,4"},
      {"closed ring", "0,0 4,0 4,4 0,0", "0,0 4,0 4,4"},
      {"two rings", "0,0 9,0 9,9 0,0 5,1 6,1 6,2 5,1", "0,0 9,0 9,9 / 5,1 6,1 6,2"},
      {"the last does not close", "0,0 9,0 9,9 0,0 5,1 6,1 6,2", "0,0 9,0 9,9 0,0 5,1 6,1 6,2"},
      {"starts with the point twice", "0,0 0,0 4,0 4,4 0,0", "0,0 0,0 4,0 4,4"},
      {"rings with a point in common", "0,0 9,0 9,9 0,0 5,1 9,9 6,2 5,1",
       "0,0 9,0 9,9 / 5,1 9,9 6,2"},
      {"other height does not close", "0,0,1 4,0,1 4,4,1 0,0,0", "0,0 4,0 4,4 0,0"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(text(split(pts(t.boundary))), t.rings);
  }
}

TEST(HatchRings, ZeroHasNoSign) {
  EXPECT_EQ(hatchRings({{0.0, 1, 0}, {4, 0, 0}, {4, 4, 0}, {-0.0, 1, -0.0}})[0].count, 3u);
}

TEST(JoinHatchRings, StoresWhatCanBeReadBack) {
  const struct {
    const char* name;
    const char* rings;
    const char* boundary;
  } cases[] = {
      {"nothing", "", ""},
      {"one ring stays open", "0,0 4,0 4,4 0,0", "0,0 4,0 4,4"},
      {"two are closed", "0,0 9,0 9,9/5,1 6,1 6,2 5,1", "0,0 9,0 9,9 0,0 5,1 6,1 6,2 5,1"},
      {"too few points", "0,0 9,0 9,9/5,1 6,1/7,7", "0,0 9,0 9,9"},
      {"equal neighbours", "0,0 0,0 9,0 9,9/5,1 6,1 6,1 6,2 5,1 5,1",
       "0,0 9,0 9,9 0,0 5,1 6,1 6,2 5,1"},
      {"start is shared", "0,0 9,0 9,9/0,0 5,1 5,2", "9,0 9,9 0,0 9,0 5,1 5,2 0,0 5,1"},
      {"all is shared", "0,0 9,0 9,9/0,0 9,0 9,9", "0,0 9,0 9,9 0,0 0,0 9,0 9,9 0,0"},
      {"start occurs twice in it", "0,0 1,0 1,1 0,0 9,0 9,9/5,1 6,1 6,2",
       "1,0 1,1 0,0 9,0 9,9 0,0 1,0 5,1 6,1 6,2 5,1"},
      {"every point twice in it", "0,0 1,0 1,1 0,0 1,0 1,1/5,1 6,1 6,2",
       "0,0 1,0 1,1 0,0 0,0 1,0 1,1 0,0 5,1 6,1 6,2 5,1"},
      {"looks like three rings", "0,0 1,0 1,1 0,0 5,0 6,0 6,1 5,0 2,5 3,5 3,6 2,5",
       "1,0 1,1 0,0 5,0 6,0 6,1 5,0 2,5 3,5 3,6 2,5 0,0"},
      {"there and back", "0,0 1,0 0,0 1,0/5,1 6,1 6,2/0,4 1,4 1,5",
       "5,1 6,1 6,2 5,1 0,4 1,4 1,5 0,4"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(vek0::test::text(joinHatchRings(vek0::test::rings(t.rings))), t.boundary);
  }
}

TEST(JoinHatchRings, KeepsTheAreaOfAnyRings) {
  for (unsigned seed = 0; seed < 1000; ++seed) {
    SCOPED_TRACE(seed);
    AreaMaker make(seed);
    const Rings area = make.gridArea();
    const Points boundary = joinHatchRings(area);
    ASSERT_TRUE(coverTheSame(split(boundary), area, make)) << vek0::test::text(boundary);
  }
}

TEST(CompactVertex, KeepsTheAreaAndHasNothingLeftToDo) {
  for (unsigned seed = 0; seed < 1000; ++seed) {
    SCOPED_TRACE(seed);
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
  const struct {
    const char* name;
    const char* in;
    const char* out;
  } cases[] = {
      {"nothing", "", ""},
      {"closing point", "0,0 4,0 4,4 0,0", "0,0 4,0 4,4"},
      {"several of them", "0,0 4,0 4,4 0,0 0,0", "0,0 4,0 4,4"},
      {"equal neighbours", "0,0 0,0 4,0 4,0 4,4", "0,0 4,0 4,4"},
      {"no area", "0,0 4,0 0,0", ""},
      {"two rings", "0,0 9,0 9,9 9,9 0,0 5,1 5,1 6,1 6,2 5,1", "0,0 9,0 9,9 0,0 5,1 6,1 6,2 5,1"},
      {"one of two rings is left", "0,0 9,0 9,9 0,0 5,1 6,1 5,1", "0,0 9,0 9,9"},
      {"same place at two heights", "0,0,0 0,0,1 4,0,0 4,4,0", "0,0 0,0 4,0 4,4"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    Points out = pts("1,1");
    _hatch_compactVertex(pts(t.in), out);
    EXPECT_EQ(vek0::test::text(out), t.out);
  }
}

TEST(JoinHatchRings, TakesNumbersThatAreNone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Points ring = {{nan, 0, 0}, {1, nan, 0}, {nan, 0, 0}, {1, 1, nan}};
  const Points boundary = joinHatchRings({ring, ring, pts("0,0 1,0 1,1")});
  EXPECT_FALSE(hatchRings(boundary).empty());
}
