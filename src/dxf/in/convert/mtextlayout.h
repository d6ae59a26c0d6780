#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "dxf/in/convert/mtextcodes.h"

namespace vek0::detail {

/// Placement of a formatted text relative to its insertion point. Lengths are in drawing units.
struct MTextBox {
  double height = 1;    ///< of the text: the unit of margins and tabs
  double width = 0;     ///< at which lines are wrapped; 0: only at breaks in the text
  long attachment = 1;  ///< position of the point in the box, row by row: 1 top left, 9 bottom
                        ///< right
  double spacing = 1;   ///< of lines, in 5/3 of their height
  bool exactSpacing = false;          ///< in 5/3 of the text's height
  std::size_t columns = 1;            ///< of `width` each, filled from the left
  double gutter = 0;                  ///< between columns
  std::vector<double> columnHeights;  ///< 0 or missing: ended only by a code
  /// Extents of all lines according to the record, 0 if not stated. For text in one column they
  /// determine how lines were wrapped and how wide the characters are.
  double shownWidth = 0, shownHeight = 0;
};

/// Characters of one format in one line.
struct MTextRun {
  double x, y;         ///< of the baseline, from the insertion point
  long across;         ///< reference point: 0 its start, 1 its middle, 2 its end
  std::size_t format;  ///< index into `MTextContent::formats`
  std::u16string text;
};

/// Breaks the text into lines and places its runs, line by line, at most `most` of them. Widths are
/// those of `letterWidth`: a line a few percent too long is not wrapped, nor is the only line
/// between two explicit breaks if it may fit. A word wider than the box is not split. Linear in the
/// pieces.
std::vector<MTextRun> layoutMText(const MTextContent& content, const MTextBox& box,
                                  std::size_t most);

}  // namespace vek0::detail
