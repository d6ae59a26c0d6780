#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/hatch/catalogue.h"

/// Receives what a pattern draws inside a boundary, in drawing units.
class VEK0_API IHatchSink {
 public:
  virtual ~IHatchSink() = default;
  virtual void line(const PNT_3D& from, const PNT_3D& to) = 0;  ///< never of zero length
  virtual void dot(const PNT_3D& at) = 0;
};

/// Result of filling a boundary. Nothing is drawn unless it is `Done`.
enum class HatchStatus {
  Done,
  BadPattern,   ///< scale or angle not finite, scale <= 0, no lines, lines without spacing
                ///< (dy = 0), a dash sequence of length 0 or more than six dashes
  BadBoundary,  ///< a coordinate that is not finite or beyond 1e150
  TooDense,     ///< more pieces than the limit, or too fine for the resolution of coordinates
};

/// Estimate of what a pattern will draw inside a boundary.
struct HatchEstimate {
  HatchStatus status;  ///< the error in the input, or `Done`
  double pieces;       ///< approximate number of lines and dots; 0 unless the status is `Done`
};

/// Checks the input of `fillHatch` and estimates its output: for each line family the number of
/// lines across the extents of the boundary, times the number of periods of the dash sequence along
/// these extents (both at least 1); or the number of pieces into which the boundary cuts the lines,
/// if larger. Linear in points times families.
VEK0_API HatchEstimate estimateHatch(const HATCH_TYPE& type, double scale, double rotate,
                                     const std::vector<PNT_3D>& boundary);

/// Draws the lines of a pattern inside a boundary (rings as `hatchRings` reads them).
///
/// The pattern is scaled by `scale` and rotated by `rotate` radians about the origin of the
/// drawing, where it starts: line k of a family passes through rot(x0, y0) + k * (dx along the
/// line, dy across), and its dashes are counted from there. Everything is drawn at the z of the
/// first boundary point.
///
/// A line that runs along an edge or through a vertex belongs to the side toward which the family
/// counts (left of the line's direction), and a dot on the boundary to the side ahead in the line's
/// direction. So areas that share edges are covered once, without gaps, and the line ends of two
/// areas that share an edge coincide exactly. Dashes that only touch the boundary are omitted.
///
/// Families are drawn in order; within each, lines from right to left as seen along their
/// direction, and each line forward.
///
/// `limit` is the number of estimated pieces above which nothing is drawn (`TooDense`); a period of
/// several dashes counts once. O(n log n) in edges plus pieces for each family, with linear memory.
VEK0_API HatchStatus fillHatch(const HATCH_TYPE& type, double scale, double rotate,
                               const std::vector<PNT_3D>& boundary, double limit, IHatchSink& sink);
