#include "support/test.h"
#include "tables/tableitems.h"

using vek0::detail::kPi;

namespace {

constexpr double kMetricTolerance = 1e-9;

// Height 10, capitals 8, descent 2, width 5 per character.
struct MetricFont : ICADFont {
  explicit MetricFont(double heightUnit = 8) : ICADFont(u"font"), m_heightUnit(heightUnit) {}
  double getHeightUnit() const override { return m_heightUnit; }
  double getFullHeight() const override { return 10; }
  double getDescent() const override { return 2; }
  double getStringWidth(const zim::WString& text, bool, bool bold, bool) const override {
    return static_cast<double>(text.Length()) * (bold ? 6 : 5);
  }

 private:
  double m_heightUnit;
};

TEXT_3D placed(CStyle* style, long justification, double rotation = 0, double oblique = 0,
               double widthScale = 1) {
  return TEXT_3D(u"abcd", style, 100, 50, 3, 4, oblique, widthScale, rotation, justification);
}

TEST(TextJustification, NamesCodesAndIndicesAgree) {
  const struct {
    long horizontal, vertical;
    const char* name;
  } cases[] = {
      {0, 0, "Left"},        {1, 0, "Center"},        {2, 0, "Right"},
      {0, 3, "Top left"},    {1, 3, "Top center"},    {2, 3, "Top right"},
      {0, 2, "Middle left"}, {1, 2, "Middle center"}, {2, 2, "Middle right"},
      {0, 1, "Bottom left"}, {1, 1, "Bottom center"}, {2, 1, "Bottom right"},
  };
  ASSERT_EQ(std::size(cases), static_cast<std::size_t>(TEXT_3D::kJustifications));
  for (long i = 0; i < TEXT_3D::kJustifications; ++i) {
    const auto& t = cases[i];
    SCOPED_TRACE(t.name);
    TEXT_3D text = vek0::test::text(u"x", nullptr, i);
    EXPECT_EQ(text.getHorizAlign(), t.horizontal);
    EXPECT_EQ(text.getVertAlign(), t.vertical);
    EXPECT_EQ(TEXT_3D::findJustify(t.horizontal, t.vertical), i);
    EXPECT_EQ(text.getAlignName().toUtf8(), t.name);
    text.setHorizAlign(2 - t.horizontal);
    EXPECT_EQ(text.getVertAlign(), t.vertical);
    text.setVertAlign(3);
    EXPECT_EQ(text.getHorizAlign(), 2 - t.horizontal);
  }
}

TEST(TextJustification, WhatIsNotInTheTableIsLeft) {
  EXPECT_EQ(TEXT_3D::findJustify(5, 5), 0);
  EXPECT_EQ(TEXT_3D::findJustify(4, 0), 0);
  for (const long odd : {-1L, 12L, 1000000L}) {
    TEXT_3D text = vek0::test::text(u"x", nullptr, odd);
    EXPECT_EQ(text.getAlign(), 0);
    text.setAlign(odd);
    EXPECT_EQ(text.getAlign(), 0);
    EXPECT_EQ(TEXT_3D::getAlignName(odd).toUtf8(), "Left");
  }
  TEXT_3D text = vek0::test::text(u"x", nullptr, 7);
  text.setVertAlign(9);
  EXPECT_EQ(text.getAlign(), 0) << "the horizontal code goes with it";
}

// Height 4 with capitals of 8 units: half a drawing unit per font unit, so the string is 10 long.
TEST(TextBasePoint, FollowsTheFontsMeasures) {
  const double dxs[] = {0, -5, -10};
  const double dys[] = {0, 1, -2.5, -4};
  const MetricFont font;
  const auto style = vek0::test::style(&font);
  for (long i = 0; i < TEXT_3D::kJustifications; ++i) {
    const TEXT_3D text = placed(style.get(), i);
    SCOPED_TRACE(text.getAlignName().toUtf8());
    double dx, dy;
    text.getDeltaXY(dx, dy);
    EXPECT_NEAR(dx, dxs[text.getHorizAlign()], kMetricTolerance);
    EXPECT_NEAR(dy, dys[text.getVertAlign()], kMetricTolerance);
    EXPECT_TRUE(text.getBasePoint() == PNT_3D(100 + dx, 50 + dy, 3));
    const TEXT_3D styleless = placed(nullptr, i);
    EXPECT_TRUE(styleless.getBasePoint() == PNT_3D(100, 50, 3));
  }
}

TEST(TextBasePoint, TurnsWithTheText) {
  const MetricFont font;
  const auto style = vek0::test::style(&font);
  double dx, dy;
  placed(style.get(), 2, kPi / 2).getDeltaXY(dx, dy);
  EXPECT_NEAR(dx, 0, kMetricTolerance);
  EXPECT_NEAR(dy, -10, kMetricTolerance);
  placed(style.get(), 0, 1).getDeltaXY(dx, dy);
  EXPECT_TRUE(dx == 0 && dy == 0);
}

TEST(TextBasePoint, TakesWidthScaleAndBoldIntoAccount) {
  const MetricFont font;
  const auto style = vek0::test::style(&font, u"S", CStyle::kBold);
  EXPECT_DOUBLE_EQ(placed(style.get(), 0, 0, 0, 0.5).getStringLength(), 6);
  double dx, dy;
  placed(style.get(), 2, 0, 0, -1).getDeltaXY(dx, dy);
  EXPECT_DOUBLE_EQ(dx, 12) << "written backward, it ends at the insertion point too";
}

TEST(TextBasePoint, SurvivesFontsWithoutHeight) {
  for (const double unit : {0.0, -3.0, std::nan("")}) {
    const MetricFont font(unit);
    const auto style = vek0::test::style(&font);
    double dx, dy;
    placed(style.get(), 5).getDeltaXY(dx, dy);
    EXPECT_DOUBLE_EQ(dx, -80);
    EXPECT_DOUBLE_EQ(dy, -4);
  }
}

TEST(TextBasePoint, StyleWithoutFontUsesTheDefaults) {
  const auto style = vek0::test::style();
  double dx, dy;
  placed(style.get(), 11).getDeltaXY(dx, dy);
  EXPECT_NEAR(dx, -4 * 4 * 0.9, kMetricTolerance);
  EXPECT_NEAR(dy, 4.0 / 3, kMetricTolerance);
}

void expectBox(const TEXT_3D& text, double x1, double y1, double x2, double y2) {
  RECT_3D box;
  RECT_2D flat;
  text.calc_bdry(box);
  text.calc_bdry(flat);
  EXPECT_NEAR(box.min.x, x1, kMetricTolerance);
  EXPECT_NEAR(box.min.y, y1, kMetricTolerance);
  EXPECT_NEAR(box.max.x, x2, kMetricTolerance);
  EXPECT_NEAR(box.max.y, y2, kMetricTolerance);
  EXPECT_TRUE(box.min.z == text.z && box.max.z == text.z);
  EXPECT_TRUE(flat == RECT_2D(box.min.x, box.min.y, box.max.x, box.max.y));
}

TEST(TextExtents, ReachFromTheDescentToTheHeight) {
  const MetricFont font;
  const auto style = vek0::test::style(&font);
  {
    SCOPED_TRACE("left");
    expectBox(placed(style.get(), 0), 100, 49, 110, 54);
  }
  {
    SCOPED_TRACE("top right");
    expectBox(placed(style.get(), 5), 90, 45, 100, 50);
  }
  {
    SCOPED_TRACE("upright");
    expectBox(placed(style.get(), 0, kPi / 2), 96, 50, 101, 60);
  }
  {
    SCOPED_TRACE("slanted by 45 degrees");
    expectBox(placed(style.get(), 0, 0, kPi / 4), 99, 49, 114, 54);
  }
  {
    SCOPED_TRACE("backward");
    expectBox(placed(style.get(), 0, 0, 0, -1), 90, 49, 100, 54);
  }
  {
    SCOPED_TRACE("empty");
    expectBox(TEXT_3D(u"", style.get(), 7, 8, 9, 4, 0, 1, 0, 5), 7, 8, 7, 8);
  }
  {
    SCOPED_TRACE("without a style, by the default measures");
    expectBox(placed(nullptr, 5), 100, 50 - 4.0 / 3, 100 + 14.4, 54);
  }
}

// In any font, and after the string or the proportions change.
TEST(TextFits, SpanTheirLength) {
  const MetricFont font;
  const auto style = vek0::test::style(&font);
  for (const bool isWidth : {true, false}) {
    TEXT_3D text = placed(nullptr, 3);
    text.setFit(isWidth ? TextFit::Width : TextFit::Size, 36);
    EXPECT_EQ(text.getAlign(), 0);
    text.setStyle(style.get());  // 10 long at height 4
    EXPECT_DOUBLE_EQ(text.getStringLength(), 36);
    text.setContext(CTextContext(4, 0, 1, 0, u"%%uabcd%%u"));  // the codes have no width
    EXPECT_DOUBLE_EQ(text.getShownContext().getHeight(), isWidth ? 4 : 4 * 3.6);
    EXPECT_DOUBLE_EQ(text.getShownContext().getWidthScale(), isWidth ? 3.6 : 1);
    text.setContext(CTextContext(2, 0, -3, 0, u"a longer string"));
    EXPECT_DOUBLE_EQ(text.getStringLength(), -36 * 3 / 2.0) << "follows height and width factor";
    text.setContext(CTextContext(2, 0, 3, 0, u""));
    EXPECT_EQ(text.getStringLength(), 0);
    for (const double length : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
      text.setFit(TextFit::Size, length);
      EXPECT_EQ(text.getFit(), TextFit::None);
    }
  }
}

// Rotating, scaling and measuring commute.
TEST(TextTransforms, CornersFollow) {
  constexpr unsigned kSeed = 3;
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> coordinate(-50, 50), angle(-7, 7), slant(-1, 1),
      factor(-3, 3);
  const MetricFont font;
  const auto style = vek0::test::style(&font);
  for (int round = 0; round < 200; ++round) {
    TEXT_3D text(u"abcd", style.get(), coordinate(random), coordinate(random), coordinate(random),
                 4, slant(random), factor(random), angle(random), static_cast<long>(random() % 12));
    if (round % 3 > 0) text.setFit(static_cast<TextFit>(round % 3), 1 + round);
    const PNT_3D center(coordinate(random), coordinate(random), coordinate(random));
    const double turn = angle(random), f = factor(random);
    TEXT_3D turned(text), scaled(text);
    turned.rotate(center, turn);
    scaled.scale(center, f);
    PNT_3D corners[4], turnedCorners[4], scaledCorners[4];
    text.getExtremes(corners);
    turned.getExtremes(turnedCorners);
    scaled.getExtremes(scaledCorners);
    for (int i = 0; i < 4; ++i) {
      PNT_3D viaTurn(corners[i]), viaScale(corners[i]);
      viaTurn.rotate(center, turn);
      viaScale.scale(center, f);
      EXPECT_LT(turnedCorners[i].dist(viaTurn), kMetricTolerance) << "seed " << kSeed;
      EXPECT_LT(scaledCorners[i].dist(viaScale), kMetricTolerance) << "seed " << kSeed;
    }
  }
}

TEST(Text, EqualityIsExact) {
  const auto style = vek0::test::style();
  const TEXT_3D reference = placed(style.get(), 3);
  const struct {
    const char* name;
    void (*change)(TEXT_3D&);
  } changes[] = {
      {"point", [](TEXT_3D& t) { t.z = 4; }},
      {"length to span", [](TEXT_3D& t) { t.setFit(TextFit::Size, 1); }},
      {"style", [](TEXT_3D& t) { t.setStyle(nullptr); }},
      {"justification", [](TEXT_3D& t) { t.setAlign(4); }},
      {"letter case", [](TEXT_3D& t) { t.setContext(CTextContext(4, 0, 1, 0, u"abcD")); }},
      {"height", [](TEXT_3D& t) { t.setContext(CTextContext(4.5, 0, 1, 0, u"abcd")); }},
      {"oblique", [](TEXT_3D& t) { t.setContext(CTextContext(4, 1, 1, 0, u"abcd")); }},
      {"width scale", [](TEXT_3D& t) { t.setContext(CTextContext(4, 0, 2, 0, u"abcd")); }},
      {"rotation", [](TEXT_3D& t) { t.setContext(CTextContext(4, 0, 1, 1, u"abcd")); }},
  };
  for (const auto& t : changes) {
    TEXT_3D other(reference);
    EXPECT_TRUE(other == reference);
    t.change(other);
    EXPECT_TRUE(other != reference) << t.name;
  }
}

}  // namespace
