#pragma once

#include <string_view>

namespace vek0::tool {

/// Prints text on the standard output. Line feeds are kept; any other control character is escaped.
void print(std::string_view text);

/// Likewise on the error stream.
void printError(std::string_view text);

/// Flushes the standard output; returns whether everything was written.
bool flushOutput();

}  // namespace vek0::tool
