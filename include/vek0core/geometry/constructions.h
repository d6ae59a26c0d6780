#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/geometry/circle.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/path.h"
#include "vek0core/geometry/pnt.h"

// Constructions of points, lines and circles from others, in the plane. Each returns whether a
// solution exists, and leaves its outputs unchanged if not; non-finite input has no solution. A
// negative radius counts as its magnitude.

/// The foot of the perpendicular on the infinite line; none for a segment of zero length.
VEK0_API bool pntPerp(const PNT_2D& p, const LINE_2D& line, PNT_2D& out);
/// The nearest point of the full circle, even for an arc; none if `p` is the center.
VEK0_API bool pntPerp(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& out);

/// The intersection of the infinite lines through two segments ("calcola punto intersezione" is
/// Italian for "compute the intersection point"); none if they are exactly parallel or identical,
/// or if a segment has zero length. See `PAR_LINE_2D::intersect`.
VEK0_API bool CalcolaPuntoIntersezione(const LINE_2D& a, const LINE_2D& b, PNT_2D& out);

/// The nearest point of the segment.
VEK0_API bool pntNearest(const PNT_2D& p, const LINE_2D& line, PNT_2D& out);
/// The nearest point of the circle; an arbitrary one if `p` is the center.
VEK0_API bool pntNearest(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& out);
/// The nearest point of the arc; its start if `p` is the center.
VEK0_API bool pntNearest(const PNT_2D& p, const ARC_3D& arc, PNT_2D& out);
/// The nearest point of the path, including its z; none if the path is empty. Linear.
VEK0_API bool pntNearest(const PNT_2D& p, const PATH_3D& path, PNT_3D& out);

/// The radius must be above 0.
VEK0_API bool CreateCircle(const PNT_3D& center, double radius, CIRCLE_3D& out);
/// The circle with the diameter p1 to p2, at the z of p1; none if the points coincide.
VEK0_API bool CreateCircle(const PNT_3D& p1, const PNT_3D& p2, CIRCLE_3D& out);
/// See `CIRCLE_3D::Create`.
VEK0_API bool CreateCircle(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3, CIRCLE_3D& out);
/// The circle of that radius tangent to the infinite lines or full circles of both edges; of up to
/// eight solutions, the one whose points of contact are nearest to the two picks (least sum of
/// distances). At the z of the first edge. `onA` and `onB`, if given, receive the points of
/// contact.
VEK0_API bool CreateCircle(const EDGE_3D& a, const EDGE_3D& b, double radius, const PNT_2D& pickA,
                           const PNT_2D& pickB, CIRCLE_3D& out, PNT_2D* onA = nullptr,
                           PNT_2D* onB = nullptr);

/// The points where the tangents from `p` touch the circle. Returns 2 if `p` is outside, the one
/// left of the line to the center first; 1, `p` itself, if `p` is on the circle, with the tolerance
/// of its intersections; 0 if inside. Outputs beyond the count keep their values.
VEK0_API int pntTang(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& t1, PNT_2D& t2);
/// As above, restricted to points on the arc.
VEK0_API int pntTang(const PNT_2D& p, const ARC_3D& arc, PNT_2D& t1, PNT_2D& t2);

/// The common tangents of two circles, each from its point on `a` to that on `b`, the outer ones
/// first. Returns their number, 0 to 4. Where the circles touch, the tangent is a segment of zero
/// length.
VEK0_API int lineTang(const CIRCLE_3D& a, const CIRCLE_3D& b, LINE_2D (&lines)[4]);
