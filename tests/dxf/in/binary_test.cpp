// Binary files say the same as text files.
#include <algorithm>
#include <cstring>
#include <fstream>

#include "dxf/in/savedtext.h"
#include "support/test.h"

namespace {

void putNumber(std::string& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> 8 * i & 255);
}

bool isIn(long code, std::initializer_list<std::pair<long, long>> ranges) {
  return std::any_of(ranges.begin(), ranges.end(), [code](const auto& range) {
    return code >= range.first && code <= range.second;
  });
}

void putValue(std::string& out, long code, const std::string& text) {
  if (isIn(code, {{10, 59}, {110, 149}, {210, 239}, {460, 469}, {1010, 1059}})) {
    const double value = std::stod(text);
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    putNumber(out, bits, 8);
  } else if (isIn(code, {{60, 79}, {170, 179}, {270, 289}, {370, 389}, {400, 409}, {1060, 1070}})) {
    putNumber(out, static_cast<std::uint64_t>(std::stol(text)), 2);
  } else if (isIn(code, {{90, 99}, {420, 429}, {440, 459}, {1071, 1071}})) {
    putNumber(out, static_cast<std::uint64_t>(std::stol(text)), 4);
  } else if (isIn(code, {{160, 169}})) {
    putNumber(out, static_cast<std::uint64_t>(std::stol(text)), 8);
  } else if (isIn(code, {{290, 299}})) {
    putNumber(out, static_cast<std::uint64_t>(std::stol(text)), 1);
  } else if (isIn(code, {{310, 319}, {1004, 1004}})) {
    putNumber(out, text.size() / 2, 1);
    for (std::size_t i = 0; i + 1 < text.size(); i += 2)
      putNumber(out, std::stoul(text.substr(i, 2), nullptr, 16), 1);
  } else {
    out += text + '\0';
  }
}

// The pairs of a text file; group codes of two bytes, or of one where they fit.
std::string binaryOf(const std::string& file, bool isWide) {
  std::string out("Drawing Binary DXF\r\n\x1A\0", 22);
  std::istringstream in(file);
  const auto withoutCr = [](std::string line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
  };
  for (std::string code, value; std::getline(in, code) && std::getline(in, value);) {
    const long number = std::stol(code);
    const bool isShort = !isWide && number < 255;
    if (!isWide && !isShort) putNumber(out, 255, 1);
    putNumber(out, static_cast<std::uint64_t>(number), isShort ? 1 : 2);
    putValue(out, number, withoutCr(value));
  }
  return out;
}

std::string contentsOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

TEST(Binary, SamplesReadAsTheirTexts) {
  for (const char* name : {"every_kind_r12.dxf", "hatches_ac1015.dxf", "room_ac1015.dxf"}) {
    const std::string text = contentsOf(vek0::test::samplePath(name));
    const std::string expected = saved(loadAny(text), kSaveExchange);
    for (const bool isWide : {false, true}) {
      SCOPED_TRACE(testing::Message() << name << (isWide ? ", wide" : ""));
      const std::string bytes = binaryOf(text, isWide);
      EXPECT_EQ(saved(loadAny(bytes), kSaveExchange), expected);
      // Cut anywhere, it reads as far as it goes.
      for (std::size_t end = 200; end < bytes.size(); end += 1 + bytes.size() / 97)
        EXPECT_NE(loadAny(bytes.substr(0, end)).result.status, CFileDXFIResult::Failed) << end;
    }
  }
}

TEST(Binary, ControlCharactersOfTextsAreCarets) {
  const std::string text =
      "0\nSECTION\n2\nENTITIES\n0\nTEXT\n8\nA\n10\n0\n20\n0\n40\n1\n1\na\tb\x1A\n" + dxf();
  const Loaded got = loadAny(binaryOf(text, true));
  ASSERT_TRUE(got.only());
  EXPECT_EQ(static_cast<CEntText*>(got.only())->getText().getContext().getString(),
            zim::WString(u"a\tb\x1A"));
}
