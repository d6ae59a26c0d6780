// Edits from scripts: the effect of steps, their order, and the input that they reject.

#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

// Two walls that meet at (10,0) on separate layers, a circle on a layer with a comma in its name, a
// closed clockwise square, a block inserted once, and unused items.
const std::string kPlan = pairsOf(
    "0 SECTION|2 TABLES|"
    "0 TABLE|2 LTYPE|70 2|0 LTYPE|2 USED|70 0|3 |72 65|73 2|40 2|49 1|49 -1|"
    "0 LTYPE|2 SPARE|70 0|3 |72 65|73 2|40 2|49 1|49 -1|0 ENDTAB|"
    "0 TABLE|2 LAYER|70 5|0 LAYER|2 WALL1|70 0|62 1|6 USED|0 LAYER|2 WALL2|70 0|62 2|6 CONTINUOUS|"
    "0 LAYER|2 A,B|70 0|62 3|6 CONTINUOUS|0 LAYER|2 AREA|70 0|62 4|6 CONTINUOUS|"
    "0 LAYER|2 SPARE|70 0|62 5|6 SPARE|0 ENDTAB|"
    "0 TABLE|2 STYLE|70 1|0 STYLE|2 SPARE|70 0|40 0|41 1|50 0|71 0|42 1|3 txt|4 |0 ENDTAB|"
    "0 ENDSEC|0 SECTION|2 BLOCKS|"
    "0 BLOCK|8 0|2 PART|70 0|10 0|20 0|0 LINE|8 0|10 0|20 0|11 1|21 0|0 POINT|8 0|10 2|20 0|0 "
    "ENDBLK|"
    "0 BLOCK|8 0|2 INNER|70 0|10 0|20 0|0 POINT|8 0|10 0|20 0|0 ENDBLK|"
    "0 BLOCK|8 0|2 OUTER|70 0|10 0|20 0|0 INSERT|8 0|2 INNER|10 0|20 0|0 ENDBLK|"
    "0 ENDSEC|0 SECTION|2 ENTITIES|"
    "0 LINE|8 WALL1|10 0|20 0|11 10|21 0|0 LINE|8 WALL2|10 10|20 5|11 10|21 0|"
    "0 CIRCLE|8 A,B|10 50|20 50|40 5|"
    "0 POLYLINE|8 AREA|66 1|70 1|0 VERTEX|8 AREA|10 0|20 20|0 VERTEX|8 AREA|10 0|20 30|"
    "0 VERTEX|8 AREA|10 10|20 30|0 VERTEX|8 AREA|10 10|20 20|0 SEQEND|"
    "0 INSERT|8 WALL1|2 PART|10 100|20 0|70 3|44 10|0 ENDSEC|0 EOF");

class Edit : public Tool {
 protected:
  void SetUp() override {
    Tool::SetUp();
    write("plan.dxf", kPlan);
  }

  Outcome edit(const std::string& steps) { return run("edit -f plan.dxf -o out.dxf " + steps); }
  Json info() { return Json::parse(run("info --json out.dxf").out); }
  std::vector<std::string> namesOf(const Json& items) {
    std::vector<std::string> names;
    for (const Json& item : items)
      names.push_back(item.is_string() ? item.get<std::string>() : item["name"].get<std::string>());
    return names;
  }
  bool has(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  }
};

}  // namespace

TEST_F(Edit, SelectsByLayerKindAndWindow) {
  for (const Row& t : rows()) {
    const Outcome got = edit(std::string("--select ") + t.text("select") + " --set-color red");
    ASSERT_EQ(got.code, t.whole("count") == 0 ? 1 : 0) << got.err;
    if (t.whole("count") == 0) continue;
    const std::string number =
        std::to_string(t.whole("count")) + (t.whole("count") == 1 ? " entity" : " entities");
    EXPECT_NE(got.err.find(": " + number + " selected\n"), std::string::npos) << got.err;
    EXPECT_NE(got.err.find(": " + number + " colored red\n"), std::string::npos) << got.err;
  }
}

TEST_F(Edit, TransformsWhatIsSelectedInTheOrderGiven) {
  const std::string wall = "--select layer=WALL1,kind=line ";  // from 0,0 to 10,0
  const std::string alone = " --select layer=WALL2,AREA,A?B --delete --select kind=insert --delete";
  for (const Row& t : rows()) {
    const Outcome got = edit(wall + t.text("steps") + alone);
    ASSERT_EQ(got.code, 0) << got.err;
    const Json extents = info()["extents"];
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(extents["min"][i].get<double>(), t.reals("min")[i], 1e-12) << i;
      EXPECT_NEAR(extents["max"][i].get<double>(), t.reals("max")[i], 1e-12) << i;
    }
  }
}

TEST_F(Edit, CurvesAreExplodedJoinedAndOffset) {
  for (const Row& t : rows()) {
    const Outcome got = edit(t.text("steps"));
    ASSERT_EQ(got.code, 0) << got.err;
    EXPECT_EQ(info()["entities"], Json::parse("{" + t.text("entities") + "}")) << got.err;
  }
}

// The square of the plan is clockwise, the circle counterclockwise.
TEST_F(Edit, ParallelsOfClosedCurvesAreOutsideForMoreThanNothing) {
  for (const Row& t : rows()) {
    const std::string rest = " --move 1000,0 --select window=-100,-100,500,500 --delete";
    ASSERT_EQ(edit(std::string("--select layer=AREA --offset ") + t.text("offset") + rest).code, 0);
    const Json box = info()["extents"];
    EXPECT_NEAR(box["max"][0].get<double>() - box["min"][0].get<double>(), t.real("side"), 1e-9);
  }
}

TEST_F(Edit, PropertiesAndNames) {
  ASSERT_EQ(edit("--select kind=line --set-layer NEW --set-linetype SPARE --set-color 40 "
                 "--select layer=NEW --delete")
                .code,
            0);
  EXPECT_FALSE(info()["entities"].contains("LINE"));
  EXPECT_TRUE(has(namesOf(info()["layers"]), "NEW"));

  const Outcome got = edit("--remap-layer 'WALL*=WALLS' --remap-linetype USED=SPARE --purge");
  ASSERT_EQ(got.code, 0) << got.err;
  EXPECT_NE(got.err.find("2 layers replaced by WALLS in 3 entities"), std::string::npos) << got.err;
  const Json after = info();
  EXPECT_EQ(namesOf(after["layers"]), (std::vector<std::string>{"0", "A,B", "AREA", "WALLS"}));
  EXPECT_EQ(after["layers"].back()["color"], 1) << "made like the first that it replaces";
  EXPECT_EQ(after["layers"].back()["linetype"], "SPARE");
  EXPECT_FALSE(has(namesOf(after["linetypes"]), "USED"));

  const std::string all = edit("--remap-linetype '*=USED'").err;
  EXPECT_NE(all.find(": 2 linetypes replaced by USED in 0 entities"), std::string::npos)
      << "not BYLAYER, which all entities have: " << all;
  const std::string named = edit("--remap-linetype BYLAYER=USED").err;
  EXPECT_NE(named.find(": 1 linetype replaced by USED in 9 entities"), std::string::npos) << named;
}

TEST_F(Edit, PurgeTakesWhatNothingUsesAndNoMore) {
  const Outcome got = edit("--purge");
  ASSERT_EQ(got.code, 0) << got.err;
  EXPECT_NE(got.err.find("2 blocks, 1 layer, 1 linetype and 1 text style removed"),
            std::string::npos)
      << got.err;
  const Json after = info();
  EXPECT_EQ(namesOf(after["blocks"]), std::vector<std::string>{"PART"});
  EXPECT_TRUE(has(namesOf(after["linetypes"]), "USED"));
  ASSERT_EQ(edit("--select kind=insert --delete --purge").code, 0);
  EXPECT_TRUE(info()["blocks"].empty());
}

// Angles given in whole degrees are whole degrees in the file, too.
TEST_F(Edit, TurnedTextsHaveTheDegreesThatWereAskedFor) {
  write("text.dxf", pairsOf("0 SECTION|2 ENTITIES|0 TEXT|8 0|10 1000|20 0|40 1|50 30|1 A|"
                            "0 ARC|8 0|10 0|20 0|40 1|50 350|51 20|0 ENDSEC|0 EOF"));
  const Outcome got = run("edit text.dxf -o - --rotate 90@0,0 --rotate 33@0,0 --rotate -363@0,0");
  ASSERT_EQ(got.code, 0) << got.err;
  EXPECT_NE(got.out.find("\n50\n150.0\n"), std::string::npos) << got.out;
  EXPECT_NE(got.out.find("\n50\n110.0\n"), std::string::npos) << got.out;
  EXPECT_NE(got.out.find("\n51\n140.0\n"), std::string::npos) << got.out;
}

TEST_F(Edit, WhatIsBeyondNumbersAlreadyDoesNotStopOthers) {
  write("far.dxf", pairsOf("0 SECTION|2 ENTITIES|0 CIRCLE|8 0|10 1e308|20 0|40 1e308|"
                           "0 LINE|8 0|10 0|20 0|11 1|21 1|0 ENDSEC|0 EOF"));
  const Outcome got = run("edit far.dxf -o - --move 1,1 --undo-check");
  EXPECT_EQ(got.code, 0) << got.err;
  EXPECT_NE(got.out.find("\n11\n2.0\n"), std::string::npos) << got.out;
}

TEST_F(Edit, WhatIsNotEditedStaysInTheFile) {
  const std::string odd =
      "999\r\na comment\r\n  0\r\nSECTION\r\n2\r\nENTITIES\r\n0\r\nLINE\r\n"
      "8\r\nNONE\r\n 10\r\n0.50\r\n20\r\n0\r\n11\r\n1\r\n21\r\n1e0\r\n1001\r\nOWN\r\n";
  const std::string end = "0\r\nENDSEC\r\n0\r\nEOF\r\n";
  write("odd.dxf", odd + end);
  for (const char* steps : {"", "--move 1,1 --undo-all"}) {
    ASSERT_EQ(run(std::string("edit -f odd.dxf -o same.dxf ") + steps).code, 0);
    EXPECT_EQ(contents(path("same.dxf")), odd + end);
  }
  ASSERT_EQ(run("edit -i --backup odd.dxf --move 0.25,0").code, 0);
  std::string moved = odd;
  moved.replace(moved.find("0.50"), 4, "0.75");
  moved.replace(moved.find("11\r\n1\r\n"), 7, "11\r\n1.25\r\n");
  EXPECT_EQ(contents(path("odd.dxf")), moved + end);
  EXPECT_EQ(contents(path("odd.dxf.bak")), odd + end);
  ASSERT_EQ(run("edit odd.dxf -o repaired.dxf --repair").code, 0);
  EXPECT_NE(contents(path("repaired.dxf")).find("LAYER\r\n2\r\nNONE\r\n"), std::string::npos);
}

// A style, a variable and extended data name blocks, and extended data names a layer, whose
// linetype is needed. No drawing knows of these.
TEST_F(Edit, WhatRecordsNameIsNotPurged) {
  std::string blocks;
  for (const char* name : {"FIRST", "SECOND", "THIRD", "OFHEADER", "OFDATA"})
    blocks +=
        std::string("0 BLOCK|8 0|2 ") + name + "|70 0|10 0|20 0|0 POINT|8 0|10 1|20 2|0 ENDBLK|";
  const auto planWith = [&](const std::string& more, const std::string& block) {
    return pairsOf(
        "0 SECTION|2 HEADER|9 $DIMBLK|1 OFHEADER|0 ENDSEC|0 SECTION|2 TABLES|0 TABLE|2 LTYPE|70 1|"
        "0 LTYPE|2 OFLAYER|70 0|3 |72 65|73 2|40 2|49 1|49 -1|0 ENDTAB|0 TABLE|2 LAYER|70 " +
        more +
        "0 LAYER|2 OFDATA|70 0|62 1|6 OFLAYER|0 ENDTAB|0 TABLE|2 DIMSTYLE|70 1|0 DIMSTYLE|2 MINE|"
        "70 0|5 FIRST|6 SECOND|7 THIRD|0 ENDTAB|0 ENDSEC|0 SECTION|2 BLOCKS|" +
        blocks + block +
        "0 ENDSEC|0 SECTION|2 ENTITIES|0 LINE|8 0|10 0|20 0|11 1|21 1|1001 ACAD|1000 DSTYLE|1002 "
        "{|1070 5|1000 OFDATA|1002 }|1003 OFDATA|0 ENDSEC|0 EOF");
  };
  write("plan.dxf", planWith("2|0 LAYER|2 SPARE|70 0|62 1|6 OFLAYER|",
                             "0 BLOCK|8 0|2 SPARE|70 0|10 0|20 0|0 INSERT|8 SPARE|2 "
                             "FIRST|10 0|20 0|0 ENDBLK|"));
  ASSERT_EQ(edit("--purge").code, 0);
  EXPECT_EQ(contents(path("out.dxf")), planWith("1|", ""));
}

TEST_F(Edit, UnitsOfWhatCannotBeScaledAreRefused) {
  write("plan.dxf", pairsOf("0 SECTION|2 ENTITIES|0 LINE|8 0|10 0|20 0|11 1000|21 0|"
                            "0 3DSOLID|5 A2|8 0|1 data|0 ENDSEC|0 EOF"));
  const std::string convert = "convert --to keep --to-units m --from-units mm plan.dxf out.dxf";
  const Outcome refused = run(convert);
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find("3DSOLID A2 cannot be scaled"), std::string::npos) << refused.err;
  EXPECT_FALSE(fs::exists(path("out.dxf")));
  const Outcome left = run(convert + " --leave-unsupported");
  EXPECT_EQ(left.code, 0);
  EXPECT_NE(left.err.find("3DSOLID"), std::string::npos) << left.err;
  EXPECT_NE(contents(path("out.dxf")).find("11\n1.0\n"), std::string::npos);
}

// Two lines of text, one solid in the model and one in a block.
TEST_F(Edit, TakesRecordsAsAWhole) {
  write("plan.dxf",
        pairsOf("0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 BLOCKS|"
                "0 BLOCK|8 0|2 BOX|70 0|10 0|20 0|0 3DSOLID|5 B1|8 0|1 data|0 ENDBLK|0 ENDSEC|"
                "0 SECTION|2 ENTITIES|0 MTEXT|5 A1|8 0|10 0|20 0|40 2|41 0|1 one\\Ptwo|"
                "0 3DSOLID|5 A2|100 AcDbEntity|8 0|100 AcDbModelerGeometry|62 9|1 data|"
                "0 INSERT|5 A3|8 0|2 BOX|10 0|20 0|0 ENDSEC|0 EOF"));
  for (const Row& t : rows()) {
    const Outcome got = edit(t.text("steps"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
    if (got.code != 0) continue;
    std::istringstream listed(run("list --json out.dxf").out);
    std::string seen;
    for (std::string line; std::getline(listed, line);) {
      const Json ent = Json::parse(line);
      seen += ent["kind"].get<std::string>() + " " + ent["color"].dump() + " ";
    }
    EXPECT_EQ(seen, t.text("then") + std::string(" "));
  }
}

// A sheared insert explodes what it shows; a block of the file has the name for a kind.
TEST_F(Edit, LosesNoUnsupportedRecord) {
  write("plan.dxf",
        pairsOf("0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 BLOCKS|"
                "0 BLOCK|8 0|2 IN|70 0|10 0|20 0|0 IMAGE|5 B1|8 0|0 ENDBLK|"
                "0 BLOCK|8 0|2 *KIMAGE|70 0|10 0|20 0|0 POINT|5 B3|8 0|10 0|20 0|0 ENDBLK|"
                "0 BLOCK|8 0|2 OUT|70 0|10 0|20 0|0 INSERT|5 B2|8 0|2 IN|10 0|20 0|50 30|0 ENDBLK|"
                "0 ENDSEC|0 SECTION|2 ENTITIES|0 INSERT|5 A1|8 0|2 OUT|10 0|20 0|42 3|"
                "0 IMAGE|5 A2|8 0|0 ACAD_TABLE|5 A3|8 0|0 ENDSEC|0 EOF"));
  EXPECT_EQ(edit("--explode --leave-unsupported").code, 1);
  EXPECT_EQ(run("list --json plan.dxf --where kind=image,acad_table").out.find("IMAGE*"),
            std::string::npos);
  EXPECT_EQ(edit("--select kind=image,acad_table --set-color 5").code, 0);
  EXPECT_EQ(edit("--select kind=acad_table --move 1,0").code, 1);
}

TEST_F(Edit, WrongStepsAreRefusedAndNothingIsWritten) {
  for (const Row& t : rows()) {
    const Outcome got = edit(t.text("steps"));
    EXPECT_EQ(got.code, t.whole("code"));
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
    EXPECT_FALSE(fs::exists(path("out.dxf")));
  }
}

TEST_F(Edit, ExplodingKeepsExternalReferencesOrSaysThatItCannot) {
  const std::string drawing =
      "0 SECTION|2 BLOCKS|0 BLOCK|8 0|2 PLAN|70 4|10 0|20 0|1 other.dxf|0 ENDBLK|"
      "0 BLOCK|8 0|2 B|70 0|10 0|20 0|0 INSERT|8 0|2 PLAN|10 1|20 1|50 30|0 ENDBLK|"
      "0 ENDSEC|0 SECTION|2 ENTITIES|0 INSERT|8 0|2 B|10 0|20 0|42 ";
  write("even.dxf", pairsOf(drawing + "1|0 ENDSEC|0 EOF"));
  write("sheared.dxf", pairsOf(drawing + "2|0 ENDSEC|0 EOF"));
  const Outcome even = run("edit even.dxf -o - --explode --explode --undo-check");
  EXPECT_EQ(even.code, 0);
  EXPECT_NE(even.err.find(" 1 entity exploded into 1\n"), std::string::npos) << even.err;
  EXPECT_NE(even.err.find(" 0 entities exploded into 0, 1 entity skipped\n"), std::string::npos)
      << even.err;
  const Outcome sheared = run("edit sheared.dxf -o - --explode");
  EXPECT_EQ(sheared.code, 1);
  EXPECT_NE(sheared.err.find("external reference would be sheared"), std::string::npos)
      << sheared.err;
  EXPECT_EQ(sheared.out, "");
}

TEST_F(Edit, QuietSaysNothingButErrors) {
  EXPECT_EQ(edit("-q --move 1,1 --undo-check").err, "");
  EXPECT_NE(edit("-q --set-linetype DOTS").err, "");
}

TEST_F(Edit, UndoCheckHoldsForEveryKindAndStepAndChangesNothing) {
  const std::string steps =
      " --move 3,-2,1 --rotate 33@5,5 --scale -1.5@1,2 --set-layer NEW --set-color 9 --explode "
      "--explode --join auto --select kind=polyline,line,arc,circle --offset 0.5 --set-layer PAR "
      "--select layer=PAR --delete --remap-layer '*E*=0' --purge";
  const std::string remaps = " --remap-linetype '*=Continuous' --remap-style '*=STANDARD'";
  const struct {
    std::string in, steps;
  } cases[] = {
      {flange, remaps + steps},
      {kinds, remaps + steps},
      {kinds, " --delete"},
      {"plan.dxf", remaps + steps},
      {quotedSample("hatches_ac1015.dxf"), steps},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.in);
    const Outcome plain = run("edit -f " + t.in + " -o one.dxf" + t.steps);
    ASSERT_EQ(plain.code, 0) << plain.err;
    const Outcome got = run("edit -f " + t.in + " -o two.dxf --undo-check" + t.steps);
    ASSERT_EQ(got.code, 0) << got.err;
    EXPECT_NE(got.err.find("undone, which restored the drawing, and redone"), std::string::npos)
        << got.err;
    EXPECT_EQ(contents(path("one.dxf")), contents(path("two.dxf")));
  }
}

TEST_F(Edit, RewordsTextsAndAttributes) {
  write("plan.dxf",
        entitiesOf("AC1015",
                   "0 TEXT|5 A1|8 0|10 0|20 0|40 1|1 Door 1, door 2|0 INSERT|5 A2|8 0|"
                   "66 1|2 B|10 0|20 0|0 ATTRIB|5 A3|8 0|10 0|20 0|40 1|1 door|2 TAG|"
                   "0 SEQEND|5 A4|8 0|0 MTEXT|5 A5|8 0|10 0|20 0|40 1|41 0|1 door\\Pgate|"
                   "0 MTEXT|5 A6|8 1|10 0|20 0|40 1|41 0|1 hall"));
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("steps"));
    const Outcome got = edit(t.text("steps"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
    if (got.code == 0) EXPECT_NE(contents(path("out.dxf")).find(t.text("then")), std::string::npos);
  }
}
