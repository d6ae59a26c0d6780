#pragma once

#include <cstdint>

namespace vek0::detail {

/// 128 bits.
struct Wide {
  std::uint64_t high, low;
};

/// The whole product.
inline Wide multiply(std::uint64_t a, std::uint64_t b) {
#if defined(__SIZEOF_INT128__)
  __extension__ using Product = unsigned __int128;
  const Product p = static_cast<Product>(a) * b;
  return {static_cast<std::uint64_t>(p >> 64), static_cast<std::uint64_t>(p)};
#else
  constexpr std::uint64_t kLow = 0xFFFFFFFFu;
  const std::uint64_t ll = (a & kLow) * (b & kLow), lh = (a & kLow) * (b >> 32);
  const std::uint64_t hl = (a >> 32) * (b & kLow), hh = (a >> 32) * (b >> 32);
  const std::uint64_t middle = (ll >> 32) + (lh & kLow) + (hl & kLow);
  return {hh + (lh >> 32) + (hl >> 32) + (middle >> 32), middle << 32 | (ll & kLow)};
#endif
}

}  // namespace vek0::detail
