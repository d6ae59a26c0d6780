#pragma once

#include <cstddef>
#include <vector>

namespace vek0::detail {

/// First slot in use of an array with holes, from `from` on; the size when there is none.
template <class T>
std::size_t firstUsed(const std::vector<T*>& slots, std::size_t from) {
  while (from < slots.size() && slots[from] == nullptr) ++from;
  return from;
}

/// Position of a hole right before `at`, where something may go that has to stand between
/// what is on both sides. There is one wherever something was taken out and the array was
/// not closed up since. Otherwise some are made, as many as make a run of such requests
/// cheap; `moved` hears of everything that has a new position, and `holes` is kept true.
template <class T, class Moved>
std::size_t holeBefore(std::vector<T*>& slots, std::size_t at, std::size_t& holes,
                       const Moved& moved) {
  if (at > 0 && slots[at - 1] == nullptr) return at - 1;
  const std::size_t gap = at == slots.size() ? 1 : 1 + slots.size() / 16;
  slots.insert(slots.begin() + static_cast<std::ptrdiff_t>(at), gap, nullptr);
  holes += gap;
  for (std::size_t i = at + gap; i < slots.size(); ++i)
    if (slots[i] != nullptr) moved(*slots[i], i);
  return at + gap - 1;
}

}  // namespace vek0::detail
