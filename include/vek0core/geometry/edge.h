#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

/// A common point of two edges: where it is on the first one, and its parameters on both.
struct EDGE_CROSSING {
  PNT_3D pnt;
  double t, u;
};

/// A directed piece of a curve from p1 to p2: straight, or an arc of a circle. What lines, circles,
/// arcs and the segments of polylines have in common.
///
/// It lives in the plane; z goes linearly from end to end. A parameter is the share of the length
/// from p1: 0 there, 1 at p2; others lie on the carrier, the whole line or circle. An arc keeps
/// center and radius, so that parts of a circle stay on that circle exactly. `sweep` is the angle
/// from p1 to p2 in radians, positive counterclockwise, at most a full turn; 0 for a straight edge,
/// whose center, radius and angle mean nothing. The default constructor sets nothing else.
class VEK0_API EDGE_3D {
 public:
  EDGE_3D() = default;
  EDGE_3D(const PNT_3D& a, const PNT_3D& b) : p1(a), p2(b) {}
  explicit EDGE_3D(const LINE_3D& line) : EDGE_3D(line.p1, line.p2) {}
  /// Counterclockwise, as the arc runs. A negative radius is measured the other way.
  explicit EDGE_3D(const ARC_3D& arc);
  /// A full turn from the direction of the x axis.
  explicit EDGE_3D(const CIRCLE_3D& circle);
  /// A segment of a polyline; straight when `createArcFromBulge` says so.
  EDGE_3D(const PNT_3D& a, const PNT_3D& b, double bulge);
  /// `turn` radians from `startAngle`, with these z at the ends.
  EDGE_3D(const PNT_2D& centre, double radius, double startAngle, double turn, double z1,
          double z2);

  bool isArc() const { return sweep != 0; }
  double length() const;  ///< in the plane
  /// The point at a parameter; the ends exactly.
  PNT_3D at(double t) const;
  /// Direction of the way at a parameter, of length 1; (0, 0) for an edge without length.
  PNT_2D direction(double t) const;
  /// The parameter of the nearest point of the carrier, between the ends when there is a
  /// choice of turns: the same point of a circle has several. The center itself gives 0.
  double paramOf(const PNT_2D& p) const;
  /// The parameter of the nearest point of the edge itself, in [0, 1].
  double nearest(const PNT_2D& p) const;
  double dist(const PNT_2D& p) const { return at(nearest(p)).PNT_2D::dist(p); }

  /// The edge between two parameters, against the direction when t1 > t2.
  EDGE_3D part(double t1, double t2) const;
  EDGE_3D reversed() const;
  void move(const PNT_3D& delta);
  /// Tangent of a quarter of the sweep; 0 for a straight edge.
  double bulge() const;
  /// The arc as entities have it, counterclockwise, at the z of p1.
  ARC_3D toArc() const;
  RECT_2D bdry() const;  ///< exact, in the plane

  /// Appends the common points of both edges. Edges that lie on one line or circle meet in
  /// the ends of their common part, if any. What lies within `tolerance` drawing units of
  /// an end counts as on the edge, and at that end. With `carriers` the edges count as
  /// endless and parameters have no bounds; carriers that coincide then have no point.
  void intersect(const EDGE_3D& other, std::vector<EDGE_CROSSING>& out, double tolerance,
                 bool carriers = false) const;

  PNT_3D p1, p2;
  PNT_2D center{0, 0};
  double radius = 0;
  double startAngle = 0;  ///< of p1 seen from the center
  double sweep = 0;
};
