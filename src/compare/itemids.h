#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "vek0core/tables/nameditem.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {

struct FoldedHash {
  std::size_t operator()(const zim::WString& text) const {
    return zim::hashIgnoreCase(text.view());
  }
};
struct FoldedEqual {
  bool operator()(const zim::WString& a, const zim::WString& b) const {
    return a.EqualsIgnoreCase(b);
  }
};
/// Names without regard to case.
template <class Value>
using NameMap = std::unordered_map<zim::WString, Value, FoldedHash, FoldedEqual>;

/// One of the two drawings that are compared.
enum class Side { Before, After };

/// Numbers for the items of a table in two drawings: equal for items of the same name, and for an
/// item and what it was renamed to.
template <class Item>
class ItemIds {
 public:
  /// The number for a name, which null pointers and unknown items have.
  int idOf(const zim::WString& name) {
    return m_names.try_emplace(name, static_cast<int>(m_names.size())).first->second;
  }
  int operator()(Side side, const Item* item) {
    Last& last = m_last[slotOf(side, item)];
    if (last.item != item || last.id < 0) last = {item, find(item)};
    return last.id;
  }
  void rename(const Item& before, const Item& after) {
    m_ids[&before] = (*this)(Side::After, &after);
    m_last = {};
  }

 private:
  struct Last {
    const Item* item = nullptr;
    int id = -1;
  };

  static std::size_t slotOf(Side side, const Item* item) {
    constexpr std::size_t bits = 5, size = 32;
    const auto address = reinterpret_cast<std::uintptr_t>(item) / size;
    return (address ^ address >> bits) % size + static_cast<std::size_t>(side) * size;
  }
  int find(const Item* item) {
    const auto known = m_ids.find(item);
    if (known != m_ids.end()) return known->second;
    return m_ids[item] = idOf(nameOf(item));
  }
  static zim::WString nameOf(const Item* item) {
    if (!item) return {};
    if constexpr (requires { item->getFullName(); })
      return item->getFullName();
    else
      return item->getName();
  }

  NameMap<int> m_names;
  std::unordered_map<const Item*, int> m_ids;
  std::array<Last, 64> m_last;  // most entities have the items of one before them
};

}  // namespace vek0::detail
