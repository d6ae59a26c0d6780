#include "vek0core/tables/palette.h"

#include <array>
#include <cmath>

namespace {

using Byte = std::uint8_t;

constexpr int kForeground = 7, kColors = 256;
constexpr RGB_COLOR kBlack{0, 0, 0}, kWhite{255, 255, 255};

constexpr RGB_COLOR kNamedColors[] = {
    {255, 0, 0},   {255, 255, 0}, {0, 255, 0},     {0, 255, 255},   {0, 0, 255},
    {255, 0, 255}, kWhite,        {128, 128, 128}, {192, 192, 192},
};
constexpr RGB_COLOR kGreys[] = {
    {51, 51, 51}, {91, 91, 91}, {132, 132, 132}, {173, 173, 173}, {214, 214, 214}, kWhite,
};

// Tens from 10 to 240 are hues 15 degrees apart; of the ten shades of each, pairs grow
// darker, and every second one is half as saturated.
RGB_COLOR hueColor(int number) {
  constexpr double shades[] = {1, 0.65, 0.5, 0.3, 0.15};
  const double value = 255 * shades[number % 10 / 2];
  const double least = number % 2 != 0 ? value / 2 : 0;
  const int tens = number / 10;
  const double hue = (tens - 1) / 4.0;  // in sixths of the circle
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

std::array<RGB_COLOR, kColors> makePalette() {
  std::array<RGB_COLOR, kColors> palette;
  palette.fill(kWhite);
  for (std::size_t i = 1; i < 10; ++i) palette[i] = kNamedColors[i - 1];
  for (std::size_t i = 10; i < 250; ++i) palette[i] = hueColor(static_cast<int>(i));
  for (std::size_t i = 250; i < kColors; ++i) palette[i] = kGreys[i - 250];
  return palette;
}

const std::array<RGB_COLOR, kColors>& palette() {
  static const std::array<RGB_COLOR, kColors> palette = makePalette();
  return palette;
}

int squaredDistance(const RGB_COLOR& a, const RGB_COLOR& b) {
  const int r = a.r - b.r, g = a.g - b.g, blue = a.b - b.b;
  return r * r + g * g + blue * blue;
}

}  // namespace

RGB_COLOR paletteColor(int number) {
  return number >= 0 && number < kColors ? palette()[static_cast<std::size_t>(number)] : kWhite;
}

short nearestPaletteColor(const RGB_COLOR& color) {
  int nearest = kForeground, least = squaredDistance(color, kBlack);
  for (int i = 1; i < kColors; ++i) {
    const int distance = squaredDistance(color, palette()[static_cast<std::size_t>(i)]);
    if (distance > least || (distance == least && i > nearest)) continue;
    least = distance;
    nearest = i;
  }
  return static_cast<short>(nearest);
}
