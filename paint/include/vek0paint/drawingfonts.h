#pragma once

#include <memory>

#include "vek0paint/outlinefont.h"

class CData;

namespace vek0::paint {

/// Fonts that take the place of a drawing's own. They must outlive the drawings that use them, and
/// be destroyed before `shutdownCore`.
class IDrawingFonts : public IOutlineFonts {
 public:
  /// Sets the font of every style of the drawing, including those of external references, by its
  /// font name. Call it before extents of texts are requested.
  virtual void adopt(const CData& data) = 0;
  /// Whether there is a font of that name, rather than one that takes its place. Stroke fonts count
  /// as such, since a lettering font always replaces them. Default: true, as nothing is known.
  virtual bool has(const zim::WString& /*name*/) { return true; }
};

/// The fonts for pictures: those of the system, which become the default of styles without a font
/// as long as the result lives; in a build without `VEK0_BUILD_RENDER`, the glyphs that were built
/// in, if any.
std::unique_ptr<IDrawingFonts> makeDrawingFonts();

}  // namespace vek0::paint
