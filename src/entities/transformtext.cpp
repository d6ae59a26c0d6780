#include "vek0core/entities/transformtext.h"

#include "entities/textframe.h"
#include "vek0core/entities/insertmatrix.h"
#include "vek0core/geometry/arc.h"

void transform_text(const CEntInsertMatrix& matrix, TEXT_3D& text) {
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
}
