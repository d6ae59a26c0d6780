// Lines in the three forms that the interface offers: two points, a parameter along a direction,
// and an implicit equation. "Zero" is an absolute 1e-12 here, whatever the size of the coordinates.
#include "vek0core/geometry/line.h"

namespace {

constexpr double kZero = 1e-12;  // "zero" for differences, coefficients and determinants

bool isZero(double v) { return std::fabs(v) <= kZero; }

bool sameSign(double u, double v) { return (u < 0 && v < 0) || (u > 0 && v > 0); }

// Snaps the parameter to the ends of a segment.
double snap(double t) {
  if (isZero(t)) return 0;
  return std::fabs(t - 1) <= 2 * kZero ? 1 : t;
}

bool onSegment(double t) { return t >= 0 && t <= 1; }

}  // namespace

LINE_2D::LINE_2D(const PAR_LINE_2D& line)
    : p1(line.x0, line.y0), p2(line.x0 + line.dx, line.y0 + line.dy) {}

double LINE_2D::dist(const PNT_2D& p) const {
  if (isZero(p2.x - p1.x) && isZero(p2.y - p1.y)) return p1.dist(p);
  // Normalized, `eval` yields the signed distance.
  IMP_LINE_2D line(p1, p2);
  line.normalize();
  return line.eval(p);
}

bool LINE_2D::intersect(const LINE_2D& other, PNT_2D& pt) const {
  const PNT_2D d1 = p2 - p1, d2 = other.p2 - other.p1, w = other.p1 - p1;
  const double det = d1.y * d2.x - d1.x * d2.y;
  if (isZero(det)) return false;
  // Snapped, so that segments that share an end intersect there despite rounding.
  const double t = snap((w.y * d2.x - w.x * d2.y) / det);
  const double u = snap((w.y * d1.x - w.x * d1.y) / det);
  if (!onSegment(t) || !onSegment(u)) return false;
  pt.set(p1.x + t * d1.x, p1.y + t * d1.y);
  return true;
}

bool LINE_2D::intersect(const LINE_2D& other) const {
  PNT_2D unused(0, 0);
  return intersect(other, unused);
}

bool LINE_2D::ptLeftSide(const PNT_2D& p) const {
  return (p.y - p1.y) * (p2.x - p1.x) > (p.x - p1.x) * (p2.y - p1.y);
}

void LINE_3D::move(const PNT_3D& delta) {
  p1.move(delta);
  p2.move(delta);
}

void LINE_3D::scale(const PNT_3D& center, double factor) {
  p1.scale(center, factor);
  p2.scale(center, factor);
}

void LINE_3D::rotate(const PNT_3D& center, double angleRad) {
  p1.rotate(center, angleRad);
  p2.rotate(center, angleRad);
}

void LINE_3D::ptMedio(PNT_3D& mid) const {
  mid.set((p1.x + p2.x) / 2, (p1.y + p2.y) / 2, (p1.z + p2.z) / 2);
}

bool LINE_3D::ptLeftSide(const PNT_3D& p) const {
  // Left of a vertical line means smaller x, whatever its direction.
  if (p1.x == p2.x) return p.x < p1.x;
  return LINE_2D(p1, p2).ptLeftSide(p);
}

IMP_LINE_2D::IMP_LINE_2D(const IMP_LINE_2D& line, double d)
    : a(line.a), b(line.b), c(line.c - std::sqrt(line.a * line.a + line.b * line.b) * d) {}

void IMP_LINE_2D::create(const PNT_2D& p1, const PNT_2D& p2) {
  a = p2.y - p1.y;
  b = -(p2.x - p1.x);
  c = p1.y * (p2.x - p1.x) - p1.x * (p2.y - p1.y);
}

void IMP_LINE_2D::normalize() {
  const double length = std::sqrt(a * a + b * b);
  if (length == 0) return;
  double k = 1 / length;
  // The sign is normalized too, so that equal lines have equal coefficients.
  if (c > kZero || (isZero(c) && b < -kZero)) k = -k;
  a *= k;
  b *= k;
  c *= k;
}

bool IMP_LINE_2D::intersect(const IMP_LINE_2D& other, PNT_2D& pt) const {
  if (isZero(a - other.a) && isZero(b - other.b) && isZero(c - other.c)) return false;
  const double det = a * other.b - b * other.a;
  if (isZero(det)) return false;
  pt.set((b * other.c - c * other.b) / det, (c * other.a - a * other.c) / det);
  return true;
}

void IMP_LINE_2D::perpend(const PNT_2D& p, IMP_LINE_2D& out) const {
  out.set(b, -a, p.y * a - p.x * b);
}

bool IMP_LINE_2D::sameSide(const PNT_2D& p, const PNT_2D& q) const {
  return sameSign(eval(p), eval(q));
}

PAR_LINE_2D::PAR_LINE_2D(const IMP_LINE_2D& line, double px0, double py0)
    : x0(px0), y0(py0), dx(0), dy(0) {
  if (isZero(line.a) && isZero(line.b)) return;
  const double length = std::sqrt(line.a * line.a + line.b * line.b);
  dx = line.b / length;
  dy = -line.a / length;
}

void PAR_LINE_2D::create(const PNT_2D& p1, const PNT_2D& p2) {
  x0 = p1.x;
  y0 = p1.y;
  dx = p2.x - p1.x;
  dy = p2.y - p1.y;
}

bool PAR_LINE_2D::IsNull() const { return isZero(dx) && isZero(dy); }

void PAR_LINE_2D::Normalize() {
  const double l = length();
  if (l == 0) return;
  dx /= l;
  dy /= l;
}

double PAR_LINE_2D::calcParam(const PNT_2D& p) const {
  if (dx == 0) return dy == 0 ? 0 : (p.y - y0) / dy;
  if (dy == 0) return (p.x - x0) / dx;
  const double t = (p.x - x0) / dx;
  // Exact for points on the line; others are projected.
  if (t == (p.y - y0) / dy) return t;
  return (dx * (p.x - x0) + dy * (p.y - y0)) / (dx * dx + dy * dy);
}

int PAR_LINE_2D::intersect(const IMP_LINE_2D& line, double& t) const {
  const double denominator = line.a * dx + line.b * dy;
  const double numerator = -line.eval(x0, y0);
  if (denominator == 0) return numerator == 0 ? 1 : 0;
  t = numerator / denominator;
  return 2;
}

int PAR_LINE_2D::intersect(const PAR_LINE_2D& other, double& t, double& u) const {
  const double det = dx * other.dy - dy * other.dx;
  const double wx = x0 - other.x0, wy = y0 - other.y0;
  if (det == 0) return dy * wx == dx * wy ? 1 : 0;
  t = (other.dx * wy - other.dy * wx) / det;
  u = (dx * wy - dy * wx) / det;
  return 2;
}

bool PAR_LINE_2D::sameSide(const PNT_2D& p, const PNT_2D& q) const {
  return IMP_LINE_2D(dy, -dx, dx * y0 - dy * x0).sameSide(p, q);
}

double PAR_LINE_2D::dist(const PNT_2D& p) const {
  const double l = length();
  if (l == 0) return p.dist(x0, y0);
  return ((p.x - x0) * dy - (p.y - y0) * dx) / l;
}

void PAR_LINE_3D::create(const PNT_3D& p1, const PNT_3D& p2) {
  p1.get(x0, y0, z0);
  (p2 - p1).get(dx, dy, dz);
}

double PAR_LINE_3D::calcParam(const PNT_3D& p) const {
  const double square = dx * dx + dy * dy + dz * dz;
  if (square == 0) return 0;
  return ((p.x - x0) * dx + (p.y - y0) * dy + (p.z - z0) * dz) / square;
}
