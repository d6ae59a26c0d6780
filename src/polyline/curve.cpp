// Computes the visible vertices of a curve from its controls. A fitted curve has two arcs between
// adjacent points, which meet in a joint with a common tangent; splines and Bezier curves of degree
// 3 at most become chords. Widths are spread by fraction of the frame's length, so they do not
// depend on the curve's shape.
#include "vek0core/polyline/curve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

#include "vek0core/geometry/circle.h"

namespace {

using Vertexes = std::vector<CURVE_VERTEX>;

constexpr short kFit = 2, kSpline = 4, kBezier = 8;
constexpr int kMaxDegree = 3;

// Limits of the arcs through the points.
constexpr double kEqualTangents = 1e-12;  // radians; any joint makes the same curve below it
constexpr double kFarJoint = 2;           // in chord lengths, from the middle of the chord to the
                                          // joint
constexpr double kSteepBulge = 8;         // an arc of 331 degrees

void setPoint(CURVE_VERTEX& v, double x, double y, double z) {
  v.x = x;
  v.y = y;
  v.z = z;
}

// The control at index `i`; a closed frame wraps around to its first control.
const CURVE_VERTEX& wrapped(const Vertexes& controls, std::size_t i) {
  return controls[i % controls.size()];
}

// Width at `place` control spans from the beginning of the frame, on its span `span`.
double widthAt(const Vertexes& controls, double place, std::size_t span) {
  const CURVE_VERTEX& v = wrapped(controls, span);
  return std::lerp(v.widthStart, v.widthEnd, place - static_cast<double>(span));
}

// Sets the width of every vertex of the curve to that of the frame at the same fraction of its
// length. The curve begins `first` control spans into the frame. Where the width jumps at a
// control, one piece of the curve ends with the old width and the next begins with the new one.
void spreadWidths(const Vertexes& controls, bool closed, double first, Vertexes& curve) {
  const double spans = static_cast<double>(controls.size() - (closed ? 0 : 1));
  const std::size_t steps = curve.size() - (closed ? 0 : 1);
  const auto place = [&](std::size_t i) {
    return first + static_cast<double>(i) * spans / static_cast<double>(steps);
  };
  for (std::size_t i = 0; i < steps; ++i) {
    const double from = place(i), to = place(i + 1);
    curve[i].widthStart = widthAt(controls, from, static_cast<std::size_t>(from));
    // At a control, the end of a segment uses the width before a jump, its start the width after.
    curve[i].widthEnd = widthAt(controls, to, static_cast<std::size_t>(std::ceil(to)) - 1);
  }
  // The segment after the end of an open curve is not drawn; its width is continued.
  if (!closed) curve.back().widthStart = curve.back().widthEnd = curve[steps - 1].widthEnd;
}

// One step of de Boor or de Casteljau: a becomes the interpolation between a and b.
void blend(CURVE_VERTEX& a, const CURVE_VERTEX& b, double t) {
  setPoint(a, std::lerp(a.x, b.x, t), std::lerp(a.y, b.y, t), std::lerp(a.z, b.z, t));
}

// --- B-splines

// Uniform knots, one per span: clamped for an open curve, periodic otherwise.
struct Knots {
  int degree;
  long spans;
  bool closed;

  double operator[](long i) const {
    return static_cast<double>(closed ? i - degree : std::clamp(i - degree, 0L, spans));
  }
};

// Point at `t`, 0 <= t <= spans, by de Boor.
CURVE_VERTEX deBoor(const Vertexes& controls, const Knots& knots, double t) {
  const int p = knots.degree;
  // The last point belongs to the last span, as there is no knot interval after it.
  const long span = std::min(static_cast<long>(t), knots.spans - 1);
  std::array<CURVE_VERTEX, kMaxDegree + 1> d{};
  for (int j = 0; j <= p; ++j) {
    d[static_cast<std::size_t>(j)] = wrapped(controls, static_cast<std::size_t>(span + j));
  }
  for (int r = 1; r <= p; ++r) {
    for (int j = p; j >= r; --j) {
      const long i = span + j;
      const double low = knots[i], high = knots[i + p - r + 1];
      const auto at = static_cast<std::size_t>(j);
      CURVE_VERTEX point = d[at - 1];
      blend(point, d[at], (t - low) / (high - low));
      d[at] = point;
    }
  }
  return d[static_cast<std::size_t>(p)];
}

Vertexes spline(const Vertexes& controls, int p, bool closed, int chords) {
  const auto n = static_cast<long>(controls.size());
  const Knots knots{p, closed ? n : n - p, closed};
  const long steps = (closed ? n : n - 1) * chords;
  Vertexes curve;
  curve.reserve(static_cast<std::size_t>(steps + 1));
  for (long i = 0; i < steps; ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(steps);
    curve.push_back(deBoor(controls, knots, share * static_cast<double>(knots.spans)));
  }
  if (!closed) curve.push_back(controls.back());
  return curve;
}

// --- Bezier pieces

CURVE_VERTEX deCasteljau(const Vertexes& controls, std::size_t first, std::size_t degree,
                         double t) {
  std::array<CURVE_VERTEX, kMaxDegree + 1> d{};
  for (std::size_t j = 0; j <= degree; ++j) d[j] = wrapped(controls, first + j);
  for (std::size_t r = degree; r > 0; --r) {
    for (std::size_t j = 0; j < r; ++j) blend(d[j], d[j + 1], t);
  }
  return d[0];
}

Vertexes bezier(const Vertexes& controls, int p, bool closed, int chords) {
  const std::size_t spans = closed ? controls.size() : controls.size() - 1;
  Vertexes curve;
  for (std::size_t first = 0; first < spans;) {
    // A rest too short for the degree makes one curve of lower degree.
    const std::size_t degree = std::min(static_cast<std::size_t>(p), spans - first);
    const std::size_t steps = degree * static_cast<std::size_t>(chords);
    for (std::size_t c = 0; c < steps; ++c) {
      const double t = static_cast<double>(c) / static_cast<double>(steps);
      curve.push_back(deCasteljau(controls, first, degree, t));
    }
    first += degree;
  }
  if (!closed) curve.push_back(controls.back());
  return curve;
}

// --- Arcs through given points

struct Vector {
  double x, y;
  double length() const { return std::hypot(x, y); }
};

double dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y; }

Vector unit(Vector v) {
  const double length = v.length();
  return length > 0 ? Vector{v.x / length, v.y / length} : Vector{1, 0};
}

Vector between(const CURVE_VERTEX& a, const CURVE_VERTEX& b) { return {b.x - a.x, b.y - a.y}; }

// Tangent at `at` of the circle through three points in the order of travel; if they are collinear,
// the direction from the first to the last, or to the middle one if the path doubles back.
Vector circleTangent(const CURVE_VERTEX& a, const CURVE_VERTEX& b, const CURVE_VERTEX& c,
                     const CURVE_VERTEX& at) {
  const Vector ab = between(a, b), bc = between(b, c), ac = between(a, c);
  CIRCLE_3D circle;
  if (!circle.Create(PNT_3D(a.x, a.y, 0), PNT_3D(b.x, b.y, 0), PNT_3D(c.x, c.y, 0))) {
    return unit(ac.length() > 0 ? ac : ab);
  }
  const double side = ab.x * bc.y - ab.y * bc.x < 0 ? 1 : -1;  // opposite for clockwise
  return unit({side * (at.y - circle.y), -side * (at.x - circle.x)});
}

Vector tangent(const Vertexes& controls, bool closed, std::size_t i) {
  const std::size_t n = controls.size();
  const std::size_t middle = closed ? i : std::clamp(i, std::size_t{1}, n - 2);
  return circleTangent(wrapped(controls, middle + n - 1), controls[middle],
                       wrapped(controls, middle + 1), controls[i]);
}

// The joint of the arcs that leave along `from` and arrive along `to`, relative to the midpoint
// between their ends. Both have tangent legs of equal length.
Vector jointOffset(Vector way, Vector from, Vector to) {
  const Vector across{from.x - to.x, from.y - to.y};
  const double turn = across.length();
  if (turn < kEqualTangents) return {0, 0};
  const double length = way.length();
  const double along = dot(way, {from.x + to.x, from.y + to.y});
  const double root = std::hypot(along, turn * length);
  // Two equivalent forms of the root, chosen to avoid cancellation.
  const double leg = along > 0 ? length * (length / (root + along)) : (root - along) / turn / turn;
  return {leg * across.x / 2, leg * across.y / 2};
}

// Bulge of an arc whose tangent at one end forms the angle from `u` to `v` with its chord.
double bulgeBetween(Vector u, Vector v) {
  return std::tan(std::atan2(u.x * v.y - u.y * v.x, dot(u, v)) / 2);
}

// A path that doubles back would need arbitrarily large arcs; such a span stays straight, so that
// the curve remains near its controls.
void appendSpan(const CURVE_VERTEX& a, const CURVE_VERTEX& b, Vector from, Vector to,
                Vertexes& curve) {
  curve.push_back(a);
  curve.back().bulge = 0;
  // The bulge of a straight span is 0, and it needs no joint.
  const Vector way = between(a, b), offset = jointOffset(way, from, to);
  if (!(way.length() > 0 && offset.length() <= kFarJoint * way.length())) return;
  CURVE_VERTEX joint = a;
  setPoint(joint, std::midpoint(a.x, b.x) + offset.x, std::midpoint(a.y, b.y) + offset.y,
           std::midpoint(a.z, b.z));
  const double first = bulgeBetween(from, between(a, joint));
  const double second = bulgeBetween(between(joint, b), to);
  if (!(std::fabs(first) <= kSteepBulge && std::fabs(second) <= kSteepBulge)) return;
  const double width = std::midpoint(a.widthStart, a.widthEnd);
  curve.back().bulge = first;
  curve.back().widthEnd = width;
  joint.bulge = second;
  joint.widthStart = width;
  curve.push_back(joint);
}

Vertexes fit(const Vertexes& controls, bool closed) {
  const std::size_t spans = closed ? controls.size() : controls.size() - 1;
  Vertexes curve;
  curve.reserve(2 * spans + 1);
  Vector from = tangent(controls, closed, 0);
  for (std::size_t i = 0; i < spans; ++i) {
    const std::size_t next = (i + 1) % controls.size();
    const Vector to = tangent(controls, closed, next);
    appendSpan(controls[i], controls[next], from, to, curve);
    from = to;
  }
  if (!closed) curve.push_back(controls.back());
  if (!closed) curve.back().bulge = 0;
  return curve;
}

}  // namespace

std::vector<CURVE_VERTEX> curveVertexes(const std::vector<CURVE_VERTEX>& controls, short curveType,
                                        short degree, bool closed, int chords) {
  if (controls.size() < 3) return controls;
  if (curveType == kFit) return fit(controls, closed);
  if (curveType != kSpline && curveType != kBezier) return controls;
  const int below = static_cast<int>(std::min<std::size_t>(controls.size() - 1, kMaxDegree));
  // A spline needs more controls than its degree.
  const int p = std::min(std::clamp<int>(degree, 2, kMaxDegree), below);
  const int steps = std::clamp(chords, 2, 64);
  const bool isSpline = curveType == kSpline;
  Vertexes curve =
      isSpline ? spline(controls, p, closed, steps) : bezier(controls, p, closed, steps);
  for (CURVE_VERTEX& v : curve) v.bulge = 0;
  // A periodic spline begins in the middle of its first p controls.
  spreadWidths(controls, closed, isSpline && closed ? (p - 1) / 2.0 : 0, curve);
  return curve;
}
