#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vek0::detail {

/// Items of a drawing by the bytes of their names in one file. Entities name their layer in every
/// record, usually the same as the previous one: that costs a comparison, any other known name one
/// hash, and only a new spelling a decoding and a look-up in the drawing. Items must outlive the
/// cache and are never null.
///
/// A table of slots with the names stored contiguously: with tens of thousands of names, a node for
/// each would cause a cache miss at every step.
template <class Item>
class NameCache {
 public:
  /// Null if the name has not been added.
  Item* find(std::string_view bytes) {
    if (m_last < m_slots.size() && bytes == nameOf(m_slots[m_last])) return m_slots[m_last].item;
    if (m_slots.empty()) return nullptr;
    m_last = place(bytes, hash(bytes));
    return m_slots[m_last].item;
  }

  /// Adds a name that `find` has just failed to find.
  Item* add(std::string_view bytes, Item* item) {
    if (2 * (m_count + 1) > m_slots.size()) grow();
    const std::size_t code = hash(bytes);
    m_last = place(bytes, code);
    m_slots[m_last] = {code, m_names.size(), bytes.size(), item};
    m_names.append(bytes);
    ++m_count;
    return item;
  }

 private:
  struct Slot {
    std::size_t hash, offset, length;
    Item* item;  // null: free
  };

  static std::size_t hash(std::string_view bytes) { return std::hash<std::string_view>()(bytes); }
  std::string_view nameOf(const Slot& slot) const {
    return std::string_view(m_names.data() + slot.offset, slot.length);
  }

  // The slot of that name, or the free one where it would be inserted.
  std::size_t place(std::string_view bytes, std::size_t code) const {
    std::size_t i = code & (m_slots.size() - 1);
    while (m_slots[i].item && (m_slots[i].hash != code || nameOf(m_slots[i]) != bytes))
      i = (i + 1) & (m_slots.size() - 1);
    return i;
  }

  void grow() {
    constexpr std::size_t least = 64;  // a power of two, as all sizes
    std::vector<Slot> old(m_slots.empty() ? least : 2 * m_slots.size());
    old.swap(m_slots);
    for (const Slot& slot : old)
      if (slot.item) m_slots[place(nameOf(slot), slot.hash)] = slot;
  }

  std::vector<Slot> m_slots;
  std::string m_names;
  std::size_t m_count = 0;
  std::size_t m_last = 0;  // slot of the last name looked up
};

}  // namespace vek0::detail
