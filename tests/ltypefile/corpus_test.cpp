// Definition files from other programs: saving and loading again must not change them.

#include "ltypefile/loading.h"
#include "support/test.h"

namespace fs = std::filesystem;

namespace {

std::string contents(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

void expectSameAfterSaving(const fs::path& path) {
  SCOPED_TRACE(path.filename().string());
  Loading first(contents(path));
  EXPECT_GT(first.loader.GetNoLtype(), 0);
  EXPECT_EQ(first.loader.GetReport().count("missing-pattern"), 0);
  EXPECT_EQ(first.loader.GetReport().count("number-expected"), 0);
  Loading second(first.save());
  ASSERT_EQ(second.loader.GetNoLtype(), first.loader.GetNoLtype());
  for (int i = 0; i < first.loader.GetNoLtype(); ++i) {
    EXPECT_EQ(second[i].getName(), first[i].getName());
    EXPECT_EQ(second[i].getDesc(), first[i].getDesc());
    EXPECT_EQ(pattern(second[i]), pattern(first[i])) << first[i].getName().toUtf8();
  }
}

}  // namespace

TEST(LtypeCorpus, SavingAndLoadingGivesTheSameSequences) {
  const char* const folder = std::getenv("VEK0_CORPUS");
  if (!folder || !fs::is_directory(fs::path(folder) / "lin"))
    GTEST_SKIP() << "VEK0_CORPUS names no folder with definition files";
  int files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(folder) / "lin")) {
    if (entry.path().extension() != ".lin") continue;
    expectSameAfterSaving(entry.path());
    ++files;
  }
  EXPECT_GT(files, 0);
}
