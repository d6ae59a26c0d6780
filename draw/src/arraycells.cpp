#include "arraycells.h"

#include <algorithm>
#include <cmath>

namespace vek0::detail {
namespace {

constexpr double kSlack = 1e-6;     // tolerance for rounding, relative to a step; an extra cell
                                    // does no harm
constexpr double kParallel = 1e-9;  // sine of the angle below which steps span no lattice

IndexRange clamped(double first, double last, long count) {
  if (std::isnan(first) || std::isnan(last)) return {0, count - 1};
  const double most = static_cast<double>(count);
  return {static_cast<long>(std::clamp(std::ceil(first - kSlack), 0.0, most)),
          static_cast<long>(std::clamp(std::floor(last + kSlack), -1.0, most - 1))};
}

// The range of i from 0 to count - 1 for which i * step is between the limits.
IndexRange between(double from, double to, double step, long count) {
  if (step == 0) return from <= 0 && to >= 0 ? IndexRange{0, count - 1} : IndexRange{};
  const double a = from / step, b = to / step;
  return clamped(std::min(a, b), std::max(a, b), count);
}

IndexRange both(const IndexRange& a, const IndexRange& b) {
  return {std::max(a.first, b.first), std::min(a.last, b.last)};
}

}  // namespace

ArrayCells::ArrayCells(const RECT_2D& cell, const PNT_2D& columnStep, const PNT_2D& rowStep,
                       long columns, long rows, const RECT_2D& window)
    : m_cell(cell), m_columnStep(columnStep), m_rowStep(rowStep), m_columns(columns), m_rows(rows) {
  m_reach.min.set(window.min.x - cell.max.x, window.min.y - cell.max.y);
  m_reach.max.set(window.max.x - cell.min.x, window.max.y - cell.min.y);
}

// The columns of a row extend from the first to the last.
IndexRange ArrayCells::rows() const {
  const double far = static_cast<double>(m_columns - 1);
  const PNT_2D all(m_columnStep.x * far, m_columnStep.y * far);
  const IndexRange byX = between(m_reach.min.x - std::max(0.0, all.x),
                                 m_reach.max.x - std::min(0.0, all.x), m_rowStep.x, m_rows);
  const IndexRange byY = between(m_reach.min.y - std::max(0.0, all.y),
                                 m_reach.max.y - std::min(0.0, all.y), m_rowStep.y, m_rows);
  return both(both(byX, byY), rowsOnLattice());
}

// In a long oblique array, the boxes of all rows may meet the window. In the coordinates of its
// lattice, the window is a parallelogram, which bounds the rows.
IndexRange ArrayCells::rowsOnLattice() const {
  const PNT_2D &c = m_columnStep, &r = m_rowStep;
  const double det = c.x * r.y - c.y * r.x;
  if (!(std::fabs(det) > kParallel * std::hypot(c.x, c.y) * std::hypot(r.x, r.y)))
    return {0, m_rows - 1};
  double low = 0, high = 0;
  for (int corner = 0; corner < 4; ++corner) {
    const double x = (corner & 1) != 0 ? m_reach.max.x : m_reach.min.x;
    const double y = (corner & 2) != 0 ? m_reach.max.y : m_reach.min.y;
    const double row = (c.x * y - c.y * x) / det;
    low = corner == 0 ? row : std::min(low, row);
    high = corner == 0 ? row : std::max(high, row);
  }
  return clamped(low, high, m_rows);
}

RECT_2D ArrayCells::box(long row, long column) const {
  const double c = static_cast<double>(column), r = static_cast<double>(row);
  const PNT_2D move(m_columnStep.x * c + m_rowStep.x * r, m_columnStep.y * c + m_rowStep.y * r);
  return RECT_2D(m_cell.min + move, m_cell.max + move);
}

IndexRange ArrayCells::columns(long row) const {
  const double x = m_rowStep.x * static_cast<double>(row);
  const double y = m_rowStep.y * static_cast<double>(row);
  return both(between(m_reach.min.x - x, m_reach.max.x - x, m_columnStep.x, m_columns),
              between(m_reach.min.y - y, m_reach.max.y - y, m_columnStep.y, m_columns));
}

}  // namespace vek0::detail
