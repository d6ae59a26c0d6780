#pragma once

#include "vek0core/geometry/angle.h"

namespace vek0::detail {

/// Moves an angle toward [0, turn) by at most one turn: a rotation far outside was stored
/// intentionally. A value just below 0 rounds to the full turn, and then becomes 0.
inline double oneTurn(double angle, double turn = kTwoPi) {
  if (angle < 0) angle += turn;
  return angle >= turn ? angle - turn : angle;
}

}  // namespace vek0::detail
