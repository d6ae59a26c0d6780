#include "vek0host/visibletext.h"

#include <cstdio>

#include "zim0lang/utf8.h"

namespace vek0::host {
namespace {

bool isIn(char32_t c, char32_t first, char32_t last) { return c >= first && c <= last; }

// Control characters, line separators, and bidirectional formatting characters.
bool isDangerous(char32_t c) {
  return c < 0x20 || isIn(c, 0x7F, 0x9F) || c == 0x061C || isIn(c, 0x200E, 0x200F) ||
         isIn(c, 0x2028, 0x202E) || isIn(c, 0x2066, 0x2069);
}

void appendEscape(std::string& out, char32_t c) {
  if (c == '\n') {
    out += "\\n";
    return;
  }
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, c < 0x100 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(c));
  out += buffer;
}

std::string escaped(std::string_view text, bool keepsLines) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::string_view before = text;
    bool isValid = true;
    const char32_t c = zim::takeUtf8(text, isValid);
    if (!isValid) {
      appendEscape(out, static_cast<unsigned char>(before[0]));
    } else if (isDangerous(c) && !(keepsLines && c == '\n')) {
      appendEscape(out, c);
    } else {
      out += before.substr(0, before.size() - text.size());
    }
  }
  return out;
}

}  // namespace

std::string visible(std::string_view utf8) { return escaped(utf8, false); }
std::string visible(const zim::WString& text) { return escaped(text.toUtf8(), false); }
std::string visibleLines(std::string_view utf8) { return escaped(utf8, true); }

}  // namespace vek0::host
