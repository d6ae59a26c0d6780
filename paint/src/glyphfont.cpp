#include "vek0paint/glyphfont.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "vek0core/hatch/boundary.h"
#include "vek0core/hatch/triangulate.h"

namespace vek0::paint {
namespace {

constexpr std::string_view kMark = "V0GLYPH1";
constexpr std::size_t kMostOutlineSteps = 10'000, kMostGlyphs = 100'000;
constexpr double kMostTriangles = 100'000;
constexpr std::uint8_t kMove = 0;
constexpr int kPointsOf[] = {1, 1, 2, 3};  // by step

class Reader {
 public:
  explicit Reader(std::string_view bytes) : m_rest(bytes) {}

  template <class Value>
  Value take() {
    Value value{};
    m_isGood = m_isGood && m_rest.size() >= sizeof value;
    if (!m_isGood) return value;
    std::memcpy(&value, m_rest.data(), sizeof value);
    m_rest.remove_prefix(sizeof value);
    return value;
  }
  bool isGood() const { return m_isGood; }

 private:
  std::string_view m_rest;
  bool m_isGood = true;
};

// The next character of UTF-16 text; unpaired surrogates are themselves.
char32_t nextCharacter(std::u16string_view text, std::size_t& i) {
  const char32_t first = text[i++];
  const bool isPair =
      first >= 0xD800 && first < 0xDC00 && i < text.size() && text[i] >= 0xDC00 && text[i] < 0xE000;
  if (!isPair) return first;
  return 0x10000 + ((first - 0xD800) << 10) + (text[i++] - 0xDC00);
}

// Turns outlines into rings of chords.
class Flattener final : public IOutlineSink {
 public:
  explicit Flattener(double deviation) : m_deviation(deviation) {}

  void move(const PNT_2D& to) override {
    m_rings.emplace_back();
    line(to);
  }
  void line(const PNT_2D& to) override {
    m_rings.back().emplace_back(to.x, to.y, 0);
    m_at = to;
  }
  void quad(const PNT_2D& from, const PNT_2D& control, const PNT_2D& to) override {
    // The distance of a parabola from its chord is a quarter of the second difference.
    const PNT_2D bend = from + to - control - control;
    const int count = chordsFor(std::hypot(bend.x, bend.y) / 4);
    for (int i = 1; i <= count; ++i) {
      const double t = static_cast<double>(i) / count, s = 1 - t;
      line({s * s * from.x + 2 * s * t * control.x + t * t * to.x,
            s * s * from.y + 2 * s * t * control.y + t * t * to.y});
    }
  }
  void cubic(const PNT_2D& c1, const PNT_2D& c2, const PNT_2D& to) override {
    const PNT_2D from = m_at, first = from + c2 - c1 - c1, second = c1 + to - c2 - c2;
    const double bend = std::max(std::hypot(first.x, first.y), std::hypot(second.x, second.y));
    const int count = chordsFor(0.75 * bend);
    for (int i = 1; i <= count; ++i) {
      const double t = static_cast<double>(i) / count, s = 1 - t;
      const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
      line({a * from.x + b * c1.x + c * c2.x + d * to.x,
            a * from.y + b * c1.y + c * c2.y + d * to.y});
    }
  }
  const std::vector<std::vector<PNT_3D>>& rings() const { return m_rings; }

 private:
  // Halving a chord divides its deviation by four.
  int chordsFor(double deviation) const {
    constexpr double most = 64;
    return static_cast<int>(std::clamp(std::ceil(std::sqrt(deviation / m_deviation)), 1.0, most));
  }

  const double m_deviation;
  PNT_2D m_at{0, 0};
  std::vector<std::vector<PNT_3D>> m_rings;
};

}  // namespace

bool GlyphTable::load(std::string_view table) {
  m_glyphs.clear();
  m_index.clear();
  if (!table.starts_with(kMark)) return false;
  Reader reader(table.substr(kMark.size()));
  m_descent = reader.take<float>();
  const auto count = std::min<std::size_t>(reader.take<std::uint32_t>(), kMostGlyphs);
  for (std::size_t i = 0; i < count && reader.isGood(); ++i) {
    const auto character = static_cast<char32_t>(reader.take<std::uint32_t>());
    Glyph glyph{reader.take<float>(), {}, {}};
    const auto steps = std::min<std::size_t>(reader.take<std::uint32_t>(), kMostOutlineSteps);
    std::size_t points = 0;
    for (std::size_t k = 0; k < steps && reader.isGood(); ++k) {
      glyph.steps.push_back(std::min<std::uint8_t>(reader.take<std::uint8_t>(), 3));
      // Contours begin with a move, so that no step lacks a start.
      if (k == 0) glyph.steps[0] = kMove;
      points += static_cast<std::size_t>(kPointsOf[glyph.steps.back()]);
    }
    for (std::size_t k = 0; k < 2 * points && reader.isGood(); ++k)
      glyph.points.push_back(reader.take<float>());
    m_index.emplace(character, static_cast<Index>(m_glyphs.size()));
    m_glyphs.push_back(std::move(glyph));
  }
  if (reader.isGood()) return true;
  m_glyphs.clear();
  m_index.clear();
  return false;
}

GlyphTable::Index GlyphTable::find(char32_t character) const {
  const auto at = m_index.find(character);
  return at != m_index.end() ? at->second : kNone;
}

bool GlyphTable::covers(const zim::WString& text) const {
  for (std::size_t i = 0; i < text.view().size();)
    if (find(nextCharacter(text.view(), i)) == kNone) return false;
  return true;
}

bool GlyphTable::place(const zim::WString& text, std::vector<Placed>& placed) const {
  const std::size_t before = placed.size();
  double at = 0;
  for (std::size_t i = 0; i < text.view().size();) {
    const Index glyph = find(nextCharacter(text.view(), i));
    if (glyph == kNone) {
      placed.resize(before);
      return false;
    }
    placed.push_back({glyph, at});
    at += m_glyphs[glyph].advance;
  }
  return true;
}

double GlyphTable::widthOf(const zim::WString& text) const {
  double width = 0;
  for (std::size_t i = 0; i < text.view().size();) {
    const std::size_t from = i;
    const Index glyph = find(nextCharacter(text.view(), i));
    const zim::WString character(text.view().substr(from, i - from));
    width += glyph != kNone ? m_glyphs[glyph].advance
                            : defaultFontMetrics().getStringWidth(character, false, false, false);
  }
  return width;
}

void GlyphTable::trace(const Glyph& glyph, const AFFINE_2D& map, IOutlineSink& sink) {
  const float* p = glyph.points.data();
  const auto next = [&] {
    const PNT_2D mapped = map.apply(p[0], p[1]);
    p += 2;
    return mapped;
  };
  PNT_2D at(0, 0);
  for (const std::uint8_t step : glyph.steps) {
    const PNT_2D first = next();
    const PNT_2D second = kPointsOf[step] > 1 ? next() : first;
    const PNT_2D last = kPointsOf[step] > 2 ? next() : second;
    if (step == 0) sink.move(last);
    if (step == 1) sink.line(last);
    if (step == 2) sink.quad(at, first, last);
    if (step == 3) sink.cubic(first, second, last);
    at = last;
  }
}

void GlyphTable::outline(const DrawText& text, IOutlineSink& sink) const {
  double x = 0;
  for (std::size_t i = 0; i < text.string->view().size();) {
    const std::size_t from = i;
    const Index found = find(nextCharacter(text.string->view(), i));
    AFFINE_2D map = text.matrix;
    const PNT_2D origin = map.apply(x, 0);
    map.e = origin.x;
    map.f = origin.y;
    if (found != kNone) trace(m_glyphs[found], map, sink);
    const zim::WString character(text.string->view().substr(from, i - from));
    x += widthOf(character);
  }
}

const std::vector<GlyphTable::Triangle>& GlyphTable::triangles(Index index, int detail) const {
  const Glyph& glyph = m_glyphs[index];
  std::vector<Triangle>& triangles = glyph.triangles[detail];
  if (glyph.isCovered[detail]) return triangles;
  Flattener flattener(kDeviations[detail]);
  trace(glyph, {}, flattener);
  std::vector<HatchFace> faces;
  fillSolid(joinHatchRings(flattener.rings()), kMostTriangles, faces, InsideRule::NonZero);
  const auto add = [&](const PNT_3D& a, const PNT_3D& b, const PNT_3D& c) {
    const auto f = [](double value) { return static_cast<float>(value); };
    triangles.push_back({f(a.x), f(a.y), f(b.x), f(b.y), f(c.x), f(c.y)});
  };
  for (const HatchFace& face : faces) {
    add(face.p[0], face.p[1], face.p[2]);
    if (face.p[3] != face.p[2]) add(face.p[0], face.p[2], face.p[3]);
  }
  glyph.isCovered[detail] = true;
  return triangles;
}

// --- Fonts

class GlyphFonts::Font final : public OutlineFont {
 public:
  Font(const zim::WString& name, const GlyphTable& table) : OutlineFont(name), m_table(table) {}

  double getDescent() const override {
    return m_table.isPlain ? ICADFont::getDescent() : m_table.descent();
  }
  double getStringWidth(const zim::WString& text, bool horiz, bool bold,
                        bool italic) const override {
    return m_table.isPlain || m_table.empty() ? ICADFont::getStringWidth(text, horiz, bold, italic)
                                              : m_table.widthOf(text);
  }
  bool hasOutlines(const zim::WString& text) const override { return m_table.covers(text); }
  void outline(const DrawText& text, IOutlineSink& sink) const override {
    m_table.outline(text, sink);
  }
  std::string family() const override { return "osifont"; }
  double unitsPerEm() const override {
    constexpr double emPerCapital = 2048.0 / 1510;  // of osifont
    return emPerCapital;
  }

 private:
  const GlyphTable& m_table;
};

GlyphFonts::GlyphFonts() { CFontTable::getInstance().addPlainDefault(); }

GlyphFonts::~GlyphFonts() = default;

void GlyphFonts::adopt(const CData& data) {
  for (CData::CStyleIterator it(data, true); CStyle* style = *it; ++it)
    if (style->getFont()) style->setFont(font(style->getFont()->getName()));
}

const GlyphFonts::Font* GlyphFonts::font(const zim::WString& name) {
  std::unique_ptr<Font>& known = m_fonts[name];
  if (!known) known = std::make_unique<Font>(name, m_table);
  return known.get();
}

const OutlineFont* GlyphFonts::drawing(const ICADFont* of) {
  return font(of ? of->getName() : zim::WString());
}

}  // namespace vek0::paint
