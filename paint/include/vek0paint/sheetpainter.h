#pragma once

#include "vek0paint/clippingpainter.h"
#include "vek0paint/outlinefont.h"
#include "vek0paint/sheet.h"

class IFile;

namespace vek0::paint {

/// A painter that writes a file. The device coordinates are those of its sheet.
class SheetPainter : public ClippingPainter {
 public:
  /// Begins another page with this sheet, once all clips of the current one are released. Returns
  /// false, drawing nothing, if the format has single pages.
  virtual bool nextPage(const SHEET& /*sheet*/) { return false; }

  /// Writes the remaining data; false if not everything could be written. Call once, after the last
  /// stroke. The file stays open.
  virtual bool finish() = 0;

  void text(const DrawText& text) final;

 protected:
  /// `fonts` is borrowed.
  SheetPainter(const SHEET& sheet, IOutlineFonts& fonts)
      : ClippingPainter(static_cast<double>(sheet.width), static_cast<double>(sheet.height)),
        m_fonts(fonts) {}

  /// The sheet of the following content.
  void setSheet(const SHEET& sheet) {
    setSize(static_cast<double>(sheet.width), static_cast<double>(sheet.height));
  }

  /// A text inside the box, in the metrics of `font`; `bounds` are its approximate bounds on the
  /// device.
  virtual void plainText(const DrawText& text, const OutlineFont& font, const RECT_2D& bounds) = 0;

 private:
  void fillOutlines(const DrawText& text, const OutlineFont& font);

  IOutlineFonts& m_fonts;
};

}  // namespace vek0::paint
