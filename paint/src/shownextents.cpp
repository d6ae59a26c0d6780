#include "vek0paint/shownextents.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "vek0core/tables/font.h"
#include "vek0paint/clippingpainter.h"

namespace vek0::paint {
namespace {

// Fine enough that chords are indistinguishable from curves when fitting a sheet.
constexpr long kDeviceSide = 2001;
// Fraction of the device's side: smaller content is measured again at a larger scale. Otherwise
// distant hidden content would leave it with few chords.
constexpr double kFar = 0.25;
constexpr int kMostLooks = 6;

// Computes the union of everything drawn. Arcs arrive as strokes, which include their extremes.
// Clips are approximated by their boxes.
class MeasuringPainter final : public IPainter {
 public:
  MeasuringPainter() { m_bounds.initRegion(); }

  const RECT_2D& bounds() const { return m_bounds; }

  void begin(const DrawItem& /*item*/) override {}
  void stroke(const PNT_2D* points, std::size_t count, bool closed) override {
    if (m_clips.empty()) return grow(points, count);
    for (std::size_t i = 0; i + (closed ? 0 : 1) < count; ++i) {
      PNT_2D ends[] = {points[i], points[(i + 1) % count]};
      if (clipSegment(m_clips.back(), ends[0], ends[1])) grow(ends, 2);
    }
  }
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
            FillRule /*rule*/) override {
    const std::size_t count = rings > 0 ? ends[rings - 1] : 0;
    if (m_clips.empty()) return grow(points, count);
    std::vector<PNT_2D> inside;
    for (std::size_t i = 0, start = 0; i < rings; start = ends[i++])
      clipRing(m_clips.back(), points + start, ends[i] - start, inside);
    grow(inside.data(), inside.size());
  }
  void dot(const PNT_2D& at) override {
    if (m_clips.empty() || m_clips.back().inside(at)) m_bounds.updateRegion(at);
  }
  void disc(const PNT_2D& center, double /*diameter*/) override { dot(center); }
  void text(const DrawText& text) override {
    const ICADFont& font = text.font ? *text.font : defaultFontMetrics();
    const double width = font.getStringWidth(*text.string, true, text.bold, text.italic);
    const double low = -font.getDescent(), high = font.getHeightUnit();
    const PNT_2D corners[] = {text.matrix.apply(0, low), text.matrix.apply(width, low),
                              text.matrix.apply(width, high), text.matrix.apply(0, high)};
    const std::size_t count = 4;
    fill(corners, &count, 1, FillRule::NonZero);
  }
  bool skips(const RECT_2D& box) const override { return m_bounds.inside(box); }
  bool pushClip(const PNT_2D* points, std::size_t count) override {
    RECT_2D box;
    box.set(points, static_cast<int>(count));
    if (!m_clips.empty() && !RECT_2D(box).intersect(m_clips.back(), box)) box.initRegion();
    m_clips.push_back(box);
    return true;
  }
  void popClip() override { m_clips.pop_back(); }

 private:
  void grow(const PNT_2D* points, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) m_bounds.updateRegion(points[i]);
  }

  RECT_2D m_bounds;
  std::vector<RECT_2D> m_clips;  // each within the one before
};

double longerSide(const RECT_2D& r) { return std::max(r.max.x - r.min.x, r.max.y - r.min.y); }

}  // namespace

RECT_2D shownExtents(const CData& data, const IProjector& projector, const DRAW_OPTIONS& options) {
  DRAW_OPTIONS plain = options;
  plain.endless = false;
  plain.effort = options.effort / 4;  // most of the picture's time is for the picture
  plain.pixelsPerPoint = 0;
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

}  // namespace vek0::paint
