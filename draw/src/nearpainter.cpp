#include "nearpainter.h"

#include <algorithm>
#include <cmath>

#include "shownbox.h"
#include "vek0core/tables/font.h"
#include "vek0core/vek0core.h"

namespace vek0::detail {
namespace {

EDGE_3D edgeOf(const PNT_2D& a, const PNT_2D& b) {
  return EDGE_3D(PNT_3D(a.x, a.y, 0), PNT_3D(b.x, b.y, 0));
}

// Positive if p is left of the line from a to b.
double leftness(const PNT_2D& a, const PNT_2D& b, const PNT_2D& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

// How often a ring runs around a point.
int windingOf(const PNT_2D& at, const PNT_2D* points, std::size_t count) {
  int winding = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const PNT_2D &a = points[i], &b = points[(i + 1) % count];
    if ((a.y <= at.y) == (b.y <= at.y)) continue;
    const bool isUpward = a.y <= at.y;
    if ((leftness(a, b, at) > 0) == isUpward) winding += isUpward ? 1 : -1;
  }
  return winding;
}

}  // namespace

std::vector<EDGE_3D> sidesOf(const RECT_2D& box) {
  const PNT_2D right(box.max.x, box.min.y), left(box.min.x, box.max.y);
  return {edgeOf(box.min, right), edgeOf(right, box.max), edgeOf(box.max, left),
          edgeOf(left, box.min)};
}

void NearPainter::begin(const DrawItem& item) {
  // Painters must not change entities; hosts that ask for those near a point may.
  m_top = const_cast<CEnt*>(item.top);
  m_isInHatch = false;
  for (int i = 0; i < item.path->GetNoInsert(); ++i)
    m_isInHatch |= item.path->GetInsert(i)->getType() == CEntHatch::kType;
  m_isOfChords = item.ent && item.ent->getType() == CEntPolyline::kType &&
                 static_cast<const CEntPolyline*>(item.ent)->isCurve();
  m_isInfinite = item.ent && isEndless(*item.ent);
}

void NearPainter::stroke(const PNT_2D* points, std::size_t count, bool closed) {
  m_edges.clear();
  for (std::size_t i = 1; i < count; ++i) m_edges.push_back(edgeOf(points[i - 1], points[i]));
  if (closed) m_edges.push_back(edgeOf(points[count - 1], points[0]));
  if (m_edges.size() == 1) return edge(m_edges.front());
  chain(m_edges, closed);
}

bool NearPainter::arc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  edge(EDGE_3D(center, radius, startRad, sweepRad, 0, 0));
  return true;
}

void NearPainter::chain(const std::vector<EDGE_3D>& edges, bool) {
  for (const EDGE_3D& one : edges) edge(one);
}

void NearPainter::area(const PNT_2D* points, const std::size_t* ends, std::size_t rings, FillRule) {
  for (std::size_t ring = 0, start = 0; ring < rings; start = ends[ring++]) {
    for (std::size_t i = start; i < ends[ring]; ++i)
      edge(edgeOf(points[i], points[i + 1 < ends[ring] ? i + 1 : start]));
  }
}

// The frame from descenders to capitals.
void NearPainter::text(const DrawText& text) {
  const ICADFont& font = text.font ? *text.font : defaultFontMetrics();
  const double width = font.getStringWidth(*text.string, false, text.bold, text.italic);
  const double low = -font.getDescent(), high = font.getHeightUnit();
  const PNT_2D corners[] = {text.matrix.apply(0, low), text.matrix.apply(width, low),
                            text.matrix.apply(width, high), text.matrix.apply(0, high)};
  const std::size_t end = 4;
  area(corners, &end, 1, FillRule::NonZero);
}

bool NearPainter::pushClip(const PNT_2D* points, std::size_t count) {
  m_clips.emplace_back(points, points + count);
  return true;
}

bool NearPainter::isWithin(const PNT_2D& at, const PNT_2D* points, const std::size_t* ends,
                           std::size_t rings, FillRule rule) {
  int winding = 0;
  for (std::size_t ring = 0, start = 0; ring < rings; start = ends[ring++])
    winding += windingOf(at, points + start, ends[ring] - start);
  return rule == FillRule::NonZero ? winding != 0 : winding % 2 != 0;
}

bool NearPainter::isClipped(const PNT_2D& at) const {
  return std::any_of(m_clips.begin(), m_clips.end(), [&](const std::vector<PNT_2D>& clip) {
    const std::size_t end = clip.size();
    return !isWithin(at, clip.data(), &end, 1, FillRule::EvenOdd);
  });
}

bool NearPainter::isClipAway(const RECT_2D& box) const {
  return std::any_of(m_clips.begin(), m_clips.end(), [&](const std::vector<PNT_2D>& clip) {
    const std::size_t end = clip.size();
    if (isWithin(box.min, clip.data(), &end, 1, FillRule::EvenOdd)) return false;
    for (std::size_t i = 0; i < end; ++i) {
      double t0 = 0, t1 = 1;
      if (clipLine(box, clip[i], clip[(i + 1) % end] - clip[i], t0, t1)) return false;
    }
    return true;
  });
}

}  // namespace vek0::detail
