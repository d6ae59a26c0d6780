// What a drawing has no place for is in the report, and what says nothing is not.
#include <gtest/gtest.h>

#include "support/dxftext.h"

using namespace vek0::test;

TEST(Losses, AreToldUnlessNothingIsLost) {
  const auto header = [](const char* list) { return section("HEADER", pairsOf(list)); };
  const auto objects = [](const char* list) { return section("OBJECTS", pairsOf(list)); };
  const auto tableOf = [](const char* name, const char* list) {
    return section("TABLES", table(name, pairsOf(list)));
  };
  const auto entities = [](const char* list) { return section("ENTITIES", pairsOf(list)); };
  const std::string line = "0 LINE|8 A|10 0|20 0|11 1|21 1|";
  const std::string layout = "0 LAYOUT|5 A|100 AcDbPlotSettings|1 p|100 AcDbLayout|1 ";
  const std::string hatch =
      "0 HATCH|8 A|2 SOLID|70 1|91 1|92 2|72 0|73 1|93 3|10 0|20 0|10 1|20 0|"
      "10 1|20 1|97 0|75 0|76 1|98 0|450 ";
  const struct {
    std::string text;
    const char* code;
    long count;
  } cases[] = {
      {header("9 $INSUNITS|70 0|9 $MEASUREMENT|70 0|9 $LUNITS|70 2"),           "unit dropped",                              0                                                      },
      {header("9 $INSUNITS|70 4|9 $MEASUREMENT|70 1|9 $LUNITS|70 4"),           "unit dropped",                              3                                                      },
      {header("9 $FILLMODE|70 1|9 $INSBASE|10 0|20 0|30 0"),                    "setting dropped",                           0                                                      },
      {header("9 $FILLMODE|70 0|9 $INSBASE|10 0|20 1|30 0"),                    "setting dropped",                           2                                                      },
      {objects("0 GROUP|5 A|300 g|0 DICTIONARY|5 B|0 GROUP|5 C"),               "group dropped",                             2                                                      },
      {objects((layout + "Model|" + layout + "Layout12").c_str()),              "layout dropped",                            0                                                      },
      {entities((line + "67 1").c_str()) + objects((layout + "Model").c_str()), "layout dropped",
       0                                                                                                                                                                            },
      {objects((layout + "Plan A3").c_str()),                                   "layout dropped",                            1                                                      },
      {tableOf("DIMSTYLE",                                                      "0 DIMSTYLE|2 Standard|40 1|41 0.18|270 2"), "dimension style dropped",
       0},
      {tableOf("DIMSTYLE",                                                                       "0 DIMSTYLE|2 Standard|41 2.5|0 DIMSTYLE|2 ISO"),
       "dimension style dropped",                                  2},
      {tableOf("LAYER",                                                                      "0 LAYER|2 A|370 -3|290 1"),                                                                                                                 "code dropped",                                                                                                                         0},
      {tableOf("LAYER",                                                         "0 LAYER|2 A|370 25|0 LAYER|2 B|290 0"),"code dropped",2},
      {entities((line + "370 -1|48 1|39 0|60 0").c_str()),"code dropped",                   0                                                                                                                                                       },
      {entities((line + "370 25|48 2|39 3|440 33554559").c_str()),                      "code dropped",                                                                            4                                                                                                               },
      {entities((line + "67 1").c_str()),              "on paper",                      1},
      {entities("0 INSERT|8 A|2 B|10 0|20 0|70 -1"),                                       "flags replaced",                                                           0                                                                                           },
      {entities("0 INSERT|8 A|2 B|10 0|20 0|70 -1"),                            "number replaced",                 1            },
      {entities((hatch + "0").c_str()),                            "gradient dropped",                           0                                                                },
      {entities((hatch + "1").c_str()),                                         "gradient dropped",                                       1                                                                  },
      {entities("0 MTEXT|8 A|1 T|10 0|20 0|40 1|90 1"),                                         "text background dropped",                          1                                         },
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.text);
    const Loaded got = loadText(t.text + dxf(), CFileDXFIPolicy::forAnyFile());
    EXPECT_EQ(got.result.status, CFileDXFIResult::Done);
    EXPECT_EQ(got.report.count(t.code), t.count);
  }
}

// A layout of a usual name counts when something stands on its sheet.
TEST(Losses, SheetsAreNamed) {
  const std::string line = "0 LINE|8 A|10 0|20 0|11 1|21 1|";
  const std::string blocks =
      section("BLOCKS", pairsOf("0 BLOCK|330 1A|2 *Paper_Space|10 0|20 0|0 ENDBLK|0 BLOCK|330 1B|"
                                "2 *Paper_Space0|10 0|20 0|" +
                                line + "67 1|0 ENDBLK"));
  const std::string layouts =
      "0 LAYOUT|100 AcDbLayout|1 Layout1|330 1A|0 LAYOUT|100 AcDbLayout|1 Layout2|330 1B";
  for (const bool isActiveUsed : {false, true}) {
    const Loaded got =
        loadText(blocks + section("ENTITIES", pairsOf(line + (isActiveUsed ? "67 1" : "67 0"))) +
                     section("OBJECTS", pairsOf(layouts)) + dxf(),
                 CFileDXFIPolicy::forAnyFile());
    EXPECT_EQ(got.report.count("on paper"), 1 + isActiveUsed);
    EXPECT_EQ(got.report.count("layout dropped"), 1 + isActiveUsed);
  }
}
