#pragma once

#include <numbers>

namespace vek0::detail {

/// Radians brought nearer to [0, 2*pi) by one turn at most: a rotation far outside was
/// stored by somebody who meant it. What is just below 0 becomes the full turn by
/// rounding, and then 0.
inline double oneTurn(double angleRad) {
  constexpr double turn = 2 * std::numbers::pi;
  if (angleRad < 0) angleRad += turn;
  return angleRad >= turn ? angleRad - turn : angleRad;
}

}  // namespace vek0::detail
