// The area too close to an edge, or inside a miter. Depth is positive inside, so comparing it with
// the margin separates intrusion from rounding. Tests of discs decide for whole pieces at once,
// before any point of them is computed.
#include "polyline/offsetzone.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/vector.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

// Extends an edge beyond its ends, as a fraction of its length, so that adjacent zones leave no
// seam.
constexpr double kEndShare = 1e-12;
constexpr double kOutside = -std::numeric_limits<double>::infinity();

double turned(double angle) {
  const double a = std::fmod(angle, kTwoPi);
  return a < 0 ? a + kTwoPi : a;
}

}  // namespace

EdgeZone::EdgeZone(const EDGE_3D& edge, double dist)
    : m_edge(edge), m_along(edge.direction(0)), m_length(edge.length()), m_dist(dist) {}

double EdgeZone::endSlack() const { return kEndShare * m_length; }

double EdgeZone::depth(const PNT_2D& p) const {
  if (m_edge.isArc()) {
    // Perpendicular distance only: the areas beyond the ends belong to the zones of vertices.
    const double t = m_edge.paramOf(p);
    if (t < -kEndShare || t > 1 + kEndShare) return kOutside;
    return m_dist - std::fabs(m_edge.center.dist(p) - m_edge.radius);
  }
  const PNT_2D d = p - m_edge.p1;
  const double along = dot(d, m_along);
  if (along < -endSlack() || along > m_length + endSlack()) return kOutside;
  return m_dist - std::fabs(cross(m_along, d));
}

PNT_2D EdgeZone::source(const PNT_2D& p) const { return m_edge.at(m_edge.nearest(p)); }

bool EdgeZone::misses(const PNT_2D& p, double radius) const {
  if (m_edge.isArc()) return std::fabs(m_edge.center.dist(p) - m_edge.radius) >= m_dist + radius;
  const PNT_2D d = p - m_edge.p1;
  const double along = dot(d, m_along);
  const double beyond = radius + endSlack();
  return std::fabs(cross(m_along, d)) >= m_dist + radius || along < -beyond ||
         along > m_length + beyond;
}

bool EdgeZone::swallows(const PNT_2D& p, double radius, double margin) const {
  // Always a valid answer; for arcs, the cuts decide.
  if (m_edge.isArc()) return false;
  const PNT_2D d = p - m_edge.p1;
  const double along = dot(d, m_along);
  return std::fabs(cross(m_along, d)) + radius + margin < m_dist && along >= radius &&
         along + radius <= m_length;
}

double MitreZone::depth(const PNT_2D& p) const {
  double least = std::numeric_limits<double>::infinity();
  // The kite is convex and counterclockwise, so the nearest side determines the depth.
  for (int i = 0; i < 4; ++i) {
    const PNT_2D &a = m_corners[i], d = m_corners[(i + 1) % 4] - a;
    least = std::min(least, cross(d, p - a) / std::sqrt(dot(d, d)));
  }
  return least;
}

RECT_2D MitreZone::bdry() const {
  RECT_2D box;
  box.set(m_corners, 4);
  return box;
}

void EdgeCuts::addAngle(double angle) {
  const double off = m_edge.sweep > 0 ? angle - m_edge.startAngle : m_edge.startAngle - angle;
  add(turned(off) / std::fabs(m_edge.sweep));
}

void EdgeCuts::addLine(const PNT_2D& a, const PNT_2D& b) {
  const PNT_2D d = b - a;
  if (!m_edge.isArc()) {
    const PNT_2D e = m_edge.p2 - m_edge.p1;
    const double det = cross(e, d);
    if (det != 0) add(cross(a - m_edge.p1, d) / det);
    return;
  }
  const double length = std::sqrt(dot(d, d));
  const double off = cross(d, m_edge.center - a) / length;  // of the center, to the left
  // A line that misses the circle, or a NaN, causes no cuts.
  if (!(std::fabs(off) <= m_edge.radius)) return;
  // The crossings are symmetric about the foot of the perpendicular from the center.
  const double toFoot = std::atan2(-d.x, d.y), half = std::acos(off / m_edge.radius);
  addAngle(toFoot + half);
  addAngle(toFoot - half);
}

void EdgeCuts::addCircle(const PNT_2D& center, double radius) {
  const PNT_2D w = center - (m_edge.isArc() ? m_edge.center : PNT_2D(m_edge.p1));
  if (!m_edge.isArc()) {
    const PNT_2D e = m_edge.p2 - m_edge.p1;
    const double length = std::sqrt(dot(e, e)), off = cross(e, w) / length;
    if (!(std::fabs(off) <= radius)) return;
    const double middle = dot(e, w) / length;
    // Sum times difference loses no digits when the line is almost tangent.
    const double half = std::sqrt((radius - off) * (radius + off));
    add((middle - half) / length);
    add((middle + half) / length);
    return;
  }
  const double apart = std::sqrt(dot(w, w)), r = m_edge.radius;
  if (apart == 0) return;
  // Law of cosines in the triangle of both centers and a crossing.
  const double cosine = (apart * apart + (r - radius) * (r + radius)) / (2 * apart * r);
  if (!(std::fabs(cosine) <= 1)) return;
  const double toward = std::atan2(w.y, w.x), half = std::acos(cosine);
  addAngle(toward + half);
  addAngle(toward - half);
}

const std::vector<double>& EdgeCuts::sorted() {
  m_cuts.push_back(m_from);
  m_cuts.push_back(m_to);
  std::sort(m_cuts.begin(), m_cuts.end());
  return m_cuts;
}

}  // namespace vek0::detail
