#include "vek0paint/linerasterizer.h"

#include <algorithm>
#include <cmath>
#include <future>
#include <system_error>

namespace vek0::paint {
namespace {

constexpr std::uint32_t kFull = 256;  // coverage of a fully covered pixel
constexpr std::uint8_t kOpaque = 255;
constexpr std::uint32_t kLanes = 0x00FF00FF;     // two parts of a color, 16 bits each
constexpr std::uint32_t kRounding = 0x00800080;  // halves of both

// A band of an image 1600 pixels wide takes 200 KB, and its mask 100 KB. A million random lines
// over the whole image take two thirds of the time that they take when drawn one by one.
constexpr long kBandRows = 32;

// Points to collect: some megabytes. Fewer are not worth a second thread.
constexpr std::size_t kMostPoints = std::size_t{1} << 18, kWorthThread = 1 << 14;

// The pixels from 0 to count - 1 whose centers are in [low, high]; false if there are none.
bool inside(double low, double high, long count, long& first, long& last) {
  const auto end = static_cast<double>(count);
  if (!(high >= 0.5 && low <= end - 0.5 && low <= high)) return false;
  first = low <= 0.5 ? 0 : static_cast<long>(low + 0.5);
  if (static_cast<double>(first) + 0.5 < low) ++first;
  last = high >= end - 0.5 ? count - 1 : static_cast<long>(high - 0.5);
  return first <= last;
}

double reachOf(double width) { return std::max(width, 1.0) / 2 + 0.5; }

}  // namespace

// Draws strokes within some rows of the image.
class LineRasterizer::Band {
 public:
  explicit Band(const LineRasterizer& all)
      : m_all(all), m_mask(static_cast<std::size_t>(all.m_width * kBandRows)) {}

  void draw(long firstRow) {
    m_first = firstRow;
    m_end = std::min(firstRow + kBandRows, m_all.m_height);
    for (const Stroke& each : m_all.m_strokes)
      if (each.firstRow < m_end && each.endRow > m_first) draw(each);
  }

 private:
  // Data common to all rows of a segment. A row's pixels are within `half` of the line, which
  // advances by `slope` per row, and between `low` and `high`.
  struct Segment {
    PNT_2D from, way;  // start and direction
    double length, slope, half, low, high;
  };
  struct Place {
    std::uint32_t* pixel;
    std::uint16_t* mask;
  };

  void draw(const Stroke& stroke);
  template <class Cover>
  void forEachPixel(const PNT_2D& from, const PNT_2D& to, const Cover& cover);
  template <class Cover>
  void row(long y, const Segment& segment, const Cover& cover);
  std::uint32_t* rowOf(long y) const {
    return reinterpret_cast<std::uint32_t*>(m_all.m_pixels + m_all.m_stride * y);
  }
  void mix(std::uint32_t& pixel, std::uint32_t coverage) const;
  void blend();

  const LineRasterizer& m_all;
  long m_first = 0, m_end = 0;
  Pen m_pen{};
  std::vector<std::uint16_t> m_mask;  // coverage by the current chain, per pixel
  std::vector<Place> m_touched;       // pixels where it is not 0
};

// Both lanes at once: old and new values add up to at most 255 * 256.
void LineRasterizer::Band::mix(std::uint32_t& pixel, std::uint32_t coverage) const {
  const std::uint32_t left = kFull - coverage;
  const std::uint32_t redBlue = (pixel & kLanes) * left + m_pen.redBlue * coverage + kRounding;
  const std::uint32_t alphaGreen =
      (pixel >> 8 & kLanes) * left + m_pen.alphaGreen * coverage + kRounding;
  pixel = (redBlue >> 8 & kLanes) | (alphaGreen & ~kLanes);
}

// A single segment covers each pixel once and needs no mask.
void LineRasterizer::Band::draw(const Stroke& stroke) {
  const PNT_2D* const points = m_all.m_points.data() + stroke.first;
  const std::size_t count = stroke.count;
  m_pen = m_all.m_pens[stroke.pen];
  if (count <= 2) {
    const auto paint = [&](long x, long y, std::uint32_t coverage) { mix(rowOf(y)[x], coverage); };
    return forEachPixel(points[0], points[count - 1], paint);
  }
  // Adjacent segments share pixels: the nearer one determines the coverage.
  const auto keep = [&](long x, long y, std::uint32_t coverage) {
    std::uint16_t& mask = m_mask[static_cast<std::size_t>(m_all.m_width * (y - m_first) + x)];
    if (coverage <= mask) return;
    if (mask == 0) m_touched.push_back({rowOf(y) + x, &mask});
    mask = static_cast<std::uint16_t>(coverage);
  };
  for (std::size_t i = 1; i < count; ++i) forEachPixel(points[i - 1], points[i], keep);
  if (stroke.isClosed) forEachPixel(points[count - 1], points[0], keep);
  blend();
}

template <class Cover>
void LineRasterizer::Band::forEachPixel(const PNT_2D& from, const PNT_2D& to, const Cover& cover) {
  const double reach = m_pen.reach;
  long first, last;
  if (!inside(std::min(from.y, to.y) - reach, std::max(from.y, to.y) + reach, m_all.m_height, first,
              last))
    return;
  first = std::max(first, m_first);
  last = std::min(last, m_end - 1);
  if (first > last) return;
  Segment s = {from, {1, 0}, std::hypot(to.x - from.x, to.y - from.y), 0, reach, 0, 0};
  if (s.length > 0) s.way.set((to.x - from.x) / s.length, (to.y - from.y) / s.length);
  if (s.way.y != 0) {
    s.slope = s.way.x / s.way.y;
    // Along a row, the band of the line has a constant width.
    s.half = std::fabs(reach / s.way.y);
  }
  s.low = std::min(from.x, to.x) - reach;
  s.high = std::max(from.x, to.x) + reach;
  for (long y = first; y <= last; ++y) row(y, s, cover);
}

// Visits the pixels of a row whose centers are within reach of the segment. Beyond an end, the
// distance to that end is used.
template <class Cover>
void LineRasterizer::Band::row(long y, const Segment& s, const Cover& cover) {
  const double dy = static_cast<double>(y) + 0.5 - s.from.y;
  double low = s.low, high = s.high;
  if (s.way.y != 0) {
    const double middle = s.from.x + dy * s.slope;
    low = std::max(low, middle - s.half);
    high = std::min(high, middle + s.half);
  }
  long first, last;
  if (!inside(low, high, m_all.m_width, first, last)) return;
  // Both coordinates advance linearly, so the loop needs no multiplication.
  const double dx = static_cast<double>(first) + 0.5 - s.from.x;
  double along = dx * s.way.x + dy * s.way.y, across = dy * s.way.x - dx * s.way.y;
  for (long x = first; x <= last; ++x, along += s.way.x, across -= s.way.y) {
    double distance = std::fabs(across);
    if (along < 0 || along > s.length) {
      const double beyond = along < 0 ? along : along - s.length;
      distance = std::sqrt(across * across + beyond * beyond);
    }
    const double share = std::min(m_pen.reach - distance, 1.0);
    if (share > 0) cover(x, y, static_cast<std::uint32_t>(share * m_pen.strength + 0.5));
  }
}

void LineRasterizer::Band::blend() {
  for (const Place& place : m_touched) {
    mix(*place.pixel, *place.mask);
    // The mask is cleared along the way, as it is much larger than a stroke.
    *place.mask = 0;
  }
  m_touched.clear();
}

LineRasterizer::LineRasterizer(unsigned char* pixels, long width, long height,
                               std::ptrdiff_t stride)
    : m_pixels(pixels), m_width(width), m_height(height), m_stride(stride) {
  setPen({0, 0, 0}, kOpaque, 1);
}

void LineRasterizer::setPen(const RGB_COLOR& color, std::uint8_t alpha, double lineWidth) {
  m_full = static_cast<double>(kFull) * alpha / kOpaque;
  // Lines thinner than a pixel are drawn one pixel wide with reduced strength.
  m_pen = {reachOf(lineWidth), m_full * std::min(lineWidth, 1.0),
           std::uint32_t{color.r} << 16 | color.b, std::uint32_t{kOpaque} << 16 | color.g};
}

void LineRasterizer::stroke(const PNT_2D* points, std::size_t count, bool closed) {
  add(points, count, closed, m_pen);
}

// A stroke of zero length is a disc with the diameter of the line width.
void LineRasterizer::disc(const PNT_2D& center, double diameter) {
  add(&center, 1, false, {reachOf(diameter), m_full, m_pen.redBlue, m_pen.alphaGreen});
}

void LineRasterizer::add(const PNT_2D* points, std::size_t count, bool closed, const Pen& pen) {
  const auto [lowest, highest] = std::minmax_element(
      points, points + count, [](const PNT_2D& a, const PNT_2D& b) { return a.y < b.y; });
  long first, last;
  if (!inside(lowest->y - pen.reach, highest->y + pen.reach, m_height, first, last)) return;
  if (m_points.size() + count > kMostPoints) flush();
  if (m_pens.empty() || m_pens.back() != pen) m_pens.push_back(pen);
  m_strokes.push_back({m_points.size(), count, m_pens.size() - 1, closed, first, last + 1});
  m_points.insert(m_points.end(), points, points + count);
}

void LineRasterizer::drawBands(std::atomic<long>& next) const {
  Band band(*this);
  for (long row; (row = next.fetch_add(kBandRows)) < m_height;) band.draw(row);
}

void LineRasterizer::flush() {
  std::atomic<long> next{0};
  std::future<void> other;
  if (m_points.size() >= kWorthThread) {
    try {
      other = std::async(std::launch::async, [&] { drawBands(next); });
    } catch (const std::system_error&) {
      // No thread can be started: this one draws all bands.
    }
  }
  drawBands(next);
  if (other.valid()) other.get();
  m_pens.clear();
  m_points.clear();
  m_strokes.clear();
}

}  // namespace vek0::paint
