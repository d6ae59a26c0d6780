#include "ribbon.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vek0::detail {
namespace {

constexpr double kBevelled = 8;  // tangent of half the turn at corners that have no mitre

struct Segment {
  PNT_3D from, to;
  double halfStart, halfEnd;
  PNT_2D way;  // of length 1
  double length;
};

std::vector<Segment> segmentsOf(const std::vector<WIDE_VERTEX>& points, bool closed) {
  std::vector<Segment> segments;
  for (std::size_t i = 0; i + (closed ? 0 : 1) < points.size(); ++i) {
    const WIDE_VERTEX& v = points[i];
    const PNT_3D& to = points[(i + 1) % points.size()].pnt;
    const double length = std::hypot(to.x - v.pnt.x, to.y - v.pnt.y);
    if (!(length > 0) || !std::isfinite(length)) continue;
    const PNT_2D way((to.x - v.pnt.x) / length, (to.y - v.pnt.y) / length);
    segments.push_back(
        {v.pnt, to, std::fabs(v.widthStart) / 2, std::fabs(v.widthEnd) / 2, way, length});
  }
  return segments;
}

// How much a side of that distance loses, or gains, to the corner behind a segment.
double cutOf(const Segment& a, const Segment& b) {
  const double along = a.way.x * b.way.x + a.way.y * b.way.y;
  const double across = a.way.x * b.way.y - a.way.y * b.way.x;
  const double tangent = across / (1 + along);
  return std::fabs(tangent) < kBevelled ? tangent : 0;
}

bool folds(const std::vector<Segment>& segments, bool closed) {
  const std::size_t n = segments.size();
  for (std::size_t i = 0; i < n; ++i) {
    const Segment& s = segments[i];
    double cut = 0;
    if (closed || i > 0) cut += s.halfStart * cutOf(segments[(i + n - 1) % n], s);
    if (closed || i + 1 < n) cut += s.halfEnd * cutOf(s, segments[(i + 1) % n]);
    if (std::fabs(cut) > s.length) return true;
  }
  return false;
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

Rings segmentsOfFolded(const std::vector<WIDE_VERTEX>& points, bool closed) {
  const std::vector<Segment> segments = segmentsOf(points, closed);
  Rings rings;
  if (!folds(segments, closed)) return rings;
  for (const Segment& s : segments) {
    const auto side = [&](const PNT_3D& p, double offset) {
      return PNT_3D(p.x - s.way.y * offset, p.y + s.way.x * offset, p.z);
    };
    rings.push_back({side(s.from, s.halfStart), side(s.to, s.halfEnd), side(s.to, -s.halfEnd),
                     side(s.from, -s.halfStart)});
  }
  return rings;
}

}  // namespace vek0::detail
