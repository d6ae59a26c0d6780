#pragma once

#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/view/projector.h"
#include "vek0core/view/wndvpt.h"
#include "vek0draw/painter.h"

namespace vek0::detail {

/// The device that a view is shown on, and the map from the plane of the view to it:
/// x' = xScale * x + xShift, y' = yScale * y + yShift.
struct Device {
  /// The pixels of a window, y downwards.
  Device(const CWndVpt& window);  // NOLINT(google-explicit-constructor)
  /// Drawing units, y upwards: coordinates of the plane are those of the device.
  explicit Device(const RECT_2D& area);

  bool exists() const { return pixelSize > 0; }
  double width() const { return box.max.x - box.min.x; }
  double height() const { return box.max.y - box.min.y; }

  double xScale = 1, xShift = 0, yScale = 1, yShift = 0;
  RECT_2D box;       ///< the part that is seen
  PNT_2D span;       ///< its sides, in device units
  double pixelSize;  ///< in drawing units; 0 if nothing can be seen
};

/// Maps drawing space, or the space of a block inserted there, to the device. All projections are
/// parallel, so this is an affine map.
class Placement {
 public:
  Placement(const IProjector& projector, const Device& device);
  /// This placement applied after `matrix`.
  Placement after(const CEntInsertMatrix& matrix) const;

  PNT_2D apply(const PNT_3D& p) const {
    return PNT_2D(m_x[0] * p.x + m_x[1] * p.y + m_x[2] * p.z + m_x[3],
                  m_y[0] * p.x + m_y[1] * p.y + m_y[2] * p.z + m_y[3]);
  }
  /// The same without the translation.
  PNT_2D direction(double x, double y) const {
    return PNT_2D(m_x[0] * x + m_x[1] * y, m_y[0] * x + m_y[1] * y);
  }
  /// Extents of the mapped box; empty if the box is, and unbounded if numbers overflow.
  RECT_2D apply(const RECT_3D& box) const;
  /// Maximum length of a mapped unit vector of the x, y plane.
  double scale() const;
  /// Whether z has no effect.
  bool isPlan() const;
  /// Whether circles of the x, y plane stay circles.
  bool isSimilar() const;
  /// Whether orientation is reversed relative to the device, whose y axis points down.
  bool mirrors() const { return m_x[0] * m_y[1] - m_x[1] * m_y[0] < 0; }

 private:
  Placement() = default;

  double m_x[4], m_y[4];
};

}  // namespace vek0::detail
