// Offsets any path to either side and checks the output: it must be finite, and its edges must be
// connected.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "input.h"
#include "vek0core/polyline/offset.h"

using vek0::fuzz::Input;
using vek0::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const int form = input.byte();
  OFFSET_OPTIONS options;
  options.join = static_cast<OFFSET_JOIN>(form / 2 % 3);
  if (form > 200) options.mitreLimit = input.number();
  const double dist = input.number();
  std::vector<PNT_3D> points;
  std::vector<PNT_2D> flat;
  std::vector<double> bulges;
  while (!input.isEmpty() && points.size() < 200) {
    const double x = input.number(), y = input.number();
    points.emplace_back(x, y, x);
    flat.emplace_back(x, y);
    bulges.push_back(input.byte() % 3 == 0 ? input.number() : 0);
  }
  const bool closed = form % 2 == 0;
  require(CalcParalLine(flat, dist, closed).size() <= flat.size() + 2);
  PtLeftSide(flat.data(), static_cast<int>(flat.size()), closed, PNT_2D(dist, dist));
  std::vector<PATH_3D> out;
  if (!offsetPath(PATH_3D(points, bulges, closed), dist, options, out)) return 0;
  for (const PATH_3D& path : out) {
    require(path.isFinite() && !path.empty());
    if (out.size() == 1 && dist == 0) continue;  // the path itself
    for (std::size_t i = 0; i + 1 < path.edges.size(); ++i)
      require(path.edges[i].p2 == path.edges[i + 1].p1);
  }
  return 0;
}
