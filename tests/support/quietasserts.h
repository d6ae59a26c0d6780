#pragma once

#include <string>
#include <vector>

namespace vek0::test {

/// While it exists, failed internal checks are recorded instead of terminating the process. A test
/// that expects none asserts that `failures()` stays empty.
class QuietAsserts {
 public:
  QuietAsserts();
  ~QuietAsserts();
  QuietAsserts(const QuietAsserts&) = delete;
  QuietAsserts& operator=(const QuietAsserts&) = delete;

  /// The conditions that failed since construction, in order.
  const std::vector<std::string>& failures() const;
};

}  // namespace vek0::test
