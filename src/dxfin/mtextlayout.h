#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "dxfin/mtextcodes.h"

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
  /// What the lines together measure by the record, 0 where it does not say. Of a text in one
  /// column it tells how the lines were broken and how wide the letters are.
  double shownWidth = 0, shownHeight = 0;
};

/// Letters of one look in one line.
struct MTextRun {
  double x, y;         ///< of the baseline, from the insertion point
  long across;         ///< which point of it: 0 where it begins, 1 its middle, 2 its end
  std::size_t format;  ///< index into `MTextContent::formats`
  std::u16string text;
};

/// Breaks the text into lines and places its runs, which come line by line, at most
/// `most` of them. Widths are those of `letterWidth`: a line that is a few percent too long is not
/// broken, nor one that alone stands between two breaks of the text and may fit. A word that is
/// wider than the box stays whole. Cost is linear in the pieces.
std::vector<MTextRun> layoutMText(const MTextContent& content, const MTextBox& box,
                                  std::size_t most);

}  // namespace vek0::detail
