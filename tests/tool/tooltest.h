#pragma once

#include <sys/wait.h>
#include <cstdio>

#include "support/test.h"

namespace fs = std::filesystem;

/// Result of a run of the tool.
struct Outcome {
  int code = -1;
  std::string out, err;
};

inline std::string contents(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

/// Runs the tool in a separate scratch folder.
class Tool : public testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/vek0_tool_XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    m_folder = name;
    // Keeps a preset path, so that another build of the tool can be tested.
    setenv("VEK0_TOOL", VEK0_TOOL, 0);
  }
  void TearDown() override { fs::remove_all(m_folder); }

  /// Runs "vek0 <arguments>" in the scratch folder.
  Outcome run(const std::string& arguments, const std::string& input = "/dev/null") {
    const std::string command = "cd '" + m_folder.string() + "' && \"$VEK0_TOOL\" " + arguments +
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
    for (const auto& entry : fs::directory_iterator(m_folder))
      if (entry.path().extension() == ".tmp") return true;
    return false;
  }

  const std::string flange = vek0::test::quotedSample("flange.dxf");
  const std::string kinds = vek0::test::quotedSample("every_kind_r12.dxf");

 private:
  fs::path m_folder;
};

const char* const kBroken = "This is no drawing.\n";
// A line without its end point, which a strict reader rejects, and a SOLID, which it skips.
const char* const kOdd =
    "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n1\n0\nSOLID\n8\n0\n10\n0\n20\n0\n11\n1\n21\n0\n"
    "12\n0\n22\n1\n13\n1\n23\n1\n0\nENDSEC\n0\nEOF\n";
const char* const kOneLine =
    "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\nA\n10\n1\n20\n2\n11\n4\n21\n6\n0\nENDSEC\n0\nEOF\n";
