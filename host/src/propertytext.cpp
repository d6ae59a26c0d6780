#include "vek0host/propertytext.h"

#include <cmath>

#include "vek0core/tables/colors.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

bool isFinite(const PNT_3D& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

}  // namespace

RGB_COLOR colorOnWhite(std::uint32_t trueColor, short number) {
  constexpr int foreground = 7;
  if (trueColor != ENT_TRAITS::kNoTrueColor) return unpackColor(static_cast<long>(trueColor));
  return number == foreground ? RGB_COLOR{0, 0, 0} : paletteColor(number);
}

short colorNumberOf(const std::string& text) {
  const zim::WString name = zim::WString::fromUtf8(text);
  for (short color = 0; color <= 256; ++color)
    if (zim::equalsIgnoreCase(name, CColors::getInstance()[color]) || text == std::to_string(color))
      return color;
  return -1;
}

double weightInMm(const CData& data, short weight) {
  constexpr double hundredths = 100;
  return (weight == ENT_TRAITS::kWeightDefault ? data.getVars().getDefaultLineweight() : weight) /
         hundredths;
}

std::string ltypeName(const CLtype* ltype) {
  return ltype ? ltype->getFullName().toUtf8() : std::string("Continuous");
}

Json ownColorToJson(const CEnt& ent) {
  const ENT_TRAITS& traits = ent.getTraits();
  if (!traits.hasTrueColor()) return ent.getColor();
  return colorText(unpackColor(static_cast<long>(traits.trueColor)));
}

Json ownWeightToJson(const CEnt& ent) {
  constexpr double hundredths = 100;
  const short weight = ent.getTraits().lineweight;
  if (weight == ENT_TRAITS::kWeightByLayer) return "BYLAYER";
  if (weight == ENT_TRAITS::kWeightByBlock) return "BYBLOCK";
  if (weight == ENT_TRAITS::kWeightDefault) return "DEFAULT";
  return weight / hundredths;
}

Json ownTransparencyToJson(const CEnt& ent) {
  constexpr double opaque = ENT_TRAITS::kOpaque;
  const short opacity = ent.getTraits().opacity;
  if (opacity == ENT_TRAITS::kOpacityByLayer) return "BYLAYER";
  if (opacity == ENT_TRAITS::kOpacityByBlock) return "BYBLOCK";
  return 1 - opacity / opaque;
}

Json pointToJson(const PNT_3D& p) { return Json::array({p.x, p.y, p.z}); }

Json extentsToJson(const RECT_3D& box) {
  if (!box.validRegion() || !isFinite(box.min) || !isFinite(box.max)) return nullptr;
  return Json{{"min", pointToJson(box.min)}, {"max", pointToJson(box.max)}};
}

}  // namespace vek0::host
