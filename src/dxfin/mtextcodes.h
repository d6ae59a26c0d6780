#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "dxfin/letterwidths.h"

namespace vek0::detail {

/// How letters of a formatted text look.
struct MTextFormat {
  /// What becomes of letters that are lower than their line.
  enum Align { Bottom, Middle, Top };

  double height = 1;      ///< of capitals, drawing units
  double widthScale = 1;  ///< factor
  double oblique = 0;     ///< radians
  short color = 256;      ///< number, as in entities
  LetterForm form = LetterForm::Stroke;
  Align align = Bottom;
  bool under = false, over = false, struck = false;  ///< lines along the letters

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

/// A piece of a formatted text.
struct MTextPiece {
  enum Kind { Word, Blank, Tab, LineBreak, ColumnBreak, Stack };

  Kind kind = Word;
  bool joins = false;         ///< no line may end before it
  bool ruled = false;         ///< of a stack: a line parts above and below
  std::size_t format = 0;     ///< index into `MTextContent::formats`
  std::size_t paragraph = 0;  ///< likewise into `paragraphs`
  std::u16string text;        ///< of a word; of a stack what stands above
  std::u16string below;       ///< of a stack

  bool isWord() const { return kind == Word || kind == Stack; }
};

/// A formatted text exploded.
struct MTextContent {
  std::vector<MTextFormat> formats;
  std::vector<MTextParagraph> paragraphs;
  std::vector<MTextPiece> pieces;
  std::vector<std::u16string> dropped;  ///< codes that nothing here can show, each once
  long approximatedColors = 0;          ///< true colors that became the nearest number
};

/// Takes a text with its codes apart: `\P` line, `\N` column, `\~` blank that holds, braces
/// around what a code is limited to, `\H` height, `\W` width, `\Q` slant, `\C` color, `\A`
/// alignment, `\L` `\O` `\K` lines along the letters, `\S` stacks, `\p` paragraphs, `^I`
/// and its like, `\U+XXXX`. `text` is as it stands in the file but for its code page;
/// `base` is how it looks before any code. What is no code stays as it stands.
///
/// Cost is linear; a piece takes at least one unit of the text.
MTextContent decodeMText(std::u16string_view text, const MTextFormat& base);

/// How long a text is: `%%d` and its like are one letter, `%%u` and its like none.
double measure(std::u16string_view text, const MTextFormat& format);

}  // namespace vek0::detail
