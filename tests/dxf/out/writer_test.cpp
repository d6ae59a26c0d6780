#include "dxf/out/saveddrawing.h"
#include "support/test.h"

namespace {

template <class Write>
std::string written(Write write, bool exact = false) {
  CFileMemory file(u"out", IFile::kWrite);
  EXPECT_TRUE(file.open());
  CFileDXFOWriter writer(file);
  writer.setExact(exact);
  write(writer);
  EXPECT_TRUE(writer.flush());
  return file.bytes();
}

/// A host's file with only line access.
class LineFile : public IFile {
 public:
  LineFile() : IFile(u"lines", kWrite) {}
  bool open() override { return true; }
  void close() override {}
  bool isOpened() override { return true; }
  long read(zim::Char*, long) override { return -1; }
  long write(const zim::Char*, long) override { return -1; }
  bool readLn(zim::Char*, long) override { return false; }
  bool writeLn(const zim::Char* line) override { return text += line, true; }
  bool fail() override { return false; }

  std::u16string text;
};

}  // namespace

TEST(DxfWriter, GroupCodesTakeThreeColumns) {
  for (const Row& t : rows()) {
    EXPECT_EQ(written([&](CFileDXFOWriter& w) { w.write(t.whole<long>("code"), 7L); }),
              t.text("line") + "7\n");
  }
}

TEST(DxfWriter, Reals) {
  for (const Row& t : rows()) {
    const auto write = [&](CFileDXFOWriter& w) { w.write(40, t.real("value")); };
    EXPECT_EQ(written(write), " 40\n" + t.text("classic") + "\n");
    EXPECT_EQ(written(write, true), " 40\n" + t.text("exact") + "\n");
  }
}

TEST(DxfWriter, TheLargestNumberInFullNotationFits) {
  const std::string text =
      written([](CFileDXFOWriter& w) { w.write(40, std::numeric_limits<double>::max()); });
  EXPECT_EQ(text.size(), 4u + 309 + 7 + 1);
  EXPECT_EQ(text.substr(4, 5), "17976");
}

TEST(DxfWriter, ADecimalCommaOfTheHostChangesNothing) {
  const char* before = std::setlocale(LC_ALL, nullptr);
  const std::string kept = before ? before : "C";
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "no such locale here";
  EXPECT_EQ(written([](CFileDXFOWriter& w) { w.write(40, 0.5); }), " 40\n0.500000\n");
  std::setlocale(LC_ALL, kept.c_str());
}

TEST(DxfWriter, OtherValues) {
  EXPECT_EQ(written([](CFileDXFOWriter& w) { w.write(70, true); }), " 70\n1\n");
  EXPECT_EQ(written([](CFileDXFOWriter& w) { w.write(70, false); }), " 70\n0\n");
  EXPECT_EQ(written([](CFileDXFOWriter& w) { w.write(62, -7L); }), " 62\n-7\n");
  EXPECT_EQ(written([](CFileDXFOWriter& w) { w.writeHex(5, 255); }), "  5\nFF\n");
  // Like a `long` of 32 bits.
  EXPECT_EQ(written([](CFileDXFOWriter& w) { w.writeHex(5, -1); }), "  5\nFFFFFFFF\n");
  EXPECT_EQ(written([](CFileDXFOWriter& w) { w.write(1, static_cast<zim::Char*>(nullptr)); }),
            "  1\n\n");
}

TEST(DxfWriter, NoTextCanEndItsLine) {
  for (const Row& t : rows()) {
    EXPECT_EQ(written([&](CFileDXFOWriter& w) { w.write(1, t.wide("text").c_str()); }),
              "  1\n" + t.text("value") + "\n");
  }
}

TEST(DxfWriter, TextIsCutAtTheLongestLineThatReadersTake) {
  const struct {
    const char* name;
    std::u16string text;
    std::size_t bytes;
    bool cut;
  } cases[] = {
      {"just fits", std::u16string(8190, u'x'), 8190, false},
      {"one too long", std::u16string(8191, u'x'), 8190, true},
      {"escapes count", std::u16string(1170, u'\u4E2D'), 8190, false},
      {"an escape is never halved", std::u16string(1171, u'\u4E2D'), 8190, true},
  };
  for (const auto& t : named(cases)) {
    CFileReport report;
    const std::string text = written([&](CFileDXFOWriter& w) {
      w.setReport(&report);
      w.writeText(1, t.text);
    });
    EXPECT_EQ(text.size(), 4 + t.bytes + 1);
    EXPECT_EQ(report.count("text cut"), t.cut ? 1 : 0);
  }
}

TEST(DxfWriter, ASurrogatePairIsNeverHalved) {
  std::u16string text(8189, u'x');
  text += u"\U0001F600";
  const std::string value = written([&](CFileDXFOWriter& w) { w.writeText(1, text); });
  EXPECT_FALSE(contains(value, "FFFD"));
  EXPECT_FALSE(contains(value, "D83D\n"));
}

TEST(DxfWriter, MuchMoreThanTheBufferArrivesInOrder) {
  std::string expected;
  for (int i = 0; i < 50000; ++i) expected += "  1\n" + std::to_string(i) + "\n";
  EXPECT_EQ(written([](CFileDXFOWriter& w) {
              w.setBuffered(true);
              for (long i = 0; i < 50000; ++i) w.write(1, i);
            }),
            expected);
}

TEST(DxfWriter, FilesOfLinesGetTheSameContent) {
  LineFile file;
  CFileDXFOWriter(file).write(1, u"\u00D8 \u20AC \u4E2D");
  EXPECT_TRUE(file.text.ends_with(u"4E2D\n")) << "at once";
  {
    CFileDXFOWriter writer(file);
    writer.setBuffered(true);
    writer.write(40, 1.5);
    EXPECT_TRUE(file.text.ends_with(u"4E2D\n")) << "when it is flushed, here by the destructor";
  }
  // Both characters exist in the code page; the second lies where Latin-1 has control characters.
  EXPECT_EQ(file.text, u"  1\n\u00D8 \u20AC \\U+4E2D\n 40\n1.500000\n");
}
