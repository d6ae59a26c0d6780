#include "vek0core/tables/text.h"
#include "vek0core/geometry/angle.h"

#include <algorithm>
#include <cmath>

#include "vek0core/tables/font.h"
#include "vek0core/tables/style.h"

using vek0::detail::kPi;

namespace {

constexpr long s_hAlign[TEXT_3D::kJustifications] = {0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2};
constexpr long s_vAlign[TEXT_3D::kJustifications] = {0, 0, 0, 3, 3, 3, 2, 2, 2, 1, 1, 1};
constexpr const zim::Char* s_lpszAlignNames[TEXT_3D::kJustifications] = {
    u"Left",         u"Center",      u"Right",         u"Top left",
    u"Top center",   u"Top right",   u"Middle left",   u"Middle center",
    u"Middle right", u"Bottom left", u"Bottom center", u"Bottom right"};

long valid(long justification) {
  return justification >= 0 && justification < TEXT_3D::kJustifications ? justification : 0;
}

const ICADFont& fontOf(const CStyle* style) {
  const ICADFont* font = style ? style->getFont() : nullptr;
  return font ? *font : defaultFontMetrics();
}

// Guards against division by zero for fonts that report no height.
double heightUnitOf(const CStyle* style) {
  const double unit = fontOf(style).getHeightUnit();
  return unit > 0 ? unit : 1;
}

double widthOf(const CStyle* style, const zim::WString& text) {
  const bool horiz = style && style->isHoriz(), bold = style && style->isBold(),
             italic = style && style->isItalic();
  return fontOf(style).getStringWidth(text, horiz, bold, italic);
}

}  // namespace

TEXT_3D::TEXT_3D(const CTextContext& context, CStyle* style, double px, double py, double pz,
                 long justification)
    : PNT_3D(px, py, pz),
      m_context(context),
      m_style(style),
      m_justification(valid(justification)) {}

TEXT_3D::TEXT_3D(const zim::WString& string, CStyle* style, double px, double py, double pz,
                 double height, double oblique, double widthScale, double rotate,
                 long justification)
    : TEXT_3D(CTextContext(height, oblique, widthScale, rotate, string), style, px, py, pz,
              justification) {}

bool TEXT_3D::operator==(const TEXT_3D& t) const {
  return PNT_3D::operator==(t) && m_style == t.m_style && m_justification == t.m_justification &&
         m_context == t.m_context;
}

void TEXT_3D::setAlign(long justification) { m_justification = valid(justification); }
long TEXT_3D::getHorizAlign() const { return s_hAlign[m_justification]; }
long TEXT_3D::getVertAlign() const { return s_vAlign[m_justification]; }
void TEXT_3D::setHorizAlign(long horizontal) {
  m_justification = findJustify(horizontal, getVertAlign());
}
void TEXT_3D::setVertAlign(long vertical) {
  m_justification = findJustify(getHorizAlign(), vertical);
}

long TEXT_3D::findJustify(long horizontal, long vertical) {
  for (long i = 0; i < kJustifications; ++i) {
    if (s_hAlign[i] == horizontal && s_vAlign[i] == vertical) return i;
  }
  return 0;
}

zim::WString TEXT_3D::getAlignName(long justification) {
  return s_lpszAlignNames[valid(justification)];
}

// Drawing units per font unit.
double TEXT_3D::unitScale() const { return m_context.getHeight() / heightUnitOf(m_style); }

double TEXT_3D::getStringLength() const {
  return widthOf(m_style, m_context.getString()) * m_context.getWidthScale() * unitScale();
}

void TEXT_3D::getDeltaXY(double& dx, double& dy) const {
  dx = dy = 0;
  // Without a style there are no metrics to align with.
  if (!m_style) return;
  const ICADFont& font = fontOf(m_style);
  const double k = unitScale();
  switch (getVertAlign()) {
    case 1:
      dy = font.getDescent() * k;
      break;
    case 2:
      dy = -font.getFullHeight() / 2 * k;
      break;
    case 3:
      dy = -heightUnitOf(m_style) * k;
      break;
    default:
      break;
  }
  if (getHorizAlign() != 0) dx = -getStringLength() * (getHorizAlign() == 1 ? 0.5 : 1.0);
  // Most texts are not rotated; this avoids rounding as well.
  if (m_context.getRotate() == 0) return;
  PNT_2D delta(dx, dy);
  delta.rotate(PNT_2D(0, 0), m_context.getRotate());
  delta.get(dx, dy);
}

PNT_3D TEXT_3D::getBasePoint() const {
  double dx, dy;
  getDeltaXY(dx, dy);
  return {x + dx, y + dy, z};
}

void TEXT_3D::getExtremes(PNT_3D* corners) const {
  if (m_context.getString().empty()) {
    std::fill_n(corners, 4, PNT_3D(*this));
    return;
  }
  const PNT_3D base = getBasePoint();
  // Obliqueness slants the text about its baseline.
  const double length = getStringLength(), slant = std::tan(m_context.getOblique());
  const double low = -fontOf(m_style).getDescent() * unitScale(), high = m_context.getHeight();
  const double along[4] = {0, length, length, 0}, up[4] = {low, low, high, high};
  for (int i = 0; i < 4; ++i) {
    corners[i].set(base.x + along[i] + up[i] * slant, base.y + up[i], z);
    corners[i].rotate(base, m_context.getRotate());
  }
}

void TEXT_3D::calc_bdry(RECT_2D& box) const {
  PNT_3D corners[4];
  getExtremes(corners);
  box.initRegion();
  for (const PNT_3D& corner : corners) box.updateRegion(corner);
}

void TEXT_3D::calc_bdry(RECT_3D& box) const {
  PNT_3D corners[4];
  getExtremes(corners);
  box.initRegion();
  for (const PNT_3D& corner : corners) box.updateRegion(corner);
}

void TEXT_3D::scale(const PNT_3D& center, double factor) {
  PNT_3D::scale(center, factor);
  m_context.setHeight(m_context.getHeight() * std::fabs(factor));
  // A negative factor mirrors at the center, which for a text is half a turn.
  if (factor < 0) m_context.setRotate(m_context.getRotate() + kPi);
}

void TEXT_3D::rotate(const PNT_3D& center, double angleRad) {
  PNT_3D::rotate(center, angleRad);
  m_context.setRotate(m_context.getRotate() + angleRad);
}
