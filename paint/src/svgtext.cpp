#include "vek0paint/svgtext.h"

#include <charconv>
#include <cstdint>
#include <cstdio>

namespace vek0::paint {

std::string factorText(double value) {
  char digits[32];
  const double unsignedZero = value + 0.0;
  constexpr int precision = 7;
#if !defined(_LIBCPP_VERSION) || _LIBCPP_VERSION >= 14000
  const auto end = std::to_chars(digits, digits + sizeof digits, unsignedZero,
                                 std::chars_format::general, precision)
                       .ptr;
  return std::string(digits, end);
#else
  const int length = std::snprintf(digits, sizeof digits, "%.*g", precision, unsignedZero);
  return std::string(digits, static_cast<std::size_t>(length));
#endif
}

namespace {

// Removes characters that are invalid in XML: control characters, U+FFFE and U+FFFF.
std::string withoutNonCharacters(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (utf8.substr(i, 2) == "\xEF\xBF" && i + 2 < utf8.size() &&
        static_cast<unsigned char>(utf8[i + 2]) >= 0xBE) {
      i += 2;
    } else if (byte == '\t') {
      out += ' ';
    } else if (byte >= 0x20 && byte != 0x7F) {
      out += utf8[i];
    }
  }
  return out;
}

}  // namespace

std::string escapedXml(std::string_view utf8) {
  std::string out;
  for (const char c : withoutNonCharacters(utf8)) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string idPart(const std::string& layer) {
  std::string id;
  for (const char c : withoutNonCharacters(layer)) {
    const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                       c == '-' || c == '_' || static_cast<unsigned char>(c) >= 0x80;
    id += plain ? c : '_';
  }
  return id;
}

}  // namespace vek0::paint
