#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "vek0host/visibletext.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vek0::tool {
namespace {

bool isTerminal(std::FILE* stream) {
#ifdef _WIN32
  return _isatty(_fileno(stream)) != 0;
#else
  return isatty(fileno(stream)) != 0;
#endif
}

bool g_isColored = false;  // set before any thread or process starts

bool wantsColor() {
  const char* refusal = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool isDumb = terminal && std::string_view(terminal) == "dumb";
  return isTerminal(stdout) && !(refusal && *refusal) && !isDumb;
}

constexpr const char* codeOf(Hue hue) {
  switch (hue) {
    case Hue::Bad:
      return "\033[31m";
    case Hue::Good:
      return "\033[32m";
    case Hue::Notable:
      return "\033[33m";
    case Hue::Place:
      return "\033[35m";
    case Hue::Plain:
      break;
  }
  return "";
}

void printTo(std::FILE* stream, std::string_view text) {
  const std::string shown = host::visibleLines(text);
  std::fwrite(shown.data(), 1, shown.size(), stream);
}

}  // namespace

void print(std::string_view text) { printTo(stdout, text); }
void printError(std::string_view text) { printTo(stderr, text); }

void setColorUse(ColorUse use) {
  g_isColored = use == ColorUse::Always || (use == ColorUse::Auto && wantsColor());
}

void print(std::string_view text, Hue hue) {
  if (!g_isColored || hue == Hue::Plain) return print(text);
  const std::size_t end = text.find_last_not_of('\n') + 1;
  std::fputs(codeOf(hue), stdout);
  print(text.substr(0, end));
  std::fputs("\033[m", stdout);
  print(text.substr(end));
}

void printLines(std::string_view text, Hue (*hueOf)(std::string_view line)) {
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    print(text.substr(0, length), hueOf(text.substr(0, length)));
    text.remove_prefix(length);
  }
}

bool isErrorTerminal() { return isTerminal(stderr); }

bool flushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

}  // namespace vek0::tool
