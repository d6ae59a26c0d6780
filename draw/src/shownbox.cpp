#include "shownbox.h"

#include <cmath>
#include <limits>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::detail {
namespace {

constexpr double kOverhang = 0.5;  // of a text's height
constexpr std::size_t kMostKnown = 100'000;

bool isText(const CEnt& ent) {
  const short type = ent.getType();
  return type == CEntText::kType || type == CEntAttdef::kType || type == CEntAttrib::kType;
}

bool isFinite(const PNT_3D& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

RECT_3D everywhere() {
  constexpr double all = std::numeric_limits<double>::infinity();
  return RECT_3D(PNT_3D(-all, -all, -all), PNT_3D(all, all, all));
}

// What an insert shows; null for everything else. Hatches have segments and dots alone.
const CBlock* blockOf(const CEnt& ent) {
  if (ent.getType() == CEntHatch::kType) return nullptr;
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert ? insert->getBlock() : nullptr;
}

}  // namespace

bool isEndless(const CEnt& ent) {
  return ent.getType() == CEntLine::kType &&
         static_cast<const CEntLine&>(ent).getReach() != LineReach::Segment;
}

bool isPlaced(const CEnt& ent, const RECT_3D& box) {
  return ent.getType() != CEntFixedInsert::kType && isFinite(box.min) && isFinite(box.max);
}

RECT_3D ShownBoxes::of(const CEnt& ent, double pixelSize) {
  const CBlock* shown = blockOf(ent);
  if (isEndless(ent) || (shown && holdsEndless(*shown))) return everywhere();
  RECT_3D box = ent.getBdry();
  if (ent.getType() == CEntFixedInsert::kType) ent.GetBdry(pixelSize, box);
  if (!isText(ent) || !box.validRegion()) return box;
  const double more =
      kOverhang * std::fabs(static_cast<const CEntText&>(ent).getText().getContext().getHeight());
  return RECT_3D(box.min - PNT_3D(more, more, 0), box.max + PNT_3D(more, more, 0));
}

RECT_3D ShownBoxes::of(const CBlock& block) {
  return holdsEndless(block) ? everywhere() : block.getBdry();
}

const ShownBoxes::Known* ShownBoxes::find(const CBlock& block) const {
  const auto at = m_blocks.find(block.getSerial());
  return at != m_blocks.end() && at->second.edition == block.getEdition() ? &at->second : nullptr;
}

// The first block that the level inserts, from where it stands, of which nothing is known yet;
// null when there are no more.
const CBlock* ShownBoxes::look(Level& level) const {
  for (; !level.holdsEndless && level.next < level.block->size(); ++level.next) {
    const CEnt& ent = *(*level.block)[level.next];
    const CBlock* inner = blockOf(ent);
    const Known* known = inner ? find(*inner) : nullptr;
    if (inner && !known) return inner;
    level.holdsEndless = isEndless(ent) || (known && known->holdsEndless);
  }
  return nullptr;
}

// Files nest as deep as they like: no recursion. A block that is being looked at is known not
// to hold any, so that one within itself ends too.
bool ShownBoxes::holdsEndless(const CBlock& block) {
  if (const Known* known = find(block)) return known->holdsEndless;
  if (m_blocks.size() > kMostKnown) m_blocks.clear();
  static_cast<void>(block.getBdry());  // from here on its edition tells of the blocks within
  std::vector<Level> levels{{&block}};
  for (;;) {
    Level& level = levels.back();
    const CBlock* unknown = look(level);
    m_blocks[level.block->getSerial()] = {level.block->getEdition(), level.holdsEndless};
    if (unknown) {
      levels.push_back({unknown});
      continue;
    }
    const bool result = level.holdsEndless;
    levels.pop_back();
    if (levels.empty()) return result;
  }
}

}  // namespace vek0::detail
