#pragma once

#include <string>
#include <string_view>

#include "zim0lang/wstring.h"

namespace vek0::tool {

/// A name, path or other text from a file, made safe for one line of a terminal: characters that
/// would move the cursor, change the text direction or begin a line are escaped ("
/// ", "\x1b", "\u202e"), and so are invalid UTF-8 bytes.
std::string visible(std::string_view utf8);
std::string visible(const zim::WString& text);

/// Prints text on the standard output. Line feeds are kept; any other control character is escaped.
void print(std::string_view text);

/// Likewise on the error stream.
void printError(std::string_view text);

/// Flushes the standard output; returns whether everything was written.
bool flushOutput();

}  // namespace vek0::tool
