// Everything that a drawing cannot represent is reported; default values are not.

#include "support/test.h"

namespace {

void expectCount(const char* code, long count, const std::string& text) {
  SCOPED_TRACE(text);
  const Loaded got = loadText(text + dxf(), CFileDXFIPolicy::forAnyFile());
  EXPECT_EQ(got.result.status, CFileDXFIResult::Done);
  EXPECT_EQ(got.report.count(code), count);
}

}  // namespace

TEST(Losses, AreToldUnlessNothingIsLost) {
  const auto header = [](const std::string& list) { return section("HEADER", pairsOf(list)); };
  const auto objects = [](const std::string& list) { return section("OBJECTS", pairsOf(list)); };
  const auto tableOf = [](const char* name, const std::string& list) {
    return section("TABLES", table(name, pairsOf(list)));
  };
  const auto entities = [](const std::string& list) { return section("ENTITIES", pairsOf(list)); };
  const std::string line = "0 LINE|8 A|10 0|20 0|11 1|21 1|";
  const std::string hatch =
      "0 HATCH|8 A|2 SOLID|70 1|91 1|92 2|72 0|73 1|93 3|10 0|20 0|10 1|20 0|"
      "10 1|20 1|97 0|75 0|76 1|98 0|450 ";
  expectCount("unit dropped", 0, header("9 $INSUNITS|70 0|9 $MEASUREMENT|70 0|9 $LUNITS|70 2"));
  expectCount("unit dropped", 2, header("9 $INSUNITS|70 4|9 $MEASUREMENT|70 1|9 $LUNITS|70 4"));
  expectCount("setting dropped", 0, header("9 $FILLMODE|70 1|9 $INSBASE|10 0|20 1|30 0"));
  expectCount("setting dropped", 2, header("9 $FILLMODE|70 0|9 $ATTMODE|70 0"));
  expectCount("group dropped", 2, objects("0 GROUP|5 A|300 g|0 DICTIONARY|5 B|0 GROUP|5 C"));
  expectCount("dimension style dropped", 0,
              tableOf("DIMSTYLE", "0 DIMSTYLE|2 Standard|40 1|41 0.18|270 2"));
  expectCount("dimension style dropped", 2,
              tableOf("DIMSTYLE", "0 DIMSTYLE|2 Standard|41 2.5|0 DIMSTYLE|2 ISO"));
  const std::string data = "|1001 APP|1000 a|1001 OTHER|1070 1";
  expectCount("dimension style dropped", 1, tableOf("DIMSTYLE", "0 DIMSTYLE|2 Standard" + data));
  expectCount("code dropped", 1, tableOf("LAYER", "0 LAYER|2 A|70 0|62 7|6 CONTINUOUS" + data));
  expectCount("code dropped", 0,
              tableOf("LAYER", "0 LAYER|2 A|70 0|62 7|6 CONTINUOUS|1001 AcCmTransparency"));
  expectCount("code dropped", 1, tableOf("STYLE", "0 STYLE|2 S|70 0|3 txt" + data));
  expectCount("code dropped", 1, tableOf("LTYPE", "0 LTYPE|2 L|70 0|3 -|72 65|73 0|40 0" + data));
  expectCount("named view dropped", 2, tableOf("VIEW", "0 VIEW|2 V|40 x|0 VIEW|2 W"));
  expectCount("named view dropped", 1, tableOf("UCS", "0 UCS|2 U"));
  expectCount("flags replaced", 0, entities("0 INSERT|8 A|2 B|10 0|20 0|70 -1"));
  expectCount("number replaced", 1, entities("0 INSERT|8 A|2 B|10 0|20 0|70 -1"));
  expectCount("number replaced", 0, entities(line + "5 00007FFFFFFFFFFFFFFE"));
  for (const char* handle : {"7FFFFFFFFFFFFFFF", "12345678901234567", "FFFFFFFFFFFFFFFF"})
    expectCount("number replaced", 1, entities(line + "5 " + handle));
  expectCount("gradient dropped", 0, entities(hatch + "0"));
  expectCount("gradient dropped", 1, entities(hatch + "1"));
  const auto filled = [&](const char* colors) {
    return loadAny(entities(hatch + "1|463 0|" + colors) + dxf());
  };
  const Loaded indexed = filled("63 3|463 1|63 4"),
               colored = filled("63 3|421 255|463 1|63 4|421 9");
  EXPECT_EQ(indexed.only()->getColor(), 3);
  EXPECT_FALSE(indexed.only()->getTraits().hasTrueColor());
  EXPECT_EQ(colored.only()->getTraits().trueColor, 255u);
  expectCount("text background dropped", 1, entities("0 MTEXT|8 A|1 T|10 0|20 0|40 1|90 1"));
}

// Drawings without layouts, such as external references, report those with a name of their own or
// with something on their sheets.
TEST(Losses, SheetsThatAreNotReadAreNamed) {
  const std::string line = "0 LINE|8 A|10 0|20 0|11 1|21 1|";
  const std::string blocks =
      section("BLOCKS", pairsOf("0 BLOCK|330 1A|2 *Paper_Space|10 0|20 0|0 ENDBLK|0 BLOCK|330 1B|"
                                "2 *Paper_Space0|10 0|20 0|" +
                                line + "67 1|0 ENDBLK"));
  const std::string layouts =
      "0 LAYOUT|100 AcDbLayout|1 Layout1|330 1A|0 LAYOUT|100 AcDbLayout|1 Layout2|330 1B|"
      "0 LAYOUT|100 AcDbPlotSettings|1 p|100 AcDbLayout|1 Plan|0 LAYOUT|100 AcDbLayout|1 Model";
  CFileDXFIPolicy policy = CFileDXFIPolicy::forAnyFile();
  policy.layouts = false;
  for (const bool isActiveUsed : {false, true}) {
    const Loaded got =
        loadText(blocks + section("ENTITIES", pairsOf(line + (isActiveUsed ? "67 1" : "67 0"))) +
                     section("OBJECTS", pairsOf(layouts)) + dxf(),
                 policy);
    EXPECT_EQ(got.report.count("on paper"), 1 + isActiveUsed);
    EXPECT_EQ(got.report.count("layout dropped"), 2 + isActiveUsed);
    EXPECT_EQ(got.data->getLayouts().size(), 0);
  }
}
