#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

// A hatch keeps all rings of its boundary in one vector of points. A single ring is stored open.
// Several are stored one after the other, each closed by an exact repetition of its first point.
// Areas inside an odd number of rings are hatched, so neither the order nor the direction of the
// rings matters.

/// One ring of a boundary: `count` points from index `first`. The point that closes a
/// stored ring is not counted; the last point is joined to the first.
struct HatchRing {
  std::size_t first;
  std::size_t count;
};

/// The rings of a stored boundary.
///
/// A ring ends where its first point recurs. A boundary that divides completely into such rings is
/// read that way; any other is one open ring. An open ring can accidentally look like several. With
/// two, the edges between them would run back and forth and enclose nothing; with more they matter,
/// so `joinHatchRings` avoids this. Linear in the number of points.
VEK0_API std::vector<HatchRing> hatchRings(const std::vector<PNT_3D>& boundary);

/// The boundary that stores these rings, each given open or closed.
///
/// Consecutive equal points and rings of fewer than three points are omitted. A ring may start at a
/// different point than the given one, so that its closing point is unambiguous: one that occurs
/// nowhere else in the boundary, or at least nowhere else in the ring. A ring without such a point
/// is stored as several that enclose the same area. O(n log n) in the number of points.
VEK0_API std::vector<PNT_3D> joinHatchRings(const std::vector<std::vector<PNT_3D>>& rings);

/// Normalizes a boundary for storage in a hatch: `out` becomes `in` without consecutive equal
/// points inside a ring, without rings of fewer than three points, and, if one ring remains,
/// without its closing point. `in` and `out` may be the same vector.
// NOLINTNEXTLINE(bugprone-reserved-identifier): a given name
VEK0_API void _hatch_compactVertex(const std::vector<PNT_3D>& in, std::vector<PNT_3D>& out);
