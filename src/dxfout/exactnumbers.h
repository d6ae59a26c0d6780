#pragma once

namespace vek0::detail {

/// The degrees of the classic form: what anyone would make of the angle. From a million on it
/// is what readers make the same angle of, since there their factor shows within six decimals.
double classicDegrees(double angleRad);

/// What a reader gets of a number that is written with six decimals; 0 if it is not finite.
double sixDecimals(double value);

/// The degrees that a reader turns into exactly `angleRad`, a number of at most ten
/// decimals if there is one. Readers multiply by a factor that is off by
/// 2e-13, so dividing by the true one would move every angle each time a drawing is
/// saved and read. Some angles come out of no number of degrees; the result is
/// nearest then, and stays what it is from the next reading on.
double exactDegrees(double angleRad);

/// What readers make of this many degrees.
double readRadians(double degrees);

/// `value` rounded to 14 significant digits of `magnitude` (> 0; `value` itself if
/// not). What went through a placement and back differs in the last bits; this is
/// how such a number comes out the same each time it is saved.
double steady(double value, double magnitude);
inline double steady(double value) { return steady(value, value < 0 ? -value : value); }

/// The same for an angle in radians: its degrees are rounded to ten decimals and kept
/// below a full turn.
double steadyAngle(double angleRad);

}  // namespace vek0::detail
