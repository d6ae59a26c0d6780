#pragma once

#include <vector>

#include "vek0core/export.h"

/// A point of a polyline's frame or of the curve made from it. Drawing units.
struct CURVE_VERTEX {
  double x, y, z;
  double widthStart, widthEnd;  ///< along the segment that begins here
  double bulge;                 ///< tangent of a quarter of that segment's angle; 0 is straight
};

/// Default number of chords for one span between two control points.
inline constexpr int kCurveChords = 8;

/// The curve of a polyline's control points.
///
/// `curveType` selects the curve:
///       2  arcs through the points: at each, the curve follows the circle through it and
///             its neighbors; a pair of arcs joins two points. The result holds the
///             points and the joints, with bulges; z is linear. Where the path doubles
///             back so sharply that the arcs would stray far, the span stays straight
///    4  uniform B-spline of the given degree, clamped at the ends when open and
///       periodic when closed
///    8  Bezier pieces of the given degree, end to end over the control polygon; what
///             remains at the end is a piece of lower degree
/// Any other type, and fewer than three controls, return the controls. Bulges of the controls are
/// ignored.
///
/// `degree` is clamped to 2 to 3 and to below the number of controls, `chords` (per span between
/// two controls) to 2 to 64. An open curve begins and ends exactly at the outer controls; a closed
/// one does not repeat its first vertex. Widths vary along the curve as along the frame. Linear in
/// controls times chords. Algorithms: de Boor, de Casteljau; biarcs with equal tangent lengths
/// (Bolton 1975).
VEK0_API std::vector<CURVE_VERTEX> curveVertexes(const std::vector<CURVE_VERTEX>& controls,
                                                 short curveType, short degree, bool closed,
                                                 int chords = kCurveChords);
