#pragma once

#include <cmath>

#include "vek0core/geometry/angle.h"

namespace vek0::host {

/// The angle in degrees, without the rounding errors of the conversion: with nine decimals.
inline double degreesOf(double angleRad) {
  return std::round(angleRad / kRadiansPerDegree * 1e9) / 1e9;
}

}  // namespace vek0::host
