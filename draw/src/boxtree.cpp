// A static tree over the boxes of entities, split at the median so that its depth is logarithmic
// whatever the drawing. Nodes are in one array, each followed by its subtree (`behind` is the node
// after that), so that a search is a single pass that skips subtrees.
#include "boxtree.h"

#include <algorithm>

namespace vek0::detail {
namespace {

constexpr std::size_t kLeaf = 16;  // entities; fewer cost memory, more cost time

// The middle of a side. Far out, where it becomes infinite, only the order matters.
float middle(double low, double high) { return static_cast<float>(low / 2 + high / 2); }

}  // namespace

std::vector<CEnt*> inOrder(std::vector<RankedEnt>&& found) {
  std::sort(found.begin(), found.end(),
            [](const RankedEnt& a, const RankedEnt& b) { return a.rank < b.rank; });
  std::vector<CEnt*> ents;
  ents.reserve(found.size());
  for (const RankedEnt& entry : found) ents.push_back(entry.ent);
  return ents;
}

BoxTree::BoxTree(const std::vector<Item>& items) {
  std::vector<Centre> centres;
  centres.reserve(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const PNT_3D &low = items[i].box.min, &high = items[i].box.max;
    centres.push_back({{middle(low.x, high.x), middle(low.y, high.y), middle(low.z, high.z)},
                       static_cast<std::uint32_t>(i)});
  }
  m_entries.reserve(items.size());
  m_nodes.reserve(4 * items.size() / kLeaf + 1);
  if (!items.empty()) build(items, centres, 0, items.size());
}

// Splits into halves of equal count along the longest side, so the depth is logarithmic.
void BoxTree::build(const std::vector<Item>& items, std::vector<Centre>& centres, std::size_t first,
                    std::size_t end) {
  const std::size_t node = m_nodes.size();
  m_nodes.push_back({RECT_3D(), first, end, 0});
  m_nodes[node].box.initRegion();
  if (end - first <= kLeaf) return addLeaf(items, centres, node);
  const auto begin = centres.begin() + static_cast<std::ptrdiff_t>(first);
  const auto stop = centres.begin() + static_cast<std::ptrdiff_t>(end);
  std::array<float, 3> low = begin->at, high = begin->at;
  for (auto c = begin; c != stop; ++c) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      low[axis] = std::min(low[axis], c->at[axis]);
      high[axis] = std::max(high[axis], c->at[axis]);
    }
  }
  std::size_t longest = 0;
  for (std::size_t axis = 1; axis < 3; ++axis)
    if (high[axis] - low[axis] > high[longest] - low[longest]) longest = axis;
  const auto half = begin + (stop - begin) / 2;
  std::nth_element(begin, half, stop, [longest](const Centre& a, const Centre& b) {
    return a.at[longest] < b.at[longest];
  });
  const std::size_t split = static_cast<std::size_t>(half - centres.begin());
  build(items, centres, first, split);
  const std::size_t right = m_nodes.size();
  build(items, centres, split, end);
  m_nodes[node].box.updateRegion(m_nodes[node + 1].box);
  m_nodes[node].box.updateRegion(m_nodes[right].box);
  m_nodes[node].behind = m_nodes.size();
}

void BoxTree::addLeaf(const std::vector<Item>& items, const std::vector<Centre>& centres,
                      std::size_t node) {
  for (std::size_t i = m_nodes[node].first; i < m_nodes[node].end; ++i) {
    const Item& item = items[centres[i].item];
    m_nodes[node].box.updateRegion(item.box);
    m_entries.push_back(item.ent);
  }
  m_nodes[node].behind = node + 1;
}

}  // namespace vek0::detail
