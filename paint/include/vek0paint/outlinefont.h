#pragma once

#include <string>
#include <vector>

#include "vek0core/tables/font.h"
#include "vek0draw/painter.h"

namespace vek0::paint {

/// The file that a face is read from.
struct FACE_FILE {
  std::string path;
  int index = 0;  ///< of the face in the file
  // Of synthetic styles, which change the glyphs in the file.
  double boldness = 0;  ///< growth to the right and upwards, relative to the em square
  double slant = 0;     ///< shift to the right per unit of height
};

/// A glyph of a text, on the device.
struct FACE_GLYPH {
  const FACE_FILE* file = nullptr;
  unsigned index = 0;          ///< in the file's face
  PNT_2D at;                   ///< position of its origin
  double size = 0;             ///< of the em square, in the units of the text
  std::u16string text = {};    ///< the characters that it shows; empty if another glyph shows them
  bool isRightToLeft = false;  ///< whether the next character is at the left
};

/// Receives the contours of a text in device coordinates. Each is closed by the next `move` or by
/// the end.
class IOutlineSink {
 public:
  virtual ~IOutlineSink() = default;
  virtual void move(const PNT_2D& to) = 0;
  virtual void line(const PNT_2D& to) = 0;
  virtual void quad(const PNT_2D& from, const PNT_2D& control, const PNT_2D& to) = 0;
  virtual void cubic(const PNT_2D& control1, const PNT_2D& control2, const PNT_2D& to) = 0;
};

/// A font that painters draw texts with.
class OutlineFont : public ICADFont {
 public:
  /// Whether the font has outlines of all characters. Default: true.
  virtual bool hasOutlines(const zim::WString& /*text*/) const { return true; }
  /// The contours of a text's glyphs.
  virtual void outline(const DrawText& text, IOutlineSink& sink) const = 0;
  /// The glyphs from left to right as displayed, for formats that embed fonts; empty if the font is
  /// not read from a file.
  virtual std::vector<FACE_GLYPH> glyphs(const DrawText& /*text*/) const { return {}; }
  /// Name of the font's family in UTF-8.
  virtual std::string family() const = 0;
  /// Size of the em square in font units, which other programs call the font size.
  virtual double unitsPerEm() const = 0;
  /// Whether a line begins at its right end. Default: false.
  virtual bool isRightToLeft(const zim::WString& /*text*/) const { return false; }

 protected:
  using ICADFont::ICADFont;
};

/// Finds the fonts that draw the texts of a drawing.
class IOutlineFonts {
 public:
  virtual ~IOutlineFonts() = default;
  /// The font that draws texts of any given font; the default font for null. Null if there is none:
  /// the text is then skipped. Owned by this object.
  virtual const OutlineFont* drawing(const ICADFont* font) = 0;
};

}  // namespace vek0::paint
