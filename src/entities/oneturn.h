#pragma once

#include <numbers>

namespace vek0::detail {

/// An angle brought nearer to [0, turn) by one turn at most: a rotation far outside was
/// stored by somebody who meant it. What is just below 0 becomes the full turn by
/// rounding, and then 0.
inline double oneTurn(double angle, double turn = 2 * std::numbers::pi) {
  if (angle < 0) angle += turn;
  return angle >= turn ? angle - turn : angle;
}

}  // namespace vek0::detail
