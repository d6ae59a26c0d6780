// The tool as scripts see it: exit codes, streams, JSON, files on disk.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

struct Outcome {
  int code = -1;
  std::string out, err;
};

std::string contents(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

class Tool : public testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/vek0_tool_XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    m_folder = name;
  }
  void TearDown() override { fs::remove_all(m_folder); }

  // Runs "vek0 <arguments>" in the scratch folder.
  Outcome run(const std::string& arguments, const std::string& input = "/dev/null") {
    const std::string command = "cd '" + m_folder.string() + "' && '" VEK0_TOOL "' " + arguments +
                                " <" + input + " >.out 2>.err";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(m_folder / ".out"),
            contents(m_folder / ".err")};
  }
  void write(const std::string& name, const std::string& text) {
    std::ofstream(m_folder / name, std::ios::binary) << text;
  }
  fs::path path(const std::string& name) const { return m_folder / name; }
  bool leftovers() const {
    for (const auto& entry : fs::directory_iterator(m_folder)) {
      if (entry.path().extension() == ".tmp") return true;
    }
    return false;
  }

  const std::string flange = std::string("'") + VEK0_SAMPLES + "/flange.dxf'";
  const std::string kinds = std::string("'") + VEK0_SAMPLES + "/every_kind_r12.dxf'";

 private:
  fs::path m_folder;
};

const char* const kBroken = "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n1\n0\nENDSEC\n0\nEOF\n";
const char* const kOneLine =
    "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\nA\n10\n1\n20\n2\n11\n4\n21\n6\n0\nENDSEC\n0\nEOF\n";

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
  EXPECT_EQ(one["entities"], Json({
                                 {"LINE", 1}
  }));
  EXPECT_EQ(one["extents"], Json({
                                {"min", {1, 2, 0}},
                                {"max", {4, 6, 0}}
  }));
  EXPECT_EQ(one["error"], nullptr);
  EXPECT_EQ(one["layers"][1], Json({
                                  {"name",     "A"         },
                                  {"color",    7           },
                                  {"linetype", "Continuous"},
                                  {"frozen",   false       },
                                  {"locked",   false       },
                                  {"off",      false       }
  }));
  const Json sample = Json::parse(second);
  EXPECT_EQ(sample["version"], "AC1009");
  EXPECT_EQ(sample["entities"]["INSERT"], 9);
  EXPECT_EQ(sample["entities"]["ATTRIB"], 8);
  EXPECT_EQ(sample["blocks"].size(), 2u);
}

TEST_F(Tool, InfoForPeopleNamesWhatCounts) {
  const Outcome got = run("info " + flange);
  EXPECT_EQ(got.code, 0);
  for (const char* word : {"AC1009", "OUTLINE", "CENTER", "BOLT", "9 INSERT", "limits", "off"}) {
    EXPECT_NE(got.out.find(word), std::string::npos) << word;
  }
}

TEST_F(Tool, CheckGoesOnAfterAFailureAndSaysWhere) {
  write("broken.dxf", kBroken);
  write("good.dxf", kOneLine);
  const Outcome got = run("check broken.dxf missing.dxf good.dxf");
  EXPECT_EQ(got.code, 1);
  EXPECT_NE(got.out.find("broken.dxf: error 16"), std::string::npos) << got.out;
  EXPECT_NE(got.out.find("missing.dxf: error 0"), std::string::npos) << got.out;
  EXPECT_NE(got.out.find("good.dxf: ok"), std::string::npos) << got.out;
  const Json line = Json::parse(run("check --json broken.dxf").out);
  EXPECT_EQ(line["ok"], false);
  EXPECT_EQ(line["error"]["kind"], 16);
  EXPECT_EQ(line["error"]["line"], 12);
}

TEST_F(Tool, ExitCodes) {
  write("broken.dxf", kBroken);
  write("good.dxf", kOneLine);
  const struct {
    const char* name;
    const char* arguments;
    int code;
  } cases[] = {
      {"help",                      "--help",                              0},
      {"help of a verb",            "help convert",                        0},
      {"help of no verb",           "help bogus",                          2},
      {"version",                   "--version",                           0},
      {"no verb",                   "",                                    2},
      {"unknown verb",              "infos good.dxf",                      2},
      {"unknown option",            "info --colour good.dxf",              2},
      {"missing operand",           "convert good.dxf",                    2},
      {"drawing with an error",     "convert broken.dxf out.dxf",          1},
      {"drawing that is not there", "convert missing.dxf out.dxf",         1},
      {"output in no folder",       "convert good.dxf nowhere/out.dxf",    3},
      {"output exists",             "convert good.dxf broken.dxf",         3},
      {"output is a folder",        "convert -f good.dxf .",               3},
      {"output is a pipe",          "convert -f good.dxf pipe",            3},
      {"broken part of an import",  "import good.dxf broken.dxf -o o.dxf", 1},
  };
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const Outcome got = run(t.arguments);
    EXPECT_EQ(got.code, t.code) << got.out << got.err;
  }
  EXPECT_EQ(contents(path("broken.dxf")), kBroken) << "an existing file was touched";
  EXPECT_FALSE(fs::exists(path("out.dxf")));
  EXPECT_TRUE(fs::exists(path("o.dxf")));
  EXPECT_FALSE(leftovers());
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
  EXPECT_NE(broken.err.find("left out"), std::string::npos) << broken.err;
  EXPECT_EQ(run("import good.dxf - -o three.dxf", "good.dxf").code, 0);
  EXPECT_EQ(Json::parse(run("info --json three.dxf").out)["entities"]["LINE"], 2);
}
