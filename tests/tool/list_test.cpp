// vek0 list: entities with the properties that they are drawn with.
#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

using List = Tool;

std::vector<Json> linesOf(const std::string& out) {
  std::vector<Json> lines;
  std::istringstream in(out);
  for (std::string line; std::getline(in, line);) lines.push_back(Json::parse(line));
  return lines;
}

}  // namespace

// Nested color, lineweight and linetype are resolved as the picture does.
TEST_F(List, ShowsWhatIsDrawn) {
  const std::string tables =
      table("LTYPE", pairsOf("0 LTYPE|2 DASH|72 65|73 1|40 1|49 1")) +
      table("LAYER", pairsOf("0 LAYER|2 A|62 -1|420 1193046|370 50|6 DASH|0 LAYER|2 B|62 3"));
  const std::string block = pairsOf(
      "0 BLOCK|2 X|10 0|20 0|0 LINE|8 0|10 0|20 0|11 1|21 1|62 0|370 -2|6 BYBLOCK|0 CIRCLE|8 B|10 "
      "0|20 0|40 1|0 ENDBLK");
  const std::string insert = "0 INSERT|5 A1|8 B|2 X|10 100|20 200|370 30|420 255|66 1";
  const std::string attrib = "|0 ATTRIB|5 A2|8 0|10 100|20 200|40 1|1 v|2 T|62 0|70 1|0 SEQEND|";
  write("a.dxf", section("TABLES", tables) + section("BLOCKS", block) +
                     section("ENTITIES", pairsOf(insert + attrib +
                                                 "0 LWPOLYLINE|5 A3|8 A|90 2|70 0|10 1|20 2|10 3|"
                                                 "20 4|48 2|440 33554431|60 1")) +
                     dxf());
  const auto all = run("list --json a.dxf");
  ASSERT_EQ(all.code, 0) << all.err;
  const std::vector<Json> lines = linesOf(all.out);
  ASSERT_EQ(lines.size(), 3u);
  const Json expected = Json::parse(R"({"handle": "A3", "kind": "LWPOLYLINE", "layer": "A",
      "layout": "Model", "block": null, "color": 256, "rgb": "#123456", "lineweight": 0.5,
      "linetype": "DASH", "linetype_scale": 2.0, "transparency": 0.0, "visible": false,
      "extents": {"min": [1.0, 2.0, 0.0], "max": [3.0, 4.0, 0.0]}, "text": null})");
  EXPECT_EQ(lines[2], expected);
  EXPECT_EQ(lines[0]["block"], "X");
  EXPECT_EQ(lines[0]["rgb"], "#0000ff");
  EXPECT_EQ(lines[1]["of"], "A1");
  EXPECT_EQ(lines[1]["rgb"], "#0000ff");
  EXPECT_EQ(lines[1]["lineweight"], 0.25);
  EXPECT_EQ(lines[1]["text"], "v");
  EXPECT_FALSE(lines[1]["visible"]);
  EXPECT_EQ(lines[1]["extents"]["min"][0], 100.0);
  const std::vector<Json> inside = linesOf(run("list --json a.dxf --in x").out);
  ASSERT_EQ(inside.size(), 2u);
  EXPECT_EQ(inside[0]["rgb"], "#000000");
  EXPECT_EQ(inside[0]["lineweight"], 0.25);
  EXPECT_EQ(inside[0]["linetype"], "Continuous");
  EXPECT_TRUE(inside[0]["layout"].is_null());
  EXPECT_EQ(inside[1]["rgb"], "#00ff00");
  for (const auto& [where, count] :
       {std::pair("layer=A", 1), std::pair("kind=lwpolyline", 1), std::pair("kind=polyline", 1),
        std::pair("kind=text", 0), std::pair("layer=B,kind=insert", 1),
        std::pair("window=90,190,300,300", 2)})
    EXPECT_EQ(linesOf(run(std::string("list --json a.dxf --where ") + where).out).size(), count);
  EXPECT_EQ(run("list a.dxf --in Y").code, 1);
  EXPECT_EQ(run("list a.dxf --where layer=Y").code, 1);
  EXPECT_EQ(run("list a.dxf --where kind=cube").code, 2);
  EXPECT_EQ(run("list none.dxf").code, 1);
}

TEST_F(List, EveryEntityOnceWithAHandleOfItsOwn) {
  for (const char* sample :
       {"every_kind_r12.dxf", "hatches_ac1015.dxf", "house.dxf", "trees.dxf"}) {
    SCOPED_TRACE(sample);
    const Json info = Json::parse(run("info --json " + quotedSample(sample)).out);
    long count = 0;
    for (const auto& [kind, number] : info["entities"].items()) count += number.get<long>();
    std::set<std::string> handles{"0"};
    for (const Json& line : linesOf(run("list --json " + quotedSample(sample)).out)) {
      EXPECT_TRUE(handles.insert(line["handle"]).second) << line;
      --count;
    }
    EXPECT_EQ(count, 0);
    const std::string text = run("list " + quotedSample(sample)).out;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), static_cast<long>(handles.size()));
  }
}
