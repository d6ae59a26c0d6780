#pragma once

#include <memory>
#include <string>

#include "vek0paint/sheetpainter.h"

namespace vek0::paint {

/// Writes a PDF: a page per sheet, with a layer that readers can toggle for each layer of the
/// drawing that has content, and texts that can be searched and copied.
///
/// Only the glyphs used are embedded. Texts become outlines if their face cannot be embedded, for
/// technical or legal reasons. Pages are written in blocks while they are drawn; equal
/// drawings yield equal bytes. The time of creation is that of the environment variable
/// SOURCE_DATE_EPOCH, otherwise there is none.
class PdfPainter final : public SheetPainter {
 public:
  /// `file` is open, and borrowed like `fonts`.
  PdfPainter(IFile& file, const SHEET& sheet, IOutlineFonts& fonts);
  ~PdfPainter() override;

  void begin(const DrawItem& item) override;
  /// Pages share layers and fonts. The title of the document is that of the first sheet.
  bool nextPage(const SHEET& sheet) override;
  bool finish() override;
  bool hasDashes() const override { return true; }
  void dashedStroke(const PNT_2D* points, std::size_t count, const DrawDashes& dashes,
                    double distance) override;

 protected:
  void plainStroke(const PNT_2D* points, std::size_t count, bool closed) override;
  void plainArc(const PNT_2D& center, double radius, double startRad, double sweepRad) override;
  void plainFill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                 FillRule rule) override;
  void plainDot(const PNT_2D& at) override;
  void plainDisc(const PNT_2D& center, double diameter) override;
  bool plainClip(const PNT_2D* points, std::size_t count) override;
  void plainPopClip() override;
  void plainText(const DrawText& text, const OutlineFont& font, const RECT_2D& bounds) override;

 private:
  void endPage();
  std::string addLayers();
  void writeResources();

  struct Document;

  SHEET m_sheet;  // of the current page
  std::unique_ptr<Document> m_document;
};

}  // namespace vek0::paint
