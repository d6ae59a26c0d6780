#include "clipregion.h"

#include <algorithm>

#include "vek0core/hatch/boundary.h"
#include "vek0core/hatch/triangulate.h"

namespace vek0::web {
namespace {

// Twice the area of a, b, p: positive if p is left of the line from a to b.
double leftness(const PNT_2D& a, const PNT_2D& b, const PNT_2D& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

bool isConvex(const std::vector<PNT_2D>& p) {
  // A polygon of more corners may wind around itself although it always turns left.
  constexpr std::size_t most = 4;
  if (p.size() > most) return false;
  for (std::size_t i = 0; i < p.size(); ++i)
    if (leftness(p[i], p[(i + 1) % p.size()], p[(i + 2) % p.size()]) <= 0) return false;
  return true;
}

std::vector<std::vector<PNT_2D>> piecesOf(const PNT_2D* points, std::size_t count) {
  std::vector<PNT_2D> ring(points, points + count);
  if (isConvex(ring)) return {ring};
  std::reverse(ring.begin(), ring.end());
  if (isConvex(ring)) return {ring};
  constexpr double most = 100'000;
  std::vector<std::vector<PNT_3D>> rings(1);
  for (const PNT_2D& p : ring) rings[0].emplace_back(p.x, p.y, 0);
  std::vector<HatchFace> faces;
  fillSolid(joinHatchRings(rings), most, faces);
  std::vector<std::vector<PNT_2D>> pieces;
  for (const HatchFace& face : faces) {
    std::vector<PNT_2D>& piece = pieces.emplace_back();
    const int corners = face.p[3] == face.p[2] ? 3 : 4;
    for (int i = 0; i < corners; ++i) piece.emplace_back(face.p[i].x, face.p[i].y);
  }
  return pieces;
}

// Narrows the shares of a segment that are inside a convex polygon.
bool narrow(const std::vector<PNT_2D>& piece, const PNT_2D& a, const PNT_2D& step, double& from,
            double& to) {
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const PNT_2D &p = piece[i], &q = piece[(i + 1) % piece.size()];
    const double value = leftness(p, q, a);
    const double growth = (q.x - p.x) * step.y - (q.y - p.y) * step.x;
    if (growth == 0 && value < 0) return false;
    if (growth > 0) from = std::max(from, -value / growth);
    if (growth < 0) to = std::min(to, -value / growth);
    if (from >= to) return false;
  }
  return true;
}

std::vector<PNT_2D> cut(std::vector<PNT_2D> corners, const std::vector<PNT_2D>& piece) {
  std::vector<PNT_2D> kept;
  for (std::size_t i = 0; i < piece.size() && !corners.empty(); ++i) {
    const PNT_2D &p = piece[i], &q = piece[(i + 1) % piece.size()];
    kept.clear();
    for (std::size_t k = 0; k < corners.size(); ++k) {
      const PNT_2D &a = corners[k], &b = corners[(k + 1) % corners.size()];
      const double va = leftness(p, q, a), vb = leftness(p, q, b);
      if (va >= 0) kept.push_back(a);
      if ((va >= 0) == (vb >= 0)) continue;
      const double t = va / (va - vb);
      kept.emplace_back(a.x + t * (b.x - a.x), a.y + t * (b.y - a.y));
    }
    corners.swap(kept);
  }
  return corners;
}

}  // namespace

void ClipRegion::push(const PNT_2D* points, std::size_t count) {
  Level level;
  level.box.set(points, static_cast<int>(count));
  level.pieces = piecesOf(points, count);
  m_levels.push_back(std::move(level));
}

ClipRegion::Where ClipRegion::where(const RECT_2D& box) const {
  const auto holds = [&](const Corners& piece) {
    const PNT_2D corners[] = {box.min, {box.max.x, box.min.y}, box.max, {box.min.x, box.max.y}};
    for (std::size_t i = 0; i < piece.size(); ++i)
      for (const PNT_2D& corner : corners)
        if (leftness(piece[i], piece[(i + 1) % piece.size()], corner) < 0) return false;
    return true;
  };
  Where where = Where::Inside;
  for (const Level& level : m_levels) {
    if (!level.box.intersect(box)) return Where::Outside;
    if (std::none_of(level.pieces.begin(), level.pieces.end(), holds)) where = Where::Both;
  }
  return where;
}

void ClipRegion::clip(const PNT_2D& a, const PNT_2D& b,
                      const std::function<void(double from, double to)>& each) const {
  clipFrom(0, a, b - a, 0, 1, each);
}

void ClipRegion::clipFrom(std::size_t level, const PNT_2D& a, const PNT_2D& step, double from,
                          double to, const std::function<void(double, double)>& each) const {
  if (level == m_levels.size()) return each(from, to);
  for (const Corners& piece : m_levels[level].pieces) {
    double first = from, last = to;
    if (narrow(piece, a, step, first, last)) clipFrom(level + 1, a, step, first, last, each);
  }
}

void ClipRegion::clip(const Corners& corners,
                      const std::function<void(const Corners&)>& each) const {
  clipFrom(0, corners, each);
}

void ClipRegion::clipFrom(std::size_t level, const Corners& corners,
                          const std::function<void(const Corners&)>& each) const {
  if (level == m_levels.size()) return each(corners);
  for (const Corners& piece : m_levels[level].pieces) {
    const Corners inside = cut(corners, piece);
    if (inside.size() > 2) clipFrom(level + 1, inside, each);
  }
}

bool ClipRegion::contains(const PNT_2D& at) const {
  const auto holds = [&](const Corners& piece) {
    for (std::size_t i = 0; i < piece.size(); ++i)
      if (leftness(piece[i], piece[(i + 1) % piece.size()], at) < 0) return false;
    return true;
  };
  return std::all_of(m_levels.begin(), m_levels.end(), [&](const Level& level) {
    return std::any_of(level.pieces.begin(), level.pieces.end(), holds);
  });
}

}  // namespace vek0::web
