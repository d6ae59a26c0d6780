#include "vek0core/geometry/arc.h"
#include "vek0core/geometry/angle.h"

#include <algorithm>

using vek0::detail::kPi;
using vek0::detail::kTwoPi;

namespace {

constexpr double kStepLimit = 64 * kTwoPi;
constexpr double kAngleEps = 1e-12;
// Bounds the points that one arc of a file can cause.
constexpr double kMaxChords = 1024;

// Within [s, e], with a tolerance that grows with the angles.
bool between(double s, double a, double e) {
  return s - (s + 1) * kAngleEps <= a && a <= e + (e + 1) * kAngleEps;
}

// Whether a sweep from s to e passes through the direction `at`, in this turn or the next.
bool passes(double s, double e, double at) { return (s < at && at < e) || e > at + kTwoPi; }

double largestCoordinate(const PNT_3D& a, const PNT_3D& b) {
  return std::max({std::fabs(a.x), std::fabs(a.y), std::fabs(b.x), std::fabs(b.y)});
}

bool isStraight(const PNT_3D& p0, const PNT_3D& p1, double bulge) {
  if (bulge == 0 || !std::isfinite(bulge)) return true;
  const double h = p0.PNT_2D::dist(p1) / 2;
  // A chord below the tolerance determines no direction.
  if (!(h > kAngleEps)) return true;
  const double radius = h / 2 * (std::fabs(bulge) + 1 / std::fabs(bulge));
  // Intersections square the radius.
  if (!std::isfinite(radius * radius)) return true;
  // The sagitta is bulge * half the chord. Below the rounding of the coordinates the arc cannot be
  // distinguished from its chord.
  return std::fabs(bulge) * h < kAngleEps * (1 + largestCoordinate(p0, p1));
}

// Computed separately: tan(pi / 2) is finite in floating point and would put the center beside the
// middle of the chord.
void halfCircle(const PNT_3D& p0, const PNT_3D& p1, double bulge, ARC_3D& arc) {
  const PNT_3D centre((p0.x + p1.x) / 2, (p0.y + p1.y) / 2, (p0.z + p1.z) / 2);
  const double start = centre.angle(bulge > 0 ? p0 : p1);
  arc.set(centre.x, centre.y, centre.z, centre.PNT_2D::dist(p1), start, start + kPi);
}

// Angle of the chord that deviates from the unit circle by `error`.
// sagitta = 1 - cos(angle / 2) on the unit circle
double chordAngle(double error) { return error > 0 ? 2 * std::acos(1 - std::min(error, 1.0)) : 0; }

// Multiplies the vector by the complex number c + i*s.
void turnBy(PNT_2D& v, double c, double s) { v.set(v.x * c - v.y * s, v.x * s + v.y * c); }

// Advances from chord to chord, each rotated by `step`, without using the center: that of a flat
// arc is so far away that digits would be lost.
void appendInnerPoints(const PNT_3D& p0, const PNT_3D& p1, double bulge, std::vector<PNT_3D>& out) {
  const double angle = 4 * std::atan(bulge);
  const int n = arcChords(angle);
  const double step = angle / n, turn = (step - angle) / 2;
  // Length of each chord, as a fraction of the distance between the ends: sin(step / 2) over
  // sin(angle / 2), which is 2 / (bulge + 1 / bulge).
  const double share = std::sin(step / 2) * (bulge + 1 / bulge) / 2;
  PNT_2D chord(p1.x - p0.x, p1.y - p0.y), way(0, 0);
  turnBy(chord, share * std::cos(turn), share * std::sin(turn));
  const double c = std::cos(step), s = std::sin(step);
  for (int k = 1; k < n; ++k) {
    way.set(way.x + chord.x, way.y + chord.y);
    out.emplace_back(p0.x + way.x, p0.y + way.y, p0.z + (p1.z - p0.z) * k / n);
    turnBy(chord, c, s);
  }
}

}  // namespace

// Files contain angles like 1e300, where subtracting a turn has no effect and the loops would never
// end; there we use the remainder. For smaller angles we step, to reproduce the last bits of angles
// in existing drawings.
double ARC_3D::normal(double angleRad) {
  if (!std::isfinite(angleRad)) return 0;
  if (std::fabs(angleRad) > kStepLimit) angleRad = std::fmod(angleRad, kTwoPi);
  while (angleRad < 0) angleRad += kTwoPi;
  while (angleRad >= kTwoPi) angleRad -= kTwoPi;
  return angleRad;
}

bool ARC_3D::Create(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3) {
  CIRCLE_3D circle;
  if (!circle.Create(p1, p2, p3)) return false;
  // The points are in counterclockwise order if the third is left of the line through the others.
  const bool left = prodVect(p2 - p1, p3 - p1).z > 0;
  const PNT_3D &from = left ? p1 : p3, &to = left ? p3 : p1;
  set(circle.x, circle.y, p1.z, circle.radius, circle.angle(from), circle.angle(to));
  return true;
}

void ARC_3D::getSafeAngles(double& start, double& end) const {
  start = startAngle;
  // Equal angles mean a full circle in files, so the end is always above the start.
  end = endAngle > startAngle ? endAngle : endAngle + kTwoPi;
}

bool ARC_3D::angle_in_arc(double angleRad) const {
  const double a = normal(angleRad);
  double s, e;
  getSafeAngles(s, e);
  if (between(s, a, e)) return true;
  // Also test the next turn, for arcs that reach or cross angle 0, and the previous one, for angles
  // just below a full turn because of rounding.
  return (e >= kTwoPi - (kTwoPi + 1) * kAngleEps && between(s, a + kTwoPi, e)) ||
         between(s, a - kTwoPi, e);
}

void ARC_3D::end_points(PNT_3D& ps, PNT_3D& pe) const {
  ps = getPntAngle(startAngle);
  pe = getPntAngle(endAngle);
}

void ARC_3D::calc_bdry(RECT_3D& box) const {
  PNT_3D ps, pe;
  end_points(ps, pe);
  box.set(ps, pe);
  double s, e;
  getSafeAngles(s, e);
  // Axis crossings beyond the ends extend the box to the full radius.
  if (e > kTwoPi) box.updateRegion(PNT_3D(x + radius, ps.y, z));
  if (passes(s, e, kPi)) box.updateRegion(PNT_3D(x - radius, ps.y, z));
  if (passes(s, e, kPi / 2)) box.updateRegion(PNT_3D(ps.x, y + radius, z));
  if (passes(s, e, kPi * 3 / 2)) box.updateRegion(PNT_3D(ps.x, y - radius, z));
}

void ARC_3D::rotate(const PNT_3D& center, double angleRad) {
  PNT_3D::rotate(center, angleRad);
  startAngle = normal(startAngle + angleRad);
  endAngle = normal(endAngle + angleRad);
}

double ARC_3D::dist(const PNT_2D& p) const {
  return holds(p) ? CIRCLE_3D::dist(p) : dist_endpoints(p);
}

double ARC_3D::dist_endpoints(const PNT_2D& p) const {
  PNT_3D ps, pe;
  end_points(ps, pe);
  return std::min(p.dist(ps), p.dist(pe));
}

long ARC_3D::filter(long count, PNT_2D& p1, const PNT_2D& p2) const {
  if (count == 0) return 0;
  const bool first = holds(p1);
  const bool second = count == 2 && holds(p2);
  // The caller expects the remaining point in p1.
  if (!first) p1 = p2;
  return first + second;
}

long ARC_3D::intersect(const LINE_2D& line, PNT_2D& p1, PNT_2D& p2) const {
  return filter(CIRCLE_3D::intersect(line, &p1, &p2), p1, p2);
}

long ARC_3D::intersect(const IMP_LINE_2D& line, PNT_2D& p1, PNT_2D& p2) const {
  return filter(CIRCLE_3D::intersect(line, &p1, &p2), p1, p2);
}

long ARC_3D::intersect(const CIRCLE_3D& circle, PNT_2D& p1, PNT_2D& p2) const {
  return filter(CIRCLE_3D::intersect(circle, &p1, &p2), p1, p2);
}

long ARC_3D::intersect(const ARC_3D& arc, PNT_2D& p1, PNT_2D& p2) const {
  return arc.filter(intersect(static_cast<const CIRCLE_3D&>(arc), p1, p2), p1, p2);
}

long ARC_3D::intersect(const PAR_LINE_2D& line, double& t1, double& t2) const {
  const long count = CIRCLE_3D::intersect(line, t1, t2);
  if (count == 0) return 0;
  PNT_2D p1(0, 0), p2(0, 0);
  line.calcPt(t1, p1);
  line.calcPt(t2, p2);
  const bool first = holds(p1);
  const bool second = count == 2 && holds(p2);
  if (!first) t1 = t2;
  return first + second;
}

long ARC_3D::intersect(const LINE_2D& line) const {
  PNT_2D p1(0, 0), p2(0, 0);
  return intersect(line, p1, p2);
}

bool createArcFromBulge(const PNT_3D& p0, const PNT_3D& p1, double bulge, ARC_3D& arc) {
  if (isStraight(p0, p1, bulge)) return false;
  if (bulge == 1 || bulge == -1) {
    halfCircle(p0, p1, bulge, arc);
    return true;
  }
  const double hx = (p1.x - p0.x) / 2, hy = (p1.y - p0.y) / 2;
  const double h = std::sqrt(hx * hx + hy * hy);
  const double ux = hx / h, uy = hy / h;
  // Signed distance of the center from the chord's middle, to the left.
  // Half the sweep, 2 * atan(bulge), is the angle at the center over half the chord.
  const double d = h / std::tan(2 * std::atan(bulge));
  const PNT_3D centre(p0.x + ux * h - d * uy, p0.y + uy * h + d * ux, (p0.z + p1.z) / 2);
  const double a0 = centre.angle(p0), a1 = centre.angle(p1);
  const bool left = bulge > 0;
  arc.set(centre.x, centre.y, centre.z, std::sqrt(d * d + h * h), left ? a0 : a1, left ? a1 : a0);
  return true;
}

int arcChords(double angleRad, double chordError) {
  static const double usual = chordAngle(kArcChordError);
  const double step = chordError == kArcChordError ? usual : chordAngle(chordError);
  const double n = std::ceil(std::fabs(angleRad) / step);
  // At least two chords, so that even a flat arc remains recognizable.
  return n > 2 ? static_cast<int>(std::min(n, kMaxChords)) : 2;
}

void bulgePoints(const PNT_3D& p0, const PNT_3D& p1, double bulge, std::vector<PNT_3D>& out) {
  // p0 and p1 may be elements of `out`, which move when it grows.
  const PNT_3D from = p0, to = p1;  // NOLINT(performance-unnecessary-copy-initialization)
  if (!isStraight(from, to, bulge)) appendInnerPoints(from, to, bulge, out);
  out.push_back(to);
}
