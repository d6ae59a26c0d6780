#include "support/test.h"

namespace {

constexpr double kAngleTolerance = 1e-9;  // the format's factor has 13 digits

std::string tables(std::string_view name, std::string_view list) {
  return section("TABLES", table(name, pairsOf(list))) + dxf();
}
std::string header(std::string_view list) { return section("HEADER", pairsOf(list)) + dxf(); }

// Fonts are shared by the process; every test that needs some registers them.
class ReadStyles : public testing::Test {
 protected:
  struct Font : ICADFont {
    explicit Font(const zim::WString& name) : ICADFont(name) {}
  };
  ReadStyles() { CFontTable::getInstance().add(new Font(u"txt")); }
  ~ReadStyles() override { shutdownCore(); }
};

}  // namespace

TEST(ReadHeader, Variables) {
  const Loaded got =
      loadText(header("9 $LIMMIN|10 1|20 2|9 $limmax|10 3|20 4|9 $LTSCALE|40 5|9 $PLINEWID|40 6|"
                      "9 $ANGBASE|50 90|9 $CECOLOR|62 7|9 $ORTHOMODE|70 1|9 $PLINEGEN|70 2|"
                      "9 $ANGDIR|70 1|9 $AUNITS|70 3|9 $UNKNOWN|1 x|10 1|20 2|30 3|210 4|220 5"));
  ASSERT_FALSE(got.error.HasAnError());
  const CDataVariables& vars = got.data->getVars();
  EXPECT_DOUBLE_EQ(vars.getLimMin().x, 1);
  EXPECT_DOUBLE_EQ(vars.getLimMin().y, 2);
  EXPECT_DOUBLE_EQ(vars.getLimMax().x, 3);
  EXPECT_DOUBLE_EQ(vars.getLimMax().y, 4);
  EXPECT_DOUBLE_EQ(vars.getLtypeScale(), 5);
  EXPECT_DOUBLE_EQ(vars.getPLineWid(), 6);
  EXPECT_NEAR(vars.getAngDir(), 1.5707963267948966, kAngleTolerance);
  EXPECT_EQ(vars.getCurColor(), 7);
  EXPECT_TRUE(vars.isOrtho());
  EXPECT_TRUE(vars.isPLineGen());
  EXPECT_TRUE(vars.isAngClockWise());
  EXPECT_EQ(vars.getAngFormat(), 3);
}

TEST(ReadHeader, ValuesThatAreNotTaken) {
  const char* const cases[] = {
      "9 $AUNITS|70 1",      "9 $AUNITS|70 4",     "9 $AUNITS|70 40000", "9 $CECOLOR|62 257",
      "9 $CECOLOR|62 -1",    "9 $CECOLOR|3 5",     "9 $LTSCALE",         "9 $LTSCALE|90 5",
      "9 $LTSCALE|40 5|1 x", "9 $ORTHOMODE|290 1", "999 $AUNITS",
  };
  for (const char* text : named(cases)) {
    const Loaded got = loadText(header(text));
    EXPECT_FALSE(got.error.HasAnError());
    EXPECT_EQ(got.data->getVars().getAngFormat(), 0);
    EXPECT_EQ(got.data->getVars().getCurColor(), 256);
    EXPECT_FALSE(got.data->getVars().isOrtho());
    EXPECT_DOUBLE_EQ(got.data->getVars().getLtypeScale(), 1);
  }
}

TEST(ReadHeader, CurrentItemsAreFoundAtTheEnd) {
  const Loaded got =
      loadText(section("HEADER", pairsOf("9 $CELAYER|8 walls|9 $CELTYPE|6 DASHED|"
                                         "9 $TEXTSTYLE|7 NONE")) +
               section("TABLES", table("LTYPE", pairs("0 LTYPE", "2 Dashed", "73 0")) +
                                     table("LAYER", pairs("0 LAYER", "2 Walls"))) +
               dxf());
  EXPECT_EQ(getCurLayer(*got.data), getLayer(*got.data, u"Walls"));
  EXPECT_EQ(getCurLtype(*got.data), getLtype(*got.data, u"Dashed"));
  EXPECT_EQ(getCurStyle(*got.data), getStyleStandard(*got.data));
}

TEST(ReadHeader, SaysVersionAndEncoding) {
  const Loaded got =
      loadText(section("HEADER", pairsOf("9 $ACADVER|1 AC1009|9 $DWGCODEPAGE|3 ansi_1250")) +
               section("ENTITIES", pairsOf("0 POINT|8 \xBE|10 0|20 0")) + dxf());
  EXPECT_EQ(got.result.version, zim::WString(u"AC1009"));
  EXPECT_EQ(got.result.encoding, "windows-1250");
  EXPECT_NE(getLayer(*got.data, u"\u013E"), nullptr);
}

TEST(ReadTables, Layers) {
  for (const Row& t : rows()) {
    const Loaded got = loadText(tables("LAYER", "0 LAYER|2 A|" + t.text("entry")));
    ASSERT_FALSE(got.error.HasAnError());
    const CLayer* layer = getLayer(*got.data, u"a");
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->getColor(), t.whole<short>("colour"));
    EXPECT_EQ(layer->getFlags(), t.whole<long>("flags"));
    EXPECT_EQ(layer->isOff(), t.flag("off"));
    EXPECT_TRUE(layer->getLtype()->isContinuous());
  }
}

TEST(ReadTables, TheEntryFillsALayerMadeBefore) {
  const Loaded got =
      loadText(section("ENTITIES", pairsOf("0 POINT|8 A|10 0|20 0")) +
               section("TABLES", table("LTYPE", pairs("0 LTYPE", "2 D", "73 0")) +
                                     table("LAYER", pairs("0 LAYER", "2 A", "62 5", "70 4", "6 D",
                                                          "0 LAYER", "2 A", "62 6"))) +
               dxf());
  const CLayer* layer = getLayer(*got.data, u"A");
  EXPECT_EQ(layer->getColor(), 5);
  EXPECT_TRUE(layer->isLocked());
  EXPECT_EQ(layer->getLtype(), getLtype(*got.data, u"D"));
  EXPECT_EQ(layer->getEntities(), 1);
}

TEST(ReadTables, SkippedWithoutError) {
  const Loaded got =
      loadText(section("CLASSES", pairsOf("0 CLASS|1 x|70 ")) +
               section("TABLES", table("VPORT", pairsOf("0 VPORT|2 *ACTIVE|40 junk")) +
                                     table("APPID", pairsOf("0 APPID|2 ENDTAB")) +
                                     table("LAYER", pairsOf("0 LAYER|2 A"))) +
               section("OBJECTS", pairsOf("0 DICTIONARY|1 ENDSEC")) + "999\ncomment\n" + dxf());
  EXPECT_FALSE(got.error.HasAnError());
  EXPECT_NE(getLayer(*got.data, u"A"), nullptr);
}

TEST(ReadTables, EndMarkAlone) {
  const Loaded got = loadText(dxf());
  EXPECT_EQ(got.result.status, CFileDXFIResult::Done);
  EXPECT_TRUE(got.data->getEntTable().getEntityTbl().empty());
}

// -- linetypes -----------------------------------------------------------------

TEST(ReadTables, SimpleLtype) {
  const Loaded got = loadText(
      tables("LTYPE",
             "0 LTYPE|2 DASHDOT|3 __ . __|70 64|72 65|73 4|40 1|49 0.5|49 -0.25|49 0|49 -0.25|"
             "0 LTYPE|2 DASHDOT|73 0|0 LTYPE|2 ByLayer|73 1|49 1"));
  ASSERT_FALSE(got.error.HasAnError());
  const CLtype* ltype = getLtype(*got.data, u"dashdot");
  ASSERT_NE(ltype, nullptr);
  EXPECT_EQ(ltype->getDesc(), zim::WString(u"__ . __"));
  EXPECT_EQ(ltype->getFlags(), 0);
  ASSERT_EQ(ltype->getNoDashes(), 4);
  EXPECT_DOUBLE_EQ(ltype->getPatternLen(), 1);
  EXPECT_DOUBLE_EQ(ltype->GetDash(1)->GetValue(), -0.25);
  EXPECT_TRUE(getLtype(*got.data, u"BYLAYER")->isByLayer());
}

TEST(ReadTables, LtypeWithTextAndShape) {
  const std::string entry =
      "0 LTYPE|2 GAS|72 65|73 3|49 0.5|74 0|49 -0.2|74 2|75 0|340 11|46 0.1|50 90|44 -0.1|45 -0.05|"
      "9 GAS|49 -0.25|74 4|75 132|340 11|46 1|50 0|44 0|45 0";
  const Loaded got = loadText(version("AC1015") + tables("LTYPE", entry));
  ASSERT_FALSE(got.error.HasAnError());
  const CLtype* ltype = getLtype(*got.data, u"GAS");
  ASSERT_NE(ltype, nullptr);
  ASSERT_EQ(ltype->getNoDashes(), 4);
  const TEXT_3D* text = ltype->GetDash(2)->GetText();
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text->getContext().getString(), zim::WString(u"GAS"));
  EXPECT_DOUBLE_EQ(text->getContext().getHeight(), 0.1);
  EXPECT_DOUBLE_EQ(text->getContext().getWidthScale(), 1);
  EXPECT_NEAR(text->getContext().getRotate(), 1.5707963267948966, kAngleTolerance);
  EXPECT_DOUBLE_EQ(text->x, -0.1);
  EXPECT_DOUBLE_EQ(text->y, -0.05);
  EXPECT_EQ(got.report.count("shape dropped"), 1);

  // The older form ignores code 74 and the codes that belong to it, but keeps the dashes.
  const Loaded old = loadText(version("AC1012") + tables("LTYPE", entry));
  ASSERT_FALSE(old.error.HasAnError());
  EXPECT_EQ(getLtype(*old.data, u"GAS")->getNoDashes(), 3);
}

// -- external references -----------------------------------------------------------

TEST(ReadTables, DependentItemsAnnounceTheirReference) {
  const std::string text =
      section("TABLES",
              table("LTYPE", pairs("0 LTYPE", "2 X|DASH", "70 16", "73 1", "49 1")) +
                  table("LAYER", pairs("0 LAYER", "2 X|WALLS", "6 X|DASH", "62 4", "70 16"))) +
      section("BLOCKS", pairs("0 BLOCK", "2 X", "70 4", "1 plan.dwg", "10 1", "0 ENDBLK")) +
      section("ENTITIES",
              pairs("0 POINT", "8 x|walls", "10 0", "20 0", "0 POINT", "8 Y|NEW", "10 0", "20 0")) +
      dxf();
  for (const bool importing : {false, true}) {
    Loaded got;
    importing ? importInto(got, text) : loadInto(got, text);
    ASSERT_FALSE(got.error.HasAnError());
    const CBlockXRef* xref = got.data->getBlockXRefTable().get(u"x");
    ASSERT_NE(xref, nullptr);
    EXPECT_EQ(xref->getPath(), zim::WString(u"plan.dwg"));
    EXPECT_EQ(xref->getStatus(), CBlockXRef::Status::unresolved);
    const CLayer* layer = xref->getLayerTable().get(u"WALLS");
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->getFullName(), zim::WString(u"X|WALLS"));
    EXPECT_EQ(layer->getLtype(), xref->getLtypeTable().get(u"DASH"));
    EXPECT_EQ(got.data->getEntTable().getEntityTbl().front()->getLayer(), layer);
    ASSERT_NE(got.data->getBlockXRefTable().get(u"Y"), nullptr);
    EXPECT_TRUE(got.data->getEntTable().getEntityTbl().back()->getLayer()->isXRef());
  }
}

// -- styles ----------------------------------------------------------------------

TEST_F(ReadStyles, ValuesAndStandard) {
  const Loaded got = loadText(tables("STYLE",
                                     "0 STYLE|2 A|3 txt|40 1|41 2|42 3|50 45|70 68|"
                                     "0 STYLE|2 a|3 txt|40 9|0 STYLE|2 standard|3 txt|41 0.5|"
                                     "0 STYLE|2 |3 ltypeshp.shx|40 -1|41 0|70 1"));
  ASSERT_FALSE(got.error.HasAnError());
  const CStyle* style = getStyle(*got.data, u"A");
  ASSERT_NE(style, nullptr);
  EXPECT_EQ(style->getFont()->getName(), zim::WString(u"txt"));
  EXPECT_DOUBLE_EQ(style->getFixedHeight(), 1);
  EXPECT_DOUBLE_EQ(style->getWidthScale(), 2);
  EXPECT_DOUBLE_EQ(style->getLastHeight(), 3);
  EXPECT_NEAR(style->getOblique(), 0.7853981633974483, kAngleTolerance);
  EXPECT_EQ(style->getFlags(), 4);
  EXPECT_DOUBLE_EQ(getStyleStandard(*got.data)->getWidthScale(), 0.5);
}

TEST_F(ReadStyles, UnknownFonts) {
  const std::string text = tables("STYLE", "0 STYLE|2 A|3 romans.shx|0 STYLE|2 B|3 romans.shx");
  EXPECT_EQ(loadText(text).error.GetErrorType(), CFileDXFIError::FontNotFound);

  CFileDXFIPolicy keepNames;
  keepNames.keepFontNames = true;
  const Loaded kept = loadText(text, keepNames);
  ASSERT_FALSE(kept.error.HasAnError());
  const ICADFont* font = getStyle(*kept.data, u"A")->getFont();
  EXPECT_EQ(font->getName(), zim::WString(u"romans.shx"));
  EXPECT_EQ(getStyle(*kept.data, u"B")->getFont(), font);
  EXPECT_EQ(kept.report.count("font unknown"), 2);

  CFontTable::getInstance().setDefault(CFontTable::getInstance().get(u"txt", false));
  const Loaded replaced = loadText(text);
  ASSERT_FALSE(replaced.error.HasAnError());
  EXPECT_EQ(getStyle(*replaced.data, u"A")->getFont()->getName(), zim::WString(u"txt"));
}
