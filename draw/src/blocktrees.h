#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "boxtree.h"
#include "placement.h"
#include "shownbox.h"

class CBlock;

namespace vek0::detail {

/// What windows show of large blocks: maps, or whole drawings, that are inserted once.
class BlockTrees {
 public:
  /// Finds all that the window can show of the block there, and perhaps more, in drawing
  /// order. False when a walk through all of it is no dearer; `ents` is then untouched.
  /// The first call for a block, and for one that was edited, is linear-logarithmic.
  bool find(CBlock& block, const Placement& place, const RECT_2D& window, std::vector<CEnt*>& ents);

  ShownBoxes& boxes() { return m_boxes; }

 private:
  struct Known {
    std::uint64_t edition;
    BoxTree boxes;
    std::vector<RankedEnt> placeless;  // boxes depend on the pixels, or are none
  };

  const Known& known(CBlock& block);

  ShownBoxes m_boxes;
  std::unordered_map<std::uint64_t, Known> m_blocks;  // by serial number
};

}  // namespace vek0::detail
