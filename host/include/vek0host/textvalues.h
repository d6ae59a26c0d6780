#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/tables/handle.h"
#include "vek0core/tables/palette.h"

namespace vek0::host {

/// Parses finite numbers such as "1,2.5,-3e2"; nothing on any other text. The decimal separator is
/// a point whatever the locale.
std::optional<std::vector<double>> numbersIn(std::string_view text, char separator = ',');

/// Whether the text is `count` such numbers, which are then in `values`.
bool parseNumbers(std::string_view text, char separator, double* values, std::size_t count);

/// The text with A to Z converted to lowercase.
std::string lowered(std::string text);

/// Splits a text at a character, but not inside "double quotes", which are kept; nothing if one is
/// not closed. Returns at least one part.
std::optional<std::vector<std::string>> splitUnquoted(std::string_view text, char at);

/// The text without its quotes; a doubled quote inside them is a quote.
std::string unquoted(std::string_view text);

/// "#rrggbb".
std::string colorText(const RGB_COLOR& color);

/// The fewest digits that are read as exactly this finite number.
std::string shortestText(double value);

/// Rounded to six significant digits, for messages.
std::string roundedText(double value);

/// In uppercase hexadecimal digits.
std::string hexText(vek0::Handle handle);

}  // namespace vek0::host
