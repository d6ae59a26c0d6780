#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

namespace vek0::detail {

/// First used slot of an array with holes, from `from` on; the size if there is none.
template <class T>
std::size_t firstUsed(const std::vector<T*>& slots, std::size_t from) {
  while (from < slots.size() && slots[from] == nullptr) ++from;
  return from;
}

/// Spreads the items in [first, last) evenly, with a hole before slot `at`, which is in use;
/// returns the position of the hole. The range must contain one.
template <class T, class Moved>
std::size_t spreadAround(std::vector<T*>& slots, std::size_t first, std::size_t last,
                         std::size_t at, const Moved& moved) {
  std::size_t packed = last, next = last;
  for (std::size_t i = last; i-- > first;) {
    T* const item = slots[i];
    if (item == nullptr) continue;
    slots[i] = nullptr;
    slots[--packed] = item;
    if (i == at) next = packed;
  }
  const std::size_t count = last - packed + 1, width = last - first;
  std::size_t hole = first, placed = 0;
  // No target slot is after that of the packed item, so none is overwritten.
  for (std::size_t i = packed; i < last; ++i) {
    if (i == next) hole = first + placed++ * width / count;
    T* const item = slots[i];
    const std::size_t to = first + placed++ * width / count;
    slots[i] = nullptr;
    slots[to] = item;
    moved(*item, to);
  }
  return hole;
}

/// Appends that many holes, or as many as memory permits.
template <class T>
void appendHoles(std::vector<T*>& slots, std::size_t count, std::size_t& holes) {
  try {
    slots.reserve(slots.size() + count);
  } catch (const std::bad_alloc&) {
    count = slots.capacity() - slots.size();
    if (count == 0 && holes == 0) throw;
  }
  slots.insert(slots.end(), count, nullptr);
  holes += count;
}

/// Position of a new hole at the end; without memory for it, that of the last hole, which is moved
/// there.
template <class T, class Moved>
std::size_t holeAtEnd(std::vector<T*>& slots, std::size_t& holes, const Moved& moved) {
  try {
    slots.push_back(nullptr);
    ++holes;
  } catch (const std::bad_alloc&) {
    if (holes == 0) throw;
    std::size_t hole = slots.size() - 1;
    while (slots[hole] != nullptr) --hole;
    for (; hole + 1 < slots.size(); ++hole) {
      slots[hole] = slots[hole + 1];
      moved(*slots[hole], hole);
    }
    slots[hole] = nullptr;
  }
  return slots.size() - 1;
}

/// Position of a hole directly before `at`, for inserting an item between its neighbors. There is
/// one wherever an item was removed since the last compaction. Otherwise nearby items are spread
/// over the smallest range with room: the wider the range, the sparser it must be, so that requests
/// in any order cost the squared logarithm of the size on average. `moved` is called for every item
/// with a new position, and `holes` is updated. If the array must grow, it grows to 1.5 times the
/// slots in use. No memory is needed for as many items as the array has had.
template <class T, class Moved>
std::size_t holeBefore(std::vector<T*>& slots, std::size_t at, std::size_t& holes,
                       const Moved& moved) {
  if (at > 0 && slots[at - 1] == nullptr) return at - 1;
  if (at == slots.size()) return holeAtEnd(slots, holes, moved);
  constexpr std::size_t kLeast = 16;
  constexpr double kDensestAll = 0.75;  // maximum fill of the whole array; 1 for the smallest range
  double levels = 1, level = 0;
  for (std::size_t width = kLeast; width < slots.size(); width *= 2) ++levels;
  for (std::size_t width = kLeast; width < slots.size(); width *= 2, ++level) {
    const std::size_t first = at / width * width, last = std::min(first + width, slots.size());
    const auto free = std::count(slots.begin() + static_cast<std::ptrdiff_t>(first),
                                 slots.begin() + static_cast<std::ptrdiff_t>(last), nullptr);
    const double sparsest = (1 - kDensestAll) * level / levels * static_cast<double>(last - first);
    if (free > 0 && static_cast<double>(free - 1) >= sparsest)
      return spreadAround(slots, first, last, at, moved);
  }
  const std::size_t used = slots.size() - holes + 1;
  if (static_cast<double>(used) > kDensestAll * static_cast<double>(slots.size())) {
    appendHoles(slots, used + used / 2 + 1 - slots.size(), holes);
  }
  return spreadAround(slots, 0, slots.size(), at, moved);
}

}  // namespace vek0::detail
