#include "vek0paint/sheetpainter.h"

#include <cmath>

namespace vek0::paint {
namespace {

// Converts contours to chords, for glyphs too large for the number range of the painters.
class ChordSink final : public IOutlineSink {
 public:
  void move(const PNT_2D& to) override {
    endRing();
    line(to);
  }
  void line(const PNT_2D& to) override { points.push_back(to); }
  void quad(const PNT_2D& from, const PNT_2D& control, const PNT_2D& to) override {
    for (int i = 1; i <= kChords; ++i) {
      const double t = double{1} * i / kChords, s = 1 - t;
      points.emplace_back(s * s * from.x + 2 * s * t * control.x + t * t * to.x,
                          s * s * from.y + 2 * s * t * control.y + t * t * to.y);
    }
  }
  void cubic(const PNT_2D& c1, const PNT_2D& c2, const PNT_2D& to) override {
    const PNT_2D from = points.back();
    for (int i = 1; i <= kChords; ++i) {
      const double t = double{1} * i / kChords, s = 1 - t;
      const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
      points.emplace_back(a * from.x + b * c1.x + c * c2.x + d * to.x,
                          a * from.y + b * c1.y + c * c2.y + d * to.y);
    }
  }
  void endRing() {
    const std::size_t start = ends.empty() ? 0 : ends.back();
    if (points.size() > start) ends.push_back(points.size());
  }

  std::vector<PNT_2D> points;
  std::vector<std::size_t> ends;

 private:
  static constexpr int kChords = 64;
};

// Bounds of a text, from below its descenders to above accents on capitals.
RECT_2D boundsOf(const DrawText& text, const ICADFont& font) {
  const double width = font.getStringWidth(*text.string, true, text.bold, text.italic);
  const double unit = font.getHeightUnit(), slack = 0.5 * unit;
  RECT_2D bounds;
  bounds.initRegion();
  for (const double x : {-slack, width + slack}) {
    bounds.updateRegion(text.matrix.apply(x, -font.getDescent() - slack));
    bounds.updateRegion(text.matrix.apply(x, unit + slack));
  }
  return bounds;
}

// Adapts the text to another font with the same height and width.
DrawText inMeasuresOf(const DrawText& text, const OutlineFont& font, const ICADFont& was) {
  const auto width = [&](const ICADFont& of) {
    return of.getStringWidth(*text.string, true, text.bold, text.italic);
  };
  const double own = width(font);
  const double sx = own > 0 ? width(was) / own : 1;
  const double sy = was.getHeightUnit() / font.getHeightUnit();
  DrawText result = text;
  result.font = &font;
  result.matrix.a *= sx;
  result.matrix.b *= sx;
  result.matrix.c *= sy;
  result.matrix.d *= sy;
  return result;
}

}  // namespace

void SheetPainter::text(const DrawText& text) {
  const OutlineFont* font = m_fonts.drawing(text.font);
  if (!font || text.string->empty()) return;
  const ICADFont& was = text.font ? *text.font : defaultFontMetrics();
  const RECT_2D bounds = boundsOf(text, was);
  if (!isFinite(bounds) || !bounds.intersect(box())) return;
  const DrawText own = font == &was ? text : inMeasuresOf(text, *font, was);
  if (box().inside(bounds)) {
    plainText(own, *font, bounds);
  } else {
    fillOutlines(own, *font);
  }
}

void SheetPainter::fillOutlines(const DrawText& text, const OutlineFont& font) {
  ChordSink sink;
  font.outline(text, sink);
  sink.endRing();
  fill(sink.points.data(), sink.ends.data(), sink.ends.size(), FillRule::NonZero);
}

}  // namespace vek0::paint
