#pragma once

#include <utility>
#include <vector>

#include "vek0core/geometry/edge.h"
#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// A zone that an offset must not enter: the points nearer than the distance to an edge (measured
/// perpendicularly) or to a vertex, or within the miter of a corner.
///
/// `depth` is the distance of a point inside the zone, negative outside; `source` is the point of
/// the path that corresponds to a point on the border.
class EdgeZone {
 public:
  EdgeZone(const EDGE_3D& edge, double dist);

  double depth(const PNT_2D& p) const;
  PNT_2D source(const PNT_2D& p) const;
  /// Direction of the edge beside `p`.
  PNT_2D direction(const PNT_2D& p) const { return m_edge.direction(m_edge.paramOf(p)); }
  /// Whether the disc about `p` is entirely outside, or entirely deeper than `margin`.
  /// Conservative: may return false where it is true.
  bool misses(const PNT_2D& p, double radius) const;
  bool swallows(const PNT_2D& p, double radius, double margin) const;
  template <class Cuts>
  void addCuts(Cuts& cuts) const;

 private:
  double endSlack() const;

  EDGE_3D m_edge;
  PNT_2D m_along;
  double m_length, m_dist;
};

class VertexZone {
 public:
  VertexZone(const PNT_2D& center, double dist) : m_center(center), m_dist(dist) {}

  double depth(const PNT_2D& p) const { return m_dist - m_center.dist(p); }
  const PNT_2D& source(const PNT_2D&) const { return m_center; }
  bool misses(const PNT_2D& p, double radius) const { return depth(p) <= -radius; }
  bool swallows(const PNT_2D& p, double radius, double margin) const {
    return depth(p) > radius + margin;
  }
  template <class Cuts>
  void addCuts(Cuts& cuts) const {
    cuts.addCircle(m_center, m_dist);
  }

 private:
  PNT_2D m_center;
  double m_dist;
};

/// The kite formed by a corner, the ends of the parallels and the tip of the miter, in
/// counterclockwise order.
class MitreZone {
 public:
  MitreZone(const PNT_2D& corner, const PNT_2D& end, const PNT_2D& tip, const PNT_2D& start)
      : m_corners{corner, end, tip, start} {}

  double depth(const PNT_2D& p) const;
  bool misses(const PNT_2D& p, double radius) const { return depth(p) <= -radius; }
  bool swallows(const PNT_2D& p, double radius, double margin) const {
    return depth(p) > radius + margin;
  }
  /// An interior point between the corner and the tip.
  PNT_2D middle() const {
    return {(m_corners[0].x + m_corners[2].x) / 2, (m_corners[0].y + m_corners[2].y) / 2};
  }
  RECT_2D bdry() const;
  template <class Cuts>
  void addCuts(Cuts& cuts) const {
    for (int i = 0; i < 4; ++i) cuts.addLine(m_corners[i], m_corners[(i + 1) % 4]);
  }

 private:
  PNT_2D m_corners[4];
};

/// The parameters between `from` and `to` where an edge crosses lines and circles.
class EdgeCuts {
 public:
  EdgeCuts(const EDGE_3D& edge, double from, double to) : m_edge(edge), m_from(from), m_to(to) {}

  void addLine(const PNT_2D& a, const PNT_2D& b);
  void addCircle(const PNT_2D& center, double radius);
  /// In order, with both limits.
  const std::vector<double>& sorted();

 private:
  void add(double t) {
    if (t > m_from && t < m_to) m_cuts.push_back(t);
  }
  void addAngle(double angle);

  const EDGE_3D& m_edge;
  double m_from, m_to;
  std::vector<double> m_cuts;
};

template <class Cuts>
void EdgeZone::addCuts(Cuts& cuts) const {
  if (m_edge.isArc()) {
    cuts.addCircle(m_edge.center, m_edge.radius + m_dist);
    if (m_edge.radius > m_dist) cuts.addCircle(m_edge.center, m_edge.radius - m_dist);
    cuts.addLine(m_edge.center, m_edge.p1);
    cuts.addLine(m_edge.center, m_edge.p2);
    return;
  }
  const PNT_2D &a = m_edge.p1, &b = m_edge.p2;
  const PNT_2D right(m_along.y * m_dist, -m_along.x * m_dist);
  cuts.addLine(a + right, b + right);
  cuts.addLine(a - right, b - right);
  cuts.addLine(a - right, a + right);
  cuts.addLine(b - right, b + right);
}

}  // namespace vek0::detail
