#include "vek0paint/cairopainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "vek0core/files/file.h"
#include "vek0core/geometry/arc.h"

namespace vek0::paint {
namespace {

// A path is stroked after this many points, because the cost of a stroke grows faster than its
// length, and opaque overlaps have the same color. Fills grow linearly, and the strips of a solid
// hatch must stay together, or else the background shows through their seams.
constexpr std::size_t kStrokePoints = 512, kFillPoints = 1 << 16;

// Limit for the cost of clipping per picture, in group pixels of about 8 ns each: a few seconds.
// Each corner of the boundary costs as much as `kPixelsPerCorner` pixels per row of a group.
constexpr double kMostClipPixels = 400e6, kPixelsPerCorner = 16;

// Axis-aligned rectangles, to which Cairo clips at no cost.
bool isUpright(const PNT_2D* points, std::size_t count) {
  constexpr double kNone = 1e-6;
  if (count < 3) return true;
  bool sides[2][2] = {};  // whether the even or odd sides are parallel to x, to y
  for (std::size_t i = 0; i < count; ++i) {
    const PNT_2D step = points[(i + 1) % count] - points[i];
    sides[i % 2][0] = sides[i % 2][0] || std::fabs(step.x) > kNone;
    sides[i % 2][1] = sides[i % 2][1] || std::fabs(step.y) > kNone;
  }
  return count == 4 && !(sides[0][0] && sides[0][1]) && !(sides[1][0] && sides[1][1]);
}

cairo_status_t writeTo(void* file, const unsigned char* bytes, unsigned length) {
  const bool good = static_cast<IFile*>(file)->writeBytes(reinterpret_cast<const char*>(bytes),
                                                          static_cast<long>(length));
  return good ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

void setColor(cairo_t* context, const RGB_COLOR& color, std::uint8_t alpha = 255) {
  cairo_set_source_rgba(context, color.r / 255.0, color.g / 255.0, color.b / 255.0, alpha / 255.0);
}

// Centered on its pixel: spread over four it would hardly be visible.
PNT_2D pixelOf(const PNT_2D& at) { return {std::floor(at.x) + 0.5, std::floor(at.y) + 0.5}; }

// Contours as Cairo's path.
class PathSink final : public IOutlineSink {
 public:
  explicit PathSink(cairo_t* context) : m_context(context) {}
  void move(const PNT_2D& to) override { cairo_move_to(m_context, to.x, to.y); }
  void line(const PNT_2D& to) override { cairo_line_to(m_context, to.x, to.y); }
  void quad(const PNT_2D& from, const PNT_2D& control, const PNT_2D& to) override {
    // Degree elevation: the inner controls are two thirds of the way to the quadratic's control.
    const auto towards = [&](const PNT_2D& end) {
      return PNT_2D(end.x + (control.x - end.x) * 2 / 3, end.y + (control.y - end.y) * 2 / 3);
    };
    cubic(towards(from), towards(to), to);
  }
  void cubic(const PNT_2D& c1, const PNT_2D& c2, const PNT_2D& to) override {
    cairo_curve_to(m_context, c1.x, c1.y, c2.x, c2.y, to.x, to.y);
  }

 private:
  cairo_t* m_context;
};

}  // namespace

CairoPainter::CairoPainter(IFile& file, const SHEET& sheet, IOutlineFonts& fonts)
    : SheetPainter(sheet, fonts),
      m_file(file),
      m_surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(sheet.width),
                                           static_cast<int>(sheet.height))),
      m_context(cairo_create(m_surface.get())),
      m_lineWidth(sheet.lineWidth),
      m_width(sheet.lineWidth),
      m_clipPixels(kMostClipPixels) {
  cairo_t* context = m_context.get();
  cairo_set_line_width(context, m_width);
  // Round caps make a line of length 0 a visible dot.
  cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
  if (!sheet.transparent) {
    setColor(context, sheet.background);
    cairo_paint(context);
  }
  setColor(context, m_color);
  unsigned char* pixels = cairo_image_surface_get_data(m_surface.get());
  if (!pixels) return;
  m_lines = std::make_unique<LineRasterizer>(pixels, sheet.width, sheet.height,
                                             cairo_image_surface_get_stride(m_surface.get()));
  m_lines->setPen(m_color, m_alpha, m_width);
}

void CairoPainter::begin(const DrawItem& item) {
  const double width = item.width > 0 ? item.width : m_lineWidth;
  // Paths end only when their look changes, as each path has a fixed cost.
  if (item.color == m_color && item.alpha == m_alpha && width == m_width) return;
  if (m_path != Pixels) endPath();
  m_color = item.color;
  m_alpha = item.alpha;
  m_width = width;
  setColor(m_context.get(), m_color, m_alpha);
  cairo_set_line_width(m_context.get(), m_width);
  if (m_lines) m_lines->setPen(m_color, m_alpha, m_width);
}

// Cairo and the rasterizer, which does not support clips, alternate in accessing the pixels.
bool CairoPainter::strokesItself() {
  if (!m_lines || isClipping()) return false;
  if (m_path == Pixels) return true;
  endPath();
  cairo_surface_flush(m_surface.get());
  m_path = Pixels;
  return true;
}

void CairoPainter::startPath(Path path) {
  if (m_path != path) endPath();
  m_path = path;
}

void CairoPainter::countPoints(std::size_t count) {
  m_points += count;
  if (m_points >= (m_path == Fills ? kFillPoints : kStrokePoints)) endPath();
}

void CairoPainter::endPath() {
  if (m_path == Strokes) cairo_stroke(m_context.get());
  if (m_path == Fills) cairo_fill(m_context.get());
  if (m_path == Pixels) {
    m_lines->flush();
    cairo_surface_mark_dirty(m_surface.get());
  }
  m_path = None;
  m_points = 0;
}

void CairoPainter::plainStroke(const PNT_2D* points, std::size_t count, bool closed) {
  if (strokesItself()) return m_lines->stroke(points, count, closed);
  startPath(Strokes);
  cairo_t* context = m_context.get();
  cairo_move_to(context, points[0].x, points[0].y);
  for (std::size_t i = 1; i < count; ++i) cairo_line_to(context, points[i].x, points[i].y);
  if (closed) cairo_close_path(context);
  countPoints(count);
}

void CairoPainter::plainSegments(const PNT_2D* points, std::size_t count) {
  if (strokesItself()) return m_lines->segments(points, count);
  SheetPainter::plainSegments(points, count);
}

void CairoPainter::plainArc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  if (strokesItself()) return strokeArc(center, radius, startRad, sweepRad);
  constexpr std::size_t kPoints = 8;  // approximate cost of an arc
  startPath(Strokes);
  cairo_new_sub_path(m_context.get());
  const auto draw = sweepRad < 0 ? cairo_arc_negative : cairo_arc;
  draw(m_context.get(), center.x, center.y, radius, startRad, startRad + sweepRad);
  countPoints(kPoints);
}

// A deviation of a tenth of a pixel is invisible.
void CairoPainter::strokeArc(const PNT_2D& center, double radius, double startRad,
                             double sweepRad) {
  constexpr double kError = 0.1;
  // The error is relative to the radius.
  const int count = arcChords(sweepRad, kError / std::max(radius, kError));
  m_chords.clear();
  for (int i = 0; i <= count; ++i) {
    const double angle = startRad + sweepRad * i / count;
    m_chords.emplace_back(center.x + radius * std::cos(angle), center.y + radius * std::sin(angle));
  }
  m_lines->stroke(m_chords.data(), m_chords.size(), false);
}

void CairoPainter::addRing(const PNT_2D* points, std::size_t count, bool reversed) {
  cairo_new_sub_path(m_context.get());
  for (std::size_t i = 0; i < count; ++i) {
    const PNT_2D& p = points[reversed ? count - 1 - i : i];
    cairo_line_to(m_context.get(), p.x, p.y);
  }
  cairo_close_path(m_context.get());
}

void CairoPainter::plainFill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                             FillRule rule) {
  const bool unites = rule == FillRule::NonZero;
  if (unites)
    startPath(Fills);
  else
    endPath();
  // United rings need a common orientation for the non-zero rule.
  const bool reversed = unites && turnLeft(points, ends, rings);
  for (std::size_t ring = 0, start = 0; ring < rings; start = ends[ring++])
    addRing(points + start, ends[ring] - start, reversed);
  if (unites) return countPoints(ends[rings - 1]);
  cairo_set_fill_rule(m_context.get(), CAIRO_FILL_RULE_EVEN_ODD);
  cairo_fill(m_context.get());
  cairo_set_fill_rule(m_context.get(), CAIRO_FILL_RULE_WINDING);
}

void CairoPainter::plainDot(const PNT_2D& at) {
  const PNT_2D dot = pixelOf(at);
  plainStroke(std::array{dot, dot}.data(), 2, false);
}

void CairoPainter::plainDisc(const PNT_2D& center, double diameter) {
  if (strokesItself()) return m_lines->disc(pixelOf(center), diameter);
  constexpr std::size_t kPoints = 8;  // approximate cost
  startPath(Fills);
  cairo_new_sub_path(m_context.get());
  cairo_arc(m_context.get(), center.x, center.y, diameter / 2, 0, 2 * std::numbers::pi);
  cairo_close_path(m_context.get());
  countPoints(kPoints);
}

// Cairo clips every stroke to a polygon separately. All strokes are drawn to a group instead, which
// is clipped once.
bool CairoPainter::plainClip(const PNT_2D* points, std::size_t count) {
  endPath();
  cairo_t* context = m_context.get();
  std::vector<PNT_2D> ring;
  cairo_save(context);
  if (isUpright(points, count)) {
    addRing(points, count, false);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_clip(context);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
  } else {
    ring.assign(points, points + count);
    if (!startGroup(ring)) {
      cairo_restore(context);
      return false;
    }
  }
  m_clips.push_back(std::move(ring));
  return true;
}

// Aligned to whole pixels, so that only the ring determines the border.
bool CairoPainter::startGroup(const std::vector<PNT_2D>& ring) {
  cairo_t* context = m_context.get();
  RECT_2D box;
  box.set(ring.data(), static_cast<int>(ring.size()));
  const double left = std::floor(box.min.x), top = std::floor(box.min.y);
  cairo_rectangle(context, left, top, std::ceil(box.max.x) - left, std::ceil(box.max.y) - top);
  cairo_clip(context);
  cairo_clip_extents(context, &box.min.x, &box.min.y, &box.max.x, &box.max.y);
  const double rows = box.max.y - box.min.y;
  const double cost =
      (box.max.x - box.min.x + kPixelsPerCorner * static_cast<double>(ring.size())) * rows;
  // The caller reports the insert as unclipped.
  if (cost > m_clipPixels) return false;
  m_clipPixels -= cost;
  cairo_push_group(context);
  return true;
}

void CairoPainter::plainPopClip() {
  endPath();
  cairo_t* context = m_context.get();
  const std::vector<PNT_2D>& ring = m_clips.back();
  if (!ring.empty()) {
    cairo_pop_group_to_source(context);
    addRing(ring.data(), ring.size(), false);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(context);
  }
  cairo_restore(context);
  // The state before the clip is that of an earlier item.
  setColor(context, m_color, m_alpha);
  cairo_set_line_width(context, m_width);
  m_clips.pop_back();
}

void CairoPainter::plainText(const DrawText& text, const OutlineFont& font,
                             const RECT_2D& /*bounds*/) {
  endPath();
  PathSink sink(m_context.get());
  font.outline(text, sink);
  cairo_fill(m_context.get());
}

bool CairoPainter::finish() {
  endPath();
  if (cairo_status(m_context.get()) != CAIRO_STATUS_SUCCESS) return false;
  return cairo_surface_write_to_png_stream(m_surface.get(), writeTo, &m_file) ==
         CAIRO_STATUS_SUCCESS;
}

}  // namespace vek0::paint
