// Many drawings in one call, and what becomes of them as JSON.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

std::string drawingOfLine(int end) {
  return entitiesOf("AC1009", "0 LINE|8 A|10 0|20 0|11 " + std::to_string(end) + "|21 1");
}

class Batch : public Tool {
 protected:
  void SetUp() override {
    Tool::SetUp();
    write("broken.dxf", kBroken);
    write("good.dxf", drawingOfLine(1));
    fs::create_directory(path("other"));
    write("other/good.dxf", drawingOfLine(2));
    write("rich.dxf", pairsOf("0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|"
                              "2 ENTITIES|0 LINE|8 A|370 50|10 0|20 0|11 1|21 1|0 ENDSEC|0 EOF"));
    write("list.txt", "good.dxf\r\n\nrich.dxf\n");
  }
};

}  // namespace

TEST_F(Batch, GoesOnAfterAFailure) {
  const Outcome got = run("render broken.dxf good.dxf rich.dxf --format png --out-dir pictures");
  EXPECT_EQ(got.code, 1) << got.err;
  EXPECT_NE(got.err.find("broken.dxf"), std::string::npos);
  EXPECT_NE(got.err.find("3 drawings, 1 failed"), std::string::npos);
  EXPECT_TRUE(fs::exists(path("pictures/good.png")));
  EXPECT_FALSE(fs::exists(path("pictures/broken.png")));
  EXPECT_FALSE(leftovers());
}

TEST_F(Batch, IsTheSameWithAnyNumberOfWorkers) {
  std::string files;
  for (int i = 0; i < 20; ++i) {
    const std::string name = "d" + std::to_string(i) + ".dxf";
    write(name, i % 7 == 3 ? kBroken : drawingOfLine(i));
    files += " " + name;
  }
  const Outcome one = run("info --json -j 1" + files + " --report one.json");
  const Outcome four = run("info --json -j 4" + files + " --report four.json");
  EXPECT_EQ(one.code, 1);
  EXPECT_EQ(one.out, four.out);
  EXPECT_EQ(one.err, four.err);
  EXPECT_EQ(contents(path("one.json")), contents(path("four.json")));
  EXPECT_EQ(std::count(one.out.begin(), one.out.end(), '\n'), 20);
}

TEST_F(Batch, WrongUsageIsFoundBeforeAnyWork) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("command"));
    const Outcome got = run(t.text("command"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
    EXPECT_FALSE(fs::exists(path("out/good.dxf")));
  }
}

TEST_F(Batch, ReportsEveryDrawing) {
  const Outcome got =
      run("convert --files-from list.txt --out-dir out --dry-run --report - --fail-on loss");
  EXPECT_EQ(got.code, 1) << got.err;
  EXPECT_FALSE(fs::exists(path("out/good.dxf")));
  std::istringstream lines(got.out);
  std::string first, second;
  ASSERT_TRUE(std::getline(lines, first) && std::getline(lines, second));
  EXPECT_EQ(Json::parse(first)["file"], "good.dxf");
  const Json rich = Json::parse(second);
  EXPECT_EQ(rich["schema"], 1);
  EXPECT_EQ(rich["verb"], "convert");
  const auto isWeight = [](const Json& entry) { return entry["sample"] == "370"; };
  const auto weight = std::find_if(rich["entries"].begin(), rich["entries"].end(), isWeight);
  ASSERT_NE(weight, rich["entries"].end()) << second;
  EXPECT_EQ(*weight, Json::parse(R"({"code": "code dropped", "severity": "loss", "stage": "write",
    "count": 1, "line": null, "sample": "370", "message":
    "R12 cannot hold the lineweights of 1 entity", "old": null, "new": null})"));
}

TEST_F(Batch, ReportsDefinitionFiles) {
  write("fence.lin", "*FENCE,f\nA,1,-1,[BOX,a.shx],-1\n");
  const Outcome got = run("linetypes fence.lin --report report.json --fail-on loss");
  EXPECT_EQ(got.code, 1) << got.err;
  const Json report = Json::parse(contents(path("report.json")));
  EXPECT_EQ(report["file"], "fence.lin");
  ASSERT_EQ(report["entries"].size(), 1u);
  EXPECT_EQ(report["entries"][0]["sample"], "BOX");
}

// In an R12 file they have been inserts all along.
TEST_F(Batch, ReportsHatchesThatBecomeInserts) {
  const auto hatchesLost = [](const Outcome& got) {
    long count = 0;
    const Json report = Json::parse(got.out);
    for (const Json& entry : report["entries"])
      if (entry["sample"] == "HATCH") count += entry["count"].get<long>();
    return count;
  };
  const std::string command = "convert --report - ";
  const std::string sample = command + quotedSample("hatches_ac1015.dxf");
  EXPECT_EQ(hatchesLost(run(sample + " old.dxf")), 6);
  EXPECT_EQ(hatchesLost(run(command + "old.dxf older.dxf")), 0);
  EXPECT_EQ(hatchesLost(run(command + "--to 2000 old.dxf new.dxf")), 0);
}
