// Reading and writing numbers as the format has them, without the C library: that depends on the
// locale, and must not differ between platforms.
//
// A decimal of at most 19 digits whose power of ten is exact needs one multiplication or division,
// which rounds once and is therefore correct. Nearly all numbers in files are of this kind; the
// rest takes the slow path through `nearestDouble`. Writing the shortest decimal tries six decimals
// first and checks that they read back, which suffices for most drawings.
#include "files/number.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "files/decimal.h"
#include "files/natural.h"

namespace vek0::detail {
namespace {

// Largest power of ten and largest integer range that a double represents exactly.
constexpr int kExactPower = 22;
constexpr double kPowers[kExactPower + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                             1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint64_t kExactWhole = std::uint64_t{1} << 53;
// With wider intermediate results a product would be rounded twice.
constexpr bool kRoundsOnce = FLT_EVAL_METHOD == 0;
constexpr int kDigitsIn64 = 19;  // numbers with this many digits fit 64 bits

template <class C>
bool isBlank(C c) {
  return c == C(' ') || (c >= C('\t') && c <= C('\r'));
}

// The digit's value, or a value above 9.
template <class C>
unsigned digitOf(C c) {
  // Negative differences wrap to large values, which are no digits.
  return static_cast<unsigned>(std::make_unsigned_t<C>(c)) - unsigned{'0'};
}
template <>
unsigned digitOf(char16_t c) {
  return unsigned{c} - unsigned{'0'};
}

template <class C>
bool isWord(const C* p, const C* end, const char* word) {
  // `word` is in lower case; the file may use either case.
  for (; *word; ++word, ++p) {
    if (p == end || (*p != C(*word) && *p != C(*word - 'a' + 'A'))) return false;
  }
  return true;
}

// The token of an unsigned decimal number.
template <class C>
struct Token {
  const C* begin;
  const C* end;
  std::uint64_t digits;  // all digits as one number, correct for at most 19
  std::ptrdiff_t count;  // of digits, leading zeros included
  long exponent;         // of the last digit
};

// Reads a run of digits; the value may wrap, so the caller checks their count.
template <class C>
const C* takeDigits(const C* p, const C* end, std::uint64_t& number) {
  for (; p != end; ++p) {
    const unsigned digit = digitOf(*p);
    if (digit > 9) break;
    number = number * 10 + digit;
  }
  return p;
}

// The exponent at p, saturated far beyond any range; returns 0, without advancing p, if it has no
// digit.
template <class C>
long takeExponent(const C*& p, const C* end) {
  if (p == end || (*p != C('e') && *p != C('E'))) return 0;
  const C* q = p + 1;
  const bool negative = q != end && *q == C('-');
  if (q != end && (*q == C('-') || *q == C('+'))) ++q;
  // "1e" and "1e+" are the number 1 followed by other text.
  if (q == end || digitOf(*q) > 9) return 0;
  constexpr long kHuge = 100'000'000;
  long value = 0;
  for (; q != end && digitOf(*q) <= 9; ++q) {
    // Saturated, so that a long exponent cannot overflow.
    value = std::min(kHuge, value * 10 + static_cast<long>(digitOf(*q)));
  }
  p = q;
  return negative ? -value : value;
}

template <class C>
Token<C> takeToken(const C* p, const C* end) {
  Token<C> token{p, p, 0, 0, 0};
  const C* whole = p;
  p = takeDigits(p, end, token.digits);
  token.count = p - whole;
  if (p != end && *p == C('.')) {
    const C* const fraction = ++p;
    p = takeDigits(p, end, token.digits);
    token.count += p - fraction;
    token.exponent = -static_cast<long>(p - fraction);
  }
  if (token.count == 0) return token;
  token.exponent += takeExponent(p, end);
  token.end = p;
  return token;
}

bool nearestDecimal(std::uint64_t digits, long exponent, double& value) {
  constexpr long kBeyond = 10000;  // every double
  return nearestDouble({digits, static_cast<int>(std::clamp(exponent, -kBeyond, kBeyond))}, value);
}

// Digits from the first one that is not 0.
template <class C>
std::ptrdiff_t significant(const Token<C>& token) {
  std::ptrdiff_t zeros = 0;
  for (const C* p = token.begin; p != token.end && (*p == C('0') || *p == C('.')); ++p)
    zeros += *p == C('0') ? 1 : 0;
  return token.count - zeros;
}

// For numbers that one multiplication or division does not produce.
template <class C>
double valueOfDigits(const Token<C>& token) {
  double value;
  if (significant(token) <= kDigitsIn64 && nearestDecimal(token.digits, token.exponent, value))
    return value;
  std::string digits;
  for (const C* p = token.begin; p != token.end && (*p == C('.') || digitOf(*p) <= 9); ++p)
    if (*p != C('.')) digits += static_cast<char>(*p);
  digits.erase(0, digits.find_first_not_of('0'));
  const std::size_t used = std::min(digits.size(), std::size_t{kDigitsIn64});
  const auto cut = static_cast<long>(digits.size() - used);
  std::uint64_t front = 0;
  takeDigits(digits.data(), digits.data() + used, front);
  // If the results with and without one more digit agree, they are correct; otherwise all digits
  // are needed.
  double least, most;
  if (nearestDecimal(front, token.exponent + cut, least) &&
      nearestDecimal(front + (cut > 0 ? 1 : 0), token.exponent + cut, most) && least == most)
    return least;
  return nearestDoubleOf(digits, token.exponent);
}

template <class C>
ParsedDouble valueOf(const Token<C>& token) {
  if (token.count <= kDigitsIn64 && token.digits == 0) return {0, true};
  if (!kRoundsOnce || token.count > kDigitsIn64 || token.digits > kExactWhole ||
      token.exponent < -kExactPower || token.exponent > kExactPower) {
    const double value = valueOfDigits(token);
    return {value, std::isfinite(value)};
  }
  // Both are exact, so the one operation rounds correctly.
  const auto whole = static_cast<double>(token.digits);
  return {token.exponent < 0 ? whole / kPowers[-token.exponent] : whole * kPowers[token.exponent],
          true};
}

template <class C>
ParsedDouble parseDoubleOf(std::basic_string_view<C> text) {
  const C* p = text.data();
  const C* const end = p + text.size();
  while (p != end && isBlank(*p)) ++p;
  if (p == end) return {0, true};
  const bool negative = *p == C('-');
  if (negative || *p == C('+')) ++p;
  const Token<C> token = takeToken(p, end);
  if (token.count == 0) return {0, !isWord(p, end, "nan") && !isWord(p, end, "inf")};
  // "1.#QNAN", "1.#INF": how some run-time libraries print NaN and infinity.
  if (token.end != end && *token.end == C('#') && token.end[-1] == C('.')) return {0, false};
  ParsedDouble result = valueOf(token);
  result.whole = token.end == end;
  if (!result.finite) result.value = 0;
  if (negative) result.value = -result.value;
  return result;
}

template <class C>
std::int32_t parseLongOf(std::basic_string_view<C> text) {
  constexpr std::int64_t kLimit = std::int64_t{1} << 31;
  const C* p = text.data();
  const C* const end = p + text.size();
  while (p != end && isBlank(*p)) ++p;
  const bool negative = p != end && *p == C('-');
  if (p != end && (negative || *p == C('+'))) ++p;
  std::int64_t value = 0;
  for (; p != end && digitOf(*p) <= 9; ++p) {
    value = std::min(kLimit, value * 10 + static_cast<std::int64_t>(digitOf(*p)));
  }
  return static_cast<std::int32_t>(negative ? -value : std::min(value, kLimit - 1));
}

// Not validated: other letters give numbers beyond 15, or negative ones.
std::int64_t hexDigitOf(std::int64_t unit) {
  if (unit <= '9') return unit - '0';
  return unit < 'G' ? unit - 'A' + 10 : unit - 'a' + 10;
}

template <class C>
std::uint64_t parseHexOf(std::basic_string_view<C> text) {
  std::uint64_t value = 0;
  for (const C c : text) {
    const auto unit =
        std::int64_t{static_cast<std::conditional_t<sizeof(C) == 1, unsigned char, C>>(c)};
    value = value * 16 + static_cast<std::uint64_t>(hexDigitOf(unit));
  }
  return value;
}

// Two digits at a time: the writer's cost is formatting.
constexpr auto kPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

void putPair(char* out, std::uint32_t value) {
  std::memcpy(out, &kPairs[std::size_t{2} * value], 2);
}

constexpr std::uint32_t kMillion = 1'000'000;
constexpr std::size_t kDecimals = 6;

char* putSixDigits(char* out, std::uint32_t value) {
  putPair(out, value / 10000);
  putPair(out + 2, value / 100 % 100);
  putPair(out + 4, value % 100);
  return out + kDecimals;
}

char* putText(char* out, std::string_view text) { return out + text.copy(out, text.size()); }

constexpr std::uint32_t kEightDigits = 100'000'000;

void putEightDigits(char* out, std::uint32_t value) {
  const std::uint32_t high = value / 10000, low = value % 10000;
  putPair(out, high / 100);
  putPair(out + 2, high % 100);
  putPair(out + 4, low / 100);
  putPair(out + 6, low % 100);
}

// Below `kEightDigits`, without leading zeros.
char* putShort(char* out, std::uint32_t value) {
  if (value < 10) return *out = static_cast<char>('0' + value), out + 1;
  char digits[8];
  putEightDigits(digits, value);
  const char* first = digits;
  while (*first == '0') ++first;
  return std::copy<const char*>(first, digits + sizeof digits, out);
}

// Divides once for eight digits, where `std::to_chars` does for two.
char* putWhole(char* out, std::uint64_t value) {
  if (value < kEightDigits) return putShort(out, static_cast<std::uint32_t>(value));
  out = putWhole(out, value / kEightDigits);
  putEightDigits(out, static_cast<std::uint32_t>(value % kEightDigits));
  return out + 8;
}

constexpr double kTwoTo64 = 18446744073709551616.0;

// Millionths of a fraction below 1, rounded half to even from its exact value.
//
// 96 binary places represent every fraction with a bit in the first 43; anything smaller is far
// below half a millionth.
std::uint32_t millionths(double fraction) {
  constexpr double kTwoTo32 = 4294967296.0;
  constexpr std::uint64_t kLow32 = 0xFFFFFFFFu;
  const double scaled = fraction * kTwoTo64;
  const auto bits = static_cast<std::uint64_t>(scaled);
  const auto tail = static_cast<std::uint32_t>((scaled - static_cast<double>(bits)) * kTwoTo32);
  // The product with one million, in 32-bit digits.
  const std::uint64_t low = std::uint64_t{tail} * kMillion;
  const std::uint64_t middle = (bits & kLow32) * kMillion + (low >> 32);
  const std::uint64_t high = (bits >> 32) * kMillion + (middle >> 32);
  auto whole = static_cast<std::uint32_t>(high >> 32);
  const std::uint64_t rest = (high << 32) | (middle & kLow32);
  const bool hasMore = (low & kLow32) != 0;
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
  if (rest > kHalf || (rest == kHalf && (hasMore || whole % 2))) ++whole;
  return whole;
}

// All digits of a finite number from 2^53 on.
char* putHuge(char* out, double value) {
  int exponent;
  const double fraction = std::frexp(value, &exponent);
  constexpr int kBits = std::numeric_limits<double>::digits;
  Natural number(static_cast<std::uint64_t>(std::ldexp(fraction, kBits)));
  number.shiftLeft(exponent - kBits);
  return putText(out, number.toString());
}

// A finite number that is not negative.
char* putFixed(char* out, double value) {
  if (value >= kTwoTo64) return putText(putHuge(out, value), ".000000");
  auto whole = static_cast<std::uint64_t>(value);
  std::uint32_t fraction = millionths(value - static_cast<double>(whole));
  if (fraction == kMillion) {
    ++whole;
    fraction = 0;
  }
  out = putWhole(out, whole);
  *out++ = '.';
  return putSixDigits(out, fraction);
}

// Below 1e15 a decimal of at most 15 digits identifies a unique double, so the first one that reads
// back is the shortest.
constexpr double kFifteenDigits = 1e15;
constexpr double kLeastPlain = 1e-5;  // numbers below this, or from the next constant on, are
                                      // written with exponents
constexpr double kLeastHuge = 1e17;

// The common case: integers or at most six decimals.
char* putFewDecimals(char* out, double value) {
  if (value < kLeastPlain || value >= kFifteenDigits / kMillion) return nullptr;
  constexpr double kHalf = 0.5;  // a neighboring value fails the test below
  const auto scaled = static_cast<std::uint64_t>(value * kMillion + kHalf);
  if (static_cast<double>(scaled) / kMillion != value) return nullptr;
  out = putWhole(out, scaled / kMillion);
  *out++ = '.';
  char* end = putSixDigits(out, static_cast<std::uint32_t>(scaled % kMillion));
  while (end > out + 1 && end[-1] == '0') --end;
  return end;
}

char* putZeros(char* out, int count) { return std::fill_n(out, count, '0'); }

// "d.ddde-07": at least two digits of the exponent.
char* putScientific(char* out, std::string_view digits, int exponent) {
  *out++ = digits[0];
  if (digits.size() > 1) out = putText(putText(out, "."), digits.substr(1));
  out = putText(out, exponent < 0 ? "e-" : "e+");
  const int magnitude = std::abs(exponent);
  if (magnitude < 10) *out++ = '0';
  return putWhole(out, static_cast<std::uint64_t>(magnitude));
}

// Of a shortest decimal.
constexpr std::size_t kMostShortest = 17;
static_assert(2 * kMostShortest <= kShortestRoom);

// A finite, positive number.
char* putShortest(char* out, double value) {
  if (value >= static_cast<double>(kExactWhole) && value < kLeastHuge)
    return putText(putWhole(out, static_cast<std::uint64_t>(value)), ".0");
  const Decimal decimal = shortestDecimal(value);
  char buffer[2 * kMostShortest] = {};
  const std::string_view digits(
      buffer, static_cast<std::size_t>(putWhole(buffer, decimal.digits) - buffer));
  const int count = static_cast<int>(digits.size());
  const int point = count + decimal.exponent;  // digits in front of it
  if (value < kLeastPlain || value >= kLeastHuge) return putScientific(out, digits, point - 1);
  if (point <= 0) return putText(putZeros(putText(out, "0."), -point), digits);
  if (point >= count) return putText(putZeros(putText(out, digits), point - count), ".0");
  // Copies of a constant size take a fraction of the time.
  std::memcpy(out, buffer, kMostShortest);
  out[point] = '.';
  std::memcpy(out + point + 1, buffer + point, kMostShortest);
  return out + count + 1;
}

}  // namespace

ParsedDouble parseDouble(std::string_view text) { return parseDoubleOf(text); }
ParsedDouble parseDouble(std::u16string_view text) { return parseDoubleOf(text); }
std::int32_t parseLong(std::string_view text) { return parseLongOf(text); }
std::int32_t parseLong(std::u16string_view text) { return parseLongOf(text); }

bool beginsWithNumber(std::string_view text) {
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p != end && isBlank(*p)) ++p;
  if (p != end && (*p == '-' || *p == '+')) ++p;
  if (p != end && *p == '.') ++p;
  return p != end && digitOf(*p) <= 9;
}

std::uint64_t parseHex(std::string_view text) { return parseHexOf(text); }
std::uint64_t parseHex(std::u16string_view text) { return parseHexOf(text); }

char* formatFixed(char* out, double value) {
  if (!std::isfinite(value)) value = 0;
  if (std::signbit(value)) *out++ = '-';
  return putFixed(out, std::fabs(value));
}

char* formatShortest(char* out, double value) {
  if (value == 0 || !std::isfinite(value)) return putText(out, "0.0");
  if (value < 0) *out++ = '-';
  const double magnitude = std::fabs(value);
  if (char* end = putFewDecimals(out, magnitude)) return end;
  return putShortest(out, magnitude);
}

char* formatInteger(char* out, std::int64_t value) {
  if (value < 0) *out++ = '-';
  const auto bits = static_cast<std::uint64_t>(value);
  return putWhole(out, value < 0 ? 0 - bits : bits);
}

char* formatHex(char* out, std::uint64_t value) {
  char* const end = std::to_chars(out, out + kIntegerRoom, value, 16).ptr;
  std::for_each(out, end, [](char& c) { c = c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return end;
}

}  // namespace vek0::detail
