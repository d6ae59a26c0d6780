#pragma once

#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// Shape of a filled face's outline. `Crossed`: two opposite sides cross, so that its halves have
/// opposite orientation. `Flat`: all corners are collinear, up to rounding.
enum class QuadShape { Simple, Crossed, Flat };

/// Of three or four corners.
QuadShape shapeOfQuad(const std::vector<PNT_2D>& corners);

}  // namespace vek0::detail
