// If VEK0_CORPUS names a folder, it may contain public pattern definition files under pat/.

#include <stdexcept>

#include "files/number.h"
#include "support/test.h"

namespace {

constexpr long kNoPatterns = 68;
constexpr double kRadPerDeg = 0.01745329251994;

/// A family as definition files state it: the angle in degrees and any number of dashes.
struct PatternLine {
  double angleDeg, x0, y0, dx, dy;
  std::vector<double> dashes;
};
using Pattern = std::vector<PatternLine>;

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

TEST(Catalogue, HasAllItsFamilies) {
  ASSERT_EQ(patterns().size(), static_cast<std::size_t>(kNoPatterns));
  std::map<int, int> families;  // by number of dashes
  for (const HATCH_TYPE* type : patterns())
    for (const HATCH_LINE* line : familiesOf(*type)) ++families[line->numDash];
  EXPECT_EQ(families, (std::map<int, int>{{0, 45}, {2, 139}, {3, 3}, {4, 10}, {6, 19}}));
  const long kMin = std::numeric_limits<long>::min(), kMax = std::numeric_limits<long>::max();
  for (const long i : {kNoPatterns, -1L, kMin, kMax}) EXPECT_FALSE(getHatch(i)) << i;
}

TEST(Catalogue, NamesAndDescribesItsPatterns) {
  for (const Row& t : rows()) {
    EXPECT_EQ(zim::WString(getHatch(t.whole<long>("index"))->name), t.wide("name"));
    EXPECT_EQ(zim::WString(getHatch(t.whole<long>("index"))->description), t.wide("description"));
  }
}

TEST(Catalogue, HasRowsExactly) {
  const std::map<double, double> kAnglesRad = {
      {0, 0},
      {45, 0.7853981633973},
      {60, 1.0471975511964},
      {90, 1.5707963267946},
      {120, 2.0943951023928},
      {135, 2.3561944901919},
  };
  for (const Row& t : rows()) {
    const HATCH_TYPE& type = patternOf(t.wide("pattern"));
    ASSERT_EQ(type.numLines, t.whole("of"));
    const HATCH_LINE& line = type.lines[t.count("index")];
    EXPECT_EQ(line.angle, kAnglesRad.at(t.real("degrees")));
    EXPECT_EQ((std::vector{line.x0, line.y0, line.dx, line.dy}),
              (std::vector{t.real("x0"), t.real("y0"), t.real("dx"), t.real("dy")}));
    EXPECT_EQ(dashesOf(line), t.reals("dashes"));
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
      for (const double value : {line->angle, line->x0, line->y0, line->dx, line->dy})
        EXPECT_TRUE(std::isfinite(value));
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

// Families moved by a tile of their pattern must coincide with themselves, lines with lines and
// dashes with dashes. Any wrong angle, offset or dash breaks this.
TEST(Catalogue, FamiliesOfAPatternRepeatTogether) {
  const double r2 = std::sqrt(2), r3 = std::sqrt(3);
  const auto isWhole = [](double value) { return std::abs(value - std::round(value)) < 1e-5; };
  const auto repeats = [&](const HATCH_LINE& line, double x, double y) {
    const double along = x * std::cos(line.angle) + y * std::sin(line.angle);
    const double steps = (y * std::cos(line.angle) - x * std::sin(line.angle)) / line.dy;
    return isWhole(steps) &&
           (line.numDash == 0 || isWhole((along - std::round(steps) * line.dx) / periodOf(line)));
  };
  const Definitions names{{"r2", r2}, {"r3", r3}};
  for (const Row& t : rowsWith(names)) {
    for (const HATCH_LINE* line : familiesOf(patternOf(t.wide("pattern")))) {
      SCOPED_TRACE(zim::WString(t.wide("pattern")).toUtf8());
      EXPECT_TRUE(repeats(*line, t.real("width"), 0));
      EXPECT_TRUE(repeats(*line, 0, t.real("height")));
      EXPECT_FALSE(repeats(*line, t.real("width") * 0.3127, t.real("height") * 0.4643));
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
    for (const std::u16string& name : {std::u16string(type->name), lower, mixed})
      EXPECT_EQ(getHatch(zim::WString(name)), type) << nameOf(*type);
    found.insert(type);
  }
  EXPECT_EQ(found.size(), static_cast<std::size_t>(kNoPatterns));
  EXPECT_EQ(getHatch(zim::WString(u"aNsI31")), getHatch(1));
  EXPECT_EQ(getHatch(zim::WString(u"Catasto1")), getHatch(67));
  for (const char16_t* name : {u"", u"A", u"ANSI3", u"ANSI311", u"ANSI31 ", u" ANSI31", u"ZZZ",
                               u"SOLID", u"Star of David", u"Angle steel", u"\uFFFF"})
    EXPECT_FALSE(getHatch(zim::WString(name))) << zim::WString(name).toUtf8();
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

/// Parses a row of a definition file; false if it has fewer than five numbers.
bool parseRow(const std::string& text, PatternLine& row) {
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
  Pattern rows;
};

std::vector<Definition> readDefinitions(const std::filesystem::path& file) {
  std::vector<Definition> definitions;
  std::ifstream in(file);
  for (std::string text; std::getline(in, text);) {
    text.resize(std::min(text.find_first_of(";\r"), text.size()));
    PatternLine row;
    if (!text.empty() && text[0] == '*')
      definitions.push_back({text.substr(1, text.find(',') - 1), {}});
    else if (!definitions.empty() && parseRow(text, row))
      definitions.back().rows.push_back(row);
  }
  return definitions;
}

/// Whether the row states the family at this scale, to the six digits of the files.
bool agrees(const HATCH_LINE& line, const PatternLine& row, double scale) {
  const auto isNear = [](double a, double b) { return std::abs(a - b) <= 5.1e-6 * std::abs(b); };
  std::vector<double> dashes = row.dashes;
  // Dots at the end of a sequence do not change it; the catalogue has one more of them.
  if (dashes.size() < static_cast<std::size_t>(line.numDash)) dashes.push_back(0);
  const std::vector<double> own = dashesOf(line);
  return isNear(line.angle, row.angleDeg * kRadPerDeg) && isNear(line.x0 * scale, row.x0) &&
         isNear(line.y0 * scale, row.y0) && isNear(line.dx * scale, row.dx) &&
         isNear(line.dy * scale, row.dy) &&
         std::equal(own.begin(), own.end(), dashes.begin(), dashes.end(),
                    [&](double a, double b) { return isNear(a * scale, b); });
}

bool agrees(const HATCH_TYPE& type, const Pattern& rows, double scale) {
  const std::vector<const HATCH_LINE*> lines = familiesOf(type);
  return std::equal(
      lines.begin(), lines.end(), rows.begin(), rows.end(),
      [&](const HATCH_LINE* line, const PatternLine& row) { return agrees(*line, row, scale); });
}

TEST(CatalogueCorpus, AgreesWithPublicDefinitions) {
  const char* folder = std::getenv("VEK0_CORPUS");
  if (!folder || !std::filesystem::is_directory(std::filesystem::path(folder) / "pat"))
    GTEST_SKIP() << "VEK0_CORPUS has no pattern files";
  std::map<const HATCH_TYPE*, int> confirmed;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(folder) / "pat")) {
    for (const Definition& definition : readDefinitions(entry.path())) {
      const HATCH_TYPE* type = getHatch(zim::WString::fromUtf8(definition.name));
      if (!type) continue;
      // Metric files contain the same patterns in millimeters.
      EXPECT_TRUE(agrees(*type, definition.rows, 1) || agrees(*type, definition.rows, 25.4))
          << definition.name << " in " << entry.path();
      ++confirmed[type];
    }
  }
  RecordProperty("patterns", static_cast<int>(confirmed.size()));
  EXPECT_GE(confirmed.size(), 60u);
}

}  // namespace
