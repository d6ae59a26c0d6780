#pragma once

#include "vek0draw/draw.h"

namespace vek0::tool {

/// Extents of what a drawing shows in the plane of the view; empty when that is nothing.
///
/// Other than `drawnExtents`, which unites boxes, this follows every stroke: hidden
/// attributes and layers within blocks do not count, of lines without ends the first point alone,
/// and in views from aside or turned ones no empty corners of boxes. Costs about as much as drawing
/// does without a painter. Where drawing would be cut, the boxes decide after all.
RECT_2D shownExtents(const CData& data, const IProjector& projector, const DRAW_OPTIONS& options);

}  // namespace vek0::tool
