// Folders of a made-up job, and what paths in its drawings lead to.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "vek0core/files/file.h"
#include "vek0core/xref/xrefresolver.h"

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
          "library/fence.dxf", "library/wall.dxf", "else/secret.dxf", "else/tree.dxf"}) {
      make(file);
    }
    fs::create_directories(m_root / "job/folder.dxf");
    fs::create_symlink("Parts/Door.dxf", m_root / "job/within.dxf");
    fs::create_symlink("../else/secret.dxf", m_root / "job/leak.dxf");
    fs::create_symlink("../library/wall.dxf", m_root / "job/wall.dxf");
    fs::create_symlink("../else", m_root / "job/tunnel");
    fs::create_symlink("nowhere.dxf", m_root / "job/dangling.dxf");
    fs::create_symlink("loop.dxf", m_root / "job/loop.dxf");
    ASSERT_EQ(mkfifo((m_root / "job/pipe.dxf").c_str(), 0600), 0);
    // Long enough ago for the folders' times to tell of every change from now on.
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

  // The file below the root that the path leads to, or a word for why there is none.
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
  const struct {
    const char* name;
    std::string path, expected;
  } cases[] = {
      {"beside the drawing, before search folders", "house.dxf", "job/house.dxf"},
      {"below the drawing", "Parts/Door.dxf", "job/Parts/Door.dxf"},
      {"with a dot", "./house.dxf", "job/house.dxf"},
      {"there and back", "Parts/../house.dxf", "job/house.dxf"},
      {"back from a folder that is not there", "gone/../house.dxf", "job/house.dxf"},
      {"the drawing itself", "site.dxf", "job/site.dxf"},
      {"in a search folder", "tree.dxf", "lib/tree.dxf"},
      {"below a search folder", "deep/palm.dxf", "lib/deep/palm.dxf"},
      {"in the second search folder", "palm.dxf", "lib/deep/palm.dxf"},
      {"by the bare name beside the drawing", "plans/house.dxf", "job/house.dxf"},
      {"by the bare name in a search folder", "plans/tree.dxf", "lib/tree.dxf"},
      {"absolute", root + "/lib/tree.dxf", "lib/tree.dxf"},
      {"absolute in an allowed folder", root + "/library/wall.dxf", "library/wall.dxf"},
      {"allowed is not searched", "fence.dxf", "missing"},
      {"absolute from another machine", "/home/ann/house.dxf", "job/house.dxf"},
      {"backslashes", "Parts\\Door.dxf", "job/Parts/Door.dxf"},
      {"with a drive", "C:\\jobs\\house.dxf", "job/house.dxf"},
      {"with a drive, the rest right", "c:" + root + "/lib/tree.dxf", "lib/tree.dxf"},
      {"relative to a drive's folder", "C:house.dxf", "job/house.dxf"},
      {"a drive alone", "C:", "no file"},
      {"on a server", "\\\\server\\share\\house.dxf", "job/house.dxf"},
      {"on a server, and not here", "\\\\server\\share\\lost.dxf", "missing"},
      {"other letter case", "HOUSE.DXF", "job/house.dxf"},
      {"other letter case of a folder", "PARTS\\DOOR.DXF", "job/Parts/Door.dxf"},
      {"other letter case beyond ASCII", "GRÜN.dxf", "job/Grün.dxf"},
      {"other letter case in a search folder", "Tree.dxf", "lib/tree.dxf"},
      {"a drawing that is not read, and its other form", "shed.dwg", "job/shed.dxf"},
      {"the other form in a search folder", "old.DWG", "lib/deep/old.dxf"},
      {"no other form", "job\\lost.dwg", "missing"},
      {"without an ending", "house", "job/house.dxf"},
      {"without an ending in the file either", "bare", "job/bare"},
      {"with another ending", "house.txt", "missing"},
      {"a link that stays inside", "within.dxf", "job/Parts/Door.dxf"},
      {"a link to an allowed folder", "wall.dxf", "library/wall.dxf"},
      {"a link that leads out", "leak.dxf", "forbidden"},
      {"through a folder that is a link", "tunnel/secret.dxf", "forbidden"},
      {"out, by the letter case of what lies there", "tunnel/SECRET.dxf", "missing"},
      {"up and out", "../else/secret.dxf", "forbidden"},
      {"up and out, and by its name in a search folder", "../else/tree.dxf", "lib/tree.dxf"},
      {"up beyond everything", "../../../../../../../../../../tmp/lost.dxf", "missing"},
      {"a file of the system", "/etc/passwd", "forbidden"},
      {"a link to nothing", "dangling.dxf", "missing"},
      {"a link to itself", "loop.dxf", "missing"},
      {"a folder", "folder.dxf", "no file"},
      {"a folder by a slash", "folder.dxf/", "no file"},
      {"the folder of the drawing", ".", "no file"},
      {"the folder above", "..", "no file"},
      {"the root", "/", "no file"},
      {"a pipe", "pipe.dxf", "no file"},
      {"a device", "/dev/zero", "no file"},
      {"below a file", "house.dxf/lost", "missing"},
      {"no path", "", "missing"},
      {"blanks", "  ", "missing"},
      {"a slash too many", "Parts//Door.dxf", "job/Parts/Door.dxf"},
      {"a name longer than platforms have", tooLongName, "missing"},
      {"longer than platforms take", tooLong, "missing"},
      {"of very many parts", manyUps + "house.dxf", "job/house.dxf"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(find(folders, t.path), t.expected);
  }
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
  const struct {
    const char *name, *drawing, *expected;
  } cases[] = {
      {"plain", "job/site.dxf", "job/site.dxf"},
      {"roundabout", "lib/../job/./site.dxf", "job/site.dxf"},
      {"a link", "job/within.dxf", "job/Parts/Door.dxf"},
      {"not yet there", "job/new.dxf", "job/new.dxf"},
      {"nor is its folder", "job/new/sheet.dxf", "job/new/sheet.dxf"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(CXRefFolders(at(t.drawing)).getDrawing(), at(t.expected));
  }
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
                            "else/secret.dxf", "job/lost.dxf"}) {
    EXPECT_EQ(folders.open(at(other)), nullptr) << other;
  }
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

// Without the listings kept in memory this would read ten million names.
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
