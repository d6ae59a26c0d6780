#pragma once

#include <cstddef>
#include <vector>

#include "zim0lang/wstring.h"

namespace vek0::detail {

/// A stretch of a text that has a line under or over it: characters from `first` up to
/// `end`.
struct RuledStretch {
  std::size_t first, end;
  bool over;
};

/// A text as it is seen.
struct DecodedText {
  zim::WString string;
  std::vector<RuledStretch> ruled;
};

/// Replaces %%d by the degree sign, %%p by plus-minus, %%c by the diameter sign, %%nnn by
/// the character of that number (by nothing below 32) and %%% by %, and takes %%u and %%o
/// out, which switch the lines under and over the text on and off.
DecodedText decodeTextCodes(const zim::WString& text);

}  // namespace vek0::detail
