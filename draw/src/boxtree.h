#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0core/geometry/rect.h"

class CEnt;

namespace vek0::detail {

/// An entity and its rank in the drawing order.
struct RankedEnt {
  std::size_t rank;
  CEnt* ent;
};

/// Sorts the results into drawing order.
std::vector<CEnt*> inOrder(std::vector<RankedEnt>&& found);

/// A tree over the boxes of entities, built in one pass and immutable.
///
/// It stores only boxes of groups of entities, so the caller must check the results individually.
class BoxTree {
 public:
  struct Item {
    RankedEnt ent;
    RECT_3D box;
  };

  /// Boxes must be finite and not empty. O(n log n).
  explicit BoxTree(const std::vector<Item>& items);

  std::size_t size() const { return m_entries.size(); }
  const std::vector<RankedEnt>& entries() const { return m_entries; }
  /// Box of all entities; the tree must not be empty.
  const RECT_3D& box() const { return m_nodes.front().box; }

  /// Calls `each` for the entities of all groups for whose boxes `meets` returns true; it is not
  /// called for groups within boxes for which it returned false.
  template <class Meets, class Each>
  void visit(const Meets& meets, const Each& each) const {
    for (std::size_t i = 0; i < m_nodes.size();) {
      const Node& node = m_nodes[i];
      if (!meets(node.box)) {
        i = node.behind;
        continue;
      }
      if (++i == node.behind)
        for (std::size_t k = node.first; k < node.end; ++k) each(m_entries[k]);
    }
  }

 private:
  // Nodes are in preorder; a leaf has no children.
  struct Node {
    RECT_3D box;
    std::size_t first, end;  // of the entries below
    std::size_t behind;      // the next node outside this subtree
  };
  struct Centre {
    std::array<float, 3> at;
    std::uint32_t item;
  };

  void build(const std::vector<Item>& items, std::vector<Centre>& centres, std::size_t first,
             std::size_t end);
  void addLeaf(const std::vector<Item>& items, const std::vector<Centre>& centres,
               std::size_t node);

  std::vector<RankedEnt> m_entries;
  std::vector<Node> m_nodes;
};

}  // namespace vek0::detail
