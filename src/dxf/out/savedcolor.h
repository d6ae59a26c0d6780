#pragma once

#include <cstdint>

#include "vek0core/tables/colors.h"
#include "vek0core/tables/palette.h"

namespace vek0::detail {

/// Replaces an invalid layer color: the color of layer "0".
inline constexpr short kColorDefault = 7;

/// Whether readers accept it as the color of an entity: BYBLOCK, an index, BYLAYER.
constexpr bool isEntityColor(short color) { return color >= 0 && color <= kColorByLayer; }
/// Whether readers accept it as the color of a layer.
constexpr bool isLayerColor(short color) { return color > 0 && color < kColorByLayer; }

/// The color number that stands for a true color in a file.
struct SavedColor {
  short number = kColorDefault;
  bool isApproximated = false;  ///< the number shows another color, or one that varies
};

/// `trueColor` is 0xRRGGBB. Searches the palette.
inline SavedColor savedColor(std::uint32_t trueColor) {
  const RGB_COLOR color = unpackColor(static_cast<long>(trueColor));
  const short number = nearestPaletteColor(color);
  // 7 is black or white.
  return {number, number == kColorDefault || paletteColor(number) != color};
}

}  // namespace vek0::detail
