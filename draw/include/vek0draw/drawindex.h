#pragma once

#include <memory>

#include "vek0draw/draw.h"

/// Draws a drawing again and again, at a cost that follows what the window shows.
///
/// It finds the entities of model space by their extents, in a tree that is built by the
/// first frame (linear-logarithmic) and kept in step with edits: it hears from the entity
/// table what is added, removed and reshaped. An edit costs the logarithm of the drawing,
/// paid by a later frame. Blocks of many entities have trees of their own, which are built
/// anew after an edit of the block. What holds for the extents of a drawing holds here: a change in
/// place ends with `CEnt::calcBdry`, one of a block with `CEntTable::recalcBdry`.
///
/// Inserts of fixed pixel size, rays and endless lines are all looked at by every frame, which
/// also asks of each block whether it has come to hold such lines. For a single picture `drawData`
/// is quicker.
class CDrawIndex {
 public:
  /// The drawing is borrowed; it must outlive the index and not be a view.
  explicit CDrawIndex(const CData& data);
  CDrawIndex(const CDrawIndex&) = delete;
  CDrawIndex& operator=(const CDrawIndex&) = delete;
  ~CDrawIndex();

  /// Emits what `drawData` would emit, in the same order. Throws `std::bad_alloc` likewise; the
  /// next call works.
  DRAW_RESULT draw(const IProjector& projector, const CWndVpt& window, IPainter& painter,
                   const DRAW_OPTIONS& options = {});

 private:
  class Entities;

  const CData& m_data;
  std::unique_ptr<Entities> m_entities;
};
