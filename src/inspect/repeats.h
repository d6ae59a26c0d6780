#pragma once

#include <cstdint>
#include <vector>

#include "vek0core/inspect/curvefaults.h"

namespace vek0::detail {

/// The first curve with the same edges as each, or the curve itself.
std::vector<std::uint32_t> firstOfSame(const std::vector<PLACED_CURVE>& curves, double same);

/// A part of an edge that an edge which begins earlier covers.
struct CoveredPart {
  std::size_t curve, edge;   ///< the covered one
  std::size_t other, cover;  ///< the one that covers it
  double from, to;           ///< parameters of the covered edge
  PNT_2D middle{0, 0};
  double length;
};

/// The covered parts of the edges of those curves for which `isIn`, see `findCurveFaults`.
std::vector<CoveredPart> coveredParts(const std::vector<PLACED_CURVE>& curves,
                                      const CURVE_LIMITS& limits, const std::vector<bool>& isIn);

/// Appends duplicates and overlaps, given the result of `firstOfSame`.
void findRepeats(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
                 const std::vector<std::uint32_t>& firsts, std::vector<CURVE_FAULT>& faults);

}  // namespace vek0::detail
