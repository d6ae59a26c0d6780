#include "dxf/out/endlessline.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "dxf/out/savefilter.h"

namespace vek0::detail {
namespace {

constexpr double kGrowth = 0.05;  // of the longer side, beyond everything drawn

}  // namespace

LINE_3D segmentOf(const CEntLine& ent, const RECT_3D& around) {
  const LINE_3D& line = ent.getLine();
  if (ent.getReach() == LineReach::Segment) return line;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  RECT_2D box(line.p1, line.p2);
  if (around.validRegion()) box.updateRegion(RECT_2D(around.min, around.max));
  const double more = kGrowth * std::max(box.max.x - box.min.x, box.max.y - box.min.y);
  box.inflate(more, more);
  const PNT_3D step = line.p2 - line.p1;
  double from = ent.getReach() == LineReach::Ray ? 0 : -infinity, to = infinity;
  if (!clipLine(box, line.p1, step, from, to) || !std::isfinite(to)) return line;
  const auto at = [&](double t) {
    return PNT_3D(line.p1.x + t * step.x, line.p1.y + t * step.y, line.p1.z + t * step.z);
  };
  const LINE_3D part(at(std::min(from, 0.0)), at(std::max(to, 1.0)));
  return isFinite(part.p1) && isFinite(part.p2) ? part : line;
}

}  // namespace vek0::detail
