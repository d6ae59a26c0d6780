// Mirrors entities at a line. Mirroring at a line of angle a turns the direction b into 2a - b and
// reverses the sense of rotation. As for rotations, angles that files state in degrees stay free of
// the noise of converting them.
#include "vek0core/entities/edit/entmirrorvisitor.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "entities/blocks/hatchtransform.h"
#include "entities/oneturn.h"
#include "vek0core/entities/blocks/attribplacement.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/entmovevisitor.h"
#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/entities/edit/entrotatexyvisitor.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/hatch/hatchtypetable.h"

using vek0::detail::oneTurn;
using vek0::detail::withoutNoise;

namespace {

constexpr double kHalfTurn = 180, kTurn = 360;
constexpr double kPixelSize = 1;  // matters for inserts of fixed pixel size only
constexpr long kLeft = 0, kRight = 2;
constexpr long kBaseline = 0, kBottom = 1, kTop = 3;

PNT_3D middle(const PNT_3D& a, const PNT_3D& b) {
  return PNT_3D((a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2);
}

// As the drawing has it now.
TEXT_3D placedText(const CEntInsertBase& insert, const CEntAttrib& attrib) {
  PNT_3D position;
  double height, widthScale, rotation, oblique;
  if (const ATTRIB_PLACE* place = rememberedPlace(insert, attrib)) {
    position = place->position;
    height = place->height;
    widthScale = place->widthScale;
    rotation = place->rotation;
    oblique = place->oblique;
  } else {
    transform_attrib_logic_2_phisic(kPixelSize, insert, attrib, position, height, widthScale,
                                    rotation, oblique);
  }
  TEXT_3D text(attrib.getText());
  text.set(position.x, position.y, position.z);
  CTextContext context(text.getContext());
  context.setHeight(height);
  context.setWidthScale(widthScale);
  context.setRotate(rotation);
  context.setOblique(oblique);
  text.setContext(context);
  return text;
}

bool isSameFamily(const HATCH_LINE& a, const HATCH_LINE& b) {
  return a.angle == b.angle && a.x0 == b.x0 && a.y0 == b.y0 && a.dx == b.dx && a.dy == b.dy &&
         std::equal(a.dash, a.dash + a.numDash, b.dash, b.dash + b.numDash);
}

// The pattern mirrored at its x axis.
const HATCH_TYPE& mirroredPattern(CHatchTypeTable& patterns, const HATCH_TYPE& type) {
  if (type.numLines == 0) return type;
  std::vector<HATCH_LINE> lines(type.lines, type.lines + type.numLines);
  for (HATCH_LINE& line : lines) {
    line.angle = -line.angle;
    line.y0 = -line.y0;
    line.dy = -line.dy;
  }
  const HATCH_TYPE* known = getHatch(zim::WString(type.name));
  const bool isKnown = known && std::equal(lines.begin(), lines.end(), known->lines,
                                           known->lines + known->numLines, isSameFamily);
  return isKnown ? *known : patterns.intern(zim::WString(type.name), lines);
}

// Whether a text reads to the right, or straight up.
bool isUpright(double degrees) {
  constexpr double close = 1e-9;
  const double angle = degrees * vek0::detail::kPi / kHalfTurn, right = std::cos(angle);
  return std::fabs(right) > close ? right > 0 : std::sin(angle) > 0;
}

struct TextArea {
  PNT_3D center;
  double degrees;
};

// The area that the texts of a block cover, along the first of them; none without texts.
std::optional<TextArea> textAreaOf(const CBlock& block) {
  std::optional<double> angle;
  RECT_2D box;
  box.initRegion();
  double z = 0;
  for (unsigned i = 0; i < block.size(); ++i) {
    if (block[i]->getType() != CEntText::kType) continue;
    const TEXT_3D& text = static_cast<const CEntText&>(*block[i]).getText();
    if (!angle) angle = text.getContext().getRotate();
    PNT_3D corners[4];
    text.getExtremes(corners);
    z = text.z;
    for (PNT_3D& corner : corners) {
      corner.rotate(PNT_2D(0, 0), -*angle);
      box.updateRegion(corner);
    }
  }
  if (!angle) return std::nullopt;
  PNT_3D center((box.min.x + box.max.x) / 2, (box.min.y + box.max.y) / 2, z);
  center.rotate(PNT_2D(0, 0), *angle);
  return TextArea{center, *angle / kRadiansPerDegree};
}

// Records that are nothing but text.
bool isTextRecord(EntRecord record) {
  return record == EntRecord::MText || record == EntRecord::Tolerance || record == EntRecord::Table;
}

}  // namespace

CEntMirrorVisitor::CEntMirrorVisitor(CHatchTypeTable& patterns, const PNT_3D& from,
                                     const PNT_3D& to)
    : m_patterns(&patterns) {
  const double dx = to.x - from.x, dy = to.y - from.y;
  const double length = std::hypot(dx, dy);
  if (!(length > 0) || !std::isfinite(length) || !std::isfinite(from.x) || !std::isfinite(from.y))
    return;
  m_base.set(from.x, from.y, 0);
  const double x = dx / length, y = dy / length;
  m_cos = x * x - y * y;
  m_sin = 2 * x * y;
  m_degrees = withoutNoise(std::atan2(m_sin, m_cos) * kHalfTurn / vek0::detail::kPi);
  m_isIdle = false;
}

void CEntMirrorVisitor::mirror(PNT_3D& p) const {
  if (m_isIdle) return;
  const double x = p.x - m_base.x, y = p.y - m_base.y;
  p.set(m_base.x + m_cos * x + m_sin * y, m_base.y + m_sin * x - m_cos * y, p.z);
}

// In [0, 2*pi).
double CEntMirrorVisitor::mirrored(double angleRad) const {
  const double stated = ARC_3D::normal(angleRad) / kRadiansPerDegree;
  const double image = std::fmod(withoutNoise(m_degrees - stated), kTurn);
  return oneTurn(withoutNoise(oneTurn(image, kTurn)), kTurn) * kRadiansPerDegree;
}

// By how many degrees a text turns, half a turn at most: to the direction of its image, or to the
// opposite one if only that is upright, or upside down, as the text is now.
double CEntMirrorVisitor::turnOf(double degrees, bool& isReversed) const {
  const double image = m_degrees - degrees;
  isReversed = isUpright(image) != isUpright(degrees);
  const double turn = (isReversed ? image + kHalfTurn : image) - degrees;
  return withoutNoise(std::remainder(turn, kTurn));
}

// Reversed, the text begins where it ended; else what was above the baseline is below it.
void CEntMirrorVisitor::mirrorText(TEXT_3D& text, bool isOwn) const {
  if (m_isIdle) return;
  if (!isOwn || text.isVertical() || text.getFit() != TextFit::None) return carryText(text);
  CTextContext context(text.getContext());  // first: this alone can fail
  bool isReversed = false;
  const double degrees = context.getRotate() / kRadiansPerDegree;
  context.setRotate(withoutNoise(degrees + turnOf(degrees, isReversed)) * kRadiansPerDegree);
  mirror(text);
  const long across = text.getHorizAlign(), up = text.getVertAlign();
  if (isReversed) {
    if (across == kLeft || across == kRight) text.setHorizAlign(kLeft + kRight - across);
  } else if (up == kBaseline) {
    const double angle = context.getRotate(), height = context.getHeight();
    text.set(text.x + height * std::sin(angle), text.y - height * std::cos(angle), text.z);
  } else if (up == kBottom || up == kTop) {
    text.setVertAlign(kBottom + kTop - up);
  }
  text.setContext(context);
}

// Moves and turns the text, so that all of its proportions stay.
void CEntMirrorVisitor::carryText(TEXT_3D& text) const {
  PNT_3D corners[4];
  text.getExtremes(corners);
  const PNT_3D center = middle(corners[0], corners[2]);
  PNT_3D image = center;
  mirror(image);
  CTextContext context(text.getContext());
  const double degrees = context.getRotate() / kRadiansPerDegree;
  bool isReversed = false;
  const double turn = turnOf(degrees, isReversed);
  context.setRotate(withoutNoise(degrees + turn) * kRadiansPerDegree);
  text.rotate(center, turn * vek0::detail::kPi / kHalfTurn);
  text.set(text.x + image.x - center.x, text.y + image.y - center.y, text.z);
  text.setContext(context);
}

// False if it is another record.
bool CEntMirrorVisitor::carryRecord(CEntInsert& ent) const {
  const CBlock* block = ent.getBlock();
  if (!block || !isTextRecord(ent.getRecord())) return false;
  std::optional<TextArea> area = textAreaOf(*block);
  if (!area) return false;
  // A table covers its frame.
  const RECT_3D box = std::as_const(*block).getBdry();
  if (ent.getRecord() == EntRecord::Table && box.validRegion())
    area->center = middle(box.min, box.max);
  PNT_3D center;
  CEntInsertMatrix(kPixelSize, ent, 0, 0).transform(area->center, center);
  PNT_3D image = center;
  mirror(image);
  bool isReversed = false;
  const double turn =
      turnOf(area->degrees + ent.getRotate() * kHalfTurn / vek0::detail::kPi, isReversed);
  CEntRotateXYVisitor(center, turn * vek0::detail::kPi / kHalfTurn).visit(ent);
  CEntMoveVisitor(PNT_3D(image.x - center.x, image.y - center.y, 0)).visit(ent);
  return true;
}

void CEntMirrorVisitor::mirrorInsert(CEntInsert& ent) const {
  if (m_isIdle || carryRecord(ent)) return;
  std::vector<TEXT_3D> texts;
  for (unsigned i = 0; i < ent.GetNoAttribs(); ++i) {
    texts.push_back(placedText(ent, *ent.GetAttrib(i)));
    mirrorText(texts.back(), ent.GetAttrib(i)->getRecord() == EntRecord::Own);
  }
  PNT_3D pnt = ent.getPnt();
  mirror(pnt);
  double sx, sy, sz, columnSpacing, rowSpacing;
  long columns, rows;
  ent.getScale(sx, sy, sz);
  ent.getArray(columns, rows, columnSpacing, rowSpacing);
  // The rotation of a record is not in the file.
  const double exact = std::atan2(m_sin, m_cos) - ent.getRotate();
  const double rotation =
      ent.getRecord() == EntRecord::Own ? mirrored(ent.getRotate()) : oneTurn(exact);
  ent.setInsert(pnt, sx, -sy, sz, rotation);
  ent.setArray(columns, rows, columnSpacing, rowSpacing == 0 ? 0 : -rowSpacing);
  for (unsigned i = 0; i < ent.GetNoAttribs(); ++i) {
    transform_attrib_phisic_2_logic(kPixelSize, ent, texts[i]);
    ent.GetAttrib(i)->setText(texts[i]);
  }
}

void CEntMirrorVisitor::visit(CEntPnt& ent) {
  mirror(ent.getPnt());
  ent.calcBdry();
}

void CEntMirrorVisitor::visit(CEntLine& ent) {
  mirror(ent.getLine().p1);
  mirror(ent.getLine().p2);
  ent.calcBdry();
}

void CEntMirrorVisitor::visit(CEntCircle& ent) {
  mirror(ent.getCircle());
  ent.calcBdry();
}

// Arcs run counterclockwise, so the ends are exchanged. Equal angles mean a full circle.
void CEntMirrorVisitor::visit(CEntArc& ent) {
  if (m_isIdle) return;
  ARC_3D& arc = ent.getArc();
  mirror(arc);
  const double start = mirrored(arc.endAngle), end = mirrored(arc.startAngle);
  arc.endAngle = arc.startAngle == arc.endAngle ? start : end;
  arc.startAngle = start;
  ent.calcBdry();
}

void CEntMirrorVisitor::visit(CEntPolyline& ent) {
  if (m_isIdle) return;
  ent.mirror([this](PNT_3D& p) { mirror(p); });
  ent.invalidateBdry();
}

void CEntMirrorVisitor::visit(CEntText& ent) {
  mirrorText(ent.getText(), ent.getRecord() == EntRecord::Own);
  ent.invalidateBdry();
}

void CEntMirrorVisitor::visit(CEntAttdef& ent) { visit(static_cast<CEntText&>(ent)); }

void CEntMirrorVisitor::visit(CEntAttrib& ent) { visit(static_cast<CEntText&>(ent)); }

void CEntMirrorVisitor::visit(CEntInsert& ent) { mirrorInsert(ent); }

void CEntMirrorVisitor::visit(CEntInsertXRef& ent) { mirrorInsert(ent); }

void CEntMirrorVisitor::visit(CEntFixedInsert& ent) {
  if (m_isIdle) return;
  PNT_3D pnt = ent.getPnt();
  mirror(pnt);
  ent.setInsert(pnt, ent.GetNoPixel(), mirrored(ent.getRotate()));
}

void CEntMirrorVisitor::visit(CEntHatch& ent) {
  if (m_isIdle) return;
  const HATCH_TYPE& type = mirroredPattern(*m_patterns, ent.getHatchType());
  vek0::detail::transformHatch(ent, *this, [this](PNT_3D& p) { mirror(p); });
  ent.setShown(ent.getBlock(), ent.getHatchScale(), mirrored(ent.getHatchRotate()), type);
}

void CEntMirrorVisitor::visit(CEnt3DFace& ent) {
  for (long i = 0; i < 4; ++i) mirror(ent.getVertex(i));
  ent.calcBdry();
}
