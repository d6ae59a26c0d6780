#include "vek0core/entities/blocks/attribplacement.h"

#include <cmath>

#include "entities/blocks/textframe.h"
#include "entities/oneturn.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/entities/entattrib.h"

namespace {

using vek0::detail::oneTurn;
using vek0::detail::TextFrame;

// A scale that cannot be inverted counts as 1.
// 1 / NaN, 1 / 0 and 1 / subnormal are not finite.
double nonZero(double scale) { return std::isfinite(1 / scale) ? scale : 1; }

// The insert parameters for the placement, with invertible scales.
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

// There is no display during reading.
constexpr double kPixelSize = 1;

void stretch(TextFrame& frame, double sx, double sy) { frame.map(PNT_2D(sx, 0), PNT_2D(0, sy)); }

}  // namespace

void transform_attrib_logic_2_phisic(double pixelSize, const CEntInsertBase& insert,
                                     const CEntAttrib& attrib, PNT_3D& position, double& height,
                                     double& widthScale, double& rotation, double& oblique) {
  const Placement at(pixelSize, insert);
  const TEXT_3D& text = attrib.getText();
  at.matrix.transform(text, position);
  TextFrame f(text.getContext());
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
  // If the scales are so small that their product underflows, the point is unchanged.
  if (at.matrix.invert(text, position)) text.set(position.x, position.y, position.z);
  CTextContext context = text.getContext();
  TextFrame f(context);
  // Rotated back before the inverse scales, the reverse of the order in which they were applied.
  f.rotation -= at.rotation;
  stretch(f, 1 / at.sx, 1 / at.sy);
  f.rotation = oneTurn(f.rotation);
  f.store(context);
  text.setContext(context);
}

void placeAttrib(const CEntInsertBase& insert, const TEXT_3D& text, CEntAttrib& attrib) {
  const CTextContext& c = text.getContext();
  // The original is stored besides the computed placement, so that saving reproduces it exactly.
  attrib.setReadPlace(std::make_shared<const ATTRIB_PLACE>(
      ATTRIB_PLACE{text, c.getHeight(), c.getWidthScale(), c.getRotate(), c.getOblique()}));
  TEXT_3D inBlock(text);
  transform_attrib_phisic_2_logic(kPixelSize, insert, inBlock);
  attrib.setText(inBlock);
}

// Changes are not tracked: the placement is valid if it still maps to the current text.
const ATTRIB_PLACE* rememberedPlace(const CEntInsertBase& insert, const CEntAttrib& attrib) {
  const ATTRIB_PLACE* place = attrib.getReadPlace();
  if (place == nullptr) return nullptr;
  TEXT_3D text(attrib.getText());
  // Maps the remembered placement again and compares: equal only if nothing was changed.
  text.set(place->position.x, place->position.y, place->position.z);
  CTextContext context = text.getContext();
  context.setHeight(place->height);
  context.setWidthScale(place->widthScale);
  context.setRotate(place->rotation);
  context.setOblique(place->oblique);
  text.setContext(context);
  transform_attrib_phisic_2_logic(kPixelSize, insert, text);
  return text == attrib.getText() ? place : nullptr;
}
