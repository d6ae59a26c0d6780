#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "boxtree.h"
#include "placement.h"
#include "shownbox.h"

class CBlock;

namespace vek0::detail {

/// Finds the visible part of large blocks, such as maps or whole drawings that are inserted once.
class BlockTrees {
 public:
  /// Finds everything in the block that is visible in the window, and possibly more, in drawing
  /// order. Returns false, leaving `ents` unchanged, if visiting all entities is no more expensive.
  /// The first call for a block, and after an edit, is O(n log n).
  bool find(CBlock& block, const Placement& place, const RECT_2D& window, std::vector<CEnt*>& ents);

  ShownBoxes& boxes() { return m_boxes; }

 private:
  struct Known {
    std::uint64_t edition;
    BoxTree boxes;
    std::vector<RankedEnt> placeless;  // boxes depend on the pixel size, or are unbounded
  };

  const Known& known(CBlock& block);

  ShownBoxes m_boxes;
  std::unordered_map<std::uint64_t, Known> m_blocks;  // by serial number
};

}  // namespace vek0::detail
