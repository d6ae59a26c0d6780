#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "support/dxftext.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entcast.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"

using namespace vek0::test;

namespace {

Loaded loadAny(const std::string& body, const std::string& header = "") {
  const std::string head = section("HEADER", pairs("9 $ACADVER", "1 AC1015") + pairsOf(header));
  return loadText(head + body + dxf(), CFileDXFIPolicy::forAnyFile());
}

Loaded loadDimension(const std::string& list, const std::string& header = "") {
  return loadAny(section("ENTITIES", pairsOf("0 DIMENSION|8 0|" + list)), header);
}

std::string blockOf(const std::string& name) {
  return section("BLOCKS", pairsOf("0 BLOCK|8 0|2 " + name +
                                   "|70 1|10 0|20 0|0 LINE|8 0|10 0|20 0|11 4|21 2|0 ENDBLK|5 9"));
}

const TEXT_3D* textOf(const Loaded& got) {
  CEntText* text = castText(got.drawing().getEntTable().getEntityTbl().back());
  return text ? &text->getText() : nullptr;
}

RECT_2D box(const Loaded& got) {
  RECT_2D all;
  all.initRegion();
  for (CEnt* ent : got.drawing().getEntTable().getEntityTbl())
    if (!castText(ent)) {
      all.updateRegion(PNT_2D(ent->getBdry().min.x, ent->getBdry().min.y));
      all.updateRegion(PNT_2D(ent->getBdry().max.x, ent->getBdry().max.y));
    }
  return all;
}

}  // namespace

TEST(ReadDimensions, ShowTheirPicture) {
  const struct {
    const char* name;
    const char* record;
    double x, y;
  } cases[] = {
      {"usual", "0 DIMENSION|8 0|2 *D1|10 7|20 7|70 0", 0, 0},
      {"other case", "0 DIMENSION|8 0|2 *d1|10 7|20 7|70 0", 0, 0},
      {"moved copy", "0 DIMENSION|8 0|2 *D1|10 7|20 7|12 5|22 6|70 0", 5, 6},
      {"from below", "0 DIMENSION|8 0|2 *D1|12 5|22 6|210 0|220 0|230 -1", -5, 6},
      {"of an arc", "0 ARC_DIMENSION|8 0|2 *D1|10 7|20 7|70 5", 0, 0},
      {"of a big radius", "0 LARGE_RADIAL_DIMENSION|8 0|2 *D1|10 7|20 7|70 9", 0, 0},
      {"table", "0 ACAD_TABLE|8 0|2 *D1|10 5|20 6|11 1|21 0|2 cell|10 1", 5, 6},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const Loaded got = loadAny(blockOf("*D1") + section("ENTITIES", pairsOf(t.record)));
    ASSERT_FALSE(got.error.HasAnError());
    ASSERT_NE(got.only(), nullptr);
    ASSERT_NE(got.only()->getEntInsert(), nullptr);
    EXPECT_EQ(got.only()->getEntInsert()->getBlock()->size(), 1u);
    EXPECT_EQ(got.only()->getBdry().min.x, t.x);
    EXPECT_EQ(got.only()->getBdry().min.y, t.y);
    EXPECT_EQ(got.only()->getBdry().max.x, t.x + 4);
    EXPECT_EQ(got.report.count("kind replaced"), 1);
    EXPECT_EQ(got.report.count("block undefined"), 0);
  }
}

// A block may hold the dimension of a picture that stands further on.
TEST(ReadDimensions, PicturesMayFollow) {
  const std::string outer = section(
      "BLOCKS", pairsOf("0 BLOCK|8 0|2 A|70 0|10 0|20 0|0 DIMENSION|8 0|2 *D1|70 0|0 ENDBLK|5 8"));
  const Loaded got = loadAny(outer + blockOf("*D1"));
  ASSERT_FALSE(got.error.HasAnError());
  CBlock* a = got.drawing().getBlockTable().get(u"A");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->size(), 1u);
  EXPECT_EQ((*a)[0]->getEntInsert()->getBlock()->size(), 1u);
}

TEST(ReadDimensions, WithoutAPictureAreDrawn) {
  const struct {
    const char* name;
    const char* record;
    long lines, heads, arcs;
    double left, bottom, right, top;  // but for the ends of extension lines
    const char* text;
  } cases[] = {
      {"horizontal", "70 0|10 9|20 5|11 4|21 6|13 0|23 0|14 9|24 1", 3, 2, 0, 0, 0, 9, 5, "9"},
      {"upright", "70 160|10 5|20 9|13 0|23 0|14 1|24 9|50 90", 4, 2, 0, 0, 0, 5, 9, "9"},
      {"aligned", "70 1|10 3|20 4|13 0|23 0|14 3|24 4", 2, 2, 0, 0, 0, 3, 4, "5"},
      {"too short for heads", "70 0|10 0.4|20 5|11 4|21 6|13 0|23 0|14 0.4|24 1", 5, 2, 0, -0.4, 0,
       0.8, 5, "0.4"},
      {"told", "70 0|10 9|20 5|13 0|23 0|14 9|24 1|42 1.25", 4, 2, 0, 0, 0, 9, 5, "1.25"},
      {"rounded", "70 0|10 9|20 5|13 0|23 0|14 9|24 1|42 1.00004", 4, 2, 0, 0, 0, 9, 5, "1"},
      {"told -1", "70 0|10 9|20 5|13 0|23 0|14 9|24 1|42 -1", 4, 2, 0, 0, 0, 9, 5, "9"},
      {"own text", "70 0|10 9|20 5|13 0|23 0|14 9|24 1|1 ca. <> m", 4, 2, 0, 0, 0, 9, 5, "ca. 9 m"},
      {"angular", "70 2|10 0|20 3|13 1|23 0|14 4|24 0|15 0|25 1|16 2|26 2|11 9|21 9", 0, 2, 1, 0, 0,
       2.83, 2.83, "90%%d"},
      {"the other angle", "70 2|10 0|20 3|13 1|23 0|14 4|24 0|15 0|25 1|16 -2|26 2|11 9|21 9", 1, 2,
       1, -2.83, 0, 0, 2.83, "90%%d"},
      {"angular, told", "70 5|10 3|20 3|13 2|23 0|14 0|24 2|15 0|25 0|42 0.5235987756", 2, 2, 2, 0,
       0, 4.24, 4.24, "30%%d"},
      {"diameter", "70 3|10 0|20 0|15 6|25 0", 2, 2, 0, 0, 0, 6, 0, "%%c6"},
      {"radius", "70 4|10 1|20 0|15 6|25 0|11 3|21 1", 1, 1, 0, 1, 0, 6, 0, "R5"},
      {"radius outside", "70 4|10 1|20 0|15 6|25 0|11 9|21 0", 1, 1, 0, 6, 0, 8.6, 0, "R5"},
      {"ordinate of x", "70 70|10 1|20 1|13 4|23 3|14 4|24 8", 1, 0, 0, 4, 3, 4, 8, "3"},
      {"ordinate of y", "70 6|10 1|20 1|13 4|23 3|14 8|24 3", 1, 0, 0, 4, 3, 8, 3, "2"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const Loaded got = loadDimension(t.record);
    ASSERT_FALSE(got.error.HasAnError());
    EXPECT_EQ(got.count(CEntLine::kType), t.lines);
    EXPECT_EQ(got.count(CEnt3DFace::kType), t.heads);
    EXPECT_EQ(got.count(CEntPolyline::kType), t.arcs);
    constexpr double ends = 0.2;
    EXPECT_NEAR(box(got).min.x, t.left, ends);
    EXPECT_NEAR(box(got).min.y, t.bottom, ends);
    EXPECT_NEAR(box(got).max.x, t.right, ends);
    EXPECT_NEAR(box(got).max.y, t.top, ends);
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_EQ(textOf(got)->getContext().getString().toUtf8(), t.text);
    EXPECT_EQ(got.report.count("dimension drawn"), 1);
  }
}

// Styles, what a dimension changes of its own, and in old files the header.
TEST(ReadDimensions, NumbersAreWrittenAsTheStyleSays) {
  const struct {
    const char* style;
    const char* changes;
    const char* text;
  } cases[] = {
      {"271 2", "", "9.50"},
      {"271 2|78 8", "", "9.5"},
      {"271 0", "", "10"},
      {"271 1|278 44|3 <> mm", "", "9,5 mm"},
      {"271 1|3 ~", "", "9.5~"},
      {"271 1|144 25.4", "", "241.3"},
      {"271 2|45 0.2", "", "9.60"},
      {"271 3|144 0.01|78 12", "", ".095"},
      {"271 3", "1070 271|1070 1", "9.5"},
      {"271 3", "1070 3|1000 a<>", "a9.500"},
      {"277 1|271 2", "", "9.50E+00"},
      {"277 3|271 2|144 2", "", "1'-7.00\""},
      {"277 4|271 4", "", "9 1/2\""},
      {"277 4|271 2|144 24", "", "19'"},
      {"277 4|271 2|144 24|78 1", "", "19'-0\""},
      {"270 7|271 1", "", "9 1/2"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.style);
    const std::string tables =
        section("TABLES", table("DIMSTYLE", pairsOf(std::string("0 DIMSTYLE|2 s|") + t.style)));
    const std::string changes =
        std::string("|1001 ACAD|1000 DSTYLE|1002 {|") + t.changes + "|1002 }";
    const Loaded got = loadAny(
        tables + section("ENTITIES", pairsOf("0 DIMENSION|8 0|3 S|70 0|10 9.5|20 5|11 4|21 6|"
                                             "13 0|23 0|14 9.5|24 1" +
                                             (*t.changes ? changes : std::string()))));
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_EQ(textOf(got)->getContext().getString().toUtf8(), t.text);
  }
}

// Of the current style or none; in old files the drawing's units.
TEST(ReadDimensions, TheHeaderSaysWhatTheStyleDoesNot) {
  const std::string length = "70 0|10 9|20 5|13 0|23 0|14 9|24 1";
  const std::string angle = "70 5|10 3|20 3|13 2|23 0|14 0|24 2|15 0|25 0|42 0.5323254218582705";
  const struct {
    const char* header;
    std::string record;
    const char* text;
  } cases[] = {
      {"9 $LUPREC|70 3", length, "9.000"},
      {"9 $LUPREC|70 3|9 $DIMDEC|70 1", length, "9.0"},
      {"9 $DIMDEC|70 1|9 $DIMPOST|1 m", length, "9.0m"},
      {"9 $DIMDEC|70 1|9 $DIMSTYLE|2 other", length + "|3 S", "9.00"},
      {"9 $DIMDEC|70 1|9 $DIMPOST|1 m|9 $DIMSTYLE|2 s", length + "|3 S", "9.00m"},
      {"9 $DIMDEC|70 1", angle, "30.5%%d"},
      {"9 $DIMAUNIT|70 1|9 $DIMADEC|70 2", angle, "30%%d30'"},
      {"9 $DIMAUNIT|70 1|9 $DIMADEC|70 5", angle, "30%%d30'0.0\""},
      {"9 $DIMAUNIT|70 3|9 $DIMADEC|70 3", angle, "0.532r"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.header);
    const Loaded got =
        loadAny(section("HEADER", pairsOf(t.header)) +
                section("TABLES", table("DIMSTYLE", pairsOf("0 DIMSTYLE|2 S|271 2"))) +
                section("ENTITIES", pairsOf("0 DIMENSION|8 0|" + t.record)));
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_EQ(textOf(got)->getContext().getString().toUtf8(), t.text);
  }
}

TEST(ReadDimensions, HeadsAreThoseOfTheStyle) {
  const std::string record = "3 S|70 0|10 9|20 5|11 4|21 6|13 0|23 0|14 9|24 1";
  const auto load = [&](const std::string& style) {
    return loadAny(
        section("TABLES", table("DIMSTYLE", pairsOf("0 DIMSTYLE|2 S|41 0.5|40 2|" + style)) +
                              table("BLOCK_RECORD", pairsOf("0 BLOCK_RECORD|5 1A|2 Head"))) +
        blockOf("Head") + section("ENTITIES", pairsOf("0 DIMENSION|8 0|" + record)));
  };
  const Loaded filled = load("142 0");
  ASSERT_EQ(filled.count(CEnt3DFace::kType), 2);
  for (const CEnt* ent : filled.data->getEntTable().getEntityTbl()) {
    if (ent->getType() != CEnt3DFace::kType) continue;
    EXPECT_NEAR(ent->getBdry().max.x - ent->getBdry().min.x, 1, 1e-9);
  }
  EXPECT_EQ(load("142 1").count(CEntPolyline::kType), 2);
  EXPECT_EQ(load("5 _Open30").count(CEntPolyline::kType), 2);
  EXPECT_EQ(load("5 Head").count(CEntInsert::kType), 2);
  EXPECT_EQ(load("342 1A").count(CEntInsert::kType), 2);
  EXPECT_EQ(load("5 _None").count(CEnt3DFace::kType), 0);
  const Loaded mixed = load("173 1|6 Head|7 _Oblique");
  EXPECT_EQ(mixed.count(CEntInsert::kType), 1);
  EXPECT_EQ(mixed.count(CEntPolyline::kType), 1);
}

TEST(ReadDimensions, TextsHaveTheHeightOfTheHeader) {
  const struct {
    const char* header;
    double height;
  } cases[] = {
      {"9 $DIMTXT|40 2.5", 2.5},
      {"9 $DIMTXT|40 2.5|9 $DIMSCALE|40 10", 25},
      {"9 $DIMSCALE|40 0|9 $DIMTXT|40 3", 3},
      {"9 $DIMTXT|40 -3", 0.18},
      {"9 $OTHER|40 3", 0.18},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.header);
    const Loaded got = loadDimension("70 0|10 9|20 5|11 4|21 6|13 0|23 0|14 9|24 1", t.header);
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_DOUBLE_EQ(textOf(got)->getContext().getHeight(), t.height);
  }
}

// A text is read from below or from the right whichever way its line runs.
TEST(ReadDimensions, TextsAlongALineAreNotUpsideDown) {
  for (int degrees = -180; degrees <= 360; degrees += 15) {
    SCOPED_TRACE(degrees);
    const Loaded got =
        loadDimension("70 0|10 9|20 5|11 4|21 6|13 0|23 0|14 9|24 1|50 " + std::to_string(degrees));
    ASSERT_NE(textOf(got), nullptr);
    const double rotate = textOf(got)->getContext().getRotate();
    EXPECT_GT(std::cos(rotate), -1e-6);
    EXPECT_GT(std::sin(rotate), -1 + 1e-6);
  }
}

TEST(ReadDimensions, WithoutSenseAreNoHarm) {
  EXPECT_EQ(loadDimension("70 0").drawing().getEntTable().getEntityTbl().size(), 1u) << "a text";
  const Loaded table = loadAny(section("ENTITIES", pairsOf("0 ACAD_TABLE|8 0|10 0|20 0")));
  EXPECT_EQ(table.report.count("kind skipped"), 1);
}

// A picture may come after the dimension, but not after all blocks.
TEST(ReadDimensions, AreDrawnWhereTheirPictureIsMissing) {
  const std::string dimension = "0 DIMENSION|8 0|2 *D7|70 0|10 9|20 5|13 0|23 0|14 9|24 1";
  const std::string entities = section("ENTITIES", pairsOf(dimension));
  const Loaded never = loadAny(blockOf("*D1") + entities),
               late = loadAny(entities + blockOf("*D7"));
  EXPECT_EQ(never.report.count("dimension drawn"), 1);
  EXPECT_NE(textOf(never), nullptr);
  ASSERT_NE(late.only(), nullptr);
  ASSERT_NE(late.only()->getEntInsert(), nullptr);
  EXPECT_EQ(late.only()->getEntInsert()->getBlock()->size(), 1u);
}

TEST(ReadDimensions, StrictReadingSkipsThem) {
  const Loaded got = loadText(entitiesOf("AC1015", "0 DIMENSION|8 0|10 0|20 0|70 0"));
  EXPECT_EQ(got.only(), nullptr);
  EXPECT_EQ(got.report.count("kind skipped"), 1);
}
