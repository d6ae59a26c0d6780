#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/arc.h"

/// Elliptical arc in space: the points center + cos(t) * major + sin(t) * minor, for the parameter
/// t from startParam through `sweep` radians.
///
/// `major` and `minor` are vectors from the center, drawing units, perpendicular after `set`. The
/// parameter is no angle: it is that of the circle from which the ellipse was squeezed, and agrees
/// with the direction from the center on the axes alone. It grows counterclockwise about the
/// normal. The default constructor sets nothing.
class VEK0_API ELLIPSE_3D {
 public:
  /// What files give: the semi-major axis, the length of the other as a share of it, the first and
  /// last parameter in radians, and the normal, of any length.
  ///
  /// Equal parameters mean the full turn, and so do those a turn apart as files round it (1e-9
  /// short of it to 1e-4 over it); else whole turns do not count. A ratio above 1 is taken as it
  /// is. False, and unchanged, when the ellipse is none: a number that is not finite, a length
  /// beyond 1e100, an axis or a normal without length, a ratio of zero or less, a major axis along
  /// the normal. A major axis that is not square to the normal keeps its place; the minor one is
  /// square to both.
  bool set(const PNT_3D& centerPoint, const PNT_3D& majorAxis, double ratio, double start,
           double end, const PNT_3D& normal = PNT_3D(0, 0, 1));

  /// The point at parameter `t`, which may lie outside the arc.
  PNT_3D getPnt(double t) const;
  /// First and last point; the same one, exactly, for a full turn.
  void end_points(PNT_3D& ps, PNT_3D& pe) const;
  bool isFullTurn() const;
  /// Exact extents. A coordinate's turning points are at atan2(minor, major) and half a
  /// turn from there.
  void calc_bdry(RECT_3D& box) const;

  /// Appends the points that divide the arc into `arcChords` equal steps of the parameter, both
  /// ends with them and exact. No chord leaves the arc by more than `chordError` times the
  /// semi-major axis, nor, across the ellipse where it is flat, times the shorter: squeezing a
  /// circle squeezes the error too. Linear in the points, 1025 at most.
  void chords(std::vector<PNT_3D>& out, double chordError = kArcChordError) const;

  PNT_3D center, major, minor;
  double startParam;  ///< in [0, 2*pi)
  double sweep;       ///< in (0, 2*pi]
};
