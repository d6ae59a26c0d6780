#include "support/test.h"

namespace {

using std::string_literals::operator""s;
using zim::Char;
using zim::WString;

// A unique path for the running test, removed afterwards, because tests run in parallel.
class TempFile {
 public:
  explicit TempFile(const std::string& name = "file.txt")
      : m_folder(testing::TempDir() + "vek0_" +
                 testing::UnitTest::GetInstance()->current_test_info()->name()),
        m_path(m_folder + "/" + name) {
    std::filesystem::create_directory(m_folder);
  }
  ~TempFile() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  WString name() const { return WString::fromUtf8(m_path); }
  std::filesystem::path path() const { return std::u8string(m_path.begin(), m_path.end()); }
  void put(const std::string& bytes) const { std::ofstream(path(), std::ios::binary) << bytes; }
  std::string bytes() const {
    std::ifstream in(path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  std::string m_folder, m_path;
};

// All lines, joined by a vertical bar.
std::u16string linesOf(IFile& file, long n) {
  std::u16string lines;
  std::vector<Char> buffer(static_cast<std::size_t>(n));
  while (file.readLn(buffer.data(), n)) {
    if (!lines.empty()) lines += u'|';
    lines += buffer.data();
  }
  return lines;
}

// Runs the same bytes through a file of the platform and one in memory.
struct TwoFiles {
  explicit TwoFiles(const std::string& bytes) : memory(u"memory", IFile::kRead, bytes) {
    temp.put(bytes);
    stdlib = std::make_unique<CFileStdLib>(temp.name(), IFile::kRead);
  }
  std::vector<IFile*> both() { return {stdlib.get(), &memory}; }
  TempFile temp;
  CFileMemory memory;
  std::unique_ptr<CFileStdLib> stdlib;
};

TEST(File, ReadsLinesAsTheyStand) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("name"));
    TwoFiles files(t.text("bytes"));
    for (IFile* file : files.both()) {
      ASSERT_TRUE(file->open());
      EXPECT_EQ(linesOf(*file, t.whole<long>("units")), t.wide("lines").c_str());
      EXPECT_FALSE(file->fail()) << "the end is no failure";
      ASSERT_TRUE(file->open()) << "again, from the start";
      EXPECT_EQ(linesOf(*file, t.whole<long>("units")), t.wide("lines").c_str());
      file->close();
      EXPECT_FALSE(file->isOpened());
      EXPECT_TRUE(file->fail());
    }
  }
}

TEST(File, AtTheEndTheBufferKeepsWhatItHeld) {
  TwoFiles files("a\n");
  for (IFile* file : files.both()) {
    Char buffer[8] = {};
    ASSERT_TRUE(file->open());
    EXPECT_TRUE(file->readLn(buffer, 8));
    EXPECT_FALSE(file->readLn(buffer, 8));
    EXPECT_EQ(std::u16string(buffer), u"a\n");
    EXPECT_FALSE(file->readLn(buffer, 0));
  }
}

TEST(File, BytesAreOfferedUntilLinesAreRead) {
  TwoFiles files("ab\ncd\n");
  for (IFile* file : files.both()) {
    char bytes[16];
    ASSERT_TRUE(file->open());
    EXPECT_EQ(file->readBytes(bytes, 3), 3);
    EXPECT_EQ(std::string(bytes, 3), "ab\n");
    EXPECT_EQ(file->readBytes(bytes, 16), 3);
    EXPECT_EQ(file->readBytes(bytes, 16), 0);
    Char line[16];
    ASSERT_TRUE(file->open());
    ASSERT_TRUE(file->readLn(line, 16));
    EXPECT_EQ(file->readBytes(bytes, 16), -1);
  }
}

TEST(File, UnitsAreReadAndWrittenRaw) {
  const Char units[] = {0x0041, 0x20AC, 0x000A};
  const TempFile temp;
  CFileStdLib out(temp.name(), IFile::kWrite);
  CFileMemory memory(u"memory", IFile::kWrite);
  for (IFile* file : {static_cast<IFile*>(&out), static_cast<IFile*>(&memory)}) {
    ASSERT_TRUE(file->open());
    EXPECT_EQ(file->write(units, 3), 3);
    EXPECT_EQ(file->write(units, 0), -1);
    Char back[4];
    EXPECT_EQ(file->read(back, 4), -1) << "not a file that is read";
    file->close();
    EXPECT_EQ(file->write(units, 3), -1);
  }
  EXPECT_EQ(temp.bytes(), memory.bytes());
  TwoFiles files(memory.bytes());
  for (IFile* file : files.both()) {
    Char back[4] = {};
    ASSERT_TRUE(file->open());
    EXPECT_EQ(file->read(back, 4), 3);
    EXPECT_EQ(std::u16string(back), std::u16string(units, 3));
    EXPECT_EQ(file->read(back, 4), -1);
  }
}

TEST(File, WritesLinesInTheOutputCodePage) {
  const TempFile temp;
  CFileStdLib file(temp.name(), IFile::kWrite);
  file.setLineEnd(CFileStdLib::Lf);
  CFileMemory memory(u"memory", IFile::kWrite);
  for (IFile* each : {static_cast<IFile*>(&file), static_cast<IFile*>(&memory)}) {
    ASSERT_TRUE(each->open());
    EXPECT_TRUE(each->writeLn(u"\u00E9\u2205\n"));
    EXPECT_TRUE(each->writeBytes("raw\n", 4));
    EXPECT_TRUE(each->writeLn(u""));
    EXPECT_FALSE(each->fail());
    each->close();
    EXPECT_FALSE(each->writeLn(u"late"));
  }
  EXPECT_EQ(temp.bytes(), "\xE9\\U+2205\nraw\n");
  EXPECT_EQ(memory.bytes(), temp.bytes());
  ASSERT_TRUE(memory.open());
  EXPECT_TRUE(memory.bytes().empty()) << "opening for writing begins anew";
}

TEST(FileStdLib, WritesCrLfWhenAskedTo) {
  const TempFile temp;
  CFileStdLib file(temp.name(), IFile::kWrite);
  file.setLineEnd(CFileStdLib::CrLf);
  ASSERT_TRUE(file.open());
  EXPECT_TRUE(file.writeLn(u"a\nb\r\n"));
  EXPECT_TRUE(file.writeBytes("c\n\n", 3));
  EXPECT_TRUE(file.writeBytes("d\r", 2) && file.writeBytes("\n\n", 2));
  file.close();
  EXPECT_EQ(temp.bytes(), "a\r\nb\r\nc\r\n\r\nd\r\n\r\n");
}

TEST(FileStdLib, NamesAreUnicode) {
  const TempFile temp("vek0_\xC3\xA9\xE2\x82\xAC.txt");
  temp.put("here\n");
  CFileStdLib file(temp.name(), IFile::kRead);
  ASSERT_TRUE(file.open());
  EXPECT_EQ(linesOf(file, 64), u"here\n");
  EXPECT_EQ(file.getName(), temp.name());
}

TEST(FileStdLib, WhatCannotBeOpenedFails) {
  const TempFile temp;
  temp.put("x");
  const std::u16string cut = std::u16string(temp.name().view()) + u'\0' + u"junk";
  for (const WString& name : {WString(u"/no/such/folder/file.dxf"), WString(u""), WString(cut)}) {
    CFileStdLib file(name, IFile::kRead);
    EXPECT_FALSE(file.open());
    EXPECT_FALSE(file.isOpened());
    EXPECT_TRUE(file.fail());
    char byte;
    EXPECT_EQ(file.readBytes(&byte, 1), 0);
    file.close();
  }
}

TEST(File, OtherModesAreACallersError) {
  vek0::test::QuietAsserts asserts;
  const TempFile temp;
  CFileStdLib file(temp.name(), 3);
  EXPECT_FALSE(file.open());
  CFileMemory memory(u"memory", 0);
  EXPECT_FALSE(memory.open());
  EXPECT_EQ(asserts.failures().size(), 2u);
}

TEST(FileStdLib, CopiesShareTheStream) {
  const TempFile temp;
  temp.put("a\nb\nc\n");
  CFileStdLib file(temp.name(), IFile::kRead);
  ASSERT_TRUE(file.open());
  Char line[8];
  {
    CFileStdLib copy(file);
    EXPECT_TRUE(copy.readLn(line, 8));
  }
  ASSERT_TRUE(file.isOpened()) << "the copy's end closes nothing";
  CFileStdLib copy(file);
  EXPECT_TRUE(file.readLn(line, 8));
  EXPECT_EQ(std::u16string(line), u"b\n") << "the copy took the first line";
  file.close();
  EXPECT_FALSE(copy.isOpened());
  EXPECT_FALSE(copy.readLn(line, 8));
  copy.close();
  file.close();
  ASSERT_TRUE(file.open());
  EXPECT_FALSE(copy.isOpened()) << "a stream opened later is not shared";
}

// Writing is buffered; `fail` detects a full medium in time.
TEST(FileStdLib, FailFindsAFullDevice) {
  CFileStdLib file(u"/dev/full", IFile::kWrite);
  if (!file.open()) GTEST_SKIP() << "no such device here";
  EXPECT_TRUE(file.writeBytes("a\n", 2));
  EXPECT_TRUE(file.fail());
}

TEST(FileStdLib, AFolderOpensOrNotButNeverReads) {
  CFileStdLib file(WString::fromUtf8(testing::TempDir()), IFile::kRead);
  if (!file.open()) return;
  char byte;
  EXPECT_EQ(file.readBytes(&byte, 1), 0);
  EXPECT_TRUE(file.fail());
  Char line[8] = u"old";
  EXPECT_TRUE(file.readLn(line, 8)) << "true after a failure that is not the end";
  EXPECT_EQ(line[0], 0);
}

TEST(FileMemory, CopiesHaveTheirOwnBytes) {
  CFileMemory file(u"memory", IFile::kWrite);
  ASSERT_TRUE(file.open());
  file.writeLn(u"a\n");
  CFileMemory copy(file);
  EXPECT_FALSE(copy.isOpened());
  file.writeLn(u"b\n");
  EXPECT_EQ(copy.bytes(), "a\n");
  copy = file;
  EXPECT_EQ(copy.bytes(), "a\nb\n");
}

// A host's file with only line access.
class LinesOnly : public IFile {
 public:
  LinesOnly() : IFile(u"lines", kWrite) {}
  bool open() override { return true; }
  void close() override {}
  bool isOpened() override { return true; }
  long read(Char*, long) override { return -1; }
  long write(const Char*, long) override { return -1; }
  bool readLn(Char*, long) override { return false; }
  bool writeLn(const Char* line) override {
    text += line;
    return !full;
  }
  bool fail() override { return full; }

  std::u16string text;
  bool full = false;
};

TEST(File, WithoutBytesTheyBecomeLines) {
  LinesOnly file;
  char bytes[4];
  EXPECT_EQ(file.readBytes(bytes, 4), -1);
  EXPECT_TRUE(file.writeBytes("  1\n\xE9\x80\\U+2205\n", 14));
  EXPECT_EQ(file.text, u"  1\n\u00E9\u20AC\\U+2205\n");
  EXPECT_TRUE(file.writeBytes("", 0));
  file.full = true;
  EXPECT_FALSE(file.writeBytes("x\n", 2));
}

}  // namespace
