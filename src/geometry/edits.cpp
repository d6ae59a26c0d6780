#include "vek0core/geometry/edits.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

#include "vek0core/geometry/constructions.h"

namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr int kMostMarks = 1000000;
constexpr double kStraightOn = 1e-9;  // radians
constexpr double kSteps = 1e-9;       // share of a step that a sum of lengths may be off

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
  return p.PNT_2D::dist(q) <= 4 * toleranceAt(path.edges[a.edge]);
}

bool isFullTurn(const EDGE_3D& edge) { return std::fabs(edge.sweep) >= kTwoPi; }

// The parameter at which the edge's end meets a bound first; infinite when it does not.
double firstBeyond(const EDGE_3D& edge, const std::vector<PATH_3D>& bounds) {
  const double tolerance = toleranceAt(edge), length = edge.length();
  const double turn = edge.isArc() ? kTwoPi / std::fabs(edge.sweep) : 0;
  double best = std::numeric_limits<double>::infinity();
  std::vector<EDGE_CROSSING> found;
  for (const PATH_3D& bound : bounds) {
    for (const EDGE_3D& other : bound.edges) {
      found.clear();
      edge.intersect(other, found, tolerance, true);
      for (const EDGE_CROSSING& c : found) {
        if (other.dist(c.pnt) > 4 * tolerance) continue;
        const double t = turn > 0 && c.t <= 1 + tolerance / length ? c.t + turn : c.t;
        if (t > 1 + tolerance / length && (turn == 0 || t < turn)) best = std::min(best, t);
      }
    }
  }
  return best;
}

// The edge with the place `t` as its end on the side away from the pick, and the direction
// in which it would go on there.
EDGE_3D keptSide(const EDGE_3D& edge, double t, const PNT_2D& pick, PNT_2D& onwards) {
  onwards = edge.direction(t);
  if (isFullTurn(edge)) return edge;
  if (edge.nearest(pick) < t) return edge.part(0, t);
  onwards = -onwards;
  return edge.part(t, 1);
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

bool isFine(const EDGE_3D& edge) { return PATH_3D(edge).isFinite() && edge.length() > 0; }

EDGE_3D arcBetween(const CIRCLE_3D& circle, const PNT_3D& from, const PNT_3D& to,
                   const PNT_2D& onwards) {
  const double start = circle.angle(from);
  double sweep = circle.angle(to) - start;
  const PNT_2D left(-(from.y - circle.y), from.x - circle.x);
  const bool isLeft = left.x * onwards.x + left.y * onwards.y > 0;
  if (isLeft && sweep < 0) sweep += kTwoPi;
  if (!isLeft && sweep > 0) sweep -= kTwoPi;
  EDGE_3D arc(circle, circle.radius, start, sweep, from.z, to.z);
  arc.p1 = from;
  arc.p2 = to;
  return arc;
}

// Replaces the corners of a path between straight edges. `reach` tells how much of the
// edges before and after a corner goes, 0 for a corner that stays.
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
    if (!(to[i] - before >= from[i]) || !(from[j] + after <= to[j])) continue;
    to[i] -= before;
    from[j] += after;
    isCut[j] = true;
    ++count;
  }
  if (count == 0) return 0;
  const auto cut = [&](std::size_t i) {
    const double length = path.edges[i].length();
    if (from[i] == 0 && to[i] == length) return path.edges[i];
    return path.edges[i].part(from[i] / length, to[i] / length);
  };
  for (std::size_t i = 0; i < n; ++i) {
    const EDGE_3D edge = cut(i);
    if (isCut[i]) {
      const EDGE_3D before = cut((i + n - 1) % n);
      out.push_back(joint(before, edge));
    }
    if (edge.length() > toleranceAt(edge)) out.push_back(edge);
  }
  // The joint of a closed path's beginning stands before its first edge, and so begins it.
  path.edges = std::move(out);
  return count;
}

template <class Take>
void walk(const PATH_3D& path, double first, double step, int count, Take take) {
  std::size_t i = 0;
  double passed = 0;
  for (int k = 0; k < count; ++k) {
    const double at = first + step * k;
    while (i + 1 < path.edges.size() && passed + path.edges[i].length() < at)
      passed += path.edges[i++].length();
    const double length = path.edges[i].length();
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
  const double t = firstBeyond(atEnd ? edge : edge.reversed(), bounds);
  if (!std::isfinite(t)) return false;
  edge = atEnd ? edge.part(0, t) : edge.part(1 - t, 1);
  return true;
}

bool filletEdges(const EDGE_3D& a, const EDGE_3D& b, double radius, const PNT_2D& pickA,
                 const PNT_2D& pickB, EDGE_JOINT& out) {
  if (!isFine(a) || !isFine(b) || !(radius >= 0)) return false;
  PNT_2D onA(0, 0), onB(0, 0), onwards(0, 0), ignored(0, 0);
  CIRCLE_3D circle(0, 0, 0, 0);
  if (radius == 0) {
    EDGE_CROSSING at;
    if (!meetingPoint(a, b, pickA, pickB, at)) return false;
    onA = onB = at.pnt;
  } else if (!CreateCircle(a, b, radius, pickA, pickB, circle, &onA, &onB)) {
    return false;
  }
  const double t = a.paramOf(onA), u = b.paramOf(onB);
  EDGE_JOINT made;
  made.first = keptSide(a, t, pickA, onwards);
  made.second = keptSide(b, u, pickB, ignored);
  const PNT_3D from = a.at(t), to = b.at(u);
  made.joint = radius == 0 ? EDGE_3D(from, from) : arcBetween(circle, from, to, onwards);
  out = made;
  return true;
}

bool chamferEdges(const EDGE_3D& a, const EDGE_3D& b, double distA, double distB,
                  const PNT_2D& pickA, const PNT_2D& pickB, EDGE_JOINT& out) {
  EDGE_CROSSING at;
  if (!isFine(a) || !isFine(b) || a.isArc() || b.isArc() || !(distA >= 0) || !(distB >= 0) ||
      !meetingPoint(a, b, pickA, pickB, at))
    return false;
  // Towards the end that remains, and not past it.
  const auto back = [](const EDGE_3D& edge, double t, double dist, const PNT_2D& pick, double& to) {
    const double share = dist / edge.length();
    const bool isBefore = edge.nearest(pick) < t;
    to = isBefore ? t - share : t + share;
    return isBefore ? to >= 0 : to <= 1;
  };
  double t, u;
  if (!back(a, at.t, distA, pickA, t) || !back(b, at.u, distB, pickB, u)) return false;
  const bool firstPart = a.nearest(pickA) < at.t, secondPart = b.nearest(pickB) < at.u;
  out.first = firstPart ? a.part(0, t) : a.part(t, 1);
  out.second = secondPart ? b.part(0, u) : b.part(u, 1);
  out.joint = EDGE_3D(a.at(t), b.at(u));
  return true;
}

int filletPath(PATH_3D& path, double radius) {
  if (!(radius > 0) || !path.isFinite()) return 0;
  const auto reach = [&](const EDGE_3D& a, const EDGE_3D& b, double& before, double& after) {
    const PNT_2D u = a.direction(1), v = b.direction(0);
    const double turn = std::atan2(u.x * v.y - u.y * v.x, u.x * v.x + u.y * v.y);
    before = after = radius * std::fabs(std::tan(turn / 2));
    return before > kStraightOn * radius;
  };
  return cutCorners(path, reach, [&](const EDGE_3D& a, const EDGE_3D& b) {
    const PNT_2D u = a.direction(1), v = b.direction(0);
    const double side = u.x * v.y - u.y * v.x > 0 ? 1 : -1;
    const CIRCLE_3D circle(a.p2.x - side * radius * u.y, a.p2.y + side * radius * u.x, 0, radius);
    return arcBetween(circle, a.p2, b.p1, u);
  });
}

int chamferPath(PATH_3D& path, double dist1, double dist2) {
  if (!(dist1 >= 0) || !(dist2 >= 0) || !(dist1 + dist2 > 0) || !path.isFinite()) return 0;
  const auto reach = [&](const EDGE_3D& a, const EDGE_3D& b, double& before, double& after) {
    const PNT_2D u = a.direction(1), v = b.direction(0);
    before = dist1;
    after = dist2;
    return u.x * v.y - u.y * v.x != 0;
  };
  return cutCorners(path, reach,
                    [](const EDGE_3D& a, const EDGE_3D& b) { return EDGE_3D(a.p2, b.p1); });
}

bool dividePath(const PATH_3D& path, int count, std::vector<PNT_3D>& out) {
  const double length = path.length();
  if (count < 2 || count > kMostMarks || !path.isFinite() || !(length > 0)) return false;
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
