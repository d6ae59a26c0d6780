#pragma once

#include <vector>

#include "compare/entcomparer.h"
#include "compare/renames.h"
#include "vek0core/compare/comparison.h"

class CBlock;
class CData;
class CLayer;
class CLayout;
class CLtype;
class CStyle;

namespace vek0::detail {

/// The tables of two drawings. Private blocks are left out.
struct TableLists {
  ItemLists<CLayer> layers;
  ItemLists<CLtype> ltypes;
  ItemLists<CStyle> styles;
  ItemLists<CBlock> blocks;

  TableLists(const CData& before, const CData& after);
};

/// What the two items differ in, apart from the name.
std::vector<VALUE_CHANGE> changesBetween(const CLayer& before, const CLayer& after, SharedIds& ids);
std::vector<VALUE_CHANGE> changesBetween(const CLtype& before, const CLtype& after, SharedIds& ids);
std::vector<VALUE_CHANGE> changesBetween(const CStyle& before, const CStyle& after, SharedIds& ids);

/// The layouts of both drawings; one with another name is the same if its block is.
std::vector<ItemPair<CLayout>> layoutPairs(const CData& before, const CData& after);

/// The differences of everything but entities: tables, references, layouts, variables. Linear.
std::vector<ITEM_CHANGE> compareItems(const CData& before, const CData& after,
                                      const TableLists& lists, SharedIds& ids);

}  // namespace vek0::detail
