#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/inspect/curvefaults.h"

/// A curve without the parts that others cover.
struct TRIMMED_CURVE {
  std::size_t curve = 0;
  bool isDuplicate = false;      ///< it has the edges of an earlier curve
  double covered = 0;            ///< length of what is removed, in drawing units
  std::vector<PATH_3D> remains;  ///< what is left, in order along the curve; empty: nothing
};

/// The curves that have to change so that no part is drawn twice: all duplicates, and those with
/// parts that `findCurveFaults` reports as overlaps. Each such part stays in one curve. Pieces that
/// remain between two covered parts and are tiny are removed, too.
///
/// The result is in the order of the curves. Costs as much as finding the faults. Throws
/// `std::bad_alloc`.
VEK0_API std::vector<TRIMMED_CURVE> trimRepeats(const std::vector<PLACED_CURVE>& curves,
                                                const CURVE_LIMITS& limits);

/// An end of a curve that has to move.
struct END_SHIFT {
  std::size_t curve = 0;
  bool isStart = false;
  PNT_2D to{0, 0};
};

/// The open ends that lie within the gap from a place where others meet: moved there, they meet
/// these, too. Costs as much as finding open contours. Throws `std::bad_alloc`.
VEK0_API std::vector<END_SHIFT> gatherEnds(const std::vector<PLACED_CURVE>& curves,
                                           const CURVE_LIMITS& limits);
