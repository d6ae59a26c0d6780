#include "quadshape.h"

#include <algorithm>
#include <cmath>

namespace vek0::detail {
namespace {

// A face with a smaller ratio of width to length has no visible area.
constexpr double kFlat = 1e-9;

// Twice the area of a, b, c.
double turn(const PNT_2D& a, const PNT_2D& b, const PNT_2D& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool areOpposite(double a, double b) { return (a < 0 && b > 0) || (a > 0 && b < 0); }

bool cross(const PNT_2D& a, const PNT_2D& b, const PNT_2D& c, const PNT_2D& d) {
  return areOpposite(turn(a, b, c), turn(a, b, d)) && areOpposite(turn(c, d, a), turn(c, d, b));
}

bool isFlat(const std::vector<PNT_2D>& corners) {
  const PNT_2D& from = corners.front();
  const auto reach = [&](const PNT_2D& p) { return std::hypot(p.x - from.x, p.y - from.y); };
  const PNT_2D& to =
      *std::max_element(corners.begin(), corners.end(),
                        [&](const PNT_2D& a, const PNT_2D& b) { return reach(a) < reach(b); });
  const double most = kFlat * reach(to) * reach(to);
  return std::all_of(corners.begin(), corners.end(),
                     [&](const PNT_2D& p) { return std::fabs(turn(from, to, p)) <= most; });
}

}  // namespace

QuadShape shapeOfQuad(const std::vector<PNT_2D>& corners) {
  if (isFlat(corners)) return QuadShape::Flat;
  const std::vector<PNT_2D>& p = corners;
  const bool crossed =
      p.size() == 4 && (cross(p[0], p[1], p[2], p[3]) || cross(p[1], p[2], p[3], p[0]));
  return crossed ? QuadShape::Crossed : QuadShape::Simple;
}

}  // namespace vek0::detail
