// Commands of scripts: what they draw and change, and the lines that they reject.
#include <cmath>
#include <sstream>

#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

class Script : public Tool {
 protected:
  void SetUp() override {
    Tool::SetUp();
    write("empty.dxf",
          pairsOf("0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 BLOCKS|"
                  "0 BLOCK|8 0|2 DOOR|70 2|10 0|20 0|0 LINE|8 0|10 0|20 0|11 1|21 0|"
                  "0 ATTDEF|8 0|10 0|20 0|40 1|1 none|3 Number|2 NO|70 0|0 ENDBLK|0 ENDSEC|"
                  "0 SECTION|2 ENTITIES|0 ENDSEC|0 EOF"));
  }

  // Commands are separated by bars. Every script is undone and redone as well.
  Outcome play(std::string commands) {
    for (char& c : commands)
      if (c == '|') c = '\n';
    write("script.txt", commands);
    return run("edit -f empty.dxf -o out.dxf --script script.txt --undo-check");
  }

  // "KIND x1,y1 x2,y2 ..." of all entities, with their boxes to three decimals.
  std::string boxes() {
    std::istringstream listed(run("list --json out.dxf").out);
    std::string seen;
    for (std::string line; std::getline(listed, line);) {
      const Json ent = Json::parse(line);
      if (ent.contains("of")) {
        seen += "ATTRIB=" + ent["text"].get<std::string>() + " ";
        continue;
      }
      std::ostringstream text;
      const Json& box = ent["extents"];
      for (const char* corner : {"min", "max"})
        for (const std::size_t i : {0u, 1u})
          text << (i ? "," : " ") << std::round(box[corner][i].get<double>() * 1000) / 1000 + 0.0;
      seen += ent["kind"].get<std::string>() + text.str() + " ";
    }
    return seen.empty() ? seen : seen.substr(0, seen.size() - 1);
  }
};

}  // namespace

TEST_F(Script, DrawsAndChanges) {
  for (const Row& t : rows()) {
    const Outcome got = play(t.text("commands"));
    ASSERT_EQ(got.code, 0) << got.err;
    EXPECT_EQ(boxes(), t.text("boxes")) << got.err;
  }
}

TEST_F(Script, NamesTheLineThatFails) {
  for (const Row& t : rows()) {
    const Outcome got = play(t.text("commands"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
  }
}
