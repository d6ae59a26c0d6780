#include "vek0core/polyline/silhouette.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double kMitreLimit = 4;   // widths from the vertex to the corner
constexpr double kParallel = 1e-9;  // sine of the angle below which sides do not meet
constexpr double kLeft = 1, kRight = -1;

// A segment with length: its ends, half widths there, and the unit vector to its left.
struct Segment {
  PNT_3D from, to;
  double halfStart, halfEnd;
  double nx, ny;

  PNT_3D start(double side) const { return offset(from, side * halfStart); }
  PNT_3D end(double side) const { return offset(to, side * halfEnd); }

 private:
  PNT_3D offset(const PNT_3D& p, double d) const { return {p.x + nx * d, p.y + ny * d, p.z}; }
};

std::vector<Segment> segmentsOf(const std::vector<WIDE_VERTEX>& vertexes, bool closed) {
  std::vector<Segment> segments;
  const std::size_t n = vertexes.size();
  for (std::size_t i = 0; i + (closed ? 0 : 1) < n; ++i) {
    const WIDE_VERTEX& v = vertexes[i];
    const PNT_3D& to = vertexes[(i + 1) % n].pnt;
    const double length = std::hypot(to.x - v.pnt.x, to.y - v.pnt.y);
    if (!(length > 0) || !std::isfinite(length)) continue;
    segments.push_back({v.pnt, to, std::fabs(v.widthStart) / 2, std::fabs(v.widthEnd) / 2,
                        -(to.y - v.pnt.y) / length, (to.x - v.pnt.x) / length});
  }
  return segments;
}

// Where the sides of two neighbours meet; false when they run alike or the corner
// would lie too far out.
bool mitre(const Segment& a, const Segment& b, double side, PNT_3D& corner) {
  const PNT_3D a0 = a.start(side), a1 = a.end(side), b0 = b.start(side), b1 = b.end(side);
  const double ax = a1.x - a0.x, ay = a1.y - a0.y, bx = b1.x - b0.x, by = b1.y - b0.y;
  const double cross = ax * by - ay * bx;
  if (!(std::fabs(cross) > kParallel * std::hypot(ax, ay) * std::hypot(bx, by))) return false;
  const double t = ((b0.x - a0.x) * by - (b0.y - a0.y) * bx) / cross;
  corner.set(a0.x + t * ax, a0.y + t * ay, b.from.z);
  const double reach = kMitreLimit * 2 * std::max(a.halfEnd, b.halfStart);
  return corner.PNT_2D::dist(b.from) <= reach;
}

void appendJoint(const Segment& a, const Segment& b, double side, std::vector<PNT_3D>& ring) {
  PNT_3D corner(0, 0, 0);
  if (mitre(a, b, side, corner)) {
    ring.push_back(corner);
    return;
  }
  ring.push_back(a.end(side));
  if (b.start(side) != a.end(side)) ring.push_back(b.start(side));
}

std::vector<PNT_3D> sideOf(const std::vector<Segment>& segments, bool closed, double side) {
  std::vector<PNT_3D> points;
  points.reserve(segments.size() + 2);
  if (!closed) points.push_back(segments.front().start(side));
  for (std::size_t i = 0; i + 1 < segments.size(); ++i) {
    appendJoint(segments[i], segments[i + 1], side, points);
  }
  if (closed) {
    appendJoint(segments.back(), segments.front(), side, points);
  } else {
    points.push_back(segments.back().end(side));
  }
  return points;
}

}  // namespace

CPolylineSilhouette::CPolylineSilhouette(const std::vector<WIDE_VERTEX>& vertexes, bool closed) {
  const std::vector<Segment> segments = segmentsOf(vertexes, closed);
  if (segments.empty()) {
    if (vertexes.empty()) return;
    m_runs.emplace_back();
    for (const WIDE_VERTEX& v : vertexes) m_runs.back().push_back(v.pnt);
    return;
  }
  m_runs.push_back(sideOf(segments, closed, kLeft));
  std::vector<PNT_3D> right = sideOf(segments, closed, kRight);
  if (closed) {
    m_runs.push_back(std::move(right));
  } else {
    m_runs.back().insert(m_runs.back().end(), right.rbegin(), right.rend());
  }
}
