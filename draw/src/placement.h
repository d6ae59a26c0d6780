#pragma once

#include "vek0core/entities/insertmatrix.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/view/projector.h"
#include "vek0core/view/wndvpt.h"
#include "vek0draw/painter.h"

namespace vek0::detail {

/// From drawing space, or from the space of a block that is inserted there, to the
/// device. Every projection of a view is parallel, so this is an affine map.
class Placement {
 public:
  Placement(const IProjector& projector, const CWndVpt& window);
  /// From the space that `matrix` places into the one of this placement.
  Placement after(const CEntInsertMatrix& matrix) const;

  PNT_2D apply(const PNT_3D& p) const {
    return PNT_2D(m_x[0] * p.x + m_x[1] * p.y + m_x[2] * p.z + m_x[3],
                  m_y[0] * p.x + m_y[1] * p.y + m_y[2] * p.z + m_y[3]);
  }
  /// The same without the translation.
  PNT_2D direction(double x, double y) const {
    return PNT_2D(m_x[0] * x + m_x[1] * y, m_y[0] * x + m_y[1] * y);
  }
  /// Extents of the mapped box; empty when the box is, and everything when numbers are too
  /// large to tell.
  RECT_2D apply(const RECT_3D& box) const;
  /// What a unit of the x, y plane measures at most.
  double scale() const;
  /// Whether heights are not seen.
  bool isPlan() const;
  /// Whether circles of the x, y plane stay circles.
  bool isSimilar() const;
  /// Whether they are seen from behind, or rather: whether the device's turning, which
  /// is clockwise for y downwards, goes against that of the plane.
  bool mirrors() const { return m_x[0] * m_y[1] - m_x[1] * m_y[0] < 0; }

 private:
  Placement() = default;

  double m_x[4], m_y[4];
};

}  // namespace vek0::detail
