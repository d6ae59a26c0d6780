// The outline of a wide polyline: its left sides forward, its right sides back. Adjacent sides meet
// in a miter within the limit. Where widths jump or a miter would be too long, the outline passes
// through the vertex; it may cross itself there, and is filled by the non-zero rule.
#include "vek0core/polyline/silhouette.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "vek0core/geometry/rect.h"

namespace {

constexpr double kMitreLimit = 4;    // widths from the vertex to the corner
constexpr double kParallel = 1e-9;   // sine of the angle below which sides do not meet
constexpr double kSameWidth = 1e-9;  // width difference at a joint attributable to rounding, as a
                                     // fraction of the width
constexpr double kLeft = 1, kRight = -1;

double cross(const PNT_2D& a, const PNT_2D& b) { return a.x * b.y - a.y * b.x; }

// A segment of non-zero length: its ends, half widths there, its length and direction.
struct Segment {
  PNT_3D from, to;
  double halfStart, halfEnd;
  double length;
  PNT_2D way;  // of length 1

  PNT_3D start(double side) const { return offset(from, side * halfStart); }
  PNT_3D end(double side) const { return offset(to, side * halfEnd); }
  /// Whether its body, including ends and sides, contains the point.
  bool holds(const PNT_3D& p) const {
    const PNT_2D d(p.x - from.x, p.y - from.y);
    const double along = (d.x * way.x + d.y * way.y) / length;
    const double half = halfStart + along * (halfEnd - halfStart);
    return along >= 0 && along <= 1 && std::fabs(cross(way, d)) <= half;
  }

 private:
  PNT_3D offset(const PNT_3D& p, double d) const { return {p.x - way.y * d, p.y + way.x * d, p.z}; }
};

std::vector<Segment> segmentsOf(const std::vector<WIDE_VERTEX>& vertexes, bool closed) {
  std::vector<Segment> segments;
  // Directions need a length; vertices in the same place add nothing to the outline.
  const std::size_t n = vertexes.size();
  for (std::size_t i = 0; i + (closed ? 0 : 1) < n; ++i) {
    const WIDE_VERTEX& v = vertexes[i];
    const PNT_3D& to = vertexes[(i + 1) % n].pnt;
    const double length = std::hypot(to.x - v.pnt.x, to.y - v.pnt.y);
    if (!(length > 0) || !std::isfinite(length)) continue;
    segments.push_back({v.pnt, to, std::fabs(v.widthStart) / 2, std::fabs(v.widthEnd) / 2, length,
                        PNT_2D((to.x - v.pnt.x) / length, (to.y - v.pnt.y) / length)});
  }
  return segments;
}

// The intersection of the lines through the sides of two adjacent segments, its parameter on each
// side (0 at its start, 1 at its end), and the direction of the turn.
struct Crossing {
  PNT_3D at;
  double along, alongNext;
  double turn;
};

bool sidesCross(const Segment& a, const Segment& b, double side, Crossing& crossing) {
  const PNT_3D a0 = a.start(side), b0 = b.start(side);
  const PNT_2D da = a.end(side) - a0, db = b.end(side) - b0, between = b0 - a0;
  const double sine = cross(da, db);
  // Compared without division, so that sides of length 0 count as parallel.
  if (!(std::fabs(sine) > kParallel * std::hypot(da.x, da.y) * std::hypot(db.x, db.y)))
    return false;
  crossing.along = cross(between, db) / sine;
  crossing.alongNext = cross(between, da) / sine;
  crossing.turn = sine > 0 ? kLeft : kRight;
  crossing.at.set(a0.x + crossing.along * da.x, a0.y + crossing.along * da.y, b.from.z);
  return true;
}

// The outer side of a turn, which is the longer one; 0 for neither.
double outerSide(const Segment& a, const Segment& b) {
  const double turn = cross(a.way, b.way);
  if (turn == 0) return 0;
  return turn > 0 ? kRight : kLeft;
}

bool isSameWidth(const Segment& a, const Segment& b) {
  // Relative, because widths of one joint computed in two ways differ by rounding only.
  const double wider = std::max(a.halfEnd, b.halfStart);
  return std::fabs(a.halfEnd - b.halfStart) <= kSameWidth * wider;
}

// The outer corner of a turn; false if it is inside one of the bodies, where it would cut off the
// other, or too far out.
bool mitre(const Segment& a, const Segment& b, PNT_3D& corner) {
  const double side = outerSide(a, b);
  Crossing crossing;
  if (!sidesCross(a, b, side, crossing)) return false;
  corner = crossing.at;
  const bool isOutside = crossing.along >= 1 && crossing.alongNext <= 0 && crossing.turn == -side;
  return isOutside && corner.PNT_2D::dist(b.from) <= kMitreLimit * 2 * a.halfEnd;
}

// The corner at which the inner side of a turn can switch from one body to the other: the area that
// it omits between itself and the vertex is in both.
bool innerCorner(const Segment& a, const Segment& b, PNT_3D& corner) {
  const double side = -outerSide(a, b);
  Crossing crossing;
  if (side == 0 || !sidesCross(a, b, side, crossing)) return false;
  corner = crossing.at;
  return crossing.along >= 0 && crossing.along <= 1 && crossing.alongNext >= 0 &&
         crossing.alongNext <= 1 && a.holds(b.start(side)) && b.holds(a.end(side));
}

// An area omitted by k inner corners lies in k + 1 bodies, so one remains; but only in k of them if
// these are all joints of a ring. Returns whether such areas may overlap.
bool mayLeaveOutAlike(const std::vector<Segment>& segments) {
  constexpr double all = std::numeric_limits<double>::infinity();
  RECT_2D common(-all, -all, all, all);
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const Segment &a = segments[i], &b = segments[(i + 1) % segments.size()];
    PNT_3D corner;
    if (!innerCorner(a, b, corner)) return false;
    const double side = -outerSide(a, b);
    const PNT_2D leftOut[] = {corner, a.end(side), b.from, b.start(side)};
    RECT_2D box;
    box.set(leftOut, 4);
    if (!RECT_2D(common).intersect(box, common)) return false;
  }
  return true;
}

// Any route is correct by the non-zero rule. The one through the vertex is the simplest: the
// outline is then the sum of the bodies, which all have the same orientation.
void appendJoint(const Segment& a, const Segment& b, double side, bool isPlain,
                 std::vector<PNT_3D>& ring) {
  const PNT_3D end = a.end(side), start = b.start(side);
  ring.push_back(end);
  // Nothing to join: the sides meet already.
  if (end.PNT_2D::dist(start) <= kSameWidth * std::max(a.halfEnd, b.halfStart)) return;
  const double outer = outerSide(a, b);
  PNT_3D corner;
  if (side == -outer && !isPlain && innerCorner(a, b, corner)) {
    ring.back() = corner;
  } else if (side == outer && isSameWidth(a, b)) {
    if (mitre(a, b, corner))
      ring.back() = corner;
    else
      ring.push_back(start);
  } else {
    ring.push_back(b.from);
    ring.push_back(start);
  }
}

std::vector<PNT_3D> sideOf(const std::vector<Segment>& segments, bool closed, double side) {
  std::vector<PNT_3D> points;
  points.reserve(segments.size() + 2);
  if (!closed) points.push_back(segments.front().start(side));
  for (std::size_t i = 0; i + 1 < segments.size(); ++i)
    appendJoint(segments[i], segments[i + 1], side, false, points);
  if (closed) {
    appendJoint(segments.back(), segments.front(), side, mayLeaveOutAlike(segments), points);
  } else {
    points.push_back(segments.back().end(side));
  }
  return points;
}

}  // namespace

CPolylineSilhouette::CPolylineSilhouette(const std::vector<WIDE_VERTEX>& vertexes, bool closed) {
  const std::vector<Segment> segments = segmentsOf(vertexes, closed);
  // Zero length: the vertices still mark the place, for extents and selection.
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
