#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/hatch/catalogue.h"

/// Takes what a pattern draws inside a boundary, drawing units.
class VEK0_API IHatchSink {
 public:
  virtual ~IHatchSink() = default;
  virtual void line(const PNT_3D& from, const PNT_3D& to) = 0;  ///< never of zero length
  virtual void dot(const PNT_3D& at) = 0;
};

/// How the filling of a boundary ended. Anything but `Done` leaves nothing drawn.
enum class HatchStatus {
  Done,
  BadPattern,   ///< scale or angle not finite, scale <= 0, no lines, lines without spacing
                ///< (dy = 0), a dash sequence of length 0 or more than six dashes
  BadBoundary,  ///< a coordinate that is not finite or beyond 1e150
  TooDense,     ///< more pieces than the limit, or too fine to be told apart by coordinates
};

/// What a pattern will draw inside a boundary, before it is drawn.
struct HatchEstimate {
  HatchStatus status;  ///< what is wrong with the input; `Done` when nothing is
  double pieces;       ///< lines and dots, about; 0 unless the status is `Done`
};

/// Checks the input of `fillHatch` and estimates its output: for each line family the
/// number of lines across the extents of the boundary, times the number of periods of the
/// dash sequence along these extents (both at least 1); or the number of pieces into which
/// the boundary cuts the lines, where that is more. Linear in points times families.
VEK0_API HatchEstimate estimateHatch(const HATCH_TYPE& type, double scale, double rotate,
                                     const std::vector<PNT_3D>& boundary);

/// Draws the lines of a pattern inside a boundary (rings as `hatchRings` reads them).
///
/// Lengths of the pattern are multiplied by `scale` and all of it is turned by `rotate`
/// radians about the origin of the drawing, where it starts: line k of a family goes
/// through rot(x0, y0) + k * (dx along the line, dy across) and its dashes are counted
/// from there. All that is drawn has the z of the first boundary point.
///
/// A line that runs along an edge or through a vertex belongs to the side towards which
/// the family counts across (to the left of the line's direction), and a dot on the
/// boundary to the side in direction of the line. So areas that share edges are covered
/// once, without gaps, and ends of lines of two areas that share an edge are equal.
/// Dashes that only touch the boundary are left out.
///
/// Families are drawn in order; in each, the lines from right to left seen along their
/// direction, and each line forwards.
///
/// `limit` is the number of estimated pieces above which nothing is drawn (`TooDense`);
/// a period of several dashes counts once. Cost is linear-logarithmic in edges plus pieces
/// for each family, memory linear in them.
VEK0_API HatchStatus fillHatch(const HATCH_TYPE& type, double scale, double rotate,
                               const std::vector<PNT_3D>& boundary, double limit, IHatchSink& sink);
