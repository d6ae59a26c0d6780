#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/path.h"
#include "vek0core/geometry/pnt.h"

// Parallels of chains of segments. Distances are drawing units; a positive one lies to the
// right of the direction of travel, a negative one to the left.

/// Shifts the segment sideways. One of length exactly 0 stays.
VEK0_API void TranslateLine(LINE_2D& line, double dist);
/// The segment shifted sideways.
VEK0_API LINE_2D CalcParalLineAt(const LINE_2D& line, double dist);
/// The segment shifted sideways in the plane; each end keeps its z.
VEK0_API LINE_3D CalcParalLineAtPlane(const LINE_3D& line, double dist);

/// The parallel of a chain with sharp corners; returns the number of points written.
///
/// Neighboring segments are extended or cut to where their parallels meet. A corner that
/// would turn its segment round, or lie more than ten lengths of either segment away, is
/// refused: the shorter of the two segments goes, and the rest is looked at anew. Where
/// the parallels coincide, the corner is the end of the first; where they never meet, it
/// is refused. What the chain crosses elsewhere is not looked at: see `offsetPath`.
///
/// An open chain of k remaining segments gives k + 1 points. A closed one begins with the
/// corner at pts[1] and ends with that at pts[0]; which segments remain may depend on the
/// start. Points within 1e-12 on both axes are one; `closed` means nothing for a chain
/// of one segment. 0 when nothing remains, fewer than two points included.
///
/// `out` must hold at least n + 2 points; `pts` may be null when n is 0. Coordinates that
/// are not numbers drop their segments. Linear.
VEK0_API int CalcParalLine(const PNT_2D* pts, int n, double dist, bool closed, PNT_2D* out);
/// The same in the plane. z is that of the point that both segments shared, or goes on
/// along the first segment where those between them are gone.
VEK0_API int CalcParalLine(const PNT_3D* pts, int n, double dist, bool closed, PNT_3D* out);
/// The same without a bound to keep.
VEK0_API std::vector<PNT_2D> CalcParalLine(const std::vector<PNT_2D>& pts, double dist,
                                           bool closed);
VEK0_API std::vector<PNT_3D> CalcParalLine(const std::vector<PNT_3D>& pts, double dist,
                                           bool closed);

/// Whether `p` lies strictly left of the chain, as `LINE_2D::ptLeftSide` has it.
///
/// The nearest segment decides. Where that is a corner, `p` must lie left of both
/// neighbors when the chain turns left there, and of either when it turns right. False
/// for fewer than two points. Linear.
VEK0_API bool PtLeftSide(const PNT_2D* pts, int n, bool closed, const PNT_2D& p);

/// How the parallels of neighbors are joined on the outside of a corner.
enum class OFFSET_JOIN {
  round,  ///< an arc about the corner
  mitre,  ///< extended along their directions until they meet
  bevel,  ///< a segment between their ends
};

struct OFFSET_OPTIONS {
  OFFSET_JOIN join = OFFSET_JOIN::round;
  /// A mitre farther from its corner than this, in distances, becomes a bevel.
  double mitreLimit = 4;
};

/// The offset of any path, open or closed, crossing itself or not: all places beside it,
/// on the side that the distance says, from which no point of the path is nearer than the
/// distance. Arcs stay arcs of the same center.
///
/// Appends the results, which run as the path does, in order along it: none where the path
/// leaves no room, several where it is narrow. Those of a closed path that does not cross
/// itself are closed. Those of an open path end abreast of its ends or where something of
/// the path comes too near. Which edge a closed path begins with does not matter. With
/// mitres, what lies within a mitre is too near as well; a bevel cuts off what the arc
/// would add. z is that of the path at the nearest point, the mean of two.
///
/// No result is nearer to the path, or farther away, than the distance by more than 1e-12
/// of it and 1e-14 of the path's extents and coordinates; rounding may move corners between almost
/// parallel edges along them by the square root of that share. A distance below 1e-9 of the extents
/// gives the path itself. Gaps that are exactly twice the distance wide have no middle line.
///
/// False, with nothing appended, when the distance or a number of the path is not finite
/// (or above 1e100), or when so many parts lie so near each other that more than 4e8
/// comparisons would be needed. Near-linear in the edges otherwise.
VEK0_API bool offsetPath(const PATH_3D& path, double dist, const OFFSET_OPTIONS& options,
                         std::vector<PATH_3D>& out);
