// Orthogonal projections and the parallel one. Those along an axis map a box by two of its corners,
// the others by the four of its plan, since height does not matter to them or only adds to one
// coordinate.
#include "vek0core/view/projector.h"

#include <cmath>

namespace {

// Box of the projected corners of the box's plan, at height 0.
void boxOfPlan(const IProjector& projector, const RECT_3D& box, RECT_2D& out) {
  double us[4], vs[4];
  projector.to2D(box.min.x, box.min.y, 0, us[0], vs[0]);
  projector.to2D(box.max.x, box.min.y, 0, us[1], vs[1]);
  projector.to2D(box.max.x, box.max.y, 0, us[2], vs[2]);
  projector.to2D(box.min.x, box.max.y, 0, us[3], vs[3]);
  out.set(us, vs);
}

}  // namespace

void IProjector::to2D(const PNT_3D& p, PNT_2D& out) const { to2D(p.x, p.y, p.z, out.x, out.y); }

void IProjector::to3D(const PNT_2D& p, double depth, PNT_3D& out) const {
  to3D(p.x, p.y, depth, out.x, out.y, out.z);
}

void IProjector::to2D(const LINE_3D& line, LINE_2D& out) const {
  to2D(line.p1, out.p1);
  to2D(line.p2, out.p2);
}

void IProjector::to2D(const LINE_3D& line, LINE_3D& out) const {
  to2D(line.p1, out.p1, out.p1.z);
  to2D(line.p2, out.p2, out.p2.z);
}

void CPOProjector::to2D(const RECT_3D& box, RECT_2D& out) const {
  if (!box.validRegion()) return out.initRegion();
  out.min.set(box.min.x, box.min.y);
  out.max.set(box.max.x, box.max.y);
}

void CPOProjector::to2D(const PNT_3D& p, PNT_2D& out, double& depth) const {
  const double z = p.z;
  to2D(p.x, p.y, z, out.x, out.y);
  depth = z;
}

void CPOProjector::to2D(double x, double y, double, double& u, double& v) const {
  u = x;
  v = y;
}

void CPOProjector::to3D(double u, double v, double depth, double& x, double& y, double& z) const {
  x = u;
  y = v;
  z = depth;
}

void CPVProjector::to2D(const RECT_3D& box, RECT_2D& out) const {
  if (!box.validRegion()) return out.initRegion();
  out.min.set(box.min.x, box.min.z);
  out.max.set(box.max.x, box.max.z);
}

void CPVProjector::to2D(const PNT_3D& p, PNT_2D& out, double& depth) const {
  const double y = p.y;
  to2D(p.x, y, p.z, out.x, out.y);
  depth = y;
}

void CPVProjector::to2D(double x, double, double z, double& u, double& v) const {
  u = x;
  v = z;
}

void CPVProjector::to3D(double u, double v, double depth, double& x, double& y, double& z) const {
  x = u;
  y = depth;
  z = v;
}

// Assigned directly, because `set` would reorder the limits: only the negated y may swap them.
void CPLProjector::to2D(const RECT_3D& box, RECT_2D& out) const {
  if (!box.validRegion()) return out.initRegion();
  out.min.set(-box.max.y, box.min.z);
  out.max.set(-box.min.y, box.max.z);
}

void CPLProjector::to2D(const PNT_3D& p, PNT_2D& out, double& depth) const {
  const double x = p.x;
  to2D(x, p.y, p.z, out.x, out.y);
  depth = x;
}

void CPLProjector::to2D(double, double y, double z, double& u, double& v) const {
  u = -y;
  v = z;
}

void CPLProjector::to3D(double u, double v, double depth, double& x, double& y, double& z) const {
  x = depth;
  y = -u;
  z = v;
}

void CPORotatedProjector::UpdateParams(double angleRad, double cx, double cy) {
  m_angle = angleRad;
  m_cos = std::cos(angleRad);
  m_sin = std::sin(angleRad);
  m_cx = cx;
  m_cy = cy;
}

void CPORotatedProjector::to2D(const RECT_3D& box, RECT_2D& out) const {
  if (!box.validRegion()) return out.initRegion();
  boxOfPlan(*this, box, out);
}

void CPORotatedProjector::to2D(const PNT_3D& p, PNT_2D& out, double& depth) const {
  const double z = p.z;
  to2D(p.x, p.y, z, out.x, out.y);
  depth = z;
}

void CPORotatedProjector::to2D(double x, double y, double, double& u, double& v) const {
  const double dx = x - m_cx, dy = y - m_cy;
  u = m_cos * dx + m_sin * dy;
  v = m_cos * dy - m_sin * dx;
}

void CPORotatedProjector::to3D(double u, double v, double depth, double& x, double& y,
                               double& z) const {
  x = m_cos * u - m_sin * v + m_cx;
  y = m_sin * u + m_cos * v + m_cy;
  z = depth;
}

CParalProjector::CParalProjector(double a, double b, double c, double d)
    : m_a(a), m_b(b), m_c(c), m_d(d), m_invDet(1 / (a * d - b * c)) {}

// Height only adds to v, so the bottom corners without z determine all eight.
void CParalProjector::to2D(const RECT_3D& box, RECT_2D& out) const {
  if (!box.validRegion()) return out.initRegion();
  boxOfPlan(*this, box, out);
  out.min.y += box.min.z;
  out.max.y += box.max.z;
}

void CParalProjector::to2D(const PNT_3D& p, PNT_2D& out, double& depth) const {
  const double z = p.z;
  to2D(p.x, p.y, z, out.x, out.y);
  depth = z;
}

void CParalProjector::to2D(double x, double y, double z, double& u, double& v) const {
  u = m_a * x + m_c * y;
  v = m_b * x + m_d * y + z;
}

void CParalProjector::to3D(double u, double v, double depth, double& x, double& y,
                           double& z) const {
  const double w = v - depth;
  x = (m_d * u - m_c * w) * m_invDet;
  y = (m_a * w - m_b * u) * m_invDet;
  z = depth;
}
