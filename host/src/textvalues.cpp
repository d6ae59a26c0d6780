#include "vek0host/textvalues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace vek0::host {

namespace {

// Accepts only decimal numbers. Uses the C library, because not every `std::from_chars` supports
// doubles.
std::optional<double> numberIn(const std::string& text) {
  if (text.find_first_not_of("0123456789.eE+-") != std::string::npos) return std::nullopt;
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace

std::optional<std::vector<double>> numbersIn(std::string_view text, char separator) {
  std::vector<double> numbers;
  while (true) {
    const std::size_t length = std::min(text.find(separator), text.size());
    const std::optional<double> number = numberIn(std::string(text.substr(0, length)));
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    if (length == text.size()) return numbers;
    text.remove_prefix(length + 1);
  }
}

bool parseNumbers(std::string_view text, char separator, double* values, std::size_t count) {
  const auto numbers = numbersIn(text, separator);
  if (!numbers || numbers->size() != count) return false;
  std::copy(numbers->begin(), numbers->end(), values);
  return true;
}

std::string lowered(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

std::optional<std::vector<std::string>> splitUnquoted(std::string_view text, char at) {
  std::vector<std::string> parts(1);
  bool isQuoted = false;
  for (const char c : text) {
    if (c == '"') isQuoted = !isQuoted;
    if (c == at && !isQuoted)
      parts.emplace_back();
    else
      parts.back() += c;
  }
  if (isQuoted) return std::nullopt;
  return parts;
}

std::string unquoted(std::string_view text) {
  std::string result;
  bool isQuoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '"') {
      result += text[i];
    } else if (isQuoted && i + 1 < text.size() && text[i + 1] == '"') {
      result += text[++i];
    } else {
      isQuoted = !isQuoted;
    }
  }
  return result;
}

std::string colorText(const RGB_COLOR& color) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "#";
  for (const std::uint8_t part : {color.r, color.g, color.b}) {
    text += kDigits[part >> 4];
    text += kDigits[part & 15];
  }
  return text;
}

std::string shortestText(double value) {
  char digits[32];
  const double unsignedZero = value + 0.0;
#if !defined(_LIBCPP_VERSION) || _LIBCPP_VERSION >= 14000
  return {digits, std::to_chars(digits, digits + sizeof digits, unsignedZero).ptr};
#else
  constexpr int most = std::numeric_limits<double>::max_digits10;
  int length = 0;
  for (int precision = 1; precision <= most; ++precision) {
    length = std::snprintf(digits, sizeof digits, "%.*g", precision, unsignedZero);
    if (std::strtod(digits, nullptr) == unsignedZero) break;
  }
  return {digits, static_cast<std::size_t>(length)};
#endif
}

std::string roundedText(double value) {
  constexpr int precision = 6;
  char digits[32];
#if !defined(_LIBCPP_VERSION) || _LIBCPP_VERSION >= 14000
  const auto format = std::chars_format::general;
  return {digits, std::to_chars(digits, digits + sizeof digits, value, format, precision).ptr};
#else
  const int length = std::snprintf(digits, sizeof digits, "%.*g", precision, value);
  return {digits, static_cast<std::size_t>(length)};
#endif
}

std::string hexText(vek0::Handle handle) {
  char digits[24];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, static_cast<std::uint64_t>(handle), 16).ptr;
  std::string text(digits, end);
  for (char& c : text) {
    if (c >= 'a') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

}  // namespace vek0::host
