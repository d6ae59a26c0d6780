#pragma once

#include <string>

#include "dxf/in/convert/dimstyles.h"

namespace vek0::detail {

/// Formats a length in drawing units according to a style: factor, rounding, decimals, zeros,
/// decimal separator and surrounding text. `sign` is prefixed unless that text has its own. If the
/// style does not state decimals, there are four, without trailing zeros.
std::u16string lengthText(const DimStyle& style, double length, std::u16string_view sign);

/// Formats an angle according to a style, in degrees, gradians or radians.
std::u16string angleText(const DimStyle& style, double angleRad);

}  // namespace vek0::detail
