#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dxf/in/convert/letterwidths.h"
#include "vek0core/tables/enttraits.h"

namespace vek0::detail {

/// Character format within a formatted text.
struct MTextFormat {
  /// Vertical alignment of characters smaller than their line.
  enum Align { Bottom, Middle, Top };

  double height = 1;                                   ///< of capitals, drawing units
  double widthScale = 1;                               ///< factor
  double oblique = 0;                                  ///< radians
  short color = 256;                                   ///< number, as in entities
  std::uint32_t trueColor = ENT_TRAITS::kNoTrueColor;  ///< takes precedence
  LetterForm form = LetterForm::Stroke;
  Align align = Bottom;
  bool under = false, over = false, struck = false;  ///< underline, overline, strikethrough

  bool operator==(const MTextFormat& f) const = default;
};

/// Margins of a paragraph: multiples of the text's height.
struct MTextParagraph {
  double indent = 0;         ///< of the first line, beyond `left`
  double left = 0;           ///< of the other lines
  double right = 0;          ///< from the right edge
  char16_t align = 0;        ///< 'l', 'c', 'r', 'j' or 'd'; 0: as the whole text
  std::vector<double> tabs;  ///< ascending; empty: the usual ones
};

/// A fragment of a formatted text.
struct MTextPiece {
  enum Kind { Word, Blank, Tab, LineBreak, ColumnBreak, Stack };

  Kind kind = Word;
  bool joins = false;         ///< no line break is allowed before it
  bool ruled = false;         ///< of a stack: with a line between the rows
  std::size_t format = 0;     ///< index into `MTextContent::formats`
  std::size_t paragraph = 0;  ///< index into `MTextContent::paragraphs`
  std::u16string text;        ///< of a word; the upper row of a stack
  std::u16string below;       ///< of a stack

  bool isWord() const { return kind == Word || kind == Stack; }
};

/// A parsed formatted text.
struct MTextContent {
  std::vector<MTextFormat> formats;
  std::vector<MTextParagraph> paragraphs;
  std::vector<MTextPiece> pieces;
  std::vector<std::u16string> dropped;  ///< unsupported codes, each once
};

/// Parses a text with its codes: `\P` line break, `\N` column break, `\~` non-breaking space,
/// braces for the scope of codes, `\H` height, `\W` width, `\Q` slant, `\C` color, `\A` alignment,
/// `\L` `\O` `\K` underline, overline and strikethrough, `\S` stacks, `\p` paragraphs, `^I` and the
/// like, `\U+XXXX`. `text` is unmodified except for its code page; `base` is the initial format.
/// Anything that is not a code is kept.
///
/// Linear; a piece takes at least one unit of the text.
MTextContent decodeMText(std::u16string_view text, const MTextFormat& base);

/// Length of a text: `%%d` and the like count as one character, `%%u` and the like as none.
double measure(std::u16string_view text, const MTextFormat& format);

}  // namespace vek0::detail
