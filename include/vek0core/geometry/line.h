#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

class PAR_LINE_2D;

/// Segment in the plane from p1 to p2, drawing units. Comparison is exact; the
/// default constructor leaves the points unset.
class VEK0_API LINE_2D {
 public:
  LINE_2D() = default;
  LINE_2D(double x1, double y1, double x2, double y2) : p1(x1, y1), p2(x2, y2) {}
  LINE_2D(const PNT_2D& a, const PNT_2D& b) : p1(a), p2(b) {}
  /// From the origin of the line to origin + direction.
  explicit LINE_2D(const PAR_LINE_2D& line);

  bool operator==(const LINE_2D& l) const { return p1 == l.p1 && p2 == l.p2; }
  bool operator!=(const LINE_2D& l) const { return !(*this == l); }

  void get(PNT_2D& a, PNT_2D& b) const {
    a = p1;
    b = p2;
  }
  void get(double& x1, double& y1, double& x2, double& y2) const {
    p1.get(x1, y1);
    p2.get(x2, y2);
  }
  void set(const PNT_2D& a, const PNT_2D& b) {
    p1 = a;
    p2 = b;
  }
  void set(double x1, double y1, double x2, double y2) {
    p1.set(x1, y1);
    p2.set(x2, y2);
  }

  void calc_bdry(RECT_2D& box) const { box.set(p1, p2); }

  /// Signed distance from `p` to the infinite line. The sign is that of the normalized implicit
  /// line (`IMP_LINE_2D::normalize`), not of the direction. A segment shorter than 1e-12 on both
  /// axes counts as a point: the distance is then positive.
  double dist(const PNT_2D& p) const;

  /// Whether the segments cross or touch; `pt` is then the common point. False for parallel and
  /// overlapping segments (determinant within 1e-12).
  bool intersect(const LINE_2D& other, PNT_2D& pt) const;
  bool intersect(const LINE_2D& other) const;  ///< the same without the point

  /// Whether `p` lies strictly left of the direction p1 to p2.
  bool ptLeftSide(const PNT_2D& p) const;

  PNT_2D p1, p2;
};

/// Segment in space from p1 to p2, drawing units.
class VEK0_API LINE_3D {
 public:
  LINE_3D() = default;
  LINE_3D(double x1, double y1, double z1, double x2, double y2, double z2)
      : p1(x1, y1, z1), p2(x2, y2, z2) {}
  LINE_3D(const PNT_3D& a, const PNT_3D& b) : p1(a), p2(b) {}

  bool operator==(const LINE_3D& l) const { return p1 == l.p1 && p2 == l.p2; }
  bool operator!=(const LINE_3D& l) const { return !(*this == l); }

  void get(PNT_3D& a, PNT_3D& b) const {
    a = p1;
    b = p2;
  }
  void get(double& x1, double& y1, double& z1, double& x2, double& y2, double& z2) const {
    p1.get(x1, y1, z1);
    p2.get(x2, y2, z2);
  }
  void set(const PNT_3D& a, const PNT_3D& b) {
    p1 = a;
    p2 = b;
  }
  void set(double x1, double y1, double z1, double x2, double y2, double z2) {
    p1.set(x1, y1, z1);
    p2.set(x2, y2, z2);
  }

  void calc_bdry(RECT_3D& box) const { box.set(p1, p2); }
  void move(const PNT_3D& delta);
  void scale(const PNT_3D& center, double factor);
  /// About the vertical axis through `center`, radians.
  void rotate(const PNT_3D& center, double angleRad);
  /// Middle of the segment.
  void ptMedio(PNT_3D& mid) const;

  /// Whether `p` lies strictly left of the direction, seen from above. Vertical segments (p1.x
  /// equals p2.x exactly) are decided by x alone, whatever their direction; callers rely on it.
  bool ptLeftSide(const PNT_3D& p) const;

  PNT_3D p1, p2;
};

/// The line a*x + b*y + c = 0.
class VEK0_API IMP_LINE_2D {
 public:
  IMP_LINE_2D() = default;
  IMP_LINE_2D(double pa, double pb, double pc) : a(pa), b(pb), c(pc) {}
  /// The line through two points, not normalized.
  IMP_LINE_2D(const PNT_2D& p1, const PNT_2D& p2) { create(p1, p2); }
  explicit IMP_LINE_2D(const LINE_2D& line) : IMP_LINE_2D(line.p1, line.p2) {}
  /// Parallel to `line`: same a and b, c smaller by d times the length of (a, b).
  IMP_LINE_2D(const IMP_LINE_2D& line, double d);

  void create(const PNT_2D& p1, const PNT_2D& p2);
  void get(double& pa, double& pb, double& pc) const {
    pa = a;
    pb = b;
    pc = c;
  }
  void set(double pa, double pb, double pc) {
    a = pa;
    b = pb;
    c = pc;
  }

  double eval(const PNT_2D& p) const { return eval(p.x, p.y); }
  double eval(double x, double y) const { return a * x + b * y + c; }

  /// Scales to a^2 + b^2 = 1 with c <= 1e-12, and b >= -1e-12 for a line through the origin. `eval`
  /// is then the signed distance. A line with a = b = 0 is left unchanged.
  void normalize();

  /// Common point of two lines; false when they are parallel or the same, each within 1e-12 of the
  /// unnormalized coefficients.
  bool intersect(const IMP_LINE_2D& other, PNT_2D& pt) const;
  /// The perpendicular through `p`.
  void perpend(const PNT_2D& p, IMP_LINE_2D& out) const;
  /// Whether both points lie strictly on the same side.
  bool sameSide(const PNT_2D& p, const PNT_2D& q) const;

  double a, b, c;
};

/// The line origin + t * direction in the plane. The direction need not have unit length: for a
/// line through two points, t is 0 at the first and 1 at the second.
class VEK0_API PAR_LINE_2D {
 public:
  PAR_LINE_2D() = default;
  PAR_LINE_2D(double px0, double py0, double pdx, double pdy)
      : x0(px0), y0(py0), dx(pdx), dy(pdy) {}
  PAR_LINE_2D(const PNT_2D& p1, const PNT_2D& p2) { create(p1, p2); }
  explicit PAR_LINE_2D(const LINE_2D& line) : PAR_LINE_2D(line.p1, line.p2) {}
  /// Along `line` from the given origin, with unit direction; direction (0, 0) when
  /// both coefficients are within 1e-12 of 0.
  PAR_LINE_2D(const IMP_LINE_2D& line, double px0, double py0);

  void create(const PNT_2D& p1, const PNT_2D& p2);
  /// Whether the direction is within 1e-12 of zero.
  bool IsNull() const;
  double length() const { return std::sqrt(dx * dx + dy * dy); }  ///< of the direction
  /// Scales the direction to unit length; a zero direction is left unchanged.
  void Normalize();
  void calcPt(double t, PNT_2D& p) const { p.set(x0 + t * dx, y0 + t * dy); }
  /// Parameter of `p`, or of its projection if it is not on the line; 0 if the direction is (0, 0).
  double calcParam(const PNT_2D& p) const;

  /// Returns 0 if there is no common point, 1 if the lines coincide, 2 if they cross, at parameter
  /// t (and u on the other line). Zero is compared exactly.
  int intersect(const IMP_LINE_2D& line, double& t) const;
  int intersect(const PAR_LINE_2D& other, double& t, double& u) const;  ///< likewise

  bool sameSide(const PNT_2D& p, const PNT_2D& q) const;
  /// Signed distance, positive to the right of the direction; the distance to the origin point if
  /// the direction is (0, 0).
  double dist(const PNT_2D& p) const;

  double x0, y0, dx, dy;
};

/// The line origin + t * direction in space.
class VEK0_API PAR_LINE_3D {
 public:
  PAR_LINE_3D() = default;
  PAR_LINE_3D(double px0, double py0, double pz0, double pdx, double pdy, double pdz)
      : x0(px0), y0(py0), dx(pdx), dy(pdy), z0(pz0), dz(pdz) {}
  PAR_LINE_3D(const PNT_3D& p1, const PNT_3D& p2) { create(p1, p2); }
  explicit PAR_LINE_3D(const LINE_3D& line) : PAR_LINE_3D(line.p1, line.p2) {}

  void create(const PNT_3D& p1, const PNT_3D& p2);
  void calcPt(double t, PNT_3D& p) const { p.set(x0 + t * dx, y0 + t * dy, z0 + t * dz); }
  /// Parameter of the projection of `p`; 0 if the direction is zero.
  double calcParam(const PNT_3D& p) const;

  double x0, y0, dx, dy, z0, dz;
};
