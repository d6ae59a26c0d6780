// References as used by scripts: a sheet with two plans, one of which shows a third.

#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

// References to NAME=PATH each, inserted once at the origin, and a line on LAYER.
std::string drawing(const std::vector<std::pair<std::string, std::string>>& references,
                    const std::string& layer = "0") {
  std::string blocks, inserts;
  for (const auto& [name, path] : references) {
    blocks += "0 BLOCK|8 0|2 " + name + "|70 4|10 0|20 0|3 " + name + "|1 " + path + "|0 ENDBLK|";
    inserts += "0 INSERT|8 0|2 " + name + "|10 0|20 0|";
  }
  return pairsOf("0 SECTION|2 BLOCKS|" + blocks + "0 ENDSEC|0 SECTION|2 ENTITIES|" + inserts +
                 "0 LINE|8 " + layer + "|10 0|20 0|11 10|21 5|0 ENDSEC|0 EOF");
}

class Xrefs : public Tool {
 protected:
  void SetUp() override {
    Tool::SetUp();
    for (const char* folder : {"parts", "library", "else"}) fs::create_directory(path(folder));
    write("sheet.dxf", drawing({{"HOUSE", "parts\\house.dxf"}, {"TREE", "C:\\lib\\Tree.dwg"}}));
    write("parts/house.dxf", drawing({{"BED", "bed.dxf"}}, "WALLS"));
    write("parts/bed.dxf", drawing({}, "BEDS"));
    write("library/tree.dxf", drawing({}, "CROWN"));
    write("else/tree.dxf", drawing({}, "CROWN"));
  }

  Json json(const std::string& arguments) {
    const Outcome got = run("xrefs " + arguments + " --json");
    return Json::parse(got.out, nullptr, false);
  }
  static Json byName(const Json& line, const std::string& name) {
    for (const Json& row : line["references"])
      if (row["name"] == name) return row;
    return nullptr;
  }
  Json info(const std::string& file) { return Json::parse(run("info --json " + file).out); }
  std::vector<std::string> namesOf(const Json& rows) {
    std::vector<std::string> names;
    for (const Json& row : rows) names.push_back(row["name"]);
    return names;
  }
  std::string picture(const std::string& options) {
    const Outcome got = run("render -f -o out.svg --size 400x300 " + options);
    EXPECT_EQ(got.code, 0) << got.err;
    return contents(path("out.svg"));
  }
};

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

using Names = std::vector<std::string>;

}  // namespace

TEST_F(Xrefs, ListTellsWhatBecameOfEach) {
  const Json line = json("list sheet.dxf --search library");
  EXPECT_EQ(line["file"], "sheet.dxf");
  EXPECT_EQ(line["report"], Json::array());
  ASSERT_EQ(line["references"].size(), 3u) << line;
  const Json house = byName(line, "HOUSE"), bed = byName(line, "BED"), tree = byName(line, "TREE");
  EXPECT_EQ(house["path"], "parts\\house.dxf");
  EXPECT_EQ(house["status"], "loaded");
  EXPECT_EQ(house["inserts"], 1);
  EXPECT_EQ(house["shows"], Json({"BED"}));
  EXPECT_EQ(house["file"], fs::canonical(path("parts/house.dxf")).string());
  EXPECT_EQ(bed["inserts"], 0) << "what a reference inserts counts nowhere";
  EXPECT_EQ(tree["file"], fs::canonical(path("library/tree.dxf")).string());
}

TEST_F(Xrefs, ListOfWhatIsMissingComplainsAndGoesOn) {
  const Outcome got = run("xrefs list sheet.dxf");
  EXPECT_EQ(got.code, 0);
  EXPECT_TRUE(has(got.out, "HOUSE (parts\\house.dxf): loaded, 1 insert")) << got.out;
  EXPECT_TRUE(has(got.out, "TREE (C:\\lib\\Tree.dwg): missing, 1 insert")) << got.out;
  EXPECT_TRUE(has(got.err, "reference missing 'TREE: C:\\lib\\Tree.dwg'")) << got.err;
  EXPECT_EQ(run("-q xrefs list sheet.dxf").err, "");
}

TEST_F(Xrefs, TreeShowsNesting) {
  EXPECT_EQ(run("xrefs tree sheet.dxf --search library").out,
            "sheet.dxf\n"
            "  HOUSE (parts\\house.dxf)\n"
            "    BED (bed.dxf)\n"
            "  TREE (C:\\lib\\Tree.dwg)\n");
  const Json line = json("tree sheet.dxf");
  EXPECT_EQ(line["references"][0]["references"][0]["name"], "BED");
  EXPECT_EQ(line["references"][1]["status"], "missing");
}

// Every drawing refers to the next one twice, so the number of paths doubles with every level.
TEST_F(Xrefs, TreeOfDiamondsEndsSoon) {
  constexpr int kLevels = 40;
  for (int i = 0; i < kLevels; ++i) {
    const std::string left = "l" + std::to_string(i + 1), right = "r" + std::to_string(i + 1);
    const auto next = drawing({{left, left + ".dxf"}, {right, right + ".dxf"}});
    write("l" + std::to_string(i) + ".dxf", next);
    write("r" + std::to_string(i) + ".dxf", next);
  }
  write("l40.dxf", drawing({}));
  write("r40.dxf", drawing({}));
  const Outcome got = run("xrefs tree l0.dxf");
  EXPECT_EQ(got.code, 0) << got.err;
  EXPECT_LT(got.out.size(), 40000u);
  EXPECT_TRUE(has(got.out, "r2 (r2.dxf), see above\n"));
  EXPECT_TRUE(has(got.out, "r40 (r40.dxf)\n"));
}

TEST_F(Xrefs, CheckFailsWhereAReferenceDoes) {
  write("self.dxf", drawing({{"SELF", "self.dxf"}}));
  write("out.dxf", drawing({{"OUT", "parts/../../else.dxf"}}));
  write("folder.dxf", drawing({{"FOLDER", "parts"}}));
  write("device.dxf", drawing({{"DEVICE", "/dev/zero"}}));
  write("system.dxf", drawing({{"SYSTEM", "/etc/passwd"}}));
  write("text.dxf", drawing({{"TEXT", "kBroken.dxf"}}));
  write("kBroken.dxf", kBroken);
  write("there.dxf", drawing({{"BACK", "back.dxf"}}));
  write("back.dxf", drawing({{"THERE", "there.dxf"}}));
  std::string overlay = drawing({{"BED", "parts/bed.dxf"}});
  overlay.replace(overlay.find("70\n4"), 4, "70\n12");
  write("overlay.dxf", overlay);
  write("above.dxf", drawing({{"BELOW", "overlay.dxf"}}));
  for (const Row& t : rows()) {
    const Outcome got = run(std::string("xrefs check ") + t.text("arguments"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_TRUE(has(got.out, t.text("said"))) << got.out;
  }
  EXPECT_EQ(json("check sheet.dxf")["ok"], false);
  EXPECT_EQ(json("check sheet.dxf --search library")["ok"], true);
}

TEST_F(Xrefs, AllowOpensWhatSearchDoesNot) {
  const std::string other = fs::canonical(path("else")).string();
  fs::create_directory(path("job"));
  write("job/plan.dxf", drawing({{"TREE", "../else/tree.dxf"}}));
  EXPECT_TRUE(has(run("xrefs check job/plan.dxf").out, "reference forbidden"));
  EXPECT_EQ(run("xrefs check job/plan.dxf --allow else").code, 0);
  EXPECT_EQ(run("xrefs check job/plan.dxf --search else").code, 0);
  EXPECT_EQ(run("xrefs check job/plan.dxf --search lost").code, 2) << "no such folder";
}

TEST_F(Xrefs, BoundDrawingStandsAlone) {
  const Outcome got = run("xrefs bind sheet.dxf --all --search library -o whole.dxf");
  ASSERT_EQ(got.code, 0) << got.err;
  const Json whole = info("whole.dxf");
  EXPECT_EQ(whole["references"], Json::array());
  EXPECT_EQ(namesOf(whole["blocks"]), (Names{"HOUSE$0$BED", "HOUSE", "TREE"}));
  EXPECT_EQ(whole["entities"]["INSERT"], 2);
  const std::string before = picture("sheet.dxf --search library");
  for (const char* layer : {"WALLS", "BEDS", "CROWN"}) EXPECT_TRUE(has(before, layer)) << layer;
  EXPECT_TRUE(has(picture("whole.dxf"), "HOUSE$0$WALLS"));
}

TEST_F(Xrefs, BindWritesNothingWhenOneCannotBeBound) {
  for (const Row& t : rows()) {
    const Outcome got = run(std::string("xrefs bind sheet.dxf -o out.dxf ") + t.text("arguments"));
    EXPECT_EQ(got.code, t.whole("code"));
    EXPECT_TRUE(has(got.err, t.text("said"))) << got.err;
    EXPECT_FALSE(fs::exists(path("out.dxf")));
  }
  const Outcome some = run("xrefs bind sheet.dxf 'HO*' -o out.dxf");
  EXPECT_EQ(some.code, 0);
  EXPECT_TRUE(has(some.err, "some references are not shown:\n    loss: reference missing"))
      << some.err;
  EXPECT_EQ(namesOf(info("out.dxf")["references"]), Names{"TREE"});
}

TEST_F(Xrefs, DetachTakesWhatOnlyItShows) {
  ASSERT_EQ(run("xrefs detach sheet.dxf HOUSE -o out.dxf").code, 0);
  EXPECT_EQ(namesOf(info("out.dxf")["references"]), Names{"TREE"});
  EXPECT_FALSE(has(contents(path("out.dxf")), "HOUSE"));
  EXPECT_FALSE(has(contents(path("out.dxf")), "BED"));
  ASSERT_EQ(run("xrefs detach sheet.dxf --all -o bare.dxf").code, 0) << "missing ones too";
  const Json bare = info("bare.dxf");
  EXPECT_EQ(bare["references"], Json::array());
  EXPECT_EQ(bare["entities"], Json({{"LINE", 1}}));
}

TEST_F(Xrefs, RepathChangesPathsAndNothingElse) {
  for (const Row& t : rows()) {
    const Outcome got =
        run(std::string("xrefs repath -f sheet.dxf -o out.dxf ") + t.text("arguments"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    if (got.code != 0) {
      EXPECT_TRUE(has(got.err, t.text("paths"))) << got.err;
      continue;
    }
    std::string paths;
    const Json out = info("out.dxf");
    for (const Json& row : out["references"])
      paths += (paths.empty() ? "" : " ") + row["path"].get<std::string>();
    EXPECT_EQ(paths, t.text("paths"));
  }
}

TEST_F(Xrefs, AttachedDrawingIsShownWhereItWasPut) {
  write("plan.dxf", drawing({}));
  const std::string attach =
      "xrefs attach plan.dxf --path library/tree.dxf --at 100,50 --scale 2 "
      "--rotate 90 ";
  const Outcome got = run(attach + "-o out.dxf");
  ASSERT_EQ(got.code, 0) << got.err;
  const Json out = info("out.dxf");
  EXPECT_EQ(out["references"], Json::parse("[{\"name\":\"tree\",\"path\":\"library/tree.dxf\","
                                           "\"overlay\":false}]"));
  EXPECT_EQ(out["entities"]["INSERT"], 1);
  // The tree's line runs from 0,0 to 10,5. Rotated and scaled by 2, it runs from 100,50 to 90,70;
  // with its end as base point, from 110,30 to 100,50.
  ASSERT_EQ(run(attach + "--base 10,5 -o based.dxf").code, 0);
  const std::pair<const char*, PNT_2D> kExpected[] = {
      {"out.dxf", PNT_2D(100, 70)},
      {"based.dxf", PNT_2D(110, 50)},
  };
  for (const auto& [file, max] : kExpected) {
    ASSERT_EQ(run(std::string("xrefs bind ") + file + " tree -f -o bound.dxf").code, 0);
    const Json box = info("bound.dxf")["extents"];
    EXPECT_EQ(box["min"], Json({0, 0, 0}));
    EXPECT_NEAR(box["max"][0].get<double>(), max.x, 1e-9);
    EXPECT_NEAR(box["max"][1].get<double>(), max.y, 1e-9);
  }
  EXPECT_EQ(run("xrefs attach out.dxf --path tree.dxf -o again.dxf").code, 1)
      << "the name is taken";
  EXPECT_EQ(run("xrefs attach plan.dxf --path lost.dxf --overlay -o lost.dxf").code, 0);
  EXPECT_EQ(info("lost.dxf")["references"][0]["overlay"], true);
  EXPECT_EQ(run("xrefs attach plan.dxf --path a.dxf --at 1 -o b.dxf").code, 2);
}

TEST_F(Xrefs, RenderShowsReferencesUnlessToldNotTo) {
  const std::string with = picture("sheet.dxf --search library");
  for (const char* layer : {"HOUSE|WALLS", "BED|BEDS", "TREE|CROWN"})
    EXPECT_TRUE(has(with, layer)) << layer;
  const Outcome some = run("render -f sheet.dxf -o out.svg");
  EXPECT_EQ(some.code, 0);
  EXPECT_TRUE(has(some.err, "reference missing 'TREE")) << some.err;
  EXPECT_TRUE(has(contents(path("out.svg")), "HOUSE|WALLS"));
  const Outcome none = run("render -f sheet.dxf -o out.svg --no-xrefs");
  EXPECT_EQ(none.err, "");
  EXPECT_FALSE(has(contents(path("out.svg")), "WALLS"));
}

TEST_F(Xrefs, InfoListsReferencesWithoutLookingForThem) {
  EXPECT_EQ(namesOf(info("sheet.dxf")["references"]), (Names{"HOUSE", "TREE"}));
  EXPECT_TRUE(has(run("info sheet.dxf").out, "HOUSE: parts\\house.dxf\n"));
}

TEST_F(Xrefs, TheSampleResolves) {
  const std::string site = quotedSample("site.dxf");
  const Outcome strict = run("--strict xrefs check " + site);
  EXPECT_EQ(strict.code, 0) << strict.out << strict.err;
  EXPECT_TRUE(has(strict.out, "ok, 3 references\n")) << strict.out;
}

// A drawing on the standard input has no folder: only named folders count.
TEST_F(Xrefs, StandardInputHasNoFolder) {
  EXPECT_EQ(run("xrefs check -", "sheet.dxf").code, 1);
  EXPECT_EQ(run("xrefs check - --search . --search library", "sheet.dxf").code, 0);
}

TEST_F(Xrefs, ABrokenDrawingIsSaid) {
  write("broken.dxf", kBroken);
  const Outcome got = run("--strict xrefs list broken.dxf sheet.dxf");
  EXPECT_EQ(got.code, 1);
  EXPECT_TRUE(has(got.err, "broken.dxf: ")) << got.err;
  EXPECT_TRUE(has(got.out, "sheet.dxf: 3 references")) << got.out;
}
