#pragma once

#include <algorithm>
#include <cmath>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// Difference between two distances to a circle's center within which they count as tangent.
inline double touchTolerance(double radius) { return 1e-12 * std::max(1.0, std::fabs(radius)); }

/// Limit for coordinates, in drawing units, where squares and products must remain finite.
inline constexpr double kLargestCoordinate = 1e100;

/// Whether all coordinates are finite and within the limit.
inline bool inReach(const PNT_3D& p) {
  return std::fabs(p.x) <= kLargestCoordinate && std::fabs(p.y) <= kLargestCoordinate &&
         std::fabs(p.z) <= kLargestCoordinate;
}

inline PNT_3D times(const PNT_3D& v, double factor) {
  return {v.x * factor, v.y * factor, v.z * factor};
}

inline double dot(const PNT_3D& a, const PNT_3D& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline PNT_3D cross(const PNT_3D& a, const PNT_3D& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double dot(const PNT_2D& a, const PNT_2D& b) { return a.x * b.x + a.y * b.y; }
inline double cross(const PNT_2D& a, const PNT_2D& b) { return a.x * b.y - a.y * b.x; }

/// Standard libraries differ in the last digits of their functions of three arguments.
inline double length(const PNT_3D& v) {
  const double largest = std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)});
  if (!(largest > 0) || std::isinf(largest)) return std::fabs(v.x + v.y + v.z);
  const double x = v.x / largest, y = v.y / largest, z = v.z / largest;
  return largest * std::sqrt(x * x + y * y + z * z);
}

/// Returns false, leaving the vector unchanged, if its length is zero or too small to divide by.
inline bool makeUnit(PNT_3D& v) {
  const double l = length(v);
  if (!(l > 0) || !std::isfinite(1 / l)) return false;
  v = times(v, 1 / l);
  return true;
}

}  // namespace vek0::detail
