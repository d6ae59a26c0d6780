#pragma once

#include <memory>
#include <optional>
#include <string>

#include "vek0core/view/projector.h"
#include "vek0paint/sheet.h"

namespace vek0::paint {

enum class Format { Svg, Png, Pdf };

/// The format by a name's extension ("svg", "plan.PDF"); nothing if unknown.
std::optional<Format> formatOf(const std::string& name);
/// "svg", "png" or "pdf".
const char* nameOf(Format format);
/// Whether this build writes the format: without `VEK0_BUILD_RENDER`, only SVG.
bool isWritable(Format format);

/// Creates the projector for a view: "plan", "front", "side", "plan:DEG", "parallel:a,b,c,d". Null
/// for anything else.
std::unique_ptr<IProjector> makeProjector(const std::string& text);

/// Options for the layout of a picture.
struct PICTURE_OPTIONS {
  Format format = Format::Svg;
  std::optional<SHEET_SIZE> size;   ///< of the whole picture
  bool turnable = false;            ///< the size is that of paper, whose orientation may be chosen
                                    ///< to fit
  std::optional<bool> landscape;    ///< required orientation of the paper
  std::optional<double> scale;      ///< paper millimeters per millimeter of the drawing
  double unitMm = 1;                ///< millimeters per drawing unit
  std::optional<RECT_2D> window;    ///< part of the view's plane to show
  std::optional<double> margin;     ///< millimeters on paper, else pixels
  std::optional<double> lineWidth;  ///< millimeters, of all lines regardless of their lineweights
  double weightFactor = 1;          ///< of lineweights
  double defaultWeight = 0.25;      ///< lineweight "default", millimeters
  double dpi = 150;                 ///< of images of paper
};

/// A sheet and the part of the view's plane that fills it.
struct PICTURE {
  SHEET sheet;
  RECT_2D world{0, 0, 1, 1};
  std::string error;       ///< reason why the picture is impossible, or empty
  bool overflows = false;  ///< the content does not fit at the requested scale
};

/// Lays out a picture of a drawing with these extents in the plane of its view, which may be empty.
/// Without a size or scale, the longer side of an image is `kImageSide` pixels, and a page is A4;
/// with only a scale, the sheet is as large as the drawing needs.
PICTURE layOut(const PICTURE_OPTIONS& options, const RECT_2D& extents);

}  // namespace vek0::paint
