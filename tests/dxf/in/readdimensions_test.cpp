#include "support/test.h"

namespace {

Loaded loadBody(const std::string& body, const std::string& header = "") {
  const std::string head = section("HEADER", pairs("9 $ACADVER", "1 AC1015") + pairsOf(header));
  return loadText(head + body + dxf(), CFileDXFIPolicy::forAnyFile());
}

Loaded loadDimension(const std::string& list, const std::string& header = "") {
  return loadBody(section("ENTITIES", pairsOf("0 DIMENSION|8 0|" + list)), header);
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
  for (const Row& t : rows()) {
    const Loaded got = loadBody(blockOf("*D1") + section("ENTITIES", pairsOf(t.text("record"))));
    ASSERT_FALSE(got.error.HasAnError());
    ASSERT_NE(got.only(), nullptr);
    ASSERT_NE(got.only()->getEntInsert(), nullptr);
    EXPECT_EQ(got.only()->getEntInsert()->getBlock()->size(), 1u);
    EXPECT_EQ(got.only()->getBdry().min.x, t.real("x"));
    EXPECT_EQ(got.only()->getBdry().min.y, t.real("y"));
    EXPECT_EQ(got.only()->getBdry().max.x, t.real("x") + 4);
    EXPECT_EQ(got.report.count("kind replaced"), 1);
    EXPECT_EQ(got.report.count("block undefined"), 0);
  }
}

// A block may contain a dimension whose picture is defined later in the file.
TEST(ReadDimensions, PicturesMayFollow) {
  const std::string outer = section(
      "BLOCKS", pairsOf("0 BLOCK|8 0|2 A|70 0|10 0|20 0|0 DIMENSION|8 0|2 *D1|70 0|0 ENDBLK|5 8"));
  const Loaded got = loadBody(outer + blockOf("*D1"));
  ASSERT_FALSE(got.error.HasAnError());
  CBlock* a = got.drawing().getBlockTable().get(u"A");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->size(), 1u);
  EXPECT_EQ((*a)[0]->getEntInsert()->getBlock()->size(), 1u);
}

TEST(ReadDimensions, WithoutAPictureAreDrawn) {
  for (const Row& t : rows()) {
    const Loaded got = loadDimension(t.text("record"));
    ASSERT_FALSE(got.error.HasAnError());
    EXPECT_EQ(got.count(CEntLine::kType), t.whole<long>("lines"));
    EXPECT_EQ(got.count(CEnt3DFace::kType), t.whole<long>("heads"));
    EXPECT_EQ(got.count(CEntPolyline::kType), t.whole<long>("arcs"));
    constexpr double ends = 0.2;
    EXPECT_NEAR(box(got).min.x, t.real("left"), ends);
    EXPECT_NEAR(box(got).min.y, t.real("bottom"), ends);
    EXPECT_NEAR(box(got).max.x, t.real("right"), ends);
    EXPECT_NEAR(box(got).max.y, t.real("top"), ends);
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_EQ(textOf(got)->getContext().getString().toUtf8(), t.text("text"));
    EXPECT_EQ(got.report.count("dimension drawn"), 1);
  }
}

// Numbers follow the style, the dimension's overrides, and in old files the header.
TEST(ReadDimensions, NumbersAreWrittenAsTheStyleSays) {
  for (const Row& t : rows()) {
    const std::string tables =
        section("TABLES", table("DIMSTYLE", pairsOf("0 DIMSTYLE|2 s|" + t.text("style"))));
    const std::string changes = "|1001 ACAD|1000 DSTYLE|1002 {|" + t.text("changes") + "|1002 }";
    const Loaded got = loadBody(
        tables + section("ENTITIES", pairsOf("0 DIMENSION|8 0|3 S|70 0|10 9.5|20 5|11 4|21 6|"
                                             "13 0|23 0|14 9.5|24 1" +
                                             (t.text("changes").empty() ? "" : changes))));
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_EQ(textOf(got)->getContext().getString().toUtf8(), t.text("text"));
  }
}

// Header variables apply to dimensions of the current style or without one; in old files, the
// drawing's units do, too.
TEST(ReadDimensions, TheHeaderSaysWhatTheStyleDoesNot) {
  const std::string length = "70 0|10 9|20 5|13 0|23 0|14 9|24 1";
  const std::string angle = "70 5|10 3|20 3|13 2|23 0|14 0|24 2|15 0|25 0|42 0.5323254218582705";
  const Definitions names{{"length", length}, {"angle", angle}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got =
        loadBody(section("HEADER", pairsOf(t.text("header"))) +
                 section("TABLES", table("DIMSTYLE", pairsOf("0 DIMSTYLE|2 S|271 2"))) +
                 section("ENTITIES", pairsOf("0 DIMENSION|8 0|" + t.text("record"))));
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_EQ(textOf(got)->getContext().getString().toUtf8(), t.text("text"));
  }
}

TEST(ReadDimensions, HeadsAreThoseOfTheStyle) {
  const std::string record = "3 S|70 0|10 9|20 5|11 4|21 6|13 0|23 0|14 9|24 1";
  const auto load = [&](const std::string& style) {
    return loadBody(
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
  for (const Row& t : rows()) {
    const Loaded got =
        loadDimension("70 0|10 9|20 5|11 4|21 6|13 0|23 0|14 9|24 1", t.text("header"));
    ASSERT_NE(textOf(got), nullptr);
    EXPECT_DOUBLE_EQ(textOf(got)->getContext().getHeight(), t.real("height"));
  }
}

// Text along a line reads from below or from the right, whatever the line's direction.
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
  const Loaded table = loadBody(section("ENTITIES", pairsOf("0 ACAD_TABLE|8 0|10 0|20 0")));
  EXPECT_EQ(table.report.count("kind skipped"), 1);
}

// A picture may be defined after its dimension; without a picture, the dimension is drawn.
TEST(ReadDimensions, AreDrawnWhereTheirPictureIsMissing) {
  const std::string dimension = "0 DIMENSION|8 0|2 *D7|70 0|10 9|20 5|13 0|23 0|14 9|24 1";
  const std::string entities = section("ENTITIES", pairsOf(dimension));
  const Loaded never = loadBody(blockOf("*D1") + entities),
               late = loadBody(entities + blockOf("*D7"));
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
