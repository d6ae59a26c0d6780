// Circles and their intersections with lines, segments and circles. A line within `touchTolerance`
// of the circumference touches it and has one common point: exact arithmetic would find none or
// two, by chance.
#include "vek0core/geometry/circle.h"

#include <algorithm>
#include <utility>

#include "geometry/vector.h"

using vek0::detail::touchTolerance;

namespace {

constexpr double kParamEps = 1e-12;  // of the parameter along a segment

long give(const PNT_2D& a, const PNT_2D& b, long count, PNT_2D* p1, PNT_2D* p2) {
  *p1 = a;
  *p2 = b;
  return count;
}

// Half the chord that a line at `distance` from the center cuts off; negative when
// the line misses the circle, 0 when it touches.
double halfChord(double radius, double distance) {
  const double r = std::fabs(radius);
  const double off = std::fabs(distance);
  if (!(off <= r + touchTolerance(r))) return -1;
  if (off >= r - touchTolerance(r)) return 0;
  // Sum times difference: r * r - off * off would cancel for almost tangent lines.
  return std::sqrt((r - off) * (r + off));
}

// The ends of a segment are included, with a tolerance of 1e-12 in the parameter.
bool onSegment(double& t) {
  if (std::fabs(t) <= kParamEps) t = 0;
  if (std::fabs(t - 1) <= 2 * kParamEps) t = 1;
  return t >= 0 && t <= 1;
}

// Circumcenter of a triangle, relative to its first corner (a and b are the others).
bool circumcentre(const PNT_2D& a, const PNT_2D& b, PNT_2D& centre) {
  const double cross = a.x * b.y - a.y * b.x;
  const double aa = a.x * a.x + a.y * a.y, bb = b.x * b.x + b.y * b.y;
  // Relative to the longest side, because the cross product is twice the triangle's area.
  const double longest = std::max({aa, bb, a.dist_square(b)});
  if (!(std::fabs(cross) > kParamEps * longest)) return false;
  centre.set((aa * b.y - bb * a.y) / (2 * cross), (bb * a.x - aa * b.x) / (2 * cross));
  return std::isfinite(centre.x) && std::isfinite(centre.y);
}

}  // namespace

bool CIRCLE_3D::Create(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3) {
  PNT_2D centre(0, 0);
  if (!circumcentre(PNT_2D(p2.x - p1.x, p2.y - p1.y), PNT_2D(p3.x - p1.x, p3.y - p1.y), centre)) {
    return false;
  }
  set(p1.x + centre.x, p1.y + centre.y, p1.z, PNT_2D(0, 0).dist(centre));
  return true;
}

PNT_3D CIRCLE_3D::getPntAngle(double angleRad) const {
  return {x + radius * std::cos(angleRad), y + radius * std::sin(angleRad), z};
}

void CIRCLE_3D::scale(const PNT_3D& center, double factor) {
  PNT_3D::scale(center, factor);
  radius *= factor;
}

void CIRCLE_3D::calc_bdry(RECT_3D& box) const {
  const double r = std::fabs(radius);
  box.set(x - r, y - r, z, x + r, y + r, z);
}

double CIRCLE_3D::dist(const PNT_2D& p) const {
  return std::fabs(PNT_2D::dist(p) - std::fabs(radius));
}

long CIRCLE_3D::intersect(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const {
  double t[2];
  const PAR_LINE_2D carrier(line);
  const long count = intersect(carrier, t[0], t[1]);
  PNT_2D found[2];
  long kept = 0;
  for (long i = 0; i < count; ++i) {
    if (onSegment(t[i])) carrier.calcPt(t[i], found[kept++]);
  }
  if (kept == 0) return 0;
  return give(found[0], found[kept - 1], kept, p1, p2);
}

long CIRCLE_3D::intersect(const IMP_LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const {
  const double length = std::sqrt(line.a * line.a + line.b * line.b);
  if (length == 0) return 0;
  // Normalized first, so that `eval` yields a distance.
  const double a = line.a / length, b = line.b / length;
  const double distance = line.eval(x, y) / length;
  const double half = halfChord(radius, distance);
  if (half < 0) return 0;
  const PNT_2D foot(x - a * distance, y - b * distance);
  const PNT_2D along(b * half, -a * half);
  return give(foot - along, foot + along, half == 0 ? 1 : 2, p1, p2);
}

long CIRCLE_3D::intersect(const PAR_LINE_2D& line, double& t1, double& t2) const {
  const double length = line.length();
  if (length == 0) return 0;
  const double half = halfChord(radius, line.dist(*this));
  if (half < 0) return 0;
  // Divided twice, because the square of a long line's length may overflow.
  const double middle = ((x - line.x0) * line.dx + (y - line.y0) * line.dy) / length / length;
  t1 = middle - half / length;
  t2 = middle + half / length;
  return half == 0 ? 1 : 2;
}

long CIRCLE_3D::intersect(const CIRCLE_3D& other, PNT_2D* p1, PNT_2D* p2) const {
  const double r1 = std::fabs(radius), r2 = std::fabs(other.radius);
  const double d = PNT_2D::dist(other);
  const double tolerance = touchTolerance(std::max(r1, r2));
  // Concentric circles have no crossing or infinitely many, and no line of centers.
  if (!(d > tolerance && d <= r1 + r2 + tolerance && d >= std::fabs(r1 - r2) - tolerance)) return 0;
  const bool outside = d >= r1 + r2 - tolerance, within = d <= std::fabs(r1 - r2) + tolerance;
  // Distance of the common chord from this center, along the line of centers. Touching circles have
  // none; for nearly equal ones it would be far off the circle.
  double a = (r1 - r2) * (r1 + r2) / (2 * d) + d / 2;
  if (outside || within) a = outside || r1 > r2 ? r1 : -r1;
  const double h = std::sqrt(std::max(0.0, (r1 - a) * (r1 + a)));
  const double ux = (other.x - x) / d, uy = (other.y - y) / d;
  const PNT_2D foot(x + ux * a, y + uy * a), across(-uy * h, ux * h);
  return give(foot + across, foot - across, h == 0 ? 1 : 2, p1, p2);
}

long CIRCLE_3D::intersect_hor(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const {
  const double half = halfChord(radius, line.p1.y - y);
  if (half < 0) return 0;
  const double low = std::min(line.p1.x, line.p2.x), high = std::max(line.p1.x, line.p2.x);
  // The tolerance of `onSegment`, converted from a parameter to a length.
  const double reach = kParamEps * (1 + std::fabs(high - low));
  PNT_2D found[2];
  long kept = 0;
  for (const double at : {x - half, x + half}) {
    if (kept == 1 && half == 0) break;
    if (at >= low - reach && at <= high + reach) found[kept++].set(at, line.p1.y);
  }
  return kept == 0 ? 0 : give(found[0], found[kept - 1], kept, p1, p2);
}

long CIRCLE_3D::intersect_ver(const LINE_2D& line, PNT_2D* p1, PNT_2D* p2) const {
  // The same with the axes exchanged.
  const CIRCLE_3D mirrored(y, x, z, radius);
  const LINE_2D across(line.p1.y, line.p1.x, line.p2.y, line.p2.x);
  const long count = mirrored.intersect_hor(across, p1, p2);
  if (count == 0) return 0;
  std::swap(p1->x, p1->y);
  std::swap(p2->x, p2->y);
  return count;
}
