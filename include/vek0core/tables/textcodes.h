#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

namespace vek0 {

/// Where a line runs relative to the text.
enum class TextRule { Under, Over, Through };

/// A range of a text with a line under, over or through it: characters from `first` up to `end`.
struct RuledStretch {
  std::size_t first, end;
  TextRule rule;
};

/// A text as displayed, without its codes.
struct DecodedText {
  zim::WString string;
  std::vector<RuledStretch> ruled;
};

/// Whether the text may contain codes.
VEK0_API bool hasTextCodes(const zim::WString& text);

/// Replaces %%d by the degree sign, %%p by plus-minus, %%c by the diameter sign, %%nnn by the
/// character of that number (by nothing below 32) and %%% by %, and removes %%u, %%o and %%k,
/// which toggle lines under, over and through the text. Throws `std::bad_alloc`.
VEK0_API DecodedText decodeTextCodes(const zim::WString& text);

}  // namespace vek0
