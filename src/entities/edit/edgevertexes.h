#pragma once

#include <cmath>

#include "vek0core/entities/bulgedchain.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/edge.h"

namespace vek0::detail {

inline BULGED_VERTEX vertexAt(const PNT_3D& p, double bulge) {
  return {p.x, p.y, p.z, 0, 0, bulge, 0};
}

/// Appends the polyline vertices of an edge, except the one at its end. A sweep of more than half a
/// turn becomes two arcs: the bulge of a nearly full one would lose all precision.
template <class Vertexes>
void addVertexes(const EDGE_3D& edge, Vertexes& out) {
  const bool isTwo = std::fabs(edge.sweep) > kPi;
  const double bulge = std::tan(edge.sweep / (isTwo ? 8 : 4));
  out.push_back(vertexAt(edge.p1, bulge));
  if (isTwo) out.push_back(vertexAt(edge.at(0.5), bulge));
}

}  // namespace vek0::detail
