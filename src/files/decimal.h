#pragma once

#include <cstdint>
#include <string_view>

// Exact conversions between doubles and decimal digits. The same implementation everywhere: the
// run-time libraries of some targets lack one, or have one that depends on the locale.
namespace vek0::detail {

/// A positive decimal number: `digits` times ten to the power of `exponent`.
struct Decimal {
  std::uint64_t digits;
  int exponent;
};

/// The decimal with the fewest digits that reads back as `value`, a finite positive number; of
/// several, the nearest. The digits do not end in 0. Source: R. Giulietti, "The Schubfach way to
/// render doubles".
Decimal shortestDecimal(double value);

/// The double nearest to `digits` times ten to the power of `exponent`, ties to even. Infinity
/// beyond the range. Returns false, with `value` unchanged, for the few numbers so close to a tie
/// that 128 bits do not decide. Source: D. Lemire, "Number parsing at a gigabyte per second".
bool nearestDouble(const Decimal& decimal, double& value);

/// The double nearest to `digits`, of any length, times ten to the power of `exponent`; ties to
/// even, infinity beyond the range. For the cases that `nearestDouble` leaves open: quadratic in
/// the significant digits, of which there are at most 770.
double nearestDoubleOf(std::string_view digits, long exponent);

}  // namespace vek0::detail
