#include "vek0core/entities/blocks/transformtext.h"

#include "entities/blocks/textframe.h"
#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/geometry/arc.h"

namespace {

PNT_3D baseOffset(const TEXT_3D& text) {
  PNT_3D offset(0, 0, 0);
  text.getDeltaXY(offset.x, offset.y);
  return offset;
}

}  // namespace

void transform_text(const CEntInsertMatrix& matrix, TEXT_3D& text) {
  const PNT_3D before = baseOffset(text);
  PNT_3D at;
  matrix.transform(text, at);
  text.set(at.x, at.y, at.z);
  PNT_2D x, y;
  matrix.getAxes(x, y);
  CTextContext context = text.getContext();
  vek0::detail::TextFrame frame(context);
  frame.map(x, y);
  frame.rotation = ARC_3D::normal(frame.rotation);
  frame.store(context);
  text.setContext(context);
  // The line from the base to a point above it is perpendicular before and after, but its image is
  // slanted.
  if (matrix.IsIsotropicXY() || text.getVertAlign() == 0) return;
  const PNT_3D after = baseOffset(text);
  text.move(PNT_3D(x.x * before.x + y.x * before.y - after.x,
                   x.y * before.x + y.y * before.y - after.y, 0));
}
