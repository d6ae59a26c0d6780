#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/path.h"
#include "vek0core/geometry/pnt.h"

// Parallels of chains of segments. Distances are in drawing units; a positive one lies to the right
// of the direction of travel, a negative one to the left.

/// Shifts the segment sideways. A segment of length exactly 0 is unchanged.
VEK0_API void TranslateLine(LINE_2D& line, double dist);
/// The segment shifted sideways.
VEK0_API LINE_2D CalcParalLineAt(const LINE_2D& line, double dist);
/// The segment shifted sideways in the plane; each end keeps its z.
VEK0_API LINE_3D CalcParalLineAtPlane(const LINE_3D& line, double dist);

/// The parallel of a chain with sharp corners; returns the number of points written.
///
/// Adjacent segments are extended or trimmed to the intersection of their parallels. A corner that
/// would reverse its segment, or lie more than ten lengths of either segment away, is rejected: the
/// shorter of the two segments is dropped, and the rest is reconsidered. Where the parallels
/// coincide, the corner is the end of the first; where they do not intersect, it is rejected.
/// Crossings elsewhere in the chain are ignored: see `offsetPath`.
///
/// An open chain of k remaining segments yields k + 1 points. A closed one begins with the corner
/// at pts[1] and ends with that at pts[0]; which segments remain may depend on the start. Points
/// within 1e-12 on both axes are merged; `closed` is ignored for a single segment. Returns 0 if
/// nothing remains, including for fewer than two points.
///
/// `out` must hold at least n + 2 points; `pts` may be null when n is 0. Segments with NaN
/// coordinates are dropped. Linear.
VEK0_API int CalcParalLine(const PNT_2D* pts, int n, double dist, bool closed, PNT_2D* out);
/// The same in the plane. z is that of the point shared by both segments, or continues along the
/// first segment where those between them were dropped.
VEK0_API int CalcParalLine(const PNT_3D* pts, int n, double dist, bool closed, PNT_3D* out);
/// The same, returning a vector.
VEK0_API std::vector<PNT_2D> CalcParalLine(const std::vector<PNT_2D>& pts, double dist,
                                           bool closed);
VEK0_API std::vector<PNT_3D> CalcParalLine(const std::vector<PNT_3D>& pts, double dist,
                                           bool closed);

/// Whether `p` lies strictly left of the chain, in the sense of `LINE_2D::ptLeftSide`.
///
/// The nearest segment decides. At a corner, `p` must lie left of both adjacent segments if the
/// chain turns left there, and of either if it turns right. False for fewer than two points.
/// Linear.
VEK0_API bool PtLeftSide(const PNT_2D* pts, int n, bool closed, const PNT_2D& p);

/// How the parallels of adjacent edges are joined on the outside of a corner.
enum class OFFSET_JOIN {
  round,  ///< an arc about the corner
  mitre,  ///< extended along their directions until they meet
  bevel,  ///< a segment between their ends
};

struct OFFSET_OPTIONS {
  OFFSET_JOIN join = OFFSET_JOIN::round;
  /// A miter farther from its corner than this multiple of the distance becomes a bevel.
  double mitreLimit = 4;
};

/// The offset of any path, open or closed, self-intersecting or not: the points on the side given
/// by the distance's sign whose distance from the path is exactly that distance. Arcs remain arcs
/// with the same center.
///
/// Appends the results, which have the direction of the path, in order along it: none if the path
/// leaves no room, several where it is narrow. Those of a closed path that does not intersect
/// itself are closed. Those of an open path end beside its ends or where another part of the path
/// is too near. The first edge of a closed path is arbitrary. With miters, points within a miter
/// count as too near as well; a bevel cuts off what the arc would add. z is that of the path at the
/// nearest point, or the mean if there are two.
///
/// The distance of every result from the path is accurate to 1e-12 of the distance plus 1e-14 of
/// the path's extents and coordinates; rounding may shift corners between almost parallel edges
/// along them by the square root of that fraction. A distance below 1e-9 of the extents yields the
/// path itself. Gaps exactly twice the distance wide yield no middle line.
///
/// Returns false, appending nothing, if the distance or a number of the path is non-finite (or
/// above 1e100), or if so many parts lie so close together that more than 4e8 comparisons would be
/// needed. Otherwise near-linear in the edges.
VEK0_API bool offsetPath(const PATH_3D& path, double dist, const OFFSET_OPTIONS& options,
                         std::vector<PATH_3D>& out);
