#include "support/test.h"

using vek0::detail::kPi;

namespace {

constexpr double kDegreeTolerance = 1e-9;  // the format's factor has 13 digits

#define EXPECT_POINT(p, ex, ey, ez) \
  do {                              \
    EXPECT_DOUBLE_EQ((p).x, ex);    \
    EXPECT_DOUBLE_EQ((p).y, ey);    \
    EXPECT_DOUBLE_EQ((p).z, ez);    \
  } while (false)

}  // namespace

TEST(ReadEntities, Point) {
  const Loaded got = loadEntities("0 POINT|5 1F|8 A|62 3|10 1|20 2|30 3");
  ASSERT_NE(got.only(), nullptr);
  EXPECT_EQ(got.only()->getType(), 1);
  EXPECT_POINT(castPnt(got.only())->getPnt(), 1, 2, 3);
  EXPECT_EQ(got.only()->GetHandle(), 0x1F);
  EXPECT_EQ(got.only()->getColor(), 3);
  EXPECT_EQ(got.only()->getLayer()->getName(), zim::WString(u"A"));
  EXPECT_TRUE(got.only()->getLtype()->isByLayer());
}

TEST(ReadEntities, Line) {
  const Loaded got = loadEntities("0 line|8 0|10 1|20 2|30 3|11 4|21 5|31 6");
  ASSERT_NE(got.only(), nullptr);
  double x1, y1, z1, x2, y2, z2;
  castLine(got.only())->getLine(x1, y1, z1, x2, y2, z2);
  EXPECT_POINT(PNT_3D(x1, y1, z1), 1, 2, 3);
  EXPECT_POINT(PNT_3D(x2, y2, z2), 4, 5, 6);
}

TEST(ReadEntities, CircleAndArc) {
  const Loaded got =
      loadEntities("0 CIRCLE|8 0|10 1|20 2|40 3|0 ARC|8 0|10 4|20 5|30 6|40 7|50 0|51 90");
  ASSERT_EQ(got.data->getEntTable().getEntityTbl().size(), 2u);
  double x, y, z, radius, start, end;
  castCircle(got.data->getEntTable().getEntityTbl().front())->getCircle(x, y, z, radius);
  EXPECT_POINT(PNT_3D(x, y, z), 1, 2, 0);
  EXPECT_DOUBLE_EQ(radius, 3);
  castArc(got.data->getEntTable().getEntityTbl().back())->getArc(x, y, z, radius, start, end);
  EXPECT_POINT(PNT_3D(x, y, z), 4, 5, 6);
  EXPECT_DOUBLE_EQ(radius, 7);
  EXPECT_DOUBLE_EQ(start, 0);
  EXPECT_NEAR(end, kPi / 2, kDegreeTolerance);
}

TEST(ReadEntities, Face) {
  const Loaded got = loadEntities("0 3DFACE|8 0|10 0|20 0|11 1|21 0|12 1|22 1|32 5|13 0|23 1|70 5");
  CEnt3DFace* face = cast3DFace(got.only());
  ASSERT_NE(face, nullptr);
  EXPECT_POINT(face->getVertex(2), 1, 1, 5);
  EXPECT_EQ(face->getFlags(), 5);
  EXPECT_FALSE(face->isTriangular());
}

TEST(ReadEntities, CommonProperties) {
  const Loaded got =
      loadText(section("TABLES", table("LTYPE", pairs("0 LTYPE", "2 DASHED", "73 1", "49 1")) +
                                     table("LAYER", pairs("0 LAYER", "2 Walls", "62 3"))) +
               section("ENTITIES", pairsOf("0 POINT|8 WALLS|6 dashed|10 0|20 0|"
                                           "0 POINT|8 walls|6 NONE|10 0|20 0|62 0")) +
               dxf());
  const auto& ents = got.data->getEntTable().getEntityTbl();
  ASSERT_EQ(ents.size(), 2u);
  EXPECT_EQ(ents.front()->getLayer(), getLayer(*got.data, u"Walls"));
  EXPECT_EQ(ents.back()->getLayer(), ents.front()->getLayer());
  EXPECT_EQ(ents.front()->getLtype(), getLtype(*got.data, u"DASHED"));
  EXPECT_EQ(ents.front()->getColor(), 256);
  EXPECT_EQ(ents.back()->getColor(), 0);
  EXPECT_TRUE(ents.back()->getLtype()->isByLayer());
  EXPECT_EQ(got.report.count("linetype unknown"), 1);
}

TEST(ReadEntities, UndeclaredLayerIsMade) {
  const Loaded got = loadEntities("0 POINT|8 New|10 0|20 0|0 POINT|8 new|10 0|20 0");
  const CLayer* layer = getLayer(*got.data, u"NEW");
  ASSERT_NE(layer, nullptr);
  EXPECT_EQ(layer->getColor(), 7);
  EXPECT_EQ(layer->getFlags(), 0);
  EXPECT_TRUE(layer->getLtype()->isContinuous());
  EXPECT_EQ(layer->getEntities(), 2);
  EXPECT_EQ(got.report.count("layer undeclared"), 1);
}

TEST(ReadEntities, SkipsWhatItDoesNotRead) {
  for (const Row& t : rows()) {
    const Loaded got = loadText(entitiesOf(t.text("version"), t.text("list")));
    EXPECT_FALSE(got.error.HasAnError());
    EXPECT_EQ(got.data->getEntTable().getEntityTbl().size(), t.count("read"));
    EXPECT_EQ(got.report.count("kind skipped"), t.whole<long>("skipped"));
  }
}

TEST(ReadEntities, ReportsWhatADrawingHasNoPlaceFor) {
  const Loaded got = loadEntities(
      "0 POINT|8 0|10 0|20 0|39 2|48 0.5|370 25|1001 ACME|1000 note|210 0|220 0|230 -1|"
      "0 POINT|8 0|10 0|20 0|210 0|220 0|230 1.0");
  EXPECT_EQ(got.report.count("code dropped"), 4);
  EXPECT_EQ(got.report.count("extrusion ignored"), 1);
}

// -- texts ---------------------------------------------------------------------

TEST(ReadEntities, TextAlignment) {
  for (const Row& t : rows()) {
    const Loaded got = loadEntities("0 TEXT|8 0|1 abc|10 1|20 2|40 3" + t.text("codes"));
    const CEntText* text = castText(got.only());
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->getText().getAlign(), t.whole<long>("align"));
    EXPECT_DOUBLE_EQ(text->getText().x, t.real("x"));
  }
}

TEST(ReadEntities, TextValues) {
  const Loaded got =
      loadEntities("0 TEXT|8 0|1 a^Jb \\U+00E9|7 NONE|10 1|20 2|40 3|41 0.5|50 90|51 45");
  const CEntText* text = castText(got.only());
  ASSERT_NE(text, nullptr);
  const CTextContext& context = text->getText().getContext();
  EXPECT_EQ(context.getString(), zim::WString(u"a\nb \u00E9"));
  EXPECT_DOUBLE_EQ(context.getHeight(), 3);
  EXPECT_DOUBLE_EQ(context.getWidthScale(), 0.5);
  EXPECT_NEAR(context.getRotate(), kPi / 2, kDegreeTolerance);
  EXPECT_NEAR(context.getOblique(), kPi / 4, kDegreeTolerance);
  EXPECT_EQ(text->getStyle(), getStyleStandard(*got.data));
  EXPECT_EQ(got.report.count("style unknown"), 1);
}

TEST(ReadEntities, MirroredText) {
  for (const Row& t : rows()) {
    const Loaded got = loadEntities("0 TEXT|8 0|1 a|10 0|20 0|40 1|" + t.text("code"));
    const CTextContext& context = castText(got.only())->getText().getContext();
    EXPECT_DOUBLE_EQ(context.getWidthScale(), t.real("width"));
    EXPECT_DOUBLE_EQ(context.getRotate(), t.real("rotation"));
  }
}

// Three characters of the built-in metrics, 0.9 each: 2.7 wide at height 1.
TEST(ReadEntities, AlignedAndFittedText) {
  for (const Row& t : rows()) {
    const Loaded got =
        loadEntities("0 TEXT|8 0|1 abc|10 1|20 1|11 1|21 6.4|40 1|50 7|" + t.text("code"));
    const TEXT_3D& text = castText(got.only())->getText();
    EXPECT_EQ(text.getAlign(), 0);
    EXPECT_POINT(text, 1, t.real("y"), 0);
    EXPECT_DOUBLE_EQ(text.getContext().getHeight(), t.real("height"));
    EXPECT_DOUBLE_EQ(text.getContext().getWidthScale(), t.real("width"));
    EXPECT_DOUBLE_EQ(text.getContext().getRotate(), t.real("rotation"));
    EXPECT_EQ(text.getFit(), t.text("name") == "aligned" ? TextFit::Size : TextFit::Width);
    EXPECT_DOUBLE_EQ(text.getFitLength(), 5.4);
    EXPECT_EQ(got.report.count("text fitted"), 0);
  }
  const Loaded nowhere = loadEntities("0 TEXT|8 0|1 abc|10 1|20 1|11 1|21 1|40 1|50 90|72 5");
  const TEXT_3D& text = castText(nowhere.only())->getText();
  EXPECT_EQ(text.getFit(), TextFit::None);
  EXPECT_NEAR(text.getContext().getRotate(), kPi / 2, kDegreeTolerance);
  EXPECT_EQ(nowhere.report.count("text fitted"), 1);
}

// In an attribute, code 73 is the field length; the vertical alignment is in code 74.
TEST(ReadEntities, Attdef) {
  const Loaded got = loadEntities(
      "0 ATTDEF|8 0|10 1|20 2|11 5|21 6|40 3|1 value|2 TAG|3 Prompt?|70 8|72 1|73 3|74 2");
  const CEntAttdef* def = castAttdef(got.only());
  ASSERT_NE(def, nullptr);
  EXPECT_EQ(def->getTag(), zim::WString(u"TAG"));
  EXPECT_EQ(def->getValue(), zim::WString(u"value"));
  EXPECT_EQ(def->getPrompt(), zim::WString(u"Prompt?"));
  EXPECT_EQ(def->getFlags(), 8);
  EXPECT_EQ(def->getText().getAlign(), 7);
  EXPECT_POINT(def->getText(), 5, 6, 0);
}

// -- inserts -------------------------------------------------------------------

TEST(ReadEntities, InsertDefaultsAndValues) {
  for (const Row& t : rows()) {
    const Loaded got = loadEntities("0 INSERT|8 0|2 A|10 1|20 2" + t.text("codes"));
    ASSERT_NE(got.only(), nullptr);
    CEntInsertBase* insert = got.only()->getEntInsert();
    ASSERT_NE(insert, nullptr);
    PNT_3D at;
    double sx, sy, sz, rotation, columnSpacing, rowSpacing;
    long columns, rows;
    insert->getInsertParams(1, at, sx, sy, sz, rotation);
    insert->getArray(columns, rows, columnSpacing, rowSpacing);
    EXPECT_POINT(at, 1, 2, 0);
    EXPECT_POINT(PNT_3D(sx, sy, sz), t.real("sx"), t.real("sy"), t.real("sz"));
    EXPECT_NEAR(rotation, t.real("rotation"), kDegreeTolerance);
    EXPECT_EQ(columns, t.whole<long>("columns"));
    EXPECT_EQ(rows, t.whole<long>("rows"));
    EXPECT_DOUBLE_EQ(columnSpacing, t.real("columnSpacing"));
    EXPECT_DOUBLE_EQ(rowSpacing, t.real("rowSpacing"));
    EXPECT_EQ(insert->getBlock()->getName(), zim::WString(u"A"));
    EXPECT_EQ(got.report.count("block undefined"), 1);
  }
}

// Attributes have drawing coordinates: at (12, 0), which an insert at (10, 0) with scale 2 shows
// for (1, 0) of the block.
TEST(ReadEntities, AttributesOfAnInsert) {
  const Loaded got = loadEntities(
      "0 INSERT|8 0|2 A|10 10|20 0|41 2|42 2|66 1|"
      "0 ATTRIB|8 L|10 12|20 0|40 4|1 v1|2 T1|70 0|"
      "0 ATTRIB|8 L|10 14|20 0|40 4|1 v2|2 T2|70 1|0 SEQEND|8 0|0 POINT|8 0|10 0|20 0");
  EXPECT_EQ(got.count(1), 1);
  ASSERT_EQ(got.count(8), 1);
  const CEntInsertBase* insert = got.data->getEntTable().getEntityTbl().front()->getEntInsert();
  ASSERT_EQ(insert->GetNoAttribs(), 2u);
  const CEntAttrib* first = insert->GetAttrib(0);
  EXPECT_EQ(first->getValue(), zim::WString(u"v1"));
  EXPECT_EQ(first->getTag(), zim::WString(u"T1"));
  EXPECT_NEAR(first->getText().x, 1, 1e-12);
  EXPECT_NEAR(first->getText().getContext().getHeight(), 2, 1e-12);
  EXPECT_EQ(insert->GetAttrib(1)->getFlags(), 1);
  EXPECT_EQ(getLayer(*got.data, u"L")->getEntities(), 2);
}

TEST(ReadEntities, InsertOfAnExternalReference) {
  const Loaded got = loadText(section("BLOCKS", pairsOf("0 BLOCK|2 X|70 4|1 x.dwg|0 ENDBLK")) +
                              section("ENTITIES", pairsOf("0 INSERT|8 0|2 x|10 1|20 2")) + dxf());
  ASSERT_NE(got.only(), nullptr);
  const CEntInsertBase* insert = got.only()->getEntInsert();
  ASSERT_TRUE(insert->getBlock()->isXRef());
  EXPECT_EQ(static_cast<const CEntInsertXRef*>(insert)->getXRef()->getPath(),
            zim::WString(u"x.dwg"));
}
