// What the policies do to a drawing is tested with CImportPlan; these tests see to units, places,
// dry runs and kept files.
#include <nlohmann/json.hpp>

#include "tooltest.h"

namespace {

// Block B has its base point at (5, 5) and a point at (6, 5), shown at (10, 0) on layer W.
std::string partOf(const std::string& color, const std::string& unit, const std::string& x) {
  return section("HEADER",
                 pairsOf("9 $ACADVER|1 AC1015|9 $INSBASE|10 1|20 0|9 $INSUNITS|70 " + unit)) +
         section("TABLES", table("LAYER", pairsOf("0 LAYER|5 10|2 W|62 " + color))) +
         section("BLOCKS", pairsOf("0 BLOCK|5 20|2 B|10 5|20 5|0 POINT|5 21|8 W|10 " + x +
                                   "|20 5|0 ENDBLK|5 22")) +
         section("ENTITIES", pairsOf("0 INSERT|5 30|8 W|2 B|10 10|20 0")) + dxf();
}

std::string rounded(const nlohmann::json& number) {
  return nlohmann::json(std::round(number.get<double>() * 1000) / 1000).dump();
}

class Import : public Tool {
 protected:
  void SetUp() override {
    Tool::SetUp();
    write("base.dxf", partOf("1", "4", "6"));
    write("part.dxf", partOf("5", "1", "7"));
  }
};

}  // namespace

TEST_F(Import, ScalesPlacesAndSaysWhatWouldHappen) {
  for (const Row& t : rows()) {
    const std::string command = "import base.dxf part.dxf -f -o out.dxf " + t.text("options");
    const Outcome dry = run(command + " --dry-run --report report.json");
    EXPECT_EQ(dry.code, t.whole("code")) << dry.err;
    EXPECT_NE((dry.out + dry.err).find(t.text("said")), std::string::npos) << dry.out << dry.err;
    EXPECT_FALSE(fs::exists(path("out.dxf")));
    EXPECT_NE(contents(path("report.json")).find(t.text("reported")), std::string::npos)
        << contents(path("report.json"));
    EXPECT_EQ(run(command).code, dry.code);
    EXPECT_EQ(fs::exists(path("out.dxf")), dry.code == 0);
    if (dry.code != 0) continue;
    const auto info = nlohmann::json::parse(run("info --json out.dxf").out);
    std::string extents;
    for (const char* corner : {"min", "max"})
      for (std::size_t axis = 0; axis < 2; ++axis)
        extents += (extents.empty() ? "" : " ") + rounded(info["extents"][corner][axis]);
    EXPECT_EQ(extents, t.text("extents"));
    fs::remove(path("out.dxf"));
  }
}

TEST_F(Import, RefusesWhatItCannotUnderstand) {
  for (const Row& t : rows()) {
    const Outcome got = run("import base.dxf part.dxf -o out.dxf " + t.text("options"));
    EXPECT_EQ(got.code, 2) << got.err;
    EXPECT_FALSE(fs::exists(path("out.dxf")));
  }
}
