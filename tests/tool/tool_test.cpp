// The tool as scripts see it: exit codes, streams, JSON, files on disk.
#include <sys/stat.h>
#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

const char* const kPipes =
    ";; pipes\n*GAS,gas\nA,1,-.2,[\"GAS\",Signs,S=.1,R=-90,Y=-.05],[BOX,f.shx]\n*DRAIN\nA,2,-1\n";
const char* const kFlatPolyline =
    "0\nSECTION\n2\nENTITIES\n0\nPOLYLINE\n8\n0\n66\n1\n10\n0\n20\n0\n70\n1\n"
    "0\nVERTEX\n8\n0\n10\n0\n20\n0\n0\nVERTEX\n8\n0\n10\n1\n20\n1\n"
    "0\nVERTEX\n8\n0\n10\n3\n20\n3\n0\nSEQEND\n8\n0\n0\nENDSEC\n0\nEOF\n";

}  // namespace

TEST_F(Tool, InfoPrintsOneJsonObjectALine) {
  write("one.dxf", kOneLine);
  const Outcome got = run("info --json one.dxf " + flange);
  ASSERT_EQ(got.code, 0) << got.err;
  std::istringstream lines(got.out);
  std::string first, second;
  std::getline(lines, first);
  std::getline(lines, second);
  const Json one = Json::parse(first);
  EXPECT_EQ(one["entities"], Json({{"LINE", 1}}));
  EXPECT_EQ(one["extents"], Json({{"min", {1, 2, 0}}, {"max", {4, 6, 0}}}));
  EXPECT_EQ(one["error"], nullptr);
  EXPECT_EQ(one["layers"][1], Json({{"name", "A"},
                                    {"color", 7},
                                    {"rgb", "#000000"},
                                    {"lineweight", 0.25},
                                    {"plot", true},
                                    {"linetype", "Continuous"},
                                    {"frozen", false},
                                    {"locked", false},
                                    {"off", false}}));
  const Json sample = Json::parse(second);
  EXPECT_EQ(sample["version"], "AC1009");
  EXPECT_EQ(sample["entities"]["INSERT"], 9);
  EXPECT_EQ(sample["entities"]["ATTRIB"], 8);
  EXPECT_EQ(sample["blocks"].size(), 2u);
}

TEST_F(Tool, InfoForPeopleNamesWhatCounts) {
  const Outcome got = run("info " + flange);
  EXPECT_EQ(got.code, 0);
  for (const char* word : {"AC1009", "OUTLINE", "CENTER", "BOLT", "9 INSERT", "limits", "off"})
    EXPECT_NE(got.out.find(word), std::string::npos) << word;
}

TEST_F(Tool, CheckGoesOnAfterAFailureAndSaysWhere) {
  write("broken.dxf", kOdd);
  write("good.dxf", kOneLine);
  const Outcome got = run("check --strict broken.dxf missing.dxf good.dxf");
  EXPECT_EQ(got.code, 1);
  EXPECT_NE(got.out.find("broken.dxf: error (entity not built)"), std::string::npos) << got.out;
  EXPECT_NE(got.out.find("good.dxf: ok"), std::string::npos) << got.out;
  const Json line = Json::parse(run("check --strict --json broken.dxf").out);
  EXPECT_EQ(line["ok"], false);
  EXPECT_EQ(line["error"]["kind"], "entity not built");
  EXPECT_EQ(line["error"]["line"], 12);
}

// A symbolic link to itself exists but cannot be opened.
TEST_F(Tool, SaysWhyAnInputCannotBeRead) {
  write("good.dxf", kOneLine);
  fs::create_directory(path("folder"));
  fs::create_symlink("loop", path("loop"));
  for (const Row& t : rows()) {
    const std::string input = t.text("input");
    for (const std::string& command :
         {"info " + input, "check " + input, "convert -f " + input + " out.dxf",
          "import -f good.dxf " + input + " -o out.dxf", "edit -f " + input + " -o out.dxf --purge",
          "render -f " + input + " -o out.svg", "xrefs list " + input, "linetypes " + input,
          "convert -f --linetypes " + input + " good.dxf out.dxf",
          "hatch -f " + input + " -o out.dxf --pattern ANSI31 --boundary 0,0 1,0 1,1"}) {
      const Outcome got = run(command);
      EXPECT_EQ(got.code, 1) << command;
      EXPECT_NE((got.out + got.err).find(t.text("message")), std::string::npos)
          << command << got.err;
    }
    for (const char* command : {"info", "check", "xrefs list", "linetypes"}) {
      const Json line = Json::parse(run(command + (" --json " + input)).out);
      EXPECT_EQ(line["error"]["kind"], t.text("kind")) << command;
    }
  }
  write("empty.dxf", "");
  for (const char* file : {"missing", "empty.dxf"}) {
    const Json line = Json::parse(run(std::string("info --json --strict ") + file).out);
    for (const char* table : {"layers", "linetypes", "styles"})
      EXPECT_EQ(line[table], Json::array()) << file;
  }
}

TEST_F(Tool, TellsWhatReadingLostAndRepaired) {
  write("odd.dxf", kOdd);
  const Json line = Json::parse(run("check --json odd.dxf").out);
  EXPECT_EQ(line["ok"], true);
  ASSERT_EQ(line["report"].size(), 1u) << line.dump();
  EXPECT_EQ(line["report"][0]["code"], "entity dropped");
  EXPECT_EQ(line["report"][0]["severity"], "loss");
  EXPECT_EQ(line["report"][0]["sample"], "LINE");
  EXPECT_EQ(line["report"][0]["line"], 12);
  const Outcome converted = run("convert odd.dxf out.dxf");
  EXPECT_EQ(converted.code, 0);
  EXPECT_NE(converted.err.find("loss: entity dropped 'LINE' (1 time, first at line 12)"),
            std::string::npos)
      << converted.err;
  EXPECT_EQ(Json::parse(run("info --json out.dxf").out)["entities"]["SOLID"], 1);
  EXPECT_EQ(run("convert -q odd.dxf two.dxf").err, "");
  EXPECT_EQ(run("convert --strict odd.dxf three.dxf").code, 1);
  EXPECT_FALSE(fs::exists(path("three.dxf")));
}

TEST_F(Tool, ReadsEncodingsAndUnitsAsTold) {
  const std::string page = "\xC4\xE3\xBA\xC3";  // "hello" in Chinese, under code page 936
  write("a.dxf",
        "0\nSECTION\n2\nHEADER\n9\n$DWGCODEPAGE\n3\nANSI_1252\n9\n$INSUNITS\n70\n4\n0\nENDSEC\n"
        "0\nSECTION\n2\nENTITIES\n0\nPOINT\n8\n" +
            page + "\n10\n0\n20\n0\n0\nENDSEC\n0\nEOF\n");
  const auto layer = [&](const std::string& options) {
    return Json::parse(run("info --json a.dxf" + options).out)["layers"].back()["name"];
  };
  EXPECT_EQ(layer(""), "\xC3\x84\xC3\xA3\xC2\xBA\xC3\x83") << "as declared";
  EXPECT_EQ(layer(" --encoding gbk"), "\xE4\xBD\xA0\xE5\xA5\xBD");
  EXPECT_EQ(run("info a.dxf --encoding klingon").code, 2);
  EXPECT_EQ(Json::parse(run("info --json a.dxf").out)["units"], "mm");
}

TEST_F(Tool, ExitCodes) {
  write("broken.dxf", kBroken);
  write("good.dxf", kOneLine);
  write("a.lin", kPipes);
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  fs::create_symlink("loop", path("loop"));
  for (const Row& t : rows()) {
    const Outcome got = run(t.text("arguments"));
    EXPECT_EQ(got.code, t.whole("code")) << got.out << got.err;
  }
  EXPECT_EQ(contents(path("broken.dxf")), kBroken) << "an existing file was touched";
  EXPECT_FALSE(fs::exists(path("out.dxf")));
  EXPECT_TRUE(fs::exists(path("o.dxf")));
  EXPECT_FALSE(leftovers());
}

// Names may contain terminal control sequences.
TEST_F(Tool, NothingInADrawingMovesTheCursor) {
  const std::string evil = "A\x1B[2J\xC2\x9B^Jvek0: forged";
  write("evil.dxf", "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n" + evil +
                        "\n10\n1\n20\n2\n11\n4\n21\n6\n" + "0\nINSERT\n8\n0\n2\n" + evil +
                        "\n10\n0\n20\n0\n0\nENDSEC\n0\nEOF\n");
  fs::copy(path("evil.dxf"), path("\x1B[2J\nvek0: forged.dxf"));
  for (const char* arguments :
       {"info evil.dxf", "check evil.dxf", "convert evil.dxf out.dxf", "xrefs list *forged.dxf",
        "render evil.dxf -o out.svg", "info *forged.dxf", "check missing*[2J*",
        "convert *forged.dxf out.dxf", "'--\x1B[2J'"}) {
    SCOPED_TRACE(arguments);
    const Outcome got = run(arguments);
    const std::string all = got.out + got.err;
    EXPECT_TRUE(std::none_of(all.begin(), all.end(),
                             [](char c) { return c != '\n' && c >= 0 && c < ' '; }));
    EXPECT_EQ(all.find("\xC2\x9B"), std::string::npos);
    EXPECT_EQ(("\n" + all).find("\nvek0: forged"), std::string::npos) << all;
  }
}

TEST_F(Tool, ALostStandardOutputIsAFailure) {
  write("good.dxf", kOneLine);
  for (const char* arguments :
       {"info good.dxf", "check --json good.dxf", "hatches", "xrefs list good.dxf"})
    EXPECT_EQ(run(arguments + std::string(" >/dev/full; exit $?; :")).code, 3) << arguments;
}

TEST_F(Tool, AnUnknownVerbSuggestsTheNearest) {
  EXPECT_NE(run("cnvert a b").err.find("did you mean 'convert'"), std::string::npos);
}

TEST_F(Tool, ConvertKeepsWhatInfoTells) {
  ASSERT_EQ(run("convert " + kinds + " copy.dxf").code, 0);
  Json before = Json::parse(run("info --json " + kinds).out);
  Json after = Json::parse(run("info --json copy.dxf").out);
  for (const char* key : {"entities", "extents", "blocks"})
    EXPECT_EQ(before[key], after[key]) << key;
}

TEST_F(Tool, StandardStreamsCarryTheSameBytes) {
  ASSERT_EQ(run("convert " + kinds + " copy.dxf").code, 0);
  const Outcome piped = run("convert - -", kinds);
  EXPECT_EQ(piped.code, 0) << piped.err;
  EXPECT_EQ(piped.out, contents(path("copy.dxf")));
}

TEST_F(Tool, SaveOptionsReachTheWriter) {
  ASSERT_EQ(run("convert --no-tables --flatten --visible-only " + kinds + " a.dxf").code, 0);
  ASSERT_EQ(run("convert --plain " + kinds + " b.dxf").code, 0);
  EXPECT_EQ(contents(path("a.dxf")).rfind("  0\nSECTION\n  2\nBLOCKS\n", 0), 0u);
  EXPECT_EQ(contents(path("a.dxf")).find("FROZEN"), std::string::npos);
  EXPECT_NE(contents(path("b.dxf")).find("FROZEN"), std::string::npos);
  EXPECT_NE(contents(path("b.dxf")).find("\n7.500000\n"), std::string::npos);
  EXPECT_EQ(contents(path("b.dxf")).find("$HANDSEED"), std::string::npos);
}

TEST_F(Tool, InterruptionRemovesTheUnfinishedOutput) {
  // A pipe without a writer blocks the tool after it has begun its output.
  const std::string command = "cd '" + path("").string() +
                              "' && mkfifo pipe && { \"$VEK0_TOOL\" convert pipe out.dxf & } && "
                              "for i in $(seq 400); do ls .*.tmp >.seen 2>/dev/null && break; "
                              "sleep 0.05; done; kill -TERM $!; wait $!";
  const int status = std::system(command.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 128 + 15);
  EXPECT_NE(contents(path(".seen")), "");
  EXPECT_FALSE(leftovers());
}

TEST_F(Tool, ForceKeepsLinksAndPermissions) {
  write("real.dxf", "old");
  fs::permissions(path("real.dxf"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real.dxf", path("link.dxf"));
  ASSERT_EQ(run("convert -f " + flange + " link.dxf").code, 0);
  EXPECT_TRUE(fs::is_symlink(path("link.dxf")));
  EXPECT_NE(contents(path("real.dxf")), "old");
  EXPECT_EQ(fs::status(path("real.dxf")).permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Tool, WritesUnderWhateverNameItIsGiven) {
  fs::create_symlink("made.dxf", path("dangling.dxf"));
  const std::string longest = std::string(251, 'x') + ".dxf";
  for (const std::string& name :
       {std::string("dangling.dxf"), std::string("caf\xE9.dxf"), longest}) {
    EXPECT_EQ(run("convert " + flange + " " + name).code, 0) << name;
    EXPECT_EQ(run("check " + name).code, 0) << name;
  }
  EXPECT_TRUE(fs::is_symlink(path("dangling.dxf")) && fs::exists(path("made.dxf")));
}

TEST_F(Tool, ForceReplacesAndImportMerges) {
  write("good.dxf", kOneLine);
  write("out.dxf", "old");
  ASSERT_EQ(run("import " + flange + " good.dxf good.dxf -f -o out.dxf").code, 0);
  const Json merged = Json::parse(run("info --json out.dxf").out);
  EXPECT_EQ(merged["entities"]["LINE"], 4);
  EXPECT_EQ(merged["entities"]["INSERT"], 9);
  EXPECT_EQ(run("check --quiet out.dxf").out, "");
  write("broken.dxf", kBroken);
  const Outcome broken = run("import good.dxf - -o two.dxf", "broken.dxf");
  EXPECT_EQ(broken.code, 1);
  EXPECT_NE(broken.err.find("is skipped"), std::string::npos) << broken.err;
  EXPECT_EQ(run("import good.dxf - -o three.dxf", "good.dxf").code, 0);
  write("sheet.dxf", "0\nSECTION\n2\nENTITIES\n0\nPOINT\n67\n1\n10\n0\n20\n0\n0\nENDSEC\n0\nEOF\n");
  const Outcome lost = run("import good.dxf sheet.dxf -o four.dxf");
  EXPECT_NE(lost.err.find("sheet.dxf: lost or changed in the output"), std::string::npos)
      << lost.err;
  EXPECT_EQ(Json::parse(run("info --json three.dxf").out)["entities"]["LINE"], 2);
}

TEST_F(Tool, HatchesAreas) {
  write("one.dxf", kOneLine);
  ASSERT_EQ(run("hatch one.dxf -o h.dxf --layer FILL --boundary 0,0 10,0 1e1,-5.5").code, 0);
  const Json hatched = Json::parse(run("info --json h.dxf").out);
  EXPECT_EQ(hatched["entities"]["HATCH"], 1);
  EXPECT_NE(hatched["layers"].dump().find("\"FILL\""), std::string::npos);
  EXPECT_EQ(hatched["extents"]["min"][1].get<double>() < -5, true);
  ASSERT_EQ(run("hatch " + kinds + " -o k.dxf --pattern SOLID --closed-polylines").code, 0);
  EXPECT_EQ(Json::parse(run("info --json k.dxf").out)["entities"]["HATCH"], 1);
  const Outcome dense = run("hatch one.dxf -o d.dxf --scale 1e-6 --boundary 0,0 10,0 10,5");
  EXPECT_EQ(dense.code, 1);
  EXPECT_NE(dense.err.find("too dense"), std::string::npos) << dense.err;
  EXPECT_FALSE(fs::exists(path("d.dxf")));
}

// Lines 0.125 * 0.05 units apart: 2263 of them.
TEST_F(Tool, SaysWhenHatchesMakeTheOutputLarge) {
  write("fine.dxf",
        "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\n"
        "HATCH\n8\n0\n2\nANSI31\n70\n0\n76\n1\n41\n0.05\n91\n1\n92\n2\n72\n0\n73\n1\n93\n3\n"
        "10\n0\n20\n0\n10\n20\n20\n0\n10\n0\n20\n20\n97\n0\n0\nENDSEC\n0\nEOF\n");
  EXPECT_NE(run("convert fine.dxf lines.dxf").err.find("--hatch outline"), std::string::npos);
  EXPECT_EQ(run("convert -q fine.dxf quiet.dxf").err, "");
  const Outcome outlined = run("convert --hatch outline fine.dxf small.dxf");
  EXPECT_NE(outlined.err.find("loss: hatch as outline 'ANSI31' (1 time"), std::string::npos);
  EXPECT_EQ(outlined.err.find("times as large"), std::string::npos) << outlined.err;
  EXPECT_EQ(Json::parse(run("info --json small.dxf").out)["entities"], Json({{"POLYLINE", 1}}));
  EXPECT_LT(fs::file_size(path("small.dxf")), fs::file_size(path("lines.dxf")) / 50);
}

TEST_F(Tool, HatchRefusesBoundariesWithoutArea) {
  write("one.dxf", kOneLine);
  for (const Row& t : rows()) {
    const Outcome got = run(std::string("hatch one.dxf -o h.dxf --boundary ") + t.text("points"));
    EXPECT_EQ(got.code, 2);
    EXPECT_NE(got.err.find("encloses no area"), std::string::npos) << got.err;
    EXPECT_FALSE(fs::exists(path("h.dxf")));
  }
  write("flat.dxf", kFlatPolyline);
  const Outcome flat = run("hatch flat.dxf -o h.dxf --closed-polylines");
  EXPECT_EQ(flat.code, 1);
  EXPECT_NE(flat.err.find("no closed polyline to hatch"), std::string::npos) << flat.err;
  EXPECT_FALSE(fs::exists(path("h.dxf")));
  // Two triangles on one vertex, of opposite directions: their areas must not cancel.
  EXPECT_EQ(run("hatch one.dxf -o h.dxf --boundary 0,0 1,0 1,1 0,0 -1,0 -1,1").code, 0);
}

TEST_F(Tool, HatchesListsTheCatalogue) {
  const Json all = Json::parse(run("hatches --json").out);
  ASSERT_EQ(all.size(), 68u);
  EXPECT_EQ(all[1]["name"], "ANSI31");
  for (const Json& pattern : all) {
    for (const Json& family : pattern["families"]) {
      const std::string angle = family["angle"].dump();
      EXPECT_LE(angle.size(), 14u)
          << "noise in the degrees of " << pattern["name"] << ": " << angle;
    }
  }
  EXPECT_EQ(all[1]["families"][0]["angle"].dump(), "45.0");
  EXPECT_NE(run("hatches").out.find("BRICK             3  Brick"), std::string::npos);
}

TEST_F(Tool, LinetypesListsWhatAFileDefines) {
  write("pipes.lin", kPipes);
  const Outcome got = run("linetypes --json pipes.lin missing.lin");
  EXPECT_EQ(got.code, 1);
  const Json line = Json::parse(got.out.substr(0, got.out.find('\n')));
  EXPECT_EQ(line["ok"], true);
  EXPECT_EQ(line["error"], nullptr);
  ASSERT_EQ(line["linetypes"].size(), 2u);
  const Json& gas = line["linetypes"][0];
  EXPECT_EQ(gas["name"], "GAS");
  EXPECT_EQ(gas["description"], "gas");
  EXPECT_EQ(gas["length"], 1.2);
  ASSERT_EQ(gas["elements"].size(), 3u);
  EXPECT_EQ(gas["elements"][1], -0.2);
  EXPECT_EQ(gas["elements"][2], Json({{"text", "GAS"},
                                      {"style", "Signs"},
                                      {"scale", 0.1},
                                      {"rotation", 270.0},
                                      {"offset", {0, -0.05}}}));
  EXPECT_EQ(line["report"][0]["code"], "shape-left-out");
  EXPECT_EQ(line["report"][0]["line"], 3);
  const Json missing = Json::parse(got.out.substr(got.out.find('\n')));
  EXPECT_EQ(missing["ok"], false);
  EXPECT_NE(missing["error"], nullptr);

  const Outcome text = run("linetypes pipes.lin");
  EXPECT_EQ(text.code, 0);
  for (const char* word : {"2 linetypes", "DRAIN", "2.0 -1.0", "\"GAS\"", "shape-left-out 'BOX'"})
    EXPECT_NE(text.out.find(word), std::string::npos) << word;
}

TEST_F(Tool, LinetypesSavesWhatItRead) {
  write("pipes.lin", kPipes);
  ASSERT_EQ(run("linetypes pipes.lin --save out.lin").code, 0);
  EXPECT_EQ(contents(path("out.lin")),
            "*GAS,gas\nA,1.0,-0.2,[\"GAS\",Signs,S=0.100000,R=270.000000,X=0.000000,Y=-0.050000]\n"
            "*DRAIN,\nA,2.0,-1.0\n");
  const Outcome piped = run("linetypes - --save -", path("pipes.lin").string());
  EXPECT_EQ(piped.out, contents(path("out.lin")));
  EXPECT_EQ(run("linetypes pipes.lin --save out.lin").code, 3);
  EXPECT_EQ(run("linetypes -q -f out.lin --save out.lin").code, 0);
  EXPECT_EQ(piped.out, contents(path("out.lin"))) << "a file may be rewritten in its place";
}

TEST_F(Tool, ConvertScalesToAUnit) {
  write("bare.dxf", kOneLine);
  const std::string header = "0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n1\n9\n$LTSCALE\n40\n2\n";
  const std::string base = "9\n$INSBASE\n10\n1\n20\n2\n30\n4\n";
  write("inches.dxf", header + base + "0\nENDSEC\n" + kOneLine);
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("convert -f ") + t.text("options") + " out.dxf").code, 0);
    const Json box = Json::parse(run("info --json out.dxf").out)["extents"];
    EXPECT_NEAR(box["min"][0].get<double>(), 1 * t.real("factor"), 1e-9 * t.real("factor"));
    EXPECT_NEAR(box["max"][1].get<double>(), 6 * t.real("factor"), 1e-9 * t.real("factor"));
  }
  ASSERT_EQ(run("convert -f --to-units mm inches.dxf out.dxf").code, 0);
  EXPECT_NE(contents(path("out.dxf")).find("$LTSCALE\n 40\n50.8\n"), std::string::npos);
  EXPECT_NE(contents(path("out.dxf")).find("$INSBASE\n 10\n25.4\n 20\n50.8\n 30\n101.6\n"),
            std::string::npos);
  const Outcome unknown = run("convert -f --to-units mm bare.dxf none.dxf");
  EXPECT_EQ(unknown.code, 1);
  EXPECT_NE(unknown.err.find("--from-units"), std::string::npos) << unknown.err;
  EXPECT_FALSE(fs::exists(path("none.dxf")));
  EXPECT_EQ(run("convert -f --to-units furlong inches.dxf out.dxf").code, 2);
  EXPECT_EQ(run("convert -f --from-units mm inches.dxf out.dxf").code, 2);
}

TEST_F(Tool, ConvertAddsLinetypes) {
  write("pipes.lin", kPipes);
  write("more.lin", "*Gas,another\nA,9\n*MORE\nA,3\n");
  write("good.dxf", kOneLine);
  const Outcome got = run("convert --linetypes pipes.lin --linetypes more.lin good.dxf out.dxf");
  ASSERT_EQ(got.code, 0) << got.err;
  EXPECT_NE(got.err.find("shape-left-out"), std::string::npos) << got.err;
  EXPECT_NE(got.err.find("'Signs'"), std::string::npos) << got.err;
  const Json line = Json::parse(run("info --json out.dxf").out);
  std::string names = line["linetypes"].dump();
  for (const char* name : {"GAS", "DRAIN", "MORE"})
    EXPECT_NE(names.find(name), std::string::npos) << names;
  EXPECT_EQ(names.find("Gas"), std::string::npos) << "the first of a name stays";
  EXPECT_NE(line["styles"].dump().find("Signs", 0), std::string::npos) << line["styles"].dump();
  EXPECT_EQ(run("convert -q -f --linetypes pipes.lin good.dxf out.dxf").err, "");
}

// Shells read these files; every verb and option is in them.
TEST_F(Tool, PrintsItsManualAndCompletions) {
  for (const char* made : {"man", "completion bash", "completion zsh", "completion fish"}) {
    const Outcome got = run(made);
    EXPECT_EQ(got.code, 0) << got.err;
    for (const char* word : {"xrefs", "undo", "files", "closed"})
      EXPECT_NE(got.out.find(word), std::string::npos) << made << ' ' << word;
  }
  EXPECT_EQ(run("completion csh").code, 2);
  const std::string help = run("--help-all").out;
  for (const char* leftover : {"{false}", "[Option Group: "})
    EXPECT_EQ(help.find(leftover), std::string::npos) << leftover;
}
