#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/rect.h"

namespace vek0::detail {

/// Finds those of many boxes that intersect a given one.
///
/// The boxes are sorted along a space-filling curve and form the leaves of an implicit tree of
/// bounding boxes: node i has the children 2i and 2i + 1. Building costs a sort. A search costs the
/// logarithm plus its results, unless many boxes overlap.
class VEK0_API BoxIndex {
 public:
  explicit BoxIndex(const std::vector<RECT_2D>& boxes);

  /// Calls `visit(i)` for every box i that intersects `box` until a call returns false; returns
  /// whether none did.
  template <class Visit>
  bool find(const RECT_2D& box, Visit&& visit) const {
    return m_order.empty() || find(1, box, 0, visit);
  }
  /// The same for boxes within a distance of `reach`.
  template <class Visit>
  bool findWithin(const RECT_2D& box, double reach, Visit&& visit) const {
    return m_order.empty() || find(1, box, reach * reach, visit);
  }

 private:
  struct Node {
    double x1, y1, x2, y2;
    // Square of the distance between the boxes.
    double gap(const RECT_2D& b) const {
      const double x = std::max({0.0, b.min.x - x2, x1 - b.max.x});
      const double y = std::max({0.0, b.min.y - y2, y1 - b.max.y});
      return x * x + y * y;
    }
  };

  // As deep as the tree: the logarithm of the number of boxes.
  template <class Visit>
  bool find(std::size_t node, const RECT_2D& box, double most, Visit& visit) const {
    if (!(m_nodes[node].gap(box) <= most)) return true;
    if (node < m_leaves)
      return find(2 * node, box, most, visit) && find(2 * node + 1, box, most, visit);
    return visit(static_cast<std::size_t>(m_order[node - m_leaves]));
  }

  std::size_t m_leaves = 1;  // a power of two
  std::vector<Node> m_nodes;
  std::vector<std::uint32_t> m_order;
};

}  // namespace vek0::detail
