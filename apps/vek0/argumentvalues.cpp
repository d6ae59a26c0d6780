#include "argumentvalues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace vek0::tool {

std::optional<std::vector<double>> numbersIn(std::string_view text, char separator) {
  std::vector<double> numbers;
  const char *at = text.data(), *end = at + text.size();
  while (true) {
    double value = 0;
    const auto [next, failure] = std::from_chars(at, end, value);
    if (failure != std::errc() || !std::isfinite(value)) return std::nullopt;
    numbers.push_back(value);
    if (next == end) return numbers;
    if (*next != separator) return std::nullopt;
    at = next + 1;
  }
}

bool parseNumbers(std::string_view text, char separator, double* values, std::size_t count) {
  const auto numbers = numbersIn(text, separator);
  if (!numbers || numbers->size() != count) return false;
  std::copy(numbers->begin(), numbers->end(), values);
  return true;
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

}  // namespace vek0::tool
