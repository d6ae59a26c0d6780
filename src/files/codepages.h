#pragma once

#include <array>

#include "vek0core/export.h"

namespace vek0::detail {

/// The characters of the bytes 0x80 to 0xFF.
using UpperHalf = std::array<char16_t, 128>;

/// The upper half of a single-byte code page; null for multi-byte and unknown pages.
VEK0_API const UpperHalf* upperHalfOf(int page);

/// The usual label of a code page, such as "windows-1252"; null if it is unknown.
VEK0_API const char* labelOf(int page);

}  // namespace vek0::detail
