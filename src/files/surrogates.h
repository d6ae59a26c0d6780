#pragma once

#include "zim0lang/wstring.h"

namespace vek0::detail {

constexpr bool isHighSurrogate(zim::Char unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(zim::Char unit) { return (unit & 0xFC00) == 0xDC00; }

}  // namespace vek0::detail
