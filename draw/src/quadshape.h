#pragma once

#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// What the outline of a filled face makes of its area. `Crossed`: two opposite sides cross,
/// so that its halves run opposite ways. `Flat`: all corners are on one line, but for rounding.
enum class QuadShape { Simple, Crossed, Flat };

/// Of three or four corners.
QuadShape shapeOfQuad(const std::vector<PNT_2D>& corners);

}  // namespace vek0::detail
