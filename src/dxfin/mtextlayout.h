#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "dxfin/mtextcodes.h"

class CStyle;

namespace vek0::detail {

/// Where a formatted text stands around its insertion point. Lengths are drawing units.
struct MTextBox {
  double height = 1;    ///< of the text: the unit of margins and tabs
  double width = 0;     ///< at which lines are broken; 0: only where the text says
  long attachment = 1;  ///< the point's place in the box, row by row: 1 top left, 9 bottom right
  double spacing = 1;   ///< of lines, in 5/3 of their height
  bool exactSpacing = false;          ///< in 5/3 of the text's height
  std::size_t columns = 1;            ///< of `width` each, filled from the left
  double gutter = 0;                  ///< between columns
  std::vector<double> columnHeights;  ///< 0, and what is missing: no end but by a code
};

/// Letters of one look in one line.
struct MTextRun {
  double x, y;         ///< begin of the baseline, from the insertion point
  std::size_t format;  ///< index into `MTextContent::formats`
  std::u16string text;
};

/// How long a string is in `style`, which may be null.
double measure(const std::u16string& text, const MTextFormat& format, CStyle* style);

/// Breaks the text into lines and places its runs, which come line by line, at most
/// `most` of them. A word that is wider than the box stays whole. Cost is linear in the
/// pieces.
std::vector<MTextRun> layoutMText(const MTextContent& content, const MTextBox& box, CStyle* style,
                                  std::size_t most);

}  // namespace vek0::detail
