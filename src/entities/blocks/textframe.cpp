#include "entities/blocks/textframe.h"

#include <cmath>

#include "geometry/vector.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

// Whether the axes are exactly a rotation with uniform scale, so that nothing else is rounded.
bool isPlain(const PNT_2D& x, const PNT_2D& y) { return y.x == -x.y && y.y == x.x; }

}  // namespace

TextFrame::TextFrame(const CTextContext& context)
    : height(context.getHeight()),
      widthScale(context.getWidthScale()),
      rotation(context.getRotate()),
      oblique(context.getOblique()) {}

void TextFrame::map(const PNT_2D& x, const PNT_2D& y) {
  const double length = std::sqrt(dot(x, x));
  if (isPlain(x, y) && length > 0) {
    height *= length;
    const double turn = std::atan2(x.y, x.x);
    if (turn != 0) rotation = std::remainder(rotation + turn, kTwoPi);
    return;
  }
  // A negative width factor writes backward, hence reverses the text's direction.
  const double backward = std::signbit(widthScale) ? -1 : 1;
  const double c = std::cos(rotation), s = std::sin(rotation), t = std::tan(oblique);
  const auto image = [&](double u, double v) {
    return PNT_2D(x.x * u + y.x * v, x.y * u + y.y * v);
  };
  // Images of the text's unit vectors along its line and upward, including the oblique angle.
  PNT_2D along = image(backward * c, backward * s);
  const PNT_2D up = image(t * c - s, t * s + c);
  double area = cross(along, up), sign = 1;
  // A mirrored frame is written backward, which makes its area positive again.
  if (area < 0) {
    along = -along;
    area = -area;
    sign = -1;
  }
  // The height is the component of the image that is perpendicular to the line.
  const double square = dot(along, along), newHeight = height * area / std::sqrt(square);
  const double newWidth = sign * std::fabs(widthScale) * square / area;
  // A degenerate matrix leaves the text as it was.
  if (!std::isfinite(newHeight) || !std::isfinite(newWidth)) return;
  height = newHeight;
  widthScale = newWidth;
  rotation = std::atan2(along.y, along.x);
  oblique = std::atan(dot(along, up) / area);
}

void TextFrame::store(CTextContext& context) const {
  context.setHeight(height);
  context.setWidthScale(widthScale);
  context.setRotate(rotation);
  context.setOblique(oblique);
}

}  // namespace vek0::detail
