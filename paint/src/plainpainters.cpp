// Painters and fonts of builds without other libraries.
#include "builtinglyphs.h"
#include "painters.h"
#include "vek0paint/glyphfont.h"

namespace vek0::paint {

bool isWritable(Format format) { return format == Format::Svg; }

std::unique_ptr<SheetPainter> makePainter(Format format, IFile& file, const SHEET& sheet,
                                          IOutlineFonts& fonts, SvgPainter::Texts texts) {
  if (!isWritable(format)) return nullptr;
  return std::make_unique<SvgPainter>(file, sheet, fonts, texts);
}

std::unique_ptr<IDrawingFonts> makeDrawingFonts() {
  auto fonts = std::make_unique<GlyphFonts>();
  fonts->table().load(builtInGlyphs());
  return fonts;
}

}  // namespace vek0::paint
