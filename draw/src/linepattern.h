#pragma once

#include <vector>

#include "placement.h"
#include "vek0core/entities/insertmatrix.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/polyline/silhouette.h"
#include "vek0core/tables/ltypedash.h"

namespace vek0::detail {

/// Takes the pieces of a patterned way.
class IPatternSink {
 public:
  /// In the coordinates of the way, with the widths that it has there.
  virtual void dash(const std::vector<WIDE_VERTEX>& points) = 0;
  virtual void dot(const PNT_3D& at) = 0;  ///< likewise
  /// A text of the pattern, placed in the drawing.
  virtual void text(const TEXT_3D& text) = 0;
  /// Whether it takes no more.
  virtual bool isFull() const = 0;

 protected:
  ~IPatternSink() = default;
};

/// What a pattern is laid along.
struct PatternWay {
  const std::vector<WIDE_VERTEX>& points;  ///< in the coordinates of a block
  const CEntInsertMatrix& toDrawing;       ///< patterns are measured in the drawing
  const Placement& toDevice;
  const RECT_2D& window;  ///< on the device; what lies outside is not laid
};

/// Lays a linetype's pattern along a way, from its first point on. False, and nothing
/// handed over, when the pattern or the way has no finite length. A stretch that would
/// take too many elements is handed over as one dash. Costs what the window shows, and
/// a look at each point.
bool layPattern(const CLtypeComplexDashSeq& dashes, double scale, const PatternWay& way,
                IPatternSink& sink);

/// A text element where the pattern has got to, in that direction; `scale` is the
/// pattern's. Texts without a height of their own have that of their style.
TEXT_3D placeElement(const TEXT_3D& element, const PNT_3D& at, double directionRad, double scale);

/// How far the texts of a pattern reach from the line that it is laid along, at most.
double reachOfTexts(const CLtypeComplexDashSeq& dashes, double scale);

}  // namespace vek0::detail
