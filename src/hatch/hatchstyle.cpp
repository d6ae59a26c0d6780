// Selects the rings that a hatch style keeps. Nesting is determined by a point inside each ring,
// whose crossings with other rings are counted. Trees over the boxes of rings and of their edges
// avoid comparing all pairs, and a limit on the steps bounds files made to defeat them.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numeric>
#include <utility>

#include "hatch/ringbox.h"
#include "vek0core/hatch/loops.h"

namespace {

using std::size_t;
using vek0::detail::boxOf;

constexpr size_t kStepsPerPoint = 1000;  // spent on the nesting of rings

// Finds boxes by intersection: the set is recursively halved at the median, along the longer side.
class BoxTree {
 public:
  explicit BoxTree(std::vector<RECT_2D> boxes)
      : m_boxes(std::move(boxes)), m_order(m_boxes.size()), m_cover(m_boxes.size()) {
    std::iota(m_order.begin(), m_order.end(), size_t{0});
    if (!m_boxes.empty()) build(0, m_boxes.size());
  }

  // Calls `found` with each box that intersects `query` until it returns true; returns whether it
  // did. `steps` increases with the work.
  template <class Found>
  bool visit(const RECT_2D& query, size_t& steps, const Found& found) const {
    return visit(0, m_boxes.size(), query, steps, found);
  }

 private:
  static size_t middleOf(size_t low, size_t high) { return low + (high - low) / 2; }

  void build(size_t low, size_t high) {
    const size_t mid = middleOf(low, high);
    RECT_2D cover;
    cover.initRegion();
    for (size_t i = low; i < high; ++i) cover.updateRegion(m_boxes[m_order[i]]);
    m_cover[mid] = cover;
    if (high - low == 1) return;
    // Halving along the longer side keeps the parts compact, so that queries reach few of them.
    const bool wide = cover.max.x - cover.min.x > cover.max.y - cover.min.y;
    const auto place = [&](size_t i) {
      const RECT_2D& b = m_boxes[i];
      // Halved before the addition, because the sum of large coordinates could overflow.
      return wide ? b.min.x / 2 + b.max.x / 2 : b.min.y / 2 + b.max.y / 2;
    };
    const auto at = [&](size_t i) { return m_order.begin() + static_cast<std::ptrdiff_t>(i); };
    std::nth_element(at(low), at(mid), at(high),
                     [&](size_t a, size_t b) { return place(a) < place(b); });
    if (low < mid) build(low, mid);
    if (mid + 1 < high) build(mid + 1, high);
  }

  template <class Found>
  bool visit(size_t low, size_t high, const RECT_2D& query, size_t& steps,
             const Found& found) const {
    if (low >= high) return false;
    ++steps;
    const size_t mid = middleOf(low, high);
    if (!m_cover[mid].intersect(query)) return false;
    if (m_boxes[m_order[mid]].intersect(query) && found(m_order[mid])) return true;
    return visit(low, mid, query, steps, found) || visit(mid + 1, high, query, steps, found);
  }

  std::vector<RECT_2D> m_boxes;
  std::vector<size_t> m_order;
  std::vector<RECT_2D> m_cover;  // of the part whose middle this is
};

const PNT_3D& following(const HATCH_RING& ring, size_t i) {
  return ring[i + 1 < ring.size() ? i + 1 : 0];
}

// Where the segment crosses the level y; a segment that touches it only with its upper end, or runs
// along it, does not. Both directions of the segment yield the same x.
bool crossing(const PNT_2D& a, const PNT_2D& b, double y, double& x) {
  const PNT_2D &low = a.y < b.y ? a : b, &high = a.y < b.y ? b : a;
  if (!(low.y <= y && y < high.y)) return false;
  x = std::lerp(low.x, high.x, (y - low.y) / (high.y - low.y));
  return true;
}

// The level midway between the two vertically adjacent vertices with the largest distance.
double clearLevel(const HATCH_RING& ring) {
  std::vector<double> levels;
  levels.reserve(ring.size());
  for (const PNT_3D& p : ring) levels.push_back(p.y);
  std::sort(levels.begin(), levels.end());
  size_t best = 1;
  for (size_t i = 2; i < levels.size(); ++i) {
    if (levels[i] - levels[i - 1] > levels[best] - levels[best - 1]) best = i;
  }
  return levels[best - 1] / 2 + levels[best] / 2;
}

// A point well inside the ring, since vertices and edges may be shared with other rings.
PNT_2D insidePoint(const HATCH_RING& ring) {
  const double y = clearLevel(ring);
  std::vector<double> xs;
  for (size_t i = 0; i < ring.size(); ++i) {
    double x = 0;
    if (crossing(ring[i], following(ring, i), y, x)) xs.push_back(x);
  }
  // Only a ring without height has no crossing there; any of its points will do.
  if (xs.empty()) return ring.front();
  std::sort(xs.begin(), xs.end());
  size_t best = 0;
  // Crossings alternate between entering and leaving, so every second gap is interior.
  for (size_t i = 2; i + 1 < xs.size(); i += 2) {
    if (xs[i + 1] - xs[i] > xs[best + 1] - xs[best]) best = i;
  }
  return {xs[best] / 2 + xs[best + 1] / 2, y};
}

double areaOf(const HATCH_RING& ring) {
  if (ring.empty()) return 0;
  double twice = 0;
  const PNT_2D& origin = ring.front();  // far from zero, products would lose the digits
  for (size_t i = 0; i < ring.size(); ++i) {
    const PNT_2D a = ring[i] - origin, b = following(ring, i) - origin;
    twice += a.x * b.y - b.x * a.y;
  }
  return std::fabs(twice) / 2;
}

std::vector<RECT_2D> edgeBoxes(const HATCH_RING& ring) {
  std::vector<RECT_2D> boxes;
  boxes.reserve(ring.size());
  for (size_t i = 0; i < ring.size(); ++i) boxes.emplace_back(ring[i], following(ring, i));
  return boxes;
}

std::vector<RECT_2D> ringBoxes(const std::vector<HATCH_RING>& rings) {
  std::vector<RECT_2D> boxes;
  boxes.reserve(rings.size());
  for (const HATCH_RING& ring : rings) boxes.push_back(boxOf(ring));
  return boxes;
}

size_t pointCount(const std::vector<HATCH_RING>& rings) {
  return std::accumulate(rings.begin(), rings.end(), size_t{0},
                         [](size_t n, const HATCH_RING& ring) { return n + ring.size(); });
}

class Nesting {
 public:
  explicit Nesting(const std::vector<HATCH_RING>& rings)
      : m_rings(rings),
        m_boxes(ringBoxes(rings)),
        m_tree(m_boxes),
        m_edges(rings.size()),
        m_steps(0),
        m_limit(kStepsPerPoint * pointCount(rings)) {
    for (const HATCH_RING& ring : rings) m_areas.push_back(areaOf(ring));
  }

  bool gaveUp() const { return m_steps > m_limit; }

  // Whether more than `depth` rings contain ring i. Not evaluated once the limit is reached.
  bool isDeeperThan(int depth, size_t i) {
    if (m_rings[i].size() < 3) return false;
    const PNT_2D p = insidePoint(m_rings[i]);
    int holders = 0;
    const auto found = [&](size_t other) {
      if (other != i && couldHold(other, i) && holds(other, p)) ++holders;
      return holders > depth || gaveUp();
    };
    m_tree.visit(RECT_2D(p, p), m_steps, found);
    return holders > depth;
  }

 private:
  // The point may be in both rings even if the roles are reversed: the boxes decide, or the areas
  // if a ring touches all sides of the other's box from within.
  bool couldHold(size_t outer, size_t inner) const {
    if (!m_boxes[outer].inside(m_boxes[inner])) return false;
    return m_boxes[outer] != m_boxes[inner] || m_areas[outer] > m_areas[inner];
  }

  // Counts the edges to the left.
  bool holds(size_t i, const PNT_2D& p) {
    const HATCH_RING& ring = m_rings[i];
    // Most rings are never asked about a point; their edges need no tree.
    if (!m_edges[i]) m_edges[i] = std::make_unique<BoxTree>(edgeBoxes(ring));
    bool isIn = false;
    const auto found = [&](size_t edge) {
      double x = 0;
      if (crossing(ring[edge], following(ring, edge), p.y, x) && x < p.x) isIn = !isIn;
      return gaveUp();
    };
    // The box of the ray from the point to the left border of the ring.
    const bool broken = m_edges[i]->visit(RECT_2D(m_boxes[i].min.x, p.y, p.x, p.y), m_steps, found);
    return isIn && !broken;
  }

  const std::vector<HATCH_RING>& m_rings;
  std::vector<RECT_2D> m_boxes;
  std::vector<double> m_areas;
  BoxTree m_tree;
  std::vector<std::unique_ptr<BoxTree>> m_edges;  // built on first use
  size_t m_steps, m_limit;
};

}  // namespace

bool applyHatchStyle(std::vector<HATCH_RING>& rings, HatchStyle style) {
  // The even-odd rule of filling handles all rings, whatever their nesting.
  if (style == HatchStyle::kEvenOdd || rings.empty()) return true;
  // `kOutermost` also keeps the rings directly inside outer ones, which are holes.
  const int depth = style == HatchStyle::kOutermost ? 1 : 0;
  Nesting nesting(rings);
  std::vector<bool> drop(rings.size());
  for (size_t i = 0; i < rings.size() && !nesting.gaveUp(); ++i) {
    drop[i] = nesting.isDeeperThan(depth, i);
  }
  size_t kept = 0;
  for (size_t i = 0; i < rings.size(); ++i) {
    if (drop[i]) continue;
    if (kept != i) rings[kept] = std::move(rings[i]);
    ++kept;
  }
  // Rings that were not classified are kept: too much is drawn rather than too little.
  const bool complete = !nesting.gaveUp();
  rings.resize(kept);
  return complete;
}
