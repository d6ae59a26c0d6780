#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

/// Circle in a plane z = constant: a center (the point that it is) and a radius, in
/// drawing units. Files contain radii of zero and less; they are kept, and extents
/// use the magnitude. Comparison is exact; the default constructor sets nothing.
///
/// The `intersect` operations look at x and y only and return the number of real
/// common points, 0 to 2. With one, both outputs hold it; with none they keep their
/// values. A distance within 1e-12 * max(1, radius) of touching counts as touching.
class VEK0_API CIRCLE_3D : public PNT_3D {
 public:
  CIRCLE_3D() = default;
  CIRCLE_3D(double cx, double cy, double cz, double r) : PNT_3D(cx, cy, cz), radius(r) {}

  bool operator==(const CIRCLE_3D& c) const { return PNT_3D::operator==(c) && radius == c.radius; }
  bool operator!=(const CIRCLE_3D& c) const { return !(*this == c); }

  using PNT_3D::get;
  using PNT_3D::set;
  void get(double& cx, double& cy, double& cz, double& r) const {
    PNT_3D::get(cx, cy, cz);
    r = radius;
  }
  void set(double cx, double cy, double cz, double r) {
    PNT_3D::set(cx, cy, cz);
    radius = r;
  }

  /// The circle through three points, at the z of the first. False, and unchanged,
  /// when they lie in line or coincide (cross product within 1e-12 of the square of
  /// the longest side).
  bool Create(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3);

  /// Point at `angleRad` from the positive x axis.
  PNT_3D getPntAngle(double angleRad) const;

  /// Scales the center about `center` and multiplies the radius, which becomes
  /// negative for a negative factor.
  void scale(const PNT_3D& center, double factor);

  void calc_bdry(RECT_3D& box) const;
  /// Distance of a point from the curve in the plane, never negative.
  double dist(const PNT_2D& p) const;

  /// Common points with the segment.
  long intersect(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;
  /// Common points with the whole line.
  long intersect(const IMP_LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;
  /// Parameters of the common points with the whole line, ascending.
  long intersect(const PAR_LINE_2D& line, double& t1, double& t2) const;
  /// Common points with another circle; none with the same circle.
  long intersect(const CIRCLE_3D& other, PNT_2D* p1, PNT_2D* p2) const;

  /// Common points with a segment of one y (of one x), whose other coordinate is
  /// taken from its first point: exact there, where the general way rounds.
  long intersect_hor(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;
  long intersect_ver(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;  ///< see above

  double radius;
};
