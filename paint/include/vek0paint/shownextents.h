#pragma once

#include "vek0draw/draw.h"

namespace vek0::paint {

/// Extents of the visible content of a drawing in the plane of the view; empty if there is none.
///
/// Unlike `drawnExtents`, which unites boxes, this follows every stroke: hidden attributes and
/// hidden layers within blocks do not count, nor do empty corners of boxes in side or rotated
/// views; of infinite lines only the first point counts. Costs about as much as drawing without a
/// painter. If drawing would be cut by a limit, the boxes are used instead.
RECT_2D shownExtents(const CData& data, const IProjector& projector, const DRAW_OPTIONS& options);

}  // namespace vek0::paint
