// VEK0_CORPUS names a folder that may hold public pattern definition files under pat/.
#include "vek0core/hatch/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "files/number.h"

namespace {

constexpr long kNoPatterns = 68;
constexpr double kRadPerDeg = 0.01745329251994;

/// A family as definition files print it: degrees, and as many dashes as there are.
struct Row {
  double angleDeg, x0, y0, dx, dy;
  std::vector<double> dashes;
};
using Rows = std::vector<Row>;

const HATCH_TYPE& patternOf(const zim::WString& name) {
  const HATCH_TYPE* type = getHatch(name);
  if (!type) throw std::runtime_error("no pattern " + name.toUtf8());
  return *type;
}

std::vector<const HATCH_TYPE*> patterns() {
  std::vector<const HATCH_TYPE*> types;
  for (long i = 0; getHatch(i); ++i) types.push_back(getHatch(i));
  return types;
}

std::vector<const HATCH_LINE*> familiesOf(const HATCH_TYPE& type) {
  std::vector<const HATCH_LINE*> lines;
  for (std::int32_t i = 0; i < type.numLines; ++i) lines.push_back(type.lines + i);
  return lines;
}

std::string nameOf(const HATCH_TYPE& type) { return zim::WString(type.name).toUtf8(); }

std::vector<double> dashesOf(const HATCH_LINE& line) {
  return {line.dash, line.dash + line.numDash};
}

double periodOf(const HATCH_LINE& line) {
  return std::accumulate(line.dash, line.dash + line.numDash, 0.0,
                         [](double sum, double dash) { return sum + std::abs(dash); });
}

TEST(Catalogue, HasItsPatternsInOrder) {
  const int kNoFamilies[] = {2, 1, 2, 2, 4, 2, 1, 2, 2,  2, 4, 2, 8, 2, 13, 2, 14, 3, 9, 4, 8, 2, 3,
                             8, 4, 4, 2, 1, 2, 1, 6, 21, 2, 3, 2, 3, 3, 2,  3, 1,  1, 1, 1, 2, 1, 1,
                             1, 1, 1, 1, 2, 2, 2, 1, 1,  2, 3, 3, 4, 2, 2,  3, 2,  6, 2, 3, 2, 1};
  ASSERT_EQ(std::size(kNoFamilies), static_cast<std::size_t>(kNoPatterns));
  int total = 0;
  for (long i = 0; i < kNoPatterns; ++i) {
    ASSERT_TRUE(getHatch(i)) << i;
    EXPECT_EQ(getHatch(i)->numLines, kNoFamilies[i]) << nameOf(*getHatch(i));
    total += getHatch(i)->numLines;
  }
  EXPECT_EQ(total, 216);
  const long kMin = std::numeric_limits<long>::min(), kMax = std::numeric_limits<long>::max();
  for (const long i : {kNoPatterns, -1L, kMin, kMax}) EXPECT_FALSE(getHatch(i)) << i;
}

TEST(Catalogue, HasTheKnownNumberOfFamiliesForEachNumberOfDashes) {
  std::map<int, int> families;
  for (const HATCH_TYPE* type : patterns()) {
    for (const HATCH_LINE* line : familiesOf(*type)) ++families[line->numDash];
  }
  EXPECT_EQ(families, (std::map<int, int>{{0, 45}, {2, 139}, {3, 3}, {4, 10}, {6, 19}}));
}

TEST(Catalogue, NamesAndDescribesItsPatterns) {
  const struct {
    long index;
    const char16_t *name, *description;
  } kTexts[] = {
      {0, u"ANGLE", u"Angle steel"},
      {1, u"ANSI31", u"ANSI Iron, Brick, Stone masonry"},
      {7, u"ANSI37", u"ANSI Lead, Zinc, Magnesium, Sound/Heat/Elec Insulation"},
      {10, u"AR-B816C", u"8x16 Block elevation stretcher bond with mortar joints"},
      {12, u"AR-BRELM", u"Standard brick elevation english bond with mortar joints"},
      {14, u"AR-CONC", u"Random dot and stone pattern"},
      {15, u"AR-HBONE", u"Standard brick herringbone pattern @ 45 degrees"},
      {16, u"AR-PARQ1", u"2x12 Parquet flooring: pattern of 12x12"},
      {22, u"BRICK", u"Brick or masonry-type surface"},
      {30, u"EARTH", u"Earth or ground (subterranean)"},
      {31, u"ESCHER", u"Escher pattern"},
      {39, u"ACAD_ISO02W100", u"dashed line"},
      {46, u"ACAD_ISO09W100", u"long dashed double-short-dashed line"},
      {52, u"ACAD_ISO15W100", u"double-dashed triplicate-dotted line"},
      {53, u"LINE", u"Parallel horizontal lines"},
      {55, u"NET", u"Horizontal / vertical grid"},
      {56, u"NET3", u"Network pattern 0-60-120"},
      {57, u"PLAST", u"Plastic material"},
      {58, u"PLASTI", u"Plastic material"},
      {61, u"STARS", u"Star of David"},
      {66, u"ZIGZAG", u"Staircase effect"},
      {67, u"CATASTO1", u"Catasto1"},
  };
  for (const auto& t : kTexts) {
    EXPECT_EQ(zim::WString(getHatch(t.index)->name), zim::WString(t.name));
    EXPECT_EQ(zim::WString(getHatch(t.index)->description), zim::WString(t.description));
  }
}

TEST(Catalogue, HasRowsExactly) {
  const struct {
    const char16_t* pattern;
    Rows rows;
  } kPatterns[] = {
      {u"ANGLE", {{0, 0, 0, 0, 0.275, {0.2, -0.075}}, {90, 0, 0, 0, 0.275, {0.2, -0.075}}}},
      {u"ANSI31", {{45, 0, 0, 0, 0.125, {}}}},
      {u"ANSI32", {{45, 0, 0, 0, 0.375, {}}, {45, 0.176776695, 0, 0, 0.375, {}}}},
      {u"ANSI37", {{45, 0, 0, 0, 0.125, {}}, {135, 0, 0, 0, 0.125, {}}}},
      {u"AR-B816C",
       {{0, 0, 0, 8, 8, {15.625, -0.375}},
        {0, -8, 0.375, 8, 8, {15.625, -0.375}},
        {90, 0, 0, 8, 8, {-8.375, 7.625}},
        {90, -0.375, 0, 8, 8, {-8.375, 7.625}}}},
      {u"DOLMIT", {{0, 0, 0, 0, 0.25, {}}, {45, 0, 0, 0, 0.70710678, {0.35355339, -0.70710768}}}},
      {u"DOTS", {{0, 0, 0, 0.03125, 0.0625, {0, -0.0625}}}},
      {u"HEX",
       {{0, 0, 0, 0, 0.216506351, {0.125, -0.25}},
        {120, 0, 0, 0, 0.216506351, {0.125, -0.25}},
        {60, 0.125, 0, 0, 0.216506351, {0.125, -0.25}}}},
      {u"ACAD_ISO15W100",
       {{0, 0, 0, 0, 5, {12, -3, 12, -3, 0.5, -10}},
        {0, 0, 0, 0, 5, {-33.5, 0.5, -3, 0.5, -3, 0}}}},
      {u"LINE", {{0, 0, 0, 0, 0.125, {}}}},
      {u"MUDST", {{0, 0, 0, 0.5, 0.25, {0.25, -0.25, 0, -0.25, 0, -0.25}}}},
      {u"NET", {{0, 0, 0, 0, 0.125, {}}, {90, 0, 0, 0, 0.125, {}}}},
      {u"ZIGZAG",
       {{0, 0, 0, 0.125, 0.125, {0.125, -0.125}}, {90, 0.125, 0, 0.125, 0.125, {0.125, -0.125}}}},
      {u"CATASTO1", {{45, 0, 0, 0.125, 0.125, {0.375, -0.125}}}},
  };
  const std::map<double, double> kAnglesRad = {
      {0, 0},
      {45, 0.7853981633973},
      {60, 1.0471975511964},
      {90, 1.5707963267946},
      {120, 2.0943951023928},
      {135, 2.3561944901919},
  };
  for (const auto& t : kPatterns) {
    const HATCH_TYPE& type = patternOf(t.pattern);
    ASSERT_EQ(static_cast<std::size_t>(type.numLines), t.rows.size()) << nameOf(type);
    for (std::size_t i = 0; i < t.rows.size(); ++i) {
      SCOPED_TRACE(nameOf(type) + " " + std::to_string(i));
      const HATCH_LINE& line = type.lines[i];
      const Row& row = t.rows[i];
      EXPECT_EQ(line.angle, kAnglesRad.at(row.angleDeg));
      EXPECT_EQ((std::vector{line.x0, line.y0, line.dx, line.dy}),
                (std::vector{row.x0, row.y0, row.dx, row.dy}));
      EXPECT_EQ(dashesOf(line), row.dashes);
    }
  }
}

TEST(Catalogue, HasAnglesOfThirteenDecimals) {
  std::map<double, double> byDegrees;  // degrees with four decimals
  for (const HATCH_TYPE* type : patterns()) {
    for (const HATCH_LINE* line : familiesOf(*type)) {
      const double degrees = std::round(line->angle / kRadPerDeg * 1e4) / 1e4;
      EXPECT_NEAR(line->angle, degrees * kRadPerDeg, 0.51e-13) << nameOf(*type);
      EXPECT_EQ(byDegrees.emplace(degrees, line->angle).first->second, line->angle);
    }
  }
  EXPECT_EQ(byDegrees.at(180), 3.1415926535892);
  EXPECT_EQ(byDegrees.at(300), 5.235987755982);
  EXPECT_LT(byDegrees.at(-42.5), 0);
}

TEST(Catalogue, HasFamiliesThatCanBeDrawn) {
  for (const HATCH_TYPE* type : patterns()) {
    for (const HATCH_LINE* line : familiesOf(*type)) {
      SCOPED_TRACE(nameOf(*type));
      for (const double value : {line->angle, line->x0, line->y0, line->dx, line->dy}) {
        EXPECT_TRUE(std::isfinite(value));
      }
      EXPECT_NE(line->dy, 0);
      ASSERT_TRUE(line->numDash >= 0 && line->numDash <= 6);
      const double period = periodOf(*line);
      EXPECT_TRUE(std::isfinite(period));
      EXPECT_TRUE(line->numDash == 0 || period > 0);
      EXPECT_TRUE(
          std::all_of(line->dash + line->numDash, line->dash + 6, [](double d) { return d == 0; }));
    }
  }
}

// Families that are moved by a tile of their pattern must fall on themselves: on lines of the
// family, and dashes on dashes. A wrong angle, offset or dash breaks this, whatever its source.
TEST(Catalogue, FamiliesOfAPatternRepeatTogether) {
  const double r2 = std::sqrt(2), r3 = std::sqrt(3);
  const struct {
    const char16_t* pattern;
    double width, height;
  } kTiles[] = {
      {u"ANGLE", 0.275, 0.275},
      {u"ANSI32", 0.375 * r2, 0.375 * r2},
      {u"ANSI33", 0.75 * r2, 0.75 * r2},
      {u"ANSI34", 0.75 * r2, 0.75 * r2},
      {u"ANSI35", 1.75 * r2, 1.75 * r2},
      {u"ANSI36", 1.75 * r2, 1.75 * r2},
      {u"ANSI37", 0.125 * r2, 0.125 * r2},
      {u"ANSI38", 0.5 * r2, 0.5 * r2},
      {u"AR-B816", 16, 16},
      {u"AR-B816C", 16, 16},
      {u"AR-B88", 8, 16},
      {u"AR-BRELM", 8, 5.334},
      {u"AR-BRSTD", 8, 5.334},
      {u"AR-HBONE", 8 * r2, 4 * r2},
      {u"AR-PARQ1", 24, 24},
      {u"AR-RSHKE", 34, 48},
      {u"BOX", 1, 1},
      {u"BRASS", 0.1875, 0.25},
      {u"BRICK", 0.5, 0.5},
      {u"BRSTONE", 1, 0.66},
      {u"CLAY", 0.3125, 0.1875},
      {u"CORK", 0.5, 0.5},
      {u"CROSS", 0.5, 0.5},
      {u"DASH", 0.25, 0.25},
      {u"DOLMIT", 3, 3},
      {u"DOTS", 0.0625, 0.125},
      {u"EARTH", 0.5, 0.5},
      {u"ESCHER", 1.2, 1.2 * r3},
      {u"FLEX", 0.5, 0.25},
      {u"GRASS", r2, r2},
      {u"GRATE", 0.125, 0.03125},
      {u"HEX", 0.75, 0.25 * r3},
      {u"HONEY", 0.375, 0.125 * r3},
      {u"HOUND", 1.5, 1.5},
      {u"INSUL", 0.25, 0.375},
      {u"ACAD_ISO02W100", 15, 5},
      {u"ACAD_ISO03W100", 30, 5},
      {u"ACAD_ISO04W100", 30.5, 5},
      {u"ACAD_ISO05W100", 34, 5},
      {u"ACAD_ISO06W100", 37.5, 5},
      {u"ACAD_ISO07W100", 3.5, 5},
      {u"ACAD_ISO08W100", 36, 5},
      {u"ACAD_ISO09W100", 45, 5},
      {u"ACAD_ISO10W100", 18.5, 5},
      {u"ACAD_ISO11W100", 33.5, 5},
      {u"ACAD_ISO12W100", 22, 5},
      {u"ACAD_ISO13W100", 37, 5},
      {u"ACAD_ISO14W100", 25.5, 5},
      {u"ACAD_ISO15W100", 40.5, 5},
      {u"MUDST", 1, 0.5},
      {u"NET3", 0.25 / r3, 0.25},
      {u"SACNCR", 0.09375 * r2, 0.09375 * r2},
      {u"SQUARE", 0.25, 0.25},
      {u"STARS", 0.5, 0.5 * r3},
      {u"STEEL", 0.125 * r2, 0.125 * r2},
      {u"SWAMP", 1, r3},
      {u"TRANS", 0.25, 0.25},
      {u"TRIANG", 0.375, 0.375 * r3},
      {u"ZIGZAG", 0.25, 0.25},
      {u"CATASTO1", 0.25 * r2, 0.125 * r2},
  };
  const auto isWhole = [](double value) { return std::abs(value - std::round(value)) < 1e-5; };
  const auto repeats = [&](const HATCH_LINE& line, double x, double y) {
    const double along = x * std::cos(line.angle) + y * std::sin(line.angle);
    const double steps = (y * std::cos(line.angle) - x * std::sin(line.angle)) / line.dy;
    return isWhole(steps) &&
           (line.numDash == 0 || isWhole((along - std::round(steps) * line.dx) / periodOf(line)));
  };
  for (const auto& t : kTiles) {
    for (const HATCH_LINE* line : familiesOf(patternOf(t.pattern))) {
      SCOPED_TRACE(zim::WString(t.pattern).toUtf8());
      EXPECT_TRUE(repeats(*line, t.width, 0));
      EXPECT_TRUE(repeats(*line, 0, t.height));
      EXPECT_FALSE(repeats(*line, t.width * 0.3127, t.height * 0.4643));
    }
  }
}

TEST(Catalogue, FindsNamesInAnyCase) {
  std::set<const HATCH_TYPE*> found;
  for (const HATCH_TYPE* type : patterns()) {
    std::u16string lower, mixed;
    for (const char16_t unit : std::u16string_view(type->name)) {
      lower += zim::foldCase(unit);
      mixed += mixed.size() % 2 ? zim::foldCase(unit) : unit;
    }
    for (const std::u16string& name : {std::u16string(type->name), lower, mixed}) {
      EXPECT_EQ(getHatch(zim::WString(name)), type) << nameOf(*type);
    }
    found.insert(type);
  }
  EXPECT_EQ(found.size(), static_cast<std::size_t>(kNoPatterns));
  EXPECT_EQ(getHatch(zim::WString(u"aNsI31")), getHatch(1));
  EXPECT_EQ(getHatch(zim::WString(u"Catasto1")), getHatch(67));
  for (const char16_t* name : {u"", u"A", u"ANSI3", u"ANSI311", u"ANSI31 ", u" ANSI31", u"ZZZ",
                               u"SOLID", u"Star of David", u"Angle steel", u"\uFFFF"}) {
    EXPECT_FALSE(getHatch(zim::WString(name))) << zim::WString(name).toUtf8();
  }
}

TEST(Catalogue, TellsItsRecordsFromCopies) {
  for (long i = 0; i < kNoPatterns; ++i) {
    EXPECT_EQ(getHatch(*getHatch(i)), i);
    const HATCH_TYPE copy = *getHatch(i);
    EXPECT_EQ(getHatch(copy), -1);
  }
  const HATCH_TYPE empty{u"", u"", nullptr, 0};
  EXPECT_EQ(getHatch(empty), -1);
}

/// One row of a definition file; false when it holds fewer than five numbers.
bool parseRow(const std::string& text, Row& row) {
  std::vector<double> numbers;
  for (std::size_t at = 0; at != std::string::npos;) {
    const std::size_t comma = text.find(',', at);
    numbers.push_back(
        vek0::detail::parseDouble(std::string_view(text).substr(at, comma - at)).value);
    at = comma == std::string::npos ? comma : comma + 1;
  }
  if (numbers.size() < 5) return false;
  row = {numbers[0], numbers[1], numbers[2],
         numbers[3], numbers[4], {numbers.begin() + 5, numbers.end()}};
  return true;
}

struct Definition {
  std::string name;
  Rows rows;
};

std::vector<Definition> readDefinitions(const std::filesystem::path& file) {
  std::vector<Definition> definitions;
  std::ifstream in(file);
  for (std::string text; std::getline(in, text);) {
    text.resize(std::min(text.find_first_of(";\r"), text.size()));
    Row row;
    if (!text.empty() && text[0] == '*') {
      definitions.push_back({text.substr(1, text.find(',') - 1), {}});
    } else if (!definitions.empty() && parseRow(text, row)) {
      definitions.back().rows.push_back(row);
    }
  }
  return definitions;
}

/// Whether the row is the family at that scale, to the six digits of the files.
bool agrees(const HATCH_LINE& line, const Row& row, double scale) {
  const auto isNear = [](double a, double b) { return std::abs(a - b) <= 5.1e-6 * std::abs(b); };
  std::vector<double> dashes = row.dashes;
  // Dots that end a sequence do not change it; the catalogue has one more of them.
  if (dashes.size() < static_cast<std::size_t>(line.numDash)) dashes.push_back(0);
  const std::vector<double> own = dashesOf(line);
  return isNear(line.angle, row.angleDeg * kRadPerDeg) && isNear(line.x0 * scale, row.x0) &&
         isNear(line.y0 * scale, row.y0) && isNear(line.dx * scale, row.dx) &&
         isNear(line.dy * scale, row.dy) &&
         std::equal(own.begin(), own.end(), dashes.begin(), dashes.end(),
                    [&](double a, double b) { return isNear(a * scale, b); });
}

bool agrees(const HATCH_TYPE& type, const Rows& rows, double scale) {
  const std::vector<const HATCH_LINE*> lines = familiesOf(type);
  return std::equal(
      lines.begin(), lines.end(), rows.begin(), rows.end(),
      [&](const HATCH_LINE* line, const Row& row) { return agrees(*line, row, scale); });
}

TEST(CatalogueCorpus, AgreesWithPublicDefinitions) {
  const char* folder = std::getenv("VEK0_CORPUS");
  if (!folder || !std::filesystem::is_directory(std::filesystem::path(folder) / "pat")) {
    GTEST_SKIP() << "VEK0_CORPUS has no pattern files";
  }
  std::map<const HATCH_TYPE*, int> confirmed;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(folder) / "pat")) {
    for (const Definition& definition : readDefinitions(entry.path())) {
      const HATCH_TYPE* type = getHatch(zim::WString::fromUtf8(definition.name));
      if (!type) continue;
      // Metric files carry the same patterns in millimeters.
      EXPECT_TRUE(agrees(*type, definition.rows, 1) || agrees(*type, definition.rows, 25.4))
          << definition.name << " in " << entry.path();
      ++confirmed[type];
    }
  }
  RecordProperty("patterns", static_cast<int>(confirmed.size()));
  EXPECT_GE(confirmed.size(), 60u);
}

}  // namespace
