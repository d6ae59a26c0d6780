#pragma once

#include <cmath>
#include <numbers>

#include "vek0core/entities/bulgedchain.h"
#include "vek0core/geometry/edge.h"

namespace vek0::detail {

inline BULGED_VERTEX vertexAt(const PNT_3D& p, double bulge) {
  return {p.x, p.y, p.z, 0, 0, bulge, 0};
}

/// Appends what a polyline has of an edge, but for the vertex at its end. A turn of more
/// than half is two arcs: the bulge of a nearly full one has no digits left.
template <class Vertexes>
void addVertexes(const EDGE_3D& edge, Vertexes& out) {
  const bool isTwo = std::fabs(edge.sweep) > std::numbers::pi;
  const double bulge = std::tan(edge.sweep / (isTwo ? 8 : 4));
  out.push_back(vertexAt(edge.p1, bulge));
  if (isTwo) out.push_back(vertexAt(edge.at(0.5), bulge));
}

}  // namespace vek0::detail
