#include "support/test.h"

namespace {

using Error = CFileDXFIError;
using std::string_literals::operator""s;

constexpr unsigned kSeed = 20240607;

// The same bytes for a reader with only line access.
class LinesFile : public CFileMemory {
 public:
  using CFileMemory::CFileMemory;
  long readBytes(char*, long) override { return -1; }
};

// Fails at the n-th read and all later ones.
class FailingFile : public CFileMemory {
 public:
  FailingFile(std::string bytes, long failsAt, bool offersBytes)
      : CFileMemory(u"failing", kRead, std::move(bytes)),
        m_left(failsAt),
        m_offersBytes(offersBytes) {}
  long readBytes(char* buf, long n) override {
    if (!m_offersBytes) return -1;
    constexpr long kPortion = 7;  // so that there are several reads
    return --m_left > 0 ? CFileMemory::readBytes(buf, std::min(n, kPortion)) : 0;
  }
  bool readLn(zim::Char* buf, long n) override {
    return --m_left > 0 ? CFileMemory::readLn(buf, n) : true;
  }
  bool fail() override { return m_left <= 0; }

 private:
  long m_left;
  bool m_offersBytes;
};

// A lexer over a text in memory, reading bytes or lines.
struct Reader {
  explicit Reader(const std::string& text, bool byBytes = true)
      : file(byBytes ? std::make_unique<CFileMemory>(u"m", 1, text)
                     : std::make_unique<LinesFile>(u"m", 1, text)),
        lexer(*file, &error) {
    lexer.setReport(&report);
    file->open();
  }
  std::unique_ptr<CFileMemory> file;
  Error error;
  CFileReport report;
  CFileDXFILexer lexer;
};

std::string utf8(const SmartString& text) { return zim::WString(text.c_str()).toUtf8(); }

// Everything that a lexer reports about a text, one line per pair.
std::string transcript(const std::string& text, bool byBytes) {
  Reader reader(text, byBytes);
  CFileDXFILexer& lexer = reader.lexer;
  std::string out;
  while (!reader.error.HasAnError()) {
    const long code = lexer.read();
    const std::string value = utf8(lexer.getString());
    out += std::to_string(code) + '/' + std::to_string(lexer.getGroupValue()) + " [" + value +
           "] [" + lexer.getText().toUtf8() + "] line " + std::to_string(lexer.getLine()) + '\n';
  }
  return out + "error " + std::to_string(reader.error.GetErrorType()) + " cut " +
         std::to_string(reader.report.count("line cut"));
}

TEST(DxfLexer, FirstPairs) {
  for (const Row& t : rows()) {
    for (const bool byBytes : {true, false}) {
      SCOPED_TRACE(testing::Message() << t.text("name") << (byBytes ? ", bytes" : ", lines"));
      Reader reader(t.text("text"), byBytes);
      EXPECT_EQ(reader.lexer.read(), t.whole<long>("code"));
      EXPECT_EQ(reader.lexer.getGroupValue(), t.whole<long>("code"));
      EXPECT_EQ(utf8(reader.lexer.getString()), t.text("value"));
      EXPECT_EQ(reader.lexer.getLine(), t.whole<long>("line"));
      EXPECT_FALSE(reader.error.HasAnError());
    }
  }
}

TEST(DxfLexer, ErrorsOfStructure) {
  for (const Row& t : rows()) {
    for (const bool byBytes : {true, false}) {
      SCOPED_TRACE(testing::Message() << t.text("name") << (byBytes ? ", bytes" : ", lines"));
      Reader reader(t.text("text"), byBytes);
      long code = 0;
      for (int i = 0; i < 9 && !reader.error.HasAnError(); ++i) code = reader.lexer.read();
      EXPECT_EQ(code, -1);
      EXPECT_EQ(reader.error.GetErrorType(), t.whole("kind"));
      EXPECT_EQ(reader.lexer.getLine(), t.whole<long>("line"));
    }
  }
}

TEST(DxfLexer, AskingBeyondTheEndGoesOnFailing) {
  Reader reader("0\nEOF\n");
  EXPECT_EQ(reader.lexer.read(), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(reader.lexer.read(), -1);
  EXPECT_EQ(reader.error.GetErrorType(), 13);
  EXPECT_TRUE(reader.lexer.getBytes().empty());
  EXPECT_EQ(utf8(reader.lexer.getString()), "");
  EXPECT_EQ(reader.lexer.getLine(), 2);
}

TEST(DxfLexer, NumbersOfAValue) {
  for (const Row& t : rows()) {
    Reader reader("40\n" + t.text("value") + "\n");
    reader.lexer.read();
    EXPECT_EQ(reader.lexer.getDouble(), t.real("real"));
    EXPECT_EQ(reader.error.GetErrorType(), t.whole("error"));
    const bool isMissing = t.whole("error") == 6;
    reader.error.SetError(Error::NoError);
    EXPECT_EQ(reader.lexer.getInt(), t.whole<long>("whole"));
    EXPECT_EQ(reader.error.HasAnError(), isMissing);
    reader.error.SetError(Error::NoError);
    EXPECT_EQ(reader.lexer.getHex(), t.whole<long>("hex"));
    EXPECT_EQ(reader.error.HasAnError(), isMissing);
  }
}

TEST(DxfLexer, WholeNumbersStayWithin32Bits) {
  Reader reader("70\n99999999999\n70\n-99999999999\n");
  reader.lexer.read();
  EXPECT_EQ(reader.lexer.getInt(), 2147483647);
  reader.lexer.read();
  EXPECT_EQ(reader.lexer.getInt(), -2147483647 - 1);
}

TEST(DxfLexer, KeywordsIgnoreCaseAndNothingElse) {
  Reader reader("0\nLine\n");
  reader.lexer.read();
  EXPECT_TRUE(reader.lexer.isKeyword("LINE"));
  EXPECT_FALSE(reader.lexer.isKeyword("LIN"));
  EXPECT_FALSE(reader.lexer.isKeyword("LINES"));
  EXPECT_TRUE(reader.lexer.getString().equal_cs(u"line"));
  EXPECT_EQ(reader.lexer.getBytes(), "Line");
}

TEST(DxfLexer, TextsAreFreedOfEscapesAndStringsAreNot) {
  for (const bool byBytes : {true, false}) {
    Reader reader("1\n\\U+2205 5^J^ 2\xE9\n", byBytes);
    reader.lexer.read();
    EXPECT_EQ(utf8(reader.lexer.getString()), "\\U+2205 5^J^ 2\xC3\xA9");
    EXPECT_EQ(reader.lexer.getText(), zim::WString(u"\u2205 5\n^2\u00E9"));
  }
}

TEST(DxfLexer, TheHeadersCodePageHoldsUnlessThereIsAMark) {
  for (const Row& t : rows()) {
    Reader reader("", t.flag("byBytes"));
    *reader.file = CFileMemory(u"m", 1, t.text("text"));
    reader.file->open();
    ASSERT_EQ(reader.lexer.read(), 1);
    reader.lexer.setCodePage(850);
    EXPECT_EQ(utf8(reader.lexer.getString()), t.text("value"));
    EXPECT_EQ(reader.lexer.getEncodingName(), t.text("encoding"));
  }
}

// The longest valid line is kept whole and the next longer one is cut; both leave the pairs in
// step.
TEST(DxfLexer, LongLinesAreCutAndReported) {
  constexpr long kMost = CFileDXFILexer::kBufferUnits - 1;
  const struct {
    const char* name;
    std::string value;
    long units;
    long cuts;
  } cases[] = {
      {"at the limit", std::string(8191, 'a'), kMost, 0},
      {"line end across it", std::string(8190, 'a'), kMost - 1, 0},
      {"one more", std::string(8192, 'a'), kMost, 1},
      {"one more is a blank", std::string(8191, 'a') + " ", kMost, 0},
      {"blanks far beyond", "a" + std::string(20000, ' '), 1, 0},
      {"blanks at the limit", "a" + std::string(8190, ' ') + "b", 1, 1},
      {"longer than a block", std::string(600000, 'a'), kMost, 1},
      {"pair at the limit", std::string(8190, 'a') + "\xF0\x9F\x98\x80", kMost - 1, 1},
  };
  for (const auto& t : cases) {
    for (const bool byBytes : {true, false}) {
      SCOPED_TRACE(testing::Message() << t.name << (byBytes ? ", bytes" : ", lines"));
      Reader reader("1\n" + t.value + "\r\n0" + std::string(20000, ' ') + "\r\nEOF\n", byBytes);
      EXPECT_EQ(reader.lexer.read(), 1);
      EXPECT_EQ(reader.lexer.getString().size(), static_cast<std::size_t>(t.units));
      EXPECT_EQ(reader.lexer.getText().Length(), static_cast<std::size_t>(t.units));
      EXPECT_EQ(reader.report.count("line cut"), t.cuts);
      EXPECT_EQ(reader.lexer.read(), 0);
      EXPECT_TRUE(reader.lexer.isKeyword("EOF"));
      EXPECT_EQ(reader.lexer.getLine(), 4);
    }
  }
}

TEST(DxfLexer, BytesAndLinesGiveTheSamePairs) {
  std::mt19937_64 random(kSeed);
  const char* const parts[] = {
      "0",   "  0",      "10",    "999",      "LINE", " ",  "\t",
      "1.5", "\xC3\xA9", "\xE9",  "\\U+2205", "^J",   "^ ", "\xF0\x9F\x98\x80",
      "-1",  "EOF",      "1e400", "\r",       ""};
  const char* const ends[] = {"\n", "\n", "\n", "\r\n", "\r\n", "\r", "\r\r\n"};
  for (int round = 0; round < 3000; ++round) {
    std::string text = random() % 8 ? "" : "\xEF\xBB\xBF";
    for (auto lines = random() % 20; lines > 0; --lines) {
      if (random() % 64 == 0)
        text += std::string(8180 + random() % 20, random() % 2 ? 'a' : ' ');
      else
        for (auto n = random() % 4; n > 0; --n) text += parts[random() % std::size(parts)];
      text += ends[random() % std::size(ends)];
    }
    ASSERT_EQ(transcript(text, true), transcript(text, false))
        << "seed " << kSeed << " round " << round;
  }
}

TEST(DxfLexer, ManyPairsOverManyBlocks) {
  std::string text;
  constexpr int kPairs = 100000;
  for (int i = 0; i < kPairs; ++i) {
    text +=
        (i % 3 ? " 10" : "1071") + std::string(i % 2 ? "\r\n" : "\n") + std::to_string(i) + "\n";
  }
  Reader reader(text);
  for (int i = 0; i < kPairs; ++i) {
    ASSERT_EQ(reader.lexer.read(), i % 3 ? 10 : 1071);
    ASSERT_EQ(reader.lexer.getInt(), i);
  }
  EXPECT_EQ(reader.lexer.getLine(), 2 * kPairs);
}

// Whichever read fails first causes error 13, after the same pairs as in the file.
TEST(DxfLexer, EveryFailingReadIsAnError) {
  std::string text;
  for (int i = 0; i < 40; ++i) text += "10\n" + std::to_string(1000 + i) + "\n";
  text += "0\nEOF\n";
  for (const bool byBytes : {true, false}) {
    for (long failsAt = 1; failsAt < 200; ++failsAt) {
      SCOPED_TRACE(testing::Message() << "read " << failsAt << (byBytes ? ", bytes" : ", lines"));
      FailingFile file(text, failsAt, byBytes);
      file.open();
      Error error;
      CFileDXFILexer lexer(file, &error);
      long pairs = 0;
      while (lexer.read() == 10) ASSERT_EQ(lexer.getInt(), 1000 + pairs++);
      if (error.HasAnError())
        EXPECT_EQ(error.GetErrorType(), 13);
      else
        EXPECT_EQ(pairs, 40);
    }
  }
}

TEST(DxfLexer, AFileThatIsNotOpenIsAnError) {
  for (const bool byBytes : {true, false}) {
    Reader reader("0\nEOF\n", byBytes);
    reader.file->close();
    EXPECT_EQ(reader.lexer.read(), -1);
    EXPECT_EQ(reader.error.GetErrorType(), 13);
  }
}

TEST(DxfLexer, WithoutARecordItStillStops) {
  CFileMemory file(u"m", 1, "0\nLINE\n");
  file.open();
  CFileDXFILexer lexer(file, nullptr);
  EXPECT_EQ(lexer.read(), 0);
  EXPECT_EQ(lexer.read(), -1);
}

TEST(DxfLexer, CopiesKeepTheirPairsAndShareTheFile) {
  for (const bool byBytes : {true, false}) {
    SCOPED_TRACE(byBytes ? "bytes" : "lines");
    std::string text = "8\nfirst\n8\nsecond\n8\n" + std::string(1000, 'x') + "\n8\nlast\n";
    Reader reader(text, byBytes);
    reader.lexer.read();
    const SmartString before = reader.lexer.getString();
    auto copy = std::make_unique<CFileDXFILexer>(reader.lexer);
    EXPECT_NE(copy->getString().c_str(), before.c_str()) << "a buffer of its own";
    EXPECT_EQ(utf8(copy->getString()), "first");
    EXPECT_EQ(copy->read(), 8);
    EXPECT_EQ(copy->getBytes(), "second");
    EXPECT_EQ(reader.lexer.getBytes(), "first");
    EXPECT_EQ(utf8(reader.lexer.getString()), "first");
    EXPECT_EQ(reader.lexer.read(), 8);
    EXPECT_EQ(reader.lexer.getBytes().size(), 1000u);
    EXPECT_EQ(copy->getBytes(), "second");
    copy.reset();
    EXPECT_EQ(reader.lexer.read(), 8);
    EXPECT_EQ(reader.lexer.getBytes(), "last");
  }
}

TEST(DxfLexer, BeforeTheFirstPairThereIsNothing) {
  Reader reader("0\nEOF\n");
  EXPECT_EQ(utf8(reader.lexer.getString()), "");
  EXPECT_TRUE(reader.lexer.getText().empty());
  EXPECT_EQ(reader.lexer.getLine(), 0);
}

}  // namespace
