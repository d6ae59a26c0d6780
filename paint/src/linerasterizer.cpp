#include "vek0paint/linerasterizer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
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

// Pixels whose coverage is computed together, without branches, so that compilers can use vector
// instructions.
constexpr int kChunk = 4;

// Vectors of the pixels of a chunk: numbers, colors, and half of the parts of colors.
using Floats = float __attribute__((vector_size(4 * kChunk)));
using Integers = std::int32_t __attribute__((vector_size(4 * kChunk)));
using Words = std::uint32_t __attribute__((vector_size(4 * kChunk)));
using Parts = std::uint16_t __attribute__((vector_size(4 * kChunk)));

constexpr Floats kSteps = {0, 1, 2, 3};

Floats greater(const Floats& a, const Floats& b) { return a > b ? a : b; }
Floats lesser(const Floats& a, const Floats& b) { return a < b ? a : b; }
Floats magnitude(const Floats& a) { return (Floats)((Words)a & 0x7FFFFFFFU); }
Floats squareRoot(Floats a) {
  for (int i = 0; i < kChunk; ++i) a[i] = std::sqrt(a[i]);
  return a;
}

double lengthOf(const PNT_2D& step) { return std::sqrt(step.x * step.x + step.y * step.y); }

double reachOf(double width) { return std::max(width, 1.0) / 2 + 0.5; }

}  // namespace

// Draws strokes within some rows of the image.
class LineRasterizer::Band {
 public:
  Band(const LineRasterizer& all, const Batch& batch)
      : m_all(all),
        m_batch(batch),
        m_width(all.m_width),
        m_mask(static_cast<std::size_t>(all.m_width * kBandRows)) {}

  void draw(long number) {
    m_first = number * kBandRows;
    m_end = std::min(m_first + kBandRows, m_all.m_height);
    for (const std::uint32_t index : m_batch.bands[static_cast<std::size_t>(number)])
      draw(m_batch.strokes[index]);
  }

 private:
  // Data common to all rows of a segment. A row's pixels are within `half` of the line, which
  // advances by `slope` per row, and between `low` and `high`.
  struct Segment {
    PNT_2D from, way;  // start and direction
    double slope, half, low, high;
  };
  struct Place {
    std::uint32_t* pixel;
    std::uint16_t* mask;
  };
  enum class Past { None, Some, All };  // pixels beyond the ends; all of them, and out of reach
  struct Whole;
  class Dashed;

  void draw(const Stroke& stroke);
  void drawDashes(const PNT_2D* points, std::size_t count);
  template <class Cover>
  void drawSegment(const PNT_2D& from, const PNT_2D& to, const Cover& cover);
  template <class Beyond, class Cover>
  void forEachRow(const PNT_2D& from, const PNT_2D& to, Beyond beyond, const Cover& cover);
  template <class Beyond, class Cover>
  void row(long y, const Segment& segment, Beyond& beyond, const Cover& cover);
  std::uint32_t* rowOf(long y) const {
    return reinterpret_cast<std::uint32_t*>(m_all.m_pixels + m_all.m_stride * y);
  }
  void mix(std::uint32_t& pixel, std::uint32_t coverage) const;
  [[gnu::always_inline]] inline void mixChunk(std::uint32_t* pixels, const Words& coverage) const;
  [[gnu::always_inline]] inline void paint(long x, std::uint32_t* pixels,
                                           const Words& coverage) const;
  void blend();

  const LineRasterizer& m_all;
  const Batch& m_batch;
  long m_width;
  long m_first = 0, m_end = 0;
  Pen m_pen{};
  std::vector<std::uint16_t> m_mask;  // coverage by the current chain, per pixel
  std::vector<Place> m_touched;       // pixels where it is not 0
};

// How far the pixels of a chunk are beyond the ends of a segment. `along` is where the first one
// is, from the start, and the others follow in steps of `way`.
struct LineRasterizer::Band::Whole {
  explicit Whole(double segmentLength) : length(segmentLength) {}

  Past operator()(double along, double way, Floats& past) const {
    const double end = along + (kChunk - 1) * way;
    if (std::min(along, end) >= 0 && std::max(along, end) <= length) return Past::None;
    const Floats steps = kSteps * static_cast<float>(way);
    past = greater(
        greater(static_cast<float>(-along) - steps, static_cast<float>(along - length) + steps),
        Floats{});
    return Past::Some;
  }

  double length;
};

// The same for the nearest of the dashes, which are ordered. Neighboring pixels have the same ones.
class LineRasterizer::Band::Dashed {
 public:
  Dashed(const PNT_2D* dashes, std::size_t count, double reach)
      : m_dashes(dashes), m_count(count), m_reach(reach) {}

  Past operator()(double along, double way, Floats& past) {
    const double end = along + (kChunk - 1) * way;
    const double low = std::min(along, end) - m_reach, high = std::max(along, end) + m_reach;
    while (m_next > 0 && m_dashes[m_next - 1].y >= low) --m_next;
    while (m_next < m_count && m_dashes[m_next].y < low) ++m_next;
    if (m_next == m_count || m_dashes[m_next].x > high) return Past::All;
    const Floats steps = kSteps * static_cast<float>(way);
    past = Floats{} + static_cast<float>(m_reach);
    for (std::size_t i = m_next; i < m_count && m_dashes[i].x <= high; ++i) {
      const Floats before = static_cast<float>(m_dashes[i].x - along) - steps;
      const Floats after = static_cast<float>(along - m_dashes[i].y) + steps;
      past = lesser(past, greater(greater(before, after), Floats{}));
    }
    return Past::Some;
  }

 private:
  const PNT_2D* m_dashes;  // begin and end of each
  std::size_t m_count;
  double m_reach;
  std::size_t m_next = 0;  // the first dash that is not before the last pixels
};

// Both lanes at once: old and new values add up to at most 255 * 256.
void LineRasterizer::Band::mix(std::uint32_t& pixel, std::uint32_t coverage) const {
  const std::uint32_t left = kFull - coverage;
  const std::uint32_t redBlue = (pixel & kLanes) * left + m_pen.redBlue * coverage + kRounding;
  const std::uint32_t alphaGreen =
      (pixel >> 8 & kLanes) * left + m_pen.alphaGreen * coverage + kRounding;
  pixel = (redBlue >> 8 & kLanes) | (alphaGreen & ~kLanes);
}

// The same for all pixels of a chunk; each half of their colors has eight parts of 16 bits.
void LineRasterizer::Band::mixChunk(std::uint32_t* pixels, const Words& coverage) const {
  constexpr std::uint16_t half = kRounding & 0xFF, upper = 0xFF00;
  Words old;
  std::memcpy(&old, pixels, sizeof old);
  const auto share = (Parts)(coverage | coverage << 16);
  const auto left = static_cast<std::uint16_t>(kFull) - share;
  const auto redBlue =
      (Parts)(old & kLanes) * left + (Parts)(Words{} + m_pen.redBlue) * share + half;
  const auto alphaGreen =
      (Parts)(old >> 8 & kLanes) * left + (Parts)(Words{} + m_pen.alphaGreen) * share + half;
  const auto mixed = (redBlue >> 8) | (alphaGreen & upper);
  std::memcpy(pixels, &mixed, sizeof mixed);
}

// Coverage of 0 changes nothing.
void LineRasterizer::Band::paint(long x, std::uint32_t* pixels, const Words& coverage) const {
  if (x + kChunk <= m_width) return mixChunk(pixels + x, coverage);
  for (long i = 0; x + i < m_width; ++i) mix(pixels[x + i], coverage[i]);
}

// A single segment covers each pixel once and needs no mask.
void LineRasterizer::Band::draw(const Stroke& stroke) {
  const PNT_2D* const points = m_batch.points.data() + stroke.first;
  const std::size_t count = stroke.count;
  m_pen = m_batch.pens[stroke.pen];
  if (stroke.form == Dashes) return drawDashes(points, count);
  if (count <= 2) {
    const auto cover = [&](long x, long, std::uint32_t* pixels, const Words& coverage) {
      paint(x, pixels, coverage);
    };
    return drawSegment(points[0], points[count - 1], cover);
  }
  // Adjacent segments share pixels: the nearer one determines the coverage.
  const auto keep = [&](long x, long y, std::uint32_t* pixels, const Words& coverage) {
    std::uint16_t* const masks = m_mask.data() + m_width * (y - m_first);
    const long end = std::min(x + kChunk, m_width);
    for (long i = x; i < end; ++i) {
      const std::uint32_t share = coverage[i - x];
      if (share <= masks[i]) continue;
      if (masks[i] == 0) m_touched.push_back({pixels + i, masks + i});
      masks[i] = static_cast<std::uint16_t>(share);
    }
  };
  for (std::size_t i = 1; i < count; ++i) drawSegment(points[i - 1], points[i], keep);
  if (stroke.form == Closed) drawSegment(points[count - 1], points[0], keep);
  blend();
}

// After the ends of the line, `points` has the dashes, see `addDashes`.
void LineRasterizer::Band::drawDashes(const PNT_2D* points, std::size_t count) {
  const auto cover = [&](long x, long, std::uint32_t* pixels, const Words& coverage) {
    paint(x, pixels, coverage);
  };
  forEachRow(points[0], points[1], Dashed(points + 2, count - 2, m_pen.reach), cover);
}

template <class Cover>
void LineRasterizer::Band::drawSegment(const PNT_2D& from, const PNT_2D& to, const Cover& cover) {
  forEachRow(from, to, Whole(lengthOf(to - from)), cover);
}

template <class Beyond, class Cover>
void LineRasterizer::Band::forEachRow(const PNT_2D& from, const PNT_2D& to, Beyond beyond,
                                      const Cover& cover) {
  const double reach = m_pen.reach;
  long first, last;
  if (!inside(std::min(from.y, to.y) - reach, std::max(from.y, to.y) + reach, m_end, first, last))
    return;
  first = std::max(first, m_first);
  if (first > last) return;
  const PNT_2D step = to - from;
  const double length = lengthOf(step);
  Segment s = {
      from, {1, 0}, 0, reach, std::min(from.x, to.x) - reach, std::max(from.x, to.x) + reach};
  if (length > 0) s.way.set(step.x / length, step.y / length);
  if (s.way.y != 0) {
    s.slope = s.way.x / s.way.y;
    // Along a row, the band of the line has a constant width.
    s.half = std::fabs(reach / s.way.y);
  }
  for (long y = first; y <= last; ++y) row(y, s, beyond, cover);
}

// Visits the pixels of a row whose centers are within reach of the segment. Beyond an end, the
// distance to that end is used.
template <class Beyond, class Cover>
void LineRasterizer::Band::row(long y, const Segment& s, Beyond& beyond, const Cover& cover) {
  const double dy = static_cast<double>(y) + 0.5 - s.from.y;
  double low = s.low, high = s.high;
  if (s.way.y != 0) {
    const double middle = s.from.x + dy * s.slope;
    low = std::max(low, middle - s.half);
    high = std::min(high, middle + s.half);
  }
  // Pixels at the border may be out of reach, and are not covered then.
  const auto width = static_cast<double>(m_width);
  const auto first = static_cast<long>(std::clamp(low, 0.0, width) + 0.5);
  const auto last = static_cast<long>(std::clamp(high, 0.0, width) - 0.5);
  std::uint32_t* const pixels = rowOf(y);
  for (long x = first; x <= last; x += kChunk) {
    // Pixels within reach have small distances, which float numbers hold precisely.
    const double dx = static_cast<double>(x) + 0.5 - s.from.x;
    Floats distance = magnitude(static_cast<float>(dy * s.way.x - dx * s.way.y) -
                                kSteps * static_cast<float>(s.way.y));
    Floats past;
    const Past extent = beyond(dx * s.way.x + dy * s.way.y, s.way.x, past);
    if (extent == Past::All) continue;
    if (extent == Past::Some) distance = squareRoot(distance * distance + past * past);
    const Floats share = lesser(static_cast<float>(m_pen.reach) - distance, Floats{} + 1.0F);
    const Floats strength = greater(share, Floats{}) * static_cast<float>(m_pen.strength);
    cover(x, y, pixels, (Words) __builtin_convertvector(strength + 0.5F, Integers));
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
  const auto bands = static_cast<std::size_t>((height + kBandRows - 1) / kBandRows);
  m_batch.bands.resize(bands);
  m_drawn.bands.resize(bands);
  setPen({0, 0, 0}, kOpaque, 1);
}

void LineRasterizer::setPen(const RGB_COLOR& color, std::uint8_t alpha, double lineWidth) {
  m_full = static_cast<double>(kFull) * alpha / kOpaque;
  // Lines thinner than a pixel are drawn one pixel wide with reduced strength.
  m_pen = {reachOf(lineWidth), m_full * std::min(lineWidth, 1.0),
           std::uint32_t{color.r} << 16 | color.b, std::uint32_t{kOpaque} << 16 | color.g};
}

void LineRasterizer::stroke(const PNT_2D* points, std::size_t count, bool closed) {
  add(points, count, closed ? Closed : Open, m_pen);
}

// A stroke of zero length is a disc with the diameter of the line width.
void LineRasterizer::disc(const PNT_2D& center, double diameter) {
  add(&center, 1, Open, {reachOf(diameter), m_full, m_pen.redBlue, m_pen.alphaGreen});
}

void LineRasterizer::Batch::clear() {
  pens.clear();
  points.clear();
  strokes.clear();
  for (std::vector<std::uint32_t>& band : bands) band.clear();
}

void LineRasterizer::segments(const PNT_2D* points, std::size_t count) {
  if (count > 2 && addDashes(points, count)) return;
  for (std::size_t i = 0; i < count; i += 2) add(points + i, 2, Open, m_pen);
}

// Adds the line, and begin and end of each dash, as distances from its start. Drawn together,
// dashes of a few pixels take a quarter of the time. Returns false if the segments do not lie on
// one line, one after the other; imperceptible deviations are allowed.
bool LineRasterizer::addDashes(const PNT_2D* points, std::size_t count) {
  constexpr double kDeviation = 0.01;
  const PNT_2D from = points[0], step = points[count - 1] - from;
  const double length = from.dist(points[count - 1]);
  if (!(length > 0)) return false;
  const PNT_2D way(step.x / length, step.y / length);
  m_line.assign({from, points[count - 1]});
  double last = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const PNT_2D at = points[i] - from;
    const double along = at.x * way.x + at.y * way.y;
    if (along < last || std::fabs(at.y * way.x - at.x * way.y) > kDeviation) return false;
    if (i % 2 == 0)
      m_line.emplace_back(along, along);
    else
      m_line.back().y = along;
    last = along;
  }
  add(m_line.data(), m_line.size(), Dashes, m_pen);
  return true;
}

void LineRasterizer::add(const PNT_2D* points, std::size_t count, Form form, const Pen& pen) {
  double lowest = points[0].y, highest = lowest;
  for (std::size_t i = 1; i < (form == Dashes ? 2 : count); ++i) {
    lowest = std::min(lowest, points[i].y);
    highest = std::max(highest, points[i].y);
  }
  long first, last;
  if (!inside(lowest - pen.reach, highest + pen.reach, m_height, first, last)) return;
  if (m_batch.points.size() + count > kMostPoints) submit();
  if (m_batch.pens.empty() || m_batch.pens.back() != pen) m_batch.pens.push_back(pen);
  const auto index = static_cast<std::uint32_t>(m_batch.strokes.size());
  m_batch.strokes.push_back({m_batch.points.size(), count, m_batch.pens.size() - 1, form});
  m_batch.points.insert(m_batch.points.end(), points, points + count);
  for (long band = first / kBandRows; band <= last / kBandRows; ++band)
    m_batch.bands[static_cast<std::size_t>(band)].push_back(index);
}

void LineRasterizer::drawBands() {
  Band band(*this, m_drawn);
  const auto count = static_cast<long>(m_drawn.bands.size());
  for (long number; (number = m_next.fetch_add(1)) < count;) band.draw(number);
}

// Another thread draws the batch while the next one is collected.
void LineRasterizer::submit() {
  finish();
  std::swap(m_batch, m_drawn);
  m_batch.clear();
  m_next = 0;
  if (m_drawn.points.size() < kWorthThread) return drawBands();
  try {
    m_drawing = std::async(std::launch::async, [this] { drawBands(); });
  } catch (const std::system_error&) {
    drawBands();  // no thread can be started
  }
}

// Takes part in what is left of the batch that is being drawn.
void LineRasterizer::finish() {
  if (!m_drawing.valid()) return;
  drawBands();
  m_drawing.get();
}

void LineRasterizer::flush() {
  submit();
  finish();
}

}  // namespace vek0::paint
