#include "dxf/in/convert/hatchpattern.h"
#include "support/test.h"

using vek0::detail::kPi;

using vek0::detail::findPattern;
using vek0::detail::Pattern;
using vek0::detail::PatternLine;
using vek0::detail::PatternRecord;

namespace {

struct Placing {
  double scale, angleDeg;
};
constexpr Placing kPlacings[] = {
    {1, 0}, {25.4, 0}, {0.37, 33}, {1000, 45}, {3, 90}, {1.0 / 3, 217.3}, {7e-4, 350},
};

// As other programs write it: with rounded pi, and with the hatch's scale and angle included.
PatternLine written(const HATCH_LINE& line, const Placing& at) {
  const double deg = std::round(line.angle / kRadiansPerDegree * 1e6) / 1e6 + at.angleDeg;
  const double a = deg * kPi / 180, turn = at.angleDeg * kPi / 180, s = at.scale;
  PatternLine out;
  out.angleDeg = deg < 360 ? deg : deg - 360;
  out.base[0] = s * (line.x0 * std::cos(turn) - line.y0 * std::sin(turn));
  out.base[1] = s * (line.x0 * std::sin(turn) + line.y0 * std::cos(turn));
  out.offset[0] = s * (line.dx * std::cos(a) - line.dy * std::sin(a));
  out.offset[1] = s * (line.dx * std::sin(a) + line.dy * std::cos(a));
  for (int i = 0; i < line.numDash; ++i) out.dashes.push_back(s * line.dash[i]);
  return out;
}

PatternRecord recordOf(const zim::WString& name, const HATCH_TYPE& type, const Placing& at) {
  PatternRecord record;
  record.name = name;
  record.scale = at.scale;
  record.angleRad = at.angleDeg * kRadiansPerDegree;
  for (int i = 0; i < type.numLines; ++i) record.lines.push_back(written(type.lines[i], at));
  return record;
}

std::string nameOf(const HATCH_TYPE& type) { return zim::WString(type.name).toUtf8(); }

}  // namespace

TEST(HatchPattern, TheCatalogueIsKnownAtAnyScaleAndAngle) {
  for (long i = 0; const HATCH_TYPE* type = getHatch(i); ++i) {
    for (const Placing& at : kPlacings) {
      SCOPED_TRACE(nameOf(*type) + " " + std::to_string(at.scale));
      CHatchTypeTable types;
      PatternRecord record = recordOf(type->name, *type, at);
      const Pattern found = findPattern(record, types);
      EXPECT_EQ(found.type, type);
      EXPECT_NEAR(found.scale, at.scale, 1e-9 * at.scale);
      record.scale /= 2;
      EXPECT_NEAR(findPattern(record, types).scale, at.scale, 1e-9 * at.scale) << "twice as large";
    }
  }
}

// Definition files have five dashes in this pattern's second family; the catalogue has a dot more.
TEST(HatchPattern, DotsAtTheEndDoNotMatter) {
  const HATCH_TYPE& type = *getHatch(u"ACAD_ISO15W100");
  CHatchTypeTable types;
  PatternRecord record = recordOf(type.name, type, {2, 30});
  std::vector<double>& dashes = record.lines[1].dashes;
  ASSERT_EQ(dashes.back(), 0);
  dashes.pop_back();
  EXPECT_EQ(findPattern(record, types).type, &type);
  dashes.pop_back();
  EXPECT_NE(findPattern(record, types).type, &type) << "a gap matters";
}

TEST(HatchPattern, OwnPatternsMeetThemselvesAtAnyScaleAndAngle) {
  CHatchTypeTable types;
  std::set<const HATCH_TYPE*> all;
  for (long i = 0; const HATCH_TYPE* type = getHatch(i); ++i) {
    std::set<const HATCH_TYPE*> found;
    for (const Placing& at : kPlacings)
      found.insert(findPattern(recordOf(u"OWN", *type, at), types).type);
    EXPECT_EQ(found.size(), 1u) << nameOf(*type);
    all.merge(found);
  }
  // Two patterns of the catalogue have the same lines under different names.
  EXPECT_GE(all.size(), 60u);
}

TEST(HatchPattern, RoundingKeepsSmallDifferences) {
  const HATCH_LINE lines[] = {
      {0, 0, 0, 0, 1, {1, -1}, 2},    {0, 0, 0, 0, 1 + 1e-8, {1, -1}, 2},
      {0, 0, 0, 1e-8, 1, {1, -1}, 2}, {0, 1e-8, 0, 0, 1, {1, -1}, 2},
      {1e-7, 0, 0, 0, 1, {1, -1}, 2}, {0, 0, 0, 0, 1, {1 + 1e-8, -1}, 2},
      {0, 1e12, 0, 0, 1, {1, -1}, 2},
  };
  CHatchTypeTable types;
  std::set<const HATCH_TYPE*> found;
  for (const HATCH_LINE& line : lines) {
    const HATCH_TYPE type = {u"OWN", u"", &line, 1};
    const Pattern pattern = findPattern(recordOf(u"OWN", type, {1, 0}), types);
    found.insert(pattern.type);
    EXPECT_NEAR(pattern.type->lines[0].x0, line.x0, 1e-9);
    EXPECT_NEAR(pattern.type->lines[0].dash[0], line.dash[0], 1e-9);
  }
  EXPECT_EQ(found.size(), std::size(lines));
}

// Sizes without a finite logarithm must not cause a failure.
TEST(HatchPattern, SizesWithoutMeasureAreKept) {
  CHatchTypeTable types;
  for (const double size : {0.0, 5e-324, 1e-300, 1e300, 1.7e308}) {
    const HATCH_LINE line = {0, 0, 0, 0, size, {size}, 1};
    const HATCH_TYPE type = {u"OWN", u"", &line, 1};
    const HATCH_TYPE& own = *findPattern(recordOf(u"OWN", type, {1, 0}), types).type;
    EXPECT_NEAR(own.lines[0].dy, size, 1e-9 * size);
    EXPECT_EQ(&own, findPattern(recordOf(u"OWN", type, {1, 0}), types).type);
  }
}
