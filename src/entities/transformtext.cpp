#include "vek0core/entities/transformtext.h"

#include <cmath>

#include "geometry/vector.h"
#include "vek0core/entities/insertmatrix.h"
#include "vek0core/geometry/arc.h"

namespace {

using vek0::detail::cross;
using vek0::detail::dot;

// Turned and scaled alike along both axes, and exactly so: nothing else is rounded then.
bool isPlain(const PNT_2D& x, const PNT_2D& y) { return y.x == -x.y && y.y == x.x; }

void transform(const PNT_2D& x, const PNT_2D& y, CTextContext& c) {
  const double length = std::sqrt(dot(x, x));
  if (isPlain(x, y) && length > 0) {
    c.setHeight(c.getHeight() * length);
    c.setRotate(ARC_3D::normal(c.getRotate() + std::atan2(x.y, x.x)));
    return;
  }
  const double backward = std::signbit(c.getWidthScale()) ? -1 : 1;
  const double cosine = std::cos(c.getRotate()), sine = std::sin(c.getRotate());
  const double t = std::tan(c.getOblique());
  const auto map = [&](double u, double v) { return PNT_2D(x.x * u + y.x * v, x.y * u + y.y * v); };
  PNT_2D along = map(backward * cosine, backward * sine);
  const PNT_2D up = map(t * cosine - sine, t * sine + cosine);
  double area = cross(along, up), sign = 1;
  if (area < 0) {
    along = -along;
    area = -area;
    sign = -1;
  }
  const double square = dot(along, along), height = c.getHeight() * area / std::sqrt(square);
  const double width = sign * std::fabs(c.getWidthScale()) * square / area;
  if (!std::isfinite(height) || !std::isfinite(width)) return;
  c.setHeight(height);
  c.setWidthScale(width);
  c.setRotate(ARC_3D::normal(std::atan2(along.y, along.x)));
  c.setOblique(std::atan(dot(along, up) / area));
}

}  // namespace

void transform_text(const CEntInsertMatrix& matrix, TEXT_3D& text) {
  PNT_3D at;
  matrix.transform(text, at);
  text.set(at.x, at.y, at.z);
  PNT_2D x, y;
  matrix.getAxes(x, y);
  CTextContext context = text.getContext();
  transform(x, y, context);
  text.setContext(context);
}
