#pragma once

#include <vector>

#include "placement.h"
#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/polyline/silhouette.h"
#include "vek0core/tables/ltypedash.h"

namespace vek0::detail {

/// Receives the pieces of a patterned path.
class IPatternSink {
 public:
  /// Whether to call `stretch` before the elements of a stretch.
  virtual bool hasStretches() const = 0;
  /// Part of the path that begins at `distance` from its start; both lengths are measured in the
  /// drawing, like the pattern. Returns false to receive its elements one by one.
  virtual bool stretch(const std::vector<WIDE_VERTEX>& points, double distance, double length) = 0;
  /// In the coordinates of the path, with its widths there.
  virtual void dash(const std::vector<WIDE_VERTEX>& points) = 0;
  virtual void line(const PNT_3D& from, const PNT_3D& to) = 0;  ///< a dash of no width
  virtual void dot(const PNT_3D& at) = 0;                       ///< in the same coordinates
  /// A text of the pattern, placed in the drawing.
  virtual void text(const TEXT_3D& text) = 0;
  /// Whether it accepts no more.
  virtual bool isFull() const = 0;

 protected:
  ~IPatternSink() = default;
};

/// A path to lay a pattern along.
struct PatternWay {
  const std::vector<WIDE_VERTEX>& points;  ///< in the coordinates of a block
  const CEntInsertMatrix& toDrawing;       ///< patterns are measured in the drawing
  const Placement& toDevice;
  const RECT_2D& window;  ///< on the device; nothing is laid outside it
};

/// What laying a pattern needs, reused from path to path.
struct PatternScratch {
  /// A part of the path, by the distances of its ends.
  struct Stretch {
    double from, to;
  };
  std::vector<PNT_3D> drawn;      ///< the points in the drawing
  std::vector<double> distances;  ///< of every point, there
  std::vector<Stretch> seen;      ///< what the window shows
  std::vector<WIDE_VERTEX> piece;
};

/// Lays a linetype's pattern along a path, starting at its first point. Returns false, passing
/// nothing on, if the pattern or the path has no finite length. A stretch with too many elements is
/// passed as one dash. The cost is proportional to what the window shows, plus the points of the
/// path.
bool layPattern(const CLtypeComplexDashSeq& dashes, double scale, const PatternWay& way,
                PatternScratch& scratch, IPatternSink& sink);

/// The pattern in lengths on the device, where `scale` is that of a unit of the pattern. Empty if
/// the pattern has texts or no dashes.
DrawDashes dashesOf(const CLtypeComplexDashSeq& dashes, double scale);

/// Places a text element at the current position and direction of the pattern; `scale` is the
/// pattern's. Texts without a height use that of their style.
TEXT_3D placeElement(const TEXT_3D& element, const PNT_3D& at, double directionRad, double scale);

/// Maximum extent of a pattern's texts from the line that it is laid along.
double reachOfTexts(const CLtypeComplexDashSeq& dashes, double scale);

}  // namespace vek0::detail
