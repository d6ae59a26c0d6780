#pragma once

#include <vector>

#include "vek0core/geometry/pnt.h"
#include "vek0core/polyline/silhouette.h"

namespace vek0::detail {

using Rings = std::vector<std::vector<PNT_3D>>;

/// What a chain with widths covers, wherever it crosses itself: rings for the non-zero rule.
/// At least one point.
Rings ribbonRings(const std::vector<WIDE_VERTEX>& points, bool closed);

/// What a chain covers beside those rings: where a segment is too short for the corners of
/// its sides, a side runs back and cuts a hole into what the others cover. Mostly nothing.
Rings patchesOfFolds(const std::vector<WIDE_VERTEX>& points, bool closed);

}  // namespace vek0::detail
