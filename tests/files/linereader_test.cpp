#include "files/linereader.h"
#include "files/number.h"
#include "support/test.h"

namespace vek0::detail {
namespace {

using std::string_literals::operator""s;

constexpr unsigned kLineSeed = 20240607;
constexpr std::size_t kLargeBlock = 1 << 16;

// Delivers a text in portions of at most `portion` bytes.
LineReader::Source sourceOf(const std::string& text, std::size_t portion) {
  return [&text, portion, at = std::size_t{0}](char* buf, long n) mutable {
    const std::size_t count = text.copy(buf, std::min(portion, static_cast<std::size_t>(n)), at);
    at += count;
    return static_cast<long>(count);
  };
}

std::vector<std::string> linesOf(const std::string& text, std::size_t block = kLargeBlock,
                                 std::size_t portion = kLargeBlock) {
  LineReader reader(sourceOf(text, portion), block);
  EXPECT_TRUE(reader.begin());
  std::vector<std::string> lines;
  std::string_view line;
  while (reader.next(line)) lines.emplace_back(line);
  EXPECT_FALSE(reader.next(line)) << "the end is the end";
  return lines;
}

using Lines = std::vector<std::string>;

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "|") + line;
  return text;
}

TEST(LineReader, LineEndsAndMarks) {
  for (const Row& t : rows()) {
    EXPECT_EQ(joined(linesOf(t.text("text"))), t.text("lines"));
    EXPECT_EQ(joined(linesOf(t.text("text"), 64, 1)), t.text("lines")) << "byte by byte";
  }
}

// The lines as another thread finds them, with its numbers.
Lines splitAheadLinesOf(const std::string& text, std::size_t block, std::size_t portion,
                        std::size_t& found) {
  LineReader reader(sourceOf(text, portion), block);
  reader.splitAhead();
  EXPECT_TRUE(reader.begin());
  Lines lines;
  std::string_view line;
  for (unsigned turn = 0;; ++turn) {
    const SplitLine* split = turn % 3 == 0 ? nullptr : reader.nextIfSplit(line);
    if (!split && !reader.next(line)) return lines;
    lines.emplace_back(line.data(), line.size() + (split ? split->trailing : 0));
    if (!split) continue;
    ++found;
    EXPECT_EQ(line, withoutTrailing(lines.back()));
    if (split->kind != SplitLine::Kind::Other) {
      EXPECT_EQ(split->number, parseDouble(line).value) << line;
      EXPECT_TRUE(parseDouble(line).whole) << line;
    }
  }
}

// Block boundaries and other threads must not affect the result.
TEST(LineReader, BlocksAndPortionsDoNotMatter) {
  std::mt19937_64 random(kLineSeed);
  const std::string alphabet = "a1.-5 \n\n\r\r";
  std::size_t found = 0;
  for (int i = 0; i < 2000; ++i) {
    std::string text = random() % 2 ? "" : random() % 2 ? "\xFF\xFE" : "\xEF\xBB\xBF";
    const bool wide = text.starts_with("\xFF");
    std::size_t column = 0;  // keeps lines shorter than the small block
    for (auto left = random() % 1500; left > 0; --left) {
      char c = alphabet[random() % alphabet.size()];
      if (++column > 15) c = '\n';
      if (c == '\n') column = 0;
      text += c;
      if (wide) text += '\0';
    }
    const Lines expected = linesOf(text);
    ASSERT_EQ(linesOf(text, 64, 1 + random() % 70), expected)
        << "seed " << kLineSeed << " round " << i;
    ASSERT_EQ(splitAheadLinesOf(text, 64, 1 + random() % 70, found), expected)
        << "seed " << kLineSeed << " round " << i;
  }
  EXPECT_GT(found, 0u) << "the other thread never came first";
}

TEST(LineReader, LongLinesComeInPiecesThatKeepCharactersWhole) {
  std::string text;
  for (int i = 0; i < 100; ++i) text += i % 3 ? "\xE2\x82\xAC" : "x";
  text += "\nend\n";
  std::string joined;
  std::size_t pieces = 0;
  for (const std::string& line : linesOf(text, 64)) {
    EXPECT_LE(line.size(), 64u);
    EXPECT_NE(static_cast<unsigned char>(line[0]) & 0xC0, 0x80) << "begins inside a character";
    joined += line;
    ++pieces;
  }
  EXPECT_EQ(joined, text);
  EXPECT_GT(pieces, 4u);
}

TEST(LineReader, RunsOfCrsLongerThanTheBlock) {
  const Lines lines = linesOf(std::string(1000, '\r') + "a\n", 64);
  ASSERT_EQ(lines.size(), 1001u);
  EXPECT_EQ(lines.back(), "a\n");
}

TEST(LineReader, AFailureLosesTheLineThatWasBeingRead) {
  for (const bool failsAtOnce : {false, true}) {
    int calls = 0;
    LineReader reader(
        [&](char* buf, long n) {
          if (failsAtOnce || ++calls > 2) return LineReader::kFailed;
          return static_cast<long>(
              std::string_view("one\ntwo").copy(buf, static_cast<std::size_t>(n)));
        },
        64);
    EXPECT_TRUE(reader.begin()) << "there are bytes, they cannot be read";
    std::string_view line;
    EXPECT_EQ(reader.next(line), !failsAtOnce);
    EXPECT_FALSE(reader.next(line) && line == "two");
    while (reader.next(line)) EXPECT_EQ(line.back(), '\n');
    EXPECT_TRUE(reader.failed());
  }
}

TEST(LineReader, SaysWhenBytesAreNotOffered) {
  LineReader reader([](char*, long) { return LineReader::kNotOffered; }, 64);
  EXPECT_FALSE(reader.begin());
  EXPECT_FALSE(reader.begin());
  EXPECT_FALSE(reader.failed());
}

TEST(LineReader, ShortNumbersAreTakenOnlyWhole) {
  for (const Row& t : rows()) {
    const std::string text = "----\n" + t.text("text");
    LineReader reader(sourceOf(text, kLargeBlock), 64);
    ASSERT_TRUE(reader.begin());
    std::string_view line;
    ASSERT_TRUE(reader.next(line));  // loads the block
    long number = 77;
    EXPECT_EQ(reader.nextIfShortNumber(number), t.flag("taken"));
    if (t.flag("taken")) {
      EXPECT_EQ(number, t.whole<long>("number"));
    } else {
      EXPECT_TRUE(reader.next(line));
      EXPECT_EQ(line, std::string_view(t.text("text"))) << "nothing was taken";
    }
  }
}

}  // namespace
}  // namespace vek0::detail
