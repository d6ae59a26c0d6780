#pragma once

#include <memory>
#include <vector>

#include "vek0draw/draw.h"

namespace vek0::detail {
class Walker;
}

/// Renders a drawing repeatedly, at a cost proportional to what the window shows.
///
/// It finds the entities of model space by their extents, in a tree that is built by the first
/// frame (O(n log n)) and updated after edits: the entity table notifies it of added, removed and
/// reshaped entities. An edit costs the logarithm of the drawing, paid by a later frame. Blocks of
/// many entities have separate trees, which are rebuilt after an edit of the block. As for the
/// extents of a drawing, call `CEnt::calcBdry` after a change in place, and `CEntTable::recalcBdry`
/// after a change of a block.
///
/// Every frame visits all inserts of fixed pixel size, rays and infinite lines, and checks whether
/// any block now contains such lines. For a single picture, `drawData` is faster.
class CDrawIndex {
 public:
  /// The drawing is borrowed; it must outlive the index and not be a view.
  explicit CDrawIndex(const CData& data);
  CDrawIndex(const CDrawIndex&) = delete;
  CDrawIndex& operator=(const CDrawIndex&) = delete;
  ~CDrawIndex();

  /// Emits what `drawData` would emit, in the same order. Also throws `std::bad_alloc`; the index
  /// remains usable.
  DRAW_RESULT draw(const IProjector& projector, const CWndVpt& window, IPainter& painter,
                   const DRAW_OPTIONS& options = {});

  /// Emits what `::drawArea` would emit, in the same order.
  DRAW_RESULT drawArea(const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& options = {});
  /// Emits these entities of model space in the given order, as far as they lie in the area. Costs
  /// what they cost, however many others there are.
  DRAW_RESULT drawEntities(const std::vector<CEnt*>& entities, const RECT_2D& area,
                           IPainter& painter, const DRAW_OPTIONS& options = {});

 private:
  class Entities;
  DRAW_RESULT run(vek0::detail::Walker& walker);

  const CData& m_data;
  std::unique_ptr<Entities> m_entities;
};
