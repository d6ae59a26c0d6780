#include "ribbon.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vek0::detail {
namespace {

// The sides of a disc that is as wide as it is high meet in its middle, and nothing is lost.
constexpr double kFolded = 1.01;
constexpr double kCoarse = 0.25;  // turn of an arc that one segment may stand for, radians
constexpr double kBevelled = 8;   // tangent of half the turn at corners that have no mitre

struct Segment {
  PNT_3D from, to;
  double halfStart, halfEnd;
  PNT_2D way;  // of length 1
  double length;
};

Segment segment(const PNT_3D& from, const PNT_3D& to, double halfStart, double halfEnd) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  const PNT_2D way((to.x - from.x) / length, (to.y - from.y) / length);
  return {from, to, halfStart, halfEnd, way, length};
}

std::vector<Segment> segmentsOf(const std::vector<WIDE_VERTEX>& points, bool closed) {
  std::vector<Segment> segments;
  for (std::size_t i = 0; i + (closed ? 0 : 1) < points.size(); ++i) {
    const WIDE_VERTEX& v = points[i];
    const PNT_3D& to = points[(i + 1) % points.size()].pnt;
    const Segment s = segment(v.pnt, to, std::fabs(v.widthStart) / 2, std::fabs(v.widthEnd) / 2);
    if (s.length > 0 && std::isfinite(s.length)) segments.push_back(s);
  }
  return segments;
}

// Tangent of half the turn from one segment to the next.
double halfTurn(const Segment& a, const Segment& b) {
  const double along = a.way.x * b.way.x + a.way.y * b.way.y;
  return (a.way.x * b.way.y - a.way.y * b.way.x) / (1 + along);
}

// How much of a side one unit from the middle is lost, or won, to the corner.
double cutOf(const Segment& a, const Segment& b) {
  const double tangent = halfTurn(a, b);
  return std::fabs(tangent) < kBevelled ? tangent : 0;
}

// The segments that are shorter than what one of their sides loses.
std::vector<bool> foldedOf(const std::vector<Segment>& segments, bool closed) {
  const std::size_t n = segments.size();
  std::vector<bool> folded(n);
  for (std::size_t i = 0; i < n; ++i) {
    const Segment& s = segments[i];
    double cut = 0;
    if (closed || i > 0) cut += s.halfStart * cutOf(segments[(i + n - 1) % n], s);
    if (closed || i + 1 < n) cut += s.halfEnd * cutOf(s, segments[(i + 1) % n]);
    folded[i] = std::fabs(cut) > kFolded * s.length;
  }
  return folded;
}

// The segments that are folded, few longer ones for the chords of an arc, and those beside
// them, whose corners lie too far back.
std::vector<Segment> patchesOf(const std::vector<Segment>& segments, bool closed) {
  const std::vector<bool> folded = foldedOf(segments, closed);
  const std::size_t n = segments.size();
  std::vector<Segment> patches;
  double turned = kCoarse;  // since the last patch began
  for (std::size_t i = 0; i < n; ++i) {
    const Segment& s = segments[i];
    const bool after = folded[(i + n - 1) % n], before = folded[(i + 1) % n];
    if (folded[i] && after && i > 0)
      turned += 2 * std::atan(std::fabs(halfTurn(segments[i - 1], s)));
    if (folded[i] && after && turned < kCoarse) {
      Segment& last = patches.back();
      last = segment(last.from, s.to, last.halfStart, s.halfEnd);
    } else if (folded[i] || after || before) {
      patches.push_back(s);
      turned = folded[i] ? 0 : kCoarse;
    }
  }
  return patches;
}

}  // namespace

// The sides of a closed chain run alike; what lies between them is what one of them
// encloses more than the other.
Rings ribbonRings(const std::vector<WIDE_VERTEX>& points, bool closed) {
  const CPolylineSilhouette outline(points, closed);
  Rings rings;
  for (std::size_t i = 0; i < outline.getNoRuns(); ++i) rings.push_back(outline.getRun(i));
  if (rings.size() > 1) std::reverse(rings.back().begin(), rings.back().end());
  return rings;
}

Rings patchesOfFolds(const std::vector<WIDE_VERTEX>& points, bool closed) {
  Rings rings;
  for (const Segment& s : patchesOf(segmentsOf(points, closed), closed)) {
    const auto side = [&](const PNT_3D& p, double offset) {
      return PNT_3D(p.x - s.way.y * offset, p.y + s.way.x * offset, p.z);
    };
    rings.push_back({side(s.from, s.halfStart), side(s.to, s.halfEnd), side(s.to, -s.halfEnd),
                     side(s.from, -s.halfStart)});
  }
  return rings;
}

}  // namespace vek0::detail
