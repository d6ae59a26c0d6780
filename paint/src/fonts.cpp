#include "vek0paint/fonts.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "vek0core/drawing/data.h"
#include "vek0host/textvalues.h"
#include "zim0lang/utf8.h"
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace vek0::paint {
namespace {

constexpr const char* kTechnicalFamily = "osifont";
constexpr const char* kFallbackFamily = "DejaVu Sans";
// Default capital height of a face that does not state it, relative to the em square.
constexpr double kUsualCapHeight = 0.7;
// Synthetic bold grows by one part in `kBoldPart` of the em square; synthetic italic slants by
// `kItalicSlope`.
constexpr long kBoldPart = 24;
// About 12 degrees, the usual slant of italics.
constexpr double kItalicSlope = 0.2126;

// Font files and their families; stroke fonts end in ".shx" and need no entry.
constexpr struct {
  const char* file;
  const char* family;
} kFamilies[] = {
    {"ariali", "Arial"},
    {"arialbd", "Arial"},
    {"arialbi", "Arial"},
    {"arialn", "Arial Narrow"},
    {"ariblk", "Arial Black"},
    {"cour", "Courier New"},
    {"courbd", "Courier New"},
    {"couri", "Courier New"},
    {"gothic", "Century Gothic"},
    {"gost", kTechnicalFamily},
    {"isocp", kTechnicalFamily},
    {"isocp2", kTechnicalFamily},
    {"isocp3", kTechnicalFamily},
    {"isocpeur", kTechnicalFamily},
    {"isoct", kTechnicalFamily},
    {"isocteur", kTechnicalFamily},
    {"italic", kTechnicalFamily},
    {"micross", "Microsoft Sans Serif"},
    {"monotxt", kTechnicalFamily},
    {"romanc", kTechnicalFamily},
    {"romand", kTechnicalFamily},
    {"romans", kTechnicalFamily},
    {"romant", kTechnicalFamily},
    {"simplex", kTechnicalFamily},
    {"standard", kTechnicalFamily},
    {"tahomabd", "Tahoma"},
    {"times", "Times New Roman"},
    {"timesbd", "Times New Roman"},
    {"timesi", "Times New Roman"},
    {"txt", kTechnicalFamily},
    {"verdanab", "Verdana"},
};

bool takeExtension(std::string& name, std::string_view extension) {
  if (name.size() < extension.size() ||
      std::string_view(name).substr(name.size() - extension.size()) != extension) {
    return false;
  }
  name.resize(name.size() - extension.size());
  return true;
}

// The family denoted by a font name in a drawing, which may be a path and may name a second font
// after a comma.
std::string familyOf(const zim::WString& fontName) {
  std::string name = host::lowered(fontName.toUtf8());
  // A comma separates the second font, for wide characters.
  name.resize(std::min(name.size(), name.find(',')));
  if (const std::size_t slash = name.find_last_of("/\\"); slash != std::string::npos) {
    name.erase(0, slash + 1);
  }
  if (takeExtension(name, ".shx") || takeExtension(name, ".shp")) return kTechnicalFamily;
  for (const char* extension : {".ttf", ".ttc", ".otf", ".pfb"}) {
    if (takeExtension(name, extension)) break;
  }
  for (const auto& known : kFamilies) {
    if (name == known.file) return known.family;
  }
  return name.empty() ? kTechnicalFamily : name;
}

struct DestroyPattern {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, DestroyPattern>;

void addString(FcPattern* pattern, const char* key, const std::string& value) {
  FcPatternAddString(pattern, key, reinterpret_cast<const FcChar8*>(value.c_str()));
}

Pattern newPattern() {
  Pattern pattern(FcPatternCreate());
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
  return pattern;
}

PNT_2D toPoint(const FT_Vector* v) {
  return {static_cast<double>(v->x), static_cast<double>(v->y)};
}

// Receives the segments of a glyph's outline from FreeType.
struct OutlineBuilder {
  GLYPH_OUTLINE& out;

  int add(GLYPH_OUTLINE::Step step, std::initializer_list<const FT_Vector*> points) {
    out.steps.push_back(step);
    for (const FT_Vector* point : points) out.points.push_back(toPoint(point));
    return 0;
  }
  static int move(const FT_Vector* to, void* self) {
    return static_cast<OutlineBuilder*>(self)->add(GLYPH_OUTLINE::Move, {to});
  }
  static int line(const FT_Vector* to, void* self) {
    return static_cast<OutlineBuilder*>(self)->add(GLYPH_OUTLINE::Line, {to});
  }
  static int quad(const FT_Vector* control, const FT_Vector* to, void* self) {
    return static_cast<OutlineBuilder*>(self)->add(GLYPH_OUTLINE::Quad, {control, to});
  }
  static int cubic(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to,
                   void* self) {
    return static_cast<OutlineBuilder*>(self)->add(GLYPH_OUTLINE::Cubic, {control1, control2, to});
  }
};

// Passes a glyph's contours to the sink, with mapped points.
void emitGlyph(const GLYPH_OUTLINE& glyph, const AFFINE_2D& map, IOutlineSink& sink) {
  const PNT_2D* p = glyph.points.data();
  const auto next = [&] {
    const PNT_2D mapped = map.apply(p->x, p->y);
    ++p;
    return mapped;
  };
  PNT_2D at(0, 0);
  for (const GLYPH_OUTLINE::Step step : glyph.steps) {
    const PNT_2D first = next();
    const PNT_2D second = step >= GLYPH_OUTLINE::Quad ? next() : first;
    const PNT_2D last = step == GLYPH_OUTLINE::Cubic ? next() : second;
    switch (step) {
      case GLYPH_OUTLINE::Move:
        sink.move(last);
        break;
      case GLYPH_OUTLINE::Line:
        sink.line(last);
        break;
      case GLYPH_OUTLINE::Quad:
        sink.quad(at, first, last);
        break;
      case GLYPH_OUTLINE::Cubic:
        sink.cubic(first, second, last);
        break;
    }
    at = last;
  }
}

}  // namespace

/// One face of the system with the glyphs used so far, in its design units.
class Face {
 public:
  Face(FT_Face face, FACE_FILE file, bool bold, bool italic)
      : m_face(face),
        m_file(std::move(file)),
        m_makeBold(bold && (face->style_flags & FT_STYLE_FLAG_BOLD) == 0),
        m_makeItalic(italic && (face->style_flags & FT_STYLE_FLAG_ITALIC) == 0),
        m_capHeight(measureCapitals()) {
    if (m_makeBold) m_file.boldness = 1.0 / kBoldPart;
    if (m_makeItalic) m_file.slant = kItalicSlope;
  }
  ~Face() { FT_Done_Face(m_face); }
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;

  const FACE_FILE& file() const { return m_file; }
  double capHeight() const { return m_capHeight; }
  double descent() const { return std::max(0.0, -static_cast<double>(m_face->descender)); }
  double unitsPerEm() const { return m_face->units_per_EM; }
  std::string family() const { return m_face->family_name ? m_face->family_name : "sans-serif"; }

  /// 0 for a character that the face lacks; glyph 0 represents missing ones.
  FT_UInt index(char32_t character) const { return FT_Get_Char_Index(m_face, character); }

  const GLYPH_OUTLINE& glyph(FT_UInt index) {
    // Outlines are loaded once; drawings repeat few characters many times.
    const auto [found, isNew] = m_glyphs.try_emplace(index);
    if (isNew) load(index, found->second);
    return found->second;
  }

  double kerning(FT_UInt left, FT_UInt right) const {
    FT_Vector delta{0, 0};
    if (left == 0 || !FT_HAS_KERNING(m_face) ||
        FT_Get_Kerning(m_face, left, right, FT_KERNING_UNSCALED, &delta) != 0) {
      return 0;
    }
    return static_cast<double>(delta.x);
  }

 private:
  void load(FT_UInt index, GLYPH_OUTLINE& glyph) {
    if (FT_Load_Glyph(m_face, index, FT_LOAD_NO_SCALE) != 0) return;
    FT_GlyphSlot slot = m_face->glyph;
    glyph.advance = static_cast<double>(slot->metrics.horiAdvance);
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return;
    if (m_makeBold) {
      const FT_Pos strength = m_face->units_per_EM / kBoldPart;
      FT_Outline_Embolden(&slot->outline, strength);
      // Combining marks have no advance and must not get any.
      if (glyph.advance > 0) glyph.advance += static_cast<double>(strength);
    }
    OutlineBuilder builder{glyph};
    const FT_Outline_Funcs steps = {OutlineBuilder::move,
                                    OutlineBuilder::line,
                                    OutlineBuilder::quad,
                                    OutlineBuilder::cubic,
                                    0,
                                    0};
    FT_Outline_Decompose(&slot->outline, &steps, &builder);
    if (!m_makeItalic) return;
    for (PNT_2D& p : glyph.points) p.x += kItalicSlope * p.y;
  }

  double measureCapitals() {
    // Measured, because not all faces state it.
    if (const FT_UInt h = index(U'H'); h != 0 && FT_Load_Glyph(m_face, h, FT_LOAD_NO_SCALE) == 0) {
      const auto top = static_cast<double>(m_face->glyph->metrics.horiBearingY);
      if (top > 0) return top;
    }
    return kUsualCapHeight * std::max<double>(1, m_face->units_per_EM);
  }

  FT_Face m_face;
  FACE_FILE m_file;
  bool m_makeBold, m_makeItalic;
  double m_capHeight;
  std::unordered_map<FT_UInt, GLYPH_OUTLINE> m_glyphs;
};

/// State of the two libraries that must outlive all faces.
struct FontLibrary::System {
  FT_Library freetype = nullptr;
  FcConfig* config = FcInitLoadConfigAndFonts();

  System() { FT_Init_FreeType(&freetype); }
  ~System() {
    if (freetype) FT_Done_FreeType(freetype);
    if (config) FcConfigDestroy(config);
  }
  System(const System&) = delete;
  System& operator=(const System&) = delete;

  bool works() const { return freetype && config; }
  /// The best match for a pattern; null if there is none.
  Pattern match(Pattern pattern) const {
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    return Pattern(FcFontMatch(config, pattern.get(), &result));
  }
};

// -- the font of a drawing -----------------------------------------------------------

Face& FaceFont::face(bool bold, bool italic) const {
  Face*& face = m_faces[(bold ? 1 : 0) + (italic ? 2 : 0)];
  if (!face) face = m_library.findFace(getName(), bold, italic);
  return *face;
}

double FaceFont::getHeightUnit() const { return face(false, false).capHeight(); }
double FaceFont::getDescent() const { return face(false, false).descent(); }
double FaceFont::unitsPerEm() const { return face(false, false).unitsPerEm(); }
std::string FaceFont::family() const { return face(false, false).family(); }

// Visits every glyph with its position on the baseline, its scale and its character; returns the
// width.
template <class Visit>
double FaceFont::walk(const zim::WString& text, Face& primary, Visit&& visit) const {
  // The unit is the upright face's, also for a bold one with other capitals.
  const double unit = getHeightUnit();
  double x = 0;
  FT_UInt last = 0;
  const Face* lastFace = nullptr;
  for (std::u16string_view rest = text; !rest.empty();) {
    char32_t character = zim::takeUtf16(rest);
    // Control characters have no glyph and occupy a blank.
    if (character < U' ') character = U' ';
    Face* face = &primary;
    FT_UInt index = face->index(character);
    // Characters missing in the font are taken from another one.
    if (index == 0) {
      if (Face* other = m_library.faceWith(character)) face = other;
      index = face->index(character);
    }
    const double scale = unit / face->capHeight();
    // Kerning is defined only between glyphs of one face.
    if (face == lastFace) x += scale * face->kerning(last, index);
    visit(*face, index, x, scale, character);
    x += scale * face->glyph(index).advance;
    last = index;
    lastFace = face;
  }
  return x;
}

double FaceFont::getStringWidth(const zim::WString& text, bool /*horiz*/, bool bold,
                                bool italic) const {
  return walk(text, face(bold, italic), [](Face&, FT_UInt, double, double, char32_t) {});
}

std::vector<FACE_GLYPH> FaceFont::glyphs(const DrawText& text) const {
  std::vector<FACE_GLYPH> result;
  walk(
      *text.string, face(text.bold, text.italic),
      [&](Face& face, FT_UInt index, double x, double scale, char32_t character) {
        result.push_back({&face.file(), index, text.matrix.apply(x, 0), scale * face.unitsPerEm()});
        zim::appendUtf16(result.back().text, character);
      });
  return result;
}

void FaceFont::outline(const DrawText& text, IOutlineSink& sink) const {
  const AFFINE_2D& m = text.matrix;
  walk(*text.string, face(text.bold, text.italic),
       [&](Face& face, FT_UInt index, double x, double scale, char32_t) {
         const PNT_2D at = m.apply(x, 0);
         emitGlyph(face.glyph(index),
                   {m.a * scale, m.b * scale, m.c * scale, m.d * scale, at.x, at.y}, sink);
       });
}

// -- the library ---------------------------------------------------------------------

FontLibrary::FontLibrary() = default;

FontLibrary::~FontLibrary() {
  if (m_formerDefault) CFontTable::getInstance().setDefault(m_formerDefault);
}

void FontLibrary::registerFonts() {
  CFontTable& table = CFontTable::getInstance();
  table.addPlainDefault();
  const FaceFont* standard = font(table.getDefault()->getName());
  if (!standard || m_formerDefault) return;
  m_formerDefault = table.getDefault();
  table.setDefault(standard);
}

void FontLibrary::adopt(const CData& data) {
  for (CData::CStyleIterator it(data, true); CStyle* style = *it; ++it) {
    if (!style->getFont()) continue;
    if (const FaceFont* own = font(style->getFont()->getName())) style->setFont(own);
  }
}

const FaceFont* FontLibrary::font(const zim::WString& name) {
  const auto [found, isNew] = m_fonts.try_emplace(name);
  // A font is only returned if it has its upright face, which replaces every other that is
  // unavailable.
  if (isNew && findFace(name, false, false)) found->second.reset(new FaceFont(name, *this));
  return found->second.get();
}

const FaceFont* FontLibrary::drawing(const ICADFont* of) {
  if (const auto* face = dynamic_cast<const FaceFont*>(of)) return face;
  return font(of ? of->getName() : zim::WString());
}

Face* FontLibrary::findFace(const zim::WString& name, bool bold, bool italic) {
  if (!m_system) m_system = std::make_unique<System>();
  if (!m_system->works()) return nullptr;
  Pattern pattern = newPattern();
  addString(pattern.get(), FC_FAMILY, familyOf(name));
  // The fallback ensures a known result if the family is not installed.
  addString(pattern.get(), FC_FAMILY, kFallbackFamily);
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddInteger(pattern.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  const Pattern match = m_system->match(std::move(pattern));
  FcChar8* path = nullptr;
  int index = 0;
  Face* face = nullptr;
  if (match && FcPatternGetString(match.get(), FC_FILE, 0, &path) == FcResultMatch) {
    FcPatternGetInteger(match.get(), FC_INDEX, 0, &index);
    face = openFace(reinterpret_cast<const char*>(path), index, bold, italic);
  }
  // If the file of the styled face cannot be opened, the regular face is better than none.
  return face || !(bold || italic) ? face : findFace(name, false, false);
}

Face* FontLibrary::openFace(const std::string& path, int index, bool bold, bool italic) {
  const std::string key =
      path + '\n' + std::to_string(index) + (bold ? "b" : "") + (italic ? "i" : "");
  // Faces are shared by fonts that match the same file.
  const auto [found, isNew] = m_faces.try_emplace(key);
  FT_Face face = nullptr;
  if (isNew && FT_New_Face(m_system->freetype, path.c_str(), index, &face) == 0) {
    found->second = std::make_unique<Face>(face, FACE_FILE{path, index}, bold, italic);
  }
  return found->second.get();
}

Face* FontLibrary::faceWith(char32_t character) {
  // Failures are stored as well, because the search is slow.
  const auto [found, isNew] = m_substitutes.try_emplace(character, nullptr);
  if (!isNew) return found->second;
  Pattern pattern = newPattern();
  FcCharSet* characters = FcCharSetCreate();
  FcCharSetAddChar(characters, character);
  FcPatternAddCharSet(pattern.get(), FC_CHARSET, characters);
  FcCharSetDestroy(characters);
  addString(pattern.get(), FC_FAMILY, kFallbackFamily);
  const Pattern match = m_system->match(std::move(pattern));
  FcChar8* path = nullptr;
  int index = 0;
  if (!match || FcPatternGetString(match.get(), FC_FILE, 0, &path) != FcResultMatch) return nullptr;
  FcPatternGetInteger(match.get(), FC_INDEX, 0, &index);
  Face* face = openFace(reinterpret_cast<const char*>(path), index, false, false);
  return found->second = face && face->index(character) != 0 ? face : nullptr;
}

}  // namespace vek0::paint
