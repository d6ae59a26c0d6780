#pragma once

#include <memory>
#include <new>

namespace vek0::detail {

/// Puts what a factory has made into a table, and answers it. Null, and a table without memory,
/// throw `std::bad_alloc`; the item is deleted then.
template <class Table, class Item>
Item* addNew(Table& table, Item* made) {
  if (made == nullptr) throw std::bad_alloc();
  std::unique_ptr<Item> item(made);
  table.add(item.get());
  return item.release();
}

}  // namespace vek0::detail
