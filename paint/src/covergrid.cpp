#include "vek0paint/covergrid.h"

#include <algorithm>
#include <cstddef>

namespace vek0::paint {

CoverGrid::CoverGrid(double width, double height)
    : m_width(width), m_height(height), m_cells(kCells * kCells) {}

void CoverGrid::clear() { std::fill(m_cells.begin(), m_cells.end(), CELL{}); }

int CoverGrid::cellOf(double at, double size) {
  return static_cast<int>(std::clamp(at / size * kCells, 0.0, kCells - 1.0));
}

template <class Visit>
bool CoverGrid::allCells(const RECT_2D& box, Visit&& visit) {
  const int left = cellOf(box.min.x, m_width), right = cellOf(box.max.x, m_width);
  const int top = cellOf(box.min.y, m_height), bottom = cellOf(box.max.y, m_height);
  for (int y = top; y <= bottom; ++y) {
    for (int x = left; x <= right; ++x) {
      if (!visit(m_cells[static_cast<std::size_t>(y * kCells + x)])) return false;
    }
  }
  return true;
}

bool CoverGrid::admits(const RECT_2D& box, int group, bool isFill) {
  return allCells(
      box, [&](const CELL& cell) { return isFill ? cell.top <= group : cell.topFill <= group; });
}

void CoverGrid::mark(const RECT_2D& box, int group, bool isFill) {
  allCells(box, [&](CELL& cell) {
    cell.top = std::max(cell.top, group);
    if (isFill) cell.topFill = std::max(cell.topFill, group);
    return true;
  });
}

}  // namespace vek0::paint
