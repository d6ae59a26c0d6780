#pragma once

#include <string>

#include "dxfin/dimstyles.h"

namespace vek0::detail {

/// A length in drawing units as a style writes it: factor, rounding, decimals, zeroes, decimal
/// sign and the text around. `sign` goes in front unless that text has something of its own.
/// Where the style does not state decimals there are four, without zeroes at the end.
std::u16string lengthText(const DimStyle& style, double length, std::u16string_view sign);

/// An angle likewise, in degrees, gradians or radians.
std::u16string angleText(const DimStyle& style, double angleRad);

}  // namespace vek0::detail
