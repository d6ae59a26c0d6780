#include "support/quietasserts.h"

#include "vek0core/assert.h"

namespace vek0::test {
namespace {

std::vector<std::string> g_failures;
AssertHandler g_before = nullptr;

void record(const char*, int, const char* condition) { g_failures.emplace_back(condition); }

}  // namespace

QuietAsserts::QuietAsserts() {
  g_failures.clear();
  g_before = setAssertHandler(record);
}

QuietAsserts::~QuietAsserts() { setAssertHandler(g_before); }

const std::vector<std::string>& QuietAsserts::failures() const { return g_failures; }

}  // namespace vek0::test
