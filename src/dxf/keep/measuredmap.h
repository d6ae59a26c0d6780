#pragma once

#include "dxf/keep/spacemap.h"
#include "dxf/ocs.h"
#include "geometry/vector.h"

namespace vek0::detail {

/// The map that is probably meant, if the linear part is known with this relative precision:
/// numbers beside 0 and 1 become these, and turns about the vertical and uniform scales those by
/// the shortest decimals.
SpaceMap simplified(SpaceMap map, double noise);

/// An affine map of space with its measures. Noise that sines and cosines leave beside 0 and 1 is
/// removed, so that quarter turns are exact.
class MeasuredMap {
 public:
  explicit MeasuredMap(const SpaceMap& map);

  /// Whether it is finite and keeps solids solid. Nothing else holds if not.
  bool isUsable() const { return m_isUsable; }
  /// Whether it only moves.
  bool isMove() const { return m_isMove; }
  /// Whether it keeps angles.
  bool isSimilar() const { return m_isSimilar; }
  bool isMirroring() const { return m_isMirroring; }
  /// Factor of lengths of a similar map, exactly 1 if it is 1 up to noise; otherwise that of the X
  /// direction.
  double scale() const { return m_scale; }

  /// How a map that only moves does so.
  const PNT_3D& shift() const { return m_shift; }
  /// A point near those that the map is about; it is exact there.
  const PNT_3D& base() const { return m_map.from; }
  /// Relative difference up to which lengths are equal, and directions perpendicular.
  double tolerance() const { return m_tolerance; }

  PNT_3D point(const PNT_3D& p) const { return m_isMove ? p + m_shift : m_map(p); }
  PNT_3D vector(const PNT_3D& v) const { return m_map.along(v); }
  /// The image of a direction, as long as `v`.
  PNT_3D direction(const PNT_3D& v) const;

 private:
  SpaceMap m_map;
  double m_tolerance;
  PNT_3D m_shift{0, 0, 0};
  SpaceMap m_turn;  // the linear part of a similar map without its scale
  bool m_isUsable = false, m_isMove = false, m_isSimilar = false, m_isMirroring = false;
  double m_scale = 1;
};

/// A map as seen in the plane of a record (`PlaneAxes`): from coordinates in that plane to
/// coordinates in its image.
class MeasuredPlane {
 public:
  /// The normal of the image is that of the images of the plane's axes: a map that mirrors the
  /// plane turns the normal around, and within the plane nothing is mirrored.
  MeasuredPlane(const MeasuredMap& map, const PNT_3D& normal);
  /// The same with a given normal of the image; then the plane may be mirrored.
  MeasuredPlane(const MeasuredMap& map, const PNT_3D& normal, const PNT_3D& image);

  bool isUsable() const { return m_isUsable; }
  /// Whether circles in the plane stay circles.
  bool isSimilar() const { return m_isSimilar; }
  bool keepsNormal() const { return m_keepsNormal; }
  /// Whether left and right are exchanged in the plane, which only a given normal allows.
  bool isMirrored() const { return m_x.x * m_y.y < m_x.y * m_y.x; }
  /// The normal of the image.
  const PNT_3D& normal() const { return m_to.z; }
  /// Factor of lengths in the plane, exactly 1 if it is 1 up to noise; holds for similar maps.
  double scale() const { return m_scale; }
  /// Factor of lengths along the normal, negative where they point to the other side of the image.
  double rise() const { return m_z.z; }

  PNT_3D point(const PNT_3D& p) const { return vector(p - m_base) + m_shift; }
  PNT_3D vector(const PNT_3D& v) const;
  /// The image of a direction in degrees, in [0, 360).
  double angle(double degrees) const;
  /// How much directions turn, in degrees, or if the plane is mirrored, the sum of a direction and
  /// its image; holds for similar maps.
  double turn() const { return m_turn; }

 private:
  void measure(const MeasuredMap& map);

  PlaneAxes m_from, m_to;
  PNT_3D m_x{1, 0, 0}, m_y{0, 1, 0}, m_z{0, 0, 1};
  PNT_3D m_base{0, 0, 0}, m_shift{0, 0, 0};
  bool m_isUsable = true, m_isSimilar = true, m_keepsNormal = true;
  double m_scale = 1, m_turn = 0;
};

/// A vector without the noise that cosines leave beside 0 and 1, relative to its largest
/// coordinate.
PNT_3D cleaned(const PNT_3D& v);

/// An angle in degrees in [0, 360), without the noise of computing it.
double tidyAngle(double degrees);

/// Relative difference up to which two lengths are equal, and directions perpendicular.
inline constexpr double kSimilarity = 1e-9;

inline bool arePerpendicular(const PNT_3D& a, const PNT_3D& b, double tolerance = kSimilarity) {
  return std::fabs(dot(a, b)) <= tolerance * length(a) * length(b);
}
inline PNT_3D scaled(const PNT_3D& v, double factor) {
  return PNT_3D(v.x * factor, v.y * factor, v.z * factor);
}

}  // namespace vek0::detail
