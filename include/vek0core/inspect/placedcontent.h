#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/path.h"

class CBlock;
class CData;
class CEnt;
class CLayer;

/// A curve of model space or a sheet, or of a block where an insert shows it; borrows its entity
/// and layer.
struct PLACED_CURVE {
  PATH_3D path;                   ///< as placed
  const CEnt* ent = nullptr;      ///< the curve's own record or the outermost insert
  const CLayer* layer = nullptr;  ///< that it appears on; null: layer "0"
};

/// What is shown besides curves: a text, a point, an area, an annotation, a record of an
/// unsupported kind.
struct PLACED_ITEM {
  const CEnt* item = nullptr;     ///< the entity, never null
  const CEnt* ent = nullptr;      ///< the entity itself or the outermost insert
  const CLayer* layer = nullptr;  ///< as in `PLACED_CURVE`
  PNT_2D point{0, 0};             ///< the middle of its extents, or (0, 0) if it has none
};

/// What model space or a sheet shows, as placed.
struct PLACED_CONTENT {
  std::vector<PLACED_CURVE> curves;
  std::vector<PLACED_ITEM> items;
  bool isCut = false;  ///< inserts unfold to too much: the rest is missing
};

/// The visible content of model space in drawing order: inserts are resolved to what they show, in
/// all cells of arrays, and to their attributes.
///
/// Lines, circles, arcs and polylines are curves, and so are the curves that approximate a spline,
/// an ellipse or a helix; everything else is an item. An arc stays an arc unless an insert distorts
/// it: then it becomes chords. What is on a layer that is off or frozen is left out, and so are
/// invisible entities. Linear in the content; blocks unfold to at most 5 million edges and items.
/// Throws `std::bad_alloc`.
VEK0_API PLACED_CONTENT placeContent(const CData& data);
/// The same of a sheet, without what its viewports show.
VEK0_API PLACED_CONTENT placeContent(const CBlock& sheet);
