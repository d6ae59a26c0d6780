#include "support/forms.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <sstream>
#include <utility>

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

}  // namespace

namespace vek0::test {

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

std::string utf16Of(const std::string& file, bool isBigEndian) {
  std::string out;
  for (const char16_t unit : u"\uFEFF" + std::u16string(file.begin(), file.end())) {
    const char low = static_cast<char>(unit & 255), high = static_cast<char>(unit >> 8);
    out += isBigEndian ? high : low;
    out += isBigEndian ? low : high;
  }
  return out;
}

std::string withLineEnds(const std::string& file, const std::string& end) {
  std::string out;
  for (const char c : file) {
    if (c == '\n') out += end;
    if (c != '\n' && c != '\r') out += c;
  }
  return out;
}

}  // namespace vek0::test
