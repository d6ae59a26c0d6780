#pragma once

#include <cstddef>
#include <string_view>

#include "zim0lang/export.h"

namespace zim {

/// One unit of text: a UTF-16 code unit. The same size as the 16-bit units of files and interfaces,
/// and a type with literals (`u"LINE"`).
using Char = char16_t;

/// Folds the case of a unit, using the simple foldings of the Unicode character database within the
/// Basic Multilingual Plane. The result is the lowercase letter, except for Cherokee, where it is
/// the uppercase one; the ohm, kelvin and angstrom signs fold to letters, and final sigma folds to
/// sigma. Units without a one-to-one partner, surrogates included, fold to themselves, and so do
/// the dotted capital I and the dotless small i, whose partners depend on the language. Independent
/// of the locale, so names match alike on every machine.
ZIM0LANG_API Char foldCase(Char unit);

/// Whether both texts are equal after applying `foldCase` to every unit.
ZIM0LANG_API bool equalsIgnoreCase(std::u16string_view a, std::u16string_view b);

/// Compares the folded units: negative, zero or positive if a sorts before, equal to or after b; a
/// proper prefix sorts first.
ZIM0LANG_API int compareIgnoreCase(std::u16string_view a, std::u16string_view b);

/// Hash of the folded units (FNV-1a): equal for texts that compare equal with `equalsIgnoreCase`.
ZIM0LANG_API std::size_t hashIgnoreCase(std::u16string_view text);

}  // namespace zim
