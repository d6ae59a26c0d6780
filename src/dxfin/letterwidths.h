#pragma once

#include <string_view>

namespace vek0::detail {

/// What letters look like, as far as their widths go.
enum class LetterForm {
  Stroke,     ///< as plotters wrote: simplex, txt
  Lettering,  ///< by ISO 3098, which is narrower
  Sans,       ///< any font of outlines that is none of the others
  Narrow,
  Mono
};

/// The form of a font by the name of its file or family: text is laid out by built-in widths, so
/// that a file gives the same drawing whatever fonts a machine has.
LetterForm letterFormOf(std::u16string_view font);

/// How far a letter takes the line, in heights of capitals. The widths of stroke fonts are
/// those of the Hershey simplex set, those of others of a usual grotesque; letters beyond
/// ASCII have the mean width of their kind, ideographs a square, marks that combine none.
double letterWidth(char16_t letter, LetterForm form);

/// How wide letters of the form may prove to be at least, as a share of `letterWidth`: names
/// of stroke fonts stand for many, and programs without them take narrower ones.
double leastShare(LetterForm form);

}  // namespace vek0::detail
