#include "vek0paint/sheet.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "vek0host/textvalues.h"

namespace vek0::paint {
namespace {

// Cairo's own limit for a side; the pixels take four bytes each.
constexpr long kMaxSide = 32767;
constexpr double kMaxPixels = 150e6;  // an A0 sheet at 300 pixels an inch

bool isSize(const double* sides) { return sides[0] > 0 && sides[1] > 0; }

bool endsWith(const std::string& text, const char* tail, std::size_t length) {
  return text.size() > length && text.compare(text.size() - length, length, tail) == 0;
}

constexpr struct {
  const char* name;
  RGB_COLOR color;
} kColors[] = {
    {"white", {255, 255, 255}}, {"black", {0, 0, 0}},        {"gray", {128, 128, 128}},
    {"grey", {128, 128, 128}},  {"silver", {192, 192, 192}}, {"red", {255, 0, 0}},
    {"green", {0, 128, 0}},     {"blue", {0, 0, 255}},       {"navy", {0, 0, 128}},
    {"yellow", {255, 255, 0}},  {"ivory", {255, 255, 240}},  {"beige", {245, 245, 220}},
};

}  // namespace

bool isFinite(const RECT_2D& rect) {
  return std::isfinite(rect.min.x) && std::isfinite(rect.min.y) && std::isfinite(rect.max.x) &&
         std::isfinite(rect.max.y);
}

std::string imageRefusal(const SHEET& sheet) {
  const double pixels = static_cast<double>(sheet.width) * static_cast<double>(sheet.height);
  if (std::max(sheet.width, sheet.height) <= kMaxSide && pixels <= kMaxPixels) return {};
  return "an image of " + std::to_string(sheet.width) + "x" + std::to_string(sheet.height) +
         " pixels is too large; the maximum is " + std::to_string(kMaxSide) +
         " per side and 150 million in total";
}

std::optional<SHEET_SIZE> parseSize(const std::string& text) {
  const bool mm = endsWith(text, "mm", 2), px = endsWith(text, "px", 2);
  double sides[2];
  if (!host::parseNumbers(text.substr(0, text.size() - (mm || px ? 2 : 0)), 'x', sides, 2) ||
      !isSize(sides)) {
    return std::nullopt;
  }
  return SHEET_SIZE{sides[0], sides[1], mm};
}

std::optional<SHEET_SIZE> parsePaper(const std::string& text) {
  // A0 is one square meter with the ratio 1 to the square root of 2; each following size is half
  // the previous one, in whole millimeters.
  static constexpr double kSides[] = {1189, 841, 594, 420, 297, 210, 148};
  if (text.size() == 2 && (text[0] == 'A' || text[0] == 'a') && text[1] >= '0' && text[1] <= '5') {
    const auto size = static_cast<std::size_t>(text[1] - '0');
    return SHEET_SIZE{kSides[size + 1], kSides[size], true};
  }
  std::optional<SHEET_SIZE> size = parseSize(text);
  if (!size || endsWith(text, "px", 2)) return std::nullopt;
  size->mm = true;
  return size;
}

std::optional<double> parseScale(const std::string& text) {
  double parts[2] = {1, 1};
  const bool good = host::parseNumbers(text, ':', parts, 2);
  const double scale = parts[0] / parts[1];
  if (!good || !isSize(parts) || !std::isfinite(scale) || scale <= 0) return std::nullopt;
  return scale;
}

std::optional<RECT_2D> parseWindow(const std::string& text) {
  double v[4];
  if (!host::parseNumbers(text, ',', v, 4) || v[0] == v[2] || v[1] == v[3]) return std::nullopt;
  return RECT_2D(v[0], v[1], v[2], v[3]);
}

std::optional<RGB_COLOR> parseColor(const std::string& text) {
  for (const auto& known : kColors) {
    if (text == known.name) return known.color;
  }
  if (text.empty() || text[0] != '#' || (text.size() != 4 && text.size() != 7)) return std::nullopt;
  std::uint32_t bits = 0;
  const auto [next, failure] =
      std::from_chars(text.data() + 1, text.data() + text.size(), bits, 16);
  if (failure != std::errc() || next != text.data() + text.size()) return std::nullopt;
  const auto part = [&](int shift, std::uint32_t mask, std::uint32_t factor) {
    return static_cast<std::uint8_t>(((bits >> shift) & mask) * factor);
  };
  if (text.size() == 4) return RGB_COLOR{part(8, 15, 17), part(4, 15, 17), part(0, 15, 17)};
  return RGB_COLOR{part(16, 255, 1), part(8, 255, 1), part(0, 255, 1)};
}

}  // namespace vek0::paint
