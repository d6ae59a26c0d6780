// vek0 diff: what counts as which difference, exit codes, pictures.
#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

// Layers, styles, a block with an attribute that is inserted twice, a layout with a line.
const std::string kBase =
    section("HEADER", pairsOf("9 $ACADVER|1 AC1015|9 $INSUNITS|70 4")) +
    section("TABLES",
            table("LTYPE", pairsOf("0 LTYPE|2 DASH|3 dashes|72 65|73 2|40 2|49 1|49 -1")) +
                table("LAYER", pairsOf("0 LAYER|2 WALLS|70 0|62 7|0 LAYER|2 NOTES|70 0|62 3|"
                                       "0 LAYER|2 SPARE|70 0|62 5")) +
                table("STYLE", pairsOf("0 STYLE|2 ROMAN|70 0|40 0|41 1|3 txt"))) +
    section("BLOCKS", pairsOf("0 BLOCK|5 50|8 0|2 DOOR|70 0|10 0|20 0|0 LINE|5 51|8 0|10 0|20 0|"
                              "11 1|21 0|0 ENDBLK|5 52|8 0")) +
    section("ENTITIES",
            pairsOf("0 LINE|5 A1|8 WALLS|10 0|20 0|11 10|21 0|"
                    "0 LINE|5 A2|8 WALLS|10 10|20 0|11 10|21 8|"
                    "0 CIRCLE|5 A3|8 0|10 5|20 5|40 2|"
                    "0 TEXT|5 A4|8 NOTES|10 1|20 1|40 1|1 Hall|7 ROMAN|"
                    "0 INSERT|5 A5|8 WALLS|66 1|2 DOOR|10 3|20 0|0 ATTRIB|5 A6|8 0|10 3|20 0|40 1|"
                    "1 12|2 NO|0 SEQEND|5 A7|8 0|"
                    "0 INSERT|5 A8|8 WALLS|2 DOOR|10 6|20 0")) +
    dxf();

std::string number(const Json& value) {
  std::ostringstream text;
  text << value.get<double>();
  return text.str();
}

// "-A1", "+A2", ">A3 by 1,2,0", "~A4 text,layer", "layers WALLS color", separated by "; ".
std::string inShort(const Json& found) {
  std::string text;
  const auto add = [&](const std::string& part) { text += (text.empty() ? "" : "; ") + part; };
  const auto words = [](const Json& all) {
    std::string list;
    for (const Json& word : all) list += (list.empty() ? "" : ",") + word.get<std::string>();
    return list;
  };
  const auto handle = [](const Json& ent) { return ent["handle"].get<std::string>(); };
  const auto by = [](const Json& ent) {
    if (!ent.contains("by")) return std::string();
    return " by " + number(ent["by"][0]) + "," + number(ent["by"][1]) + "," + number(ent["by"][2]);
  };
  for (const Json& ent : found["removed"]) add("-" + handle(ent));
  for (const Json& ent : found["added"]) add("+" + handle(ent));
  for (const Json& ent : found["moved"]) add(">" + handle(ent) + by(ent));
  for (const Json& ent : found["changed"])
    add("~" + handle(ent) + " " + words(ent["what"]) + by(ent));
  for (const Json& item : found["tables"])
    add(item["table"].get<std::string>() + " " + item["name"].get<std::string>() + " " +
        words(item["what"]));
  return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
    ++count;
  }
  EXPECT_GT(count, 0u) << from;
  return text;
}

std::string withoutHandles(const std::string& text) {
  std::string rest;
  std::istringstream lines(text);
  for (std::string code, value; std::getline(lines, code) && std::getline(lines, value);)
    if (code.find_first_not_of(' ') == std::string::npos || std::stoi(code) != 5)
      rest += code + "\n" + value + "\n";
  return rest;
}

class Diff : public Tool {
 protected:
  std::string diff(const std::string& arguments, int code) {
    const Outcome got = run("diff --json " + arguments);
    EXPECT_EQ(got.code, code) << arguments << got.err;
    const Json found = Json::parse(got.out);
    EXPECT_EQ(found["equal"].get<bool>(), code == 0);
    return inShort(found);
  }
};

}  // namespace

TEST_F(Diff, TellsWhatKindOfChangeItIs) {
  const struct {
    const char *name, *from, *to;
    const char* expected;    // by handle
    const char* byGeometry;  // null: the same
  } cases[] = {
      {"moved", "10 5|20 5|40 2", "10 8|20 9|40 2", ">A3 by 3,4,0", nullptr},
      {"moved and recolored", "8 0|10 5|20 5|40 2", "8 0|62 1|10 8|20 9|40 2",
       "~A3 geometry,color by 3,4,0", nullptr},
      {"another radius", "20 5|40 2", "20 5|40 3", "~A3 geometry", nullptr},
      {"one end of a line", "11 10|21 8", "11 10|21 9", "~A2 geometry", "-A2; +A2"},
      {"recolored", "5 A1|8 WALLS", "5 A1|8 WALLS|62 1", "~A1 color", nullptr},
      {"true color", "5 A1|8 WALLS", "5 A1|8 WALLS|420 255", "~A1 color", nullptr},
      {"lineweight and scale", "5 A1|8 WALLS", "5 A1|8 WALLS|370 50|48 2",
       "~A1 lineweight,linetype_scale", nullptr},
      {"invisible, transparent, thick, dashed", "5 A1|8 WALLS",
       "5 A1|8 WALLS|6 DASH|60 1|39 4|440 33554431", "~A1 linetype,transparency,visible,thickness",
       nullptr},
      {"another layer", "5 A1|8 WALLS", "5 A1|8 NOTES", "~A1 layer", nullptr},
      {"another text", "1 Hall", "1 Room", "~A4 text", nullptr},
      {"another style", "1 Hall|7 ROMAN", "1 Hall", "~A4 style", nullptr},
      {"value of an attribute", "1 12|2 NO", "1 13|2 NO", "~A5 text", nullptr},
      {"attribute lost",
       "66 1|2 DOOR|10 3|20 0|0 ATTRIB|5 A6|8 0|10 3|20 0|40 1|1 12|2 NO|0 "
       "SEQEND|5 A7|8 0|",
       "2 DOOR|10 3|20 0|", "~A5 attributes", nullptr},
      {"removed", "0 LINE|5 A2|8 WALLS|10 10|20 0|11 10|21 8|", "", "-A2", nullptr},
      {"added", "0 CIRCLE|5 A3", "0 POINT|5 B1|8 0|10 1|20 1|0 CIRCLE|5 A3", "+B1", nullptr},
      {"another kind under the handle", "0 CIRCLE|5 A3|8 0|10 5|20 5|40 2",
       "0 POINT|5 A3|8 0|10 5|20 5", "-A3; +A3", nullptr},
      {"renamed layer", "WALLS", "MUREN", "layers WALLS name", nullptr},
      {"renamed layer without users", "SPARE", "RESERVE", "layers SPARE name", nullptr},
      {"renamed style", "ROMAN", "GREEK", "styles ROMAN name", nullptr},
      {"renamed block", "DOOR", "DEUR", "blocks DOOR name", nullptr},
      {"layer's color", "2 WALLS|70 0|62 7", "2 WALLS|70 1|62 -1", "layers WALLS color,on,frozen",
       nullptr},
      {"layer lost", "0 LAYER|2 SPARE|70 0|62 5", "", "layers SPARE removed", nullptr},
      {"dashes", "49 1|49 -1", "49 1|49 -2", "linetypes DASH pattern", nullptr},
      {"font", "3 txt", "3 simplex", "styles ROMAN font", nullptr},
      {"inside a block", "5 51|8 0|10 0|20 0|11 1", "5 51|8 0|10 0|20 0|11 2", "~51 geometry",
       "-51; +51"},
      {"base point", "2 DOOR|70 0|10 0", "2 DOOR|70 0|10 5", "blocks DOOR base", nullptr},
      {"units", "9 $INSUNITS|70 4", "9 $INSUNITS|70 6", "variables $INSUNITS value", nullptr},
      {"within the tolerance", "10 5|20 5|40 2", "10 5.000000001|20 5|40 2", "", nullptr},
      {"just beyond it", "10 5|20 5|40 2", "10 5.00001|20 5|40 2", ">A3 by 1e-05,0,0", nullptr},
  };
  write("a.dxf", kBase);
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    // Names are replaced wherever they are used.
    const bool isName = !std::isdigit(static_cast<unsigned char>(*t.from));
    const std::string changed =
        isName ? replaced(kBase, t.from, t.to) : replaced(kBase, pairsOf(t.from), pairsOf(t.to));
    write("b.dxf", changed);
    const int code = *t.expected ? 1 : 0;
    EXPECT_EQ(diff("a.dxf b.dxf", code), t.expected);
    const char* byGeometry = t.byGeometry ? t.byGeometry : t.expected;
    EXPECT_EQ(diff("--match geometry a.dxf b.dxf", code), byGeometry);
  }
}

TEST_F(Diff, HandlesOnlyCountIfTheyCorrespond) {
  const std::string moved = replaced(kBase, pairsOf("10 5|20 5|40 2"), pairsOf("10 8|20 9|40 2"));
  const std::string first = "0 LINE|5 A1|8 WALLS|10 0|20 0|11 10|21 0|";
  write("a.dxf", kBase);
  write("bare.dxf", withoutHandles(kBase));
  write("moved.dxf", withoutHandles(moved));
  write("less.dxf", withoutHandles(replaced(kBase, pairsOf(first), "")));
  // Numbered from another start, as if a program had written it anew.
  std::string renumbered = kBase;
  for (int i = 1; i < 9; ++i)
    renumbered = replaced(renumbered, "\nA" + std::to_string(i) + "\n",
                          "\nB" + std::to_string(i % 8) + "\n");
  for (int i = 0; i < 8; ++i)
    renumbered = replaced(renumbered, "\nB" + std::to_string(i) + "\n",
                          "\nA" + std::to_string(i + 1) + "\n");
  write("renumbered.dxf", renumbered);
  EXPECT_EQ(diff("a.dxf bare.dxf", 0), "");
  EXPECT_EQ(diff("a.dxf renumbered.dxf", 0), "");
  EXPECT_NE(diff("a.dxf moved.dxf", 1).find(">A3 by 3,4,0"), std::string::npos);
  EXPECT_EQ(diff("a.dxf less.dxf", 1), "-A1");
}

TEST_F(Diff, VersionsAndFormsOfAFileAreEqual) {
  for (const char* sample : {"flange.dxf", "house.dxf", "hatches_ac1015.dxf", "every_kind_r12.dxf"})
    for (const char* to : {"r12", "2000", "2018", "keep"}) {
      SCOPED_TRACE(std::string(sample) + " " + to);
      const std::string path = quotedSample(sample);
      ASSERT_EQ(run("convert -f " + path + " b.dxf --to " + to).code, 0);
      EXPECT_EQ(diff(path + " b.dxf", 0), "");
      EXPECT_EQ(diff("b.dxf " + path + " --match geometry", 0), "");
    }
}

TEST_F(Diff, ExitCodesTellDifferencesFromTrouble) {
  write("a.dxf", kBase);
  write("b.dxf", replaced(kBase, "WALLS", "MUREN"));
  write("broken.dxf", kBroken);
  const struct {
    const char* arguments;
    int code;
  } cases[] = {
      {"a.dxf a.dxf", 0},
      {"a.dxf b.dxf", 1},
      {"-q a.dxf b.dxf", 1},
      {"a.dxf none.dxf", 2},
      {"broken.dxf a.dxf", 2},
      {"a.dxf", 2},
      {"a.dxf b.dxf --tolerance -1", 2},
      {"a.dxf b.dxf --tolerance x", 2},
      {"a.dxf b.dxf --match x", 2},
      {"- -", 2},
      {"a.dxf a.dxf -o c.txt", 2},
      {"a.dxf a.dxf -o none/c.svg", 2},
  };
  for (const auto& t : cases) {
    const Outcome got = run(std::string("diff ") + t.arguments);
    EXPECT_EQ(got.code, t.code) << t.arguments;
    EXPECT_EQ(got.err.empty(), t.code < 2) << t.arguments;
  }
  EXPECT_EQ(run("diff - b.dxf", path("b.dxf").string()).code, 0);
  EXPECT_EQ(run("diff -q a.dxf b.dxf").out, "");
}

TEST_F(Diff, DrawsWhatWasAndWhatIs) {
  const std::string insert = "0 INSERT|5 A8|8 WALLS|2 DOOR|10 6|20 0";
  write("a.dxf", kBase);
  write("b.dxf", replaced(replaced(kBase, pairsOf("40 2"), pairsOf("40 3")), pairsOf(insert),
                          pairsOf("0 POINT|5 B1|8 0|10 1|20 1")));
  const auto colors = [this] {
    std::set<std::string> all;
    const std::string svg = contents(path("c.svg"));
    for (std::size_t at = 0; (at = svg.find("stroke=\"#", at)) != std::string::npos; at += 9)
      all.insert(svg.substr(at + 8, 7));
    return all;
  };
  ASSERT_EQ(run("diff a.dxf b.dxf -o c.svg").code, 1);
  EXPECT_EQ(colors(), (std::set<std::string>{"#c8c8c8", "#dc1414", "#009628"}));
  EXPECT_EQ(run("diff a.dxf b.dxf -o c.svg").code, 2);
  ASSERT_EQ(run("diff a.dxf a.dxf -f -o c.svg").code, 0);
  EXPECT_EQ(colors(), std::set<std::string>{"#c8c8c8"});
  // Of a block that both have, only the line that differs.
  write("b.dxf", replaced(kBase, pairsOf("11 1|21 0"), pairsOf("11 2|21 0")));
  ASSERT_EQ(run("diff a.dxf b.dxf -f -o c.svg").code, 1);
  EXPECT_EQ(colors(), (std::set<std::string>{"#c8c8c8", "#dc1414", "#009628"}));
  EXPECT_FALSE(leftovers());
}
