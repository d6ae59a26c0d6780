#pragma once

#include <cmath>

#include "geometry/vector.h"
#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// The plane of a record: its axes follow from the normal by the format's arbitrary axis rule (DXF
/// reference: X = Y axis of the world cross normal where the normal is within 1/64 of the Z axis in
/// both x and y, else Z axis cross normal).
class PlaneAxes {
 public:
  /// The normal may have any length; if it is zero or non-finite, the Z axis is used.
  explicit PlaneAxes(const PNT_3D& normal) {
    const double length = detail::length(normal);
    if (!(length > 0) || !std::isfinite(length)) return;
    z = PNT_3D(normal.x / length, normal.y / length, normal.z / length);
    constexpr double limit = 1.0 / 64;
    const bool steep = std::fabs(z.x) < limit && std::fabs(z.y) < limit;
    x = unit(steep ? PNT_3D(z.z, 0, -z.x) : PNT_3D(-z.y, z.x, 0));
    y = PNT_3D(z.y * x.z - z.z * x.y, z.z * x.x - z.x * x.z, z.x * x.y - z.y * x.x);
  }

  /// Whether plane and world are the same.
  bool isWorld() const { return z.z == 1; }
  /// Whether the plane is the world's XY plane seen from below: x and z are negated.
  bool isMirrored() const { return z.z == -1; }

  /// Whether the plane shows its back when seen from above.
  bool isFromBelow() const { return z.z < 0; }

  PNT_3D toWorld(const PNT_3D& p) const {
    return PNT_3D(p.x * x.x + p.y * y.x + p.z * z.x, p.x * x.y + p.y * y.y + p.z * z.y,
                  p.x * x.z + p.y * y.z + p.z * z.z);
  }

  PNT_3D fromWorld(const PNT_3D& p) const {
    return PNT_3D(p.x * x.x + p.y * x.y + p.z * x.z, p.x * y.x + p.y * y.y + p.z * y.z,
                  p.x * z.x + p.y * z.y + p.z * z.z);
  }

  PNT_3D x = PNT_3D(1, 0, 0), y = PNT_3D(0, 1, 0), z = PNT_3D(0, 0, 1);

 private:
  static PNT_3D unit(const PNT_3D& v) {
    const double length = detail::length(v);
    return PNT_3D(v.x / length, v.y / length, v.z / length);
  }
};

}  // namespace vek0::detail
