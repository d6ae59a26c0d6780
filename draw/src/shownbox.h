#pragma once

#include <cstdint>
#include <unordered_map>

#include "vek0core/geometry/rect.h"

class CBlock;
class CEnt;

namespace vek0::detail {

/// Whether an entity is a ray or an endless line.
bool isEndless(const CEnt& ent);

/// Whether an entity has a place that an index can know: a finite box that does not depend
/// on the pixels.
bool isPlaced(const CEnt& ent, const RECT_3D& box);

/// Tells where entities can be seen.
class ShownBoxes {
 public:
  /// Box that holds all that an entity of model space or of a block shows on a display whose
  /// pixels have that size. Letters may reach beyond their measures, so that of a text is larger
  /// than its extents; that of a ray or endless line, or of an insert that shows one, is
  /// infinite.
  RECT_3D of(const CEnt& ent, double pixelSize);

  /// The same of all that a block shows, without the overhang of letters.
  RECT_3D of(const CBlock& block);

  /// Whether a block shows rays or endless lines, at whatever depth. Linear in the block and
  /// those that it inserts the first time, and after an edit.
  bool holdsEndless(const CBlock& block);

 private:
  struct Known {
    std::uint64_t edition;
    bool holdsEndless;
  };

  // A block that is being looked at, and how far.
  struct Level {
    const CBlock* block;
    unsigned next = 0;
    bool holdsEndless = false;
  };

  const Known* find(const CBlock& block) const;
  const CBlock* look(Level& level) const;

  std::unordered_map<std::uint64_t, Known> m_blocks;  // by serial number
};

}  // namespace vek0::detail
