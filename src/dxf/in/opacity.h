#pragma once

#include <optional>

#include "vek0core/tables/enttraits.h"

namespace vek0::detail {

/// The opacity that a transparency stands for in a file: its highest byte is the source, by layer,
/// by block or a value, and the lowest byte that value. Nothing for other sources.
inline std::optional<short> opacityOf(long transparency) {
  constexpr long byLayer = 0, byBlock = 1, byValue = 2, mask = 0xFF;
  switch (transparency >> 24 & mask) {
    case byLayer:
      return ENT_TRAITS::kOpacityByLayer;
    case byBlock:
      return ENT_TRAITS::kOpacityByBlock;
    case byValue:
      return static_cast<short>(transparency & mask);
    default:
      return std::nullopt;
  }
}

}  // namespace vek0::detail
