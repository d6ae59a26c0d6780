#include "dxf/out/exactnumbers.h"

#include <cmath>
#include <string_view>

#include "files/number.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

// Ten decimals suffice for what people and programs write; a double near 360 has thirteen.
constexpr double kDecimals = 1e10;

// A placement and its inverse are off by some units in the sixteenth digit.
constexpr int kSteadyDigits = 14;

double roundDecimals(double degrees) { return std::round(degrees * kDecimals) / kDecimals; }

// A number of degrees that reads back as exactly `angleRad`, or the quotient if there is none.
double nearestDegrees(double angleRad) {
  const double quotient = angleRad / kRadiansPerDegree;
  const double candidates[] = {roundDecimals(quotient), quotient,
                               std::nextafter(quotient, -HUGE_VAL),
                               std::nextafter(quotient, HUGE_VAL)};
  for (const double degrees : candidates) {
    if (readRadians(degrees) == angleRad) return degrees;
  }
  return quotient;
}

}  // namespace

double classicDegrees(double angleRad) {
  constexpr double huge = 1e6;
  const double degrees = angleRad * 57.29577951308233;
  return std::fabs(degrees) < huge ? degrees : exactDegrees(angleRad);
}

double sixDecimals(double value) {
  char text[kFixedRoom];
  const char* end = formatFixed(text, value);
  return parseDouble(std::string_view(text, static_cast<std::size_t>(end - text))).value;
}

double readRadians(double degrees) { return degrees * kRadiansPerDegree; }

double exactDegrees(double angleRad) {
  const double degrees = nearestDegrees(angleRad);
  const double readBack = readRadians(degrees);
  return readBack == angleRad ? degrees : nearestDegrees(readBack);
}

double steady(double value, double magnitude) {
  // Powers of ten beyond 22 are inexact, but no drawing has such sizes.
  const double digits = kSteadyDigits - 1 - std::floor(std::log10(magnitude));
  if (!(std::fabs(digits) <= 22)) return value;
  double scale = 1;
  for (int i = 0; i < std::fabs(digits); ++i) scale *= 10;
  return digits < 0 ? std::round(value / scale) * scale : std::round(value * scale) / scale;
}

double steadyAngle(double angleRad) {
  const double degrees = roundDecimals(angleRad / kRadiansPerDegree);
  return readRadians(degrees == 360 ? 0 : degrees);
}

}  // namespace vek0::detail
