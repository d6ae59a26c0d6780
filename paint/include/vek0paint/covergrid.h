#pragma once

#include <vector>

#include "vek0core/geometry/rect.h"

namespace vek0::paint {

/// Records which group drew where, on a coarse grid over the sheet: detects when grouping by layer
/// would put a fill above later content or below earlier content.
class CoverGrid {
 public:
  CoverGrid(double width, double height);
  void clear();
  /// Whether an element of a group may join it (groups are numbered in the order of writing)
  /// without changing what fills cover.
  bool admits(const RECT_2D& box, int group, bool isFill);
  void mark(const RECT_2D& box, int group, bool isFill);

 private:
  static constexpr int kCells = 32;  // per axis
  struct CELL {
    int top = -1, topFill = -1;  // last group that drew here, that filled here; -1: none
  };
  static int cellOf(double at, double size);
  template <class Visit>
  bool allCells(const RECT_2D& box, Visit&& visit);

  double m_width, m_height;
  std::vector<CELL> m_cells;
};

}  // namespace vek0::paint
