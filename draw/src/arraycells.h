#pragma once

#include <algorithm>

#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

namespace vek0::detail {

/// From `first` through `last`; empty if `last` is smaller.
struct IndexRange {
  long first = 0, last = -1;

  long count() const { return last < first ? 0 : last - first + 1; }
  /// The index that follows `i` when not all count; the last one always does.
  long next(long i, long stride) const { return i < last ? i + std::min(stride, last - i) : i + 1; }
};

/// Computes the cells of an array that are visible in a window, without iteration: an array may
/// have billions.
class ArrayCells {
 public:
  /// `cell` is the box of cell (0, 0); the steps go to the next column and the next row.
  /// All on the device. At least one column and one row.
  ArrayCells(const RECT_2D& cell, const PNT_2D& columnStep, const PNT_2D& rowStep, long columns,
             long rows, const RECT_2D& window);

  /// The rows that may have such cells.
  IndexRange rows() const;
  /// The cells of a row whose boxes meet the window.
  IndexRange columns(long row) const;
  RECT_2D box(long row, long column) const;

 private:
  IndexRange rowsOnLattice() const;

  RECT_2D m_cell;
  RECT_2D m_reach;  // of the offsets at which a cell meets the window
  PNT_2D m_columnStep, m_rowStep;
  long m_columns, m_rows;
};

}  // namespace vek0::detail
