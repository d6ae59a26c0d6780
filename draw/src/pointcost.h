#pragma once

#include <cstddef>

class CEnt;
class CEntHatch;

namespace vek0::detail {

// Pictures are budgeted in points handed to a painter; what else takes time is worth some.
constexpr std::size_t kPointsPerLetter = 16;
constexpr std::size_t kPointsPerArc = 16;

/// About how many points it takes to draw an entity of a block, without what inserts show.
double pointsOf(const CEnt& ent);

/// How many points what inserts show may take for an entity of a block: several times as many as
/// the entity takes itself, but no more than in proportion to its part of a file.
double effortOf(const CEnt& ent);
/// The same for the lines of a hatch outside of blocks.
double effortOfLines(const CEntHatch& hatch);

}  // namespace vek0::detail
