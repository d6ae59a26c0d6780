#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// Rational B-spline curve, in the representation of files.
///
/// The curve runs over the parameters from knots[degree] to knots[controls.size()]. A periodic one
/// is no special case: files repeat its first controls at the end, and its knots continue outside
/// that range. Code that fills the fields checks `isValid` once; every other operation except
/// `controlPolygon` and `createFit` requires a valid curve.
class VEK0_API SPLINE_3D {
 public:
  static constexpr int kMaxDegree = 25;

  /// Whether the fields define a curve: a degree from 1 to 25 and below the number of controls;
  /// controls + degree + 1 finite, non-decreasing knots; a non-empty range; finite controls up to
  /// 1e100; and no weights, or one per control, all finite and above 0. Linear.
  bool isValid() const;

  /// The range of the parameter.
  void getDomain(double& from, double& to) const;
  /// The point at parameter `t`, clamped to the range. At a discontinuity, the point after the
  /// jump. Costs O(degree^2 + log(knots)). Uses de Boor's algorithm with weighted blends (Farin),
  /// so that every step stays between two points.
  PNT_3D getPnt(double t) const;

  /// Appends points of the curve, including both ends (exactly the outer controls if the knot
  /// vector is clamped), such that no chord deviates from it by more than `tolerance` drawing
  /// units. Every non-empty span ends at a point.
  ///
  /// Each span becomes a Bezier piece and is halved until its controls are that close to the chord,
  /// but at most 10 times, and fewer (down to twice) where that could exceed 262144 chords: a file
  /// cannot demand more than that or 4 chords per span. Where this limit applies, the tolerance may
  /// be exceeded.
  void chords(double tolerance, std::vector<PNT_3D>& out) const;

  /// Appends the controls, a substitute for an invalid curve. Controls that are non-finite or
  /// beyond 1e100 are omitted.
  void controlPolygon(std::vector<PNT_3D>& out) const;

  /// Half the longer side of the controls' box in the plane: used in place of a radius in relative
  /// tolerances. Linear.
  double size() const;

  /// Makes this the cubic that passes through `points` in order, with two continuous derivatives
  /// over the chord lengths. An end tangent sets the direction there (its length is ignored);
  /// without one (null or zero length) the curvature at that end is 0. Repeated consecutive points
  /// count once. Returns false, leaving the curve unchanged, if there are fewer than two distinct
  /// points or a number is non-finite. Linear. Solves the tridiagonal system for the tangents
  /// (Farin), with Bezier pieces.
  bool createFit(const std::vector<PNT_3D>& points, const PNT_3D* startTangent = nullptr,
                 const PNT_3D* endTangent = nullptr);

  int degree = 3;
  std::vector<PNT_3D> controls;
  std::vector<double> knots;
  std::vector<double> weights;  ///< empty when all are 1
};
