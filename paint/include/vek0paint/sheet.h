#pragma once

#include <optional>
#include <string>

#include "vek0core/geometry/rect.h"
#include "vek0draw/draw.h"
#include "vek0draw/painter.h"

namespace vek0::paint {

constexpr double kMmPerInch = 25.4;
/// Pixels per inch in CSS.
constexpr double kCssDpi = 96;
/// Paper is measured in hundredths of a millimeter.
constexpr double kPaperUnitMm = 0.01;

/// The sheet of a picture.
struct SHEET {
  long width = 0, height = 0;            ///< device units: pixels, or `kPaperUnitMm` on paper
  double unitMm = kMmPerInch / kCssDpi;  ///< size of a device unit
  bool paper = false;                    ///< measured in millimeters
  double lineWidth = 1;                  ///< of strokes without a width of their own, device units
  DRAW_WEIGHTS weights;
  RGB_COLOR background{255, 255, 255};
  bool transparent = false;  ///< the background is not painted
  std::string title;         ///< UTF-8

  /// The size of a pixel of a screen in device units.
  double pixel() const { return paper ? kMmPerInch / kCssDpi / unitMm : 1; }
};

/// A size as specified by the user.
struct SHEET_SIZE {
  double width = 0, height = 0;
  bool mm = false;  ///< millimeters, else pixels
};

/// Whether all four sides are finite.
bool isFinite(const RECT_2D& rect);

/// The reason why an image of this size is refused, or an empty text.
std::string imageRefusal(const SHEET& sheet);

/// "1600x1200", "297x210mm"; nothing for anything else.
std::optional<SHEET_SIZE> parseSize(const std::string& text);
/// "A4" (portrait) or "WxH" in millimeters, with or without the unit.
std::optional<SHEET_SIZE> parsePaper(const std::string& text);
/// Millimeters on paper for a drawing unit of one millimeter: "1:50" is 0.02, "2:1" is 2. A
/// single number is rejected as ambiguous.
std::optional<double> parseScale(const std::string& text);
/// "x1,y1,x2,y2", two opposite corners.
std::optional<RECT_2D> parseWindow(const std::string& text);
/// "#rrggbb", "#rgb" or one of a few names.
std::optional<RGB_COLOR> parseColor(const std::string& text);

}  // namespace vek0::paint
