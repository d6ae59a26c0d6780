#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "support/dxftext.h"
#include "vek0core/entities/entcast.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/tables/text.h"

using namespace vek0::test;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kLine = 5.0 / 3;                          // from line to line, in heights
constexpr double kLetter = 19.0 / 21, kDigit = 20.0 / 21;  // wide, in heights: a, b; any digit

Loaded loadAny(const std::string& list) {
  return loadText(entitiesOf("AC1015", list), CFileDXFIPolicy::forAnyFile());
}

Loaded loadMText(const std::string& text, const std::string& more = "") {
  return loadAny("0 MTEXT|8 0|10 0|20 0|40 1|1 " + text + more);
}

std::vector<TEXT_3D> textsOf(const Loaded& got) {
  std::vector<TEXT_3D> texts;
  for (CEnt* ent : got.drawing().getEntTable().getEntityTbl())
    if (CEntText* text = castText(ent)) texts.push_back(text->getText());
  return texts;
}

std::string string(const TEXT_3D& text) { return text.getContext().getString().toUtf8(); }

/// What the runs show, parted by '|'.
std::string shown(const Loaded& got) {
  std::string all;
  for (const TEXT_3D& text : textsOf(got)) all += (all.empty() ? "" : "|") + string(text);
  return all;
}

}  // namespace

TEST(ReadMText, CodesBecomeRuns) {
  const struct {
    const char* name;
    const char* text;
    const char* shown;
  } cases[] = {
      {"plain", "two words", "two words"},
      {"lines", "a\\Pb\\P\\Pc", "a|b|c"},
      {"line break by a caret", "a^Jb", "a|b"},
      {"escaped", "\\{a\\\\b\\}", "{a\\b}"},
      {"hard blank", "a\\~b", "a b"},
      {"tab", "a^Ib", "a|b"},
      {"caret", "a^ b", "a^b"},
      {"unit escape", "3\\U+00B0", "3\xC2\xB0"},
      {"escape that is escaped", "\\\\U+00B0", "\\U+00B0"},
      {"brace by its number", "\\U+007Ba", "{a"},
      {"pair of units", "\\U+D83D\\U+DE00", "\xF0\x9F\x98\x80"},
      {"kept for metrics", "%%c20%%d", "%%c20%%d"},
      {"group of no effect", "{a}b", "ab"},
      {"lone braces", "a}b{", "ab"},
      {"height within a group", "a{\\H2;b}c", "a|b|c"},
      {"height and back", "a\\H2;b\\H1;c {\\H2;}d", "a|b|c d"},
      {"same height again", "a\\H1;b", "ab"},
      {"underlined", "\\La\\lb", "%%ua|b"},
      {"over and struck", "\\O\\Ka", "%%o%%ka"},
      {"font", "{\\fArial;a}b", "ab"},
      {"symbols", "{\\Fgdt;j}j", "\xE2\x8C\x96j"},
      {"fraction", "\\S1/20;", "1|%%o20"},
      {"fraction, longer above", "\\S10/2;", "%%u10|2"},
      {"tolerance", "\\S+0.1^ -0.2;", "+0.1|-0.2"},
      {"bare caret", "\\S1^2;", "1|2"},
      {"slanted", "a\\S1#2;b", "a1/2b"},
      {"raised", "x\\S2^ ;", "x|2"},
      {"stack of escaped signs", "\\Sa\\/b/c\\;;", "%%ua/b|c;"},
      {"stack without an end", "\\S1/2", "%%u1|2"},
      {"paragraph", "\\pi1,l2,qc,t4,8;a", "a"},
      {"unknown code", "a\\zb", "a\\zb"},
      {"backslash at the end", "a\\", "a\\"},
      {"code without its end", "\\fArial a", "Arial a"},
      {"height that makes none", "\\H0;a\\H-1x;b\\H1e9999;c", "abc"},
      {"blanks around", " a  b ", "a  b"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const Loaded got = loadMText(t.text);
    EXPECT_FALSE(got.error.HasAnError());
    EXPECT_EQ(shown(got), t.shown);
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

TEST(ReadMText, LinesBreakAtTheWidth) {
  const struct {
    const char* name;
    const char* text;
    double letters;  // that fit a line
    const char* shown;
  } cases[] = {
      {"fits", "aa bb", 5, "aa bb"},
      {"may fit", "aa bb", 3.5, "aa bb"},
      {"does not", "aa bb", 3.4, "aa|bb"},
      {"a little too long", "aa bb aa bb", 4.7, "aa bb|aa bb"},
      {"too long", "aa bb aa bb", 4.6, "aa|bb|aa|bb"},
      {"no width", "aa bb", 0, "aa bb"},
      {"long words stay whole", "a bbbbbbbb c", 3, "a|bbbbbbbb|c"},
      {"hard blank", "aa\\~bb", 3, "aa bb"},
      {"word of two looks", "aa b{\\C1;b}b", 4.1, "aa|b|b|b"},
      {"word with a stack", "aa b\\S1/2;", 3, "aa|b|%%u1|2"},
      {"blanks at the break go", "aa   bb", 3, "aa|bb"},
      {"blanks at the start stay", "   bbbb", 3, "bbbb"},
      {"ideographs", "\\U+4E00\\U+4E01\\U+4E02", 3, "\xE4\xB8\x80\xE4\xB8\x81|\xE4\xB8\x82"},
      {"a code is one letter", "a%%d bb", 5, "a%%d bb"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const Loaded got = loadMText(t.text, "|41 " + std::to_string(t.letters * kLetter));
    EXPECT_EQ(shown(got), t.shown);
  }
}

// The width of all lines and their height are those of the file's own font.
TEST(ReadMText, ToldExtentsDecide) {
  const struct {
    const char* name;
    const char* more;
    const char* shown;
  } cases[] = {
      {"one line", "|41 3|42 3|43 1.2", "aa bb aa bb"},
      {"two lines", "|41 9.7|42 9|43 2.7", "aa bb aa|bb"},
      {"of newer files", "|41 3|101 E|42 3|43 1", "aa bb aa bb"},
      {"that cannot be so", "|41 3|42 3|43 99", "aa|bb|aa|bb"},
  };
  for (const auto& t : cases)
    for (const char* text : {"aa bb aa bb", "{\\fArial;aa bb aa bb}"}) {
      SCOPED_TRACE(std::string(t.name) + ": " + text);
      EXPECT_EQ(shown(loadMText(text, t.more)), t.shown);
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
  const double high = 1 + kLine;  // "aa" above "b"
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
    EXPECT_NEAR(texts[1].y, texts[0].y - kLine, 1e-12);
  }
}

TEST(ReadMText, LinesAreSpaced) {
  const struct {
    const char* name;
    const char* text;
    const char* more;
    double first, second;
  } cases[] = {
      {"usual", "a\\Pb", "", -1, -1 - kLine},
      {"factor", "a\\Pb", "|44 1.5", -1, -1 - 2.5},
      {"factor without sense", "a\\Pb", "|44 0", -1, -1 - kLine},
      {"at least", "a\\P{\\H2;b}", "|73 1", -1, -1 - 2 * kLine},
      {"exactly", "a\\P{\\H2;b}", "|73 2", -1, -1 - kLine},
      {"empty line", "a\\P\\Pb", "", -1, -1 - 2 * kLine},
      {"first line is high", "{\\H3;a}\\Pb", "", -3, -3 - kLine},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const auto texts = textsOf(loadMText(t.text, t.more));
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_NEAR(texts[0].y, t.first, 1e-12);
    EXPECT_NEAR(texts[1].y, t.second, 1e-12);
  }
}

TEST(ReadMText, WithinALine) {
  const struct {
    const char* name;
    const char* text;
    const char* more;
    double x, y;  // of the last run
  } cases[] = {
      {"tab", "a^Ib", "", 4, -1},
      {"own tab", "\\pt2,6;a^Ib", "", 2, -1},
      {"behind the own tabs", "\\pt1;aa^Ib", "", 4, -1},
      {"low run below", "\\A0;{\\H4;a}b", "", 4 * kLetter, -4},
      {"in the middle", "\\A1;{\\H4;a}b", "", 4 * kLetter, -4 + 1.5},
      {"above", "\\A2;{\\H4;a}b", "", 4 * kLetter, -4 + 3},
      {"lower row of a stack", "\\S111/2;", "", kDigit, -2.4},
      {"the same without a line", "\\S111^ 2;", "", 0, -2.4},
      {"indent of the first line", "\\pi1,l2;a", "", 3, -1},
      {"no indent of the second", "\\pi1,l2;a b", "|41 1", 2, -1 - kLine},
      {"indent taken back", "\\pi1,l2;a\\P\\pi*,l*;b", "", 0, -1 - kLine},
      {"centred paragraph", "\\pqc;a", "|41 9", 4.5, -1},
      {"right paragraph", "\\pqr,r1;a", "|41 9", 8, -1},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const auto texts = textsOf(loadMText(t.text, t.more));
    ASSERT_FALSE(texts.empty());
    EXPECT_NEAR(texts.back().x, t.x, 1e-12);
    EXPECT_NEAR(texts.back().y, t.y, 1e-12);
  }
}

TEST(ReadMText, TheRowsOfAStackStandWithinTheLine) {
  const auto texts = textsOf(loadMText("\\A1;{\\H4.8;a}\\S1/2;"));
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_NEAR(texts[1].y, -2.2, 1e-12) << "1.4 above the lower row";
  EXPECT_NEAR(texts[2].y, -3.6, 1e-12) << "2.4 high, in the middle of 4.8";
}

// Direction and angle may both stand there: the later one counts.
TEST(ReadMText, TheTextIsTurnedAndMirrored) {
  const double n = kLetter;
  const struct {
    const char* name;
    const char* more;
    double rotate, widthScale;
    double x, y;  // of the second run, which is one letter on, one height below the point
  } cases[] = {
      {"angle", "|50 90", kPi / 2, 1, 1, n},
      {"direction", "|11 0|21 2|31 0", kPi / 2, 1, 1, n},
      {"direction later", "|50 45|11 0|21 1|31 0", kPi / 2, 1, 1, n},
      {"angle later", "|11 -1|21 0|31 0|50 90", kPi / 2, 1, 1, n},
      {"direction of no length", "|50 90|11 0|21 0|31 0", kPi / 2, 1, 1, n},
      {"from below", "|230 -1", 0, -1, -n, -1},
      {"from below, turned", "|230 -1|50 90", -kPi / 2, -1, -1, n},
      {"below with direction", "|11 -1|21 0|31 0|230 -1", 0, -1, -n, -1},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const std::string more = t.more;
    const bool isBelow = more.find("230") != std::string::npos;
    const Loaded got = loadMText("a{\\C1;b}", more + (isBelow ? "|210 0|220 0" : ""));
    const auto texts = textsOf(got);
    ASSERT_EQ(texts.size(), 2u);
    const CTextContext& c = texts[1].getContext();
    EXPECT_NEAR(texts[1].x, t.x, 1e-9);
    EXPECT_NEAR(texts[1].y, t.y, 1e-9);
    EXPECT_NEAR(std::remainder(c.getRotate() - t.rotate, 2 * kPi), 0, 1e-9);
    EXPECT_EQ(c.getWidthScale(), t.widthScale);
  }
}

TEST(ReadMText, LongTextsComeInChunks) {
  const std::string blankAtTheEnd = std::string(249, 'a'), whole = std::string(250, 'a');
  const auto load = [](const std::string& chunk) {
    return shown(loadAny("0 MTEXT|8 0|10 0|20 0|40 1|3 " + chunk + "|1 b"));
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
  const struct {
    const char* text;
    const char* code;
  } cases[] = {
      {"a", "kind replaced"},
      {"\\fArial;a", "text code dropped"},
      {"\\c255;a", "color approximated"},
      {"\\psm2;a", "text code dropped"},
      {"\\T2;a", "text code dropped"},
      {" ", "text empty"},
      {"a|210 0|220 1|230 1", "extrusion ignored"},
      {"a|40 0", "number replaced"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.text);
    EXPECT_EQ(loadMText(t.text).report.count(t.code), 1);
  }
  EXPECT_EQ(loadMText("a").report.entries().size(), 1u);
}

TEST(ReadMText, AreBounded) {
  std::string lines;
  for (int i = 0; i < 60; ++i) lines += "a\\P";
  std::string list = "0 MTEXT|8 0|10 0|20 0|40 1";
  for (int i = 0; i < 1000; ++i) list += "|3 " + lines;
  const Loaded many = loadAny(list + "|1 b");
  EXPECT_EQ(textsOf(many).size(), 10'000u);
  EXPECT_EQ(many.report.count("text cut"), 1);
  std::string deep = "0 MTEXT|8 0|10 0|20 0|40 1";
  for (int i = 0; i < 100; ++i) deep += "|3 " + std::string(1000, i < 50 ? '{' : '}');
  EXPECT_EQ(shown(loadAny(deep + "|1 b")), "b");
  std::string endless = "0 MTEXT|8 0|10 0|20 0|40 1";  // arguments that nothing ends
  for (int i = 0; i < 1000; ++i) endless += "|3 \\f\\p" + lines;
  EXPECT_EQ(textsOf(loadAny(endless + "|1 b")).size(), 10'000u);
}

// Any text whatever gives a drawing, and never more runs than letters.
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
  const Loaded got =
      loadAny("0 TOLERANCE|8 0|3 Standard|10 1|20 2|1 {\\Fgdt;j}%%v{\\Fgdt;n}0.1%%vA%%v%%v^J5");
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
  // The point behind the lines scales a block and is no vertex.
  const Loaded got = loadAny(record + "1|41 0.5|10 1|20 1|30 1");
  ASSERT_FALSE(got.error.HasAnError());
  EXPECT_EQ(shown(got), "a|b");
  EXPECT_EQ(textsOf(got)[0].x, 5);
  EXPECT_EQ(textsOf(got)[0].y, 4);
  CEntPolyline* line = castPolyline(got.drawing().getEntTable().getEntityTbl().front());
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->getBdry().max.x, 4.5);
  EXPECT_EQ(line->getBdry().max.y, 5);
  EXPECT_EQ(got.report.count("arrow dropped"), 1);
  EXPECT_EQ(loadAny(record + "0").drawing().getEntTable().getEntityTbl().size(), 2u);
  const Loaded cut =
      loadAny("0 MULTILEADER|8 0|10 1|302 LEADER{|304 LEADER_LINE{|305 }|303 }|301 }");
  EXPECT_EQ(cut.report.count("kind skipped"), 1);
}
