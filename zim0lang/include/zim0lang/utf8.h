#pragma once

#include <string>
#include <string_view>

#include "zim0lang/casefold.h"
#include "zim0lang/export.h"

namespace zim {

/// Replaces every malformed sequence.
inline constexpr char32_t kReplacement = 0xFFFD;

/// Appends one code point as one or two UTF-16 units.
ZIM0LANG_API void appendUtf16(std::u16string& out, char32_t codePoint);

/// Appends one code point as one to four UTF-8 bytes.
ZIM0LANG_API void appendUtf8(std::string& out, char32_t codePoint);

/// Removes one code point from the front of non-empty UTF-8 text and returns it. Overlong forms,
/// surrogates, values above U+10FFFF and truncated sequences yield U+FFFD, consume one byte and set
/// `valid` to false; otherwise `valid` is unchanged.
ZIM0LANG_API char32_t takeUtf8(std::string_view& text, bool& valid);

/// Removes one code point from the front of non-empty UTF-16 text and returns it; an unpaired
/// surrogate yields U+FFFD.
ZIM0LANG_API char32_t takeUtf16(std::u16string_view& text);

/// Whether the text is well-formed UTF-8 throughout.
ZIM0LANG_API bool isValidUtf8(std::string_view text);

}  // namespace zim
