#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

// A hatch keeps all rings of its boundary in one vector of points. A single ring is
// stored open. Of several, each is stored closed, its first point repeated exactly at
// its end, one after the other. What is inside an odd number of rings is hatched, so
// neither the order nor the direction of the rings matters.

/// One ring of a boundary: `count` points from index `first`. The point that closes a
/// stored ring is not counted; the last point is joined to the first.
struct HatchRing {
  std::size_t first;
  std::size_t count;
};

/// The rings of a stored boundary.
///
/// A ring ends where its first point comes back. A boundary that falls completely into
/// such rings is read so; any other is one open ring. An open ring can look like several by
/// chance. Of two, the edges between them would run there and back and enclose nothing; of
/// more they matter, so `joinHatchRings` avoids this. Linear in the number of points.
VEK0_API std::vector<HatchRing> hatchRings(const std::vector<PNT_3D>& boundary);

/// The boundary that stores these rings, each given open or closed.
///
/// Equal neighbors and rings of fewer than three points are left out. A ring may be started
/// at another of its points than the given one, so that the point that closes it can be
/// told: one that occurs nowhere else in the boundary, or else nowhere else in the ring. A
/// ring without such a point is stored as several that enclose the same area. Linear-
/// logarithmic in the number of points.
VEK0_API std::vector<PNT_3D> joinHatchRings(const std::vector<std::vector<PNT_3D>>& rings);

/// Cleans a boundary as a hatch stores it: `out` becomes `in` without equal neighbors
/// inside a ring, without rings of fewer than three points, and, when one ring remains,
/// without the point that closes it. `in` and `out` may be the same vector.
VEK0_API void _hatch_compactVertex(const std::vector<PNT_3D>& in, std::vector<PNT_3D>& out);
