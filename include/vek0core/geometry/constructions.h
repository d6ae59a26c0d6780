#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/geometry/circle.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/path.h"
#include "vek0core/geometry/pnt.h"

// Points, lines and circles made from others, in the plane. Each tells whether there is
// what it was asked for, and leaves its outputs alone when there is not; numbers that are
// not finite have no construction. A negative radius counts as its magnitude.

/// The foot of the perpendicular on the whole line; none for a segment that is a point.
VEK0_API bool pntPerp(const PNT_2D& p, const LINE_2D& line, PNT_2D& out);
/// The nearest point of the whole circle, also of an arc's; none from the center.
VEK0_API bool pntPerp(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& out);

/// The point in which the whole lines through two segments cross ("calcola punto
/// intersezione" is Italian for "compute the intersection point"); none where they are
/// parallel or the same, exactly, or a segment is a point. See `PAR_LINE_2D::intersect`.
VEK0_API bool CalcolaPuntoIntersezione(const LINE_2D& a, const LINE_2D& b, PNT_2D& out);

/// The nearest point of the segment.
VEK0_API bool pntNearest(const PNT_2D& p, const LINE_2D& line, PNT_2D& out);
/// The nearest point of the circle; any from the center.
VEK0_API bool pntNearest(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& out);
/// The nearest point of the arc; from the center, where it starts.
VEK0_API bool pntNearest(const PNT_2D& p, const ARC_3D& arc, PNT_2D& out);
/// The nearest point of the path, z included; none of an empty one. Linear.
VEK0_API bool pntNearest(const PNT_2D& p, const PATH_3D& path, PNT_3D& out);

/// A radius above 0.
VEK0_API bool CreateCircle(const PNT_3D& center, double radius, CIRCLE_3D& out);
/// The circle on the diameter from p1 to p2, at the z of p1; none when they are the same.
VEK0_API bool CreateCircle(const PNT_3D& p1, const PNT_3D& p2, CIRCLE_3D& out);
/// See `CIRCLE_3D::Create`.
VEK0_API bool CreateCircle(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3, CIRCLE_3D& out);
/// The circle of that radius that touches the lines or circles of both edges, endless as
/// they are; of up to eight the one that touches them nearest to the two picks (least sum
/// of distances). At the z of the first edge. When `onA` and `onB` are given, they become
/// the points of contact.
VEK0_API bool CreateCircle(const EDGE_3D& a, const EDGE_3D& b, double radius, const PNT_2D& pickA,
                           const PNT_2D& pickB, CIRCLE_3D& out, PNT_2D* onA = nullptr,
                           PNT_2D* onB = nullptr);

/// The points where tangents from `p` touch the circle: 2 from outside, the one left of
/// the line to the center first; 1, `p` itself, from the circle, with the tolerance of its
/// intersections; 0 from inside. Outputs beyond the count keep their values.
VEK0_API int pntTang(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& t1, PNT_2D& t2);
/// Those of them that lie on the arc.
VEK0_API int pntTang(const PNT_2D& p, const ARC_3D& arc, PNT_2D& t1, PNT_2D& t2);

/// The tangents that two circles have in common, each from its point on `a` to that on
/// `b`: their number, 0 to 4, the outer ones first. Where the circles touch, the tangent
/// there is a segment without length.
VEK0_API int lineTang(const CIRCLE_3D& a, const CIRCLE_3D& b, LINE_2D (&lines)[4]);
