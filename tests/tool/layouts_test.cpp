// Plots of layouts: the sheet at its scale, the model through viewports.
#include <nlohmann/json.hpp>
#include "pictures.h"

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

using namespace vek0::test;

namespace {

using Layouts = Tool;

// The sheet has a line of 10 mm, handle 1. Its viewport, 80 x 40 mm in the middle, shows the model
// at 1:2, turned by 90 degrees: a line of 80 mm from its center, handle 2, and one on a layer that
// is frozen in it.
std::string drawing() {
  const std::string plan =
      "0 LAYOUT|100 AcDbPlotSettings|44 200|45 100|72 1|100 AcDbLayout|1 Plan|71 1";
  return section("TABLES", table("LAYER", pairsOf("0 LAYER|5 30|2 B|62 1|6 CONTINUOUS"))) +
         section("ENTITIES",
                 pairsOf("0 LINE|5 2|8 A|10 0|20 0|11 80|21 0|0 LINE|5 3|8 B|10 0|20 0|11 40|21 0|"
                         "0 LINE|5 1|8 A|67 1|10 0|20 0|11 10|21 0|0 VIEWPORT|5 4|8 A|67 1|10 100|"
                         "20 50|40 80|41 40|69 2|12 0|22 0|45 80|51 90|331 30")) +
         section("OBJECTS", pairsOf(plan + "|0 LAYOUT|100 AcDbLayout|1 Empty|71 2|330 9")) + dxf();
}

}  // namespace

TEST_F(Layouts, ArePlottedToScale) {
  write("a.dxf", drawing());
  ASSERT_EQ(run("render a.dxf -o a.svg --layout plan").code, 0);
  const std::string svg = contents(path("a.svg"));
  EXPECT_NE(svg.find("width=\"200mm\" height=\"100mm\" viewBox=\"0 0 20000 10000\""), svg.npos);
  const XmlReader reader(svg);
  ASSERT_NE(reader.byId("h1"), nullptr);
  ASSERT_NE(reader.byId("h2"), nullptr);
  EXPECT_EQ(reader.byId("h1")->attributes.at("d"), "M0 10000h1000");
  EXPECT_EQ(reader.byId("h2")->attributes.at("d"), "M10000 5000v-4000");
  EXPECT_EQ(reader.byId("h3"), nullptr) << "frozen";
  EXPECT_EQ(reader.byId("h4")->attributes.at("d"), "M6000 7000h8000v-4000h-8000z");
  EXPECT_EQ(reader.count("clipPath"), 1);
  ASSERT_EQ(run("render a.dxf -o current.svg --paper-space").code, 0);
  EXPECT_EQ(contents(path("current.svg")).substr(0, 500), svg.substr(0, 500));
}

// Nothing outside the plotted part of a sheet is shown, unless the user chooses the part.
TEST_F(Layouts, PlotsOfAPartAreCutAtIt) {
  write("a.dxf",
        section("ENTITIES", pairsOf("0 LINE|5 1|8 A|67 1|10 0|20 0|11 150|21 0")) +
            section("OBJECTS", pairsOf("0 LAYOUT|100 AcDbPlotSettings|44 200|45 100|72 1|74 4|48 0|"
                                       "49 0|140 100|141 50|100 AcDbLayout|1 Plan|71 1")) +
            dxf());
  const auto clips = [this](const std::string& options) {
    EXPECT_EQ(run("render a.dxf -f -o a.svg --layout Plan " + options).code, 0);
    return contents(path("a.svg"));
  };
  EXPECT_NE(clips("").find("d=\"M0 10000h10000v-5000h-10000z\""), std::string::npos);
  const std::string chosen = clips("--window 50,0,150,20");
  EXPECT_EQ(chosen.find("clipPath"), std::string::npos);
  EXPECT_NE(chosen.find("width=\"100mm\" height=\"20mm\""), std::string::npos) << "at its scale";
}

TEST_F(Layouts, AreFoundByName) {
  write("a.dxf", drawing());
  const Outcome missing = run("render a.dxf -o a.svg --layout Other");
  EXPECT_EQ(missing.code, 1);
  EXPECT_NE(missing.err.find("no layout is named Other; there are: Plan, Empty"), missing.err.npos);
  const Outcome all = run("render a.dxf -o a.svg --layout all");
  EXPECT_EQ(all.code, 0);
  EXPECT_NE(all.err.find("Empty has no paper size"), all.err.npos);
  EXPECT_EQ(run("render a.dxf --format pdf -o - --layout all").out.substr(0, 5), "%PDF-");
  for (const char* options :
       {"-o - --format svg --layout all", "-o b.svg --paper-space --split-layers",
        "-o b.svg --layout Plan --view front", "-o b.svg --layout Plan --unit m"})
    EXPECT_EQ(run(std::string("render a.dxf ") + options).code, 2) << options;
  EXPECT_NE(contents(path("a-Plan.svg")), "");
  EXPECT_NE(contents(path("a-Empty.svg")), "");
  const std::string info = run("info --json a.dxf").out;
  EXPECT_NE(
      info.find(R"({"name":"Plan","paper":[200.0,100.0],"scale":1.0,"entities":1,"viewports":)"
                R"([{"center":[100.0,50.0],"width":80.0,"height":40.0,"view_center":[0.0,0.0],)"
                R"("view_height":80.0,"twist":90.0,"frozen":["B"]}]})"),
      info.npos)
      << info;
  EXPECT_NE(info.find(R"("blocks":[])"), info.npos) << "sheets are not listed";
  const Json frame = Json::parse(run("list --json a.dxf --where kind=viewport").out);
  EXPECT_EQ(frame["handle"], "4");
  EXPECT_EQ(frame["layout"], "Plan");
  EXPECT_EQ(frame["layer"], "A");
  EXPECT_EQ(frame["extents"]["max"], (Json{140.0, 70.0, 0.0}));
}
