#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/arc.h"

/// Elliptical arc in space: the points center + cos(t) * major + sin(t) * minor, for the parameter
/// t from startParam through `sweep` radians.
///
/// `major` and `minor` are vectors from the center, in drawing units, perpendicular after `set`.
/// The parameter is not the polar angle: it is the angle on the circle of which the ellipse is an
/// affine image, and equals the direction from the center only on the axes. It increases
/// counterclockwise about the normal. The default constructor sets nothing.
class VEK0_API ELLIPSE_3D {
 public:
  /// Sets the ellipse from its representation in files: the semi-major axis, the axis ratio, the
  /// first and last parameter in radians, and the normal, of any length.
  ///
  /// Equal parameters mean a full turn, and so do parameters a turn apart as rounded in files (1e-9
  /// below to 1e-4 above); otherwise whole turns are ignored. A ratio above 1 is accepted. Returns
  /// false, leaving the ellipse unchanged, when it is invalid: a non-finite number, a length beyond
  /// 1e100, an axis or normal of zero length, a ratio of zero or less, or a major axis parallel to
  /// the normal. A major axis that is not perpendicular to the normal is kept; the minor axis is
  /// perpendicular to both.
  bool set(const PNT_3D& centerPoint, const PNT_3D& majorAxis, double ratio, double start,
           double end, const PNT_3D& normal = PNT_3D(0, 0, 1));

  /// The point at parameter `t`, which may lie outside the arc.
  PNT_3D getPnt(double t) const;
  /// First and last point; exactly equal for a full turn.
  void end_points(PNT_3D& ps, PNT_3D& pe) const;
  bool isFullTurn() const;
  /// Exact extents. A coordinate has its extrema at atan2(minor, major) and half a turn from there.
  void calc_bdry(RECT_3D& box) const;

  /// Appends the points that divide the arc into `arcChords` equal steps of the parameter,
  /// including both ends, which are exact. No chord deviates from the arc by more than `chordError`
  /// times the semi-major axis, nor, across the ellipse where it is flat, times the semi-minor
  /// axis: compressing a circle compresses the error too. Linear in the points, 1025 at most.
  void chords(std::vector<PNT_3D>& out, double chordError = kArcChordError) const;

  PNT_3D center, major, minor;
  double startParam;  ///< in [0, 2*pi)
  double sweep;       ///< in (0, 2*pi]
};
