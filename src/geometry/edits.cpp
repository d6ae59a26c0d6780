// Trims, extends, fillets and chamfers paths of edges. Crossings with other paths are found first,
// as edge and parameter, and the result is assembled from parts of edges. The points that a user
// picked decide which side of a crossing remains. Tolerances are relative to the coordinates,
// because the crossings themselves are no more precise.
#include "vek0core/geometry/edits.h"
#include "vek0core/geometry/angle.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

#include "geometry/vector.h"
#include "vek0core/geometry/constructions.h"

using vek0::detail::kTwoPi;

namespace {

using vek0::detail::cross;
using vek0::detail::dot;

constexpr int kMostMarks = 1000000;
constexpr double kStraightOn = 1e-9;  // radians
constexpr double kSteps = 1e-9;       // tolerance of a sum of lengths, as a fraction of a step

struct Place {
  std::size_t edge;
  double t;
  bool operator<(const Place& p) const { return std::tie(edge, t) < std::tie(p.edge, p.t); }
};

double toleranceAt(const EDGE_3D& edge) {
  return kTouchShare * (1 + std::max({std::fabs(edge.p1.x), std::fabs(edge.p1.y),
                                      std::fabs(edge.p2.x), std::fabs(edge.p2.y)}));
}

std::vector<Place> placesOf(const PATH_3D& path, const std::vector<PATH_3D>& cutters) {
  std::vector<Place> places;
  for (const PATH_3D& cutter : cutters)
    for (const PATH_CROSSING& c : intersectPaths(path, cutter)) places.push_back({c.edge1, c.t});
  std::sort(places.begin(), places.end());
  return places;
}

bool isSame(const PATH_3D& path, const Place& a, const Place& b) {
  const PNT_3D p = path.edges[a.edge].at(a.t), q = path.edges[b.edge].at(b.t);
  // Both places are rounded independently, hence a multiple of the tolerance.
  return p.PNT_2D::dist(q) <= 4 * toleranceAt(path.edges[a.edge]);
}

bool isFullTurn(const EDGE_3D& edge) { return std::fabs(edge.sweep) >= kTwoPi; }

// The parameter at which the edge's extension first meets a boundary; infinite if it does not.
double firstBeyond(const EDGE_3D& edge, const std::vector<PATH_3D>& bounds) {
  const double tolerance = toleranceAt(edge), slack = tolerance / edge.length();
  const double turn = edge.isArc() ? kTwoPi / std::fabs(edge.sweep) : 0;
  double best = std::numeric_limits<double>::infinity();
  std::vector<EDGE_CROSSING> found;
  for (const PATH_3D& bound : bounds) {
    for (const EDGE_3D& other : bound.edges) {
      found.clear();
      // On carriers, because the crossing lies beyond the end of the edge.
      edge.intersect(other, found, tolerance, true);
      for (const EDGE_CROSSING& c : found) {
        // The carrier of the boundary may be crossed where the boundary itself does not extend.
        if (other.dist(c.pnt) > 4 * tolerance) continue;
        // On a circle, a point before the end is reached by going around.
        const double t = turn > 0 && c.t <= 1 + slack ? c.t + turn : c.t;
        if (t > 1 + slack && (turn == 0 || t < turn - slack)) best = std::min(best, t);
      }
    }
  }
  return best;
}

// The part of the edge on the side of the pick, ending at parameter `t`.
EDGE_3D sideOf(const EDGE_3D& edge, double t, const PNT_2D& pick) {
  if (isFullTurn(edge)) return edge;
  return edge.nearest(pick) < t ? edge.part(0, t) : edge.part(t, 1);
}

// The part of an edge that arrives at parameter `t` in direction `onwards`. False if the edge has
// no such part.
bool comingTo(const EDGE_3D& edge, double t, const PNT_2D& onwards, EDGE_3D& out) {
  const bool isBefore = dot(edge.direction(t), onwards) > 0;
  // On an arc, the tangent point may be beyond an end; going around the circle reaches it.
  const double turn = edge.isArc() ? kTwoPi / std::fabs(edge.sweep) : 0;
  if (isBefore && t <= 0) t += turn;
  if (!isBefore && t >= 1) t -= turn;
  if (isBefore ? !(t > 0) : !(t < 1)) return false;
  out = isBefore ? edge.part(0, t) : edge.part(t, 1);
  if (isFullTurn(edge)) out = edge;
  return true;
}

bool meetingPoint(const EDGE_3D& a, const EDGE_3D& b, const PNT_2D& pickA, const PNT_2D& pickB,
                  EDGE_CROSSING& out) {
  std::vector<EDGE_CROSSING> found;
  a.intersect(b, found, toleranceAt(a), true);
  double least = std::numeric_limits<double>::infinity();
  for (const EDGE_CROSSING& c : found) {
    const double off = c.pnt.PNT_2D::dist(pickA) + c.pnt.PNT_2D::dist(pickB);
    if (!(off < least)) continue;
    least = off;
    out = c;
  }
  return std::isfinite(least);
}

bool meetEdges(const EDGE_3D& a, const EDGE_3D& b, const PNT_2D& pickA, const PNT_2D& pickB,
               EDGE_JOINT& out) {
  EDGE_CROSSING at;
  if (!meetingPoint(a, b, pickA, pickB, at)) return false;
  const double u = b.paramOf(at.pnt);
  out = {sideOf(a, at.t, pickA), sideOf(b, u, pickB), EDGE_3D(at.pnt, at.pnt)};
  return true;
}

bool isFine(const EDGE_3D& edge) { return PATH_3D(edge).isFinite() && edge.length() > 0; }

// The shorter of the two arcs.
EDGE_3D arcBetween(const CIRCLE_3D& circle, const PNT_3D& from, const PNT_3D& to) {
  // atan2 of cross and dot product is the signed angle below half a turn: the shorter way.
  const PNT_2D a = from - circle, b = to - circle;
  EDGE_3D arc(circle, circle.radius, circle.angle(from), std::atan2(cross(a, b), dot(a, b)), from.z,
              to.z);
  arc.p1 = from;
  arc.p2 = to;
  return arc;
}

// Replaces the corners of a path between straight edges. `reach` returns how much to cut from the
// edges before and after a corner, 0 to keep the corner.
template <class Reach, class Joint>
int cutCorners(PATH_3D& path, Reach reach, Joint joint) {
  const std::size_t n = path.edges.size();
  std::vector<EDGE_3D> out;
  int count = 0;
  if (n < 2) return 0;
  std::vector<double> from(n, 0.0), to(n);  // what remains of each edge, as lengths
  std::vector<bool> isCut(n, false);        // the corner at the beginning of each
  for (std::size_t i = 0; i < n; ++i) to[i] = path.edges[i].length();
  for (std::size_t k = 1; k < n + (path.closed ? 1 : 0); ++k) {
    const std::size_t i = k - 1, j = k % n;
    const EDGE_3D &a = path.edges[i], &b = path.edges[j];
    double before = 0, after = 0;
    if (a.isArc() || b.isArc() || !reach(a, b, before, after)) continue;
    // Cuts at both ends of an edge must not overlap; such a corner stays sharp.
    if (!(to[i] - before >= from[i]) || !(from[j] + after <= to[j])) continue;
    to[i] -= before;
    from[j] += after;
    isCut[j] = true;
    ++count;
  }
  if (count == 0) return 0;
  const auto cut = [&](std::size_t i) {
    const double length = path.edges[i].length();
    // Unchanged edges are copied exactly instead of being recomputed.
    if (from[i] == 0 && to[i] == length) return path.edges[i];
    return path.edges[i].part(from[i] / length, to[i] / length);
  };
  for (std::size_t i = 0; i < n; ++i) {
    const EDGE_3D edge = cut(i);
    if (isCut[i]) {
      const std::size_t before = (i + n - 1) % n;
      out.push_back(joint(cut(before).p2, edge.p1, path.edges[before], path.edges[i]));
    }
    // A cut that consumed the whole edge leaves nothing to draw.
    if (edge.length() > toleranceAt(edge)) out.push_back(edge);
  }
  // The joint at a closed path's beginning precedes its first edge, so the path begins with it.
  path.edges = std::move(out);
  return count;
}

template <class Take>
void walk(const PATH_3D& path, double first, double step, int count, Take take) {
  std::size_t i = 0;
  double passed = 0;
  for (int k = 0; k < count; ++k) {
    // Multiplied instead of accumulated, so that rounding errors do not add up.
    const double at = first + step * k;
    while (i + 1 < path.edges.size() && passed + path.edges[i].length() < at)
      passed += path.edges[i++].length();
    const double length = path.edges[i].length();
    // The last mark may be past the end by rounding.
    take(path.edges[i].at(length > 0 ? std::min((at - passed) / length, 1.0) : 1));
  }
}

}  // namespace

bool trimPath(const PATH_3D& path, const std::vector<PATH_3D>& cutters, const PNT_2D& pick,
              std::vector<PATH_3D>& out) {
  const std::vector<Place> places = placesOf(path, cutters);
  if (places.empty()) return false;
  Place at;
  path.nearest(pick, at.edge, at.t);
  const auto next = std::upper_bound(places.begin(), places.end(), at);
  if (path.closed) {
    // The piece around the pick is removed; what remains runs from the next crossing around to the
    // previous one.
    const Place to = next == places.begin() ? places.back() : *(next - 1);
    const Place from = next == places.end() ? places.front() : *next;
    if (isSame(path, from, to)) return false;
    out.push_back(path.part(from.edge, from.t, to.edge, to.t));
    return true;
  }
  const std::size_t last = path.edges.size() - 1;
  std::vector<PATH_3D> left;
  if (next != places.begin()) left.push_back(path.part(0, 0, (next - 1)->edge, (next - 1)->t));
  if (next != places.end()) left.push_back(path.part(next->edge, next->t, last, 1));
  for (PATH_3D& piece : left)
    if (!piece.empty()) out.push_back(std::move(piece));
  return true;
}

bool extendPath(PATH_3D& path, const std::vector<PATH_3D>& bounds, const PNT_2D& pick) {
  if (path.closed || path.empty() || !path.isFinite()) return false;
  const bool atEnd = pick.dist_square(path.end()) <= pick.dist_square(path.start());
  EDGE_3D& edge = atEnd ? path.edges.back() : path.edges.front();
  if (!(edge.length() > 0)) return false;
  // Extending the start is extending the end of the reversed edge.
  const double t = firstBeyond(atEnd ? edge : edge.reversed(), bounds);
  if (!std::isfinite(t)) return false;
  edge = atEnd ? edge.part(0, t) : edge.part(1 - t, 1);
  return true;
}

bool filletEdges(const EDGE_3D& a, const EDGE_3D& b, double radius, const PNT_2D& pickA,
                 const PNT_2D& pickB, EDGE_JOINT& out) {
  if (!isFine(a) || !isFine(b) || !(radius >= 0)) return false;
  if (radius == 0) return meetEdges(a, b, pickA, pickB, out);
  PNT_2D onA(0, 0), onB(0, 0);
  CIRCLE_3D circle(0, 0, 0, 0);
  if (!CreateCircle(a, b, radius, pickA, pickB, circle, &onA, &onB)) return false;
  const double t = a.paramOf(onA), u = b.paramOf(onB);
  EDGE_JOINT made;
  made.joint = arcBetween(circle, a.at(t), b.at(u));
  // The arc determines which sides remain, not the picks, which may be on the removed parts.
  if (!comingTo(a, t, made.joint.direction(0), made.first)) return false;
  if (!comingTo(b, u, -made.joint.direction(1), made.second)) return false;
  out = made;
  return true;
}

bool chamferEdges(const EDGE_3D& a, const EDGE_3D& b, double distA, double distB,
                  const PNT_2D& pickA, const PNT_2D& pickB, EDGE_JOINT& out) {
  EDGE_CROSSING at;
  if (!isFine(a) || !isFine(b) || a.isArc() || b.isArc() || !(distA >= 0) || !(distB >= 0) ||
      !meetingPoint(a, b, pickA, pickB, at))
    return false;
  // Toward the remaining end, and not beyond it.
  const auto cutBack = [](const EDGE_3D& edge, double t, double dist, const PNT_2D& pick,
                          EDGE_3D& kept, PNT_3D& end) {
    const bool isBefore = edge.nearest(pick) < t;
    const double to = t + (isBefore ? -dist : dist) / edge.length();
    kept = isBefore ? edge.part(0, to) : edge.part(to, 1);
    end = edge.at(to);
    return isBefore ? to >= 0 : to <= 1;
  };
  EDGE_JOINT made;
  PNT_3D from, to;
  if (!cutBack(a, at.t, distA, pickA, made.first, from) ||
      !cutBack(b, at.u, distB, pickB, made.second, to))
    return false;
  made.joint = EDGE_3D(from, to);
  out = made;
  return true;
}

int filletPath(PATH_3D& path, double radius) {
  if (!(radius > 0) || !path.isFinite()) return 0;
  const auto reach = [&](const EDGE_3D& a, const EDGE_3D& b, double& before, double& after) {
    const PNT_2D u = a.direction(1), v = b.direction(0);
    const double turn = std::atan2(cross(u, v), dot(u, v));
    // From the corner to where the fillet touches an edge.
    before = after = radius * std::fabs(std::tan(turn / 2));
    return before > kStraightOn * radius;
  };
  // Uses the directions of the original edges: one between two arcs may vanish.
  const auto arc = [&](const PNT_3D& p, const PNT_3D& q, const EDGE_3D& a, const EDGE_3D& b) {
    const PNT_2D u = a.direction(1);
    const double side = cross(u, b.direction(0)) > 0 ? radius : -radius;
    return arcBetween(CIRCLE_3D(p.x - side * u.y, p.y + side * u.x, 0, radius), p, q);
  };
  return cutCorners(path, reach, arc);
}

int chamferPath(PATH_3D& path, double dist1, double dist2) {
  if (!(dist1 >= 0) || !(dist2 >= 0) || !(dist1 + dist2 > 0) || !path.isFinite()) return 0;
  const auto reach = [&](const EDGE_3D& a, const EDGE_3D& b, double& before, double& after) {
    before = dist1;
    after = dist2;
    return cross(a.direction(1), b.direction(0)) != 0;
  };
  const auto bevel = [](const PNT_3D& p, const PNT_3D& q, const EDGE_3D&, const EDGE_3D&) {
    return EDGE_3D(p, q);
  };
  return cutCorners(path, reach, bevel);
}

bool dividePath(const PATH_3D& path, int count, std::vector<PNT_3D>& out) {
  const double length = path.length();
  if (count < 2 || count > kMostMarks || !path.isFinite() || !(length > 0)) return false;
  // A closed path has a mark at its start, an open one none at its ends.
  const double step = length / count;
  const auto take = [&](const PNT_3D& p) { out.push_back(p); };
  walk(path, path.closed ? 0 : step, step, path.closed ? count : count - 1, take);
  return true;
}

bool measurePath(const PATH_3D& path, double step, std::vector<PNT_3D>& out) {
  if (!(step > 0) || !path.isFinite() || path.empty()) return false;
  const double count = std::floor(path.length() / step + kSteps);
  if (!(count <= kMostMarks)) return false;
  walk(path, step, step, static_cast<int>(count), [&](const PNT_3D& p) { out.push_back(p); });
  return true;
}
