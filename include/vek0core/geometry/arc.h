#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/circle.h"

/// Arc in a plane z = constant: a circle and two angles.
///
/// Angles are radians, counterclockwise from the positive x axis, both in [0, 2*pi) after
/// construction or `set`; direct writes to the fields may store others. The arc runs
/// counterclockwise from startAngle to endAngle; equal angles mean a full turn, never an empty arc.
/// Comparison is exact.
class VEK0_API ARC_3D : public CIRCLE_3D {
 public:
  ARC_3D() = default;
  ARC_3D(double cx, double cy, double cz, double r, double start, double end)
      : CIRCLE_3D(cx, cy, cz, r), startAngle(normal(start)), endAngle(normal(end)) {}

  bool operator==(const ARC_3D& a) const {
    return CIRCLE_3D::operator==(a) && startAngle == a.startAngle && endAngle == a.endAngle;
  }
  bool operator!=(const ARC_3D& a) const { return !(*this == a); }

  using CIRCLE_3D::get;
  using CIRCLE_3D::set;
  void get(double& cx, double& cy, double& cz, double& r, double& start, double& end) const {
    CIRCLE_3D::get(cx, cy, cz, r);
    start = startAngle;
    end = endAngle;
  }
  void set(double cx, double cy, double cz, double r, double start, double end) {
    *this = ARC_3D(cx, cy, cz, r, start, end);
  }

  /// Reduces the angle to [0, 2*pi). Within 64 turns it subtracts turn by turn, so that exact
  /// multiples become exactly 0; beyond, it uses the remainder. Returns 0 for a non-finite angle.
  static double normal(double angleRad);

  /// The arc from p1 through p2 to p3, at the z of p1. It is stored counterclockwise, so its ends
  /// are swapped when the points turn right. Returns false, leaving the arc unchanged, when they
  /// are collinear (see `CIRCLE_3D::Create`).
  bool Create(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3);

  /// The angles as a sweep: start < end <= start + 2*pi.
  void getSafeAngles(double& start, double& end) const;

  /// Whether the ray from the center at `angleRad` meets the arc, its ends included, with a
  /// tolerance of 1e-12 times (1 + the angle).
  bool angle_in_arc(double angleRad) const;

  void end_points(PNT_3D& ps, PNT_3D& pe) const;
  /// Exact extents.
  void calc_bdry(RECT_3D& box) const;
  /// Rotates about the vertical axis through `center`.
  void rotate(const PNT_3D& center, double angleRad);

  /// Distance from the nearest point of the arc, in the plane.
  double dist(const PNT_2D& p) const;
  /// Distance from the nearer end.
  double dist_endpoints(const PNT_2D& p) const;

  /// Intersections with the arc's circle that lie on the arc. If there is at least one, the first
  /// output holds a valid one.
  long intersect(const LINE_2D& line, PNT_2D& p1, PNT_2D& p2) const;
  long intersect(const IMP_LINE_2D& line, PNT_2D& p1, PNT_2D& p2) const;
  long intersect(const CIRCLE_3D& circle, PNT_2D& p1, PNT_2D& p2) const;
  long intersect(const ARC_3D& arc, PNT_2D& p1, PNT_2D& p2) const;
  long intersect(const PAR_LINE_2D& line, double& t1, double& t2) const;
  long intersect(const LINE_2D& line) const;  ///< count only

  double startAngle, endAngle;

 private:
  bool holds(const PNT_2D& p) const { return angle_in_arc(angle(p)); }
  long filter(long count, PNT_2D& p1, const PNT_2D& p2) const;
};

/// The arc of a polyline segment from p0 to p1 whose bulge is the tangent of a quarter of its
/// angle, positive when it turns left. Returns false, leaving `arc` unchanged, when the segment
/// counts as straight: the bulge is 0 or non-finite, the ends coincide within 1e-12, the sagitta is
/// below 1e-12 of the coordinates, or the square of the radius overflows. The arc is stored
/// counterclockwise, so a negative bulge swaps its ends.
VEK0_API bool createArcFromBulge(const PNT_3D& p0, const PNT_3D& p1, double bulge, ARC_3D& arc);

/// Default bound on the deviation of chords from their arc, as a fraction of the radius.
inline constexpr double kArcChordError = 1e-4;

/// Number of chords that approximate an arc of `angleRad` (its sign does not matter) with a
/// deviation of at most `chordError` times the radius: max(2, ceil(|angle| / (2 * acos(1 -
/// chordError)))), at most 1024. A full turn takes 223 by default. A `chordError` that is zero,
/// negative or NaN yields 1024; one above 1 counts as 1.
VEK0_API int arcChords(double angleRad, double chordError = kArcChordError);

/// Appends the chords of a polyline segment with a bulge to `out`: the points that divide its arc
/// into `arcChords` equal parts, in order from p0, excluded, to p1, included. z is interpolated
/// linearly. A segment that counts as straight (`createArcFromBulge`) adds only p1. The other
/// points lie on the arc within 1e-12 of its radius and of their coordinates. The ends may be
/// elements of `out`. Linear in the points.
VEK0_API void bulgePoints(const PNT_3D& p0, const PNT_3D& p1, double bulge,
                          std::vector<PNT_3D>& out);
