#include "vek0core/entities/attribplacement.h"

#include <cmath>
#include <numbers>

#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entinsert.h"
#include "vek0core/entities/insertmatrix.h"

namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

double oneTurn(double angleRad) {
  if (angleRad < 0) angleRad += kTwoPi;
  return angleRad >= kTwoPi ? angleRad - kTwoPi : angleRad;
}

// A scale that cannot be undone is taken for none.
double nonZero(double scale) { return std::isfinite(1 / scale) ? scale : 1; }

// What the placement asks of an insert, with scales that leave something to invert.
struct Placement {
  PNT_3D point;
  double sx, sy, sz, rotation;
  CEntInsertMatrix matrix;

  Placement(double pixelSize, const CEntInsertBase& insert) {
    insert.getInsertParams(pixelSize, point, sx, sy, sz, rotation);
    sx = nonZero(sx);
    sy = nonZero(sy);
    sz = nonZero(sz);
    matrix.set(CEntInsertMatrix::basePoint(insert), sx, sy, sz, rotation, point);
  }
};

struct Frame {
  double height, widthScale, rotation, oblique;

  explicit Frame(const CTextContext& c)
      : height(c.getHeight()),
        widthScale(c.getWidthScale()),
        rotation(c.getRotate()),
        oblique(c.getOblique()) {}
};

// Scales along the axes on which the rotation is measured. The frame is the baseline
// u = (cos r, sin r), pointing backward for a negative width, and the upright
// n + tan(o) u with n square to u, both of length 1 in u and n: height and width are
// factors beside them, so that texts of height or width 0 lose nothing.
void stretch(Frame& f, double sx, double sy) {
  // Nothing is rounded where nothing changes its shape.
  if (sx == sy && sx > 0) {
    f.height *= sx;
    return;
  }
  const double backward = std::signbit(f.widthScale) ? -1 : 1;
  const double c = std::cos(f.rotation), s = std::sin(f.rotation), t = std::tan(f.oblique);
  double ux = backward * c * sx, uy = backward * s * sy;
  const double vx = (-s + t * c) * sx, vy = (c + t * s) * sy;
  double cross = ux * vy - uy * vx;
  double sign = 1;
  if (cross < 0) {
    ux = -ux;
    uy = -uy;
    cross = -cross;
    sign = -1;
  }
  const double square = ux * ux + uy * uy;
  f.height *= cross / std::sqrt(square);
  f.widthScale = sign * std::fabs(f.widthScale) * square / cross;
  f.rotation = std::atan2(uy, ux);
  f.oblique = std::atan((ux * vx + uy * vy) / cross);
}

}  // namespace

void transform_attrib_logic_2_phisic(double pixelSize, const CEntInsertBase& insert,
                                     const CEntAttrib& attrib, PNT_3D& position, double& height,
                                     double& widthScale, double& rotation, double& oblique) {
  const Placement at(pixelSize, insert);
  const TEXT_3D& text = attrib.getText();
  at.matrix.transform(text, position);
  Frame f(text.getContext());
  stretch(f, at.sx, at.sy);
  height = f.height;
  widthScale = f.widthScale;
  rotation = oneTurn(f.rotation + at.rotation);
  oblique = f.oblique;
}

void transform_attrib_phisic_2_logic(double pixelSize, const CEntInsertBase& insert,
                                     TEXT_3D& text) {
  const Placement at(pixelSize, insert);
  PNT_3D position;
  // Scales so small that their product vanishes leave the point where it is.
  if (at.matrix.invert(text, position)) text.set(position.x, position.y, position.z);
  CTextContext context = text.getContext();
  Frame f(context);
  f.rotation -= at.rotation;
  stretch(f, 1 / at.sx, 1 / at.sy);
  context.setHeight(f.height);
  context.setWidthScale(f.widthScale);
  context.setRotate(oneTurn(f.rotation));
  context.setOblique(f.oblique);
  text.setContext(context);
}
