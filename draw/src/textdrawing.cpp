// Texts, with their codes decoded and the lines under, over and through them.
#include <cmath>

#include "vek0core/tables/textcodes.h"
#include "walker.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kPointsPerMeasured = 8;  // cost of a character whose width is measured
constexpr double kRuleUnder = -0.2, kRuleThrough = 0.5, kRuleOver = 1.2;  // of the height unit

const ICADFont& fontOf(const CStyle* style) {
  const ICADFont* font = style ? style->getFont() : nullptr;
  return font ? *font : defaultFontMetrics();
}

double heightUnit(const ICADFont& font) {
  return font.getHeightUnit() > 0 ? font.getHeightUnit() : 1;
}

double heightOf(TextRule rule) {
  if (rule == TextRule::Through) return kRuleThrough;
  return rule == TextRule::Over ? kRuleOver : kRuleUnder;
}

// The directions of a text of that height unit.
AFFINE_2D axesOf(const CTextContext& context, double unit, const Placement& place) {
  const double k = context.getHeight() / unit;
  const double c = std::cos(context.getRotate()) * k, s = std::sin(context.getRotate()) * k;
  const double slant = std::tan(context.getOblique()), wide = context.getWidthScale();
  const PNT_2D x = place.direction(c * wide, s * wide);
  const PNT_2D y = place.direction(slant * c - s, slant * s + c);
  return {x.x, x.y, y.x, y.y, 0, 0};
}

void moveTo(const PNT_2D& base, DrawText& run) {
  run.matrix.e = base.x;
  run.matrix.f = base.y;
}

}  // namespace

void Walker::visit(CEntText& ent) { drawText(ent.getText(), m_place); }

// In a block, an attribute definition is only a template for the attributes of inserts.
void Walker::visit(CEntAttdef& ent) {
  if (m_stack.GetNoInsert() == 0 && (ent.getFlags() & CEntAttrib::kInvisible) == 0)
    drawText(ent.getText(), m_place);
}

void Walker::visit(CEntAttrib& ent) {
  if ((ent.getFlags() & CEntAttrib::kInvisible) == 0) drawText(ent.getText(), m_place);
}

// Unlike texts, those of linetypes do not follow a vertical style.
void Walker::text(const TEXT_3D& element) {
  emitDashes();
  if (!element.isVertical()) return drawText(element, m_drawing);
  CStyle horizontal(*element.getStyle());
  horizontal.setHoriz(false);
  TEXT_3D seen(element);
  seen.setStyle(&horizontal);
  drawText(seen, m_drawing);
}

void Walker::drawText(const TEXT_3D& text, const Placement& place) {
  const DecodedText decoded = decodeTextCodes(text.getContext().getString());
  if (decoded.string.empty()) return;
  const CStyle* style = text.getStyle();
  const double unit = heightUnit(fontOf(style));
  DrawText run;
  run.string = &decoded.string;
  run.font = style ? style->getFont() : nullptr;
  run.bold = style && style->isBold();
  run.italic = style && style->isItalic();
  run.matrix = axesOf(text.getShownContext(), unit, place);
  moveTo(place.apply(text.getBasePoint()), run);
  const double height = std::hypot(run.matrix.c, run.matrix.d) * unit;
  if (m_out.isUnfolding() && height < m_options.finestDetail && isCoarse()) {
    m_out.noteSimplified();
    m_out.charge(static_cast<double>(decoded.string.view().size()));
    if (text.isVertical()) return strokeColumn(text, place);
    return drawRule(run, 0, decoded.string.view().size(), kRuleThrough * unit);
  }
  if (text.isVertical()) return drawStack(run, text, decoded, place);
  m_out.text(run);
  bool isFirst = true;
  for (const RuledStretch& ruled : decoded.ruled) {
    // Each measures the text up to its end.
    if (!isFirst && !m_out.spend(kPointsPerMeasured * ruled.end)) return;
    isFirst = false;
    drawRule(run, ruled.first, ruled.end, heightOf(ruled.rule) * unit);
  }
}

// Every character is a text.
void Walker::drawStack(DrawText run, const TEXT_3D& text, const DecodedText& decoded,
                       const Placement& place) {
  const double unit = heightUnit(fontOf(text.getStyle()));
  for (const STACKED_CHARACTER& c : text.getStack()) {
    const zim::WString character(decoded.string.view().substr(c.first, c.end - c.first));
    run.string = &character;
    moveTo(place.apply(c.base), run);
    m_out.text(run);
    for (const RuledStretch& rule : decoded.ruled) {
      if (rule.first <= c.first && c.first < rule.end)
        drawRule(run, 0, character.view().size(), heightOf(rule.rule) * unit);
    }
  }
}

// The column as a line.
void Walker::strokeColumn(const TEXT_3D& text, const Placement& place) {
  PNT_3D corners[4];
  text.getExtremes(corners);
  m_device.clear();
  for (const int i : {0, 2}) {
    const PNT_2D a = place.apply(corners[i]), b = place.apply(corners[i + 1]);
    m_device.emplace_back((a.x + b.x) / 2, (a.y + b.y) / 2);
  }
  m_out.stroke(m_device, false);
}

void Walker::drawRule(const DrawText& run, std::size_t first, std::size_t end, double y) {
  const ICADFont& font = run.font ? *run.font : defaultFontMetrics();
  const auto width = [&](std::size_t count) {
    const zim::WString head(run.string->view().substr(0, count));
    return font.getStringWidth(head, false, run.bold, run.italic);
  };
  m_device.assign({run.matrix.apply(width(first), y), run.matrix.apply(width(end), y)});
  m_out.stroke(m_device, false);
}

}  // namespace vek0::detail
