#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// Rational B-spline curve, as files state it.
///
/// The curve runs over the parameters from knots[degree] to knots[controls.size()]. A
/// periodic one is no special case: files repeat its first controls at the end, and its
/// knots go on outside that range. Whoever fills the fields asks `isValid` once; every other
/// operation but `controlPolygon` and `createFit` relies on its answer.
class VEK0_API SPLINE_3D {
 public:
  static constexpr int kMaxDegree = 25;

  /// Whether the fields make a curve: a degree from 1 to 25 and below the number of
  /// controls, controls + degree + 1 knots that are finite and never fall, a range that
  /// is not empty, finite controls up to 1e100, and no weights or as many as controls, all
  /// finite and above 0. Linear.
  bool isValid() const;

  /// The range of the parameter.
  void getDomain(double& from, double& to) const;
  /// The point at parameter `t`, brought into the range. Where the curve jumps, the
  /// point after the jump. Costs degree * degree, and the logarithm of the knots. Formula:
  /// de Boor, its blends weighted (Farin), so that every step stays between two points.
  PNT_3D getPnt(double t) const;

  /// Appends points of the curve, both ends with them (exactly the outer controls when the
  /// knots clamp it), such that no chord leaves it by more than `tolerance`, in drawing
  /// units. Every non-empty span ends at a point.
  ///
  /// A span becomes a Bezier piece, and is halved until its controls are as near to the
  /// chord, but 10 times at most, and fewer (down to twice) where that could exceed
  /// 262144 chords: a file cannot ask for more than that or 4 chords a span. Where the
  /// limit is reached, the tolerance is not.
  void chords(double tolerance, std::vector<PNT_3D>& out) const;

  /// Appends the controls, which stand in for a curve that is not valid. Those that are
  /// not finite, or beyond 1e100, are left out.
  void controlPolygon(std::vector<PNT_3D>& out) const;

  /// Half the longer side of the controls' box in the plane: what stands for a radius in a
  /// relative tolerance. Linear.
  double size() const;

  /// Makes this the cubic that passes through `points` in order, with two continuous
  /// derivatives over the chord lengths. An end with a tangent has its direction (the
  /// length does not matter); one without, null or of length 0, has no curvature. Equal
  /// neighbors count once. False, and unchanged, with fewer than two different points or
  /// numbers that are not finite. Linear. Formula: the tridiagonal system for the tangents
  /// (Farin), pieces as Bezier curves.
  bool createFit(const std::vector<PNT_3D>& points, const PNT_3D* startTangent = nullptr,
                 const PNT_3D* endTangent = nullptr);

  int degree = 3;
  std::vector<PNT_3D> controls;
  std::vector<double> knots;
  std::vector<double> weights;  ///< empty when all are 1
};
