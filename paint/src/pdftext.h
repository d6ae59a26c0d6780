#pragma once

#include <vector>

#include "pdfcontent.h"
#include "pdffonts.h"
#include "vek0paint/outlinefont.h"

namespace vek0::paint {

/// The glyphs of a text as runs of one font each; empty if they cannot be shown by embedded fonts.
std::vector<PDF_RUN> layOutRuns(const DrawText& text, const OutlineFont& font, PdfFonts& fonts);

}  // namespace vek0::paint
