// Splines by de Boor's algorithm. Each span between two knots is divided until its chords are close
// enough, within limits, because a file can request any number of points. Callers fall back to the
// controls of an invalid spline.
#include "vek0core/geometry/spline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "geometry/vector.h"
#include "vek0core/geometry/rect.h"

using vek0::detail::dot;
using vek0::detail::inReach;
using vek0::detail::length;
using vek0::detail::makeUnit;
using vek0::detail::times;

namespace {

// Bounds the memory for one spline of a file.
constexpr std::size_t kMaxSplineSpans = 262144;
// However many spans there are, each may have four chords.
constexpr int kLeastHalvings = 2, kMostHalvings = 10;

struct Weighted {
  PNT_3D at;
  double weight;
};

// The controls of a piece, or one row of de Boor's scheme.
using Row = std::array<Weighted, SPLINE_3D::kMaxDegree + 1>;

// The weighted point at fraction `t` between a and b.
Weighted blend(const Weighted& a, const Weighted& b, double t) {
  const double wa = (1 - t) * a.weight, wb = t * b.weight, sum = wa + wb;
  const double share = sum > 0 ? wb / sum : t;  // weights may underflow
  return {PNT_3D(std::lerp(a.at.x, b.at.x, share), std::lerp(a.at.y, b.at.y, share),
                 std::lerp(a.at.z, b.at.z, share)),
          sum};
}

Weighted controlAt(const SPLINE_3D& s, std::size_t i) {
  return {s.controls[i], s.weights.empty() ? 1 : s.weights[i]};
}

// The controls of the span that begins at knots[span].
Row controlsOf(const SPLINE_3D& s, std::size_t span) {
  const auto p = static_cast<std::size_t>(s.degree);
  Row d{};
  for (std::size_t j = 0; j <= p; ++j) d[j] = controlAt(s, span - p + j);
  return d;
}

// One round of de Boor's scheme: inserts knot `t`; of d[r] to d[p], the last is the newest.
void insertKnot(const SPLINE_3D& s, std::size_t span, double t, std::size_t r, Row& d) {
  const auto p = static_cast<std::size_t>(s.degree);
  for (std::size_t j = p; j >= r; --j) {
    const double low = s.knots[span - p + j], high = s.knots[span + j - r + 1];
    d[j] = blend(d[j - 1], d[j], (t - low) / (high - low));
  }
}

PNT_3D pointAt(const SPLINE_3D& s, std::size_t span, double t) {
  const auto p = static_cast<std::size_t>(s.degree);
  Row d = controlsOf(s, span);
  for (std::size_t r = 1; r <= p; ++r) insertKnot(s, span, t, r, d);
  return d[p].at;
}

// The span as a Bezier piece, by raising the knots at its ends to full multiplicity: first the
// lower one, whose scheme leaves the new controls along its edge, then the upper one. The latter's
// rounds have only the lower knot on their left. Every parameter is in the span, so nothing is
// extrapolated. Costs O(degree^2).
Row bezierPiece(const SPLINE_3D& s, std::size_t span) {
  const auto p = static_cast<std::size_t>(s.degree);
  const double a = s.knots[span], b = s.knots[span + 1];
  Row d = controlsOf(s, span), piece{};
  piece[p] = d[p];
  for (std::size_t r = 1; r <= p; ++r) {
    insertKnot(s, span, a, r, d);
    piece[p - r] = d[p];
  }
  for (std::size_t r = 1; r <= p; ++r) {
    for (std::size_t j = p; j >= r; --j) {
      const double high = s.knots[span + j - r + 1];
      piece[j] = blend(piece[j - 1], piece[j], (b - a) / (high - a));
    }
  }
  return piece;
}

double distanceFromSegment(const PNT_3D& p, const PNT_3D& a, const PNT_3D& b) {
  const PNT_3D way = b - a, to = p - a;
  const double square = dot(way, way);
  const double t = square > 0 ? std::clamp(dot(to, way) / square, 0.0, 1.0) : 0;
  return length(to - times(way, t));
}

// With positive weights the piece lies in the convex hull of its controls, so it is within the
// tolerance of the chord if they are.
// An S shape has distant controls, too, so it is not mistaken for a straight piece.
bool isFlat(const Row& piece, std::size_t p, double tolerance) {
  for (std::size_t k = 1; k < p; ++k) {
    if (!(distanceFromSegment(piece[k].at, piece[0].at, piece[p].at) <= tolerance)) return false;
  }
  return true;
}

// De Casteljau at the middle: the first half to `left`, the second stays.
void halve(Row& piece, std::size_t p, Row& left) {
  left[0] = piece[0];
  for (std::size_t r = 1; r <= p; ++r) {
    for (std::size_t j = 0; j + r <= p; ++j) piece[j] = blend(piece[j], piece[j + 1], 0.5);
    left[r] = piece[0];
  }
}

// Appends the ends of the piece's chords.
void flatten(Row& piece, std::size_t p, double tolerance, int halvings, std::vector<PNT_3D>& out) {
  if (halvings == 0 || isFlat(piece, p, tolerance)) {
    out.push_back(piece[p].at);
    return;
  }
  Row left{};
  halve(piece, p, left);
  flatten(left, p, tolerance, halvings - 1, out);
  flatten(piece, p, tolerance, halvings - 1, out);
}

// Halvings allowed per span, so that all spans together stay below the limit.
int allowedHalvings(std::size_t spans) {
  int halvings = kMostHalvings;
  // Many spans are usually short, so a coarser division suffices.
  while (halvings > kLeastHalvings && (spans << halvings) > kMaxSplineSpans) --halvings;
  return halvings;
}

bool areWeights(const SPLINE_3D& s) {
  const auto good = [](double w) { return w > 0 && std::isfinite(w); };
  return s.weights.empty() || (s.weights.size() == s.controls.size() &&
                               std::all_of(s.weights.begin(), s.weights.end(), good));
}

bool areKnots(const SPLINE_3D& s) {
  const auto p = static_cast<std::size_t>(s.degree);
  if (s.knots.size() != s.controls.size() + p + 1) return false;
  for (std::size_t i = 1; i < s.knots.size(); ++i) {
    if (!(s.knots[i - 1] <= s.knots[i])) return false;
  }
  // The domain must have a length.
  return std::isfinite(s.knots.back() - s.knots.front()) && s.knots[p] < s.knots[s.controls.size()];
}

// --- The cubic through given points

// Points that differ, and the lengths from each to the next.
struct FitPath {
  std::vector<PNT_3D> points;
  std::vector<double> knots;  // chord length up to each point

  // False if the numbers are unusable.
  bool add(const PNT_3D& p) {
    if (!inReach(p)) return false;
    const double at = points.empty() ? 0 : knots.back() + p.dist(points.back());
    // Repeated points have no direction between them and would lead to divisions by zero.
    if (!points.empty() && !(at > knots.back())) return true;
    points.push_back(p);
    knots.push_back(at);
    return true;
  }
  double step(std::size_t i) const { return knots[i + 1] - knots[i]; }
  PNT_3D slope(std::size_t i) const { return times(points[i + 1] - points[i], 1 / step(i)); }
};

// One row of the system: before * m[i-1] + here * m[i] + after * m[i+1] = right.
struct FitRow {
  double before, here, after;
  PNT_3D right;
};

FitRow endRow(const PNT_3D* tangent, const PNT_3D& slope, bool atStart) {
  PNT_3D direction = tangent != nullptr && inReach(*tangent) ? *tangent : PNT_3D(0, 0, 0);
  if (makeUnit(direction)) return {0, 1, 0, direction};
  // No curvature: twice the tangent here and the next one are three slopes.
  return {atStart ? 0.0 : 1.0, 2, atStart ? 1.0 : 0.0, times(slope, 3)};
}

// Continuous second derivative at point i.
FitRow innerRow(const FitPath& path, std::size_t i) {
  const double a = path.step(i - 1), b = path.step(i), sum = a + b;
  const PNT_3D right = times(path.slope(i - 1), 3 * b / sum) + times(path.slope(i), 3 * a / sum);
  return {b / sum, 2, a / sum, right};
}

// Tangents at the points: elimination downwards, then back. The diagonal dominates, so no
// pivoting is needed.
std::vector<PNT_3D> fitTangents(const FitPath& path, const PNT_3D* start, const PNT_3D* end) {
  const std::size_t n = path.points.size();
  std::vector<FitRow> rows;
  rows.reserve(n);
  rows.push_back(endRow(start, path.slope(0), true));
  for (std::size_t i = 1; i + 1 < n; ++i) rows.push_back(innerRow(path, i));
  rows.push_back(endRow(end, path.slope(n - 2), false));
  // Thomas algorithm for tridiagonal systems, linear in the points.
  for (std::size_t i = 1; i < n; ++i) {
    const double factor = rows[i].before / rows[i - 1].here;
    rows[i].here -= factor * rows[i - 1].after;
    rows[i].right = rows[i].right - times(rows[i - 1].right, factor);
  }
  std::vector<PNT_3D> m(n, PNT_3D(0, 0, 0));
  m[n - 1] = times(rows[n - 1].right, 1 / rows[n - 1].here);
  for (std::size_t i = n - 1; i-- > 0;) {
    m[i] = times(rows[i].right - times(m[i + 1], rows[i].after), 1 / rows[i].here);
  }
  return m;
}

}  // namespace

bool SPLINE_3D::isValid() const {
  if (degree < 1 || degree > kMaxDegree) return false;
  if (controls.size() <= static_cast<std::size_t>(degree)) return false;
  return areWeights(*this) && areKnots(*this) &&
         std::all_of(controls.begin(), controls.end(), inReach);
}

void SPLINE_3D::getDomain(double& from, double& to) const {
  from = knots[static_cast<std::size_t>(degree)];
  to = knots[controls.size()];
}

PNT_3D SPLINE_3D::getPnt(double t) const {
  double from, to;
  getDomain(from, to);
  t = t > from ? std::min(t, to) : from;  // NaN counts as the beginning
  // The last non-empty span that begins at or before t.
  const auto last = knots.begin() + static_cast<std::ptrdiff_t>(controls.size());
  auto next = std::upper_bound(knots.begin() + degree, last, t);
  if (next == last) next = std::lower_bound(knots.begin() + degree, last, to);
  return pointAt(*this, static_cast<std::size_t>(next - knots.begin()) - 1, t);
}

void SPLINE_3D::chords(double tolerance, std::vector<PNT_3D>& out) const {
  const auto p = static_cast<std::size_t>(degree);
  const int halvings = allowedHalvings(controls.size() - p);
  for (std::size_t span = p; span < controls.size(); ++span) {
    // Spans of length 0 come from repeated knots and have no points.
    if (!(knots[span] < knots[span + 1])) continue;
    Row piece = bezierPiece(*this, span);
    // With that many equal knots the curve has a discontinuity and restarts, as at the first span.
    if (knots[span] == knots[p] || knots[span - p] == knots[span]) out.push_back(piece[0].at);
    flatten(piece, p, tolerance, halvings, out);
  }
}

void SPLINE_3D::controlPolygon(std::vector<PNT_3D>& out) const {
  std::copy_if(controls.begin(), controls.end(), std::back_inserter(out), inReach);
}

double SPLINE_3D::size() const {
  RECT_2D box;
  box.initRegion();
  for (const PNT_3D& p : controls) {
    if (inReach(p)) box.updateRegion(p);
  }
  if (!box.validRegion()) return 0;
  return std::max(box.max.x - box.min.x, box.max.y - box.min.y) / 2;
}

bool SPLINE_3D::createFit(const std::vector<PNT_3D>& points, const PNT_3D* startTangent,
                          const PNT_3D* endTangent) {
  FitPath path;
  for (const PNT_3D& p : points) {
    if (!path.add(p)) return false;
  }
  if (path.points.size() < 2) return false;
  const std::vector<PNT_3D> m = fitTangents(path, startTangent, endTangent);
  SPLINE_3D fit;
  fit.controls.push_back(path.points.front());
  fit.knots.assign(4, 0);
  for (std::size_t i = 0; i + 1 < path.points.size(); ++i) {
    // Hermite to Bezier: the inner controls are a third of the tangents away from the ends.
    const double third = path.step(i) / 3;
    fit.controls.push_back(path.points[i] + times(m[i], third));
    fit.controls.push_back(path.points[i + 1] - times(m[i + 1], third));
    fit.controls.push_back(path.points[i + 1]);
    // Triple inner knots make each piece a Bezier curve in the B-spline.
    fit.knots.insert(fit.knots.end(), 3, path.knots[i + 1]);
  }
  fit.knots.push_back(path.knots.back());
  if (!fit.isValid()) return false;
  *this = fit;
  return true;
}
