#pragma once

#include <cstdint>
#include <cstring>

namespace vek0::detail {

// `std::bit_cast`, which not every standard library in use has.

inline std::uint64_t bitsOf(double value) {
  std::uint64_t bits;
  static_assert(sizeof bits == sizeof value);
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

inline double doubleOf(std::uint64_t bits) {
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

}  // namespace vek0::detail
