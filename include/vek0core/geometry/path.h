#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/edge.h"

/// An intersection of two paths: the edge of each and the parameter on it.
struct PATH_CROSSING {
  PNT_3D pnt;
  std::size_t edge1, edge2;
  double t, u;
};

/// A chain of edges, each beginning where the one before ends; a closed one returns to its
/// beginning. Represents any line, circle, arc or polyline in constructions and offsets.
///
/// A circle is a closed path of one edge. Positions along it are planar lengths from its beginning,
/// in drawing units.
class VEK0_API PATH_3D {
 public:
  PATH_3D() = default;
  explicit PATH_3D(const EDGE_3D& edge) : edges{edge} {}
  explicit PATH_3D(const LINE_3D& line) : PATH_3D(EDGE_3D(line)) {}
  /// Closed for a full turn.
  explicit PATH_3D(const ARC_3D& arc);
  explicit PATH_3D(const CIRCLE_3D& circle) : edges{EDGE_3D(circle)}, closed(true) {}
  /// The path through the points, with `bulges` between them (as many as points, or none for
  /// straight segments).
  PATH_3D(const std::vector<PNT_3D>& points, const std::vector<double>& bulges, bool isClosed);

  bool empty() const { return edges.empty(); }
  PNT_3D start() const { return edges.front().p1; }  ///< the path must not be empty
  PNT_3D end() const { return edges.back().p2; }
  double length() const;
  PATH_3D reversed() const;
  RECT_2D bdry() const;
  /// Whether every number is finite and below 1e100.
  bool isFinite() const;
  /// The enclosed area, positive if the path runs counterclockwise; an open path counts as closed
  /// by a segment.
  double area() const;

  /// The edge and parameter of the point nearest to `p`. The path must not be empty.
  void nearest(const PNT_2D& p, std::size_t& edge, double& t) const;
  /// The part between two positions, each an edge and a parameter. If the second position comes
  /// first, a closed path continues through its beginning, and the part of an open path is empty.
  PATH_3D part(std::size_t edge1, double t1, std::size_t edge2, double t2) const;

  std::vector<EDGE_3D> edges;
  bool closed = false;
};

/// The distance within which a point counts as touching, as a fraction of the coordinates.
inline constexpr double kTouchShare = 1e-12;

/// The common points of two paths, in order along the first path, each once, even at a joint of its
/// edges; a point that it passes twice counts twice. Near-linear in edges and points.
VEK0_API std::vector<PATH_CROSSING> intersectPaths(const PATH_3D& a, const PATH_3D& b);

/// The points where a path meets itself, other than the joints of adjacent edges. Each is reported
/// once, `edge1` being the earlier edge. Near-linear in edges and points.
VEK0_API std::vector<PATH_CROSSING> selfIntersections(const PATH_3D& path);
