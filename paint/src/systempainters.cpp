// Painters and fonts of builds with the system's libraries.
#include "painters.h"
#include "vek0paint/cairopainter.h"
#include "vek0paint/fonts.h"
#include "vek0paint/pdfpainter.h"

namespace vek0::paint {

bool isWritable(Format) { return true; }

std::unique_ptr<SheetPainter> makePainter(Format format, IFile& file, const SHEET& sheet,
                                          IOutlineFonts& fonts, SvgPainter::Texts texts) {
  if (format == Format::Png) return std::make_unique<CairoPainter>(file, sheet, fonts);
  if (format == Format::Pdf) return std::make_unique<PdfPainter>(file, sheet, fonts);
  return std::make_unique<SvgPainter>(file, sheet, fonts, texts);
}

std::unique_ptr<IDrawingFonts> makeDrawingFonts() {
  auto fonts = std::make_unique<FontLibrary>();
  fonts->registerFonts();
  return fonts;
}

}  // namespace vek0::paint
