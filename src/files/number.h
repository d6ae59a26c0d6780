#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vek0core/export.h"
#include "zim0lang/casefold.h"

// Numbers in files, for the readers and writers. Nothing here depends on the
// locale or on the width of long, and every result is the same on every machine.
namespace vek0::detail {

/// Result of `parseDouble`; `value` is 0 if it is not finite.
struct ParsedDouble {
  double value;
  bool finite;         ///< false for "nan", "inf", "1.#QNAN" and the like, and out of range
  bool whole = false;  ///< nothing follows the number in the text
};

/// The number at the front of the text, correctly rounded. Leading blanks and one sign are allowed,
/// trailing text is ignored, a text without a number is 0, and underflow yields 0. Hexadecimal
/// forms are not supported. Up to 19 digits that fit 2^53, with a power of ten up to 22, need one
/// exact multiplication or division; most others need two 64-bit products.
VEK0_API ParsedDouble parseDouble(std::string_view text);
VEK0_API ParsedDouble parseDouble(std::u16string_view text);

/// The integer at the front of the text, with the same leniency, clamped to 32 bits.
VEK0_API std::int32_t parseLong(std::string_view text);
VEK0_API std::int32_t parseLong(std::u16string_view text);

/// Whether the text begins with a decimal number, as the functions above read one: not for
/// "abc", "-" or "".
VEK0_API bool beginsWithNumber(std::string_view text);

/// Hexadecimal without a check, modulo 2^64: units up to '9' count from '0', those above it and
/// below 'G' from 'A' = 10, all others from 'a' = 10. Junk deliberately yields junk, because
/// readers trust handles.
VEK0_API std::uint64_t parseHex(std::string_view text);
VEK0_API std::uint64_t parseHex(std::u16string_view text);

// Buffer sizes that the formatting functions need at `out`; none writes a terminator.
inline constexpr std::size_t kFixedRoom = 320;    ///< formatFixed
inline constexpr std::size_t kShortestRoom = 36;  ///< formatShortest
inline constexpr std::size_t kIntegerRoom = 20;   ///< formatInteger and formatHex

/// Writes `value` with six decimals like "%.6f" of the C library: rounded half to even from its
/// exact value, never with an exponent, keeping the sign even if all digits are 0; non-finite
/// numbers as 0. Returns the end of the output, as do the functions below.
VEK0_API char* formatFixed(char* out, double value);

/// Writes the fewest digits that read back as exactly `value` (whole numbers show all of theirs):
/// without an exponent from 1e-5 up to below 1e17, always with a decimal point or an exponent, so
/// that readers see a real number; 0, negative zero and non-finite numbers as "0.0".
VEK0_API char* formatShortest(char* out, double value);

/// Writes `value` in decimal.
VEK0_API char* formatInteger(char* out, std::int64_t value);

/// Writes `value` in uppercase hexadecimal without leading zeros.
VEK0_API char* formatHex(char* out, std::uint64_t value);

}  // namespace vek0::detail
