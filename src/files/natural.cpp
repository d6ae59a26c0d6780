// Natural numbers of any size, as 64-bit words, lowest first. They serve the few decimals that lie
// so close to the middle between two doubles that fixed precision cannot decide; speed does not
// matter.
#include "files/natural.h"

#include <algorithm>
#include <bit>

#include "files/wide.h"

namespace vek0::detail {

long Natural::bitCount() const {
  if (isZero()) return 0;
  return static_cast<long>(m_words.size()) * 64 - std::countl_zero(m_words.back());
}

bool Natural::isBelow(const Natural& other) const {
  if (m_words.size() != other.m_words.size()) return m_words.size() < other.m_words.size();
  return std::lexicographical_compare(m_words.rbegin(), m_words.rend(), other.m_words.rbegin(),
                                      other.m_words.rend());
}

void Natural::multiplyAdd(std::uint64_t factor, std::uint64_t addend) {
  for (std::uint64_t& word : m_words) {
    Wide p = multiply(word, factor);
    p.low += addend;
    if (p.low < addend) ++p.high;
    word = p.low;
    addend = p.high;
  }
  if (addend != 0) m_words.push_back(addend);
}

void Natural::multiplyByPowerOf5(long power) {
  constexpr std::uint64_t kStep = 7450580596923828125u;  // 5^27, the largest in 64 bits
  constexpr long kStepPower = 27;
  for (; power >= kStepPower; power -= kStepPower) multiplyAdd(kStep, 0);
  for (; power > 0; --power) multiplyAdd(5, 0);
}

void Natural::shiftLeft(long bits) {
  if (isZero()) return;
  multiplyAdd(std::uint64_t{1} << bits % 64, 0);
  m_words.insert(m_words.begin(), static_cast<std::size_t>(bits / 64), 0);
}

void Natural::subtract(const Natural& other) {
  bool borrow = false;
  for (std::size_t i = 0; i < m_words.size(); ++i) {
    const std::uint64_t less = i < other.m_words.size() ? other.m_words[i] : 0;
    const std::uint64_t word = m_words[i];
    m_words[i] = word - less - (borrow ? 1 : 0);
    borrow = word < less || (word == less && borrow);
  }
  trim();
}

// Divides by half words, so that each step fits in 64 bits. Returns the remainder.
std::uint32_t Natural::divideBy(std::uint32_t divisor) {
  std::uint64_t rest = 0;
  for (auto word = m_words.rbegin(); word != m_words.rend(); ++word) {
    const std::uint64_t upper = rest << 32 | *word >> 32;
    const std::uint64_t lower = upper % divisor << 32 | (*word & 0xFFFFFFFFu);
    *word = upper / divisor << 32 | lower / divisor;
    rest = lower % divisor;
  }
  trim();
  return static_cast<std::uint32_t>(rest);
}

std::string Natural::toString() const {
  constexpr std::uint32_t kBillion = 1'000'000'000;
  constexpr std::size_t kDigits = 9;
  std::string reversed;
  for (Natural left = *this; !left.isZero();) {
    std::uint32_t group = left.divideBy(kBillion);
    for (std::size_t i = 0; i < kDigits; ++i, group /= 10)
      reversed += static_cast<char>('0' + group % 10);
  }
  while (!reversed.empty() && reversed.back() == '0') reversed.pop_back();
  if (reversed.empty()) reversed.push_back('0');
  return {reversed.rbegin(), reversed.rend()};
}

}  // namespace vek0::detail
