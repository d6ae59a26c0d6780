#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/inspect/placedcontent.h"

/// What can be wrong with curves.
enum class CurveFault : unsigned char {
  OpenContour,       ///< a gap between two ends, or a chain whose ends are near no other
  Duplicate,         ///< the same curve twice, in either direction
  Overlap,           ///< a part of a line or circle that several curves cover
  SelfIntersection,  ///< a contour crosses itself, or two closed contours cross
  ZeroLength,
  Tiny,
  UnclosedRing,  ///< a curve that encloses an area, but ends next to where it begins
};

/// Lengths in drawing units.
struct CURVE_LIMITS {
  double gap = 0;   ///< largest distance between ends that are meant to meet
  double tiny = 0;  ///< a curve that is shorter, but not of zero length, is tiny
  /// Distance within which points are the same; must be greater than 0. Shorter curves have zero
  /// length.
  double same = 0;
};

/// The limits for curves of that extent: ends that are 1e-4 of it apart are meant to meet, a tenth
/// of that is tiny, and a thousandth the same.
VEK0_API CURVE_LIMITS defaultLimits(const std::vector<PLACED_CURVE>& curves);

/// A fault of one or more curves.
struct CURVE_FAULT {
  CurveFault fault = CurveFault::OpenContour;
  std::vector<std::size_t> curves;  ///< in ascending order
  PNT_2D point{0, 0};
  /// The gap, the common length, or the length of the curve, in drawing units; of a crossing 0.
  double value = 0;
};

struct CURVE_FAULTS {
  std::vector<CURVE_FAULT> faults;  ///< kind by kind
  bool isCut = false;               ///< there were too many crossings to find them all
};

/// Finds the faults of curves in the plane; z is ignored.
///
/// Curves whose ends are the same form one contour; where three or more meet, contours end, but
/// none of these ends is open. A contour without ends is closed. Each open end is paired with the
/// nearest end within the gap, nearest pairs first; every pair is one fault, whose point lies
/// midway. The ends that remain are one fault for each chain of curves that meet or nearly do,
/// whose value is the distance between its first open end and the nearest other one, or, if there
/// is no other, the other end of that curve.
///
/// Duplicates have the same edges; each is reported with the first such curve. Of curves that are
/// no duplicates, overlaps of more than the tiny length are one fault for each pair: the part of a
/// curve that others which begin earlier on the line or circle cover is counted once, with the
/// one that covers most of it. Arcs overlap if center and radius are the same. The sum of
/// all values is therefore the length that would be drawn more than once.
///
/// A crossing is a point where the curves pass through each other; touching is none. Crossings of
/// open contours with other contours are no faults.
///
/// Near-linear in the edges, unless many of them lie within each other's boxes. Throws
/// `std::bad_alloc`.
VEK0_API CURVE_FAULTS findCurveFaults(const std::vector<PLACED_CURVE>& curves,
                                      const CURVE_LIMITS& limits);
