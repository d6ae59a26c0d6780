#pragma once

#include <vector>

#include "inspect/chains.h"

namespace vek0::detail {

/// Appends the crossings of contours with themselves and of closed contours with one another.
/// Returns false if there were too many candidates to examine all.
bool findCrossings(const std::vector<PLACED_CURVE>& curves, const Chains& chains,
                   const CURVE_LIMITS& limits, std::vector<CURVE_FAULT>& faults);

}  // namespace vek0::detail
