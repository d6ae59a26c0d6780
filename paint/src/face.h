#pragma once

#include <ft2build.h>
#include <hb.h>

#include <array>
#include <memory>
#include <string>
#include <unordered_map>

#include "vek0paint/fonts.h"
#include FT_FREETYPE_H

namespace vek0::paint {

/// One face of the system with the glyphs used so far, in its design units.
class Face {
 public:
  /// Takes ownership of the face.
  Face(FT_Face face, FACE_FILE file, bool bold, bool italic);
  ~Face() { FT_Done_Face(m_face); }
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;

  const FACE_FILE& file() const { return m_file; }
  double capHeight() const { return m_capHeight; }
  double descent() const;
  double unitsPerEm() const { return m_face->units_per_EM; }
  std::string family() const { return m_face->family_name ? m_face->family_name : "sans-serif"; }

  /// 0 for a character that the face lacks; glyph 0 represents missing ones.
  FT_UInt index(char32_t character) const {
    return character < m_ascii.size() ? m_ascii[character] : FT_Get_Char_Index(m_face, character);
  }
  const GLYPH_OUTLINE& glyph(FT_UInt index);
  double kerning(FT_UInt left, FT_UInt right) const;
  /// What synthetic bold adds to the advance of a glyph.
  double extraAdvance() const;

  /// The face as HarfBuzz reads it, with the same glyphs and units; null if it cannot.
  hb_font_t* shaper();

 private:
  static std::array<FT_UInt, 128> asciiGlyphsOf(FT_Face face);
  void load(FT_UInt index, GLYPH_OUTLINE& glyph);
  double measureCapitals() const;
  FT_Pos boldStrength() const;
  void openShaper();

  struct DestroyFont {
    void operator()(hb_font_t* font) const { hb_font_destroy(font); }
  };

  FT_Face m_face;
  std::array<FT_UInt, 128> m_ascii{};  // glyphs of most characters of most drawings
  FACE_FILE m_file;
  bool m_makeBold, m_makeItalic;
  double m_capHeight;
  std::unordered_map<FT_UInt, GLYPH_OUTLINE> m_glyphs;
  bool m_wantsShaper = true;  // until it was opened
  std::unique_ptr<hb_font_t, DestroyFont> m_shaper;
};

}  // namespace vek0::paint
