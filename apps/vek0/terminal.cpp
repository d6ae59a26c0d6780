#include "terminal.h"

#include <cstdio>

#include "vek0host/visibletext.h"

namespace vek0::tool {
namespace {

void printTo(std::FILE* stream, std::string_view text) {
  const std::string shown = host::visibleLines(text);
  std::fwrite(shown.data(), 1, shown.size(), stream);
}

}  // namespace

void print(std::string_view text) { printTo(stdout, text); }
void printError(std::string_view text) { printTo(stderr, text); }

bool flushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

}  // namespace vek0::tool
