#pragma once

#include <string>
#include <string_view>

#include "zim0lang/wstring.h"

namespace vek0::tool {

/// A name, path or other text of a file, as one line of a terminal shows it: what would move the
/// cursor, change the text's direction or begin a line is escaped ("\n", "\x1b", "\u202e"), and so
/// are bytes that are no UTF-8.
std::string visible(std::string_view utf8);
std::string visible(const zim::WString& text);

/// Prints text on the standard output. Line feeds are kept; should it hold any other control
/// character, that is escaped.
void print(std::string_view text);

/// Likewise on the error stream.
void printError(std::string_view text);

/// Whether everything that was printed on the standard output has arrived there.
bool flushOutput();

}  // namespace vek0::tool
