// Joins the edges of a loop to rings. Files store edges in any order and direction, with gaps. Each
// end of an edge is matched with another end: first with its successor in the file, then with one
// nearby, with increasing reach, and last with whatever is left. Rings are walks along matched
// ends.
#include "vek0core/hatch/loops.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numeric>
#include <utility>

#include "geometry/vector.h"
#include "hatch/ringbox.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/geometry/ellipse.h"

namespace {

using std::size_t;
using vek0::detail::boxOf;

constexpr double kJoinTolerance = 1e-6;  // fraction of the loop's size
constexpr double kReachGrowth = 8;       // factor between two searches across a gap
constexpr int kMostCandidates = 16;      // per cell

bool samePlace(const PNT_2D& a, const PNT_2D& b) { return a == b; }

// --- Which end of an edge meets which

// Ends are numbered: 2 * edge for its beginning, 2 * edge + 1 for its end. Joined edges form
// chains; the two free ends of every chain refer to each other.
class Joints {
 public:
  Joints(std::vector<PNT_2D> ends, double tolerance)
      : m_ends(std::move(ends)), m_tolerance(tolerance), m_mate(m_ends.size(), kFree) {
    // Each edge is a chain of its own: its ends 2e and 2e + 1 differ in the lowest bit only.
    for (size_t e = 0; e < m_ends.size(); ++e) m_far.push_back(e ^ 1);
  }

  size_t count() const { return m_ends.size(); }
  size_t freeCount() const { return m_ends.size() - m_joined; }
  bool hasGaps() const { return m_hasGaps; }
  bool isFree(size_t end) const { return m_mate[end] == kFree; }
  const PNT_2D& at(size_t end) const { return m_ends[end]; }
  size_t mate(size_t end) const { return m_mate[end]; }
  /// The other free end of a free end's chain.
  size_t far(size_t end) const { return m_far[end]; }
  bool isNear(size_t a, size_t b) const { return m_ends[a].dist(m_ends[b]) <= m_tolerance; }

  void join(size_t a, size_t b) {
    m_hasGaps = m_hasGaps || !isNear(a, b);
    m_mate[a] = b;
    m_mate[b] = a;
    // Only the entries of free ends are ever read, so those inside a chain may become stale.
    const size_t farA = m_far[a], farB = m_far[b];
    m_far[farA] = farB;
    m_far[farB] = farA;
    m_joined += 2;
  }

 private:
  static constexpr size_t kFree = static_cast<size_t>(-1);

  std::vector<PNT_2D> m_ends;
  double m_tolerance;
  std::vector<size_t> m_mate, m_far;
  size_t m_joined = 0;
  bool m_hasGaps = false;
};

// The free ends in square cells, sorted by cell: no order of edges and no choice of coordinates
// makes it slow.
class FreeEnds {
 public:
  FreeEnds(const Joints& joints, const PNT_2D& corner, double cellSize)
      : m_joints(joints), m_corner(corner), m_cellSize(cellSize) {
    for (size_t e = 0; e < joints.count(); ++e) {
      if (joints.isFree(e)) m_slots.push_back({keyOf(joints.at(e), 0, 0), e});
    }
    std::sort(m_slots.begin(), m_slots.end());
    m_next.resize(m_slots.size());
    std::iota(m_next.begin(), m_next.end(), size_t{1});
  }

  // The free end nearest to `end` within `reach`, which is at most a cell; `end` if there is none.
  // The other end of the same chain is considered if `ownChain` is true.
  size_t nearest(size_t end, double reach, bool ownChain) {
    size_t best = end;
    double bestDist = reach;
    const auto look = [&](size_t other) {
      if (other == end || (!ownChain && other == m_joints.far(end))) return;
      const double dist = m_joints.at(end).dist(m_joints.at(other));
      // Of equally near ends the first one wins, which makes the result reproducible.
      if (dist > bestDist || (dist == bestDist && best != end)) return;
      best = other;
      bestDist = dist;
    };
    // With a reach of at most one cell, the nine cells around the end suffice.
    for (int dx = -1; dx <= 1; ++dx) {
      for (int dy = -1; dy <= 1; ++dy) forEachIn(keyOf(m_joints.at(end), dx, dy), look);
    }
    return best;
  }

 private:
  using Slot = std::pair<std::uint64_t, size_t>;  // cell, end

  std::uint64_t keyOf(const PNT_2D& p, int dx, int dy) const {
    // The added 1 keeps the cells before the first column and row from being negative.
    const auto column = static_cast<std::int64_t>((p.x - m_corner.x) / m_cellSize) + dx + 1;
    const auto row = static_cast<std::int64_t>((p.y - m_corner.y) / m_cellSize) + dy + 1;
    return (static_cast<std::uint64_t>(column) << 32) + static_cast<std::uint64_t>(row);
  }

  template <class Look>
  void forEachIn(std::uint64_t key, const Look& look) {
    const auto first = std::lower_bound(m_slots.begin(), m_slots.end(), Slot{key, 0});
    size_t i = stillFree(static_cast<size_t>(first - m_slots.begin()));
    // Thousands of ends in one place would make this quadratic; any of the nearest will do.
    for (int looked = 0; looked < kMostCandidates; ++looked) {
      if (i >= m_slots.size() || m_slots[i].first != key) return;
      look(m_slots[i].second);
      i = stillFree(i + 1);
    }
  }

  // The first slot from `i` on whose end is free. Path compression shortens later searches.
  size_t stillFree(size_t i) {
    while (i < m_slots.size() && !m_joints.isFree(m_slots[i].second)) {
      if (m_next[i] < m_slots.size()) m_next[i] = m_next[m_next[i]];
      i = m_next[i];
    }
    return i;
  }

  const Joints& m_joints;
  PNT_2D m_corner;
  double m_cellSize;
  std::vector<Slot> m_slots;
  std::vector<size_t> m_next;
};

// Most files list the edges in order, the last one leading to the first.
void joinInOrder(Joints& joints) {
  for (size_t end = 1; end < joints.count(); end += 2) {
    const size_t next = (end + 1) % joints.count();
    if (joints.isFree(next) && joints.isNear(end, next)) joints.join(end, next);
  }
}

void joinNear(Joints& joints, const PNT_2D& corner, double reach, double cellSize, bool ownChain) {
  FreeEnds ends(joints, corner, cellSize);
  for (size_t end = 0; end < joints.count(); ++end) {
    if (!joints.isFree(end)) continue;
    const size_t other = ends.nearest(end, reach, ownChain);
    if (other != end) joints.join(end, other);
  }
}

// Joins all remaining chains into one ring.
void joinRest(Joints& joints) {
  size_t first = 0;
  while (first < joints.count() && !joints.isFree(first)) ++first;
  if (first == joints.count()) return;
  size_t tail = joints.far(first);
  for (size_t end = first + 1; end < joints.count(); ++end) {
    if (!joints.isFree(end) || end == tail) continue;
    const size_t next = joints.far(end);
    joints.join(tail, end);
    tail = next;
  }
  joints.join(tail, first);
}

// Exact matches take precedence over near ones, so that a nearby end does not take the partner of
// another. Across gaps, chains are joined to other chains; the last one closes on itself.
void joinAll(Joints& joints, const PNT_2D& corner, double size, double tolerance) {
  joinInOrder(joints);
  if (joints.freeCount() > 0 && tolerance > 0) {
    // First exact matches, then the tolerance, then reaches that grow by a constant factor: the
    // number of searches is logarithmic in the size.
    joinNear(joints, corner, 0, tolerance, true);
    joinNear(joints, corner, tolerance, tolerance, true);
    // The last two free ends belong to one chain, which `joinRest` closes.
    for (double reach = tolerance; joints.freeCount() > 2 && reach < size;) {
      reach *= kReachGrowth;
      joinNear(joints, corner, reach, reach, false);
    }
  }
  joinRest(joints);
}

// --- Rings from joined edges

void appendPoint(const PNT_3D& p, double tolerance, bool isJoint, HATCH_RING& ring) {
  // Only joints merge points within the tolerance; inside an edge, close points are detail.
  const bool same = !ring.empty() && (samePlace(ring.back(), p) ||
                                      (isJoint && ring.back().PNT_2D::dist(p) <= tolerance));
  if (!same) ring.push_back(p);
}

void appendEdge(const PNT_3D* points, size_t count, bool forward, double tolerance,
                HATCH_RING& ring) {
  for (size_t k = 0; k < count; ++k) {
    appendPoint(points[forward ? k : count - 1 - k], tolerance, k == 0, ring);
  }
}

void closeRing(double tolerance, HATCH_RING& ring) {
  if (ring.size() > 1 && ring.back().PNT_2D::dist(ring.front()) <= tolerance) ring.pop_back();
  while (ring.size() > 1 && samePlace(ring.back(), ring.front())) ring.pop_back();
}

}  // namespace

bool HatchLoopBuilder::addEdge(size_t first) {
  const auto from = m_points.begin() + static_cast<std::ptrdiff_t>(first);
  const size_t count = m_points.size() - first;
  if (count < 2 || !std::all_of(from, m_points.end(), vek0::detail::inReach)) {
    m_points.erase(from, m_points.end());
    return false;
  }
  m_edges.push_back({first, count});
  return true;
}

// Keeps four of the points from `first` on if there is no room for all: they represent a curve that
// begins before them.
void HatchLoopBuilder::thinCurve(size_t first) {
  constexpr size_t few = 4;
  const size_t count = m_points.size() - first;
  if (count <= few) return;
  // The budget is spent only on curves that keep all their points.
  if (count <= m_curveRoom) {
    m_curveRoom -= count;
    return;
  }
  for (size_t k = 1; k <= few; ++k) m_points[first + k - 1] = m_points[first + k * count / few - 1];
  m_points.resize(first + few);
  m_coarse = true;
}

bool HatchLoopBuilder::addLine(const PNT_3D& from, const PNT_3D& to) {
  const size_t first = m_points.size();
  m_points.push_back(from);
  m_points.push_back(to);
  return addEdge(first);
}

bool HatchLoopBuilder::addArc(const PNT_3D& center, double radius, double start, double end,
                              bool ccw) {
  return radius > 0 && addEllipse(center, PNT_3D(radius, 0, 0), 1, start, end, ccw);
}

bool HatchLoopBuilder::addEllipse(const PNT_3D& center, const PNT_3D& major, double ratio,
                                  double start, double end, bool ccw) {
  ELLIPSE_3D ellipse;
  // The ellipse is evaluated counterclockwise; a clockwise edge uses mirrored angles and is
  // reversed.
  if (!ellipse.set(center, major, ratio, ccw ? start : -end, ccw ? end : -start)) return false;
  const size_t first = m_points.size();
  ellipse.chords(m_points);
  thinCurve(first + 1);
  if (!ccw) std::reverse(m_points.begin() + static_cast<std::ptrdiff_t>(first), m_points.end());
  return addEdge(first);
}

bool HatchLoopBuilder::addSpline(const SPLINE_3D& spline) {
  const size_t first = m_points.size();
  if (spline.isValid()) {
    spline.chords(kArcChordError * spline.size(), m_points);
    thinCurve(first + 1);
  } else {
    spline.controlPolygon(m_points);
  }
  return addEdge(first);
}

bool HatchLoopBuilder::addPolyline(const std::vector<PNT_3D>& points,
                                   const std::vector<double>& bulges, bool closed) {
  if (points.empty()) return false;
  const auto bulge = [&](size_t i) { return i < bulges.size() ? bulges[i] : 0; };
  const size_t first = m_points.size();
  m_points.push_back(points[0]);
  const size_t segments = points.size() - (closed ? 0 : 1);
  for (size_t i = 0; i < segments; ++i) {
    const size_t begin = m_points.size();
    bulgePoints(points[i], points[(i + 1) % points.size()], bulge(i), m_points);
    thinCurve(begin);
  }
  return addEdge(first);
}

bool HatchLoopBuilder::build(std::vector<HATCH_RING>& rings) {
  const RECT_2D box = boxOf(m_points);
  // Relative to the size, because hatches range from screws to maps.
  const double size = std::max(box.max.x - box.min.x, box.max.y - box.min.y);
  const double tolerance = m_edges.empty() ? 0 : kJoinTolerance * size;
  std::vector<PNT_2D> ends;
  ends.reserve(2 * m_edges.size());
  for (const Edge& e : m_edges) {
    ends.push_back(m_points[e.first]);
    ends.push_back(m_points[e.first + e.count - 1]);
  }
  Joints joints(std::move(ends), tolerance);
  joinAll(joints, box.min, size, tolerance);

  std::vector<bool> used(m_edges.size());
  for (size_t i = 0; i < m_edges.size(); ++i) {
    HATCH_RING ring;
    // `mate(end ^ 1)` passes to the far end of the edge and on to the end joined with it. After
    // `joinAll` every end has a mate, so the walk returns to edge i.
    for (size_t end = 2 * i; !used[end / 2]; end = joints.mate(end ^ 1)) {
      const Edge& e = m_edges[end / 2];
      used[end / 2] = true;
      appendEdge(&m_points[e.first], e.count, end % 2 == 0, tolerance, ring);
    }
    closeRing(tolerance, ring);
    if (ring.size() >= 3) rings.push_back(std::move(ring));
  }
  clear();
  return !joints.hasGaps();
}
