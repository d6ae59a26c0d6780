#include "dxf/out/modern/propertypairs.h"

#include <cmath>
#include <cstdlib>

#include "dxf/out/modern/fileplan.h"
#include "dxf/out/savedcolor.h"
#include "vek0core/tables/ltype.h"

namespace vek0::detail {
namespace {

constexpr short kLineweights[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                  53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

}  // namespace

long transparencyOf(short opacity) {
  constexpr long byBlock = 1L << 24, byValue = 2L << 24;
  if (opacity == ENT_TRAITS::kOpacityByLayer) return 0;
  return opacity == ENT_TRAITS::kOpacityByBlock ? byBlock : byValue | (opacity & 0xFF);
}

short nearestLineweight(short weight) {
  if (weight < 0) return weight;
  short nearest = kLineweights[0];
  for (const short known : kLineweights)
    if (std::abs(known - weight) < std::abs(nearest - weight)) nearest = known;
  return nearest;
}

void PropertyPairs::write(const CLayer* layer, const CLtype* ltype, short color,
                          const ENT_TRAITS& traits) {
  m_out.writeEncoded(8, m_plan.layers[layer].name);
  if (ltype && !ltype->isByLayer()) m_out.writeEncoded(6, m_plan.ltypes[ltype].name);
  static const ENT_TRAITS usual;
  const bool isUsual = traits == usual;
  if (color != kColorByLayer || !isUsual) writeColor(color, traits);
  if (!isUsual) writeTraits(traits);
}

void PropertyPairs::writeColor(short color, const ENT_TRAITS& traits) {
  if (traits.hasTrueColor() && !m_plan.rules.trueColors)
    color = approximated(traits.trueColor, u"");
  if (!isEntityColor(color))
    m_plan.note(ReportCode::ColorOutOfRange, {});
  else if (color != kColorByLayer)
    m_out.write(62, static_cast<long>(color));
}

short PropertyPairs::approximated(std::uint32_t trueColor, const zim::Char* where) {
  // Consecutive entities often share their color, and the search is slow.
  if (trueColor != m_trueColor) {
    const SavedColor saved = savedColor(trueColor);
    m_trueColor = trueColor;
    m_nearest = saved.number;
    m_isApproximated = saved.isApproximated;
  }
  if (m_isApproximated) m_plan.note(ReportCode::ColorApproximated, where);
  return m_nearest;
}

void PropertyPairs::writeTraits(const ENT_TRAITS& traits) {
  const short weight = nearestLineweight(traits.lineweight);
  if (weight != traits.lineweight) m_plan.note(ReportCode::LineweightRounded, u"370");
  if (weight != ENT_TRAITS::kWeightByLayer) m_out.write(370, static_cast<long>(weight));
  if (!std::isfinite(traits.ltypeScale))
    m_plan.note(ReportCode::NumberNotFinite, u"48");
  else if (traits.ltypeScale != 1)
    m_out.write(48, traits.ltypeScale);
  if (!traits.isVisible) m_out.write(60, 1L);
  if (traits.hasTrueColor() && m_plan.rules.trueColors)
    m_out.write(420, static_cast<long>(traits.trueColor & 0xFFFFFF));
  if (traits.opacity == ENT_TRAITS::kOpacityByLayer) return;
  if (m_plan.rules.transparency)
    m_out.write(440, transparencyOf(traits.opacity));
  else
    m_plan.note(ReportCode::CodeDropped, u"440");
}

}  // namespace vek0::detail
