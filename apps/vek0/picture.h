#pragma once

#include <memory>
#include <optional>
#include <string>

#include "sheet.h"
#include "vek0core/view/projector.h"

namespace vek0::tool {

enum class Format { Svg, Png, Pdf };

/// The format that a name ends in ("svg", "plan.PDF"); nothing for another one.
std::optional<Format> formatOf(const std::string& name);
/// "svg", "png" or "pdf".
const char* nameOf(Format format);

/// What shows the drawing as `text` says: "plan", "front", "side", "plan:DEG",
/// "parallel:a,b,c,d". Null for anything else.
std::unique_ptr<IProjector> makeProjector(const std::string& text);

/// How people want a picture to be laid out.
struct PICTURE_OPTIONS {
  Format format = Format::Svg;
  std::optional<SHEET_SIZE> size;   ///< of the whole picture
  bool turnable = false;            ///< the size is that of paper, which lies as it suits
  std::optional<bool> landscape;    ///< how the paper is to lie in any case
  std::optional<double> scale;      ///< paper millimeters per millimeter of the drawing
  double unitMm = 1;                ///< what a drawing unit means
  std::optional<RECT_2D> window;    ///< part of the view's plane to show
  std::optional<double> margin;     ///< millimeters on paper, else pixels
  std::optional<double> lineWidth;  ///< millimeters
  double dpi = 150;                 ///< of images of paper
};

/// A sheet and the part of the view's plane that fills it.
struct PICTURE {
  SHEET sheet;
  RECT_2D world{0, 0, 1, 1};
  std::string error;       ///< why there can be no such picture, or empty
  bool overflows = false;  ///< at the scale asked for, more was to be shown than fits
};

/// Lays out a picture of a drawing with these extents in the plane of its view, which
/// may be empty. Without a size or scale an image is as long as `kImageSide` pixels and
/// a page is A4; with a scale alone the sheet is as large as the drawing needs.
PICTURE layOut(const PICTURE_OPTIONS& options, const RECT_2D& extents);

}  // namespace vek0::tool
