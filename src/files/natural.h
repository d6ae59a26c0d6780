#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vek0::detail {

/// A natural number of any size, for the few conversions that 128 bits do not decide.
class Natural {
 public:
  explicit Natural(std::uint64_t value) : m_words{value} { trim(); }

  bool isZero() const { return m_words.empty(); }
  /// Number of bits without leading zeros; 0 for 0.
  long bitCount() const;
  bool isBelow(const Natural& other) const;

  void multiplyAdd(std::uint64_t factor, std::uint64_t addend);
  void multiplyByPowerOf5(long power);
  void shiftLeft(long bits);
  /// `other` must not be larger.
  void subtract(const Natural& other);

  /// Decimal digits; quadratic in their number.
  std::string toString() const;

 private:
  void trim() {
    while (!m_words.empty() && m_words.back() == 0) m_words.pop_back();
  }
  std::uint32_t divideBy(std::uint32_t divisor);

  std::vector<std::uint64_t> m_words;  // the least significant first, the last is not 0
};

}  // namespace vek0::detail
