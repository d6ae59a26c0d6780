#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// A table item as written.
struct SavedItem {
  std::string name;  ///< in the encoding of the file
  Handle handle = 0;
  bool isDependent = false;  ///< the name has the form "reference|item"
};

/// The items of one table by address. Drawings refer to a few layers a million times: recent
/// look-ups are cached.
template <class Item>
class SavedItems {
 public:
  SavedItems() : m_slots(kSlots) {}

  void add(const Item* item, SavedItem saved) { m_items[item] = std::move(saved); }
  void setHandle(const Item* item, Handle handle) { m_items.at(item).handle = handle; }
  /// The item that stands for null and for items that the drawing does not list.
  void setDefault(const Item* item) { m_default = item; }

  /// Valid as long as the table.
  const SavedItem& operator[](const Item* item) {
    Slot& slot = m_slots[std::hash<const Item*>()(item) % kSlots];
    if (slot.saved != nullptr && slot.item == item) return *slot.saved;
    const SavedItem& found = find(item);
    slot = {item, &found};
    return found;
  }

 private:
  // Prime, because item addresses are regularly spaced.
  static constexpr std::size_t kSlots = 509;

  struct Slot {
    const Item* item = nullptr;
    const SavedItem* saved = nullptr;
  };

  const SavedItem& find(const Item* item) const {
    const auto found = m_items.find(item);
    return found != m_items.end() ? found->second : m_items.at(m_default);
  }

  std::unordered_map<const Item*, SavedItem> m_items;
  std::vector<Slot> m_slots;
  const Item* m_default = nullptr;
};

}  // namespace vek0::detail
