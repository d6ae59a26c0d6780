#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

/// An intersection of two edges: the point on the first one, and its parameters on both.
struct EDGE_CROSSING {
  PNT_3D pnt;
  double t, u;
};

/// A directed piece of a curve from p1 to p2: straight, or an arc of a circle. The common
/// representation of lines, circles, arcs and polyline segments.
///
/// It is a planar curve; z is interpolated linearly between its ends. A parameter is the fraction
/// of the length from p1: 0 at p1, 1 at p2; values outside [0, 1] lie on the carrier, the infinite
/// line or full circle. An arc keeps center and radius, so that parts of a circle lie on exactly
/// that circle. `sweep` is the angle from p1 to p2 in radians, positive counterclockwise, at most a
/// full turn; 0 for a straight edge, whose center, radius and angle are meaningless. The default
/// constructor leaves the other fields unset.
class VEK0_API EDGE_3D {
 public:
  EDGE_3D() = default;
  EDGE_3D(const PNT_3D& a, const PNT_3D& b) : p1(a), p2(b) {}
  explicit EDGE_3D(const LINE_3D& line) : EDGE_3D(line.p1, line.p2) {}
  /// Counterclockwise, as the arc runs. A negative radius is measured in the opposite direction.
  explicit EDGE_3D(const ARC_3D& arc);
  /// A full turn, starting on the positive x axis.
  explicit EDGE_3D(const CIRCLE_3D& circle);
  /// A polyline segment; straight if `createArcFromBulge` returns false.
  EDGE_3D(const PNT_3D& a, const PNT_3D& b, double bulge);
  /// `turn` radians from `startAngle`, with the given z at the ends.
  EDGE_3D(const PNT_2D& centre, double radius, double startAngle, double turn, double z1,
          double z2);

  bool isArc() const { return sweep != 0; }
  double length() const;  ///< in the plane
  /// The point at a parameter; exact at the ends.
  PNT_3D at(double t) const;
  /// Unit direction of travel at a parameter; (0, 0) for an edge of zero length.
  PNT_2D direction(double t) const;
  /// The parameter of the nearest point of the carrier. A point of a circle has several parameters,
  /// a turn apart; the one between the ends is preferred. Returns 0 for the center.
  double paramOf(const PNT_2D& p) const;
  /// The parameter of the nearest point of the edge itself, in [0, 1].
  double nearest(const PNT_2D& p) const;
  double dist(const PNT_2D& p) const { return at(nearest(p)).PNT_2D::dist(p); }

  /// The edge between two parameters, reversed if t1 > t2.
  EDGE_3D part(double t1, double t2) const;
  EDGE_3D reversed() const;
  void move(const PNT_3D& delta);
  /// Tangent of a quarter of the sweep; 0 for a straight edge.
  double bulge() const;
  /// The arc as entities store it: counterclockwise, at the z of p1.
  ARC_3D toArc() const;
  RECT_2D bdry() const;  ///< exact, in the plane

  /// Appends the common points of both edges. Edges on the same line or circle meet in the ends of
  /// their common part, if any. A point within `tolerance` drawing units of an end counts as on the
  /// edge, and at that end. With `carriers`, the carriers are intersected and parameters are
  /// unbounded; coincident carriers then have no common point.
  void intersect(const EDGE_3D& other, std::vector<EDGE_CROSSING>& out, double tolerance,
                 bool carriers = false) const;

  PNT_3D p1, p2;
  PNT_2D center{0, 0};
  double radius = 0;
  double startAngle = 0;  ///< of p1, as seen from the center
  double sweep = 0;
};
