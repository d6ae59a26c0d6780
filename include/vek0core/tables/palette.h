#pragma once

#include <cstdint>

#include "vek0core/export.h"

/// An RGB color, 0 to 255 per component.
struct RGB_COLOR {
  std::uint8_t r = 0, g = 0, b = 0;
  bool operator==(const RGB_COLOR&) const = default;
};

/// The color encoded as 0xRRGGBB.
constexpr RGB_COLOR unpackColor(long packed) {
  return {static_cast<std::uint8_t>(packed >> 16), static_cast<std::uint8_t>(packed >> 8),
          static_cast<std::uint8_t>(packed)};
}

/// The inverse.
constexpr std::uint32_t packColor(const RGB_COLOR& color) {
  return static_cast<std::uint32_t>(color.r << 16 | color.g << 8 | color.b);
}

/// The RGB value of a color number from 1 to 255. Color 7, which is black or white depending on the
/// background, is white here, as is any number out of range.
VEK0_API RGB_COLOR paletteColor(int number);

/// The color number nearest to a color: the least distance in RGB space, the lowest number among
/// equals. Both white and black become 7, which is visible on any background.
VEK0_API short nearestPaletteColor(const RGB_COLOR& color);
