#include "support/test.h"
#include "tables/tableitems.h"

namespace {

constexpr double kTolerance = 1e-12;

CLtypeComplexDashSeq dashes(const std::vector<double>& values) {
  CLtypeComplexDashSeq seq;
  for (const double value : values) seq.AddDashDouble(value);
  return seq;
}

TEST(LtypeDashes, PatternLengthIsThatOfTheNumbers) {
  const auto style = vek0::test::style();
  CLtypeComplexDashSeq seq = dashes({0.5, -0.25, 0.0});
  seq.AddDashText(vek0::test::text(u"GAS", style.get()));
  EXPECT_EQ(seq.GetNoDashes(), 4);
  EXPECT_DOUBLE_EQ(seq.GetPatternLen(), 0.75);
  seq.RemoveDash(1);
  EXPECT_DOUBLE_EQ(seq.GetPatternLen(), 0.5);
  seq.RemoveDash(2);
  EXPECT_DOUBLE_EQ(seq.GetPatternLen(), 0.5);
  EXPECT_EQ(seq.GetNoDashes(), 2);
}

// Lengths are compared exactly, so equal elements must have equal lengths, whatever edits led to
// them.
TEST(LtypeDashes, LengthDoesNotDependOnHistory) {
  constexpr unsigned kSeed = 11;
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> value(-1e3, 1e-3);
  CLtypeComplexDashSeq edited;
  for (int step = 0; step < 2000; ++step) {
    const int count = edited.GetNoDashes();
    const int at = static_cast<int>(random() % static_cast<unsigned>(count + 1));
    if (count < 12 && random() % 2)
      edited.InsertDashDouble(at, value(random));
    else if (at < count)
      edited.RemoveDash(at);
    CLtypeComplexDashSeq fresh;
    for (int i = 0; i < edited.GetNoDashes(); ++i) fresh.AddDashDouble(edited[i]->GetValue());
    ASSERT_EQ(edited.GetPatternLen(), fresh.GetPatternLen()) << "step " << step;
    ASSERT_TRUE(edited == fresh);
  }
}

TEST(LtypeDashes, TextElementsCountOnTheirStyle) {
  const auto style = vek0::test::style();
  {
    CLtypeComplexDashSeq seq;
    seq.AddDashText(vek0::test::text(u"A", style.get()));
    seq.AddDashText(vek0::test::text(u"B", nullptr));
    CLtypeComplexDashSeq copy(seq);
    EXPECT_EQ(style->getDashes(), 2);
    copy = CLtypeComplexDashSeq();
    EXPECT_EQ(style->getDashes(), 1);
    seq.AddDashText(vek0::test::text(u"C", style.get()));
    seq.RemoveDash(0);
    EXPECT_EQ(style->getDashes(), 1);
    EXPECT_EQ(style->getEntities(), 0);
  }
  EXPECT_EQ(style->getDashes(), 0);
}

TEST(LtypeDashes, EqualityComparesEveryElement) {
  CLtypeComplexDashSeq text, otherText;
  text.AddDashText(vek0::test::text(u"A", nullptr));
  otherText.AddDashText(vek0::test::text(u"a", nullptr));
  const struct {
    const char* name;
    CLtypeComplexDashSeq a, b;
    bool equal;
  } cases[] = {
      {"both empty", {}, {}, true},
      {"same values", dashes({1, -0.5}), dashes({1, -0.5}), true},
      {"same length, other order", dashes({1, -0.5}), dashes({-0.5, 1}), false},
      {"dash against gap", dashes({1}), dashes({-1}), false},
      {"dot against nothing", dashes({1, 0}), dashes({1}), false},
      {"dot against text", dashes({0}), text, false},
      {"same text", text, text, true},
      {"text in another case", text, otherText, false},
  };
  for (const auto& t : named(cases)) {
    EXPECT_EQ(t.a == t.b, t.equal);
    EXPECT_EQ(t.b != t.a, !t.equal);
  }
}

TEST(LtypeDashes, BoxSpansTheLengthAndTheTexts) {
  RECT_2D box, empty;
  empty.initRegion();
  CLtypeComplexDashSeq seq;
  seq.GetBdry(box);
  EXPECT_TRUE(box == empty);
  for (const double value : {0.5, -0.25, 0.0}) seq.AddDashDouble(value);
  seq.GetBdry(box);
  EXPECT_TRUE(box == RECT_2D(0, 0, 0.75, 0));
  // Two characters 0.9 wide, starting at 0.75, 1 high, a third below the line.
  seq.AddDashText(vek0::test::text(u"ab", nullptr));
  seq.AddDashDouble(-0.25);
  seq.GetBdry(box);
  EXPECT_NEAR(box.min.x, 0, kTolerance);
  EXPECT_NEAR(box.min.y, -1.0 / 3, kTolerance);
  EXPECT_NEAR(box.max.x, 0.75 + 1.8, kTolerance);
  EXPECT_NEAR(box.max.y, 1, kTolerance);
}

TEST(LtypeDashes, MementoKeepsItsOwnElements) {
  CLtypeComplexDashSeq seq = dashes({1, -1});
  const std::unique_ptr<CLtypeComplexDashSeqMemento> memento(seq.CreateMemento());
  seq.ClearDashes();
  EXPECT_TRUE(*memento != seq);
  seq.SetMemento(memento.get());
  EXPECT_TRUE(*memento == seq);
  seq.SetMemento(nullptr);
  EXPECT_EQ(seq.GetNoDashes(), 2);
}

// Describes each element along the path as "value from-to".
std::string laid(const CLtypeComplexDashSeq& seq, double scale, double phase, double length,
                 long most = 1000) {
  std::string out;
  const bool done = forEachDash(
      seq, scale, phase, length, most, [&](const ILtypeComplexDash& dash, double from, double to) {
        if (!out.empty()) out += ", ";
        out += testing::PrintToString(dash.GetValue()) + " " + testing::PrintToString(from) + "-" +
               testing::PrintToString(to);
      });
  return done ? out : "continuous";
}

TEST(ForEachDash, LaysThePatternAlongThePath) {
  for (const Row& t : rows())
    EXPECT_EQ(laid(dashes(t.reals("dashes")), t.real("scale"), t.real("phase"), t.real("length")),
              t.text("expected"));
}

TEST(ForEachDash, DashesAndGapsCoverTheWayWithoutHolesAndTheCapHolds) {
  constexpr unsigned kSeed = 5;
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> value(-2, 2), phase(-50, 50), length(0.1, 200);
  for (int round = 0; round < 300; ++round) {
    CLtypeComplexDashSeq seq;
    for (int i = 0; i < 5; ++i) seq.AddDashDouble(random() % 4 ? value(random) : 0.0);
    if (seq.GetPatternLen() == 0) continue;
    const double way = length(random);
    const long most = static_cast<long>(random() % 2000);
    double at = 0;
    long count = 0;
    const bool done = forEachDash(seq, 0.3, phase(random), way, most,
                                  [&](const ILtypeComplexDash& dash, double from, double to) {
                                    EXPECT_NEAR(from, at, 1e-9);
                                    EXPECT_EQ(dash.GetValue() == 0, from == to);
                                    at = to;
                                    ++count;
                                  });
    EXPECT_LE(count, most) << "seed " << kSeed << ", round " << round;
    if (done)
      EXPECT_NEAR(at, way, 1e-9);
    else
      EXPECT_EQ(count, 0);
  }
}

}  // namespace
