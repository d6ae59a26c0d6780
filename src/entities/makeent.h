#pragma once

#include <new>
#include <utility>

#include "vek0core/entities/entfactory.h"

namespace vek0::detail {

inline constexpr Handle kCopyHandle = 0;  // handles are unique, so a copy has none

}  // namespace vek0::detail

// Strings and lists inside an entity may fail to allocate as well as the object.
template <class Kind, class... Args>
Kind* CEntFactory::make(Args&&... args) {
  try {
    return new (std::nothrow) Kind(std::forward<Args>(args)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
