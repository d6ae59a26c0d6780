#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vek0::tool {

/// The finite numbers of "1,2.5,-3e2"; nothing when anything else is there. The point is the
/// decimal one whatever the locale.
std::optional<std::vector<double>> numbersIn(std::string_view text, char separator = ',');

/// Whether the text is `count` such numbers, which are then in `values`.
bool parseNumbers(std::string_view text, char separator, double* values, std::size_t count);

/// The text with the letters A to Z in lower case.
std::string lowered(std::string text);

/// Cuts a text at a character, but not inside "double quotes", which stay where they are;
/// nothing when one is not closed. One part at least.
std::optional<std::vector<std::string>> splitUnquoted(std::string_view text, char at);

/// The text without its quotes; a doubled quote inside them is a quote.
std::string unquoted(std::string_view text);

}  // namespace vek0::tool
