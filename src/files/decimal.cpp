// Conversion between decimals and doubles in fixed precision: a product of the digits with the
// leading 128 bits of a power of ten decides all but the few numbers that lie too close to a tie,
// for which `Natural` computes exactly.
#include "files/decimal.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

#include "files/bits.h"
#include "files/natural.h"
#include "files/wide.h"

namespace vek0::detail {
namespace {

// The leading 128 bits of the powers of ten, truncated.
constexpr int kLeastPower = -342, kMostPower = 324;
constexpr Wide kPowersOfTen[] = {
#include "files/powersoften.inc"
};
constexpr int kMostDoublePower = 308;  // infinite beyond
static_assert(std::size(kPowersOfTen) == kMostPower - kLeastPower + 1);

const Wide& powerOfTen(int exponent) { return kPowersOfTen[exponent - kLeastPower]; }

// Floors of logarithms, exact for every exponent here: fractions of powers of two.
constexpr int floorLog2OfPower10(int e) { return (e * 1741647) >> 19; }
constexpr int floorLog10OfPower2(int e) { return static_cast<int>((e * 1262611LL) >> 22); }
// The same of three quarters of a power of two.
constexpr int floorLog10OfThreeQuarters(int e) {
  return static_cast<int>((e * 1262611LL - 524031) >> 22);
}

constexpr int kFractionBits = 52, kBias = 1075;
constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << kFractionBits;

// A product's upper 64 bits; the lowest bit is set if more than rounding lies below.
std::uint64_t roundedToOdd(const Wide& power, std::uint64_t factor) {
  const Wide low = multiply(power.low, factor);
  Wide high = multiply(power.high, factor);
  high.low += low.high;
  if (high.low < low.high) ++high.high;
  return high.high | (high.low > 1 ? 1 : 0);
}

Decimal withoutZeros(std::uint64_t digits, int exponent) {
  while (digits % 10 == 0) {
    digits /= 10;
    ++exponent;
  }
  return {digits, exponent};
}

// Two to the power of `exponent`, from the least number above 0 to the largest power.
double powerOfTwo(int exponent) {
  constexpr int kLeastNormal = -1022, kLeast = -1074;
  const std::uint64_t bits = exponent < kLeastNormal
                                 ? std::uint64_t{1} << (exponent - kLeast)
                                 : static_cast<std::uint64_t>(exponent + 1023) << kFractionBits;
  return doubleOf(bits);
}

// The double nearest to `bits` (whose first bit is set) times two to the power of `exponent`, ties
// to even; `more` means that the exact number is slightly larger.
double roundedDouble(std::uint64_t bits, int exponent, bool more) {
  constexpr int kLeastExponent = -1074, kMostExponent = 971;
  const int drop = std::max(64 - (kFractionBits + 1), kLeastExponent - exponent);
  if (drop > 64) return 0;
  const std::uint64_t kept = drop == 64 ? 0 : bits >> drop;
  const std::uint64_t half = std::uint64_t{1} << (drop - 1);
  const std::uint64_t rest = bits & (half - 1 + half);
  const bool up = rest > half || (rest == half && (more || (kept & 1) != 0));
  if (exponent + drop > kMostExponent) return std::numeric_limits<double>::infinity();
  return static_cast<double>(kept + (up ? 1 : 0)) * powerOfTwo(exponent + drop);
}

// The double nearest to a / b times two to the power of `exponent`; neither is 0.
double nearestQuotient(Natural a, Natural b, long exponent) {
  const long shift = b.bitCount() - a.bitCount();
  if (shift > 0) a.shiftLeft(shift);
  if (shift < 0) b.shiftLeft(-shift);
  exponent -= shift;
  if (a.isBelow(b)) {
    a.shiftLeft(1);
    --exponent;
  }
  std::uint64_t bits = 0;  // of a / b, which lies in [1, 2)
  constexpr int kBits = 64;
  for (int i = 0; i < kBits; ++i) {
    bits <<= 1;
    if (!a.isBelow(b)) {
      a.subtract(b);
      bits |= 1;
    }
    a.shiftLeft(1);
  }
  return roundedDouble(bits, static_cast<int>(exponent) - (kBits - 1), !a.isZero());
}

struct Bounds {
  std::uint64_t lower, value, upper;
};

// Of the two multiples of `step` around the value (all in quarters), the only one between the
// bounds; 0 if none or both are.
std::uint64_t onlyMultipleWithin(const Bounds& bounds, std::uint64_t below, std::uint64_t step) {
  const bool isBelowIn = bounds.lower <= below;
  const bool isAboveIn = below + step <= bounds.upper;
  if (isBelowIn == isAboveIn) return 0;
  return isBelowIn ? below : below + step;
}

}  // namespace

Decimal shortestDecimal(double value) {
  const auto image = bitsOf(value);
  const std::uint64_t fraction = image & (kHiddenBit - 1);
  const int biased = static_cast<int>(image >> kFractionBits);
  const std::uint64_t c = biased == 0 ? fraction : fraction | kHiddenBit;
  const int q = std::max(biased, 1) - kBias;
  // Below a power of two the neighboring double is half as far away.
  const bool isLowerNear = fraction == 0 && biased > 1;
  const int k = isLowerNear ? floorLog10OfThreeQuarters(q) : floorLog10OfPower2(q);
  const int shift = q + floorLog2OfPower10(-k) + 1;
  Wide power = powerOfTen(-k);
  if (++power.low == 0) ++power.high;
  // In quarters of 10^k, midpoints between doubles are integers. A bound itself qualifies if the
  // number is even, since readers round to even.
  const std::uint64_t odd = c & 1;
  const Bounds bounds = {
      roundedToOdd(power, (4 * c - (isLowerNear ? 1 : 2)) << shift) + odd,
      roundedToOdd(power, 4 * c << shift),
      roundedToOdd(power, (4 * c + 2) << shift) - odd,
  };
  const std::uint64_t s = bounds.value / 4;
  if (s >= 10) {
    if (const std::uint64_t tens = onlyMultipleWithin(bounds, s / 10 * 40, 40))
      return withoutZeros(tens / 40, k + 1);
  }
  if (const std::uint64_t ones = onlyMultipleWithin(bounds, s * 4, 4))
    return withoutZeros(ones / 4, k);
  const std::uint64_t middle = s * 4 + 2;
  const bool up = bounds.value > middle || (bounds.value == middle && (s & 1) != 0);
  return withoutZeros(s + (up ? 1 : 0), k);
}

bool nearestDouble(const Decimal& decimal, double& value) {
  const auto [digits, exponent] = decimal;
  constexpr int kMostExact = 55;  // larger powers of five have more than 128 bits
  if (digits == 0 || exponent < kLeastPower) {
    value = 0;
    return true;
  }
  if (exponent > kMostDoublePower) {
    value = std::numeric_limits<double>::infinity();
    return true;
  }
  const int zeros = std::countl_zero(digits);
  const Wide& power = powerOfTen(exponent);
  const std::uint64_t factor = digits << zeros;
  Wide high = multiply(power.high, factor);
  const Wide low = multiply(power.low, factor);
  high.low += low.high;
  if (high.low < low.high) ++high.high;
  // The truncation of the table contributes less than one here.
  const bool isExact = exponent >= 0 && exponent <= kMostExact;
  if (!isExact && high.low == ~std::uint64_t{0}) return false;
  int binary = floorLog2OfPower10(exponent) + 1 - zeros;
  if (high.high >> 63 == 0) {
    high.high = high.high << 1 | high.low >> 63;
    high.low <<= 1;
    --binary;
  }
  value = roundedDouble(high.high, binary, high.low != 0 || low.low != 0 || !isExact);
  return true;
}

double nearestDoubleOf(std::string_view digits, long exponent) {
  // No tie between two doubles has more digits; one more digit suffices to indicate the rest.
  constexpr std::size_t kMostDigits = 770;
  constexpr long kBeyond = 400;  // powers of ten beyond every double
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  const auto count = static_cast<long>(digits.size());
  if (count == 0 || count + exponent < -kBeyond) return 0;
  if (count + exponent > kBeyond) return std::numeric_limits<double>::infinity();
  const std::string_view used = digits.substr(0, kMostDigits), rest = digits.substr(used.size());
  Natural number(0);
  for (const char digit : used) number.multiplyAdd(10, static_cast<std::uint64_t>(digit - '0'));
  exponent += static_cast<long>(rest.size());
  if (rest.find_first_not_of('0') != std::string_view::npos) {
    number.multiplyAdd(10, 1);
    --exponent;
  }
  Natural divisor(1);
  (exponent < 0 ? divisor : number).multiplyByPowerOf5(std::labs(exponent));
  return nearestQuotient(std::move(number), std::move(divisor), exponent);
}

}  // namespace vek0::detail
