#pragma once

#include <cstdint>
#include <string_view>

// Exact conversions between doubles and decimal digits. One implementation everywhere: the
// run-time libraries of some targets have none, or one that follows the locale.
namespace vek0::detail {

/// A positive decimal number: `digits` times ten to the power of `exponent`.
struct Decimal {
  std::uint64_t digits;
  int exponent;
};

/// The decimal of fewest digits that reads back as `value`, a finite positive number; of
/// several the one next to it. The digits do not end in 0.
/// Source: R. Giulietti, "The Schubfach way to render doubles".
Decimal shortestDecimal(double value);

/// The double nearest to `digits` times ten to the power of `exponent`, ties to even.
/// Infinity beyond the range. False, and `value` untouched, for the few numbers so near to a
/// tie that 128 bits do not tell.
/// Source: D. Lemire, "Number parsing at a gigabyte per second".
bool nearestDouble(const Decimal& decimal, double& value);

/// The double nearest to `digits`, of which there may be any number, times ten to the power of
/// `exponent`; ties to even, infinity beyond the range. For what `nearestDouble` leaves:
/// quadratic in the digits that count, 770 at the most.
double nearestDoubleOf(std::string_view digits, long exponent);

}  // namespace vek0::detail
