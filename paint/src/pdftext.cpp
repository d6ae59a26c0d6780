#include "pdftext.h"

#include <algorithm>
#include <cmath>

namespace vek0::paint {
namespace {

// Deviations from a baseline that are invisible, relative to the em square.
constexpr double kOnBaseline = 1e-3;
constexpr double kUnitsPerEm = 1000;

// Builds the operand of TJ: codes, and corrections where the next glyph is not where the reader
// would set it.
class RunBuilder {
 public:
  RunBuilder(const DrawText& text, const FACE_GLYPH& first, PdfFont& font)
      : m_first(first), m_font(font) {
    const FACE_FILE& file = *first.file;
    const AFFINE_2D& m = text.matrix;
    const double size = first.size;
    m_em = {m.a * size, m.b * size, m.c * size, m.d * size, first.at.x, first.at.y};
    m_run.font = font.number();
    // The glyphs of a synthetic bold face grow to the right and upwards only.
    const double half = file.boldness / 2;
    const PNT_2D at = m_em.apply(half, half);
    m_run.matrix = {m_em.a, m_em.b, m_em.c + file.slant * m_em.a, m_em.d + file.slant * m_em.b,
                    at.x,   at.y};
    m_run.stroke = file.boldness * std::sqrt(std::fabs(m_em.a * m_em.d - m_em.b * m_em.c));
  }

  // Returns false if the glyph belongs to another run.
  bool add(const FACE_GLYPH& glyph) {
    if (glyph.file != m_first.file || glyph.size != m_first.size ||
        glyph.isRightToLeft != m_first.isRightToLeft) {
      return false;
    }
    const PNT_2D step = glyph.at - m_first.at;
    const double area = m_em.a * m_em.d - m_em.b * m_em.c;
    const double x = (m_em.d * step.x - m_em.c * step.y) / area;
    const double y = (m_em.a * step.y - m_em.b * step.x) / area;
    if (!(std::fabs(y) < kOnBaseline)) return false;
    const PdfFont::GLYPH& used = m_font.use(glyph.index, glyph.text);
    const bool differs = used.text != glyph.text;
    // Readers reverse what they find from right to left, but not all of them a replaced text: it
    // must be that of a single glyph.
    const bool isFirst = &glyph == &m_first;
    if (glyph.isRightToLeft && !isFirst && (differs || m_differs)) return false;
    moveTo(x * kUnitsPerEm);
    appendUnit(m_run.glyphs, used.code);
    m_pen += used.advance;
    m_text += glyph.text;
    m_differs = m_differs || differs;
    return true;
  }

  PDF_RUN finish() {
    m_run.glyphs += ">]";
    if (m_differs) m_run.replaced = m_text;
    return std::move(m_run);
  }

 private:
  void moveTo(double x) {
    const double correction = std::round(x - m_pen);
    if (correction != 0) {
      m_run.glyphs += '>';
      appendInteger(m_run.glyphs, -std::llround(correction));
      m_run.glyphs += '<';
    }
    m_pen += correction;
  }

  const FACE_GLYPH& m_first;
  PdfFont& m_font;
  AFFINE_2D m_em;
  PDF_RUN m_run{0, {}, 0, "[<"};
  double m_pen = 0;  // where the reader sets the next glyph
  std::u16string m_text;
  bool m_differs = false;
};

}  // namespace

std::vector<PDF_RUN> layOutRuns(const DrawText& text, const OutlineFont& font, PdfFonts& fonts) {
  const std::vector<FACE_GLYPH> glyphs = font.glyphs(text);
  const bool embeds = std::all_of(glyphs.begin(), glyphs.end(),
                                  [&](const FACE_GLYPH& g) { return fonts.find(*g.file); });
  std::vector<PDF_RUN> runs;
  if (!embeds) return runs;
  for (std::size_t i = 0; i < glyphs.size();) {
    RunBuilder run(text, glyphs[i], *fonts.find(*glyphs[i].file));
    // The first glyph always belongs to its run.
    const std::size_t first = i++;
    run.add(glyphs[first]);
    while (i < glyphs.size() && run.add(glyphs[i])) ++i;
    runs.push_back(run.finish());
  }
  return runs;
}

}  // namespace vek0::paint
