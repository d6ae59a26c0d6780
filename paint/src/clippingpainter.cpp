#include "vek0paint/clippingpainter.h"

#include <algorithm>
#include <cmath>

namespace vek0::paint {
namespace {

bool allInside(const RECT_2D& box, const PNT_2D* points, std::size_t count) {
  return std::all_of(points, points + count, [&](const PNT_2D& p) { return box.inside(p); });
}

// Twice the area of the triangle, positive when it turns from x to y.
double cross(const PNT_2D& o, const PNT_2D& a, const PNT_2D& b) {
  return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

// Triangles, and quadrilaterals whose corners all turn the same way.
bool isConvex(const PNT_2D* points, const std::size_t* ends, std::size_t rings) {
  if (rings != 1 || ends[0] > 4) return false;
  bool left = false, right = false;
  for (std::size_t i = 0, n = ends[0]; i < n; ++i) {
    const double turn = cross(points[i], points[(i + 1) % n], points[(i + 2) % n]);
    left = left || turn > 0;
    right = right || turn < 0;
  }
  return !(left && right);
}

// Clips to one border: `value` is 0 on it and increases inward.
template <class Value>
void clipAtBorder(const std::vector<PNT_2D>& in, std::vector<PNT_2D>& out, Value value) {
  out.clear();
  for (std::size_t i = 0; i < in.size(); ++i) {
    const PNT_2D &a = in[i], &b = in[(i + 1) % in.size()];
    const double va = value(a), vb = value(b);
    if (va >= 0) out.push_back(a);
    if ((va >= 0) == (vb >= 0)) continue;
    const double t = va / (va - vb);
    out.emplace_back(a.x + t * (b.x - a.x), a.y + t * (b.y - a.y));
  }
}

}  // namespace

bool turnLeft(const PNT_2D* points, const std::size_t* ends, std::size_t rings) {
  double area = 0;
  for (std::size_t ring = 0, start = 0; ring < rings; start = ends[ring++]) {
    for (std::size_t i = start + 2; i < ends[ring]; ++i)
      area += cross(points[start], points[i - 1], points[i]);
  }
  return area > 0;
}

bool clipSegment(const RECT_2D& box, PNT_2D& a, PNT_2D& b) {
  const PNT_2D step = b - a;
  double from = 0, to = 1;
  if (!clipLine(box, a, step, from, to)) return false;
  if (to < 1) b.set(a.x + to * step.x, a.y + to * step.y);
  if (from > 0) a.set(a.x + from * step.x, a.y + from * step.y);
  return true;
}

void clipRing(const RECT_2D& box, const PNT_2D* points, std::size_t count,
              std::vector<PNT_2D>& out) {
  std::vector<PNT_2D> a(points, points + count), b;
  clipAtBorder(a, b, [&](const PNT_2D& p) { return p.x - box.min.x; });
  clipAtBorder(b, a, [&](const PNT_2D& p) { return box.max.x - p.x; });
  clipAtBorder(a, b, [&](const PNT_2D& p) { return p.y - box.min.y; });
  clipAtBorder(b, a, [&](const PNT_2D& p) { return box.max.y - p.y; });
  out.insert(out.end(), a.begin(), a.end());
}

void ClippingPainter::stroke(const PNT_2D* points, std::size_t count, bool closed) {
  if (count == 0) return;
  if (allInside(m_box, points, count)) {
    plainStroke(points, count, closed);
  } else {
    strokePieces(points, count, closed);
  }
}

void ClippingPainter::segments(const PNT_2D* points, std::size_t count) {
  if (allInside(m_box, points, count)) return plainSegments(points, count);
  for (std::size_t i = 0; i < count; i += 2) stroke(points + i, 2, false);
}

void ClippingPainter::strokePieces(const PNT_2D* points, std::size_t count, bool closed) {
  const std::size_t segments = closed ? count : count - 1;
  for (std::size_t i = 0; i < segments; ++i) {
    PNT_2D a = points[i], b = points[(i + 1) % count];
    if (!clipSegment(m_box, a, b)) continue;
    if (m_piece.empty() || m_piece.back() != a) {
      endPiece();
      m_piece.push_back(a);
    }
    m_piece.push_back(b);
  }
  endPiece();
}

void ClippingPainter::endPiece() {
  if (m_piece.size() > 1) plainStroke(m_piece.data(), m_piece.size(), false);
  m_piece.clear();
}

bool ClippingPainter::arc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  if (!m_box.inside(center.x - radius, center.y - radius) ||
      !m_box.inside(center.x + radius, center.y + radius)) {
    return false;
  }
  plainArc(center, radius, startRad, sweepRad);
  return true;
}

void ClippingPainter::fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                           FillRule rule) {
  if (rings == 0) return;
  if (isConvex(points, ends, rings)) rule = FillRule::NonZero;
  if (allInside(m_box, points, ends[rings - 1])) return plainFill(points, ends, rings, rule);
  m_rings.clear();
  m_ends.clear();
  for (std::size_t i = 0, start = 0; i < rings; start = ends[i++]) {
    clipRing(m_box, points + start, ends[i] - start, m_rings);
    m_ends.push_back(m_rings.size());
  }
  if (!m_rings.empty()) plainFill(m_rings.data(), m_ends.data(), m_ends.size(), rule);
}

void ClippingPainter::dot(const PNT_2D& at) {
  if (m_box.inside(at)) plainDot(at);
}

bool ClippingPainter::pushClip(const PNT_2D* points, std::size_t count) {
  if (m_openClips == kMostClips) return false;
  m_rings.clear();
  clipRing(m_box, points, count, m_rings);
  const bool clips = plainClip(m_rings.data(), m_rings.size());
  m_openClips += clips;
  return clips;
}

void ClippingPainter::popClip() {
  --m_openClips;
  plainPopClip();
}

void ClippingPainter::disc(const PNT_2D& center, double diameter) {
  if (m_box.inside(center)) plainDisc(center, diameter);
}

}  // namespace vek0::paint
