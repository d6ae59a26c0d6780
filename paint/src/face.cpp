#include "face.h"

#include <hb-ot.h>

#include <algorithm>
#include <utility>
#include FT_OUTLINE_H

namespace vek0::paint {
namespace {

// Default capital height of a face that does not state it, relative to the em square.
constexpr double kUsualCapHeight = 0.7;
// Synthetic bold grows by one part in `kBoldPart` of the em square; synthetic italic slants by
// `kItalicSlope`.
constexpr long kBoldPart = 24;
// About 12 degrees, the usual slant of italics.
constexpr double kItalicSlope = 0.2126;

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

}  // namespace

std::array<FT_UInt, 128> Face::asciiGlyphsOf(FT_Face face) {
  std::array<FT_UInt, 128> glyphs{};
  for (std::size_t i = 0; i < glyphs.size(); ++i) glyphs[i] = FT_Get_Char_Index(face, i);
  return glyphs;
}

Face::Face(FT_Face face, FACE_FILE file, bool bold, bool italic)
    : m_face(face),
      m_ascii(asciiGlyphsOf(face)),
      m_file(std::move(file)),
      m_makeBold(bold && (face->style_flags & FT_STYLE_FLAG_BOLD) == 0),
      m_makeItalic(italic && (face->style_flags & FT_STYLE_FLAG_ITALIC) == 0),
      m_capHeight(measureCapitals()) {
  if (m_makeBold) m_file.boldness = 1.0 / kBoldPart;
  if (m_makeItalic) m_file.slant = kItalicSlope;
}

double Face::descent() const { return std::max(0.0, -static_cast<double>(m_face->descender)); }

FT_Pos Face::boldStrength() const { return m_face->units_per_EM / kBoldPart; }

double Face::extraAdvance() const { return m_makeBold ? static_cast<double>(boldStrength()) : 0; }

const GLYPH_OUTLINE& Face::glyph(FT_UInt index) {
  // Outlines are loaded once; drawings repeat few characters many times.
  const auto [found, isNew] = m_glyphs.try_emplace(index);
  if (isNew) load(index, found->second);
  return found->second;
}

double Face::kerning(FT_UInt left, FT_UInt right) const {
  FT_Vector delta{0, 0};
  if (left == 0 || !FT_HAS_KERNING(m_face) ||
      FT_Get_Kerning(m_face, left, right, FT_KERNING_UNSCALED, &delta) != 0) {
    return 0;
  }
  return static_cast<double>(delta.x);
}

void Face::load(FT_UInt index, GLYPH_OUTLINE& glyph) {
  if (FT_Load_Glyph(m_face, index, FT_LOAD_NO_SCALE) != 0) return;
  FT_GlyphSlot slot = m_face->glyph;
  glyph.advance = static_cast<double>(slot->metrics.horiAdvance);
  if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return;
  if (m_makeBold) {
    FT_Outline_Embolden(&slot->outline, boldStrength());
    // Combining marks have no advance and must not get any.
    if (glyph.advance > 0) glyph.advance += extraAdvance();
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

double Face::measureCapitals() const {
  // Measured, because not all faces state it.
  if (const FT_UInt h = index(U'H'); h != 0 && FT_Load_Glyph(m_face, h, FT_LOAD_NO_SCALE) == 0) {
    const auto top = static_cast<double>(m_face->glyph->metrics.horiBearingY);
    if (top > 0) return top;
  }
  return kUsualCapHeight * std::max<double>(1, m_face->units_per_EM);
}

hb_font_t* Face::shaper() {
  if (std::exchange(m_wantsShaper, false)) openShaper();
  return m_shaper.get();
}

// The lower half of the index is the face, the upper half one plus its named instance, if any.
void Face::openShaper() {
  const auto index = static_cast<unsigned>(m_file.index);
  hb_blob_t* blob = hb_blob_create_from_file(m_file.path.c_str());
  hb_face_t* face = hb_face_create(blob, index & 0xFFFF);
  hb_blob_destroy(blob);
  const bool isSame = hb_face_get_upem(face) == m_face->units_per_EM &&
                      hb_face_get_glyph_count(face) == static_cast<unsigned>(m_face->num_glyphs);
  if (isSame) m_shaper.reset(hb_font_create(face));
  if (isSame && index >> 16 != 0) hb_font_set_var_named_instance(m_shaper.get(), (index >> 16) - 1);
  hb_face_destroy(face);
}

}  // namespace vek0::paint
