#pragma once

#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// One side of a ring; the points belong to the boundary. Never of length 0 in the plane.
struct RingEdge {
  const PNT_3D* from;
  const PNT_3D* to;
};

/// The edges of all rings of a boundary, ring after ring, each closed. Rings of fewer than three
/// points, not counting repetitions, have no edges.
std::vector<RingEdge> ringEdges(const std::vector<PNT_3D>& boundary);

/// Whether all planar coordinates are finite and within 1e150, so that products of two are finite,
/// and the first z is finite.
bool hasUsableCoordinates(const std::vector<PNT_3D>& boundary);

}  // namespace vek0::detail
