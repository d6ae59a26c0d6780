#pragma once

#include <string_view>

namespace vek0::detail {

/// Classes of fonts by glyph width.
enum class LetterForm {
  Stroke,     ///< as plotters wrote: simplex, txt
  Lettering,  ///< by ISO 3098, which is narrower
  Sans,       ///< any other outline font
  Narrow,
  Mono
};

/// Determines the form of a font from the name of its file or family: text is laid out with
/// built-in widths, so that a file yields the same drawing whatever fonts are installed.
LetterForm letterFormOf(std::u16string_view font);

/// Advance width of a character, in capital heights. Widths of stroke fonts are those of the
/// Hershey simplex set, those of others of a typical grotesque; characters beyond ASCII have the
/// mean width of their class, ideographs are square, and combining marks have no width.
double letterWidth(char16_t letter, LetterForm form);

/// Minimum actual width of characters of the form, as a fraction of `letterWidth`: a stroke font
/// name covers many fonts, and programs without them substitute narrower ones.
double leastShare(LetterForm form);

}  // namespace vek0::detail
