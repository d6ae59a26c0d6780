#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/path.h"
#include "vek0core/geometry/pnt.h"

// Editing operations on curves. Each returns false, leaving its outputs unchanged, when it is
// impossible. Picks are points near the part that the user means.

/// Cuts a path at its crossings with others and removes the part around the pick. `out` receives
/// the rest: one path, or two if the path is open. False when nothing crosses it, or when a closed
/// path has only one crossing. Near-linear in all edges.
VEK0_API bool trimPath(const PATH_3D& path, const std::vector<PATH_3D>& cutters, const PNT_2D& pick,
                       std::vector<PATH_3D>& out);

/// Lengthens the end of an open path that is nearer to the pick, along its line or circle, to the
/// first boundary it meets. False if it meets none before the circle closes.
VEK0_API bool extendPath(PATH_3D& path, const std::vector<PATH_3D>& bounds, const PNT_2D& pick);

/// Two edges joined at a corner: each trimmed or extended to its point of contact with the joint,
/// and the joint, from the first to the second. The edges keep their direction.
struct EDGE_JOINT {
  EDGE_3D first, second, joint;
};

/// Rounds the corner of two edges with an arc of less than half a turn, choosing the one whose
/// points of contact are nearest to the picks. Each edge keeps the side that continues the arc, a
/// full circle all of itself; false if an edge has nothing there, and for parallel lines. With
/// radius 0 the edges simply meet, the joint has zero length, and the sides of the picks remain.
VEK0_API bool filletEdges(const EDGE_3D& a, const EDGE_3D& b, double radius, const PNT_2D& pickA,
                          const PNT_2D& pickB, EDGE_JOINT& out);
/// Cuts off the corner of two straight edges, at `distA` and `distB` (0 or more) from their
/// intersection. False for curved or parallel edges, and when an edge is too short.
VEK0_API bool chamferEdges(const EDGE_3D& a, const EDGE_3D& b, double distA, double distB,
                           const PNT_2D& pickA, const PNT_2D& pickB, EDGE_JOINT& out);

/// Rounds every corner between straight edges that are long enough, from the beginning of the path.
/// Returns the number of arcs. Linear.
VEK0_API int filletPath(PATH_3D& path, double radius);
/// Chamfers those corners in the same way, `dist1` before and `dist2` after each.
VEK0_API int chamferPath(PATH_3D& path, double dist1, double dist2);

/// The points that divide a path into `count` parts of equal length: count - 1 of them, and for a
/// closed path also its beginning, first. False for a count below 2 or above a million, and for a
/// path of zero length. Linear in edges and points.
VEK0_API bool dividePath(const PATH_3D& path, int count, std::vector<PNT_3D>& out);
/// The points at every `step` > 0 along the path from its beginning, which is excluded; its end is
/// included if a step ends there. False if there would be more than a million.
VEK0_API bool measurePath(const PATH_3D& path, double step, std::vector<PNT_3D>& out);
