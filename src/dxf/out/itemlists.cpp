#include "dxf/out/itemlists.h"

#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

namespace vek0::detail {
namespace {

template <class Item, class Iterator>
std::vector<const Item*> walked(Iterator it) {
  std::vector<const Item*> items;
  for (; *it; ++it) items.push_back(*it);
  return items;
}

template <class Item, class Table>
std::vector<const Item*> listed(const Table& table) {
  std::vector<const Item*> items;
  for (int i = 0; i < static_cast<int>(table.size()); ++i) {
    if (const Item* item = table[i]) items.push_back(item);
  }
  return items;
}

}  // namespace

std::vector<const CLayer*> layersOf(const CData& data) {
  return walked<CLayer>(CData::CLayerIterator(data, true));
}

std::vector<const CLtype*> ltypesOf(const CData& data, bool withByLayerByBlock) {
  return walked<CLtype>(CData::CLtypeIterator(data, true, withByLayerByBlock));
}

std::vector<ListedStyle> stylesOf(const CData& data) {
  std::vector<ListedStyle> styles;
  for (CData::CStyleIterator style(data, false); *style; ++style)
    styles.push_back({*style, (*style)->getName(), (*style)->getFlags()});
  for (const CBlockXRef* xref : xrefsOf(data)) {
    for (const CStyle* style : listed<CStyle>(xref->getStyleTable())) {
      // Content of the reference is not counted.
      if (style->getEntities() == 0 && data.getVars().getCurStyle() != style) continue;
      styles.push_back({style, xref->getName() + u"|" + style->getName().view(),
                        style->getFlags() | kDependent | kResolved});
    }
  }
  return styles;
}

std::vector<const CBlock*> blocksOf(const CData& data) {
  std::vector<const CBlock*> blocks = listed<CBlock>(data.getBlockTable());
  std::erase_if(blocks, [](const CBlock* block) { return block->isSheet(); });
  return blocks;
}

std::vector<const CBlockXRef*> xrefsOf(const CData& data) {
  return listed<CBlockXRef>(data.getBlockXRefTable());
}

bool isDependent(const CNamedItem& item) { return (item.getFlags() & kDependent) != 0; }

}  // namespace vek0::detail
