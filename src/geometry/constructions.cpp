// Points and edges constructed from others. A result that is not finite counts as none, so callers
// need not check their input for degenerate cases. Circles tangent to two edges have their centers
// where the parallels of both edges at the distance of the radius intersect.
#include "vek0core/geometry/constructions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "geometry/vector.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/finite.h"

using vek0::detail::kTwoPi;
using vek0::detail::touchTolerance;

namespace {

bool give(const PNT_2D& p, PNT_2D& out) {
  if (!vek0::detail::isFinite(p)) return false;
  out.set(p.x, p.y);
  return true;
}

PNT_2D toward(const PNT_2D& from, const PNT_2D& to, double length) {
  const double d = from.dist(to);
  return {from.x + (to.x - from.x) / d * length, from.y + (to.y - from.y) / d * length};
}

// The loci of the centers of circles tangent to an edge.
std::vector<EDGE_3D> centreWays(const EDGE_3D& edge, double radius) {
  if (edge.isArc()) {
    const EDGE_3D outer(edge.center, edge.radius + radius, 0, kTwoPi, 0, 0);
    // The inner locus degenerates to the center of the arc.
    if (edge.radius == radius) return {outer};
    return {outer, EDGE_3D(edge.center, std::fabs(edge.radius - radius), 0, kTwoPi, 0, 0)};
  }
  const PNT_2D d = edge.direction(0);
  EDGE_3D left = edge, right = edge;
  left.move(PNT_3D(-d.y * radius, d.x * radius, 0));
  right.move(PNT_3D(d.y * radius, -d.x * radius, 0));
  return {left, right};
}

// The point where a circle with that center and radius touches the edge's line or circle: of the
// two points of a circle collinear with the centers, the one at a distance of the radius.
PNT_2D contact(const EDGE_3D& edge, const PNT_2D& centre, double radius) {
  if (!edge.isArc()) return edge.at(edge.paramOf(centre));
  const PNT_2D near = toward(edge.center, centre, edge.radius);
  const PNT_2D far = toward(edge.center, centre, -edge.radius);
  const auto off = [&](const PNT_2D& p) { return std::fabs(centre.dist(p) - radius); };
  return off(near) <= off(far) ? near : far;
}

bool touches(const EDGE_3D& edge) { return edge.length() > 0 && std::isfinite(edge.length()); }

}  // namespace

bool CalcolaPuntoIntersezione(const LINE_2D& a, const LINE_2D& b, PNT_2D& out) {
  constexpr int oneCrossing = 2;
  const PAR_LINE_2D line(a);
  double t = 0, u = 0;
  // Parallel lines have no intersection, coincident ones no single one.
  if (line.intersect(PAR_LINE_2D(b), t, u) != oneCrossing) return false;
  PNT_2D crossing(0, 0);
  line.calcPt(t, crossing);
  return give(crossing, out);
}

bool pntPerp(const PNT_2D& p, const LINE_2D& line, PNT_2D& out) {
  const PAR_LINE_2D carrier(line);
  const double square = carrier.dx * carrier.dx + carrier.dy * carrier.dy;
  if (!(square > 0)) return false;
  PNT_2D foot(0, 0);
  carrier.calcPt(((p.x - carrier.x0) * carrier.dx + (p.y - carrier.y0) * carrier.dy) / square,
                 foot);
  return give(foot, out);
}

bool pntPerp(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& out) {
  const PNT_2D& centre = circle;
  return p != centre && give(toward(centre, p, std::fabs(circle.radius)), out);
}

bool pntNearest(const PNT_2D& p, const LINE_2D& line, PNT_2D& out) {
  const EDGE_3D edge(PNT_3D(line.p1.x, line.p1.y, 0), PNT_3D(line.p2.x, line.p2.y, 0));
  return give(edge.at(edge.nearest(p)), out);
}

bool pntNearest(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& out) {
  // At the center, all points of the circle are equally near.
  return pntPerp(p, circle, out) || (p == circle && give(circle.getPntAngle(0), out));
}

bool pntNearest(const PNT_2D& p, const ARC_3D& arc, PNT_2D& out) {
  const EDGE_3D edge(arc);
  return give(edge.at(edge.nearest(p)), out);
}

bool pntNearest(const PNT_2D& p, const PATH_3D& path, PNT_3D& out) {
  if (path.empty()) return false;
  std::size_t edge;
  double t;
  path.nearest(p, edge, t);
  const PNT_3D found = path.edges[edge].at(t);
  if (!give(found, out)) return false;
  out.z = found.z;
  return true;
}

bool CreateCircle(const PNT_3D& center, double radius, CIRCLE_3D& out) {
  if (!(radius > 0) || !std::isfinite(radius) || !vek0::detail::isFinite(center)) return false;
  out.set(center.x, center.y, center.z, radius);
  return true;
}

bool CreateCircle(const PNT_3D& p1, const PNT_3D& p2, CIRCLE_3D& out) {
  const PNT_3D middle((p1.x + p2.x) / 2, (p1.y + p2.y) / 2, p1.z);
  return CreateCircle(middle, p1.PNT_2D::dist(p2) / 2, out);
}

bool CreateCircle(const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3, CIRCLE_3D& out) {
  return out.Create(p1, p2, p3);
}

bool CreateCircle(const EDGE_3D& a, const EDGE_3D& b, double radius, const PNT_2D& pickA,
                  const PNT_2D& pickB, CIRCLE_3D& out, PNT_2D* onA, PNT_2D* onB) {
  if (!(radius > 0) || !std::isfinite(radius) || !touches(a) || !touches(b)) return false;
  std::vector<EDGE_CROSSING> centres;
  // Up to eight candidates; the one whose contacts are closest to the picks wins.
  for (const EDGE_3D& wayA : centreWays(a, radius))
    for (const EDGE_3D& wayB : centreWays(b, radius))
      wayA.intersect(wayB, centres, touchTolerance(radius), true);
  double least = std::numeric_limits<double>::infinity();
  for (const EDGE_CROSSING& at : centres) {
    const PNT_2D ta = contact(a, at.pnt, radius), tb = contact(b, at.pnt, radius);
    const double off = ta.dist(pickA) + tb.dist(pickB);
    if (!(off < least)) continue;
    least = off;
    out.set(at.pnt.x, at.pnt.y, a.p1.z, radius);
    if (onA) *onA = ta;
    if (onB) *onB = tb;
  }
  return std::isfinite(least);
}

int pntTang(const PNT_2D& p, const CIRCLE_3D& circle, PNT_2D& t1, PNT_2D& t2) {
  const PNT_2D& centre = circle;
  const double r = std::fabs(circle.radius), d = p.dist(centre);
  if (!std::isfinite(d) || !(d >= r - touchTolerance(r))) return 0;
  if (d <= r + touchTolerance(r)) {
    t1.set(p.x, p.y);
    return 1;
  }
  // Seen from the center, the chord of contact is r * r / d away.
  // Quotients before products, because r * r could overflow.
  const double along = r / d * r, across = r / d * std::sqrt((d - r) * (d + r));
  const PNT_2D u((p.x - centre.x) / d, (p.y - centre.y) / d);
  t1.set(centre.x + u.x * along + u.y * across, centre.y + u.y * along - u.x * across);
  t2.set(centre.x + u.x * along - u.y * across, centre.y + u.y * along + u.x * across);
  return 2;
}

int pntTang(const PNT_2D& p, const ARC_3D& arc, PNT_2D& t1, PNT_2D& t2) {
  PNT_2D found[2] = {PNT_2D(0, 0), PNT_2D(0, 0)};
  const int count = pntTang(p, static_cast<const CIRCLE_3D&>(arc), found[0], found[1]);
  PNT_2D* outs[2] = {&t1, &t2};
  int kept = 0;
  for (int i = 0; i < count; ++i)
    if (arc.angle_in_arc(arc.angle(found[i]))) outs[kept++]->set(found[i].x, found[i].y);
  return kept;
}

int lineTang(const CIRCLE_3D& a, const CIRCLE_3D& b, LINE_2D (&lines)[4]) {
  const PNT_2D &from = a, &to = b;
  const double ra = std::fabs(a.radius), rb = std::fabs(b.radius), d = from.dist(to);
  const double tolerance = touchTolerance(std::max(ra, rb));
  if (!std::isfinite(d + ra + rb) || !(d > tolerance)) return 0;
  const PNT_2D u((to.x - from.x) / d, (to.y - from.y) / d);
  int count = 0;
  // A tangent's normal makes the same angle with the line of centers at both circles: the
  // one whose cosine is the difference of the signed radii over d.
  for (const double signedB : {rb, -rb}) {
    const double difference = ra - signedB;
    // One circle inside the other: this pair of tangents does not exist.
    if (std::fabs(difference) > d + tolerance) continue;
    const bool isTouching = std::fabs(difference) >= d - tolerance;
    // Touching circles have a single tangent, at their common point.
    const double c = isTouching ? std::copysign(1.0, difference) : difference / d;
    const double s = isTouching ? 0 : std::sqrt((1 - c) * (1 + c));
    for (const double side : {1.0, -1.0}) {
      if (isTouching && side < 0) break;
      const PNT_2D n(u.x * c - u.y * s * side, u.y * c + u.x * s * side);
      lines[count++].set(from.x + n.x * ra, from.y + n.y * ra, to.x + n.x * signedB,
                         to.y + n.y * signedB);
    }
  }
  return count;
}
