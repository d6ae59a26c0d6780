#include "dxf/in/savedtext.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

constexpr double kLineStep = 5.0 / 3;                      // line spacing, in text heights
constexpr double kLetter = 19.0 / 21, kDigit = 20.0 / 21;  // widths of a, b and digits, in heights

Loaded loadMText(const std::string& text, const std::string& more = "") {
  return loadAnyEntities("0 MTEXT|8 0|10 0|20 0|40 1|1 " + text + more);
}

std::vector<TEXT_3D> textsOf(const Loaded& got) {
  std::vector<TEXT_3D> texts;
  for (CEnt* ent : got.drawing().getEntTable().getEntityTbl())
    if (CEntText* text = castText(ent)) texts.push_back(text->getText());
  return texts;
}

std::string string(const TEXT_3D& text) { return text.getContext().getString().toUtf8(); }

/// The strings of all runs, separated by '|'.
std::string shown(const Loaded& got) {
  std::string all;
  for (const TEXT_3D& text : textsOf(got)) all += (all.empty() ? "" : "|") + string(text);
  return all;
}

}  // namespace

TEST(ReadMText, CodesBecomeRuns) {
  for (const Row& t : rows()) {
    const Loaded got = loadMText(t.text("text"));
    EXPECT_FALSE(got.error.HasAnError());
    EXPECT_EQ(shown(got), t.text("shown"));
  }
}

TEST(ReadMText, RunsKeepTheirLook) {
  const auto look = [](const std::string& text) {
    const Loaded got = loadMText(text, "|62 3");
    CEntText* ent = castText(got.drawing().getEntTable().getEntityTbl().back());
    return std::make_pair(ent->getText().getContext(), ent->getColor());
  };
  EXPECT_EQ(look("a").second, 3);
  EXPECT_EQ(look("\\C1;a").second, 1);
  EXPECT_EQ(look("{\\C1;a}b").second, 3);
  EXPECT_EQ(look("\\C999;a").second, 3);
  EXPECT_EQ(look("\\H2.5;a").first.getHeight(), 2.5);
  EXPECT_EQ(look("\\H4;\\H0.5x;a").first.getHeight(), 2);
  EXPECT_EQ(look("\\W0.5;a").first.getWidthScale(), 0.5);
  EXPECT_NEAR(look("\\Q15;a").first.getOblique(), kPi / 12, 1e-9);
}

// Only single-line texts follow a vertical style. Saving must not make the pieces vertical.
TEST(ReadMText, IsHorizontalInVerticalStyles) {
  const Loaded got = loadAny(section("TABLES", table("STYLE", pairsOf("0 STYLE|2 V|3 txt|70 4"))) +
                             section("ENTITIES", pairsOf("0 MTEXT|8 0|10 0|20 0|40 1|7 V|1 ab|"
                                                         "0 TEXT|8 0|10 0|20 0|40 1|7 V|1 ab")) +
                             dxf());
  const Loaded again = loadAny(saved(got, kSaveExchange));
  for (const Loaded* loaded : {&got, &again}) {
    const std::vector<TEXT_3D> texts = textsOf(*loaded);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_FALSE(texts[0].isVertical());
    EXPECT_TRUE(texts[1].isVertical());
  }
}

TEST(ReadMText, LinesBreakAtTheWidth) {
  for (const Row& t : rows()) {
    const Loaded got =
        loadMText(t.text("text"), "|41 " + std::to_string(t.real("letters") * kLetter));
    EXPECT_EQ(shown(got), t.text("shown"));
  }
}

// The width and height stated in the file are measured with the file's own font.
TEST(ReadMText, ToldExtentsDecide) {
  for (const Row& t : rows())
    for (const char* text : {"aa bb aa bb", "{\\fArial;aa bb aa bb}"}) {
      SCOPED_TRACE(t.text("name") + ": " + text);
      EXPECT_EQ(shown(loadMText(text, t.text("more"))), t.text("shown"));
    }
}

TEST(ReadMText, LettersAreAsWideAsThoseOfTheirFont) {
  EXPECT_EQ(shown(loadMText("{\\fArial;60 m2}", "|41 3.9")), "60 m2");
  const auto end = [](const char* font) {
    return textsOf(loadMText(std::string("{\\f") + font + ";nnnn}{\\C1;b}")).back().x;
  };
  EXPECT_LT(end("Arial Narrow"), end("Arial"));
  EXPECT_LT(end("ISO"), end("Arial"));
  EXPECT_LT(end("Arial"), end("simplex.shx"));
  EXPECT_LT(end("simplex.shx"), end("Courier New"));
}

TEST(ReadMText, TheAttachmentPlacesTheBox) {
  const double high = 1 + kLineStep;  // "aa" above "b"
  for (int attachment = 1; attachment <= 9; ++attachment) {
    SCOPED_TRACE(attachment);
    const Loaded got = loadMText("aa\\Pb", "|71 " + std::to_string(attachment));
    const auto texts = textsOf(got);
    ASSERT_EQ(texts.size(), 2u);
    const double down = (attachment - 1) / 3 / 2.0;
    for (const TEXT_3D& text : texts) {
      EXPECT_NEAR(text.x, 0, 1e-12);
      EXPECT_EQ(text.getHorizAlign(), (attachment - 1) % 3);
    }
    EXPECT_NEAR(texts[0].y, high * down - 1, 1e-12);
    EXPECT_NEAR(texts[1].y, texts[0].y - kLineStep, 1e-12);
  }
}

TEST(ReadMText, LinesAreSpaced) {
  const Definitions names{{"kLineStep", kLineStep}};
  for (const Row& t : rowsWith(names)) {
    const auto texts = textsOf(loadMText(t.text("text"), t.text("more")));
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_NEAR(texts[0].y, t.real("first"), 1e-12);
    EXPECT_NEAR(texts[1].y, t.real("second"), 1e-12);
  }
}

TEST(ReadMText, WithinALine) {
  const Definitions names{{"kLetter", kLetter}, {"kDigit", kDigit}, {"kLineStep", kLineStep}};
  for (const Row& t : rowsWith(names)) {
    const auto texts = textsOf(loadMText(t.text("text"), t.text("more")));
    ASSERT_FALSE(texts.empty());
    EXPECT_NEAR(texts.back().x, t.real("x"), 1e-12);
    EXPECT_NEAR(texts.back().y, t.real("y"), 1e-12);
  }
}

TEST(ReadMText, TheRowsOfAStackStandWithinTheLine) {
  const auto texts = textsOf(loadMText("\\A1;{\\H4.8;a}\\S1/2;"));
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_NEAR(texts[1].y, -2.2, 1e-12) << "1.4 above the lower row";
  EXPECT_NEAR(texts[2].y, -3.6, 1e-12) << "2.4 high, in the middle of 4.8";
}

// If both the direction and the angle are present, the later one applies.
TEST(ReadMText, TheTextIsTurnedAndMirrored) {
  const double n = kLetter;
  const Definitions names{{"n", n}};
  for (const Row& t : rowsWith(names)) {
    const std::string more = t.text("more");
    const bool isBelow = more.find("230") != std::string::npos;
    const Loaded got = loadMText("a{\\C1;b}", more + (isBelow ? "|210 0|220 0" : ""));
    const auto texts = textsOf(got);
    ASSERT_EQ(texts.size(), 2u);
    const CTextContext& c = texts[1].getContext();
    EXPECT_NEAR(texts[1].x, t.real("x"), 1e-9);
    EXPECT_NEAR(texts[1].y, t.real("y"), 1e-9);
    EXPECT_NEAR(std::remainder(c.getRotate() - t.real("rotate"), 2 * kPi), 0, 1e-9);
    EXPECT_EQ(c.getWidthScale(), t.real("widthScale"));
  }
}

TEST(ReadMText, LongTextsComeInChunks) {
  const std::string blankAtTheEnd = std::string(249, 'a'), whole = std::string(250, 'a');
  const auto load = [](const std::string& chunk) {
    return shown(loadAnyEntities("0 MTEXT|8 0|10 0|20 0|40 1|3 " + chunk + "|1 b"));
  };
  EXPECT_EQ(load(whole), whole + "b");
  EXPECT_EQ(load(blankAtTheEnd + " "), blankAtTheEnd + " b");
  EXPECT_EQ(load("\\U+004"), "K") << "an escape may be parted";
}

TEST(ReadMText, ColumnsStandSideBySide) {
  const std::string columns =
      "|101 Embedded Object|70 1|10 1|20 0|41 0|71 2|72 2|44 5|45 1|73 0|46 ";
  const auto byCode = textsOf(loadMText("a\\Nb", "|41 5" + columns + "0"));
  ASSERT_EQ(byCode.size(), 2u);
  EXPECT_EQ(byCode[1].x, 6);
  EXPECT_EQ(byCode[1].y, -1);
  const auto byHeight = textsOf(loadMText("a\\Pb\\Pc", "|41 5" + columns + "3"));
  ASSERT_EQ(byHeight.size(), 3u);
  EXPECT_EQ(byHeight[1].x, 0);
  EXPECT_EQ(byHeight[2].x, 6);
  EXPECT_EQ(byHeight[2].y, -1);
  const auto withoutColumns = textsOf(loadMText("a\\Nb"));
  ASSERT_EQ(withoutColumns.size(), 2u);
  EXPECT_EQ(withoutColumns[1].x, 0) << "one below the other";
}

TEST(ReadMText, LossesAreTold) {
  for (const Row& t : rows()) EXPECT_EQ(loadMText(t.text("text")).report.count(t.text("code")), 1);
  EXPECT_EQ(loadMText("a").report.entries().size(), 1u);
}

TEST(ReadMText, AreBounded) {
  std::string lines;
  for (int i = 0; i < 60; ++i) lines += "a\\P";
  std::string list = "0 MTEXT|8 0|10 0|20 0|40 1";
  for (int i = 0; i < 1000; ++i) list += "|3 " + lines;
  const Loaded many = loadAnyEntities(list + "|1 b");
  EXPECT_EQ(textsOf(many).size(), 10'000u);
  EXPECT_EQ(many.report.count("text cut"), 1);
  std::string deep = "0 MTEXT|8 0|10 0|20 0|40 1";
  for (int i = 0; i < 100; ++i) deep += "|3 " + std::string(1000, i < 50 ? '{' : '}');
  EXPECT_EQ(shown(loadAnyEntities(deep + "|1 b")), "b");
  std::string endless = "0 MTEXT|8 0|10 0|20 0|40 1";  // arguments without an end
  for (int i = 0; i < 1000; ++i) endless += "|3 \\f\\p" + lines;
  EXPECT_EQ(textsOf(loadAnyEntities(endless + "|1 b")).size(), 10'000u);
}

// Random text must yield a drawing, with no more runs than characters.
TEST(ReadMText, NoiseIsHarmless) {
  constexpr unsigned seed = 5;
  std::mt19937 random(seed);
  const std::string units = "\\\\\\\\{}^;/#ab 12.x-*PSHWACfpLNTUM+|%~";
  for (int round = 0; round < 500; ++round) {
    std::string text;
    for (int i = 0; i < 200; ++i) text += units[random() % units.size()];
    std::replace(text.begin(), text.end(), '|', 'q');
    const Loaded got = loadMText(text, "|41 5");
    EXPECT_FALSE(got.error.HasAnError()) << text;
    EXPECT_LE(textsOf(got).size(), text.size()) << text;
    for (const TEXT_3D& t : textsOf(got)) EXPECT_TRUE(std::isfinite(t.x + t.y)) << text;
  }
}

TEST(ReadMText, StrictReadingSkipsIt) {
  const Loaded got = loadText(entitiesOf("AC1015", "0 MTEXT|8 0|10 0|20 0|40 1|1 a"));
  EXPECT_EQ(got.only(), nullptr);
  EXPECT_EQ(got.report.count("kind skipped"), 1);
}

TEST(ReadTolerance, TheFrameIsWrittenWithBars) {
  const Loaded got = loadAnyEntities(
      "0 TOLERANCE|8 0|3 Standard|10 1|20 2|1 {\\Fgdt;j}%%v{\\Fgdt;n}0.1%%vA%%v%%v^J5");
  ASSERT_EQ(shown(got),
            "\xE2\x8C\x96|\xE2\x8C\x80"
            "0.1|A|5");
}

TEST(ReadMultileader, LinesAndText) {
  const std::string record =
      "0 MULTILEADER|8 0|300 CONTEXT_DATA{|40 1|10 9|20 9|41 2|290 1|304 a\\Pb|11 0|21 0|31 1|"
      "12 5|22 6|32 0|13 1|23 0|33 0|43 0|45 1|170 1|171 1|296 0|302 LEADER{|290 1|291 1|10 4|20 5|"
      "30 0|11 1|21 0|31 0|40 0.5|304 LEADER_LINE{|10 0|20 0|30 0|10 1|20 3|30 0|305 }|303 }|301 }|"
      "170 ";
  // The point after the lines scales a block and is not a vertex.
  const Loaded got = loadAnyEntities(record + "1|41 0.5|10 1|20 1|30 1");
  ASSERT_FALSE(got.error.HasAnError());
  EXPECT_EQ(shown(got), "a|b");
  EXPECT_EQ(textsOf(got)[0].x, 5);
  EXPECT_EQ(textsOf(got)[0].y, 4);
  CEntPolyline* line = castPolyline(got.drawing().getEntTable().getEntityTbl().front());
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->getBdry().max.x, 4.5);
  EXPECT_EQ(line->getBdry().max.y, 5);
  EXPECT_EQ(got.report.count("arrow dropped"), 1);
  EXPECT_EQ(loadAnyEntities(record + "0").drawing().getEntTable().getEntityTbl().size(), 2u);
  const Loaded cut =
      loadAnyEntities("0 MULTILEADER|8 0|10 1|302 LEADER{|304 LEADER_LINE{|305 }|303 }|301 }");
  EXPECT_EQ(cut.report.count("kind skipped"), 1);
}
