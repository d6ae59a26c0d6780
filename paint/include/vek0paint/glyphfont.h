#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek0core/vek0core.h"
#include "vek0paint/drawingfonts.h"

namespace vek0::paint {

/// Glyphs in units of the height of capitals. All texts are drawn with one table.
///
/// In a file it is little-endian: "V0GLYPH1", the descent as a 32-bit float, the number of glyphs
/// as a 32-bit integer; then per glyph the character, its advance (float), the number of steps and
/// as many bytes with one step each, as in `GLYPH_OUTLINE`, and two floats for each of their
/// points.
class GlyphTable {
 public:
  using Index = std::uint32_t;
  static constexpr Index kNone = 0xffffffff;
  static constexpr int kDetails = 4;

  struct Triangle {
    float x0, y0, x1, y1, x2, y2;
  };
  /// A glyph of a text, at its distance from the start in units of the font.
  struct Placed {
    Index glyph;
    double at;
  };

  /// Replaces the glyphs; false, leaving none, if the table is damaged.
  bool load(std::string_view table);
  bool empty() const { return m_glyphs.empty(); }

  Index find(char32_t character) const;
  /// Whether all characters have glyphs.
  bool covers(const zim::WString& text) const;
  /// The glyphs of a text; false, leaving `placed` as it was, if it has a character without one.
  bool place(const zim::WString& text, std::vector<Placed>& placed) const;
  /// Covers the glyph, deviating less than `kDeviations[detail]`. Kept once computed.
  const std::vector<Triangle>& triangles(Index glyph, int detail) const;
  static constexpr double kDeviations[kDetails] = {1.0 / 32, 1.0 / 128, 1.0 / 512, 1.0 / 4096};
  std::size_t size() const { return m_glyphs.size(); }
  /// Whether the glyph has anything to draw.
  bool isBlank(Index glyph) const { return m_glyphs[glyph].steps.empty(); }

  double descent() const { return m_descent; }
  /// Characters without a glyph have the default width.
  double widthOf(const zim::WString& text) const;
  void outline(const DrawText& text, IOutlineSink& sink) const;

  /// Whether fonts have the default metrics meanwhile, as for tools without glyphs.
  bool isPlain = false;

 private:
  struct Glyph {
    double advance;
    std::vector<std::uint8_t> steps;
    std::vector<float> points;
    mutable std::vector<Triangle> triangles[kDetails] = {};
    mutable bool isCovered[kDetails] = {};
  };

  static void trace(const Glyph& glyph, const AFFINE_2D& map, IOutlineSink& sink);

  double m_descent = 1.0 / 3;
  std::vector<Glyph> m_glyphs;
  std::unordered_map<char32_t, Index> m_index;
};

/// The fonts of a drawing by their names, all with the glyphs of one table.
class GlyphFonts final : public IDrawingFonts {
 public:
  GlyphFonts();
  ~GlyphFonts() override;

  GlyphTable& table() { return m_table; }
  const GlyphTable& table() const { return m_table; }
  /// Sets the fonts of all styles, which keep their names. They must outlive the drawing.
  void adopt(const CData& data) override;
  const OutlineFont* drawing(const ICADFont* font) override;

 private:
  class Font;
  const Font* font(const zim::WString& name);

  GlyphTable m_table;
  std::unordered_map<zim::WString, std::unique_ptr<Font>> m_fonts;
};

}  // namespace vek0::paint
