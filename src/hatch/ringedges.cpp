#include "hatch/ringedges.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "vek0core/hatch/boundary.h"

namespace vek0::detail {

namespace {

// Products of two stay finite, with room for sums.
constexpr double kFarthest = 1e150;

bool isSamePlace(const PNT_3D& a, const PNT_3D& b) { return a.x == b.x && a.y == b.y; }

}  // namespace

std::vector<RingEdge> ringEdges(const std::vector<PNT_3D>& boundary) {
  std::vector<RingEdge> edges;
  for (const HatchRing& ring : hatchRings(boundary)) {
    const std::size_t before = edges.size();
    // Starting from the last point includes the closing edge. Repeated points are skipped.
    const PNT_3D* last = &boundary[ring.first + ring.count - 1];
    for (std::size_t i = 0; i < ring.count; ++i) {
      const PNT_3D* p = &boundary[ring.first + i];
      if (isSamePlace(*last, *p)) continue;
      edges.push_back({last, p});
      last = p;
    }
    // Two edges, there and back, enclose nothing.
    if (edges.size() - before < 3) edges.resize(before);
  }
  return edges;
}

bool hasUsableCoordinates(const std::vector<PNT_3D>& boundary) {
  const auto isUsable = [](const PNT_3D& p) {
    return std::fabs(p.x) <= kFarthest && std::fabs(p.y) <= kFarthest;  // false for NaN
  };
  return boundary.empty() ||
         (std::isfinite(boundary[0].z) && std::all_of(boundary.begin(), boundary.end(), isUsable));
}

}  // namespace vek0::detail
