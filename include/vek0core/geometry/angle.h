#pragma once

#include <numbers>

/// Radians per degree, truncated to fourteen decimals. The angles of the hatch catalogue are
/// degrees times this constant, and angles in drawings are read with it.
///
/// To recover the degrees, divide by the same constant. A full turn falls short of 2*pi by 1.2e-12.
inline constexpr double kRadiansPerDegree = 0.01745329251994;

namespace vek0::detail {

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kTwoPi = 2 * kPi;

}  // namespace vek0::detail
