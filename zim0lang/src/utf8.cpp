#include "zim0lang/utf8.h"

#include <cstddef>

namespace zim {
namespace {

bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

unsigned char byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

// Length of a sequence with this first byte; 0 if no sequence starts with it.
std::size_t sequenceLength(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xC2) return 0;
  if (first < 0xE0) return 2;
  if (first < 0xF0) return 3;
  return first < 0xF5 ? 4 : 0;
}

// The code point of the sequence at the front, or U+110000 if it is malformed.
char32_t decodeFront(std::string_view text, std::size_t length) {
  constexpr char32_t kBad = 0x110000;
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (length == 0 || length > text.size()) return kBad;
  char32_t c = length == 1 ? byteAt(text, 0) : byteAt(text, 0) & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(text, i) & 0xC0) != 0x80) return kBad;
    c = (c << 6) | (byteAt(text, i) & 0x3Fu);
  }
  return c < kSmallest[length] || isSurrogate(c) || c > 0x10FFFF ? kBad : c;
}

}  // namespace

void appendUtf16(std::u16string& out, char32_t codePoint) {
  if (codePoint < 0x10000) {
    out += static_cast<Char>(codePoint);
    return;
  }
  codePoint -= 0x10000;
  out += static_cast<Char>(0xD800 + (codePoint >> 10));
  out += static_cast<Char>(0xDC00 + (codePoint & 0x3FF));
}

void appendUtf8(std::string& out, char32_t codePoint) {
  const auto byte = [&out](char32_t value) { out += static_cast<char>(value); };
  if (codePoint < 0x80) {
    byte(codePoint);
  } else if (codePoint < 0x800) {
    byte(0xC0 | (codePoint >> 6));
    byte(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    byte(0xE0 | (codePoint >> 12));
    byte(0x80 | ((codePoint >> 6) & 0x3F));
    byte(0x80 | (codePoint & 0x3F));
  } else {
    byte(0xF0 | (codePoint >> 18));
    byte(0x80 | ((codePoint >> 12) & 0x3F));
    byte(0x80 | ((codePoint >> 6) & 0x3F));
    byte(0x80 | (codePoint & 0x3F));
  }
}

char32_t takeUtf8(std::string_view& text, bool& valid) {
  const std::size_t length = sequenceLength(byteAt(text, 0));
  const char32_t c = decodeFront(text, length);
  if (c <= 0x10FFFF) {
    text.remove_prefix(length);
    return c;
  }
  valid = false;
  text.remove_prefix(1);
  return kReplacement;
}

char32_t takeUtf16(std::u16string_view& text) {
  const char32_t first = text[0];
  text.remove_prefix(1);
  if (!isSurrogate(first)) return first;
  if (first >= 0xDC00 || text.empty()) return kReplacement;
  const char32_t second = text[0];
  if (second < 0xDC00 || second > 0xDFFF) return kReplacement;
  text.remove_prefix(1);
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

bool isValidUtf8(std::string_view text) {
  bool valid = true;
  while (valid && !text.empty()) takeUtf8(text, valid);
  return valid;
}

}  // namespace zim
