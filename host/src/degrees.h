#pragma once

#include <cmath>

#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/pnt.h"

namespace vek0::host {

/// The angle in degrees, without the rounding errors of the conversion: with nine decimals.
inline double degreesOf(double angleRad) {
  return std::round(angleRad / kRadiansPerDegree * 1e9) / 1e9;
}

/// The unit vector in that direction, counterclockwise from the x axis; exact for multiples of 90.
inline PNT_2D directionOf(double degrees) {
  const double rest = std::fmod(degrees, 360.0), quarters = rest / 90;
  if (quarters != std::floor(quarters))
    return PNT_2D(std::cos(rest * detail::kPi / 180), std::sin(rest * detail::kPi / 180));
  constexpr double kCosines[] = {1, 0, -1, 0};
  const int quarter = (static_cast<int>(quarters) + 4) % 4;
  return PNT_2D(kCosines[quarter], kCosines[(quarter + 3) % 4]);
}

}  // namespace vek0::host
