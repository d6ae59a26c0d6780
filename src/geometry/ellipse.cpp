// Elliptical arcs in space, by center and two axes. Parameters are not angles: a point is center +
// cos(t) * major + sin(t) * minor. Chords are chosen so that their error stays within a fraction of
// the ellipse's size.
#include "vek0core/geometry/ellipse.h"
#include "vek0core/geometry/angle.h"

#include <cmath>

#include "geometry/vector.h"

using vek0::detail::inReach;
using vek0::detail::makeUnit;
using vek0::detail::times;

using vek0::detail::kPi;
using vek0::detail::kTwoPi;

namespace {

// Tolerance in radians below and above a full turn: files round 2*pi to a few digits, often upward.
constexpr double kTurnShort = 1e-9, kTurnOver = 1e-4;

double sweepBetween(double start, double end) {
  const double turn = std::fabs(end - start);
  if (turn >= kTwoPi - kTurnShort && turn <= kTwoPi + kTurnOver) return kTwoPi;
  // Equal parameters denote the whole ellipse.
  const double sweep = ARC_3D::normal(end - start);
  return sweep == 0 ? kTwoPi : sweep;
}

// Extends the range by the extrema of center + cos(t) * a + sin(t) * b within the arc.
void growRange(const ELLIPSE_3D& e, double center, double a, double b, double& low, double& high) {
  // The extremum of a * cos(t) + b * sin(t) is hypot(a, b), at atan2(b, a).
  const double extent = std::hypot(a, b), top = std::atan2(b, a);
  if (ARC_3D::normal(top - e.startParam) < e.sweep) high = center + extent;
  if (ARC_3D::normal(top + kPi - e.startParam) < e.sweep) low = center - extent;
}

}  // namespace

bool ELLIPSE_3D::set(const PNT_3D& centerPoint, const PNT_3D& majorAxis, double ratio, double start,
                     double end, const PNT_3D& normal) {
  if (!inReach(centerPoint) || !inReach(majorAxis) || !inReach(normal)) return false;
  if (!std::isfinite(start) || !std::isfinite(end) || !(ratio > 0)) return false;
  PNT_3D across = normal, along = majorAxis;
  if (!makeUnit(across) || !makeUnit(along)) return false;
  // The minor axis is perpendicular to the normal and the major axis, which files round.
  across = prodVect(across, along);
  if (!makeUnit(across)) return false;
  across = times(across, vek0::detail::length(majorAxis) * ratio);
  if (!inReach(across) || !(vek0::detail::length(across) > 0)) return false;
  center = centerPoint;
  major = majorAxis;
  minor = across;
  startParam = ARC_3D::normal(start);
  sweep = sweepBetween(start, end);
  return true;
}

PNT_3D ELLIPSE_3D::getPnt(double t) const {
  return center + times(major, std::cos(t)) + times(minor, std::sin(t));
}

bool ELLIPSE_3D::isFullTurn() const { return sweep == kTwoPi; }

void ELLIPSE_3D::end_points(PNT_3D& ps, PNT_3D& pe) const {
  ps = getPnt(startParam);
  pe = isFullTurn() ? ps : getPnt(startParam + sweep);
}

void ELLIPSE_3D::calc_bdry(RECT_3D& box) const {
  PNT_3D ps, pe;
  end_points(ps, pe);
  box.set(ps, pe);
  growRange(*this, center.x, major.x, minor.x, box.min.x, box.max.x);
  growRange(*this, center.y, major.y, minor.y, box.min.y, box.max.y);
  growRange(*this, center.z, major.z, minor.z, box.min.z, box.max.z);
}

void ELLIPSE_3D::chords(std::vector<PNT_3D>& out, double chordError) const {
  PNT_3D ps, pe;
  end_points(ps, pe);
  const int n = arcChords(sweep, chordError);
  out.push_back(ps);
  for (int k = 1; k < n; ++k) out.push_back(getPnt(startParam + sweep * k / n));
  out.push_back(pe);
}
