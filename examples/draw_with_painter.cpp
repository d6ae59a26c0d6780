// Draws a drawing with text characters. usage: draw_with_painter DRAWING.dxf
#include <vek0core/vek0core.h>
#include <vek0draw/draw.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr long kColumns = 78, kRows = 36;

// Receives device coordinates from drawData; here, a pixel is a character.
class CharacterPainter final : public IPainter {
 public:
  void begin(const DrawItem&) override {}
  void stroke(const PNT_2D* points, std::size_t count, bool closed) override {
    for (std::size_t i = 0; i + 1 < count; ++i) line(points[i], points[i + 1]);
    if (closed) line(points[count - 1], points[0]);
  }
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings, FillRule) override {
    std::size_t first = 0;
    for (std::size_t ring = 0; ring < rings; first = ends[ring++])
      if (ends[ring] > first) stroke(points + first, ends[ring] - first, true);
  }
  void dot(const PNT_2D& at) override { set(at.x, at.y, '.'); }
  void text(const DrawText& text) override { set(text.matrix.e, text.matrix.f, 'T'); }

  void print() const {
    for (const std::string& row : m_rows) std::puts(row.c_str());
  }

 private:
  void line(const PNT_2D& from, const PNT_2D& to) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const double steps = std::clamp(std::max(std::abs(dx), std::abs(dy)), 1.0, 1000.0);
    for (double i = 0; i <= steps; ++i) set(from.x + dx * i / steps, from.y + dy * i / steps, '*');
  }
  void set(double x, double y, char mark) {
    if (x >= 0 && y >= 0 && x < kColumns && y < kRows)
      m_rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = mark;
  }

  std::vector<std::string> m_rows = std::vector<std::string>(kRows, std::string(kColumns, ' '));
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const COpenedDrawing opened = openDrawing(argv[1]);
  if (!opened) {
    std::fprintf(stderr, "%s: %s\n", argv[1], opened.message().toUtf8().c_str());
    return 1;
  }
  const CPOProjector plan;
  CWndVpt window(2);  // characters are twice as high as wide
  window.resize(kColumns, kRows);
  window.set(drawnExtents(*opened.drawing, plan));
  CharacterPainter painter;
  drawData(*opened.drawing, plan, window, painter);
  painter.print();
  return 0;
}
