// The boxes by which entities are skipped. They must contain everything drawn: texts overhang their
// extents, infinite lines are everywhere, fixed inserts depend on the size of a pixel. For blocks
// it also sums up their expansion, which decides when drawing is simplified.
#include "shownbox.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "pointcost.h"
#include "vek0core/hatch/fill.h"
#include "vek0core/vek0core.h"

namespace vek0::detail {
namespace {

constexpr double kOverhang = 0.5;  // of a text's height

bool isText(const CEnt& ent) {
  const short type = ent.getType();
  return type == CEntText::kType || type == CEntAttdef::kType || type == CEntAttrib::kType;
}

RECT_3D everywhere() {
  constexpr double all = std::numeric_limits<double>::infinity();
  return RECT_3D(PNT_3D(-all, -all, -all), PNT_3D(all, all, all));
}

// The block of an insert; null for all other kinds. Hatches contain only segments and dots.
const CBlock* blockOf(const CEnt& ent) {
  if (ent.getType() == CEntHatch::kType) return nullptr;
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert ? insert->getBlock() : nullptr;
}

// How often a block is shown by one insert.
double cellsOf(const CEntInsertBase& insert) {
  long columns, rows;
  double columnSpacing, rowSpacing;
  insert.getArray(columns, rows, columnSpacing, rowSpacing);
  // Cells in the same place count once.
  return (columnSpacing == 0 ? 1.0 : std::max(1.0, static_cast<double>(columns))) *
         (rowSpacing == 0 ? 1.0 : std::max(1.0, static_cast<double>(rows)));
}

// Extends the box by hatches without lines: the entity itself, and those that it inserts.
void growByLineless(const CEnt& ent, const BLOCK_SUM& inner, double pixelSize, RECT_3D& box) {
  if (ent.getType() == CEntHatch::kType) {
    const auto& hatch = static_cast<const CEntHatch&>(ent);
    if (!ent.getBdry().validRegion() && lacksLines(hatch))
      for (const PNT_3D& p : hatch.getBoundary()) box.updateRegion(p);
  }
  if (!inner.lineless.validRegion()) return;
  const CEntInsertBase& insert = *ent.getEntInsert();
  long columns, rows;
  double columnSpacing, rowSpacing;
  insert.getArray(columns, rows, columnSpacing, rowSpacing);
  // The corner cells bound the whole array.
  for (const long row : {0L, std::max(0L, rows - 1)}) {
    for (const long column : {0L, std::max(0L, columns - 1)}) {
      RECT_3D cell;
      CEntInsertMatrix(pixelSize, insert, row, column).transform(inner.lineless, cell);
      box.updateRegion(cell);
    }
  }
}

// `inner` is the sum of the inserted block, or empty.
void add(const CEnt& ent, const BLOCK_SUM& inner, BLOCK_SUM& sum) {
  constexpr double most = 1e200;  // further products stay finite
  sum.effort += effortOf(ent);
  const double shown = inner.all > 0 ? inner.all * cellsOf(*ent.getEntInsert()) : 0;
  sum.all = std::min(sum.all + pointsOf(ent) + shown, most);
  sum.holdsEndless = sum.holdsEndless || inner.holdsEndless || isEndless(ent);
  growByLineless(ent, inner, 0, sum.lineless);
  sum.holdsPoints = sum.holdsPoints || inner.holdsPoints || ent.getType() == CEntPnt::kType;
}

}  // namespace

bool isEndless(const CEnt& ent) {
  return ent.getType() == CEntLine::kType &&
         static_cast<const CEntLine&>(ent).getReach() != LineReach::Segment;
}

bool isPlaced(const CEnt& ent, const RECT_3D& box) {
  return ent.getType() != CEntFixedInsert::kType && isFinite(box);
}

// A hatch whose pattern misses its boundary has no lines either, but is not meant.
bool lacksLines(const CEntHatch& hatch) {
  constexpr double surelyHit = 1000;  // pieces that are estimated
  const bool hasLines = hatch.getBlock() && hatch.getBlock()->size() > 0;
  if (hasLines || isSolid(hatch.getHatchType())) return false;
  const HatchEstimate estimate = estimateHatch(hatch.getHatchType(), hatch.getHatchScale(),
                                               hatch.getHatchRotate(), hatch.getBoundary());
  return estimate.status == HatchStatus::Done && estimate.pieces >= surelyHit;
}

RECT_3D ShownBoxes::drawn(const CEnt& ent) {
  RECT_3D box = ent.getBdry();
  if (!ent.getEntInsert()) return box;
  const CBlock* shown = blockOf(ent);
  growByLineless(ent, shown ? sum(*shown) : BLOCK_SUM(), 0, box);
  return box;
}

RECT_3D ShownBoxes::of(const CEnt& ent, double pixelSize) {
  const CBlock* shown = blockOf(ent);
  const BLOCK_SUM inner = shown ? sum(*shown) : BLOCK_SUM();
  if (isEndless(ent) || inner.holdsEndless) return everywhere();
  RECT_3D box = ent.getBdry();
  if (ent.getType() == CEntFixedInsert::kType) ent.GetBdry(pixelSize, box);
  if (ent.getEntInsert()) growByLineless(ent, inner, pixelSize, box);
  if (!isText(ent) || !box.validRegion()) return box;
  // Accents and descenders extend beyond the metrics of a text.
  const double more =
      kOverhang * std::fabs(static_cast<const CEntText&>(ent).getText().getShownHeight());
  return RECT_3D(box.min - PNT_3D(more, more, 0), box.max + PNT_3D(more, more, 0));
}

RECT_3D ShownBoxes::of(const CBlock& block) {
  const BLOCK_SUM known = sum(block);
  if (known.holdsEndless) return everywhere();
  RECT_3D box = block.getBdry();
  if (known.lineless.validRegion()) box.updateRegion(known.lineless);
  return box;
}

const ShownBoxes::Known* ShownBoxes::find(const CBlock& block) const {
  const auto at = m_blocks.find(block.getSerial());
  return at != m_blocks.end() && at->second.edition == block.getEdition() ? &at->second : nullptr;
}

// The next block inserted at this level that is not known yet; null if there are no more.
const CBlock* ShownBoxes::look(Level& level) const {
  for (; level.next < level.block->size(); ++level.next) {
    const CEnt& ent = *(*level.block)[level.next];
    const CBlock* inner = blockOf(ent);
    const Known* known = inner ? find(*inner) : nullptr;
    if (inner && !known) return inner;
    add(ent, known ? known->sum : BLOCK_SUM(), level.sum);
  }
  return nullptr;
}

// Files can nest blocks arbitrarily deep, hence no recursion. A block that is being examined
// already has its sum so far, so a block within itself ends the search, too.
BLOCK_SUM ShownBoxes::sum(const CBlock& block) {
  if (const Known* known = find(block)) return known->sum;
  static_cast<void>(block.getBdry());  // from here on its edition reflects the blocks within
  std::vector<Level> levels{{&block}};
  for (;;) {
    Level& level = levels.back();
    const CBlock* unknown = look(level);
    m_blocks[level.block->getSerial()] = {level.block->getEdition(), level.sum};
    if (unknown) {
      levels.push_back({unknown});
      continue;
    }
    BLOCK_SUM result = level.sum;
    levels.pop_back();
    if (levels.empty()) return result;
  }
}

}  // namespace vek0::detail
