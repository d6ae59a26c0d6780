// A segment or an arc behind one interface: parameters run from 0 at the start to 1 at the end.
// Crossings are computed on the carriers, the line or the circle, and kept if their parameters lie
// on both edges. Parameters within the tolerance of an end are set to that end exactly, so that
// callers recognize crossings in a vertex without a tolerance of their own. Edges on one carrier
// have no crossings except at their ends.
#include "vek0core/geometry/edge.h"
#include "vek0core/geometry/angle.h"

#include <algorithm>
#include <cmath>

#include "geometry/vector.h"

using vek0::detail::kPi;
using vek0::detail::kTwoPi;

namespace {

using vek0::detail::cross;
using vek0::detail::dot;

constexpr double kParallel = 1e-12;  // sine of the angle between straight edges

PNT_2D around(const PNT_2D& center, double radius, double angle) {
  return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}

PNT_3D lifted(const PNT_2D& p, double z) { return {p.x, p.y, z}; }

double shareOf(double angle, const EDGE_3D& edge) { return angle / edge.sweep; }

// Snaps to the parameters 0 and 1 within the tolerance; false outside them.
bool snap(double& t, double length, double tolerance) {
  // The tolerance is a length, but parameters are fractions of the edge.
  const double near = length > 0 ? tolerance / length : 1;
  if (t < -near || t > 1 + near) return false;
  if (t <= near) t = 0;
  if (t >= 1 - near) t = 1;
  return true;
}

// Collects crossings that lie on both edges.
class Crossings {
 public:
  Crossings(const EDGE_3D& a, const EDGE_3D& b, std::vector<EDGE_CROSSING>& out, double tolerance,
            bool carriers)
      : m_a(a), m_b(b), m_out(out), m_tolerance(tolerance), m_carriers(carriers) {}

  void find() {
    if (!m_a.isArc() && !m_b.isArc()) return lines();
    if (!m_a.isArc()) return lineAndArc(m_a, m_b, false);
    if (!m_b.isArc()) return lineAndArc(m_b, m_a, true);
    arcs();
  }

 private:
  void lines() {
    const PNT_2D d = m_a.p2 - m_a.p1, e = m_b.p2 - m_b.p1, w = m_b.p1 - m_a.p1;
    const double det = cross(d, e), dd = dot(d, d), ee = dot(e, e);
    // Compares the sine of the angle, so that long edges do not count as less parallel.
    if (std::fabs(det) <= kParallel * std::sqrt(dd) * std::sqrt(ee)) return sameCarrier();
    take(cross(w, e) / det, cross(w, d) / det);
  }

  void lineAndArc(const EDGE_3D& line, const EDGE_3D& arc, bool swapped) {
    const PAR_LINE_2D carrier(line.p1, line.p2);
    const CIRCLE_3D circle(arc.center.x, arc.center.y, 0, arc.radius);
    double t[2];
    const long count = circle.intersect(carrier, t[0], t[1]);
    for (long i = 0; i < count; ++i) {
      PNT_2D p(0, 0);
      carrier.calcPt(t[i], p);
      const double u = arc.paramOf(p);
      swapped ? take(u, t[i]) : take(t[i], u);
    }
  }

  void arcs() {
    const double most = std::max(m_a.radius, m_b.radius);
    const double apart = m_a.center.dist(m_b.center);
    if (apart <= m_tolerance && std::fabs(m_a.radius - m_b.radius) <= m_tolerance)
      return sameCarrier();
    // Concentric circles with different radii do not cross.
    if (apart <= 1e-15 * most) return;
    PNT_2D p[2] = {PNT_2D(0, 0), PNT_2D(0, 0)};
    const CIRCLE_3D a(m_a.center.x, m_a.center.y, 0, m_a.radius);
    const CIRCLE_3D b(m_b.center.x, m_b.center.y, 0, m_b.radius);
    const long count = a.intersect(b, &p[0], &p[1]);
    for (long i = 0; i < count; ++i) take(m_a.paramOf(p[i]), m_b.paramOf(p[i]));
  }

  // Adds the ends of each edge that lie on the other; coincident ends only once.
  // Carriers that coincide cross everywhere, which callers that extend edges cannot use.
  void sameCarrier() {
    if (m_carriers) return;
    const std::size_t first = m_out.size();
    const auto offer = [&](double t, double u) {
      const PNT_3D p = m_a.at(t);
      if (p.PNT_2D::dist(m_b.at(u)) > m_tolerance) return;
      for (std::size_t i = first; i < m_out.size(); ++i)
        if (m_out[i].pnt.PNT_2D::dist(p) <= m_tolerance) return;
      m_out.push_back({p, t, u});
    };
    for (const double t : {0.0, 1.0}) offer(t, m_b.nearest(m_a.at(t)));
    for (const double u : {0.0, 1.0}) offer(m_a.nearest(m_b.at(u)), u);
  }

  void take(double t, double u) {
    if (!std::isfinite(t) || !std::isfinite(u)) return;
    // Carriers ignore the ends, so parameters outside 0 to 1 are kept.
    if (!m_carriers && !(snap(t, m_a.length(), m_tolerance) && snap(u, m_b.length(), m_tolerance)))
      return;
    m_out.push_back({m_a.at(t), t, u});
  }

  const EDGE_3D &m_a, &m_b;
  std::vector<EDGE_CROSSING>& m_out;
  double m_tolerance;
  bool m_carriers;
};

}  // namespace

EDGE_3D::EDGE_3D(const PNT_2D& centre, double r, double start, double turn, double z1, double z2)
    : p1(lifted(around(centre, r, start), z1)),
      p2(lifted(around(centre, r, start + turn), z2)),
      center(centre),
      radius(r),
      startAngle(start),
      sweep(turn) {
  // Rounding must not open a full circle.
  if (std::fabs(turn) == kTwoPi) p2.set(p1.x, p1.y);
}

EDGE_3D::EDGE_3D(const ARC_3D& arc) {
  double start, end;
  arc.getSafeAngles(start, end);
  // Files contain negative radii; the arc is the opposite one.
  const double turned = arc.radius < 0 ? kPi : 0;
  const double turn = arc.startAngle == arc.endAngle ? kTwoPi : end - start;
  *this = EDGE_3D(PNT_2D(arc.x, arc.y), std::fabs(arc.radius), start + turned, turn, arc.z, arc.z);
}

EDGE_3D::EDGE_3D(const CIRCLE_3D& c)
    : EDGE_3D(PNT_2D(c.x, c.y), std::fabs(c.radius), 0, kTwoPi, c.z, c.z) {}

EDGE_3D::EDGE_3D(const PNT_3D& a, const PNT_3D& b, double bulge) : p1(a), p2(b) {
  ARC_3D arc;
  if (!createArcFromBulge(a, b, bulge, arc)) return;
  center.set(arc.x, arc.y);
  radius = arc.radius;
  startAngle = center.angle(a);
  sweep = 4 * std::atan(bulge);
}

double EDGE_3D::length() const { return isArc() ? radius * std::fabs(sweep) : p1.PNT_2D::dist(p2); }

PNT_3D EDGE_3D::at(double t) const {
  // Exact at the ends, so that adjacent edges meet without a gap.
  if (t == 0) return p1;
  if (t == 1) return p2;
  const double z = p1.z + (p2.z - p1.z) * t;
  if (isArc()) return lifted(around(center, radius, startAngle + sweep * t), z);
  return {p1.x + (p2.x - p1.x) * t, p1.y + (p2.y - p1.y) * t, z};
}

PNT_2D EDGE_3D::direction(double t) const {
  if (isArc()) {
    const double a = startAngle + sweep * t, sign = sweep > 0 ? 1 : -1;
    return {-sign * std::sin(a), sign * std::cos(a)};
  }
  const PNT_2D d = p2 - p1;
  const double l = std::hypot(d.x, d.y);
  return l > 0 ? PNT_2D(d.x / l, d.y / l) : PNT_2D(0, 0);
}

double EDGE_3D::paramOf(const PNT_2D& p) const {
  if (!isArc()) {
    const PNT_2D d = p2 - p1;
    const double dd = dot(d, d);
    return dd > 0 ? dot(p - p1, d) / dd : 0;
  }
  if (p == center) return 0;
  // The angle relative to the middle of the arc: there, points on the arc are nearest to 0.
  const double middle = startAngle + sweep / 2;
  const double off = std::remainder(std::atan2(p.y - center.y, p.x - center.x) - middle, kTwoPi);
  return 0.5 + shareOf(off, *this);
}

double EDGE_3D::nearest(const PNT_2D& p) const {
  const double t = paramOf(p);
  if (t >= 0 && t <= 1) return t;
  // Beyond the ends of an arc, either end may be the nearer one.
  return p1.PNT_2D::dist_square(p) <= p2.PNT_2D::dist_square(p) ? 0 : 1;
}

EDGE_3D EDGE_3D::part(double t1, double t2) const {
  EDGE_3D cut = *this;
  cut.p1 = at(t1);
  cut.p2 = at(t2);
  cut.startAngle = startAngle + sweep * t1;
  cut.sweep = sweep * (t2 - t1);
  return cut;
}

EDGE_3D EDGE_3D::reversed() const { return part(1, 0); }

void EDGE_3D::move(const PNT_3D& delta) {
  p1.move(delta);
  p2.move(delta);
  if (isArc()) center.set(center.x + delta.x, center.y + delta.y);
}

double EDGE_3D::bulge() const { return std::tan(sweep / 4); }

ARC_3D EDGE_3D::toArc() const {
  const double end = startAngle + sweep;
  const double from = sweep > 0 ? startAngle : end, to = sweep > 0 ? end : startAngle;
  ARC_3D arc(center.x, center.y, p1.z, radius, from, to);
  // Equal angles denote a full circle in an `ARC_3D`.
  if (std::fabs(sweep) >= kTwoPi) arc.endAngle = arc.startAngle;
  return arc;
}

RECT_2D EDGE_3D::bdry() const {
  RECT_2D box(p1.x, p1.y, p2.x, p2.y);
  if (!isArc()) return box;
  const double low = std::min(startAngle, startAngle + sweep);
  const double high = std::max(startAngle, startAngle + sweep);
  const double first = std::ceil(low / (kPi / 2));
  // At most four axis crossings per turn, plus one at the start.
  for (int i = 0; i < 5 && (first + i) * (kPi / 2) < high; ++i)
    box.updateRegion(around(center, radius, (first + i) * (kPi / 2)));
  return box;
}

void EDGE_3D::intersect(const EDGE_3D& other, std::vector<EDGE_CROSSING>& out, double tolerance,
                        bool carriers) const {
  Crossings(*this, other, out, tolerance, carriers).find();
}
