#pragma once

#include <cmath>

#include "vek0core/export.h"

class RECT_3D;

/// Point or vector in the plane, drawing units.
///
/// Equality is exact. The default constructor leaves the coordinates unset on purpose: points are
/// created in bulk and filled afterwards. They must not be read before that.
class VEK0_API PNT_2D {
 public:
  PNT_2D() {}  // NOLINT(modernize-use-equals-default): `= default` would zero on PNT_2D()
  PNT_2D(double px, double py) : x(px), y(py) {}
  PNT_2D(const PNT_2D&) = default;
  PNT_2D& operator=(const PNT_2D&) = default;
  virtual ~PNT_2D() = default;

  bool operator==(const PNT_2D& p) const { return x == p.x && y == p.y; }
  bool operator!=(const PNT_2D& p) const { return !(*this == p); }
  PNT_2D operator+(const PNT_2D& p) const { return {x + p.x, y + p.y}; }
  PNT_2D operator-(const PNT_2D& p) const { return {x - p.x, y - p.y}; }
  PNT_2D operator-() const { return {-x, -y}; }

  void get(double& px, double& py) const {
    px = x;
    py = y;
  }
  double getX() const { return x; }
  double getY() const { return y; }
  void set(double px, double py) {
    x = px;
    y = py;
  }
  void setX(double px) { x = px; }
  void setY(double py) { y = py; }

  /// Direction from here to `p` in radians, in [0, 2*pi), counterclockwise from the positive x
  /// axis; 0 if the points are equal.
  double angle(const PNT_2D& p) const;

  /// Distance in the plane.
  double dist(const PNT_2D& p) const { return dist(p.x, p.y); }
  double dist(double px, double py) const { return std::sqrt(dist_square(px, py)); }
  /// Its square, without the root.
  double dist_square(const PNT_2D& p) const { return dist_square(p.x, p.y); }
  double dist_square(double px, double py) const {
    return (px - x) * (px - x) + (py - y) * (py - y);
  }

  /// Rotates the point counterclockwise by `angleRad` about `center`.
  void rotate(const PNT_2D& center, double angleRad);

  double x, y;
};

/// Point or vector in space, drawing units. The remarks on `PNT_2D` apply here too; its planar
/// operations remain accessible and use x and y only.
class VEK0_API PNT_3D : public PNT_2D {
 public:
  PNT_3D() {}  // NOLINT(modernize-use-equals-default): see PNT_2D
  PNT_3D(double px, double py, double pz) : PNT_2D(px, py), z(pz) {}
  PNT_3D(const PNT_3D&) = default;
  PNT_3D& operator=(const PNT_3D&) = default;
  ~PNT_3D() override = default;

  using PNT_2D::operator==;
  using PNT_2D::operator!=;
  using PNT_2D::operator+;
  using PNT_2D::operator-;
  using PNT_2D::dist;
  using PNT_2D::dist_square;
  using PNT_2D::get;
  using PNT_2D::rotate;
  using PNT_2D::set;

  bool operator==(const PNT_3D& p) const { return x == p.x && y == p.y && z == p.z; }
  bool operator!=(const PNT_3D& p) const { return !(*this == p); }
  PNT_3D operator+(const PNT_3D& p) const { return {x + p.x, y + p.y, z + p.z}; }
  PNT_3D operator-(const PNT_3D& p) const { return {x - p.x, y - p.y, z - p.z}; }
  PNT_3D operator-() const { return {-x, -y, -z}; }

  void get(double& px, double& py, double& pz) const {
    px = x;
    py = y;
    pz = z;
  }
  double getZ() const { return z; }
  void set(double px, double py, double pz) {
    x = px;
    y = py;
    z = pz;
  }
  void setZ(double pz) { z = pz; }

  /// Distance in space.
  double dist(const PNT_3D& p) const { return dist(p.x, p.y, p.z); }
  double dist(double px, double py, double pz) const { return std::sqrt(dist_square(px, py, pz)); }
  /// Its square, without the root.
  double dist_square(const PNT_3D& p) const { return dist_square(p.x, p.y, p.z); }
  double dist_square(double px, double py, double pz) const {
    return PNT_2D::dist_square(px, py) + (pz - z) * (pz - z);
  }

  void move(const PNT_3D& delta) {
    x += delta.x;
    y += delta.y;
    z += delta.z;
  }
  /// Scales all three coordinates about `center`.
  void scale(const PNT_3D& center, double factor);
  /// Rotates the point by `angleRad` about the vertical axis through `center`, whose z is ignored;
  /// z is unchanged.
  void rotate(const PNT_3D& center, double angleRad);
  /// The degenerate box of this point.
  void calc_bdry(RECT_3D& box) const;

  double z;
};

/// Cross product a x b.
VEK0_API PNT_3D prodVect(const PNT_3D& a, const PNT_3D& b);

/// Normal of the turn p1, p2, p3: (p2 - p1) x (p3 - p2).
VEK0_API PNT_3D prodVect(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3);

/// Whether c is closer than 1e-6 drawing units to the line through a and b. Always false if a and b
/// coincide.
VEK0_API bool pntsInLine(const PNT_2D& a, const PNT_2D& b, const PNT_2D& c);

/// Whether every component of `prodVect(a, b, c)` is below 1e-6. Unlike the planar test, this is
/// not a distance: it depends on the lengths of both legs. Callers rely on each behavior.
VEK0_API bool pntsInLine(const PNT_3D& a, const PNT_3D& b, const PNT_3D& c);

/// Nearest integer, halves rounded up: 3 for 2.5, -2 for -2.5. Values outside the range of `int`
/// are clamped; NaN yields 0.
VEK0_API int iround(double v);
VEK0_API double fround(double v);  ///< the same as a double, without limits

/// Nearest integer, halves rounded down: 2 for 2.5, -3 for -2.5. Limits as for `iround`.
VEK0_API int iround_down(double v);
VEK0_API double fround_down(double v);  ///< the same as a double, without limits

/// Real roots of a*x^2 + b*x + c = 0 ("risolvi" is Italian for "solve").
///
/// Returns the number of roots written to x1 and x2:
///    2  two roots, in no particular order; equal when the discriminant is 0
///    1  a is 0, the equation is linear; the root is in x1
///    0  no real root
///   -1  a and b are 0 and c is not: no x fits
///   -2  a, b and c are 0: every x fits
/// Unused outputs keep their values.
///
/// Zero is compared exactly; a caller that wants a tolerance applies it first. With non-finite
/// coefficients the roots are non-finite. Uses the quadratic formula, rearranged so that no root is
/// a difference of nearly equal numbers.
VEK0_API int risolvi(double a, double b, double c, double& x1, double& x2);

/// Real roots of a*x^2 + 2*b*x + c = 0; results as `risolvi`.
VEK0_API int risolvi_2(double a, double b, double c, double& x1, double& x2);
