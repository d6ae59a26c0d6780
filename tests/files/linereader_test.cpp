#include "files/linereader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace vek0::detail {
namespace {

using std::string_literals::operator""s;

constexpr unsigned kSeed = 20240607;
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
  const struct {
    const char* name;
    std::string text;
    const char* lines;
  } cases[] = {
      {"line feeds", "a\nb\n", "a\n|b\n"},
      {"last line without end", "a\nb", "a\n|b"},
      {"cr lf", "a\r\nb\r\n", "a\r\n|b\r\n"},
      {"lone crs", "a\rb\r", "a\n|b\n"},
      {"two lone crs", "a\r\rb", "a\n|\n|b"},
      {"doubled cr before lf", "a\r\r\nb\n", "a\r\r\n|b\n"},
      {"all kinds", "a\rb\nc\r\nd", "a\n|b\n|c\r\n|d"},
      {"empty lines", "\n\r\n\n", "\n|\r\n|\n"},
      {"empty", "", ""},
      {"two bytes", "a\n", "a\n"},
      {"utf-8 mark", "\357\273\2770\n", "0\n"},
      {"nothing but a mark", "\xEF\xBB\xBF", ""},
      {"nuls", "a\0b\0\n\0"s, "ab\n"},
      {"ctrl-z ends it", "a\n\x1A\x1A\r\nb\n", "a\n"},
      {"ctrl-z at the end", "a\nEOF\x1A\x1A", "a\n|EOF"},
      {"ctrl-z in a text",
       "a\nb\x1A"
       "c\n\x1A"
       "d\n",
       "a\n|b\x1A"
       "c\n|\x1A"
       "d\n"},
      {"utf-16 little endian", "\377\3760\0\n\0\xAC\x20"s, "0\n|\xE2\x82\xAC"},
      {"utf-16 big endian", "\xFE\xFF\0000\0\n\x20\xAC"s, "0\n|\xE2\x82\xAC"},
      {"utf-16 pair", "\xFF\xFE\x3D\xD8\x00\xDE"s, "\xF0\x9F\x98\x80"},
      {"utf-16 half a pair", "\xFF\xFE\x3D\xD8"s, "\xEF\xBF\xBD"},
      {"utf-16 half a unit", "\377\376a\0b"s, "a"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(joined(linesOf(t.text)), t.lines);
    EXPECT_EQ(joined(linesOf(t.text, 64, 1)), t.lines) << "byte by byte";
  }
}

// Block boundaries must not affect the result.
TEST(LineReader, BlocksAndPortionsDoNotMatter) {
  std::mt19937_64 random(kSeed);
  const std::string alphabet = "ab \n\n\r\r";
  for (int i = 0; i < 2000; ++i) {
    std::string text = random() % 2 ? "" : random() % 2 ? "\xFF\xFE" : "\xEF\xBB\xBF";
    const bool wide = text.starts_with("\xFF");
    std::size_t column = 0;  // lines stay shorter than the small block
    for (auto left = random() % 400; left > 0; --left) {
      char c = alphabet[random() % alphabet.size()];
      if (++column > 15) c = '\n';
      if (c == '\n') column = 0;
      text += c;
      if (wide) text += '\0';
    }
    const Lines expected = linesOf(text);
    ASSERT_EQ(linesOf(text, 64, 1 + random() % 70), expected) << "seed " << kSeed << " round " << i;
  }
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
  const struct {
    const char* name;
    const char* text;
    bool taken;
    long number;
  } cases[] = {
      {"padded", "  0\nx", true, 0},          {"cr lf", "10\r\nx", true, 10},
      {"four digits", "1071\nx", true, 1071}, {"five digits", "10000\n", false, 0},
      {"junk behind", "10x\n", false, 0},     {"blank behind", "10 \n", false, 0},
      {"negative", "-1\n", false, 0},         {"empty", "\n", false, 0},
      {"blanks only", "  \n", false, 0},      {"last line without end", "10", false, 0},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const std::string text = std::string("----\n") + t.text;
    LineReader reader(sourceOf(text, kLargeBlock), 64);
    ASSERT_TRUE(reader.begin());
    std::string_view line;
    ASSERT_TRUE(reader.next(line));  // brings the block in
    long number = 77;
    EXPECT_EQ(reader.nextIfShortNumber(number), t.taken);
    if (t.taken) {
      EXPECT_EQ(number, t.number);
    } else {
      EXPECT_TRUE(reader.next(line));
      EXPECT_EQ(line, std::string_view(t.text)) << "nothing was taken";
    }
  }
}

}  // namespace
}  // namespace vek0::detail
