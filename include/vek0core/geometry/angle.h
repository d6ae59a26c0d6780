#pragma once

/// Radians in a degree, cut off after fourteen decimals: the angles of the hatch catalogue
/// are degrees times this, and the angles of drawings are read with it.
///
/// Whoever wants the degrees back divides by the same constant. A full turn falls short of
/// two pi by 1.2e-12.
inline constexpr double kRadiansPerDegree = 0.01745329251994;

namespace vek0::detail {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kTwoPi = 2 * kPi;

}  // namespace vek0::detail
