#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/edge.h"

/// A common point of two paths: the edge of each and the parameter there.
struct PATH_CROSSING {
  PNT_3D pnt;
  std::size_t edge1, edge2;
  double t, u;
};

/// A chain of edges, each beginning where the one before ends; a closed one returns to its
/// beginning. Stands for any line, circle, arc or polyline in constructions and offsets.
///
/// A circle is a closed path of one edge. Places along it are measured by the length in
/// the plane from the beginning, drawing units.
class VEK0_API PATH_3D {
 public:
  PATH_3D() = default;
  explicit PATH_3D(const EDGE_3D& edge) : edges{edge} {}
  explicit PATH_3D(const LINE_3D& line) : PATH_3D(EDGE_3D(line)) {}
  /// Closed for a full turn.
  explicit PATH_3D(const ARC_3D& arc);
  explicit PATH_3D(const CIRCLE_3D& circle) : edges{EDGE_3D(circle)}, closed(true) {}
  /// Through the points, `bulges` (as many, or none for straight segments) between them.
  PATH_3D(const std::vector<PNT_3D>& points, const std::vector<double>& bulges, bool isClosed);

  bool empty() const { return edges.empty(); }
  PNT_3D start() const { return edges.front().p1; }  ///< of a path that is not empty
  PNT_3D end() const { return edges.back().p2; }
  double length() const;
  PATH_3D reversed() const;
  RECT_2D bdry() const;
  /// Whether every number is finite and below 1e100.
  bool isFinite() const;
  /// The area inside, positive when the path runs counterclockwise; an open path counts as closed
  /// by a segment.
  double area() const;

  /// The place nearest to `p`: the edge and the parameter there. The path is not empty.
  void nearest(const PNT_2D& p, std::size_t& edge, double& t) const;
  /// The path between two places, each an edge and a parameter; on a closed path onwards
  /// through the beginning when the second place comes first. Empty for an open path then.
  PATH_3D part(std::size_t edge1, double t1, std::size_t edge2, double t2) const;

  std::vector<EDGE_3D> edges;
  bool closed = false;
};

/// How near a point has to be to count as touching, as a share of the coordinates.
inline constexpr double kTouchShare = 1e-12;

/// The common points of two paths, in order along the first, which has each once, a joint of
/// edges included; a point that it passes twice counts twice. Near-linear in edges and points.
VEK0_API std::vector<PATH_CROSSING> intersectPaths(const PATH_3D& a, const PATH_3D& b);

/// The points where a path meets itself, other than where neighboring edges join. Each
/// once, `edge1` being the earlier edge. Near-linear in edges and points.
VEK0_API std::vector<PATH_CROSSING> selfIntersections(const PATH_3D& path);
