#include "vek0core/assert.h"

#include <cstdio>
#include <cstdlib>

namespace {

void printAndAbort(const char* file, int line, const char* condition) {
  std::fprintf(stderr, "%s:%d assertion failure:\n%s\n", file, line, condition);
  std::abort();
}

AssertHandler g_handler = printAndAbort;

}  // namespace

AssertHandler setAssertHandler(AssertHandler handler) {
  const AssertHandler previous = g_handler;
  g_handler = handler ? handler : printAndAbort;
  return previous;
}

void assertionFailed(const char* file, int line, const char* condition) {
  g_handler(file, line, condition);
}
