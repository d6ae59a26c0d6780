#include "vek0core/drawing/pointerset.h"

#include <cstdint>
#include <utility>

namespace vek0::detail {
namespace {

constexpr std::size_t kFewest = 16;
constexpr int kShiftOfFewest = 64 - 4;

// Addresses are evenly spaced. Multiplied by 2^64 over the golden ratio, the upper bits are evenly
// distributed whatever the spacing.
std::uint64_t hashOf(const void* pointer) {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer)) *
         0x9E3779B97F4A7C15u;
}

}  // namespace

// The slot of the pointer, or the free one where it would be inserted.
std::size_t PointerSet::locate(const void* pointer) const {
  auto slot = static_cast<std::size_t>(hashOf(pointer) >> m_shift);
  // Linear probing; the table is at most half full, so runs are short.
  while (m_slots[slot] != nullptr && m_slots[slot] != pointer)
    slot = (slot + 1) & (m_slots.size() - 1);
  return slot;
}

bool PointerSet::contains(const void* pointer) const {
  return pointer != nullptr && m_used > 0 && m_slots[locate(pointer)] != nullptr;
}

bool PointerSet::insert(const void* pointer) {
  if (pointer == nullptr || contains(pointer)) return false;
  reserve(1);
  m_slots[locate(pointer)] = pointer;
  ++m_used;
  return true;
}

void PointerSet::reserve(std::size_t more) {
  // At most half full, see `locate`.
  while (2 * (m_used + more) > m_slots.size()) grow();
}

void PointerSet::grow() {
  PointerSet larger;
  larger.m_slots.resize(m_slots.empty() ? kFewest : 2 * m_slots.size());
  larger.m_shift = m_slots.empty() ? kShiftOfFewest : m_shift - 1;
  larger.m_used = m_used;
  for (const void* pointer : m_slots)
    if (pointer != nullptr) larger.m_slots[larger.locate(pointer)] = pointer;
  *this = std::move(larger);
}

void PointerSet::clear() { *this = PointerSet(); }

}  // namespace vek0::detail
