#include "scenepainter.h"

#include <algorithm>
#include <cmath>

#include "vek0core/geometry/edge.h"
#include "vek0core/hatch/boundary.h"
#include "vek0core/hatch/triangulate.h"

namespace vek0::web {
namespace {

constexpr int kDeepest = 40;  // halvings of an arc

double turnOf(const PNT_2D& a, const PNT_2D& b, const PNT_2D& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// Whether a ring needs no triangulation.
bool isConvex(const PNT_2D* p, std::size_t count) {
  if (count > 4) return false;
  bool left = false, right = false;
  for (std::size_t i = 0; i < count; ++i) {
    const double turn = turnOf(p[i], p[(i + 1) % count], p[(i + 2) % count]);
    left = left || turn > 0;
    right = right || turn < 0;
  }
  return !(left && right);
}

}  // namespace

void ScenePainter::begin(const DrawItem& item) {
  m_item = item;
  m_pen.style = m_out.styles.styleOf(item, 0);
  constexpr std::uint32_t transparent = VEK0_TRANSPARENT;
  m_pen.flags = item.alpha < 255 ? transparent : 0;
  m_slot = m_out.slots.slotOf(item, m_pen.style);
}

ScenePainter::Pen ScenePainter::dashedPen(const DrawDashes& dashes) {
  return {m_out.styles.styleOf(m_item, m_out.styles.dashOf(dashes)), m_pen.flags | VEK0_DASHED};
}

// --- Strokes

void ScenePainter::segment(const PNT_2D& a, const PNT_2D& b, double distance, const Pen& pen) {
  const auto where = m_clip.where(RECT_2D(a, b));
  if (where == ClipRegion::Where::Inside)
    m_out.batches.segment(a, b, distance, m_slot, pen.style, pen.flags);
  if (where != ClipRegion::Where::Both) return;
  const PNT_2D step = b - a;
  const double length = a.dist(b);
  m_clip.clip(a, b, [&](double from, double to) {
    m_out.batches.segment({a.x + from * step.x, a.y + from * step.y},
                          {a.x + to * step.x, a.y + to * step.y}, distance + from * length, m_slot,
                          pen.style, pen.flags);
  });
}

void ScenePainter::stroke(const PNT_2D* points, std::size_t count, bool closed) {
  for (std::size_t i = 1; i < count; ++i) segment(points[i - 1], points[i], 0, m_pen);
  if (closed) segment(points[count - 1], points[0], 0, m_pen);
}

void ScenePainter::dashedStroke(const PNT_2D* points, std::size_t count, const DrawDashes& dashes,
                                double distance) {
  const Pen pen = dashedPen(dashes);
  for (std::size_t i = 1; i < count; ++i) {
    segment(points[i - 1], points[i], distance, pen);
    distance += points[i].dist(points[i - 1]);
  }
}

// --- Arcs

PNT_2D ScenePainter::Curve::at(double share) const {
  const double angle = start + share * sweep;
  return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}

RECT_2D ScenePainter::Curve::box(double from, double to) const {
  return EDGE_3D(center, radius, start + from * sweep, (to - from) * sweep, 0, 0).bdry();
}

bool ScenePainter::arc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  drawCurve({center, radius, startRad, sweepRad}, m_pen);
  return true;
}

bool ScenePainter::dashedArc(const PNT_2D& center, double radius, double startRad, double sweepRad,
                             const DrawDashes& dashes) {
  drawCurve({center, radius, startRad, sweepRad}, dashedPen(dashes));
  return true;
}

void ScenePainter::drawCurve(const Curve& curve, const Pen& pen) {
  if (curve.sweep == 0) return segment(curve.at(0), curve.at(0), 0, pen);
  const RECT_2D box = curve.box(0, 1);
  const auto where = m_clip.where(box);
  if (where == ClipRegion::Where::Outside) return;
  if (where == ClipRegion::Where::Inside &&
      m_out.batches.arc(curve.center, curve.radius, curve.start, curve.sweep, box, 0, m_slot,
                        pen.style, pen.flags))
    return;
  divide(curve, 0, 1, 0, pen);
}

// Only what is inside the region is divided until its chords are good enough.
void ScenePainter::divide(const Curve& curve, double from, double to, int depth, const Pen& pen) {
  const double half = std::fabs(curve.sweep) * (to - from) / 2;
  constexpr double widest = 0.5;  // radians, or an arc could be one chord
  const double sagitta = curve.radius * 2 * std::pow(std::sin(half / 2), 2);
  if (depth == kDeepest || (half < widest && sagitta <= m_out.deviation)) {
    const double distance = from * std::fabs(curve.sweep) * curve.radius;
    return segment(curve.at(from), curve.at(to), distance, pen);
  }
  if (m_clip.where(curve.box(from, to)) == ClipRegion::Where::Outside) return;
  const double middle = (from + to) / 2;
  divide(curve, from, middle, depth + 1, pen);
  divide(curve, middle, to, depth + 1, pen);
}

// --- Points

void ScenePainter::mark(const PNT_2D& at, std::int32_t marker) {
  if (m_clip.contains(at)) m_out.batches.point(at, marker, m_slot, m_pen.style, m_pen.flags);
}

bool ScenePainter::point(const PNT_2D& at) {
  mark(at, m_out.marker);
  return true;
}

// --- Fills

void ScenePainter::fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                        FillRule rule) {
  RECT_2D box;
  box.set(points, static_cast<int>(ends[rings - 1]));
  if (m_clip.where(box) == ClipRegion::Where::Outside) return;
  if (rings == 1 && isConvex(points, ends[0])) return polygon({points, points + ends[0]});
  constexpr double most = 2'000'000;
  std::vector<std::vector<PNT_3D>> lists;
  for (std::size_t ring = 0, start = 0; ring < rings; start = ends[ring++]) {
    std::vector<PNT_3D>& list = lists.emplace_back();
    for (std::size_t i = start; i < ends[ring]; ++i) list.emplace_back(points[i].x, points[i].y, 0);
  }
  std::vector<HatchFace> faces;
  const InsideRule inside = rule == FillRule::NonZero ? InsideRule::NonZero : InsideRule::EvenOdd;
  if (fillSolid(joinHatchRings(lists), most, faces, inside) != HatchStatus::Done) {
    // Too many crossings: the outline shows at least where it is.
    for (std::size_t ring = 0, start = 0; ring < rings; start = ends[ring++])
      stroke(points + start, ends[ring] - start, true);
    return;
  }
  for (const HatchFace& face : faces) {
    ClipRegion::Corners corners;
    for (int i = 0; i < (face.p[3] == face.p[2] ? 3 : 4); ++i)
      corners.emplace_back(face.p[i].x, face.p[i].y);
    polygon(corners);
  }
}

void ScenePainter::polygon(const ClipRegion::Corners& corners) {
  RECT_2D box;
  box.set(corners.data(), static_cast<int>(corners.size()));
  const auto where = m_clip.where(box);
  if (where == ClipRegion::Where::Inside) return fan(corners);
  if (where == ClipRegion::Where::Both)
    m_clip.clip(corners, [this](const ClipRegion::Corners& part) { fan(part); });
}

void ScenePainter::fan(const ClipRegion::Corners& corners) {
  for (std::size_t i = 2; i < corners.size(); ++i)
    m_out.batches.triangle(corners[0], corners[i - 1], corners[i], m_slot, m_pen.style,
                           m_pen.flags);
}

// --- Texts

void ScenePainter::text(const DrawText& text) {
  m_placed.clear();
  if (!m_out.glyphs.place(*text.string, m_placed)) {
    const double unit = text.font ? text.font->getHeightUnit() : 1;
    if (m_clip.contains({text.matrix.e, text.matrix.f}))
      m_out.batches.run(text, unit, m_slot, m_pen.style);
    return;
  }
  for (const GlyphTable::Placed& placed : m_placed) {
    if (m_out.glyphs.isBlank(placed.glyph)) continue;
    AFFINE_2D map = text.matrix;
    const PNT_2D origin = map.apply(placed.at, 0);
    map.e = origin.x;
    map.f = origin.y;
    glyph(placed.glyph, map);
  }
}

void ScenePainter::glyph(std::uint32_t index, const AFFINE_2D& map) {
  // No glyph extends farther, in heights of capitals.
  constexpr double left = -1, right = 3, low = -1, high = 2;
  const PNT_2D corners[] = {map.apply(left, low), map.apply(right, low), map.apply(right, high),
                            map.apply(left, high)};
  RECT_2D box;
  box.set(corners, 4);
  const double height = std::hypot(map.c, map.d);
  const auto where = m_clip.where(box);
  if (where == ClipRegion::Where::Inside)
    m_out.batches.glyph(map, index, box, height, m_slot, m_pen.style, m_pen.flags);
  if (where == ClipRegion::Where::Both) cutGlyph(index, map, height);
}

void ScenePainter::cutGlyph(std::uint32_t index, const AFFINE_2D& map, double height) {
  int detail = 0;
  while (detail + 1 < GlyphTable::kDetails &&
         GlyphTable::kDeviations[detail] * height > m_out.deviation)
    ++detail;
  for (const GlyphTable::Triangle& t : m_out.glyphs.triangles(index, detail))
    polygon({map.apply(static_cast<double>(t.x0), static_cast<double>(t.y0)),
             map.apply(static_cast<double>(t.x1), static_cast<double>(t.y1)),
             map.apply(static_cast<double>(t.x2), static_cast<double>(t.y2))});
}

bool ScenePainter::pushClip(const PNT_2D* points, std::size_t count) {
  m_clip.push(points, count);
  return true;
}

}  // namespace vek0::web
