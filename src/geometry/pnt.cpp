#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/angle.h"

#include <limits>

#include "vek0core/geometry/rect.h"

using vek0::detail::kTwoPi;

namespace {

constexpr double kInLine = 1e-6;  // drawing units in the plane, components in space

// Not-a-number has no nearest integer, and values beyond `int` must not wrap: pixel mapping passes
// arbitrary coordinates from files.
int saturate(double whole) {
  constexpr double kMax = std::numeric_limits<int>::max();
  constexpr double kMin = std::numeric_limits<int>::min();
  if (std::isnan(whole)) return 0;
  if (whole >= kMax) return std::numeric_limits<int>::max();
  if (whole <= kMin) return std::numeric_limits<int>::min();
  return static_cast<int>(whole);
}

// The root of b*x + c = 0, with the results of `risolvi`.
int solveLinear(double b, double c, double& x1) {
  if (b == 0) return c == 0 ? -2 : -1;
  x1 = -c / b;
  return 1;
}

}  // namespace

double PNT_2D::angle(const PNT_2D& p) const {
  double a = std::atan2(p.y - y, p.x - x);
  if (a < 0) a += kTwoPi;
  // A tiny negative angle plus a full turn rounds to the full turn itself.
  return a >= kTwoPi ? 0 : a;
}

void PNT_2D::rotate(const PNT_2D& center, double angleRad) {
  const double dx = x - center.x, dy = y - center.y;
  const double c = std::cos(angleRad), s = std::sin(angleRad);
  x = center.x + dx * c - dy * s;
  y = center.y + dx * s + dy * c;
}

void PNT_3D::scale(const PNT_3D& center, double factor) {
  x = (x - center.x) * factor + center.x;
  y = (y - center.y) * factor + center.y;
  z = (z - center.z) * factor + center.z;
}

void PNT_3D::rotate(const PNT_3D& center, double angleRad) { PNT_2D::rotate(center, angleRad); }

void PNT_3D::calc_bdry(RECT_3D& box) const { box.set(x, y, z, x, y, z); }

PNT_3D prodVect(const PNT_3D& a, const PNT_3D& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

PNT_3D prodVect(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3) {
  return prodVect(p2 - p1, p3 - p2);
}

bool pntsInLine(const PNT_2D& a, const PNT_2D& b, const PNT_2D& c) {
  const PNT_2D d1 = b - a, d2 = c - a;
  const double k = d1.x * d2.y - d1.y * d2.x;
  // If a equals b this is 0/0, and NaN compares false.
  return std::sqrt(k / (d1.x * d1.x + d1.y * d1.y) * k) < kInLine;
}

bool pntsInLine(const PNT_3D& a, const PNT_3D& b, const PNT_3D& c) {
  const PNT_3D n = prodVect(a, b, c);
  return std::fabs(n.x) < kInLine && std::fabs(n.y) < kInLine && std::fabs(n.z) < kInLine;
}

double fround(double v) { return std::floor(v + 0.5); }
double fround_down(double v) { return std::ceil(v - 0.5); }
int iround(double v) { return saturate(fround(v)); }
int iround_down(double v) { return saturate(fround_down(v)); }

int risolvi(double a, double b, double c, double& x1, double& x2) {
  if (a == 0) return solveLinear(b, c, x1);
  const double disc = b * b - 4 * a * c;
  if (disc < 0) return 0;
  if (disc == 0) {
    x1 = x2 = -b / (2 * a);
    return 2;
  }
  // -b and the root have the same sign in q, so nothing cancels when b*b is much
  // larger than 4*a*c; the second root then follows from x1 * x2 = c / a.
  const double q = b > 0 ? -b - std::sqrt(disc) : std::sqrt(disc) - b;
  x1 = q / (2 * a);
  x2 = 2 * c / q;
  return 2;
}

int risolvi_2(double a, double b, double c, double& x1, double& x2) {
  if (a == 0) return solveLinear(2 * b, c, x1);
  const double disc = b * b - a * c;
  if (disc < 0) return 0;
  if (disc == 0) {
    x1 = x2 = -b / a;
    return 2;
  }
  const double q = b > 0 ? -b - std::sqrt(disc) : std::sqrt(disc) - b;
  x1 = q / a;
  x2 = c / q;
  return 2;
}
