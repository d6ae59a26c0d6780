#include "blocktrees.h"

#include <utility>

#include "vek0core/entities/blocks/block.h"
#include "walker.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kWorthwhile = 128;  // entities
constexpr std::size_t kMostKnown = 1000;  // blocks; some may no longer exist

}  // namespace

bool BlockTrees::find(CBlock& block, const Placement& place, const RECT_2D& window,
                      std::vector<CEnt*>& ents) {
  if (block.size() < kWorthwhile) return false;
  // From here on the block is notified of edits of the blocks that it inserts.
  if (window.inside(place.apply(block.getBdry()))) return false;
  const Known& tree = known(block);
  std::vector<RankedEnt> found(tree.placeless);
  tree.boxes.visit([&](const RECT_3D& box) { return place.apply(box).intersect(window); },
                   [&](const RankedEnt& entry) { found.push_back(entry); });
  ents = inOrder(std::move(found));
  return true;
}

const BlockTrees::Known& BlockTrees::known(CBlock& block) {
  const auto at = m_blocks.find(block.getSerial());
  if (at != m_blocks.end() && at->second.edition == block.getEdition()) return at->second;
  if (m_blocks.size() >= kMostKnown) m_blocks.clear();
  std::vector<BoxTree::Item> items;
  std::vector<RankedEnt> placeless;
  for (std::size_t i = 0; i < block.size(); ++i) {
    const RankedEnt entry{i, block[static_cast<unsigned>(i)]};
    const RECT_3D box = m_boxes.of(*entry.ent, 0);
    if (!isPlaced(*entry.ent, box))
      placeless.push_back(entry);
    else if (box.validRegion())
      items.push_back({entry, box});
  }
  Known fresh{block.getEdition(), BoxTree(items), std::move(placeless)};
  return m_blocks.insert_or_assign(block.getSerial(), std::move(fresh)).first->second;
}

}  // namespace vek0::detail
