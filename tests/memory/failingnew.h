#pragma once

#include "support/test.h"

namespace vek0::test {

/// What `operator new` of this executable does: it counts, and fails when told to.
struct FailingNew {
  /// The allocation after `skipped` further ones fails: that one alone, or all from then on.
  static void arm(long skipped, bool forever);
  static void disarm();  ///< allocations succeed again
  /// Allocations since `arm`, those that failed included.
  static long count();
  /// Allocations that are not given back.
  static long living();
};

}  // namespace vek0::test
