#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vek0core/tables/font.h"
#include "vek0draw/painter.h"

class CData;

namespace vek0::tool {

class Face;
class FontLibrary;

/// Outline of a glyph in the units of its face, y upwards: closed contours, each begun
/// by a `Move`.
struct GLYPH_OUTLINE {
  enum Step : std::uint8_t { Move, Line, Quad, Cubic };  // 1, 1, 2 and 3 points

  std::vector<Step> steps;
  std::vector<PNT_2D> points;
  double advance = 0;
};

/// The file that a face is read from.
struct FACE_FILE {
  std::string path;
  int index = 0;         ///< of the face in the file
  bool altered = false;  ///< made bold or italic: its glyphs are not those of the file
};

/// A glyph of a text, on the device.
struct FACE_GLYPH {
  const FACE_FILE* file = nullptr;
  unsigned index = 0;  ///< in the file's face
  PNT_2D at;           ///< where its origin lies
  double size = 0;     ///< of the design square, in the units of the text
};

/// Takes the contours of a text in device coordinates. Each is closed by the next `move`
/// or by the end.
class IOutlineSink {
 public:
  virtual ~IOutlineSink() = default;
  virtual void move(const PNT_2D& to) = 0;
  virtual void line(const PNT_2D& to) = 0;
  virtual void quad(const PNT_2D& from, const PNT_2D& control, const PNT_2D& to) = 0;
  virtual void cubic(const PNT_2D& control1, const PNT_2D& control2, const PNT_2D& to) = 0;
};

/// A font of a drawing under the name that the drawing has for it, measured and drawn by
/// a face of the system. Its unit is that of the face's design, so the height unit is
/// the height of the face's capitals.
///
/// The faces for bold and italic are looked for when they are first asked for; a family
/// without them is emboldened and slanted. A character that the face lacks comes from
/// another one, at the same height of capitals. Strings are measured and drawn by the
/// same walk, so they agree.
class FaceFont final : public ICADFont {
 public:
  double getHeightUnit() const override;
  double getDescent() const override;
  double getStringWidth(const zim::WString& text, bool horiz, bool bold,
                        bool italic) const override;

  /// The glyphs in the order of the text.
  std::vector<FACE_GLYPH> glyphs(const DrawText& text) const;
  /// The glyphs' contours.
  void outline(const DrawText& text, IOutlineSink& sink) const;
  /// Name of the face's family in UTF-8.
  std::string family() const;
  /// Size of the design square in the font's units, which other programs call the font
  /// size.
  double unitsPerEm() const;

 private:
  friend class FontLibrary;
  FaceFont(const zim::WString& name, FontLibrary& library) : ICADFont(name), m_library(library) {}

  Face& face(bool bold, bool italic) const;
  template <class Visit>
  double walk(const zim::WString& text, Face& face, Visit&& visit) const;

  FontLibrary& m_library;
  mutable Face* m_faces[4] = {};
};

/// The fonts of the system as fonts of drawings. Must outlive the drawings that use them
/// and be gone before `shutdownCore`.
///
/// Names are those of drawings: "ARIAL.TTF", "romans.shx", "Liberation Sans". Names of
/// stroke fonts, which no system has, give a technical lettering; what else is unknown
/// gives whatever the system finds nearest. Not for concurrent use.
class FontLibrary {
 public:
  FontLibrary();
  /// Takes the default font back out of the font table.
  ~FontLibrary();
  FontLibrary(const FontLibrary&) = delete;
  FontLibrary& operator=(const FontLibrary&) = delete;

  /// Makes a font of this library the default of the process, for styles without one.
  void registerFonts();
  /// Gives every style of the drawing, those of external references too, the font of its
  /// font's name. To be called before anything asks for extents of texts.
  void adopt(const CData& data);

  /// The font for a name; the same one for the same name. Null when the system has no
  /// usable font at all.
  const FaceFont* font(const zim::WString& name);
  /// What draws a font of whatever origin, the default font for null.
  const FaceFont* drawing(const ICADFont* font);

 private:
  friend class FaceFont;
  struct System;

  Face* findFace(const zim::WString& name, bool bold, bool italic);
  /// A face that has the character; null when the system has none.
  Face* faceWith(char32_t character);
  Face* openFace(const std::string& path, int index, bool bold, bool italic);

  std::unique_ptr<System> m_system;
  std::unordered_map<std::string, std::unique_ptr<Face>> m_faces;  // by path and make-up
  std::unordered_map<char32_t, Face*> m_substitutes;
  std::unordered_map<zim::WString, std::unique_ptr<FaceFont>> m_fonts;
  const ICADFont* m_formerDefault = nullptr;
};

}  // namespace vek0::tool
