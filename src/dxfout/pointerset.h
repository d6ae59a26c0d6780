#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vek0::detail {

/// A set of addresses that are compared and never followed. Open addressing: a look-up
/// touches one line of memory.
class PointerSet {
 public:
  /// Room for that many.
  explicit PointerSet(std::size_t count) {
    std::size_t slots = 16;
    while (slots < 2 * count) slots *= 2;
    m_slots.resize(slots);
  }

  bool has(const void* pointer) const {
    return pointer != nullptr && m_slots[locate(pointer)] == pointer;
  }
  /// Not more than there is room for.
  void insert(const void* pointer) { m_slots[locate(pointer)] = pointer; }

 private:
  std::size_t locate(const void* pointer) const {
    constexpr std::uint64_t golden = 0x9E3779B97F4A7C15;  // 2^64 / golden ratio, spreads the bits
    const std::uint64_t hash = reinterpret_cast<std::uintptr_t>(pointer) * golden;
    std::size_t slot = static_cast<std::size_t>(hash >> 32) & (m_slots.size() - 1);
    while (m_slots[slot] != nullptr && m_slots[slot] != pointer)
      slot = (slot + 1) & (m_slots.size() - 1);
    return slot;
  }

  std::vector<const void*> m_slots;  // a power of two, at most half in use
};

}  // namespace vek0::detail
