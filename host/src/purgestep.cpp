#include <unordered_set>

#include "vek0host/editsteps.h"

namespace vek0::host {
namespace {

// Users before the blocks they insert, so that removing a block releases others.
class CollectBlocks final : public IBlockOperation {
 public:
  int doOperation(CBlock& block) override {
    blocks.push_back(&block);
    return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  }

  std::vector<CBlock*> blocks;
};

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
std::size_t removeUnused(Editing& editing, const std::vector<Item*>& items, const UsedItems& used) {
  std::size_t count = 0;
  for (Item* item : items)
    if (!used.has(item) && editing.undo.remove(item)) ++count;
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
std::size_t purgeBlocks(Editing& editing) {
  CollectBlocks all;
  editing.data.getBlockTable().getBlockGraph().VisitDep(all);
  std::unordered_set<const CBlock*> used;
  const auto use = [&used](CEnt& ent) {
    if (const CEntInsertBase* insert = ent.getEntInsert()) used.insert(insert->getBlock());
  };
  for (CEnt* ent : editing.data.getEntTable().getEntityTbl()) use(*ent);
  std::size_t count = 0;
  for (CBlock* block : all.blocks) {
    if (used.count(block) == 0 && editing.undo.remove(block)) {
      count += block->isOfRecord() ? 0 : 1;
      continue;
    }
    for (unsigned i = 0; i < block->size(); ++i) use(*(*block)[i]);
  }
  return count;
}

StepOutcome purge(Editing& editing) {
  const CData& data = editing.data;
  const std::size_t blocks = purgeBlocks(editing);
  const std::size_t layers =
      removeUnused(editing, listOf(CData::CLayerIterator(data, false)), UsedItems(data));
  const UsedItems used(data);  // removed layers no longer use linetypes
  const std::size_t ltypes =
      removeUnused(editing, listOf(CData::CLtypeIterator(data, false, false)), used);
  // Removed linetypes no longer use styles.
  const std::size_t styles = removeUnused(editing, stylesOf(data), UsedItems(data));
  return StepOutcome::done(counted(blocks, "block", "blocks") + ", " +
                           counted(layers, "layer", "layers") + ", " +
                           counted(ltypes, "linetype", "linetypes") + " and " +
                           counted(styles, "text style", "text styles") + " removed");
}

}  // namespace

std::string readPurge(const std::string&, EditStep& step) {
  step = purge;
  return {};
}

}  // namespace vek0::host
