#pragma once

#include <cmath>

#include "vek0core/geometry/angle.h"

namespace vek0::detail {

/// Moves an angle toward [0, turn) by at most one turn: a rotation far outside was stored
/// intentionally. A value just below 0 rounds to the full turn, and then becomes 0.
inline double oneTurn(double angle, double turn = kTwoPi) {
  if (angle < 0) angle += turn;
  return angle >= turn ? angle - turn : angle;
}

/// Degrees without the noise of computing them. Nobody writes more than ten decimals of a degree;
/// sums are off by some last bits.
inline double withoutNoise(double degrees) {
  constexpr double decimals = 1e10, noise = 1e-12;
  const double nearest = std::round(degrees * decimals) / decimals;
  return std::fabs(nearest - degrees) < noise ? nearest : degrees;
}

}  // namespace vek0::detail
