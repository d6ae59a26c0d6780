#include "vek0core/drawing/purge.h"

#include <unordered_set>
#include <vector>

#include "entities/blocks/collectblocks.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/undostack.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"

namespace {

// Collects the items used by the entities of a drawing by traversal: use counts are only hints.
class UsedItems {
 public:
  explicit UsedItems(const CData& data) {
    for (CEnt* ent : data.getEntTable().getEntityTbl()) add(*ent);
    for (int i = 0; i < data.getBlockTable().size(); ++i) addAll(*data.getBlockTable()[i]);
    for (int i = 0; i < data.getBlockXRefTable().size(); ++i) addAll(*data.getBlockXRefTable()[i]);
    for (CData::CLayerIterator it(data, true); CLayer* layer = *it; ++it)
      m_items.insert(layer->getLtype());
    for (CData::CLtypeIterator it(data, true, true); CLtype* ltype = *it; ++it) addTexts(*ltype);
  }

  bool has(const CNamedItem* item) const { return m_items.count(item) != 0; }

 private:
  void add(CEnt& ent) {
    m_items.insert(ent.getLayer());
    m_items.insert(ent.getLtype());
    m_items.insert(ent.getStyle());
    const CEntInsertBase* insert = ent.getEntInsert();
    if (insert == nullptr) return;
    m_items.insert(insert->getBlock());
    for (unsigned i = 0; i < insert->GetNoAttribs(); ++i) add(*insert->GetAttrib(i));
  }
  void addAll(CBlock& block) {
    for (unsigned i = 0; i < block.size(); ++i) add(*block[i]);
  }
  void addTexts(const CLtype& ltype) {
    for (int i = 0; i < ltype.getNoDashes(); ++i)
      if (const TEXT_3D* text = ltype[i]->GetText()) m_items.insert(text->getStyle());
  }

  std::unordered_set<const CNamedItem*> m_items;
};

// Removes unused items; the stack keeps current and fixed ones.
template <class Item>
std::size_t removeUnused(CUndoStack& undo, const std::vector<Item*>& items, const UsedItems& used) {
  std::size_t count = 0;
  for (Item* item : items)
    if (!used.has(item) && undo.remove(item)) ++count;
  return count;
}

template <class Walk>
auto listOf(Walk walk) {
  std::vector<decltype(*walk)> items;
  for (; *walk != nullptr; ++walk) items.push_back(*walk);
  return items;
}

// Style "STANDARD" is needed by texts without a style.
std::vector<CStyle*> stylesOf(const CData& data) {
  std::vector<CStyle*> styles = listOf(CData::CStyleIterator(data, false));
  std::erase_if(styles, [](const CStyle* style) { return style->isStandard(); });
  return styles;
}

// Block by block, since a removed one may have been the only one to insert the next.
std::size_t purgeBlocks(const CData& data, CUndoStack& undo) {
  // Users before the blocks they insert, so that removing a block releases others.
  vek0::detail::CollectBlocks all;
  data.getBlockTable().getBlockGraph().VisitDep(all);
  std::unordered_set<const CBlock*> used;
  const auto use = [&used](CEnt& ent) {
    if (const CEntInsertBase* insert = ent.getEntInsert()) used.insert(insert->getBlock());
  };
  for (CEnt* ent : data.getEntTable().getEntityTbl()) use(*ent);
  std::size_t count = 0;
  for (CBlock* block : all.blocks) {
    if (used.count(block) == 0 && undo.remove(block)) {
      count += block->isOfRecord() ? 0 : 1;
      continue;
    }
    for (unsigned i = 0; i < block->size(); ++i) use(*(*block)[i]);
  }
  return count;
}

}  // namespace

PURGED purge(CData& data, CUndoStack& undo) {
  PURGED purged;
  purged.blocks = purgeBlocks(data, undo);
  purged.layers = removeUnused(undo, listOf(CData::CLayerIterator(data, false)), UsedItems(data));
  // Removed layers no longer use linetypes, and removed linetypes no styles.
  purged.ltypes =
      removeUnused(undo, listOf(CData::CLtypeIterator(data, false, false)), UsedItems(data));
  purged.styles = removeUnused(undo, stylesOf(data), UsedItems(data));
  return purged;
}
