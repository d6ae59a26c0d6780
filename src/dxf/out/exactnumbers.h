#pragma once

namespace vek0::detail {

/// The degrees in the classic form: the plain conversion of the angle. From a million on, the value
/// that readers convert back to the same angle, since there the error of their factor shows within
/// six decimals.
double classicDegrees(double angleRad);

/// The value that a reader gets for a number written with six decimals; 0 if it is not finite.
double sixDecimals(double value);

/// The degrees that a reader converts to exactly `angleRad`, with at most ten decimals if possible.
/// Readers multiply by a factor that is off by 2e-13, so dividing by the true one would shift every
/// angle each time a drawing is saved and read. Some angles cannot be reached from any number of
/// degrees; the result is then the nearest, and is stable from the next reading on.
double exactDegrees(double angleRad);

/// The angle that readers compute from this many degrees.
double readRadians(double degrees);

/// `value` rounded to 14 significant digits of `magnitude` (> 0; `value` itself if not). Numbers
/// that went through a placement and back differ in the last bits; this makes them identical each
/// time they are saved.
double steady(double value, double magnitude);
inline double steady(double value) { return steady(value, value < 0 ? -value : value); }

/// The same for an angle in radians: its degrees are rounded to ten decimals and kept
/// below a full turn.
double steadyAngle(double angleRad);

}  // namespace vek0::detail
