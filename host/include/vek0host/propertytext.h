#pragma once

#include <string>

#include "vek0core/vek0core.h"
#include "vek0host/json.h"

namespace vek0::host {

/// The color of a number on a white background, where 7 is black; of a true color if there is one.
RGB_COLOR colorOnWhite(std::uint32_t trueColor, short number);

/// The number for a color's name, BYLAYER and BYBLOCK among them, or for digits; -1 for other
/// texts.
short colorNumberOf(const std::string& text);

/// A lineweight of the traits in millimeters; that of the drawing for "default".
double weightInMm(const CData& data, short weight);

/// The full name of a linetype; null is Continuous.
std::string ltypeName(const CLtype* ltype);

/// The color that an entity has itself: its number, or "#rrggbb".
Json ownColorToJson(const CEnt& ent);
/// The lineweight that it has itself: "BYLAYER", "BYBLOCK", "DEFAULT" or millimeters.
Json ownWeightToJson(const CEnt& ent);
/// The transparency that it has itself: "BYLAYER", "BYBLOCK", or 0, opaque, to 1.
Json ownTransparencyToJson(const CEnt& ent);

/// [x, y, z].
Json pointToJson(const PNT_3D& p);

/// {"min": [x, y, z], "max": [x, y, z]}; null for an empty box or one that is not finite.
Json extentsToJson(const RECT_3D& box);

}  // namespace vek0::host
