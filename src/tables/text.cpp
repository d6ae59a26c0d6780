#include "vek0core/tables/text.h"
#include "vek0core/geometry/angle.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "vek0core/tables/font.h"
#include "vek0core/tables/style.h"
#include "vek0core/tables/textcodes.h"
#include "zim0lang/utf8.h"

using vek0::detail::kPi;

namespace {

constexpr long s_hAlign[TEXT_3D::kJustifications] = {0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2};
constexpr long s_vAlign[TEXT_3D::kJustifications] = {0, 0, 0, 3, 3, 3, 2, 2, 2, 1, 1, 1};
constexpr const zim::Char* s_lpszAlignNames[TEXT_3D::kJustifications] = {
    u"Left",         u"Center",      u"Right",         u"Top left",
    u"Top center",   u"Top right",   u"Middle left",   u"Middle center",
    u"Middle right", u"Bottom left", u"Bottom center", u"Bottom right"};

// In a column, from one baseline to the next, relative to the height: the advance of stroke fonts.
constexpr double kPitch = 1.5;

// Relative difference of lengths that are the same but for rounding.
constexpr double kSameLength = 1e-9;

// The rotation of a vertical text can also be the direction of its column, which then stands
// upright.
constexpr double kDownward = 1.5 * kPi, kSameAngle = 1e-6;

// Characters that combine with the one before.
constexpr struct {
  char32_t first, last;
} kMarks[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05C7},  {0x0610, 0x061A},
              {0x064B, 0x065F}, {0x0670, 0x0670}, {0x06D6, 0x06ED},  {0x1AB0, 0x1AFF},
              {0x1DC0, 0x1DFF}, {0x200D, 0x200D}, {0x20D0, 0x20FF},  {0x3099, 0x309A},
              {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xE0100, 0xE01EF}};

bool isMark(char32_t c) {
  return std::any_of(std::begin(kMarks), std::end(kMarks),
                     [c](const auto& range) { return c >= range.first && c <= range.last; });
}

std::int32_t valid(long justification) {
  const bool isValid = justification >= 0 && justification < TEXT_3D::kJustifications;
  return isValid ? static_cast<std::int32_t>(justification) : 0;
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

// Without codes.
double shownWidthOf(const CStyle* style, const zim::WString& text) {
  if (!vek0::hasTextCodes(text)) return widthOf(style, text);
  return widthOf(style, vek0::decodeTextCodes(text).string);
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
         m_context == t.m_context && m_fit == t.m_fit && m_span == t.m_span;
}

void TEXT_3D::setAlign(long justification) {
  m_justification = valid(justification);
  m_fit = TextFit::None;
  m_span = 0;
}
long TEXT_3D::getHorizAlign() const { return s_hAlign[m_justification]; }
long TEXT_3D::getVertAlign() const { return s_vAlign[m_justification]; }
void TEXT_3D::setHorizAlign(long horizontal) { setAlign(findJustify(horizontal, getVertAlign())); }
void TEXT_3D::setVertAlign(long vertical) { setAlign(findJustify(getHorizAlign(), vertical)); }

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

void TEXT_3D::setFit(TextFit fit, double length) {
  setAlign(0);
  const double span = length / std::fabs(m_context.getHeight() * m_context.getWidthScale());
  if (fit == TextFit::None || !(span > 0) || !std::isfinite(span)) return;
  m_fit = fit;
  m_span = span;
}

double TEXT_3D::getFitLength() const {
  return m_span * std::fabs(m_context.getHeight() * m_context.getWidthScale());
}

// Factor by which the fit changes the length of the string.
double TEXT_3D::stretch() const {
  if (m_fit == TextFit::None || isVertical()) return 1;
  const double width = shownWidthOf(m_style, m_context.getString());
  const double factor = m_span * heightUnitOf(m_style) / width;
  // Without rounding if the text has its length already.
  const bool isNone =
      !(factor > 0) || !std::isfinite(factor) || std::fabs(factor - 1) < kSameLength;
  return isNone ? 1 : factor;
}

double TEXT_3D::getShownHeight() const {
  return m_context.getHeight() * (m_fit == TextFit::Size ? stretch() : 1);
}

double TEXT_3D::shownRotation() const {
  const double rotation = m_context.getRotate();
  if (!isVertical()) return rotation;
  return std::fabs(std::remainder(rotation - kDownward, 2 * kPi)) < kSameAngle ? 0 : rotation;
}

CTextContext TEXT_3D::getShownContext() const {
  CTextContext shown(m_context);
  shown.setHeight(getShownHeight());
  shown.setRotate(shownRotation());
  if (m_fit == TextFit::Width) shown.setWidthScale(shown.getWidthScale() * stretch());
  return shown;
}

double TEXT_3D::getStringLength() const {
  return shownWidthOf(m_style, m_context.getString()) * m_context.getWidthScale() * unitScale() *
         stretch();
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

bool TEXT_3D::isVertical() const { return m_style && m_style->isHoriz(); }

// From the top of a column to its last baseline.
double TEXT_3D::columnLength(std::size_t count) const {
  return m_context.getHeight() * (kPitch * static_cast<double>(count) - (kPitch - 1));
}

std::vector<STACKED_CHARACTER> TEXT_3D::getStack() const {
  std::vector<STACKED_CHARACTER> stack;
  const zim::WString decoded = vek0::decodeTextCodes(m_context.getString()).string;
  const std::u16string_view string = decoded;
  for (std::u16string_view rest = string; !rest.empty();) {
    const std::size_t at = string.size() - rest.size();
    const bool combines = isMark(zim::takeUtf16(rest)) && !stack.empty();
    if (!combines) stack.push_back({at, at, *this, 0});
    stack.back().end = string.size() - rest.size();
  }
  const double height = m_context.getHeight(), slant = std::tan(m_context.getOblique());
  const double rotation = shownRotation();
  double up = columnLength(stack.size()) * static_cast<double>(getHorizAlign()) / 2 - height;
  for (STACKED_CHARACTER& character : stack) {
    const zim::WString part(string.substr(character.first, character.end - character.first));
    character.width = widthOf(m_style, part) * m_context.getWidthScale() * unitScale();
    character.base.set(x - character.width / 2 + up * slant, y + up, z);
    character.base.rotate(*this, rotation);
    up -= kPitch * height;
  }
  return stack;
}

// As wide as the widest character.
TEXT_3D::Box TEXT_3D::columnBox() const {
  const std::vector<STACKED_CHARACTER> stack = getStack();
  if (stack.empty()) return {0, 0, 0, 0};
  double half = 0;
  for (const STACKED_CHARACTER& c : stack) half = std::max(half, std::fabs(c.width) / 2);
  const double length = columnLength(stack.size());
  const double top = length * static_cast<double>(getHorizAlign()) / 2;
  return {-half, half, top - length - fontOf(m_style).getDescent() * unitScale(), top};
}

void TEXT_3D::getExtremes(PNT_3D* corners) const {
  if (m_context.getString().empty()) {
    std::fill_n(corners, 4, PNT_3D(*this));
    return;
  }
  const double height = getShownHeight(), rotation = shownRotation();
  const double descent = fontOf(m_style).getDescent() * (height / heightUnitOf(m_style));
  const Box box = isVertical() ? columnBox() : Box{0, getStringLength(), -descent, height};
  const PNT_3D base = isVertical() ? PNT_3D(*this) : getBasePoint();
  const double along[4] = {box.left, box.right, box.right, box.left};
  const double up[4] = {box.low, box.low, box.high, box.high};
  // Obliqueness slants the text about its baseline.
  const double slant = std::tan(m_context.getOblique());
  for (int i = 0; i < 4; ++i) {
    corners[i].set(base.x + along[i] + up[i] * slant, base.y + up[i], z);
    corners[i].rotate(base, rotation);
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
