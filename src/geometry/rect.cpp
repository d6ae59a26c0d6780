#include "vek0core/geometry/rect.h"

#include <utility>

namespace {

constexpr double kFarOut = 1.7e200;  // beyond any drawing, with a finite square

void order(double a, double b, double& low, double& high) {
  low = a < b ? a : b;
  high = a < b ? b : a;
}

void grow(double value, double& low, double& high) {
  if (low > value) low = value;
  if (high < value) high = value;
}

}  // namespace

void RECT_2D::set(double x1, double y1, double x2, double y2) {
  order(x1, x2, min.x, max.x);
  order(y1, y2, min.y, max.y);
}

void RECT_2D::set(const PNT_2D* pts, int n) {
  if (n <= 0) return initRegion();
  min = max = pts[n - 1];
  for (int i = n - 2; i >= 0; --i) updateRegion(pts[i]);
}

void RECT_2D::set(const double* xs, const double* ys) {
  min.set(xs[0], ys[0]);
  max = min;
  for (int i = 1; i < 4; ++i) updateRegion(PNT_2D(xs[i], ys[i]));
}

void RECT_2D::initRegion() {
  min.set(kFarOut, kFarOut);
  max.set(-kFarOut, -kFarOut);
}

void RECT_2D::updateRegion(const PNT_2D& p) {
  grow(p.x, min.x, max.x);
  grow(p.y, min.y, max.y);
}

void RECT_2D::updateRegion(const RECT_2D& r) {
  if (r.min.x < min.x) min.x = r.min.x;
  if (r.min.y < min.y) min.y = r.min.y;
  if (r.max.x > max.x) max.x = r.max.x;
  if (r.max.y > max.y) max.y = r.max.y;
}

bool RECT_2D::inside(const RECT_2D& r) const {
  return min.x <= r.min.x && r.max.x <= max.x && min.y <= r.min.y && r.max.y <= max.y;
}

bool RECT_2D::intersect(const RECT_2D& r) const {
  return r.min.x <= max.x && r.min.y <= max.y && r.max.x >= min.x && r.max.y >= min.y;
}

bool RECT_2D::intersect(const RECT_2D& r, RECT_2D& out) const {
  out.min.set(min.x > r.min.x ? min.x : r.min.x, min.y > r.min.y ? min.y : r.min.y);
  out.max.set(max.x < r.max.x ? max.x : r.max.x, max.y < r.max.y ? max.y : r.max.y);
  return out.min.x <= out.max.x && out.min.y <= out.max.y;
}

void RECT_2D::inflate(double dx, double dy) {
  min.set(min.x - dx, min.y - dy);
  max.set(max.x + dx, max.y + dy);
}

bool clipLine(const RECT_2D& box, const PNT_2D& from, const PNT_2D& step, double& t0, double& t1) {
  // Slab method: the line is clipped to one axis after the other.
  const auto narrow = [&](double at, double d, double low, double high) {
    if (d == 0) return low <= at && at <= high;
    const double a = (low - at) / d, b = (high - at) / d;
    t0 = std::max(t0, std::min(a, b));
    t1 = std::min(t1, std::max(a, b));
    return t0 <= t1;
  };
  return narrow(from.x, step.x, box.min.x, box.max.x) &&
         narrow(from.y, step.y, box.min.y, box.max.y);
}

void RECT_3D::set(double x1, double y1, double z1, double x2, double y2, double z2) {
  order(x1, x2, min.x, max.x);
  order(y1, y2, min.y, max.y);
  order(z1, z2, min.z, max.z);
}

void RECT_3D::set(const double* xs, const double* ys, const double* zs) {
  min.set(xs[0], ys[0], zs[0]);
  max = min;
  for (int i = 1; i < 4; ++i) updateRegion(PNT_3D(xs[i], ys[i], zs[i]));
}

void RECT_3D::initRegion() {
  min.set(kFarOut, kFarOut, kFarOut);
  max.set(-kFarOut, -kFarOut, -kFarOut);
}

void RECT_3D::updateRegion(const PNT_3D& p) {
  grow(p.x, min.x, max.x);
  grow(p.y, min.y, max.y);
  grow(p.z, min.z, max.z);
}

void RECT_3D::updateRegion(const RECT_3D& r) {
  if (r.min.x < min.x) min.x = r.min.x;
  if (r.min.y < min.y) min.y = r.min.y;
  if (r.min.z < min.z) min.z = r.min.z;
  if (r.max.x > max.x) max.x = r.max.x;
  if (r.max.y > max.y) max.y = r.max.y;
  if (r.max.z > max.z) max.z = r.max.z;
}

bool RECT_3D::inside(const PNT_3D& p) const {
  return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y && min.z <= p.z &&
         p.z <= max.z;
}

void RECT_3D::move(const PNT_3D& delta) {
  // An empty box is inside out and must stay so.
  if (!validRegion()) return;
  min.move(delta);
  max.move(delta);
}

void RECT_3D::scale(const PNT_3D& center, double factor) {
  if (!validRegion()) return;
  min.scale(center, factor);
  max.scale(center, factor);
  // A negative factor exchanges the corners.
  if (factor < 0) std::swap(min, max);
}
