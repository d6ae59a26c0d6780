#pragma once

#include "vek0core/hatch/catalogue.h"

namespace vek0::detail {

inline constexpr long kNoPatterns = 68;
/// The catalogue, in the order of its indexes.
extern const HATCH_TYPE kPatterns[kNoPatterns];

}  // namespace vek0::detail
