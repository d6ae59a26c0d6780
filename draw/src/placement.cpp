#include "placement.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vek0::detail {
namespace {

constexpr double kSimilar = 1e-9;

// Half the extent of a mapped box along one axis.
double reach(const double (&row)[4], double x, double y, double z) {
  return std::fabs(row[0]) * x + std::fabs(row[1]) * y + std::fabs(row[2]) * z;
}

}  // namespace

Placement::Placement(const IProjector& projector, const CWndVpt& window) {
  const auto seen = [&](double x, double y, double z) {
    PNT_2D p;
    projector.to2D(PNT_3D(x, y, z), p);
    return PNT_2D(window.getViewX(p.x), window.getViewY(p.y));
  };
  const PNT_2D origin = seen(0, 0, 0), x = seen(1, 0, 0), y = seen(0, 1, 0), z = seen(0, 0, 1);
  const PNT_2D axes[] = {x, y, z};
  for (int i = 0; i < 3; ++i) {
    m_x[i] = axes[i].x - origin.x;
    m_y[i] = axes[i].y - origin.y;
  }
  m_x[3] = origin.x;
  m_y[3] = origin.y;
}

Placement Placement::after(const CEntInsertMatrix& matrix) const {
  PNT_3D origin, axes[3];
  matrix.transform(PNT_3D(0, 0, 0), origin);
  matrix.transform(PNT_3D(1, 0, 0), axes[0]);
  matrix.transform(PNT_3D(0, 1, 0), axes[1]);
  matrix.transform(PNT_3D(0, 0, 1), axes[2]);
  Placement result;
  for (int i = 0; i < 3; ++i) {
    const PNT_3D d = axes[i] - origin;
    result.m_x[i] = m_x[0] * d.x + m_x[1] * d.y + m_x[2] * d.z;
    result.m_y[i] = m_y[0] * d.x + m_y[1] * d.y + m_y[2] * d.z;
  }
  const PNT_2D moved = apply(origin);
  result.m_x[3] = moved.x;
  result.m_y[3] = moved.y;
  return result;
}

RECT_2D Placement::apply(const RECT_3D& box) const {
  RECT_2D out;
  out.initRegion();
  if (!box.validRegion()) return out;
  const PNT_3D middle((box.min.x + box.max.x) / 2, (box.min.y + box.max.y) / 2,
                      (box.min.z + box.max.z) / 2);
  const PNT_3D half(box.max.x - middle.x, box.max.y - middle.y, box.max.z - middle.z);
  const PNT_2D at = apply(middle);
  const double x = reach(m_x, half.x, half.y, half.z), y = reach(m_y, half.x, half.y, half.z);
  if (std::isfinite(at.x) && std::isfinite(at.y) && std::isfinite(x) && std::isfinite(y)) {
    out.set(at.x - x, at.y - y, at.x + x, at.y + y);
  } else {
    constexpr double all = std::numeric_limits<double>::infinity();
    out.set(-all, -all, all, all);
  }
  return out;
}

double Placement::scale() const {
  return std::max(std::hypot(m_x[0], m_y[0]), std::hypot(m_x[1], m_y[1]));
}

bool Placement::isSimilar() const {
  const double xx = m_x[0] * m_x[0] + m_y[0] * m_y[0], yy = m_x[1] * m_x[1] + m_y[1] * m_y[1];
  const double xy = m_x[0] * m_x[1] + m_y[0] * m_y[1];
  return std::fabs(xx - yy) <= kSimilar * xx && std::fabs(xy) <= kSimilar * xx;
}

}  // namespace vek0::detail
