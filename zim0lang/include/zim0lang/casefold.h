#pragma once

#include <cstddef>
#include <string_view>

#include "zim0lang/export.h"

namespace zim {

/// One unit of text: a UTF-16 code unit. The same size as the 16-bit units of
/// files and interfaces, and a type that has literals (`u"LINE"`).
using Char = char16_t;

/// The unit in lower case, by simple one-to-one folding of the Basic
/// Multilingual Plane: Latin (with Latin-1, Extended-A and Extended Additional),
/// Greek, Cyrillic, Armenian and full-width letters. Units without a one-to-one
/// partner, surrogates included, fold to themselves. Never depends on the locale,
/// so names match alike on every machine.
ZIM0LANG_API Char foldCase(Char unit);

/// Whether both texts are the same after `foldCase` of every unit.
ZIM0LANG_API bool equalsIgnoreCase(std::u16string_view a, std::u16string_view b);

/// Order of the folded units: negative, zero or positive as a is before, equal to
/// or after b; a proper prefix comes first.
ZIM0LANG_API int compareIgnoreCase(std::u16string_view a, std::u16string_view b);

/// Hash of the folded units (FNV-1a): equal for texts that `equalsIgnoreCase`.
ZIM0LANG_API std::size_t hashIgnoreCase(std::u16string_view text);

}  // namespace zim
