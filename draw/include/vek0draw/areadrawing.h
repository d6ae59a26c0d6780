#pragma once

#include <vector>

#include "vek0draw/draw.h"

class CLayout;

// Drawing in the drawing's own coordinates, for hosts that keep what they receive and place it
// themselves: lengths are drawing units, x points to the right and y up. Wherever `DRAW_OPTIONS`
// and `IPainter` speak of the device, they mean the plane of the drawing.
//
// Nothing depends on a window but what is skipped: entities outside the area, cells of arrays, the
// parts of patterned lines, and what infinite lines have outside it. Sizes that do are those of
// points, for which `IPainter::point` is called, and those of inserts of fixed pixel size.

/// Emits what lies in an area of model space, seen from above, as `drawData` does for a window. The
/// area must be finite and not empty; otherwise nothing is drawn.
DRAW_RESULT drawArea(const CData& data, const RECT_2D& area, IPainter& painter,
                     const DRAW_OPTIONS& options = {});

/// The same for a sheet, in its units, as `drawLayout` does.
DRAW_RESULT drawArea(const CData& data, const CLayout& layout, const RECT_2D& area,
                     IPainter& painter, const DRAW_OPTIONS& options = {});

/// Emits these entities of model space, in the given order, as far as they lie in the area. To draw
/// many times, see `CDrawIndex::drawEntities`, which keeps what it learns of blocks.
DRAW_RESULT drawEntities(const CData& data, const std::vector<CEnt*>& entities, const RECT_2D& area,
                         IPainter& painter, const DRAW_OPTIONS& options = {});
