#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::host {

/// A ring without its closing point.
using GeoRing = std::vector<PNT_3D>;

/// An outer ring, counterclockwise, and its holes, clockwise.
using GeoPolygon = std::vector<GeoRing>;

/// The enclosed area in the plane, positive if the ring runs counterclockwise.
double areaOf(const GeoRing& ring);

/// The polygons that rings enclose by the even-odd rule; rings without an area are left out. Rings
/// may touch, but should not cross. Where the search for the ring around a ring takes too long, the
/// rest are polygons of their own.
std::vector<GeoPolygon> nestRings(std::vector<GeoRing> rings);

}  // namespace vek0::host
