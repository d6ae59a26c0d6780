// Tolerant reading of colors, radii, curves, attributes and names.

#include "dxf/in/savedtext.h"
#include "support/test.h"

namespace {

std::string layers(std::string_view list) {
  return section("TABLES", table("LAYER", pairsOf(list)));
}

}  // namespace

// The color number of the file is kept as well; files without true colors get the nearest one.
TEST(TolerantLook, TrueColorsAreKeptAndSavedAsTheNearest) {
  CFontTable::getInstance().addPlainDefault();
  for (const Row& t : rows()) {
    const auto rgb = t.whole<std::uint32_t>("rgb");
    const std::string code = "|420 " + std::to_string(rgb);
    const Loaded got = loadAny(layers("0 LAYER|2 A|62 -4" + code) +
                               section("ENTITIES", pairsOf(kDiagonal + "|62 4" + code)) + dxf());
    ASSERT_TRUE(got.only());
    EXPECT_EQ(got.only()->getColor(), 4);
    EXPECT_EQ(got.only()->getTraits().trueColor, rgb);
    EXPECT_EQ(got.only()->getLayer()->getTraits().trueColor, rgb);
    EXPECT_TRUE(got.only()->getLayer()->isOff());
    EXPECT_TRUE(got.report.empty());
    const Loaded again = loadText(saved(got, kSaveExchange));
    EXPECT_EQ(again.only()->getColor(), t.whole<short>("color"));
    EXPECT_EQ(again.only()->getLayer()->getColor(), t.whole<short>("color"));
  }
}

TEST(TolerantLook, EntitiesHaveTraits) {
  for (const Row& t : rows()) {
    const Loaded got = loadAnyEntities(kDiagonal + "|" + t.text("codes"));
    ASSERT_TRUE(got.only());
    const ENT_TRAITS expected{
        t.whole<std::uint32_t>("rgb"), t.whole<short>("weight"), t.whole<short>("opacity"),
        t.whole<int>("visible") != 0,  t.real("scale"),          t.real("thickness")};
    EXPECT_EQ(got.only()->getTraits(), expected);
    EXPECT_EQ(got.report.count("number replaced") + got.report.count("number dropped"),
              t.whole<long>("bad"));
  }
}

TEST(TolerantLook, LayersHaveTraits) {
  for (const Row& t : rows()) {
    const Loaded got = loadAny(layers("0 LAYER|2 A|6 CONTINUOUS|" + t.text("codes")) + dxf());
    const CLayer* layer = got.data->getLayerTable().get(u"A");
    ASSERT_TRUE(layer);
    EXPECT_EQ(layer->getTraits(),
              (LAYER_TRAITS{ENT_TRAITS::kNoTrueColor, t.whole<short>("weight"),
                            t.whole<short>("opacity"), t.whole<int>("plotted") != 0}));
    EXPECT_EQ(layer->getLtype(), got.data->getLtypeTable().get(u"Continuous"));
    EXPECT_EQ(got.report.count("number replaced"), t.whole<long>("bad"));
  }
}

// By definition of the search, no other color of the palette is closer.
TEST(TolerantLook, EveryPaletteColorIsNearestToItself) {
  for (int i = 1; i < 256; ++i)
    EXPECT_EQ(paletteColor(nearestPaletteColor(paletteColor(i))), paletteColor(i)) << i;
}

TEST(TolerantLook, RadiiAreAmounts) {
  const Loaded got = loadAnyEntities(
      "0 CIRCLE|8 A|10 0|20 0|40 -2|0 ARC|8 A|10 0|20 0|40 0|50 0|51 9|0 CIRCLE|8 A|10 0|20 0|40 "
      "0");
  ASSERT_TRUE(got.only());
  EXPECT_EQ(static_cast<CEntCircle*>(got.only())->getCircle().radius, 2);
  EXPECT_EQ(got.report.count("number replaced"), 1);
  EXPECT_EQ(got.report.count("entity dropped"), 2);
}

TEST(TolerantLook, PatternsRunOnAlongCurves) {
  const Loaded got = loadAnyEntities(
      "0 ELLIPSE|8 A|10 0|20 0|11 2|21 0|40 0.5|0 SPLINE|8 A|71 2|40 0|40 0|40 0|40 1|40 1|40 1|"
      "10 0|20 0|10 1|20 1|10 2|20 0|0 CIRCLE|8 A|10 0|20 0|40 1|210 1|220 0|230 0");
  ASSERT_EQ(got.count(CEntPolyline::kType), 3);
  for (const CEnt* ent : got.data->getEntTable().getEntityTbl())
    EXPECT_TRUE(static_cast<const CEntPolyline*>(ent)->getFlags() & CEntPolyline::kLtGen);
}

// An attribute is placed by its own plane, whatever the plane of the insert.
TEST(TolerantLook, AttributesHaveAPlaneOfTheirOwn) {
  for (const char* insertZ : {"1", "-1"})
    for (const char* attribZ : {"1", "-1"}) {
      SCOPED_TRACE(std::string(insertZ) + " " + attribZ);
      const bool isMirrored = attribZ[0] == '-';
      const Loaded got = loadAnyEntities(
          std::string("0 INSERT|8 A|2 B|10 7|20 0|50 30|66 1|210 0|220 0|230 ") + insertZ +
          "|0 ATTRIB|8 A|10 " + (isMirrored ? "-40" : "40") +
          "|20 3|40 1|50 20|1 T|2 T|70 0|210 0|" + "220 0|230 " + attribZ + "|0 SEQEND");
      ASSERT_TRUE(got.only());
      const CEntInsertBase& insert = *got.only()->getEntInsert();
      PNT_3D at;
      double height, widthScale, rotation, oblique;
      transform_attrib_logic_2_phisic(1, insert, *insert.GetAttrib(0), at, height, widthScale,
                                      rotation, oblique);
      EXPECT_NEAR(at.x, 40, 1e-9);
      EXPECT_NEAR(at.y, 3, 1e-9);
      EXPECT_NEAR(widthScale, isMirrored ? -1 : 1, 1e-9);
      EXPECT_NEAR(std::sin(rotation), (isMirrored ? -1 : 1) * std::sin(20 * kRadiansPerDegree),
                  1e-9);
    }
}

TEST(TolerantLook, LayersNamedAfterABlockAreOrdinary) {
  CFontTable::getInstance().addPlainDefault();
  // '|' separates the pairs of lists, but these values contain one.
  const std::string tables = section(
      "TABLES", table("LTYPE", pairs("0 LTYPE", "2 X|D", "70 16", "72 65", "73 1", "49 1")) +
                    table("LAYER", pairs("0 LAYER", "2 X|L", "62 3", "6 X|D", "70 48")));
  const std::string blocks =
      section("BLOCKS", pairsOf("0 BLOCK|2 X|10 0|20 0") +
                            pairs("0 LINE", "8 X|L", "6 X|D", "10 0", "20 0", "11 1", "21 1") +
                            pairs("0 ENDBLK"));
  const std::string insert = section("ENTITIES", pairs("0 INSERT", "8 X|L", "2 X", "10 0", "20 0"));
  for (const bool tolerant : named<bool>({true, false})) {
    CFileDXFIPolicy policy = tolerant ? CFileDXFIPolicy::forAnyFile() : CFileDXFIPolicy();
    const Loaded got = loadText(version("AC1009") + tables + blocks + insert + dxf(), policy);
    EXPECT_FALSE(got.error.HasAnError());
    EXPECT_EQ(got.data->getBlockXRefTable().size(), 0);
    ASSERT_TRUE(got.only());
    const CLayer* layer = got.data->getLayerTable().get(u"X|L");
    ASSERT_TRUE(layer);
    EXPECT_EQ(got.only()->getLayer(), layer);
    EXPECT_EQ(layer->getColor(), 3);
    EXPECT_EQ(layer->getLtype(), got.data->getLtypeTable().get(u"X|D"));
    const CBlock* block = got.data->getBlockTable().get(u"X");
    ASSERT_TRUE(block && block->size() == 1);
    for (const unsigned flags : {0u, kSaveExchange}) {
      const Loaded again = loadText(saved(got, flags));
      EXPECT_FALSE(again.error.HasAnError()) << again.error.GetFullMessage().toUtf8();
      EXPECT_TRUE(again.data->getBlockTable().get(u"X"));
    }
  }
}

TEST(TolerantLook, OnlyStarsAndDollarsMarkLayouts) {
  for (const auto& [name, isKept] :
       {std::pair("Xmodel_space", true), std::pair("*Model_Space", false),
        std::pair("$PAPER_SPACE", false), std::pair("_paper_space", true)}) {
    const Loaded got = loadAny(section("BLOCKS", pairsOf(std::string("0 BLOCK|10 0|20 0|2 ") +
                                                         name + "|" + kDiagonal + "|0 ENDBLK")) +
                               dxf());
    const CBlock* block = got.data->getBlockTable().get(zim::WString::fromUtf8(name));
    EXPECT_EQ(block && !block->isSheet(), isKept) << name;
  }
}

TEST(TolerantLook, TheCurrentLayerIsTaken) {
  const Loaded got =
      loadAny(section("HEADER", pairsOf("9 $CLAYER|8 A")) + layers("0 LAYER|2 A|62 1") + dxf());
  EXPECT_EQ(got.data->getVars().getCurLayer(), got.data->getLayerTable().get(u"A"));
}
