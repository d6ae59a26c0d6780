// Resolution of paths in the folders of a fictitious project.
#include <sys/stat.h>
#include <chrono>

#include "support/test.h"

namespace fs = std::filesystem;

namespace {

using Found = IXRefResolver::Found;

zim::WString wide(const std::string& utf8) { return zim::WString::fromUtf8(utf8); }

class XRefFolders : public testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/vek0_xref_XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    m_root = fs::canonical(name);
    for (const char* file :
         {"job/site.dxf", "job/house.dxf", "job/Parts/Door.dxf", "job/Parts/site.dxf",
          "job/shed.dwg", "job/shed.dxf", "job/old.dwg", "job/bare", "job/Grün.dxf",
          "lib/house.dxf", "lib/tree.dxf", "lib/deep/old.dxf", "lib/deep/palm.dxf",
          "library/fence.dxf", "library/wall.dxf", "else/secret.dxf", "else/tree.dxf"})
      make(file);
    fs::create_directories(m_root / "job/folder.dxf");
    fs::create_symlink("Parts/Door.dxf", m_root / "job/within.dxf");
    fs::create_symlink("../else/secret.dxf", m_root / "job/leak.dxf");
    fs::create_symlink("../library/wall.dxf", m_root / "job/wall.dxf");
    fs::create_symlink("../else", m_root / "job/tunnel");
    fs::create_symlink("nowhere.dxf", m_root / "job/dangling.dxf");
    fs::create_symlink("loop.dxf", m_root / "job/loop.dxf");
    ASSERT_EQ(mkfifo((m_root / "job/pipe.dxf").c_str(), 0600), 0);
    // Set well in the past, so that every later change is visible in the modification time.
    for (const char* folder : {"job", "job/Parts", "lib"}) {
      fs::last_write_time(m_root / folder,
                          fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
  }
  void TearDown() override { fs::remove_all(m_root); }

  void make(const std::string& file) const {
    fs::create_directories((m_root / file).parent_path());
    std::ofstream(m_root / file) << "0\nEOF\n";
  }
  zim::WString at(const std::string& file) const { return wide((m_root / file).string()); }

  // The file that the path resolves to, relative to the root, or a word for the reason of failure.
  std::string find(CXRefFolders& folders, const std::string& path,
                   const std::string& from = "job/site.dxf") const {
    return find(folders, wide(path), at(from));
  }
  std::string find(CXRefFolders& folders, const zim::WString& path,
                   const zim::WString& from) const {
    const zim::WString untouched = u"untouched";
    zim::WString file = untouched;
    const Found found = folders.find(path, from, file);
    if (found == Found::Yes) return fs::path(file.toUtf8()).lexically_relative(m_root).string();
    EXPECT_EQ(file, untouched);
    return found == Found::Missing ? "missing" : found == Found::NotAFile ? "no file" : "forbidden";
  }

  fs::path m_root;
};

TEST_F(XRefFolders, WhatPathsLeadTo) {
  CXRefFolders folders(at("job/site.dxf"));
  folders.addSearchFolder(at("lib"));
  folders.addSearchFolder(at("lib/deep"));
  folders.addSearchFolder(at("no/such/folder"));
  folders.addSearchFolder(at("lib/tree.dxf"));
  folders.allowFolder(at("library"));
  const std::string root = m_root.string();
  const std::string tooLongName = std::string(300, 'a') + ".dxf";
  const std::string tooLong = std::string(5000, 'a') + "/house.dxf";
  std::string manyUps;
  while (manyUps.size() < 4000) manyUps += "../";
  const Definitions names{
      {"root", root}, {"tooLongName", tooLongName}, {"tooLong", tooLong}, {"manyUps", manyUps}};
  for (const Row& t : rowsWith(names)) EXPECT_EQ(find(folders, t.text("path")), t.text("expected"));
}

TEST_F(XRefFolders, NestedDrawingsAreLookedForFromTheOneThatNamesThem) {
  CXRefFolders folders(at("job/site.dxf"));
  folders.addSearchFolder(at("lib"));
  EXPECT_EQ(find(folders, "site.dxf", "job/Parts/Door.dxf"), "job/Parts/site.dxf");
  EXPECT_EQ(find(folders, "../house.dxf", "job/Parts/Door.dxf"), "job/house.dxf");
  EXPECT_EQ(find(folders, "house.dxf", "job/Parts/Door.dxf"), "lib/house.dxf");
}

TEST_F(XRefFolders, TextsThatAreNoPaths) {
  CXRefFolders folders(at("job/site.dxf"));
  const zim::WString from = at("job/site.dxf");
  EXPECT_EQ(find(folders, zim::WString(u"house.dxf\0.dxf", 14), from), "missing");
  EXPECT_EQ(find(folders, zim::WString(u"\xD800house.dxf"), from), "missing");
  const zim::WString broken(u"\0", 1);
  EXPECT_EQ(folders.open(broken), nullptr);
  EXPECT_TRUE(folders.getState(broken).empty());
}

TEST_F(XRefFolders, WithoutADrawingOnlySearchFoldersCount) {
  CXRefFolders folders(u"");
  EXPECT_TRUE(folders.getDrawing().empty());
  EXPECT_EQ(find(folders, u"house.dxf", u""), "missing");
  EXPECT_EQ(find(folders, at("job/house.dxf"), u""), "forbidden");
  folders.addSearchFolder(at("lib"));
  EXPECT_EQ(find(folders, u"house.dxf", u""), "lib/house.dxf");
  EXPECT_EQ(find(folders, at("lib/tree.dxf"), u""), "lib/tree.dxf");
}

TEST_F(XRefFolders, TheDrawingHasTheNameThatReferencesToItFind) {
  for (const Row& t : rows())
    EXPECT_EQ(CXRefFolders(at(t.text("drawing"))).getDrawing(), at(t.text("expected")));
}

TEST_F(XRefFolders, RelativeNamesStartFromTheCurrentFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(m_root / "job");
  CXRefFolders folders(u"new.dxf");
  folders.addSearchFolder(u"../lib");
  fs::current_path(before);
  EXPECT_EQ(folders.getDrawing(), at("job/new.dxf"));
  EXPECT_EQ(find(folders, u"tree.dxf", folders.getDrawing()), "lib/tree.dxf");
}

TEST_F(XRefFolders, LetterCaseIsLookedUpAnewWhenTheFolderChanges) {
  CXRefFolders folders(at("job/site.dxf"));
  EXPECT_EQ(find(folders, "BARN.dxf"), "missing");
  make("job/barn.dxf");
  EXPECT_EQ(find(folders, "BARN.dxf"), "job/barn.dxf");
  make("job/Barn.dxf");
  EXPECT_EQ(find(folders, "BARN.dxf"), "job/Barn.dxf") << "the first in the order of the letters";
  fs::remove(m_root / "job/Barn.dxf");
  fs::remove(m_root / "job/barn.dxf");
  EXPECT_EQ(find(folders, "BARN.dxf"), "missing");
}

TEST_F(XRefFolders, OpensWhatItHasFoundAndNothingElse) {
  CXRefFolders folders(at("job/site.dxf"));
  const std::unique_ptr<IFile> file = folders.open(at("job/house.dxf"));
  ASSERT_NE(file, nullptr);
  EXPECT_FALSE(file->isOpened());
  ASSERT_TRUE(file->open());
  char bytes[16];
  EXPECT_EQ(file->readBytes(bytes, 16), 6);
  for (const char* other : {"job/pipe.dxf", "job/folder.dxf", "job/leak.dxf", "job/within.dxf",
                            "else/secret.dxf", "job/lost.dxf"})
    EXPECT_EQ(folders.open(at(other)), nullptr) << other;
  EXPECT_EQ(folders.open(u""), nullptr);
  EXPECT_EQ(folders.open(u"house.dxf"), nullptr) << "no name of the resolver";
}

TEST_F(XRefFolders, WhatBecameALinkAfterItWasFoundIsNotOpened) {
  CXRefFolders folders(at("job/site.dxf"));
  zim::WString file;
  ASSERT_EQ(folders.find(u"house.dxf", folders.getDrawing(), file), Found::Yes);
  fs::remove(m_root / "job/house.dxf");
  fs::create_symlink("../else/secret.dxf", m_root / "job/house.dxf");
  EXPECT_EQ(folders.open(file), nullptr);
}

TEST_F(XRefFolders, StateChangesWithTheFile) {
  CXRefFolders folders(at("job/site.dxf"));
  const zim::WString file = at("job/house.dxf");
  const zim::WString first = folders.getState(file);
  EXPECT_FALSE(first.empty());
  EXPECT_EQ(folders.getState(file), first);
  fs::last_write_time(file.toUtf8(), fs::last_write_time(file.toUtf8()) + std::chrono::seconds(1));
  const zim::WString touched = folders.getState(file);
  EXPECT_NE(touched, first);
  const auto time = fs::last_write_time(file.toUtf8());
  std::ofstream(file.toUtf8(), std::ios::app) << "more\n";
  fs::last_write_time(file.toUtf8(), time);
  EXPECT_NE(folders.getState(file), touched) << "the size alone";
  EXPECT_TRUE(folders.getState(at("job/lost.dxf")).empty());
}

// Without cached directory listings, this would read ten million names.
TEST_F(XRefFolders, ThousandsOfMissingFilesInALargeFolder) {
  for (int i = 0; i < 1000; ++i) make("big/f" + std::to_string(i));
  make("big/site.dxf");
  fs::last_write_time(m_root / "big", fs::file_time_type::clock::now() - std::chrono::hours(1));
  CXRefFolders folders(at("big/site.dxf"));
  for (int i = 0; i < 10000; ++i)
    ASSERT_EQ(find(folders, "LOST" + std::to_string(i) + ".dxf", "big/site.dxf"), "missing");
  EXPECT_EQ(find(folders, "F999", "big/site.dxf"), "big/f999");
}

}  // namespace
