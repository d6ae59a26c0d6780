#pragma once

#include <cstddef>

class CEnt;

namespace vek0::detail {

// Pictures are budgeted in points handed to a painter; what else takes time is worth some.
constexpr std::size_t kPointsPerLetter = 16;
constexpr std::size_t kPointsPerArc = 16;

/// About how many points it takes to draw an entity of a block, without what inserts show.
double pointsOf(const CEnt& ent);

}  // namespace vek0::detail
