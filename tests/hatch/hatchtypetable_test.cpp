#include <chrono>

#include "support/test.h"

namespace {

const HATCH_LINE kDashed = {0.5, 1, 2, 3, 4, {5, -6, 0, -7}, 4};

TEST(HatchTypeTable, StoresEqualContentOnce) {
  CHatchTypeTable table;
  const HATCH_TYPE& type = table.intern(u"OWN", {kDashed, kDashed});
  EXPECT_EQ(&table.intern(u"OWN", {kDashed, kDashed}), &type);
  const HATCH_TYPE copy = type;
  EXPECT_EQ(&table.intern(copy), &type);
  EXPECT_NE(&table.intern(u"Own", {kDashed, kDashed}), &type);
  EXPECT_NE(&table.intern(u"OWN", {kDashed}), &type);
  EXPECT_EQ(&table.intern(*getHatch(1L)), getHatch(1L));
  EXPECT_NE(&table.intern(u"ANSI31", {getHatch(1L)->lines[0]}), getHatch(1L));
}

TEST(HatchTypeTable, EveryNumberOfALineCounts) {
  const std::function<void(HATCH_LINE&)> kChanges[] = {
      [](HATCH_LINE& line) { line.angle += 1e-15; },
      [](HATCH_LINE& line) { line.x0 = -1; },
      [](HATCH_LINE& line) { line.y0 = 1; },
      [](HATCH_LINE& line) { line.dx = 4; },
      [](HATCH_LINE& line) { line.dy = 3; },
      [](HATCH_LINE& line) { line.dash[0] = 6; },
      [](HATCH_LINE& line) { line.dash[3] = -7.0001; },
      [](HATCH_LINE& line) { line.numDash = 3; },
      [](HATCH_LINE& line) { line.numDash = 5; },
  };
  CHatchTypeTable table;
  std::set<const HATCH_TYPE*> types{&table.intern(u"OWN", {kDashed})};
  for (const auto& change : kChanges) {
    HATCH_LINE line = kDashed;
    change(line);
    types.insert(&table.intern(u"OWN", {line}));
  }
  EXPECT_EQ(types.size(), std::size(kChanges) + 1);
}

TEST(HatchTypeTable, WhatDrawsTheSameIsTheSame) {
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  HATCH_LINE zeros = kDashed, negative = kDashed;
  zeros.x0 = zeros.dx = 0;
  negative.x0 = negative.dx = negative.dash[2] = -0.0;
  HATCH_LINE tail = kDashed;
  tail.dash[4] = 9;
  HATCH_LINE none = kDashed;
  none.dy = none.dash[1] = kNaN;
  const struct {
    const char* name;
    HATCH_LINE a, b;
  } cases[] = {
      {"signs of zero", zeros, negative},
      {"behind the last dash", kDashed, tail},
      {"numbers that are none", none, none},
  };
  for (const auto& t : cases) {
    CHatchTypeTable table;
    EXPECT_EQ(&table.intern(u"OWN", {t.a}), &table.intern(u"OWN", {t.b})) << t.name;
  }
}

// A file may define different lines for every hatch under one name. Comparing each with all earlier
// ones would take minutes.
TEST(HatchTypeTable, ManyPatternsOfOneNameAreNotComparedWithEachOther) {
  constexpr int kManyPatterns = 100000;
  const auto start = std::chrono::steady_clock::now();
  CHatchTypeTable table;
  std::set<const HATCH_TYPE*> types;
  HATCH_LINE line = kDashed;
  for (const int round : {1, 2}) {
    for (int i = 0; i < kManyPatterns; ++i) {
      line.dy = i + 1;
      types.insert(&table.intern(u"OWN", {line}));
    }
    EXPECT_EQ(types.size(), std::size_t{kManyPatterns}) << round;
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
