#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/hatch/fill.h"

/// Three or four corners in order around a part of a filled area; a triangle repeats its third
/// corner as the fourth, like the faces of a drawing.
struct HatchFace {
  PNT_3D p[4];
};

/// Which points are inside rings: those that they run around an odd number of times, or those that
/// they run around in one direction more often than in the other.
enum class InsideRule { EvenOdd, NonZero };

/// Covers the inside of a boundary (rings as `hatchRings` reads them) with faces that do not
/// overlap: trapezoids between edges of the boundary, cut at the heights of vertices and crossings.
/// All are at the z of the first boundary point.
///
/// The boundary may touch and cross itself. Parts thinner than the rounding of the coordinates are
/// omitted. `faces` is replaced; it is empty unless the status is `Done`. `TooDense`: there would
/// be more than `limit` faces or crossings. O(n log n) in edges plus crossings.
VEK0_API HatchStatus fillSolid(const std::vector<PNT_3D>& boundary, double limit,
                               std::vector<HatchFace>& faces,
                               InsideRule rule = InsideRule::EvenOdd);
