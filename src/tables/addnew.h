#pragma once

#include <memory>
#include <new>

#include "tables/handover.h"

namespace vek0::detail {

/// Puts what a factory has made into a table, and returns it. Null, and a table without memory,
/// throw `std::bad_alloc`; the item is deleted then.
template <class Table, class Item>
Item* addNew(Table& table, Item* made) {
  if (made == nullptr) throw std::bad_alloc();
  return &addTo(table, std::unique_ptr<Item>(made));
}

}  // namespace vek0::detail
