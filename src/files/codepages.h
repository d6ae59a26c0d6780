#pragma once

#include <array>

#include "vek0core/export.h"

namespace vek0::detail {

/// The characters of the bytes 0x80 to 0xFF.
using UpperHalf = std::array<char16_t, 128>;

/// The upper half of a code page of one byte a character; null for other pages and
/// for those that are not known.
VEK0_API const UpperHalf* upperHalfOf(int page);

/// The usual label of a code page, as "windows-1252"; null when it is not known.
VEK0_API const char* labelOf(int page);

}  // namespace vek0::detail
