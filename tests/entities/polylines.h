#pragma once

#include "entities/scene.h"
#include "support/test.h"

namespace vek0::test {

using PolylinePtr = std::unique_ptr<CEntPolyline>;
/// x, y, z, start width, end width, bulge, handle.
using BulgedRow = std::tuple<double, double, double, double, double, double, long>;

inline PolylinePtr polyline(Scene& s, int flags = 0, int degree = 0) {
  return PolylinePtr(s.factory.createEntPolyline(
      s.gestor, s.layer(), s.ltype(), 7, static_cast<short>(flags), static_cast<short>(degree), 0));
}

inline PolylinePtr polyline(Scene& s, const std::string& points, int flags = 0) {
  PolylinePtr p = polyline(s, flags);
  for (const PNT_3D& pnt : pts(points)) p->addVertex(*new CVertex(pnt, 0, 0, 0));
  return p;
}

inline std::vector<BulgedRow> bulged(const CEntPolyline& p) {
  std::vector<BulgedRow> rows;
  p.forEachBulged([&](const PNT_3D& q, double ws, double we, double bulge, vek0::Handle handle) {
    rows.emplace_back(q.x, q.y, q.z, ws, we, bulge, handle);
  });
  return rows;
}

inline std::vector<BulgedRow> visible(const CEntPolyline& p) {
  std::vector<BulgedRow> rows;
  p.forEachVisible([&](const PNT_3D& q, double ws, double we, double bulge, vek0::Handle handle) {
    rows.emplace_back(q.x, q.y, q.z, ws, we, bulge, handle);
  });
  return rows;
}

inline PolylinePtr copyOf(Scene& s, const CEntPolyline& p) {
  return PolylinePtr(s.factory.createEntPolyline(s.gestor, p));
}

}  // namespace vek0::test
