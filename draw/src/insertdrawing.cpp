// Draws inserts and hatches, whose cost a file can multiply at will. Of an array, only the cells
// that meet the window are drawn. A hatch whose lines are finer than the detail of the picture
// becomes a fill when effort is scarce.
#include <algorithm>
#include <climits>
#include <cmath>

#include "arraycells.h"
#include "pointcost.h"
#include "walker.h"

namespace vek0::detail {

// A file's hatches have a bounded number of lines, but the inserts that show them do not.
void Walker::visit(CEntHatch& ent) {
  if (isSolid(ent.getHatchType())) return fillHatch(ent);
  const double lines = ent.getBlock() ? static_cast<double>(ent.getBlock()->size()) : 0;
  if (lines == 0) return drawLinelessHatch(ent);
  if (!m_out.isUnfolding()) m_out.addEffort(effortOfLines(ent));
  if (!isScarce(lines * m_out.pointsOfLine()) || !isFinerThanDetail(ent)) return drawInsert(ent);
  m_out.noteSimplified();
  fillHatch(ent);
}

// The faces of its block would show seams.
void Walker::fillHatch(const CEntHatch& ent) {
  m_device.clear();
  m_ends.clear();
  for (const HatchRing& ring : hatchRings(ent.getBoundary())) {
    for (std::size_t i = 0; i < ring.count; ++i)
      m_device.push_back(m_place.apply(ent.getBoundary()[ring.first + i]));
    m_ends.push_back(m_device.size());
  }
  m_out.fill(m_device, m_ends, FillRule::EvenOdd);
}

void Walker::drawInsert(CEntInsertBase& ent) {
  if (!ent.getBlock()) return;
  // Bounds the recursion.
  if (m_stack.GetNoInsert() >= kMostNested) return m_out.cut();
  if (ent.getType() == CEntInsert::kType && static_cast<CEntInsert&>(ent).isClipped())
    drawClipped(static_cast<CEntInsert&>(ent));
  else
    drawCells(ent);
  // Attributes have their own layers and are not clipped.
  if (ent.GetNoAttribs() == 0) return;
  enter(ent, 0, 0);
  for (unsigned i = 0; i < ent.GetNoAttribs(); ++i) draw(*ent.GetAttrib(i));
  leave();
}

void Walker::drawCells(CEntInsertBase& ent) {
  // Restored afterwards, because coarse drawing applies to the content of this insert only.
  const bool isCoarseOutside = m_isCoarse;
  const Cells cells = cellsOf(ent);
  if (cells.columns == 1 && cells.rows == 1) {
    m_isCoarse = m_isCoarse || isScarce(m_boxes.sum(*ent.getBlock()).all);
    drawCell(ent, 0, 0);
  } else if (cells.first.validRegion()) {
    m_out.beginUnfolding();
    drawArray(ent, cells);
    m_out.endUnfolding();
  }
  m_isCoarse = isCoarseOutside;
}

Walker::Cells Walker::cellsOf(CEntInsertBase& ent) {
  Cells cells;
  double columnSpacing, rowSpacing;
  ent.getArray(cells.columns, cells.rows, columnSpacing, rowSpacing);
  cells.columns = std::clamp(cells.columns, 1L, static_cast<long>(INT_MAX));
  cells.rows = std::clamp(cells.rows, 1L, static_cast<long>(INT_MAX));
  // Cells in the same place show no more than one.
  if (columnSpacing == 0) cells.columns = 1;
  if (rowSpacing == 0) cells.rows = 1;
  if (cells.columns == 1 && cells.rows == 1) return cells;
  const double c = std::cos(ent.getRotate()), s = std::sin(ent.getRotate());
  cells.first = firstCell(ent);
  cells.right = m_place.direction(c * columnSpacing, s * columnSpacing);
  cells.up = m_place.direction(-s * rowSpacing, c * rowSpacing);
  return cells;
}

void Walker::drawArray(CEntInsertBase& ent, const Cells& array) {
  const ArrayCells cells(array.first, array.right, array.up, array.columns, array.rows, m_window);
  const IndexRange rows = cells.rows();
  if (rows.first > rows.last) return;
  // The middle row represents the others: rows of a rotated array differ in length.
  const double seen = static_cast<double>(rows.count()) *
                      static_cast<double>(cells.columns((rows.first + rows.last) / 2).count());
  m_isCoarse = m_isCoarse || isScarce(m_boxes.sum(*ent.getBlock()).all * seen);
  if (isCoarse() && !isCarrier() && drawCoarseArray(ent, array)) return;
  for (long row = rows.first; row <= rows.last && !m_out.look();) {
    const IndexRange columns = cells.columns(row);
    for (long column = columns.first; column <= columns.last && !m_out.isCut();) {
      if (!isSkipped(ent, cells.box(row, column))) drawCell(ent, row, column);
      column = columns.next(column, strideOf(array.right));
    }
    row = rows.next(row, strideOf(array.up));
  }
}

RECT_2D Walker::firstCell(const CEntInsertBase& ent) {
  const CEntInsertMatrix matrix(m_pixelSize, ent, 0, 0);
  const CBlock& block = *ent.getBlock();
  return m_place.after(matrix).apply(m_boxes.of(block));
}

void Walker::drawCell(CEntInsertBase& ent, long row, long column) {
  CBlock& block = *ent.getBlock();
  enter(ent, row, column);
  std::vector<CEnt*> seen;
  if (isCoarse() && isDrawnAlready(block)) {
    m_out.noteSimplified();
  } else if (m_blocks && m_blocks->find(block, m_place, m_window, seen)) {
    for (auto inner = seen.begin(); inner != seen.end() && !m_out.isCut(); ++inner) draw(**inner);
  } else {
    for (std::size_t i = 0; i < block.size() && !m_out.isCut(); ++i)
      draw(*block[static_cast<unsigned>(i)]);
  }
  leave();
}

void Walker::enter(const CEntInsertBase& ent, long row, long column) {
  m_stack.Push(&ent, static_cast<int>(row), static_cast<int>(column));
  // Composed from the drawing's placement each time, so that errors do not accumulate.
  m_place = m_drawing.after(m_stack.GetCurMatrix());
  m_out.beginUnfolding();
  m_out.charge(1);
}

void Walker::leave() {
  m_stack.Pop();
  m_out.endUnfolding();
  m_place = m_stack.GetNoInsert() == 0 ? m_drawing : m_drawing.after(m_stack.GetCurMatrix());
}

}  // namespace vek0::detail
