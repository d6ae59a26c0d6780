#pragma once

#include "support/test.h"

namespace vek0::test {

/// Controls `operator new` of this executable, which counts allocations and fails on demand.
struct FailingNew {
  /// Lets the allocation after `skipped` others fail: only that one, or all later ones too.
  static void arm(long skipped, bool forever);
  static void disarm();  ///< allocations succeed again
  /// Number of allocations since `arm`, including failed ones.
  static long count();
  /// Number of allocations that were not released.
  static long living();
};

}  // namespace vek0::test
