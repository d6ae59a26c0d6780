#pragma once

#include <cstdint>

#include "vek0core/export.h"

/// A color as displays know it, 0 to 255 each.
struct RGB_COLOR {
  std::uint8_t r = 0, g = 0, b = 0;
  bool operator==(const RGB_COLOR&) const = default;
};

/// The color that 0xRRGGBB stands for.
constexpr RGB_COLOR unpackColor(long packed) {
  return {static_cast<std::uint8_t>(packed >> 16), static_cast<std::uint8_t>(packed >> 8),
          static_cast<std::uint8_t>(packed)};
}

/// What the color numbers 1 to 255 look like. 7, which is black or white, whichever is seen
/// on the background, is white here, as is anything that is no such number.
VEK0_API RGB_COLOR paletteColor(int number);

/// The color number that looks most like a color: the least distance in the cube of red,
/// green and blue, and of equal distances the lowest number. 7 stands for white and for black,
/// since either is meant to be seen.
VEK0_API short nearestPaletteColor(const RGB_COLOR& color);
