#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/spline.h"

/// One loop of a hatch as the polygon that stands for it: three points at least, the first
/// not repeated, no equal neighbors.
using HATCH_RING = std::vector<PNT_3D>;

/// Makes rings of the edges of a hatch's loop, as files give them: in any order, either way
/// round, with gaps.
///
/// Edges are added one by one, then `build` takes them all; the builder is empty again and
/// serves for the next loop. Curves become chords by the rule of bulges (see `arcChords`).
/// Angles are radians. An edge with a number that is not finite, or a coordinate beyond
/// 1e100, is refused: the `add` functions answer false and add nothing. Drawing units; the
/// ends of edges are compared in the plane.
class VEK0_API HatchLoopBuilder {
 public:
  bool addLine(const PNT_3D& from, const PNT_3D& to);

  /// Circular arc. Files measure the angles of a clockwise edge clockwise as well, so that
  /// one from `start` to `end` covers the directions -end to -start. Equal angles, or
  /// those a turn apart, are the full circle. Refused when the radius is zero or less.
  bool addArc(const PNT_3D& center, double radius, double start, double end, bool ccw);

  /// Elliptical arc; `major` is the vector from the center to the end of the major axis, the
  /// angles are parameters (see `ELLIPSE_3D`), clockwise as in `addArc`. Refused when the
  /// ellipse is none; one that is flat (ratio 0) is refused too.
  bool addEllipse(const PNT_3D& center, const PNT_3D& major, double ratio, double start, double end,
                  bool ccw);

  /// A curve that is not valid adds its control polygon; false when even that has fewer
  /// than two points. The tolerance is 1e-4 of the curve's size.
  bool addSpline(const SPLINE_3D& spline);

  /// A chain of segments; bulges[i] belongs to the one that begins at points[i], those that
  /// are missing are 0. A closed chain returns to its first point.
  bool addPolyline(const std::vector<PNT_3D>& points, const std::vector<double>& bulges,
                   bool closed);

  bool empty() const { return m_edges.empty(); }
  /// Forgets the edges.
  void clear() {
    m_points.clear();
    m_edges.clear();
  }

  /// How many points the curves of further edges may add, no end of them at first. A
  /// curve that would add more than is left gets four chords at most.
  void setCurveRoom(std::size_t points) {
    m_curveRoom = points;
    m_coarse = false;
  }
  /// What is left of that.
  std::size_t getCurveRoom() const { return m_curveRoom; }
  /// Whether that has happened to any curve since `setCurveRoom`.
  bool isCoarse() const { return m_coarse; }

  /// Appends the rings of the loop to `rings`: one, unless edges close among themselves
  /// before all are used; none when fewer than three points differ.
  ///
  /// Ends within 1e-6 of the loop's size belong together, nearest first, and meet in the
  /// point that comes first along the ring. An edge is reversed when it has to be. What
  /// stays open is joined by segments, near ends before far ones, into one ring: then the
  /// answer is false, and the caller should tell. Linear in points and edges on average,
  /// whatever their order; where very many ends crowd within the tolerance, not all
  /// are compared.
  bool build(std::vector<HATCH_RING>& rings);

 private:
  struct Edge {
    std::size_t first, count;
  };

  bool addEdge(std::size_t first);
  void thinCurve(std::size_t first);

  std::vector<PNT_3D> m_points;  // of all edges, one after the other
  std::vector<Edge> m_edges;
  std::size_t m_curveRoom = static_cast<std::size_t>(-1);
  bool m_coarse = false;
};

/// How a hatch treats loops within loops.
enum class HatchStyle : short {
  kEvenOdd = 0,    ///< every second level is filled: all loops count
  kOutermost = 1,  ///< the outermost area alone: loops of the two outer levels count
  kIgnore = 2,     ///< islands are filled over: only outer loops count
};

/// Removes the rings that the style does not regard; the others keep their order. What is
/// left is filled even-odd.
///
/// A ring lies within another when the other's box holds its box and the other holds a
/// point from its inside; rings of equal box and area are not within each other. False when
/// rings were so many and so entangled that the search was given up (at 1000 steps for
/// each point of all rings): those not judged are kept. Costs n log n in the points, and for
/// each ring the edges level with it of the rings whose boxes hold it.
VEK0_API bool applyHatchStyle(std::vector<HATCH_RING>& rings, HatchStyle style);
