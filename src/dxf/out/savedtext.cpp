#include "dxf/out/savedtext.h"

#include <algorithm>
#include <cmath>

#include "dxf/out/exactnumbers.h"
#include "vek0core/entities/blocks/attribplacement.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

// Files have no display; only inserts of fixed pixel size need a pixel size.
constexpr double kNoPixel = 1;

double larger(double a, double b) { return std::max(std::fabs(a), std::fabs(b)); }

// A computed point is as precise as its largest input: its own coordinates, and those of the point
// that it was placed from. Rotation mixes x and y.
PNT_3D steadyFrom(const PNT_3D& pnt, const PNT_3D& from) {
  const double size = std::max(larger(pnt.x, pnt.y), larger(from.x, from.y));
  return {steady(pnt.x, size), steady(pnt.y, size), steady(pnt.z, larger(pnt.z, from.z))};
}

PNT_3D insertionPoint(const CEntInsertBase& insert) {
  PNT_3D pnt;
  double sx, sy, sz, rotationRad;
  insert.getInsertParams(kNoPixel, pnt, sx, sy, sz, rotationRad);
  return pnt;
}

// Computed from the values that readers will get: otherwise it would move again when the file is
// read and saved.
PNT_3D basePoint(const TEXT_3D& text, bool exact) {
  // Left-aligned texts have the same point twice.
  if (text.getAlign() == 0) return text;
  const auto asRead = [exact](double value) { return exact ? value : sixDecimals(value); };
  TEXT_3D read(text);
  read.set(asRead(text.x), asRead(text.y), text.z);
  CTextContext context(text.getContext());
  const double rotationRad = context.getRotate();
  context.setHeight(asRead(context.getHeight()));
  context.setWidthScale(asRead(context.getWidthScale()));
  context.setRotate(
      readRadians(asRead(exact ? exactDegrees(rotationRad) : classicDegrees(rotationRad))));
  read.setContext(context);
  return exact ? steadyFrom(read.getBasePoint(), read) : read.getBasePoint();
}

ATTRIB_PLACE computedPlace(const CEntInsertBase& insert, const CEntAttrib& attrib, bool exact) {
  ATTRIB_PLACE place;
  transform_attrib_logic_2_phisic(kNoPixel, insert, attrib, place.position, place.height,
                                  place.widthScale, place.rotation, place.oblique);
  if (!exact) return place;
  place.position = steadyFrom(place.position, insertionPoint(insert));
  place.height = steady(place.height);
  place.widthScale = steady(place.widthScale);
  place.rotation = steadyAngle(place.rotation);
  place.oblique = steadyAngle(place.oblique);
  return place;
}

// From the first point to the second, with the proportions that the text has. The rotation follows
// from the points as written, so that it stays the same when the file is read and saved.
void span(const TEXT_3D& text, SavedText& saved) {
  constexpr long kAligned = 3, kFitted = 5;  // code 72
  const CTextContext shown = text.getShownContext();
  saved.height = shown.getHeight();
  saved.widthScale = shown.getWidthScale();
  const bool isBackward = saved.widthScale < 0;
  PNT_3D end(text.getFitLength() * (isBackward ? -1 : 1), 0, 0);
  end.rotate(PNT_3D(0, 0, 0), saved.rotationRad);
  saved.insertion = steadyFrom(text + end, text);
  saved.rotationRad = isBackward ? saved.insertion.angle(text) : text.angle(saved.insertion);
  saved.horizontal = text.getFit() == TextFit::Width ? kFitted : kAligned;
  saved.vertical = 0;
}

}  // namespace

SavedText savedText(const TEXT_3D& text, bool exact) {
  const CTextContext& context = text.getContext();
  SavedText saved{
      &context.getString(), text.getStyle(),    basePoint(text, exact), text, 0, 0, 0, 0,
      text.getHorizAlign(), text.getVertAlign()};
  saved.height = context.getHeight();
  saved.widthScale = context.getWidthScale();
  saved.rotationRad = context.getRotate();
  saved.obliqueRad = context.getOblique();
  if (text.getFit() != TextFit::None && exact) span(text, saved);
  saved.losesFit = text.getFit() != TextFit::None && !exact;
  return saved;
}

SavedText savedAttrib(const CEntInsertBase& insert, const CEntAttrib& attrib, bool exact) {
  // The place read from the file reproduces it exactly, as long as nothing was changed.
  const ATTRIB_PLACE* remembered = rememberedPlace(insert, attrib);
  const ATTRIB_PLACE place = remembered ? *remembered : computedPlace(insert, attrib, exact);
  TEXT_3D text(attrib.getText());
  text.set(place.position.x, place.position.y, place.position.z);
  CTextContext context(text.getContext());
  context.setHeight(place.height);
  context.setWidthScale(place.widthScale);
  context.setRotate(place.rotation);
  context.setOblique(place.oblique);
  text.setContext(context);
  SavedText saved = savedText(text, exact);
  saved.string = &attrib.getValue();  // not the local copy
  return saved;
}

}  // namespace vek0::detail
