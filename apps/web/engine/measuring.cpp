#include <cmath>

#include "engine.h"
#include "vek0core/entities/edit/entpath.h"
#include "vek0core/geometry/angle.h"

namespace vek0::web {
namespace {

double lengthOf(const std::vector<PNT_2D>& points) {
  double length = 0;
  for (std::size_t i = 1; i < points.size(); ++i) length += points[i].dist(points[i - 1]);
  return length;
}

// Relative to the first point, which may be millions of units from the origin.
double areaOf(const std::vector<PNT_2D>& points) {
  double twice = 0;
  for (std::size_t i = 2; i < points.size(); ++i) {
    const PNT_2D a = points[i - 1] - points[0], b = points[i] - points[0];
    twice += a.x * b.y - a.y * b.x;
  }
  return std::fabs(twice) / 2;
}

double angleAt(const PNT_2D& a, const PNT_2D& vertex, const PNT_2D& b) {
  constexpr double straight = 180;
  const PNT_2D u = a - vertex, v = b - vertex;
  return std::fabs(std::atan2(u.x * v.y - u.y * v.x, u.x * v.x + u.y * v.y)) * straight /
         detail::kPi;
}

double radiusOf(const CEnt& ent) {
  PATH_3D path;
  if (!getEntPath(ent, path) || path.edges.size() != 1 || !path.edges[0].isArc())
    throw EngineError("a radius is that of a circle or an arc");
  return path.edges[0].radius;
}

}  // namespace

host::Json measurePoints(const std::string& what, const std::vector<PNT_2D>& points) {
  if (what == "distance" && points.size() > 1) return lengthOf(points);
  if (what == "angle" && points.size() == 3) return angleAt(points[0], points[1], points[2]);
  if (what == "area" && points.size() > 2) return areaOf(points);
  throw EngineError("a distance takes two points or more, an angle three, an area three or more");
}

host::Json measureEntities(const std::string& what, const std::vector<CEnt*>& ents) {
  if (what == "radius" && ents.size() == 1) return radiusOf(*ents.front());
  if ((what != "area" && what != "distance") || ents.empty())
    throw EngineError("areas and distances are those of entities, a radius that of one");
  double sum = 0;
  for (const CEnt* ent : ents) {
    PATH_3D path;
    if (!getEntPath(*ent, path)) throw EngineError("an entity has no length and no area");
    if (what == "area" && !path.closed && path.start() != path.end())
      throw EngineError("an open line has no area");
    sum += what == "area" ? std::fabs(path.area()) : path.length();
  }
  return sum;
}

}  // namespace vek0::web
