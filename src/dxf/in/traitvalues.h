#pragma once

#include <cstdint>
#include <optional>

#include "vek0core/tables/enttraits.h"

namespace vek0::detail {

/// The opacity that a transparency stands for in a file: its highest byte is the source, by layer,
/// by block or a value, and the lowest byte that value. Nothing for other numbers.
inline std::optional<short> opacityOf(long transparency) {
  constexpr long byLayer = 0, byBlock = 1, byValue = 2, mask = 0xFF;
  const long source = transparency >> 24;
  if (source == byLayer && transparency == 0) return ENT_TRAITS::kOpacityByLayer;
  if (source == byBlock) return ENT_TRAITS::kOpacityByBlock;
  if (source == byValue) return static_cast<short>(transparency & mask);
  return std::nullopt;
}

/// A true color in a file; nothing if the number is none.
inline std::optional<std::uint32_t> trueColorOf(long value) {
  constexpr long white = 0xFFFFFF;
  if (value < 0 || value > white) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

}  // namespace vek0::detail
