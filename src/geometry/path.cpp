// Chains of edges. Crossings of two paths, or of one with itself, are looked up by the boxes of the
// edges, so that only edges near each other are intersected. A crossing in a vertex is found by
// both edges that meet there, and is reported once.
#include "vek0core/geometry/path.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

#include "geometry/boxindex.h"

namespace {

using vek0::detail::BoxIndex;

constexpr double kLargest = 1e100;  // squares and their products stay finite

bool isFine(const PNT_3D& p) {
  return std::fabs(p.x) < kLargest && std::fabs(p.y) < kLargest && std::fabs(p.z) < kLargest;
}

std::vector<RECT_2D> boxesOf(const PATH_3D& path, double more) {
  std::vector<RECT_2D> boxes;
  boxes.reserve(path.edges.size());
  for (const EDGE_3D& edge : path.edges) {
    boxes.push_back(edge.bdry());
    boxes.back().inflate(more, more);
  }
  return boxes;
}

// Relative to the largest coordinate, whose rounding limits the accuracy of crossings.
double toleranceOf(const RECT_2D& box) {
  if (!box.validRegion()) return kTouchShare;
  return kTouchShare * (1 + std::max({std::fabs(box.min.x), std::fabs(box.min.y),
                                      std::fabs(box.max.x), std::fabs(box.max.y)}));
}

bool comesFirst(const PATH_CROSSING& a, const PATH_CROSSING& b) {
  return std::tie(a.edge1, a.t, a.edge2, a.u) < std::tie(b.edge1, b.t, b.edge2, b.u);
}

bool isAtStart(const PATH_CROSSING& c) { return c.edge1 == 0 && c.t == 0; }

bool isSame(const PATH_CROSSING& a, const PATH_CROSSING& b, double tolerance) {
  return a.pnt.PNT_2D::dist(b.pnt) <= 4 * tolerance;
}

// Whether the distance along the path from a to b is also that short.
bool isSamePass(const PATH_3D& path, const PATH_CROSSING& a, const PATH_CROSSING& b,
                double tolerance) {
  double way = b.t * path.edges[b.edge1].length() - a.t * path.edges[a.edge1].length();
  for (std::size_t i = a.edge1; i < b.edge1 && way <= 4 * tolerance; ++i)
    way += path.edges[i].length();
  return way <= 4 * tolerance;
}

// Whether the point is the joint between the two edges.
bool isJoint(const PATH_3D& path, const EDGE_CROSSING& c, std::size_t i, std::size_t j) {
  const std::size_t n = path.edges.size();
  const bool onwards = j == i + 1 && c.t == 1 && c.u == 0;
  return onwards || (path.closed && i == 0 && j + 1 == n && c.t == 0 && c.u == 1);
}

}  // namespace

PATH_3D::PATH_3D(const ARC_3D& arc) : edges{EDGE_3D(arc)}, closed(arc.startAngle == arc.endAngle) {}

PATH_3D::PATH_3D(const std::vector<PNT_3D>& points, const std::vector<double>& bulges,
                 bool isClosed)
    : closed(isClosed) {
  const std::size_t n = points.size();
  if (n < 2) return;
  const std::size_t segments = closed ? n : n - 1;
  edges.reserve(segments);
  for (std::size_t i = 0; i < segments; ++i)
    edges.emplace_back(points[i], points[(i + 1) % n], i < bulges.size() ? bulges[i] : 0);
}

double PATH_3D::length() const {
  double sum = 0;
  for (const EDGE_3D& edge : edges) sum += edge.length();
  return sum;
}

PATH_3D PATH_3D::reversed() const {
  PATH_3D back;
  back.closed = closed;
  back.edges.reserve(edges.size());
  for (auto it = edges.rbegin(); it != edges.rend(); ++it) back.edges.push_back(it->reversed());
  return back;
}

RECT_2D PATH_3D::bdry() const {
  RECT_2D box;
  box.initRegion();
  for (const EDGE_3D& edge : edges) box.updateRegion(edge.bdry());
  return box;
}

bool PATH_3D::isFinite() const {
  return std::all_of(edges.begin(), edges.end(), [](const EDGE_3D& e) {
    const bool arc = !e.isArc() || (isFine(PNT_3D(e.center.x, e.center.y, e.radius)) &&
                                    std::isfinite(e.startAngle) && std::isfinite(e.sweep));
    return isFine(e.p1) && isFine(e.p2) && arc;
  });
}

double PATH_3D::area() const {
  if (empty()) return 0;
  // Relative to the first point, since products of large coordinates would lose the digits.
  const PNT_2D o = edges.front().p1;
  double twice = 0;
  for (const EDGE_3D& e : edges) {
    twice += (e.p1.x - o.x) * (e.p2.y - o.y) - (e.p2.x - o.x) * (e.p1.y - o.y);
    // Area of the segment between an arc and its chord.
    if (e.isArc()) twice += e.radius * e.radius * (e.sweep - std::sin(e.sweep));
  }
  return twice / 2;
}

void PATH_3D::nearest(const PNT_2D& p, std::size_t& edge, double& t) const {
  double best = std::numeric_limits<double>::infinity();
  edge = 0;
  t = 0;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const double at = edges[i].nearest(p);
    const double square = edges[i].at(at).PNT_2D::dist_square(p);
    if (!(square < best)) continue;
    best = square;
    edge = i;
    t = at;
  }
}

PATH_3D PATH_3D::part(std::size_t edge1, double t1, std::size_t edge2, double t2) const {
  PATH_3D cut;
  const bool straightOn = std::tie(edge1, t1) < std::tie(edge2, t2);
  if (!straightOn && !closed) return cut;
  // Empty parts at the ends are skipped, so that the result has no edges of length 0.
  const auto add = [&](std::size_t i, double from, double to) {
    if (from < to) cut.edges.push_back(edges[i].part(from, to));
  };
  if (straightOn && edge1 == edge2) {
    add(edge1, t1, t2);
    return cut;
  }
  if (edges.size() == 1) {
    // One arc through the beginning of a circle.
    cut.edges.push_back(edges[0].part(t1, 1 + t2));
    return cut;
  }
  add(edge1, t1, 1);
  for (std::size_t i = (edge1 + 1) % edges.size(); i != edge2; i = (i + 1) % edges.size())
    add(i, 0, 1);
  add(edge2, 0, t2);
  return cut;
}

std::vector<PATH_CROSSING> intersectPaths(const PATH_3D& a, const PATH_3D& b) {
  std::vector<PATH_CROSSING> found;
  if (!a.isFinite() || !b.isFinite()) return found;
  RECT_2D all = a.bdry();
  all.updateRegion(b.bdry());
  const double tolerance = toleranceOf(all);
  const BoxIndex index(boxesOf(b, tolerance));
  std::vector<EDGE_CROSSING> points;
  for (std::size_t i = 0; i < a.edges.size(); ++i) {
    index.find(a.edges[i].bdry(), [&](std::size_t j) {
      points.clear();
      a.edges[i].intersect(b.edges[j], points, tolerance);
      for (const EDGE_CROSSING& c : points) found.push_back({c.pnt, i, j, c.t, c.u});
      return true;
    });
  }
  // A point where edges join is found once per edge.
  std::sort(found.begin(), found.end(), comesFirst);
  const auto repeats = [&](const PATH_CROSSING& c, const PATH_CROSSING& d) {
    return isSame(c, d, tolerance) && isSamePass(a, c, d, tolerance);
  };
  found.erase(std::unique(found.begin(), found.end(), repeats), found.end());
  // The end of a closed path coincides with its beginning.
  if (a.closed && found.size() > 1 && isAtStart(found.front()) &&
      found.back().edge1 + 1 == a.edges.size() && found.back().t == 1)
    found.pop_back();
  return found;
}

std::vector<PATH_CROSSING> selfIntersections(const PATH_3D& path) {
  std::vector<PATH_CROSSING> found;
  if (!path.isFinite()) return found;
  const double tolerance = toleranceOf(path.bdry());
  const std::vector<RECT_2D> boxes = boxesOf(path, tolerance);
  const BoxIndex index(boxes);
  std::vector<EDGE_CROSSING> points;
  for (std::size_t i = 0; i < path.edges.size(); ++i) {
    index.find(boxes[i], [&](std::size_t j) {
      // Each pair once.
      if (j <= i) return true;
      points.clear();
      // Neighbors share an end, which is not an intersection.
      path.edges[i].intersect(path.edges[j], points, tolerance);
      for (const EDGE_CROSSING& c : points)
        if (!isJoint(path, c, i, j)) found.push_back({c.pnt, i, j, c.t, c.u});
      return true;
    });
  }
  std::sort(found.begin(), found.end(), comesFirst);
  const auto repeats = [&](const PATH_CROSSING& c, const PATH_CROSSING& d) {
    return isSame(c, d, tolerance);
  };
  found.erase(std::unique(found.begin(), found.end(), repeats), found.end());
  // The end of a closed path is its start, where the intersection was already found.
  if (path.closed && !found.empty() && isAtStart(found.front())) {
    const std::size_t last = path.edges.size() - 1;
    std::erase_if(found, [last](const PATH_CROSSING& c) { return c.edge2 == last && c.u == 1; });
  }
  return found;
}
