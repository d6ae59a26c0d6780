#pragma once

#include <vector>

#include "vek0core/export.h"

/// A point of a polyline's frame or of the curve made from it. Drawing units.
struct CURVE_VERTEX {
  double x, y, z;
  double widthStart, widthEnd;  ///< along the segment that begins here
  double bulge;                 ///< tangent of a quarter of that segment's angle; 0 is straight
};

/// Chords that stand for one span between two control points, unless told otherwise.
inline constexpr int kCurveChords = 8;

/// The curve of a polyline's control points.
///
/// `curveType` says which:
///    2  arcs through the points: at each, the curve runs as the circle through it and
///       its neighbors does; a pair of arcs joins two points. The result holds the
///       points and the joints, with bulges; z goes linearly. Where the path doubles
///       back so sharply that the arcs would lead far away, the span stays straight
///    4  uniform B-spline of the given degree, clamped at the ends when open and
///       periodic when closed
///    8  Bezier pieces of the given degree, end to end over the control polygon; what
///       is left over at the end is a piece of lower degree
/// Any other type, and fewer than three controls, give the controls back. Bulges of the
/// controls mean nothing to the curves.
///
/// `degree` is brought into 2 to 3 and below the number of controls, `chords` (for each
/// span between two controls) into 2 to 64. An open curve begins and ends exactly at the
/// outer controls; a closed one does not repeat its first vertex. Widths run along the
/// curve as they run along the frame. Linear in controls times chords. Formulas: de Boor,
/// de Casteljau; biarcs with equal tangent lengths (Bolton 1975).
VEK0_API std::vector<CURVE_VERTEX> curveVertexes(const std::vector<CURVE_VERTEX>& controls,
                                                 short curveType, short degree, bool closed,
                                                 int chords = kCurveChords);
