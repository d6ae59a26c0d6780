#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/path.h"
#include "vek0core/geometry/pnt.h"

// What an edit menu does with curves. Each answers false, and leaves its outputs as they
// were, when it cannot be done. Picks are points near what the user means.

/// Cuts a path at what crosses it, and takes away the stretch around the pick. `out` is
/// what remains: one path, or two of an open one. False when nothing crosses it, or only one
/// point of a closed one does. Near-linear in all edges.
VEK0_API bool trimPath(const PATH_3D& path, const std::vector<PATH_3D>& cutters, const PNT_2D& pick,
                       std::vector<PATH_3D>& out);

/// Lengthens the end of an open path that is nearer to the pick, along its line or circle,
/// to the first bound in the way. False when there is none, before the circle is full.
VEK0_API bool extendPath(PATH_3D& path, const std::vector<PATH_3D>& bounds, const PNT_2D& pick);

/// Two edges as they are joined at a corner: each cut, or lengthened, to where the joint
/// touches it, and the joint from the first to the second. The edges keep their direction.
struct EDGE_JOINT {
  EDGE_3D first, second, joint;
};

/// Rounds the corner of two edges with an arc of less than half a turn, that whose contacts
/// are nearest to the picks. Of each edge the side remains that the arc goes on into, of a
/// full circle all; false when an edge has nothing there, and for parallel lines. With
/// radius 0 the edges simply meet, the joint has no length, and the sides of the picks
/// remain.
VEK0_API bool filletEdges(const EDGE_3D& a, const EDGE_3D& b, double radius, const PNT_2D& pickA,
                          const PNT_2D& pickB, EDGE_JOINT& out);
/// Cuts off the corner of two straight edges, `distA` and `distB` (0 or more) from where
/// they meet. False for others, for parallels, and when more than an edge would go.
VEK0_API bool chamferEdges(const EDGE_3D& a, const EDGE_3D& b, double distA, double distB,
                           const PNT_2D& pickA, const PNT_2D& pickB, EDGE_JOINT& out);

/// Rounds every corner between straight edges that are long enough, from the beginning of
/// the path on; the number of arcs. Linear.
VEK0_API int filletPath(PATH_3D& path, double radius);
/// Cuts those corners off likewise, `dist1` before and `dist2` after each.
VEK0_API int chamferPath(PATH_3D& path, double dist1, double dist2);

/// The points that divide a path into `count` parts of equal length: count - 1, and its
/// beginning, first, of a closed one. False for a count below 2 or above a million, and for
/// a path without length. Linear in edges and points.
VEK0_API bool dividePath(const PATH_3D& path, int count, std::vector<PNT_3D>& out);
/// The points at every `step` > 0 along the path from its beginning, which is not among
/// them; its end is, if a step ends there. False when there were more than a million.
VEK0_API bool measurePath(const PATH_3D& path, double step, std::vector<PNT_3D>& out);
