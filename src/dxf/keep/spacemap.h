#pragma once

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// An affine map of space: the images of the unit vectors, and of a point, near which it is exact.
struct SpaceMap {
  PNT_3D x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
  PNT_3D origin{0, 0, 0};  ///< the image of `from`
  PNT_3D from{0, 0, 0};
  /// How far the linear part is from what is meant, relative to its size: the precision of the
  /// points that determined it. 0 for a map that was given.
  double noise = 0;

  /// The image of a direction.
  PNT_3D along(const PNT_3D& d) const {
    return PNT_3D(d.x * x.x + d.y * y.x + d.z * z.x, d.x * x.y + d.y * y.y + d.z * z.y,
                  d.x * x.z + d.y * y.z + d.z * z.z);
  }
  /// The image of a point.
  PNT_3D operator()(const PNT_3D& p) const { return along(p - from) + origin; }
};

/// Whether the map leaves every point where it is.
inline bool isIdentity(const SpaceMap& map) {
  return map.x == PNT_3D(1, 0, 0) && map.y == PNT_3D(0, 1, 0) && map.z == PNT_3D(0, 0, 1) &&
         map.origin == map.from;
}

}  // namespace vek0::detail
