#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <unordered_map>

#include "vek0core/drawing/data.h"
#include "vek0core/tables/enttraits.h"
#include "vek0core/view/projector.h"
#include "vek0core/view/wndvpt.h"
#include "vek0draw/painter.h"

/// What becomes of a drawing's colors: they are kept, replaced by the one that contrasts with the
/// background, or by grays of the same brightness.
enum class DrawColors { Keep, Mono, Gray };

/// How wide strokes are, by lineweight. By default, painters use a width of their own for all.
struct DRAW_WEIGHTS {
  double perMm = 0;  ///< device units per millimeter; 0: all strokes have the painter's width
  double least = 0;  ///< minimum width, in device units

  /// Width on the device, 0 for the painter's.
  double widthOf(double mm) const { return perMm > 0 ? std::max(least, mm * perMm) : 0; }
  /// Width of the widest stroke that a drawing can have.
  double widest() const { return widthOf(ENT_TRAITS::kWidestWeight / 100.0); }
};

/// Entities that stand out from the rest.
struct DRAW_MARKS {
  /// The colors of these entities, with all that they show.
  std::unordered_map<const CEnt*, RGB_COLOR> colors;
  /// The color of all others; nothing: they are not drawn.
  std::optional<RGB_COLOR> rest;
};

/// Options for rendering a drawing.
struct DRAW_OPTIONS {
  /// Color 7 is black or white, whichever contrasts with it.
  RGB_COLOR background{255, 255, 255};
  DrawColors colors = DrawColors::Keep;
  /// Borrowed; null: no entity stands out. Overrides `colors`.
  const DRAW_MARKS* marks = nullptr;
  DRAW_WEIGHTS weights;
  /// Maximum deviation of chords from their curve, in device units.
  double chordError = 0.1;
  /// Linetypes with a shorter period, in device units, are drawn continuous: their dashes would
  /// merge.
  double finestPattern = 1;
  /// Factor of all linetype patterns, besides the scales of the drawing and its entities.
  double patternFactor = 1;
  /// Whether to show layers that are off or frozen.
  bool hiddenLayers = false;
  /// Extent of the painter's own pen beyond the points passed to it, in device units: half its
  /// width.
  double penReach = 1;
  /// Whether to draw rays and infinite lines as far as the window shows them; otherwise as a dot at
  /// their first point.
  bool endless = true;
  /// Minimum size of points, in device units: three screen pixels.
  double leastPoint = 3;
  /// Minimum size on the device, in device units, for content to be drawn faithfully once inserts,
  /// hatches or linetypes unfold to more than `effort`. Smaller content becomes dots, at most one
  /// per place, and arrays of it become areas; of larger content spaced more closely than this,
  /// some is skipped.
  double finestDetail = 1;
  /// Limit, in points, for what inserts, hatches, linetypes and the arcs of long polylines may
  /// unfold to, beyond a generous multiple of the drawing's own content. The picture is cut when it
  /// is used up.
  double effort = 3'000'000;
  /// Whether polylines are drawn by their middle lines, without widths.
  bool middleLines = false;
  /// For painters of pixels: number of pixels that take as long as a point; 0 if sizes do not
  /// affect the cost.
  double pixelsPerPoint = 0;
  /// Maximum number of primitives emitted, and of entities visited; the rest is cut.
  std::size_t limit = 50'000'000;
  /// Maximum total number of points; a character counts as several.
  std::size_t pointLimit = 200'000'000;
};

/// Result of rendering a drawing.
struct DRAW_RESULT {
  std::size_t emitted = 0;  ///< strokes, arcs, fills, dots and texts
  std::size_t looked = 0;   ///< entities visited; those of blocks count each time they are shown
  /// Clipped inserts that are shown unclipped: the painter cannot clip, the boundary has more than
  /// 1000 corners, or the view is not a plan view, for which a boundary is meaningless.
  std::size_t unclipped = 0;
  /// Viewports that show the rectangle around their boundary, because the painter cannot clip to
  /// the boundary itself.
  std::size_t boxed = 0;
  /// Viewports on the page whose view is not shown: it is not from above, states no scale, lies too
  /// far from the origin for its scale, or the painter cannot clip at all.
  std::size_t blank = 0;
  /// Primitives drawn as dots, areas, continuous lines or with fewer chords because there are too
  /// many; counts each visited cell of an array, and each hatch once.
  std::size_t simplified = 0;
  /// Hatches whose pattern was too dense for lines (`CData::getHatchLimit`), and that show their
  /// boundaries instead.
  std::size_t missing = 0;
  std::size_t points = 0;  ///< what counts towards `pointLimit`
  bool cut = false;        ///< a limit was reached, or inserts are nested too deep

  /// Adds the result of another part of the picture.
  DRAW_RESULT& operator+=(const DRAW_RESULT& part);
};

/// Emits the part of model space visible in the window to the painter, in drawing order: inserts
/// with all their cells and attributes, linetypes as dashes, widths as fills, texts, hatches.
/// Layers, colors, lineweights, transparency and linetype scales are resolved from the drawing's
/// tables, BYLAYER and BYBLOCK through all levels of nesting; invisible entities are skipped.
///
/// Entities whose extents lie outside the window cost a comparison (to draw repeatedly, see
/// `CDrawIndex`). Cells of arrays and dashes outside the window cost nothing, and neither does
/// content hidden by a clip. A few lines of a file can unfold to billions of primitives: then the
/// cost is bounded by what the window can show (`DRAW_OPTIONS::effort`). A window without pixels
/// shows nothing. Throws `std::bad_alloc`, as does `drawnExtents`: the drawing is unchanged then,
/// and the painter has received a part of it.
DRAW_RESULT drawData(const CData& data, const IProjector& projector, const CWndVpt& window,
                     IPainter& painter, const DRAW_OPTIONS& options = {});

/// Extents of the content that `drawData` would show, in the plane of the view; empty if nothing is
/// shown. Of rays and infinite lines, only the points count.
RECT_2D drawnExtents(const CData& data, const IProjector& projector,
                     const DRAW_OPTIONS& options = {});

/// The ordinary palette of 255 colors; 7 and any index outside 1 to 255 is black or white,
/// whichever contrasts with the background.
RGB_COLOR paletteColor(int index, const RGB_COLOR& background);

/// The brightness that a color is perceived with, 0 to 255: luma of ITU-R BT.601.
double brightness(const RGB_COLOR& color);
