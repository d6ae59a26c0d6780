#pragma once

#include <memory>
#include <new>
#include <unordered_map>

#include "tables/addnew.h"
#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"

class CEnt;

namespace vek0::detail {

template <class Item>
Item* orThrow(Item* item) {
  if (!item) throw std::bad_alloc();
  return item;
}

/// Maps items to their counterparts in another drawing, or elsewhere in the same one. Null, and
/// items without a counterpart, map to themselves.
class ItemMap {
 public:
  template <class Item>
  void add(const Item* from, Item* to) {
    m_items.insert_or_assign(from, to);
  }
  template <class Item>
  Item* operator()(Item* from) const {
    const auto found = m_items.find(from);
    return found == m_items.end() ? from : static_cast<Item*>(found->second);
  }

 private:
  std::unordered_map<const void*, void*> m_items;
};

enum class VertexHandles { Keep, Drop };

/// A copy for `data`, in no table, with its items mapped: the new block determines whether an
/// insert becomes an ordinary one or one of an external reference. Keeps the handle, and those of
/// vertices if requested. Throws `std::bad_alloc`.
std::unique_ptr<CEnt> cloneOnto(CData& data, const ItemMap& map, const CEnt& src,
                                VertexHandles handles = VertexHandles::Keep);

/// Copies the elements of a linetype, with mapped styles.
CLtypeComplexDashSeq cloneDashes(const CLtype& ltype, const ItemMap& map);

}  // namespace vek0::detail
