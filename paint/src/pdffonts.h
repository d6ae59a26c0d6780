#pragma once

#include <hb.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pdffile.h"
#include "vek0paint/outlinefont.h"

namespace vek0::paint {

/// A face whose used glyphs are embedded in a PDF.
class PdfFont {
 public:
  /// Opens a face; null if it cannot be embedded: no TrueType or CFF outlines, a named instance of
  /// a variable font, or a license that forbids it.
  static std::unique_ptr<PdfFont> open(const FACE_FILE& file, int number);
  ~PdfFont();
  PdfFont(const PdfFont&) = delete;
  PdfFont& operator=(const PdfFont&) = delete;

  int number() const { return m_number; }

  struct GLYPH {
    unsigned code = 0;         ///< in texts of the page
    double advance = 0;        ///< in thousandths of the em square, as readers compute it
    std::u16string text = {};  ///< that a search finds
  };
  /// A glyph, which is then part of the subset. The first text that uses it determines what readers
  /// find.
  const GLYPH& use(unsigned index, std::u16string_view text);

  /// Adds the font with the glyphs used to the file; returns the number of its object.
  int embed(PdfFile& file) const;

 private:
  PdfFont(hb_face_t* face, int number);

  bool isUsable(const FACE_FILE& file);
  bool isPermitted() const;
  void openCodes(const FACE_FILE& file);
  unsigned codeOf(unsigned index) const;
  std::string subset() const;
  std::string name() const;
  std::string descriptor(PdfFile& file, const std::string& name) const;
  std::string widths() const;
  std::string toUnicode() const;

  struct CidFace;  // of fonts whose glyphs have numbers of their own

  hb_face_t* m_face;
  hb_font_t* m_font;
  int m_number;
  bool m_isCff = false;
  std::unique_ptr<CidFace> m_cids;
  std::map<unsigned, GLYPH> m_glyphs;  // by index
};

/// The fonts of a PDF.
class PdfFonts {
 public:
  /// The font of a face; null if it cannot be embedded.
  PdfFont* find(const FACE_FILE& file);
  /// Adds all fonts to the file; returns the dictionary of the names that pages use.
  std::string embed(PdfFile& file) const;

 private:
  std::unordered_map<const FACE_FILE*, PdfFont*> m_found;
  std::map<std::pair<std::string, int>, std::unique_ptr<PdfFont>> m_fonts;  // by path and index
  int m_count = 0;
};

}  // namespace vek0::paint
