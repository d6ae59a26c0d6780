#pragma once

#include <memory>
#include <new>

#include "tables/handover.h"

namespace vek0::detail {

/// Adds an item created by a factory to a table, and returns it. Throws `std::bad_alloc` if the
/// item is null or the table has no memory; the item is deleted then.
template <class Table, class Item>
Item* addNew(Table& table, Item* made) {
  if (made == nullptr) throw std::bad_alloc();
  return &addTo(table, std::unique_ptr<Item>(made));
}

}  // namespace vek0::detail
