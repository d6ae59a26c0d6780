#include <cmath>
#include <vector>

#include "vek0core/polyline/offset.h"

namespace {

double turn(const LINE_2D& a, const LINE_2D& b) {
  return (a.p2.x - a.p1.x) * (b.p2.y - b.p1.y) - (a.p2.y - a.p1.y) * (b.p2.x - b.p1.x);
}

bool leftOfCorner(const LINE_2D& a, const LINE_2D& b, const PNT_2D& p) {
  const bool ofA = a.ptLeftSide(p), ofB = b.ptLeftSide(p);
  // Left of a convex corner means left of both lines, left of a reflex corner left of either.
  return turn(a, b) > 0 ? ofA && ofB : ofA || ofB;
}

}  // namespace

bool PtLeftSide(const PNT_2D* pts, int n, bool closed, const PNT_2D& p) {
  std::vector<LINE_2D> lines;
  for (int i = 0; i + 1 < n; ++i)
    // Segments without length have no side.
    if (pts[i] != pts[i + 1]) lines.emplace_back(pts[i], pts[i + 1]);
  if (lines.empty()) return false;
  if (closed && pts[n - 1] != pts[0]) lines.emplace_back(pts[n - 1], pts[0]);

  const std::size_t count = lines.size();
  std::size_t best = 0;
  double bestT = 0, bestSquare = -1;
  for (std::size_t i = 0; i < count; ++i) {
    const PAR_LINE_2D line(lines[i]);
    const double along = (p.x - line.x0) * line.dx + (p.y - line.y0) * line.dy;
    const double t = along / (line.dx * line.dx + line.dy * line.dy);
    PNT_2D foot = t <= 0 ? lines[i].p1 : lines[i].p2;
    if (t > 0 && t < 1) line.calcPt(t, foot);
    const double square = p.dist_square(foot);
    if (bestSquare >= 0 && !(square < bestSquare)) continue;
    best = i;
    bestT = t;
    bestSquare = square;
  }
  const bool isRing = closed && count > 1;
  // The nearest point is a corner: both of its segments decide, as the extension of either alone
  // would be wrong on one side.
  if (bestT <= 0 && (best > 0 || isRing))
    return leftOfCorner(lines[(best + count - 1) % count], lines[best], p);
  if (bestT >= 1 && (best + 1 < count || isRing))
    return leftOfCorner(lines[best], lines[(best + 1) % count], p);
  return lines[best].ptLeftSide(p);
}
