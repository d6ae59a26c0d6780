#pragma once

#include <algorithm>

#include "vek0core/drawing/layout.h"
#include "vek0core/geometry/finite.h"

namespace vek0::detail {

/// The plot of the sheet of a file without LAYOUT objects: its paper is exactly the limits, which
/// may be empty. R12 does not state the unit. Unless the file is known to be metric, the limits of
/// a sheet at most 48 long are inches: A3 has 420 mm, and the largest American size 44 inches.
inline PLOT_SETTINGS plotOfLimits(const RECT_2D& limits, bool isMetric = false) {
  constexpr double longestInches = 48, mmPerInch = 25.4;
  PLOT_SETTINGS plot;
  if (!limits.validRegion() || !isFinite(limits.max - limits.min)) return plot;
  const double width = limits.max.x - limits.min.x, height = limits.max.y - limits.min.y;
  plot.scale = !isMetric && std::max(width, height) <= longestInches ? mmPerInch : 1;
  plot.width = width * plot.scale;
  plot.height = height * plot.scale;
  plot.area = PlotArea::Window;
  plot.window = limits;
  return plot;
}

}  // namespace vek0::detail
