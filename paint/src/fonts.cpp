#include "vek0paint/fonts.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "shaping.h"
#include "vek0core/drawing/data.h"
#include "vek0host/textvalues.h"
#include "zim0lang/utf8.h"

namespace vek0::paint {
namespace {

constexpr const char* kTechnicalFamily = "osifont";
constexpr const char* kFallbackFamily = "DejaVu Sans";

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

FaceFont::FaceFont(const zim::WString& name, FontLibrary& library)
    : OutlineFont(name), m_library(library) {}

FaceFont::~FaceFont() = default;

double FaceFont::getHeightUnit() const { return face(false, false).capHeight(); }
double FaceFont::getDescent() const { return face(false, false).descent(); }
double FaceFont::unitsPerEm() const { return face(false, false).unitsPerEm(); }
std::string FaceFont::family() const { return face(false, false).family(); }

struct FaceFont::LINE {
  zim::WString string;
  const Face* face = nullptr;
  std::vector<SHAPED_GLYPH> glyphs;
};

// A glyph on the baseline, in the units of the font.
struct FaceFont::PLACED {
  Face& face;
  FT_UInt index;
  double x, y, scale;
  std::u16string_view text;
  bool isRightToLeft;
};

// Visits every glyph from left to right; returns the width.
template <class Visit>
double FaceFont::walk(const zim::WString& text, Face& primary, Visit&& visit) const {
  return isSimple(text) ? walkSimple(text, primary, visit) : walkShaped(text, primary, visit);
}

template <class Visit>
double FaceFont::walkSimple(const zim::WString& text, Face& primary, Visit&& visit) const {
  // The unit is the upright face's, also for a bold one with other capitals.
  const double unit = getHeightUnit();
  double x = 0;
  FT_UInt last = 0;
  const Face* lastFace = nullptr;
  for (std::u16string_view rest = text; !rest.empty();) {
    const std::u16string_view from = rest;
    char32_t character = zim::takeUtf16(rest);
    std::u16string_view shown = from.substr(0, from.size() - rest.size());
    // Control characters have no glyph and occupy a blank.
    if (character < U' ') {
      character = U' ';
      shown = u" ";
    }
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
    visit(PLACED{*face, index, x, 0, scale, shown, false});
    x += scale * face->glyph(index).advance;
    last = index;
    lastFace = face;
  }
  return x;
}

template <class Visit>
double FaceFont::walkShaped(const zim::WString& text, Face& primary, Visit&& visit) const {
  const double unit = getHeightUnit();
  double x = 0;
  for (const SHAPED_GLYPH& glyph : shaped(text, primary)) {
    const double scale = unit / glyph.face->capHeight();
    const std::u16string_view shown = text.view().substr(glyph.first, glyph.end - glyph.first);
    visit(PLACED{*glyph.face, glyph.index, x + scale * glyph.dx, scale * glyph.dy, scale, shown,
                 glyph.isRightToLeft});
    x += scale * glyph.advance;
  }
  return x;
}

// A line is measured several times, then drawn.
const std::vector<SHAPED_GLYPH>& FaceFont::shaped(const zim::WString& text, Face& primary) const {
  if (m_line && m_line->face == &primary && m_line->string == text) return m_line->glyphs;
  const auto find = [this](char32_t character) { return m_library.faceWith(character); };
  m_line = std::make_unique<LINE>(LINE{text, &primary, shapeLine(text, primary, find)});
  return m_line->glyphs;
}

double FaceFont::getStringWidth(const zim::WString& text, bool /*horiz*/, bool bold,
                                bool italic) const {
  return walk(text, face(bold, italic), [](const PLACED&) {});
}

bool FaceFont::isRightToLeft(const zim::WString& text) const { return paint::isRightToLeft(text); }

std::vector<FACE_GLYPH> FaceFont::glyphs(const DrawText& text) const {
  std::vector<FACE_GLYPH> result;
  walk(*text.string, face(text.bold, text.italic), [&](const PLACED& glyph) {
    result.push_back({&glyph.face.file(), glyph.index, text.matrix.apply(glyph.x, glyph.y),
                      glyph.scale * glyph.face.unitsPerEm(), std::u16string(glyph.text),
                      glyph.isRightToLeft});
  });
  return result;
}

void FaceFont::outline(const DrawText& text, IOutlineSink& sink) const {
  const AFFINE_2D& m = text.matrix;
  walk(*text.string, face(text.bold, text.italic), [&](const PLACED& glyph) {
    const PNT_2D at = m.apply(glyph.x, glyph.y);
    const double scale = glyph.scale;
    emitGlyph(glyph.face.glyph(glyph.index),
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

bool FontLibrary::has(const zim::WString& name) {
  const std::string family = familyOf(name);
  if (family == kTechnicalFamily) return true;
  if (!m_system) m_system = std::make_unique<System>();
  if (!m_system->works()) return false;
  Pattern pattern = newPattern();
  addString(pattern.get(), FC_FAMILY, family);
  const Pattern match = m_system->match(std::move(pattern));
  FcChar8* found = nullptr;
  // A face may have several names, in several languages.
  for (int i = 0; match && FcPatternGetString(match.get(), FC_FAMILY, i, &found) == FcResultMatch;
       ++i)
    if (host::lowered(reinterpret_cast<const char*>(found)) == host::lowered(family)) return true;
  return false;
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
