#pragma once

#include <cstddef>

class CEnt;
class CEntHatch;

namespace vek0::detail {

// Pictures are budgeted in points handed to a painter; other costs are converted to points.
constexpr std::size_t kPointsPerLetter = 16;
constexpr std::size_t kPointsPerArc = 16;

/// Approximate number of points needed to draw an entity of a block, without the content of
/// inserts.
double pointsOf(const CEnt& ent);

/// Effort, in points, that an entity of a block adds: several times as many as it needs itself, but
/// only in proportion to its part of the file.
double effortOf(const CEnt& ent);
/// The same for the lines of a hatch outside blocks.
double effortOfLines(const CEntHatch& hatch);

}  // namespace vek0::detail
