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

/// Whether an entity can be indexed: it has a finite box that does not depend on the pixel size.
bool isPlaced(const CEnt& ent, const RECT_3D& box);

/// Whether a hatch has no lines because its pattern makes too many; it is drawn by its boundary.
bool lacksLines(const CEntHatch& hatch);

/// Totals of a block's content.
struct BLOCK_SUM {
  BLOCK_SUM() { lineless.initRegion(); }

  RECT_3D lineless;           ///< of hatches without lines, which the extents do not include
  bool holdsEndless = false;  ///< rays or infinite lines, at any depth
  bool holdsPoints = false;   ///< point entities, at any depth
  double effort = 0;          ///< contribution of its own entities to the effort (`effortOf`)
  double all = 0;             ///< about how many points it takes to draw, with all that it inserts,
                              ///< as often as it does
};

/// Computes where entities are visible, and how much they expand to.
class ShownBoxes {
 public:
  /// Box of everything that an entity of model space or of a block shows on a display with that
  /// pixel size. Glyphs may extend beyond their metrics, so the box of a text is larger than its
  /// extents; that of a ray or infinite line, or of an insert that shows one, is infinite.
  RECT_3D of(const CEnt& ent, double pixelSize);

  /// The extents of an entity, and of the boundaries that are drawn in place of hatches.
  RECT_3D drawn(const CEnt& ent);

  /// The same as `of` for the content of a block, without the overhang of glyphs.
  RECT_3D of(const CBlock& block);

  /// Linear in the block and those that it inserts the first time, and after an edit.
  BLOCK_SUM sum(const CBlock& block);
  bool holdsEndless(const CBlock& block) { return sum(block).holdsEndless; }

 private:
  struct Known {
    std::uint64_t edition;
    BLOCK_SUM sum;
  };

  // A block being examined, and the progress.
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
