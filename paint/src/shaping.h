#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include "face.h"

namespace vek0::paint {

/// Whether every character has a glyph that depends on no other, from left to right. Such strings
/// need no shaping: Latin, Greek and Cyrillic without combining marks, East Asian characters.
/// Costs little more than reading the string.
bool isSimple(std::u16string_view text);

/// Whether a line is written from right to left: its first character with a direction is.
bool isRightToLeft(std::u16string_view text);

/// A glyph of a shaped line, from left to right as displayed.
struct SHAPED_GLYPH {
  Face* face = nullptr;
  FT_UInt index = 0;
  double dx = 0, dy = 0;           ///< from the pen to its origin, in units of the face
  double advance = 0;              ///< of the pen, likewise
  std::size_t first = 0, end = 0;  ///< the characters that it shows; none if another glyph does
  bool isRightToLeft = false;
};

/// Finds a face that has a character; null if there is none.
using FaceFinder = std::function<Face*(char32_t)>;

/// Orders a line for display, and shapes each part of it that has one direction, script and face.
/// Control characters count as blanks. Characters that `primary` lacks come from another face.
/// Costs time proportional to the length.
std::vector<SHAPED_GLYPH> shapeLine(std::u16string_view text, Face& primary,
                                    const FaceFinder& findFace);

}  // namespace vek0::paint
