// The affine map from the innermost block to the device. Projector, window and matrices are
// interfaces of a host or sums of several steps; all are affine, so the map is sampled once and
// applied as a matrix afterwards.
#include "placement.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vek0::detail {
namespace {

constexpr double kSimilar = 1e-9;
// Distance of the points by which a map is sampled. Drawings are millions of units from their
// origin; the rounding error of a short step would be magnified as much.
constexpr double kStep = 1 << 30;

// Half the extent of a mapped box along one axis.
double reach(const double (&row)[4], double x, double y, double z) {
  return std::fabs(row[0]) * x + std::fabs(row[1]) * y + std::fabs(row[2]) * z;
}

}  // namespace

Device::Device(const CWndVpt& window) : pixelSize(window.GetPixelSize()) {
  xScale = window.getViewXDistance(1);
  xShift = window.getViewX(0);
  yScale = -window.getViewYDistance(1);
  yShift = window.getViewY(0);
  long columns, rows;
  window.get(columns, rows);
  box.set(0, 0, static_cast<double>(columns), static_cast<double>(rows));
  const RECT_2D& seen = window.getWindow();
  span.set(xScale * (seen.max.x - seen.min.x), -yScale * (seen.max.y - seen.min.y));
}

Device::Device(const RECT_2D& area) : box(area), span(area.max - area.min) {
  constexpr double pixels = 1000;  // for inserts whose size depends on them
  const double longer = std::max(span.x, span.y);
  pixelSize = std::isfinite(longer) && longer > 0 ? longer / pixels : 0;
}

Placement::Placement(const IProjector& projector, const Device& device) {
  const auto project = [&](double x, double y, double z) {
    PNT_2D p;
    projector.to2D(PNT_3D(x, y, z), p);
    return p;
  };
  const PNT_2D origin = project(0, 0, 0);
  const PNT_2D ends[] = {project(kStep, 0, 0), project(0, kStep, 0), project(0, 0, kStep)};
  for (int i = 0; i < 3; ++i) {
    m_x[i] = device.xScale * ((ends[i].x - origin.x) / kStep);
    m_y[i] = device.yScale * ((ends[i].y - origin.y) / kStep);
  }
  m_x[3] = device.xScale * origin.x + device.xShift;
  m_y[3] = device.yScale * origin.y + device.yShift;
}

Placement Placement::after(const CEntInsertMatrix& matrix) const {
  PNT_3D origin, ends[3];
  matrix.transform(PNT_3D(0, 0, 0), origin);
  matrix.transform(PNT_3D(kStep, 0, 0), ends[0]);
  matrix.transform(PNT_3D(0, kStep, 0), ends[1]);
  matrix.transform(PNT_3D(0, 0, kStep), ends[2]);
  Placement result;
  for (int i = 0; i < 3; ++i) {
    const PNT_3D d = ends[i] - origin;
    result.m_x[i] = (m_x[0] * d.x + m_x[1] * d.y + m_x[2] * d.z) / kStep;
    result.m_y[i] = (m_y[0] * d.x + m_y[1] * d.y + m_y[2] * d.z) / kStep;
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

bool Placement::isPlan() const { return std::hypot(m_x[2], m_y[2]) <= kSimilar * scale(); }

bool Placement::isSimilar() const {
  const double xx = m_x[0] * m_x[0] + m_y[0] * m_y[0], yy = m_x[1] * m_x[1] + m_y[1] * m_y[1];
  const double xy = m_x[0] * m_x[1] + m_y[0] * m_y[1];
  return std::fabs(xx - yy) <= kSimilar * xx && std::fabs(xy) <= kSimilar * xx;
}

}  // namespace vek0::detail
