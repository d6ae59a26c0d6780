#pragma once

#include <cstdint>
#include <unordered_map>

#include "vek0core/geometry/rect.h"

class CBlock;
class CEnt;
class CEntHatch;

namespace vek0::detail {

/// Whether an entity is a ray or an endless line.
bool isEndless(const CEnt& ent);

/// Whether an entity has a place that an index can know: a finite box that does not depend
/// on the pixels.
bool isPlaced(const CEnt& ent, const RECT_3D& box);

/// Whether a hatch has no lines since its pattern makes too many; it is drawn by its boundary.
bool lacksLines(const CEntHatch& hatch);

/// The extents of an entity, or of the boundary that is drawn in its place.
RECT_3D drawnBox(const CEnt& ent);

/// What a block comes to.
struct BLOCK_SUM {
  bool holdsEndless = false;  ///< rays or endless lines, at whatever depth
  bool holdsPoints = false;   ///< point entities, likewise
  double own = 0;             ///< about how many points its own entities take to draw
  double all = 0;             ///< the same with all that they insert, as often as they do
};

/// Tells where entities can be seen, and how much there is of them.
class ShownBoxes {
 public:
  /// Box that holds all that an entity of model space or of a block shows on a display whose
  /// pixels have that size. Letters may reach beyond their measures, so that of a text is larger
  /// than its extents; that of a ray or endless line, or of an insert that shows one, is
  /// infinite.
  RECT_3D of(const CEnt& ent, double pixelSize);

  /// The same of all that a block shows, without the overhang of letters.
  RECT_3D of(const CBlock& block);

  /// Linear in the block and those that it inserts the first time, and after an edit.
  BLOCK_SUM sum(const CBlock& block);
  bool holdsEndless(const CBlock& block) { return sum(block).holdsEndless; }

 private:
  struct Known {
    std::uint64_t edition;
    BLOCK_SUM sum;
  };

  // A block that is being looked at, and how far.
  struct Level {
    const CBlock* block;
    unsigned next = 0;
    BLOCK_SUM sum = {};
  };

  const Known* find(const CBlock& block) const;
  const CBlock* look(Level& level) const;

  std::unordered_map<std::uint64_t, Known> m_blocks;  // by serial number
};

}  // namespace vek0::detail
