#pragma once

#include <string>
#include <string_view>

#include "zim0lang/wstring.h"

namespace vek0::host {

/// A name, path or other text from a file, made safe for one line of a terminal: characters that
/// would move the cursor, change the text direction or begin a line are escaped ("\n",
/// "\x1b", "\u202e"), and so are invalid UTF-8 bytes.
std::string visible(std::string_view utf8);
std::string visible(const zim::WString& text);

/// The same for a text of several lines: line feeds are kept.
std::string visibleLines(std::string_view utf8);

}  // namespace vek0::host
