#include "support/test.h"
#include "tables/tableitems.h"

namespace {

struct Font : ICADFont {
  explicit Font(const zim::WString& name, int* alive = nullptr) : ICADFont(name), m_alive(alive) {
    if (m_alive) ++*m_alive;
  }
  ~Font() override {
    if (m_alive) --*m_alive;
  }

 private:
  int* m_alive;
};

class Fonts : public testing::Test {
 protected:
  void SetUp() override { CFontTable::shutdown(); }
  void TearDown() override { CFontTable::shutdown(); }
  CFontTable& fonts() { return CFontTable::getInstance(); }
};

TEST_F(Fonts, AreFoundByExactNameFirstOneFirst) {
  auto* first = new Font(u"Arial");
  auto* second = new Font(u"Arial");
  auto* fallback = new Font(u"txt");
  for (Font* font : {first, second, fallback}) fonts().add(font);
  EXPECT_EQ(fonts().get(u"ARIAL", true), nullptr) << "no default is set yet";
  fonts().setDefault(fallback);
  EXPECT_EQ(fonts().get(u"Arial", false), first);
  EXPECT_EQ(fonts().get(u"ARIAL", false), nullptr);
  EXPECT_EQ(fonts().get(u"ARIAL", true), fallback);
  EXPECT_EQ(fonts().size(), 3);
  EXPECT_EQ(fonts()[1], second);
}

TEST_F(Fonts, AreDeletedOnceHoweverOftenAdded) {
  int alive = 0;
  auto* font = new Font(u"A", &alive);
  fonts().add(font);
  fonts().add(new Font(u"A", &alive));
  fonts().add(font);
  fonts().add(nullptr);
  EXPECT_EQ(fonts().size(), 2);
  CFontTable::shutdown();
  EXPECT_EQ(alive, 0);
  EXPECT_EQ(fonts().getDefault(), nullptr) << "a new table knows nothing of the old one";
}

TEST(FontMetrics, DefaultsMeasureByTheLetter) {
  const Font font(u"name only");
  EXPECT_DOUBLE_EQ(font.getHeightUnit(), 1);
  EXPECT_DOUBLE_EQ(font.getFullHeight(), 1);
  EXPECT_DOUBLE_EQ(font.getDescent(), 1.0 / 3);
  for (const Row& t : rows()) {
    const zim::WString text = t.wide("text");
    EXPECT_DOUBLE_EQ(font.getStringWidth(text, false, t.flag("bold"), false), t.real("width"))
        << t.text("name");
    EXPECT_DOUBLE_EQ(defaultFontMetrics().getStringWidth(text, true, t.flag("bold"), true),
                     t.real("width"));
  }
}

TEST(Style, EqualityLeavesOutTheLastHeight) {
  const Font font(u"A");
  const auto reference = vek0::test::style(&font, u"Notes", CStyle::kBold);
  const struct {
    const char* name;
    void (*change)(CStyle&);
    bool equal;
  } cases[] = {
      {"nothing", [](CStyle&) {}, true},
      {"last height", [](CStyle& s) { s.setLastHeight(5); }, true},
      {"letter case", [](CStyle& s) { s.setName(u"NOTES"); }, true},
      {"name", [](CStyle& s) { s.setName(u"Note"); }, false},
      {"font", [](CStyle& s) { s.setFont(nullptr); }, false},
      {"fixed height", [](CStyle& s) { s.setFixedHeight(1); }, false},
      {"width scale", [](CStyle& s) { s.setWidthScale(1.0001); }, false},
      {"oblique", [](CStyle& s) { s.setOblique(0.1); }, false},
      {"flags", [](CStyle& s) { s.setItalic(true); }, false},
  };
  for (const auto& t : named(cases)) {
    const std::unique_ptr<CStyle> other(CStyleFactory().create(*reference));
    const std::unique_ptr<CStyleMemento> memento(other->createMemento());
    t.change(*other);
    EXPECT_EQ(*reference == *other, t.equal);
    other->setMemento(*memento);
    EXPECT_TRUE(*memento == *other);
    EXPECT_TRUE(*reference == *other);
    EXPECT_EQ(other->getLastHeight(), 0.2) << "the memento keeps that one too";
  }
}

TEST(Style, CopyIsUsedByNobody) {
  const auto source = vek0::test::style();
  source->addDash();
  source->addEntity();
  const std::unique_ptr<CStyle> copy(CStyleFactory().create(*source));
  EXPECT_EQ(copy->getDashes(), 0);
  EXPECT_EQ(copy->getEntities(), 0);
}

TEST_F(Fonts, StandardStyleTakesTheDefaultOfTheMoment) {
  const CStyleTable before;
  auto* font = new Font(u"txt");
  fonts().add(font);
  fonts().setDefault(font);
  const CStyleTable after;
  EXPECT_EQ(before.getStyleStandard()->getFont(), nullptr);
  EXPECT_EQ(after.getStyleStandard()->getFont(), font);
  EXPECT_EQ(after.size(), 1);
  EXPECT_EQ(after.get(u"standard"), after.getStyleStandard());
  const CStyleStandard& standard = *after.getStyleStandard();
  EXPECT_TRUE(standard.isStandard());
  EXPECT_EQ(standard.getFixedHeight(), 0);
  EXPECT_EQ(standard.getWidthScale(), 1);
  EXPECT_EQ(standard.getOblique(), 0);
  EXPECT_EQ(standard.getLastHeight(), 0.2);
  EXPECT_EQ(standard.getFlags(), 0);
}

TEST(StyleTable, ForgetsItsStandardWithTheStyle) {
  CStyleTable table;
  CStyle* other = vek0::test::style(nullptr, u"STANDARD").release();
  table.add(other);
  table.remove(other);
  EXPECT_NE(table.getStyleStandard(), nullptr) << "only of the same name";
  delete other;
  const std::unique_ptr<CStyle> standard(table.getStyleStandard());
  table.remove(standard.get());
  EXPECT_EQ(table.getStyleStandard(), nullptr);
  EXPECT_EQ(table.get(u"STANDARD"), nullptr);
}

}  // namespace
