// vek0 grep: what is searched, how it matches, exit codes.
#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

class Grep : public Tool {
 protected:
  void SetUp() override {
    Tool::SetUp();
    const std::string mtext =
        "0 MTEXT|5 A4|8 NOTES|10 5|20 6|40 1|1 {\\fArial;Ground} floor\\Pplan of 2nd phase";
    const std::string block = pairsOf(
        "0 BLOCK|2 DOOR|10 1|20 0|0 ATTDEF|5 50|8 0|10 1|20 1|40 1|1 -|3 Number|2 NO|70 0|"
        "0 TEXT|5 51|8 NOTES|10 2|20 0|40 1|1 push %%c20|0 ENDBLK|"
        "0 BLOCK|2 *D1|70 1|10 0|20 0|0 MTEXT|5 52|8 0|10 3|20 4|40 1|1 12.50 m|0 ENDBLK");
    const std::string ents = pairsOf(
        "0 TEXT|5 A1|8 NOTES|10 1|20 2|30 3|40 1|1 Türmaß a.b|"
        "0 INSERT|5 A2|8 WALLS|66 1|2 DOOR|10 10|20 20|0 ATTRIB|5 A3|8 WALLS|10 10|20 21|40 1|"
        "1 4711|2 NO|70 0|0 SEQEND|" +
        mtext + "|0 DIMENSION|5 A5|8 NOTES|2 *D1|10 0|20 0|11 3|21 4|70 0|13 0|23 0|14 1|24 0|" +
        "0 TEXT|5 A6|8 0|67 1|10 7|20 8|40 1|1 on the sheet");
    const std::string layers =
        table("LAYER", pairsOf("0 LAYER|2 WALLS|70 0|62 7|6 CONTINUOUS|0 LAYER|2 NOTES|70 0|62 3"));
    write("a.dxf", section("HEADER", pairsOf("9 $ACADVER|1 AC1021")) + section("TABLES", layers) +
                       section("BLOCKS", block) + section("ENTITIES", ents) + dxf());
    write("b.dxf", kOneLine);
    write("broken.dxf", kBroken);
    write("long.dxf",
          entitiesOf("AC1021", "0 TEXT|8 0|10 0|20 0|40 1|1 " + std::string(9000, 'a')));
  }
};

}  // namespace

// The hits in short: handle or kind, block, tag.
TEST_F(Grep, FindsTextsNamesAndAttributes) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("arguments"));
    const std::string expected = t.text("found");
    const Outcome got = run("grep --json " + t.text("arguments") + " a.dxf");
    EXPECT_EQ(got.code, expected.empty() ? 1 : 0) << got.err;
    std::string found;
    std::istringstream lines(got.out);
    for (std::string line; std::getline(lines, line);) {
      const Json hit = Json::parse(line);
      found += (found.empty() ? "" : " ");
      found += (hit["handle"].is_null() ? hit["kind"] : hit["handle"]).get<std::string>();
    }
    EXPECT_EQ(found, expected);
  }
}

TEST_F(Grep, DescribesEachMatch) {
  const auto only = [this](const std::string& pattern) {
    return Json::parse(run("grep --json " + pattern + " a.dxf").out);
  };
  EXPECT_EQ(only("4711"), Json::parse(R"({"file": "a.dxf", "handle": "A3", "kind": "ATTRIB",
      "layer": "WALLS", "block": "DOOR", "tag": "NO", "text": "4711", "point": [10, 21, 0]})"));
  EXPECT_EQ(only("Ground"), Json::parse(R"({"file": "a.dxf", "handle": "A4", "kind": "MTEXT",
      "layer": "NOTES", "block": null, "tag": null, "text": "Ground floor\nplan of 2nd phase",
      "point": [5, 5, 0]})"));
  EXPECT_EQ(only("12.50")["handle"], "A5");
  EXPECT_EQ(only("DOOR"), Json::parse(R"({"file": "a.dxf", "handle": null, "kind": "BLOCK",
      "layer": null, "block": "DOOR", "tag": null, "text": "DOOR", "point": null})"));
  EXPECT_EQ(run("grep -F a.b a.dxf").out, "a.dxf: NOTES TEXT A1: Türmaß a.b\n");
  EXPECT_EQ(run("grep 47 a.dxf").out, "a.dxf: WALLS ATTRIB A3: NO=4711\n");
}

TEST_F(Grep, AnswersWithItsExitCode) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("arguments"));
    const Outcome got = run("grep " + t.text("arguments"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_EQ(got.out, t.text("out"));
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
  }
}

// A file is no terminal.
TEST_F(Grep, ColorsWhereItMay) {
  const std::string sample = quotedSample("house.dxf");
  const auto isColored = [&](const std::string& options) {
    return run(options + " grep ROOF " + sample).out.find('\033') != std::string::npos;
  };
  EXPECT_TRUE(isColored("--color always"));
  EXPECT_FALSE(isColored("--color auto"));
  EXPECT_FALSE(isColored("--color never"));
  EXPECT_EQ(run("--color red grep ROOF " + sample).code, 2);
}
