#include "dxf/keep/measuredmap.h"

#include <algorithm>

#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/finite.h"

namespace vek0::detail {
namespace {

constexpr double kDegree = kPi / 180;
// Difference from 1 below which a factor is 1.
constexpr double kUnitNoise = 1e-12;
constexpr double kUlp = 2.3e-16;
// Noise of cosines beside 0 and 1, relative to the largest coordinate: 2 ulp of 1.
constexpr double kCosineNoise = 4.5e-16;
// Noise of an angle in degrees, and of a factor relative to its size.
constexpr double kAngleNoise = 1e-12, kFactorNoise = 2e-15;

// The shortest decimal that differs from the value by no more than noise; the value if that is no
// shorter than noise is.
double withoutNoise(double value, double noise) {
  for (double steps = 1; noise * steps <= 0.1; steps *= 10) {
    const double near = std::round(value * steps) / steps;
    if (std::fabs(near - value) <= noise) return near;
  }
  return value;
}

double factorWithoutNoise(double factor, double noise) {
  if (std::fabs(factor - 1) <= std::max(kUnitNoise, noise)) return 1;
  return withoutNoise(factor, std::max(kFactorNoise, noise) * std::fabs(factor));
}

double degreesWithoutNoise(double angleRad, double noise) {
  return withoutNoise(angleRad / kDegree, std::max(kAngleNoise, noise / kDegree));
}

double cleanedCoordinate(double value, double size, double noise) {
  if (std::fabs(value) <= noise * size) return 0;
  for (const double unit : {1.0, -1.0})
    if (std::fabs(value - unit) <= noise) return unit;
  return value;
}

PNT_3D cleanedBy(const PNT_3D& v, double noise) {
  const double size = std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)});
  return PNT_3D(cleanedCoordinate(v.x, size, noise), cleanedCoordinate(v.y, size, noise),
                cleanedCoordinate(v.z, size, noise));
}

PNT_3D directionOf(double degrees) {
  const double angle = degrees * kDegree;
  return cleanedBy(PNT_3D(std::cos(angle), std::sin(angle), 0), kCosineNoise);
}

bool areEqual(double a, double b, double tolerance) {
  return std::fabs(a - b) <= tolerance * std::max(a, b);
}

// How a point moves, without the noise of the difference between far points.
PNT_3D shiftOf(const PNT_3D& from, const PNT_3D& to) {
  const auto shift = [](double a, double b) {
    return withoutNoise(b - a, 2 * kUlp * std::max(std::fabs(a), std::fabs(b)));
  };
  return PNT_3D(shift(from.x, to.x), shift(from.y, to.y), shift(from.z, to.z));
}

bool isSimilarMap(const SpaceMap& map, double tolerance) {
  const double length = detail::length(map.x);
  return areEqual(length, detail::length(map.y), tolerance) &&
         areEqual(length, detail::length(map.z), tolerance) &&
         arePerpendicular(map.x, map.y, tolerance) && arePerpendicular(map.y, map.z, tolerance) &&
         arePerpendicular(map.z, map.x, tolerance);
}

// Whether the vertical stays vertical.
bool isLevel(const SpaceMap& map) {
  return map.x.z == 0 && map.y.z == 0 && map.z.x == 0 && map.z.y == 0;
}

// Makes a level similar map exactly that, with this factor.
void straighten(SpaceMap& map, double factor, double noise) {
  const PNT_3D x = directionOf(degreesWithoutNoise(std::atan2(map.x.y, map.x.x), noise));
  const double side = map.x.x * map.y.y < map.x.y * map.y.x ? -factor : factor;
  map.x = scaled(x, factor);
  map.y = PNT_3D(-x.y * side, x.x * side, 0);
  map.z = PNT_3D(0, 0, std::copysign(factor, map.z.z));
}

void clean(SpaceMap& map, double noise) {
  for (PNT_3D* axis : {&map.x, &map.y, &map.z}) *axis = cleanedBy(*axis, noise);
}

bool isNear(const PNT_3D& a, const PNT_3D& b) { return length(a - b) <= 4 * kCosineNoise; }

}  // namespace

PNT_3D cleaned(const PNT_3D& v) { return cleanedBy(v, kCosineNoise); }

double tidyAngle(double degrees) {
  const double whole = 360;
  double within = withoutNoise(std::fmod(degrees, whole), kAngleNoise);
  if (within < 0) within = withoutNoise(within + whole, kAngleNoise);
  return within < whole ? within + 0.0 : 0;
}

SpaceMap simplified(SpaceMap map, double noise) {
  clean(map, std::max(kCosineNoise, noise));
  if (isLevel(map) && isSimilarMap(map, std::max(kSimilarity, noise)))
    straighten(map, factorWithoutNoise(length(map.x), noise), noise);
  return map;
}

MeasuredMap::MeasuredMap(const SpaceMap& map)
    : m_map(map), m_tolerance(std::max(kSimilarity, map.noise)) {
  for (const PNT_3D* part : {&map.x, &map.y, &map.z, &map.origin, &map.from})
    if (!isFinite(*part)) return;
  clean(m_map, kCosineNoise);
  const double volume = dot(cross(m_map.x, m_map.y), m_map.z);
  m_isUsable = std::isfinite(volume) && volume != 0;
  if (!m_isUsable) return;
  m_isMirroring = volume < 0;
  m_isSimilar = isSimilarMap(m_map, m_tolerance);
  m_scale = factorWithoutNoise(length(m_map.x), 0);
  // Straightening what is far from similar would do more than remove noise.
  const bool isStraight = isLevel(m_map) && isSimilarMap(m_map, kSimilarity);
  if (isStraight) straighten(m_map, m_scale, 0);
  m_turn = m_map;
  for (PNT_3D* axis : {&m_turn.x, &m_turn.y, &m_turn.z})
    *axis = cleaned(scaled(*axis, 1 / m_scale));
  m_isMove = m_map.x == PNT_3D(1, 0, 0) && m_map.y == PNT_3D(0, 1, 0) && m_map.z == PNT_3D(0, 0, 1);
  m_shift = shiftOf(map.from, map.origin);
}

PNT_3D MeasuredMap::direction(const PNT_3D& v) const {
  if (m_isSimilar) return m_turn.along(v);
  const PNT_3D image = vector(v);
  const double length = detail::length(image);
  return length > 0 ? scaled(image, detail::length(v) / length) : v;
}

MeasuredPlane::MeasuredPlane(const MeasuredMap& map, const PNT_3D& normal)
    : m_from(normal), m_to(m_from) {
  const PNT_3D image = cross(map.vector(m_from.x), map.vector(m_from.y));
  const PlaneAxes to(cleaned(image));
  m_isUsable = isFinite(image) && length(image) > 0;
  // A plane that stays the same keeps the digits of its axes.
  if (!isNear(to.z, m_from.z)) m_to = to;
  measure(map);
  m_x.z = m_y.z = 0;
}

MeasuredPlane::MeasuredPlane(const MeasuredMap& map, const PNT_3D& normal, const PNT_3D& image)
    : m_from(normal), m_to(m_from) {
  const PlaneAxes to(cleaned(image));
  m_isUsable = isFinite(image) && length(image) > 0;
  if (!isNear(to.z, m_from.z)) m_to = to;
  measure(map);
}

void MeasuredPlane::measure(const MeasuredMap& map) {
  m_keepsNormal = m_to.z == m_from.z;
  m_shift = m_to.fromWorld(map.shift());
  if (map.isMove()) return;
  m_base = m_from.fromWorld(map.base());
  m_shift = m_to.fromWorld(map.point(map.base()));
  m_x = cleaned(m_to.fromWorld(map.vector(m_from.x)));
  m_y = cleaned(m_to.fromWorld(map.vector(m_from.y)));
  m_z = cleaned(m_to.fromWorld(map.vector(m_from.z)));
  m_isSimilar = areEqual(length(m_x), length(m_y), map.tolerance()) &&
                arePerpendicular(m_x, m_y, map.tolerance());
  m_scale = map.isSimilar() ? map.scale() : factorWithoutNoise(length(m_x), 0);
  if (areEqual(std::fabs(m_z.z), m_scale, map.tolerance())) m_z.z = std::copysign(m_scale, m_z.z);
  m_turn = tidyAngle(degreesWithoutNoise(std::atan2(m_x.y, m_x.x), 0));
}

PNT_3D MeasuredPlane::vector(const PNT_3D& v) const {
  return PNT_3D(v.x * m_x.x + v.y * m_y.x + v.z * m_z.x, v.x * m_x.y + v.y * m_y.y + v.z * m_z.y,
                v.x * m_x.z + v.y * m_y.z + v.z * m_z.z);
}

double MeasuredPlane::angle(double degrees) const {
  if (m_isSimilar) return tidyAngle(isMirrored() ? m_turn - degrees : m_turn + degrees);
  const double c = std::cos(degrees * kDegree), s = std::sin(degrees * kDegree);
  const PNT_3D image = vector(PNT_3D(c, s, 0));
  return tidyAngle(std::atan2(image.y, image.x) / kDegree);
}

}  // namespace vek0::detail
