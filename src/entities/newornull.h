#pragma once

#include <new>
#include <utility>

namespace vek0::detail {

/// Creates a `T`, or returns null when out of memory for it or its members.
template <class T, class... Args>
T* newOrNull(Args&&... args) {
  try {
    return new (std::nothrow) T(std::forward<Args>(args)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace vek0::detail
