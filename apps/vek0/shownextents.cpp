#include "shownextents.h"

#include <algorithm>
#include <limits>

#include "vek0core/tables/font.h"

namespace vek0::tool {
namespace {

// Fine enough for chords not to be told from their curves where a sheet is fitted.
constexpr long kDeviceSide = 2001;
// Of the device's side: what is smaller is looked at again, from nearer by. Hidden things far
// off would otherwise leave it with few chords.
constexpr double kFar = 0.25;
constexpr int kMostLooks = 6;

// Unites what it is given. Arcs come as strokes, which know where an arc bulges to.
class MeasuringPainter final : public IPainter {
 public:
  MeasuringPainter() { m_bounds.initRegion(); }

  const RECT_2D& bounds() const { return m_bounds; }

  void begin(const DrawItem& /*item*/) override {}
  void stroke(const PNT_2D* points, std::size_t count, bool /*closed*/) override {
    for (std::size_t i = 0; i < count; ++i) m_bounds.updateRegion(points[i]);
  }
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
            FillRule /*rule*/) override {
    stroke(points, rings > 0 ? ends[rings - 1] : 0, true);
  }
  void dot(const PNT_2D& at) override { m_bounds.updateRegion(at); }
  void disc(const PNT_2D& center, double /*diameter*/) override { dot(center); }
  void text(const DrawText& text) override {
    const ICADFont& font = text.font ? *text.font : defaultFontMetrics();
    const double width = font.getStringWidth(*text.string, true, text.bold, text.italic);
    for (const double x : {0.0, width}) {
      m_bounds.updateRegion(text.matrix.apply(x, -font.getDescent()));
      m_bounds.updateRegion(text.matrix.apply(x, font.getHeightUnit()));
    }
  }

 private:
  RECT_2D m_bounds;
};

double longerSide(const RECT_2D& r) { return std::max(r.max.x - r.min.x, r.max.y - r.min.y); }

}  // namespace

RECT_2D shownExtents(const CData& data, const IProjector& projector, const DRAW_OPTIONS& options) {
  DRAW_OPTIONS plain = options;
  plain.endless = false;
  plain.finestPattern = std::numeric_limits<double>::infinity();  // dashes lie on their line
  RECT_2D extents = drawnExtents(data, projector, options), around = extents;
  for (int look = 0; look < kMostLooks && around.validRegion(); ++look) {
    CWndVpt window(1);
    window.resize(kDeviceSide, kDeviceSide);
    window.set(around);
    MeasuringPainter painter;
    if (drawData(data, projector, window, painter, plain).cut) break;
    const RECT_2D& seen = painter.bounds();
    if (!seen.validRegion()) return seen;
    // The device's y axis points the other way.
    extents.set(window.getWorldX(seen.min.x), window.getWorldY(seen.max.y),
                window.getWorldX(seen.max.x), window.getWorldY(seen.min.y));
    if (longerSide(seen) > kFar * kDeviceSide) break;
    around = extents;
    around.inflate(window.GetPixelSize(), window.GetPixelSize());
  }
  return extents;
}

}  // namespace vek0::tool
