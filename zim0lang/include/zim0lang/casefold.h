#pragma once

#include <cstddef>
#include <string_view>

#include "zim0lang/export.h"

namespace zim {

/// One unit of text: a UTF-16 code unit. The same size as the 16-bit units of
/// files and interfaces, and a type that has literals (`u"LINE"`).
using Char = char16_t;

/// The unit without its letter case, by the simple foldings of the Unicode character
/// database that stay in the Basic Multilingual Plane. That is the small letter but for
/// Cherokee, where it is the capital; the signs of ohm, kelvin and angstrom are letters, a
/// final sigma is a sigma. Units without a one-to-one partner, surrogates included, fold to
/// themselves, and so do the dotted capital and the dotless small i, whose partner depends on
/// the language. Never depends on the locale, so names match alike on every machine.
ZIM0LANG_API Char foldCase(Char unit);

/// Whether both texts are the same after `foldCase` of every unit.
ZIM0LANG_API bool equalsIgnoreCase(std::u16string_view a, std::u16string_view b);

/// Order of the folded units: negative, zero or positive as a is before, equal to
/// or after b; a proper prefix comes first.
ZIM0LANG_API int compareIgnoreCase(std::u16string_view a, std::u16string_view b);

/// Hash of the folded units (FNV-1a): equal for texts that `equalsIgnoreCase`.
ZIM0LANG_API std::size_t hashIgnoreCase(std::u16string_view text);

}  // namespace zim
