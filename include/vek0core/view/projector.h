#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

/// Maps a drawing to the plane of a view and back, by parallel projection.
///
/// One coordinate of the drawing is the depth of the point. It is preserved, so that `to3D` is the
/// inverse of `to2D`. Lengths are drawing units on both sides. The order of the virtual functions
/// is fixed.
class VEK0_API IProjector {
 public:
  /// Box of the projected box; empty when `box` is.
  virtual void to2D(const RECT_3D& box, RECT_2D& out) const = 0;
  virtual void to2D(const PNT_3D& p, PNT_2D& out, double& depth) const = 0;
  virtual void to2D(const PNT_3D& p, PNT_2D& out) const;
  virtual void to2D(double x, double y, double z, double& u, double& v) const = 0;
  virtual void to3D(const PNT_2D& p, double depth, PNT_3D& out) const;
  virtual void to3D(double u, double v, double depth, double& x, double& y, double& z) const = 0;
  virtual ~IProjector() = default;

  /// Projects both ends.
  void to2D(const LINE_3D& line, LINE_2D& out) const;
  /// Projects both ends; each one's depth becomes its z.
  void to2D(const LINE_3D& line, LINE_3D& out) const;

 protected:
  IProjector() = default;
  IProjector(const IProjector&) = default;
  IProjector& operator=(const IProjector&) = default;
};

/// Seen from above: (u, v) is (x, y), the depth is z.
class VEK0_API CPOProjector : public IProjector {
 public:
  using IProjector::to2D;
  using IProjector::to3D;
  void to2D(const RECT_3D& box, RECT_2D& out) const override;
  void to2D(const PNT_3D& p, PNT_2D& out, double& depth) const override;
  void to2D(double x, double y, double z, double& u, double& v) const override;
  void to3D(double u, double v, double depth, double& x, double& y, double& z) const override;
};

/// Seen from the front: (u, v) is (x, z), the depth is y.
class VEK0_API CPVProjector : public IProjector {
 public:
  using IProjector::to2D;
  using IProjector::to3D;
  void to2D(const RECT_3D& box, RECT_2D& out) const override;
  void to2D(const PNT_3D& p, PNT_2D& out, double& depth) const override;
  void to2D(double x, double y, double z, double& u, double& v) const override;
  void to3D(double u, double v, double depth, double& x, double& y, double& z) const override;
};

/// Seen from the side: (u, v) is (-y, z), the depth is x.
class VEK0_API CPLProjector : public IProjector {
 public:
  using IProjector::to2D;
  using IProjector::to3D;
  void to2D(const RECT_3D& box, RECT_2D& out) const override;
  void to2D(const PNT_3D& p, PNT_2D& out, double& depth) const override;
  void to2D(double x, double y, double z, double& u, double& v) const override;
  void to3D(double u, double v, double depth, double& x, double& y, double& z) const override;
};

/// Seen from above with the view rotated counterclockwise about a center, so that the drawing
/// appears rotated clockwise; the center maps to (0, 0). The depth is z.
class VEK0_API CPORotatedProjector : public IProjector {
 public:
  /// The angle is in radians.
  CPORotatedProjector(double angleRad, double cx, double cy) { UpdateParams(angleRad, cx, cy); }
  void UpdateParams(double angleRad, double cx, double cy);
  double getAngle() const { return m_angle; }  ///< radians, as given

  using IProjector::to2D;
  using IProjector::to3D;
  /// Box of the four projected corners; not tight unless the angle is a multiple of 90 degrees.
  void to2D(const RECT_3D& box, RECT_2D& out) const override;
  void to2D(const PNT_3D& p, PNT_2D& out, double& depth) const override;
  void to2D(double x, double y, double z, double& u, double& v) const override;
  void to3D(double u, double v, double depth, double& x, double& y, double& z) const override;

 private:
  double m_angle, m_cos, m_sin, m_cx, m_cy;
};

/// General parallel view: u = a*x + c*y and v = b*x + d*y + z; the depth is z. Heights appear
/// unscaled along v, whatever the coefficients do to x and y.
class VEK0_API CParalProjector : public IProjector {
 public:
  /// a*d - b*c must not be 0: such a view collapses the plan to a line, and `to3D` yields
  /// non-finite numbers.
  CParalProjector(double a, double b, double c, double d);

  using IProjector::to2D;
  using IProjector::to3D;
  /// The smallest box of the eight projected corners.
  void to2D(const RECT_3D& box, RECT_2D& out) const override;
  void to2D(const PNT_3D& p, PNT_2D& out, double& depth) const override;
  void to2D(double x, double y, double z, double& u, double& v) const override;
  void to3D(double u, double v, double depth, double& x, double& y, double& z) const override;

 private:
  double m_a, m_b, m_c, m_d, m_invDet;
};
