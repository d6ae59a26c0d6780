#include "georings.h"

#include <algorithm>
#include <numeric>

#include "vek0core/geometry/rect.h"

namespace vek0::host {
namespace {

constexpr std::size_t kMostSteps = 100'000'000;

bool isInside(const GeoRing& ring, double x, double y) {
  bool isIn = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const PNT_3D &a = ring[i], &b = ring[j];
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * ((y - a.y) / (b.y - a.y)) + a.x) isIn = !isIn;
  }
  return isIn;
}

// By the majority of some points, since rings may touch.
bool containsRing(const GeoRing& outer, const GeoRing& inner) {
  constexpr std::size_t samples = 5;
  std::size_t inside = 0;
  for (std::size_t k = 0; k < samples; ++k) {
    const std::size_t i = k * inner.size() / samples;
    const PNT_3D &a = inner[i], &b = inner[(i + 1) % inner.size()];
    inside += isInside(outer, (a.x + b.x) / 2, (a.y + b.y) / 2) ? 1 : 0;
  }
  return 2 * inside > samples;
}

struct Nested {
  double area;
  RECT_2D box;
  std::size_t depth = 0;
  std::size_t polygon = 0;
};

RECT_2D boxOf(const GeoRing& ring) {
  RECT_2D box;
  box.initRegion();
  for (const PNT_3D& p : ring) box.updateRegion(p);
  return box;
}

void windRing(GeoRing& ring, double area, bool isHole) {
  if ((area > 0) == isHole) std::reverse(ring.begin(), ring.end());
}

}  // namespace

double areaOf(const GeoRing& ring) {
  double twice = 0;
  for (std::size_t i = 2; i < ring.size(); ++i) {
    const PNT_3D &o = ring[0], &a = ring[i - 1], &b = ring[i];
    twice += (a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y);
  }
  return twice / 2;
}

std::vector<GeoPolygon> nestRings(std::vector<GeoRing> rings) {
  std::erase_if(rings, [](const GeoRing& ring) { return areaOf(ring) == 0; });
  // A ring lies in larger ones only.
  std::stable_sort(rings.begin(), rings.end(), [](const GeoRing& a, const GeoRing& b) {
    return std::abs(areaOf(a)) > std::abs(areaOf(b));
  });
  std::vector<Nested> nested;
  std::vector<GeoPolygon> polygons;
  std::size_t steps = 0;
  for (GeoRing& ring : rings) {
    Nested now{areaOf(ring), boxOf(ring)};
    // The smallest ring around it is the last of the earlier ones.
    for (std::size_t i = nested.size(); i-- > 0 && steps < kMostSteps;) {
      ++steps;
      if (!nested[i].box.inside(now.box)) continue;
      const GeoRing& outer = rings[i];
      steps += 5 * outer.size();
      if (!containsRing(outer, ring)) continue;
      now.depth = nested[i].depth + 1;
      now.polygon = nested[i].polygon;
      break;
    }
    windRing(ring, now.area, now.depth % 2 == 1);
    if (now.depth % 2 == 0) {
      now.polygon = polygons.size();
      polygons.emplace_back();
    }
    polygons[now.polygon].push_back(ring);
    nested.push_back(now);
  }
  return polygons;
}

}  // namespace vek0::host
