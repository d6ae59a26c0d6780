#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

/// Circle in a plane z = constant: a center (the base class) and a radius, in drawing units. Files
/// contain zero and negative radii; they are kept, and extents use the magnitude. Comparison is
/// exact; the default constructor sets nothing.
///
/// The `intersect` operations use x and y only and return the number of real common points, 0 to 2.
/// If there is one, both outputs hold it; if none, they keep their values. A distance within 1e-12
/// * max(1, radius) of tangency counts as tangent.
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

  /// The circle through three points, at the z of the first. Returns false, leaving the circle
  /// unchanged, when they are collinear or coincide (cross product within 1e-12 of the square of
  /// the longest side).
  bool Create(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3);

  /// Point at `angleRad` from the positive x axis.
  PNT_3D getPntAngle(double angleRad) const;

  /// Scales the center about `center` and multiplies the radius, which becomes
  /// negative for a negative factor.
  void scale(const PNT_3D& center, double factor);

  void calc_bdry(RECT_3D& box) const;
  /// Distance from a point to the curve in the plane, never negative.
  double dist(const PNT_2D& p) const;

  /// Common points with the segment.
  long intersect(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;
  /// Common points with the whole line.
  long intersect(const IMP_LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;
  /// Parameters of the common points with the whole line, ascending.
  long intersect(const PAR_LINE_2D& line, double& t1, double& t2) const;
  /// Common points with another circle; none if the circles are identical.
  long intersect(const CIRCLE_3D& other, PNT_2D* p1, PNT_2D* p2) const;

  /// Common points with a horizontal (vertical) segment; the constant coordinate is copied from its
  /// first point and thus exact, while the general method rounds it.
  long intersect_hor(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;
  long intersect_ver(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const;  ///< see above

  double radius;
};
