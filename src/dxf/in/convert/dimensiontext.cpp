// The text of a measured value in the units of a style: decimal, feet and inches with fractions,
// angles in degrees or parts of them. Values are rounded once, to a whole number of the smallest
// parts shown, and formatted from that integer, so that no carry is lost.
#include "dxf/in/convert/dimensiontext.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <string>

#include "files/number.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr long kMostDecimals = 8;

struct Form {
  long decimals = 4;
  bool leading = true, trailing = true;  // whether zeros are written
  char16_t separator = u'.';
};

double powerOf(double base, long exponent) { return std::pow(base, static_cast<double>(exponent)); }

std::u16string integer(std::int64_t value) {
  const std::string digits = std::to_string(value);
  return {digits.begin(), digits.end()};
}

// The value in parts, with halves rounded up, as a reader of the number would; the last bits of a
// computed tie may be missing. -1 if out of range.
std::int64_t partsOf(double value, double partsOfOne) {
  constexpr double most = 9e15, noise = 1e-9;
  const double parts = std::fabs(value) * partsOfOne;
  return parts < most ? static_cast<std::int64_t>(std::floor(parts + 0.5 + noise)) : -1;
}

std::u16string shortest(double value) {
  char buffer[kShortestRoom];
  return {buffer, formatShortest(buffer, value)};
}

std::u16string decimalOfParts(std::int64_t parts, const Form& form) {
  std::u16string text = integer(parts);
  const auto decimals = static_cast<std::size_t>(form.decimals);
  if (decimals == 0) return text;
  // At least one digit before the separator.
  if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), u'0');
  text.insert(text.size() - decimals, 1, form.separator);
  if (!form.trailing) text.erase(text.find_last_not_of(u'0') + 1);
  if (text.back() == form.separator) text.pop_back();
  if (!form.leading && text.size() > 1 && text[0] == u'0') text.erase(0, 1);
  return text;
}

std::u16string decimal(double value, const Form& form) {
  const std::int64_t parts = partsOf(value, powerOf(10, form.decimals));
  if (parts < 0) return shortest(value);
  return (value < 0 && parts > 0 ? u"-" : u"") + decimalOfParts(parts, form);
}

std::u16string scientific(double value, const Form& form) {
  long exponent = value == 0 ? 0 : static_cast<long>(std::floor(std::log10(std::fabs(value))));
  std::int64_t parts = partsOf(value / powerOf(10, exponent), powerOf(10, form.decimals));
  // Rounding carried into another digit.
  if (static_cast<double>(parts) >= powerOf(10, form.decimals + 1)) {
    parts /= 10;
    ++exponent;
  }
  const std::u16string sign = exponent < 0 ? u"-" : u"+";
  const std::u16string power = integer(std::abs(exponent));
  return (value < 0 ? u"-" : u"") + decimalOfParts(parts, form) + u"E" + sign +
         (power.size() < 2 ? u"0" : u"") + power;
}

// "15 1/2"
std::u16string fraction(std::int64_t parts, std::int64_t partsOfOne) {
  const std::int64_t whole = parts / partsOfOne, rest = parts % partsOfOne;
  if (rest == 0) return integer(whole);
  // Reduced, as drawings show 1/2 instead of 8/16.
  const std::int64_t common = std::gcd(rest, partsOfOne);
  return (whole > 0 ? integer(whole) + u" " : u"") + integer(rest / common) + u"/" +
         integer(partsOfOne / common);
}

// In feet and inches of `partsOfInch` parts each; `zeroes` selects the zeros to write: 0 none, 1
// both, 2 feet, 3 inches.
template <class Inches>
std::u16string feetAndInches(std::int64_t parts, std::int64_t partsOfInch, long zeroes,
                             Inches inchesText) {
  const std::int64_t partsOfFoot = 12 * partsOfInch;
  const std::int64_t feet = parts / partsOfFoot, inches = parts % partsOfFoot;
  const bool hasFeet = feet > 0 || zeroes == 1 || zeroes == 2;
  // A value of zero is shown as inches, rather than as nothing.
  const bool hasInches = inches > 0 || zeroes == 1 || zeroes == 3 || !hasFeet;
  std::u16string text;
  if (hasFeet) text = integer(feet) + u"'";
  if (hasInches) text += (hasFeet ? u"-" : u"") + inchesText(inches) + u"\"";
  return text;
}

std::u16string lengthNumber(double value, long unit, long zeroes, const Form& form) {
  enum { Scientific = 1, Engineering = 3, Architectural, Fractional };
  constexpr long ofFeet = 3;
  // These units count binary fractions of an inch, so the decimals are a power of two.
  const bool isByHalves = unit == Architectural || unit == Fractional;
  const double partsOfOne = powerOf(isByHalves ? 2 : 10, form.decimals);
  const std::int64_t parts = partsOf(value, partsOfOne);
  const bool isInches = parts >= 0 && (unit == Engineering || isByHalves);
  if (unit == Scientific) return scientific(value, form);
  if (!isInches) return decimal(value, form);
  const auto whole = static_cast<std::int64_t>(partsOfOne);
  // A value that rounds to zero has no sign.
  const std::u16string sign = value < 0 && parts > 0 ? u"-" : u"";
  if (unit == Fractional) return sign + fraction(parts, whole);
  return sign + feetAndInches(parts, whole, zeroes & ofFeet, [&](std::int64_t inches) {
           return isByHalves ? fraction(inches, whole) : decimalOfParts(inches, form);
         });
}

// The decimals determine the smallest unit written: degrees, minutes, seconds or fractions of
// seconds.
std::u16string degreesAndMinutes(double degrees, const Form& form) {
  const long decimals = std::max(form.decimals - 4, 0L);
  const double partsOfSecond = powerOf(10, decimals);
  double partsOfDegree = 3600 * partsOfSecond;
  // 0 decimals show degrees, 1 and 2 minutes, 3 and 4 seconds, and more fractions of a second.
  if (form.decimals < 3) partsOfDegree = form.decimals == 0 ? 1 : 60;
  std::int64_t parts = partsOf(degrees, partsOfDegree);
  if (parts < 0) return shortest(degrees) + u"%%d";
  const auto whole = static_cast<std::int64_t>(partsOfDegree);
  std::u16string text = integer(parts / whole) + u"%%d";
  if (whole == 1) return text;
  parts %= whole;
  const std::int64_t partsOfMinute = whole / 60;
  text += integer(parts / partsOfMinute) + u"'";
  if (partsOfMinute == 1) return text;
  Form seconds = form;
  seconds.decimals = decimals;
  return text + decimalOfParts(parts % partsOfMinute, seconds) + u"\"";
}

long decimalsOf(const DimStyle& style, long code) {
  return std::clamp(style.integer(code), 0L, kMostDecimals);
}

char16_t separatorOf(const DimStyle& style) {
  const double letter = style.number(DimStyle::kSeparator);
  // Surrogates and control characters cannot separate anything.
  return letter > u' ' && letter < 0xD800 ? static_cast<char16_t>(letter) : u'.';
}

}  // namespace

std::u16string lengthText(const DimStyle& style, double length, std::u16string_view sign) {
  const double factor = style.number(DimStyle::kFactor), round = style.number(DimStyle::kRound);
  double value = length * (factor > 0 ? factor : 1);
  // The style's rounding step applies before the decimals.
  if (round > 0) value = std::floor(value / round + 0.5) * round;
  constexpr long noLeading = 4, noTrailing = 8;
  const long zeroes = style.integer(DimStyle::kZeroes);
  const bool isStated = style.has(DimStyle::kDecimals);
  const Form form{decimalsOf(style, DimStyle::kDecimals), (zeroes & noLeading) == 0,
                  isStated && (zeroes & noTrailing) == 0, separatorOf(style)};
  const std::u16string number = lengthNumber(value, style.integer(DimStyle::kUnit), zeroes, form);
  const std::u16string around(style.text(DimStyle::kPost).view());
  const std::size_t mark = around.find(u"<>");
  if (mark == std::u16string::npos) return std::u16string(sign) + number + around;
  // A prefix in the style replaces the sign of a radius or diameter.
  return (mark == 0 ? std::u16string(sign) : around.substr(0, mark)) + number +
         around.substr(mark + 2);
}

std::u16string angleText(const DimStyle& style, double angleRad) {
  constexpr long minutes = 1, gradians = 2, radians = 3;
  constexpr long noLeading = 1, noTrailing = 2;
  const long unit = style.integer(DimStyle::kAngleUnit);
  const long zeroes = style.integer(DimStyle::kAngleZeroes);
  const bool isOwn =
      style.has(DimStyle::kAngleDecimals) && style.number(DimStyle::kAngleDecimals) >= 0;
  const long code = isOwn ? DimStyle::kAngleDecimals : DimStyle::kDecimals;
  const Form form{decimalsOf(style, code), (zeroes & noLeading) == 0,
                  isOwn && (zeroes & noTrailing) == 0, separatorOf(style)};
  if (unit == radians) return decimal(angleRad, form) + u"r";
  if (unit == gradians) return decimal(angleRad / kPi * 200, form) + u"g";
  const double degrees = angleRad / kRadiansPerDegree;
  return unit == minutes ? degreesAndMinutes(degrees, form) : decimal(degrees, form) + u"%%d";
}

}  // namespace vek0::detail
