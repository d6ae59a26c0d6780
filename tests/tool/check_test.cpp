// vek0 check --for: what is found for which purpose, limits, exit codes, pictures.
#include <nlohmann/json.hpp>

#include "pictures.h"
#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;
using vek0::test::XmlReader;

namespace {

std::string lineOf(const std::string& handle, const std::string& layer, const char* points) {
  std::istringstream numbers(points);
  double x1, y1, x2, y2;
  numbers >> x1 >> y1 >> x2 >> y2;
  std::ostringstream text;
  text << "0 LINE|5 " << handle << "|8 " << layer << "|10 " << x1 << "|20 " << y1 << "|11 " << x2
       << "|21 " << y2 << '|';
  return text.str();
}

std::string ringOf(const std::string& handle, double x, double y, double size, int flags) {
  std::ostringstream text;
  text << "0 LWPOLYLINE|5 " << handle << "|8 0|90 4|70 " << flags << "|10 " << x << "|20 " << y
       << "|10 " << x + size << "|20 " << y << "|10 " << x + size << "|20 " << y + size << "|10 "
       << x << "|20 " << y + (flags ? size : 0.005) << '|';
  return text.str();
}

std::string drawing(const std::string& entities, const char* variables = "9 $ACADVER|1 AC1015") {
  return section("HEADER", pairsOf(variables)) +
         section("TABLES",
                 table("LAYER", pairsOf("0 LAYER|2 CUT|70 0|62 7|0 LAYER|2 MARK|70 0|62 3|"
                                        "0 LAYER|2 OFF|70 0|62 -5|0 LAYER|2 SILENT|70 0|62 5|290 0|"
                                        "0 LAYER|2 NAME WITH BLANKS|70 0|62 2")) +
                     table("STYLE", pairsOf("0 STYLE|2 NONE|70 0|40 0|41 1|3 nosuchfont.ttf"))) +
         section("BLOCKS", pairsOf("0 BLOCK|5 50|8 0|2 PART|70 0|10 0|20 0|" +
                                   lineOf("51", "0", "0 0 5 0") + "0 ENDBLK|5 52|8 0")) +
         section("ENTITIES", pairsOf(entities)) + dxf();
}

// One fault of each kind that model space can have.
std::string everyFault() {
  return drawing(
      lineOf("A1", "CUT", "0 0 100 0") + lineOf("A2", "CUT", "100 0.005 100 100") +
      lineOf("A3", "CUT", "100 100 0 100") + lineOf("A4", "CUT", "0 100 0 0") +
      "0 CIRCLE|5 B1|8 CUT|10 30|20 30|40 5|0 CIRCLE|5 B2|8 CUT|10 30|20 30|40 5|"
      "0 CIRCLE|5 B3|8 MARK|10 30|20 30|40 5|" +
      lineOf("C1", "CUT", "10 10 20 10") + lineOf("C2", "CUT", "25 10 15 10") +
      ringOf("D1", 50, 50, 10, 1) + ringOf("D2", 55, 55, 10, 1) +
      lineOf("E1", "CUT", "80 80 80 80") + lineOf("E2", "CUT", "82 80 82.0004 80") +
      ringOf("F1", 10, 70, 8, 0) + "0 TEXT|5 61|8 CUT|10 60|20 20|40 2|1 Hall|7 NONE|" +
      "0 SPLINE|5 62|8 CUT|70 8|71 1|72 4|73 2|40 0|40 0|40 1|40 1|10 70|20 5|10 75|20 9|"
      "0 3DSOLID|5 63|8 CUT|" +
      lineOf("64", "SILENT", "40 80 45 80") + lineOf("65", "OFF", "40 90 45 90"));
}

std::string joined(const Json& words) {
  std::string text;
  for (const Json& word : words) text += (text.empty() ? "" : ",") + word.get<std::string>();
  return text;
}

class Check : public Tool {
 protected:
  Json findings(const std::string& options, int code = 1) {
    const Outcome got = run("check --json " + options);
    EXPECT_EQ(got.code, code) << got.err;
    return Json::parse(got.out)["findings"];
  }
};

}  // namespace

TEST_F(Check, EachPurposeHasItsFindings) {
  write("all.dxf", everyFault());
  for (const char* purpose : {"laser", "print", "gis", "r12"}) {
    const Json all = findings(std::string("--bed 90x90 all.dxf --for ") + purpose);
    for (const Row& t : rows()) {
      std::string found = "-";
      for (const Json& each : all)
        if (each["code"] == t.name() && joined(each["handles"]) == t.text("handles"))
          found = each["severity"];
      EXPECT_EQ(found, t.text(purpose)) << purpose;
    }
  }
}

TEST_F(Check, LimitsDecideWhatIsAGapOrTiny) {
  write("all.dxf", everyFault());
  for (const Row& t : rows()) {
    std::map<std::string, int> counts;
    for (const Json& each : findings("all.dxf --for laser " + t.text("options")))
      ++counts[each["code"]];
    EXPECT_EQ(counts["tiny"], t.whole("tiny"));
    EXPECT_EQ(counts["too_large"], t.whole("too_large"));
    EXPECT_EQ(counts["open_contour"], t.whole("open"));
  }
}

TEST_F(Check, ReportsGapsMidwayWithTheirSize) {
  write("all.dxf", everyFault());
  for (const Json& each : findings("all.dxf --for laser")) {
    if (each["handles"] != Json({"A1", "A2"})) continue;
    EXPECT_EQ(each["code"], "open_contour");
    EXPECT_EQ(each["layer"], "CUT");
    EXPECT_NEAR(each["value"], 0.005, 1e-12);
    EXPECT_EQ(each["point"], Json({100.0, 0.0025}));
    return;
  }
  FAIL();
}

TEST_F(Check, ContentOfInsertsCountsWhereItIsPlaced) {
  // Two parts side by side leave a gap; a mirrored and stretched one hits the middle.
  write("inserts.dxf", drawing("0 INSERT|5 A1|8 CUT|2 PART|10 0|20 0|"
                               "0 INSERT|5 A2|8 CUT|2 PART|10 5.0004|20 0|"
                               "0 INSERT|5 A3|8 CUT|2 PART|10 10.0004|20 7|41 -2|42 1|"));
  std::string found;
  for (const Json& each : findings("inserts.dxf --for laser"))
    if (each["code"] == "open_contour")
      found += joined(each["handles"]) + (each["value"] > 1 ? " open; " : " gap; ");
  EXPECT_EQ(found, "A1,A2 gap; A1,A2 open; A3 open; ");
}

TEST_F(Check, SheetsAreComparedWithTheirPaper) {
  write("sheet.dxf", section("ENTITIES", pairsOf("0 LINE|5 A1|8 0|67 1|10 10|20 10|11 500|21 10")) +
                         section("OBJECTS", pairsOf("0 LAYOUT|100 AcDbPlotSettings|44 200|45 100|"
                                                    "72 1|100 AcDbLayout|1 Plan|71 1")) +
                         dxf());
  std::string found;
  for (const Json& each : findings("sheet.dxf --for print"))
    found += each["code"].get<std::string>() + " " + joined(each["handles"]) + "; ";
  EXPECT_EQ(found, "no_units ; too_large ; off_sheet A1; ");
}

TEST_F(Check, ExitCodeAndTextFollowTheFindings) {
  write("clean.dxf",
        drawing("0 CIRCLE|5 A1|8 CUT|10 3|20 3|40 5|", "9 $ACADVER|1 AC1015|9 $INSUNITS|70 4"));
  write("all.dxf", everyFault());
  for (const char* purpose : {"laser", "print", "gis"})
    EXPECT_EQ(findings(std::string("clean.dxf --for ") + purpose, 0), Json::array());
  const Outcome one = run("check --for laser clean.dxf");
  EXPECT_NE(one.out.find("0 errors, 0 warnings"), std::string::npos) << one.out;
  const Outcome both = run("check --for laser -j 2 clean.dxf all.dxf");
  EXPECT_EQ(both.code, 1);
  EXPECT_NE(both.out.find("a gap of 0.005 between LINE A1 and LINE A2, layer CUT"),
            std::string::npos)
      << both.out;
  EXPECT_EQ(run("check clean.dxf all.dxf").code, 0);
}

TEST_F(Check, DrawsNumberedMarks) {
  write("all.dxf", everyFault());
  EXPECT_EQ(run("check --for laser all.dxf --picture marks.svg").code, 1);
  const XmlReader picture(contents(path("marks.svg")));
  EXPECT_EQ(picture.error, "");
  const Json all = findings("all.dxf --for laser");
  std::size_t points = 0;
  for (const Json& each : all) points += each["point"].is_null() ? 0 : 1;
  EXPECT_GE(picture.count("text"), static_cast<long>(points) / 2);
  // Not replaced without being asked to.
  EXPECT_EQ(run("check --for laser all.dxf --picture marks.svg").code, 3);
  EXPECT_EQ(run("check --for laser all.dxf --picture marks.svg -f").code, 1);
}

TEST_F(Check, RejectsWrongUsage) {
  write("all.dxf", everyFault());
  write("more.dxf", everyFault());
  for (const Row& t : rows()) EXPECT_EQ(run("check " + t.text("arguments")).code, 2);
}
