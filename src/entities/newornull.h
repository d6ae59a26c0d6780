#pragma once

#include <new>
#include <utility>

namespace vek0::detail {

/// A new `T`, or null when out of memory for it or for what it holds.
template <class T, class... Args>
T* newOrNull(Args&&... args) {
  try {
    return new (std::nothrow) T(std::forward<Args>(args)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace vek0::detail
