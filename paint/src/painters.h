#pragma once

#include <memory>

#include "vek0paint/picture.h"
#include "vek0paint/sheetpainter.h"
#include "vek0paint/svgpainter.h"

namespace vek0::paint {

/// A painter that writes a format to an open file; null if this build cannot (`isWritable`). The
/// arguments are borrowed. `texts` is for SVG.
std::unique_ptr<SheetPainter> makePainter(Format format, IFile& file, const SHEET& sheet,
                                          IOutlineFonts& fonts, SvgPainter::Texts texts);

}  // namespace vek0::paint
