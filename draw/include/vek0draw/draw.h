#pragma once

#include <cstddef>

#include "vek0core/drawing/data.h"
#include "vek0core/view/projector.h"
#include "vek0core/view/wndvpt.h"
#include "vek0draw/painter.h"

/// How a drawing is to be shown.
struct DRAW_OPTIONS {
  /// Color 7 is black or white, whichever is seen on it.
  RGB_COLOR background{255, 255, 255};
  /// Everything in the color that is seen on the background.
  bool mono = false;
  /// How far chords may leave their curve, in device units.
  double chordError = 0.1;
  /// Linetypes that repeat within a shorter length, device units, are drawn continuous:
  /// their dashes would run into each other.
  double finestPattern = 1;
  /// Layers that are off or frozen are shown too.
  bool hiddenLayers = false;
  /// How far the pen reaches beyond the points that the painter is given, device units:
  /// half the width of the widest stroke.
  double penReach = 1;
  /// Rays and endless lines are drawn as far as the window shows them; else a dot stands at their
  /// first point.
  bool endless = true;
  /// How wide points are at least, device units: three pixels of a screen.
  double leastPoint = 3;
  /// How large on the device a thing is at least that is drawn as it is, when inserts, hatches or
  /// linetypes unfold to more than `effort`. Smaller ones become dots, of which no two fall on one
  /// place, arrays of them areas; of larger ones that follow each other by less, not all are drawn.
  double finestDetail = 1;
  /// What inserts, hatches and linetypes may unfold to, in points, beyond a generous multiple of
  /// what the drawing holds itself. When it is used up, the picture is cut.
  double effort = 3'500'000;
  /// For painters of pixels: how many of them take as long as a point; 0 when the size of things
  /// makes no difference.
  double pixelsPerPoint = 0;
  /// How many things are emitted, and how many entities looked at, at most; what follows
  /// is cut.
  std::size_t limit = 50'000'000;
  /// How many points these may have together; a letter counts as a few of them.
  std::size_t pointLimit = 200'000'000;
};

/// What became of it.
struct DRAW_RESULT {
  std::size_t emitted = 0;  ///< strokes, arcs, fills, dots and texts
  std::size_t looked = 0;   ///< entities looked at, those of blocks as often as they are shown
  /// Clipped inserts that are shown whole: the painter cannot clip, the boundary has more than
  /// 1000 corners, or the view is none from above, in which a boundary says nothing.
  std::size_t unclipped = 0;
  /// Things drawn as dots, areas or continuous lines since there are too many; each cell of an
  /// array that was met counts, each hatch once.
  std::size_t simplified = 0;
  /// Hatches whose pattern was too dense for lines (`CData::getHatchLimit`), and that show their
  /// boundaries instead.
  std::size_t missing = 0;
  bool cut = false;  ///< a limit was reached, or inserts are nested too deep
};

/// Emits what the window shows of model space, in drawing order, to the painter: inserts
/// with all their cells and attributes, linetypes as dashes, widths as fills, texts, hatches.
/// What the drawing's tables say of layers and colors is looked up, BYLAYER and BYBLOCK
/// through all levels of nesting.
///
/// Entities whose extents lie outside the window cost a comparison (for drawing again and
/// again, see `CDrawIndex`); cells of an array outside it cost nothing, and neither do
/// dashes, nor what clipped inserts hide. A few lines of a file can unfold to billions of things:
/// then the cost follows what the window can show (`DRAW_OPTIONS::effort`). A window without pixels
/// shows nothing. Throws `std::bad_alloc`, as does `drawnExtents`; the drawing is as it was then,
/// and the painter has got a part of it.
DRAW_RESULT drawData(const CData& data, const IProjector& projector, const CWndVpt& window,
                     IPainter& painter, const DRAW_OPTIONS& options = {});

/// Extents of what `drawData` would show, in the plane of the view; empty when there is
/// nothing. Rays and endless lines count as their points.
RECT_2D drawnExtents(const CData& data, const IProjector& projector,
                     const DRAW_OPTIONS& options = {});

/// The ordinary palette of 255 colors; 7 and anything else outside 1 to 255 is black or
/// white, whichever is seen on the background.
RGB_COLOR paletteColor(int index, const RGB_COLOR& background);
