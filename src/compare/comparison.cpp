#include "vek0core/compare/comparison.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <unordered_set>

#include "compare/entmatcher.h"
#include "compare/heldents.h"
#include "compare/itemcomparer.h"
#include "compare/renames.h"
#include "geometry/vector.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/handlemanager.h"
#include "vek0core/drawing/layout.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/entinsert.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kLeastEffort = 1000000;
constexpr std::size_t kEffortPerEnt = 16;

void addExtents(const CData& data, RECT_3D& box) {
  if (const RECT_3D& model = data.getEntTable().getBdry(); model.validRegion())
    box.updateRegion(model);
  for (int i = 0; i < data.getLayouts().size(); ++i)
    if (const RECT_3D& sheet = data.getLayouts()[i].getBlock().getBdry(); sheet.validRegion())
      box.updateRegion(sheet);
}

Closeness closenessOf(const CData& before, const CData& after, const COMPARE_OPTIONS& options) {
  RECT_3D box;
  box.initRegion();
  addExtents(before, box);
  addExtents(after, box);
  Closeness closeness;
  double far = 1;
  if (box.validRegion()) {
    const PNT_3D diagonal = box.max - box.min;
    const double size = detail::length(diagonal);
    if (size > 0 && std::isfinite(size)) closeness.size = size;
    for (const PNT_3D& p : {box.min, box.max})
      far = std::max({far, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
  }
  // Numbers far from the origin are less precise than small extents ask for.
  constexpr double share = 1e-9, ulps = 4;
  closeness.tolerance = options.tolerance.value_or(
      std::max(share * closeness.size, ulps * std::numeric_limits<double>::epsilon() * far));
  return closeness;
}

MatchEnts gather(const HeldEnts& held, const CData& data) {
  const auto* manager = dynamic_cast<const CHandleManager*>(&data.getHandleGestor());
  MatchEnts all;
  all.reserve(held.all().size());
  for (const HeldEnt& one : held.all()) {
    const CBlock* block = one.container.block;
    if (block && isPrivate(*block)) continue;
    const Handle handle = one.ent->GetHandle();
    all.push_back({one.ent, manager && manager->isGiven(handle) ? 0 : handle});
  }
  return all;
}

const CBlock* blockOf(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  const CBlock* block = insert ? insert->getBlock() : nullptr;
  return block && !isPrivate(*block) ? block : nullptr;
}

class DrawingComparer {
 public:
  DrawingComparer(const CData& before, const CData& after, const COMPARE_OPTIONS& options)
      : m_before(before),
        m_after(after),
        m_options(options),
        m_lists(before, after),
        m_was(gather(HeldEnts(before, HeldEnts::WithoutIndex), before)),
        m_is(gather(HeldEnts(after, HeldEnts::WithoutIndex), after)),
        m_comparer(closenessOf(before, after, options), m_ids,
                   kLeastEffort + kEffortPerEnt * (m_was.size() + m_is.size())),
        m_layers(m_lists.layers, m_ids.layers),
        m_ltypes(m_lists.ltypes, m_ids.ltypes),
        m_styles(m_lists.styles, m_ids.styles),
        m_blocks(m_lists.blocks, m_ids.blocks) {
    for (const ItemPair<CLayout>& pair : layoutPairs(before, after)) {
      if (pair.before && pair.after) m_layoutIds.rename(*pair.before, *pair.after);
      if (pair.before) m_layouts[&pair.before->getBlock()] = pair.before;
      if (pair.after) m_layouts[&pair.after->getBlock()] = pair.after;
    }
  }

  COMPARISON run() {
    EntMatcher matcher(m_comparer, m_was, m_is);
    COMPARISON result;
    result.tolerance = m_comparer.closeness().tolerance;
    result.byHandles = m_options.match == EntMatch::Handles && matcher.matchHandles();
    findRenames();
    // Entities find their partners in places that correspond, and tell which places do.
    constexpr int rounds = 3;
    for (int i = 0; i < rounds; ++i) {
      setPlaces();
      matcher.matchGeometry(result.byHandles);
      if (!findRenames()) break;
    }
    compareEnts(result);
    result.items = compareItems(m_before, m_after, m_lists, m_ids);
    for (const ItemPair<CBlock>& pair : pairsOf(m_lists.blocks, m_ids.blocks))
      if (pair.before && pair.after && pair.before->getPnt() != pair.after->getPnt())
        explainByBase(*pair.before, *pair.after, result);
    return result;
  }

 private:
  // -- places

  void setPlaces() {
    setPlaces(Side::Before, m_was);
    setPlaces(Side::After, m_is);
    m_shared.clear();
    for (const ItemPair<CBlock>& pair : pairsOf(m_lists.blocks, m_ids.blocks))
      if (pair.before && pair.after) m_shared.insert(placeOf(Side::After, pair.after));
  }

  void setPlaces(Side side, MatchEnts& all) {
    for (MatchEnt& one : all) one.place = placeOf(side, one.ent->getOwnerBlock());
  }

  // 0 is model space; odd numbers are blocks.
  std::int32_t placeOf(Side side, const CBlock* block) {
    if (!block) return 0;
    if (!block->isSheet()) return 2 * m_ids.blocks(side, block) + 1;
    const auto layout = m_layouts.find(block);
    return 2 * m_layoutIds(side, layout == m_layouts.end() ? nullptr : layout->second) + 2;
  }

  // Of blocks that only one drawing has, the block itself is the difference.
  bool isReported(const MatchEnt& one) const {
    return one.place % 2 == 0 || m_shared.contains(one.place);
  }

  // -- renamed items

  // Returns whether there are any that were not known before.
  bool findRenames() {
    const auto open = [this] {
      return m_layers.gone().size() + m_ltypes.gone().size() + m_styles.gone().size() +
             m_blocks.gone().size();
    };
    const std::size_t unknown = open();
    if (unknown == 0) return false;
    for (const MatchEnt& was : m_was)
      if (was.partner != MatchEnt::kAlone)
        vote(*was.ent, *m_is[static_cast<std::size_t>(was.partner)].ent);
    m_layers.decide();
    for (const ItemPair<CLayer>& pair : pairsOf(m_lists.layers, m_ids.layers))
      if (pair.before && pair.after) m_ltypes.vote(pair.before->getLtype(), pair.after->getLtype());
    m_ltypes.decide();
    m_styles.decide();
    m_blocks.decide();
    renameSameBlocks();
    renameUnused(m_layers, [](const CEnt& ent) { return ent.getLayer(); });
    renameUnused(m_ltypes, [](const CEnt& ent) { return ent.getLtype(); });
    renameUnused(m_styles, [](const CEnt& ent) { return ent.getStyle(); });
    m_comparer.forgetBlocks();
    return open() < unknown;
  }

  void vote(const CEnt& was, const CEnt& is) {
    m_layers.vote(was.getLayer(), is.getLayer());
    m_ltypes.vote(was.getLtype(), is.getLtype());
    m_styles.vote(was.getStyle(), is.getStyle());
    m_blocks.vote(blockOf(was), blockOf(is));
    m_blocks.vote(was.getOwnerBlock(), is.getOwnerBlock());
  }

  void renameSameBlocks() {
    if (m_blocks.isIdle()) return;
    constexpr std::size_t mostTrials = 8;
    std::unordered_map<std::size_t, std::vector<const CBlock*>> candidates;  // by size
    for (const CBlock* block : m_lists.blocks.after)
      if (m_blocks.added().contains(block)) candidates[block->size()].push_back(block);
    for (const CBlock* block : m_lists.blocks.before) {
      if (!m_blocks.gone().contains(block) || block->size() == 0) continue;
      std::vector<const CBlock*>& same = candidates[block->size()];
      for (std::size_t i = 0; i < same.size() && i < mostTrials; ++i) {
        if (!m_comparer.isSameContent(*block, *same[i])) continue;
        m_blocks.rename(block, same[i]);
        same.erase(same.begin() + static_cast<std::ptrdiff_t>(i));
        break;
      }
    }
  }

  // Without users there is only the definition to go by.
  template <class Item, class ItemOf>
  void renameUnused(RenameFinder<Item>& finder, const ItemOf& itemOf) {
    constexpr std::size_t most = 100;
    if (finder.isIdle() || finder.gone().size() > most || finder.added().size() > most) return;
    std::unordered_set<const Item*> unusedBefore = finder.gone(), unusedAfter = finder.added();
    for (const MatchEnt& one : m_was) unusedBefore.erase(itemOf(*one.ent));
    for (const MatchEnt& one : m_is) unusedAfter.erase(itemOf(*one.ent));
    for (const Item* was : unusedBefore) {
      const auto isTwin = [&](const Item* is) { return changesBetween(*was, *is, m_ids).empty(); };
      const auto twin = std::find_if(unusedAfter.begin(), unusedAfter.end(), isTwin);
      const bool isOnly =
          std::count_if(unusedAfter.begin(), unusedAfter.end(), isTwin) == 1 &&
          std::count_if(unusedBefore.begin(), unusedBefore.end(), [&](const Item* other) {
            return changesBetween(*other, **twin, m_ids).empty();
          }) == 1;
      if (isOnly) finder.rename(was, *twin);
    }
  }

  // -- entities

  void compareEnts(COMPARISON& result) {
    for (const MatchEnt& was : m_was) {
      if (was.partner == MatchEnt::kAlone) {
        if (isReported(was)) result.removed.push_back(was.ent);
        continue;
      }
      if (was.isSame) continue;
      const MatchEnt& is = m_is[static_cast<std::size_t>(was.partner)];
      ENT_CHANGE change = m_comparer.compare(*was.ent, *is.ent);
      if (was.place != is.place) change.add(EntAspect::Place);
      if (change.aspects == 0) continue;
      (change.isMove() ? result.moved : result.changed).push_back(change);
    }
    for (const MatchEnt& is : m_is)
      if (is.partner == MatchEnt::kAlone && isReported(is)) result.added.push_back(is.ent);
  }

  // Content is relative to the base point of its block, so all of it moves with another base. Where
  // it does not, only the file has another base.
  void explainByBase(const CBlock& before, const CBlock& after, COMPARISON& result) {
    const PNT_3D was = before.getPnt(), is = after.getPnt(), shift = was - is;
    const double room = 4 * m_comparer.closeness().tolerance;
    const auto isShifted = [&](const ENT_CHANGE& change) {
      if (change.before->getOwnerBlock() != &before || change.after->getOwnerBlock() != &after)
        return false;
      const PNT_3D off = *change.by - shift;
      return detail::length(off) <= room;
    };
    const auto shifted = std::count_if(result.moved.begin(), result.moved.end(), isShifted);
    if (shifted == 0 || static_cast<std::size_t>(shifted) != before.size()) return;
    std::erase_if(result.moved, isShifted);
    const std::vector<double> from{was.x, was.y, was.z}, to{is.x, is.y, is.z};
    result.items.push_back(
        {ItemTable::Blocks, ITEM_CHANGE::Sort::Changed, before.getName(), {{"base", from, to}}});
  }

  const CData &m_before, &m_after;
  const COMPARE_OPTIONS& m_options;
  SharedIds m_ids;
  TableLists m_lists;
  MatchEnts m_was, m_is;
  EntComparer m_comparer;
  RenameFinder<CLayer> m_layers;
  RenameFinder<CLtype> m_ltypes;
  RenameFinder<CStyle> m_styles;
  RenameFinder<CBlock> m_blocks;
  ItemIds<CLayout> m_layoutIds;
  std::unordered_map<const CBlock*, const CLayout*> m_layouts;  // by sheet
  std::unordered_set<std::int32_t> m_shared;                    // places that are blocks of both
};

}  // namespace
}  // namespace vek0::detail

const char* nameOf(EntAspect aspect) {
  constexpr const char* names[kEntAspects] = {
      "geometry",       "layer",        "color",   "linetype",   "lineweight",
      "linetype_scale", "transparency", "visible", "thickness",  "text",
      "style",          "pattern",      "block",   "attributes", "place"};
  return names[static_cast<int>(aspect)];
}

const char* nameOf(ItemTable table) {
  constexpr const char* names[] = {"layers", "linetypes", "styles",   "blocks",
                                   "xrefs",  "layouts",   "variables"};
  return names[static_cast<int>(table)];
}

COMPARISON compareDrawings(const CData& before, const CData& after,
                           const COMPARE_OPTIONS& options) {
  return vek0::detail::DrawingComparer(before, after, options).run();
}
