#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/handle.h"
#include "vek0core/tables/palette.h"
#include "zim0lang/wstring.h"

class CEnt;
class CEntInsertStackState;
class ICADFont;

/// Affine map of the plane: x' = a * x + c * y + e, y' = b * x + d * y + f.
struct AFFINE_2D {
  double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

  PNT_2D apply(double x, double y) const { return PNT_2D(a * x + c * y + e, b * x + d * y + f); }
};

/// The source of the next strokes, fills and texts.
struct DrawItem {
  RGB_COLOR color;
  double width = 0;                     ///< of strokes, in device units; 0: the painter's own width
  std::uint8_t alpha = 255;             ///< opacity; 255 is opaque
  const zim::WString* layer = nullptr;  ///< name of the layer that determines visibility; borrowed
  vek0::Handle handle = 0;              ///< of the entity of model space; 0 for none
  double weightMm = 0;                  ///< lineweight in millimeters, whatever the width
  bool isForeground = false;  ///< color 7: black or white, whichever contrasts with the background
  /// The entity of model space or of the sheet; null for none. Borrowed, as are the next two.
  const CEnt* top = nullptr;
  /// What `top` shows here: itself, an entity of a block or an attribute.
  const CEnt* ent = nullptr;
  /// The inserts from `top` to what holds `ent`, and what that inherits from them. Valid during the
  /// call; never null when a painter is called.
  const CEntInsertStackState* path = nullptr;
};

/// A line of text in one font: the baseline starts at the origin of text space and runs along its x
/// axis, y points up, and the font's height unit is `ICADFont::getHeightUnit` long.
struct DrawText {
  const zim::WString* string = nullptr;  ///< codes such as %%d are already decoded; borrowed
  const ICADFont* font = nullptr;        ///< null: the default metrics
  bool bold = false, italic = false;
  AFFINE_2D matrix;  ///< from text space to device space; mirrored for backward texts
};

/// Which areas the rings of a fill enclose: those with an odd winding number, or those with a
/// non-zero one.
enum class FillRule { EvenOdd, NonZero };

/// How a stroke is divided: lengths of dashes and gaps in turn, in device units, repeated along the
/// stroke. A dash of length 0 is a dot.
struct DrawDashes {
  std::vector<double> lengths;  ///< an even number of them, not all 0
  double phase = 0;             ///< position in the pattern at the start of a path
};

/// Receives the content of a drawing in device coordinates: x to the right and y down from the
/// upper left corner, in pixels or in whatever unit the host chose for its window.
///
/// Calls come in drawing order, `begin` before the primitives that it describes. Points are finite,
/// and so are their squares. Content outside the window may be passed or not; painters clip it.
class IPainter {
 public:
  virtual ~IPainter() = default;

  virtual void begin(const DrawItem& item) = 0;

  /// A stroke through the points; and back to the first if `closed`. At least two points.
  virtual void stroke(const PNT_2D* points, std::size_t count, bool closed) = 0;
  /// Strokes that are not connected, such as the dashes of a line: every two points are one.
  /// Default: a `stroke` for each of them.
  virtual void segments(const PNT_2D* points, std::size_t count);
  /// Whether `dashedStroke` is called for strokes with a pattern. Otherwise every dash is a stroke,
  /// and every dot a dot.
  virtual bool hasDashes() const { return false; }
  /// An open stroke with a pattern that continues across its points. It is the part of a path that
  /// begins at `distance` from the start. At least two points, not far outside the window.
  virtual void dashedStroke(const PNT_2D* /*points*/, std::size_t /*count*/,
                            const DrawDashes& /*dashes*/, double /*distance*/) {}
  /// An arc of a circle from `startRad` through `sweepRad` (sign: direction), angles measured from
  /// the x axis towards the y axis of the device. A painter without arcs returns false and receives
  /// a stroke instead; the full circle has a sweep of 2*pi.
  virtual bool arc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
    static_cast<void>(center), static_cast<void>(radius);
    static_cast<void>(startRad), static_cast<void>(sweepRad);
    return false;
  }
  /// The same with a pattern that begins at `startRad`. Only called if `hasDashes`.
  virtual bool dashedArc(const PNT_2D& center, double radius, double startRad, double sweepRad,
                         const DrawDashes& dashes) {
    static_cast<void>(center), static_cast<void>(radius), static_cast<void>(dashes);
    static_cast<void>(startRad), static_cast<void>(sweepRad);
    return false;
  }
  /// The interior of the rings: `ends[i]` is the index after the last point of ring i.
  virtual void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                    FillRule rule) = 0;
  /// A point without size.
  virtual void dot(const PNT_2D& at) = 0;
  /// A point entity. A painter that returns false receives the figure that the drawing's point mode
  /// and point size demand, which depends on the window.
  virtual bool point(const PNT_2D& /*at*/) { return false; }
  /// A filled circle, for a point entity. Default: a fill with sixteen corners.
  virtual void disc(const PNT_2D& center, double diameter);
  virtual void text(const DrawText& text) = 0;

  /// Whether content within the box cannot affect the result and may be skipped.
  virtual bool skips(const RECT_2D& /*box*/) const { return false; }

  /// Hides everything outside the polygon until the matching `popClip` (even-odd rule; the last
  /// point is joined to the first). Clips nest, and only their intersection is visible. `begin` may
  /// be called in between. A painter that cannot clip, or not this polygon, returns false: then no
  /// `popClip` follows, the content of an insert is drawn unclipped, and `DRAW_RESULT::unclipped`
  /// counts it; for a viewport, the rectangle around the polygon is tried next.
  virtual bool pushClip(const PNT_2D* /*points*/, std::size_t /*count*/) { return false; }
  virtual void popClip() {}
};
