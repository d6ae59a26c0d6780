#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace vek0::detail {

/// Items of a drawing by the bytes of their names in one file. Entities name their
/// layer in every record, most often the one before it: that costs a comparison,
/// any other known name one hash, and only a new spelling a text and a look-up in
/// the drawing. Items must outlive the cache.
template <class Item>
class NameCache {
 public:
  /// Null when the name has not been added.
  Item* find(std::string_view bytes) {
    if (m_last && bytes == m_lastName) return m_last;
    const auto found = m_items.find(bytes);
    return found == m_items.end() ? nullptr : remember(*found);
  }
  Item* add(std::string_view bytes, Item* item) {
    return remember(*m_items.insert_or_assign(std::string(bytes), item).first);
  }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view bytes) const {
      return std::hash<std::string_view>()(bytes);
    }
  };
  using Map = std::unordered_map<std::string, Item*, Hash, std::equal_to<>>;

  Item* remember(const typename Map::value_type& entry) {
    m_lastName = entry.first;  // nodes of the map stay where they are
    return m_last = entry.second;
  }

  Map m_items;
  std::string_view m_lastName;
  Item* m_last = nullptr;
};

}  // namespace vek0::detail
