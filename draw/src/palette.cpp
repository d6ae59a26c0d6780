#include <cmath>

#include "vek0draw/draw.h"

namespace {

using Byte = std::uint8_t;

constexpr RGB_COLOR kNamed[] = {
    {255, 0,   0  },
    {255, 255, 0  },
    {0,   255, 0  },
    {0,   255, 255},
    {0,   0,   255},
    {255, 0,   255},
};
constexpr RGB_COLOR kGreys[] = {
    {51,  51,  51 },
    {91,  91,  91 },
    {132, 132, 132},
    {173, 173, 173},
    {214, 214, 214},
    {255, 255, 255},
};

// Black or white, whichever the eye tells from the background.
RGB_COLOR contrast(const RGB_COLOR& background) {
  const double light = 0.299 * background.r + 0.587 * background.g + 0.114 * background.b;
  return light < 128 ? RGB_COLOR{255, 255, 255} : RGB_COLOR{0, 0, 0};
}

// Tens from 10 to 240 are hues 15 degrees apart; of the ten shades of each, pairs grow
// darker, and every second one is half as saturated.
RGB_COLOR hueColor(int index) {
  constexpr double values[] = {255, 165, 127, 76, 38};
  const double value = values[index % 10 / 2];
  const double least = index % 2 != 0 ? std::floor(value / 2) : 0;
  const double hue = (index / 10 - 1) / 4.0;  // in sixths of the circle
  const int sixth = static_cast<int>(hue);
  const double rise = hue - sixth, span = value - least;
  const auto up = static_cast<Byte>(least + span * rise);
  const auto down = static_cast<Byte>(least + span * (1 - rise));
  const auto high = static_cast<Byte>(value), low = static_cast<Byte>(least);
  switch (sixth) {
    case 0:
      return {high, up, low};
    case 1:
      return {down, high, low};
    case 2:
      return {low, high, up};
    case 3:
      return {low, down, high};
    case 4:
      return {up, low, high};
    default:
      return {high, low, down};
  }
}

}  // namespace

RGB_COLOR paletteColor(int index, const RGB_COLOR& background) {
  if (index >= 1 && index <= 6) return kNamed[index - 1];
  if (index == 8) return {128, 128, 128};
  if (index == 9) return {192, 192, 192};
  if (index >= 10 && index < 250) return hueColor(index);
  if (index >= 250 && index <= 255) return kGreys[index - 250];
  return contrast(background);
}
