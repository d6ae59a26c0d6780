#pragma once

#include <cstddef>
#include <vector>

#include "zim0lang/wstring.h"

namespace vek0::detail {

enum class TextRule { Under, Over, Through };

/// A range of a text with a line under, over or through it: characters from `first` up to `end`.
struct RuledStretch {
  std::size_t first, end;
  TextRule rule;
};

/// A text as displayed.
struct DecodedText {
  zim::WString string;
  std::vector<RuledStretch> ruled;
};

/// Replaces %%d by the degree sign, %%p by plus-minus, %%c by the diameter sign, %%nnn by the
/// character of that number (by nothing below 32) and %%% by %, and removes %%u, %%o and %%k,
/// which toggle lines under, over and through the text.
DecodedText decodeTextCodes(const zim::WString& text);

}  // namespace vek0::detail
