#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vek0paint/drawingfonts.h"

namespace vek0::paint {

class Face;
class FontLibrary;
struct SHAPED_GLYPH;

/// Outline of a glyph in the units of its face, y upwards: closed contours, each begun
/// by a `Move`.
struct GLYPH_OUTLINE {
  enum Step : std::uint8_t { Move, Line, Quad, Cubic };  // 1, 1, 2 and 3 points

  std::vector<Step> steps;
  std::vector<PNT_2D> points;
  double advance = 0;
};

/// A font of a drawing, by the drawing's name for it, measured and drawn with a system face. Its
/// units are the face's design units, so the height unit is the face's capital height.
///
/// Bold and italic faces are searched on first use; a family without them is emboldened and slanted
/// synthetically. A character that the face lacks is taken from another one, scaled to the same
/// capital height. Strings are measured and drawn by the same traversal, so the results agree.
/// Scripts that need it are ordered and shaped.
class FaceFont final : public OutlineFont {
 public:
  double getHeightUnit() const override;
  double getDescent() const override;
  double getStringWidth(const zim::WString& text, bool horiz, bool bold,
                        bool italic) const override;

  std::vector<FACE_GLYPH> glyphs(const DrawText& text) const override;
  void outline(const DrawText& text, IOutlineSink& sink) const override;
  std::string family() const override;
  double unitsPerEm() const override;
  bool isRightToLeft(const zim::WString& text) const override;

  ~FaceFont() override;

 private:
  friend class FontLibrary;
  struct LINE;
  struct PLACED;

  FaceFont(const zim::WString& name, FontLibrary& library);

  Face& face(bool bold, bool italic) const;
  template <class Visit>
  double walk(const zim::WString& text, Face& face, Visit&& visit) const;
  template <class Visit>
  double walkSimple(const zim::WString& text, Face& face, Visit&& visit) const;
  template <class Visit>
  double walkShaped(const zim::WString& text, Face& face, Visit&& visit) const;
  const std::vector<SHAPED_GLYPH>& shaped(const zim::WString& text, Face& face) const;

  FontLibrary& m_library;
  mutable Face* m_faces[4] = {};
  mutable std::unique_ptr<LINE> m_line;  // the last one that was shaped
};

/// System fonts as fonts of drawings.
///
/// Names are those of drawings: "ARIAL.TTF", "romans.shx", "Liberation Sans". Names of stroke
/// fonts, which systems lack, select a technical lettering font; other unknown names select the
/// system's best match. Not thread-safe.
class FontLibrary final : public IDrawingFonts {
 public:
  FontLibrary();
  /// Removes the default font from the font table.
  ~FontLibrary() override;
  FontLibrary(const FontLibrary&) = delete;
  FontLibrary& operator=(const FontLibrary&) = delete;

  /// Makes a font of this library the process-wide default, for styles without a font.
  void registerFonts();
  void adopt(const CData& data) override;
  bool has(const zim::WString& name) override;

  /// The font for a name; always the same one for the same name. Null if the system has no usable
  /// font.
  const FaceFont* font(const zim::WString& name);
  const FaceFont* drawing(const ICADFont* font) override;

 private:
  friend class FaceFont;
  struct System;

  Face* findFace(const zim::WString& name, bool bold, bool italic);
  /// A face that has the character; null if the system has none.
  Face* faceWith(char32_t character);
  Face* openFace(const std::string& path, int index, bool bold, bool italic);

  std::unique_ptr<System> m_system;
  std::unordered_map<std::string, std::unique_ptr<Face>> m_faces;  // by path and synthetic style
  std::unordered_map<char32_t, Face*> m_substitutes;
  std::unordered_map<zim::WString, std::unique_ptr<FaceFont>> m_fonts;
  const ICADFont* m_formerDefault = nullptr;
};

}  // namespace vek0::paint
