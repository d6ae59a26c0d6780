#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/spline.h"

/// The polygon that approximates one loop of a hatch: at least three points, the first not
/// repeated, no consecutive equal points.
using HATCH_RING = std::vector<PNT_3D>;

/// Builds rings from the edges of a hatch loop as found in files: in any order, in either
/// direction, with gaps.
///
/// Edges are added one by one; `build` consumes them all and leaves the builder empty for the next
/// loop. Curves become chords by the same rule as bulges (see `arcChords`). Angles are radians. An
/// edge with a non-finite number, or a coordinate beyond 1e100, is rejected: the `add` functions
/// return false and add nothing. Drawing units; the ends of edges are compared in the plane.
class VEK0_API HatchLoopBuilder {
 public:
  bool addLine(const PNT_3D& from, const PNT_3D& to);

  /// Circular arc. Files measure the angles of a clockwise edge clockwise as well, so that one from
  /// `start` to `end` covers the directions -end to -start. Equal angles, or angles a turn apart,
  /// mean the full circle. Rejected if the radius is zero or negative.
  bool addArc(const PNT_3D& center, double radius, double start, double end, bool ccw);

  /// Elliptical arc; `major` is the vector from the center to the end of the major axis, the angles
  /// are parameters (see `ELLIPSE_3D`), clockwise as in `addArc`. An invalid ellipse is rejected,
  /// and so is a flat one (ratio 0).
  bool addEllipse(const PNT_3D& center, const PNT_3D& major, double ratio, double start, double end,
                  bool ccw);

  /// An invalid curve adds its control polygon; false if even that has fewer than two points. The
  /// tolerance is 1e-4 of the curve's size.
  bool addSpline(const SPLINE_3D& spline);

  /// A chain of segments; bulges[i] belongs to the segment that begins at points[i]; missing ones
  /// are 0. A closed chain returns to its first point.
  bool addPolyline(const std::vector<PNT_3D>& points, const std::vector<double>& bulges,
                   bool closed);

  bool empty() const { return m_edges.empty(); }
  /// Discards the edges.
  void clear() {
    m_points.clear();
    m_edges.clear();
  }

  /// Sets how many points the curves of further edges may add; unlimited by default. A curve that
  /// would exceed the rest gets at most four chords.
  void setCurveRoom(std::size_t points) {
    m_curveRoom = points;
    m_coarse = false;
  }
  /// The remaining number of points.
  std::size_t getCurveRoom() const { return m_curveRoom; }
  /// Whether any curve was coarsened for that reason since `setCurveRoom`.
  bool isCoarse() const { return m_coarse; }

  /// Appends the rings of the loop to `rings`: one, unless some edges close among themselves before
  /// all are used; none if fewer than three points are distinct.
  ///
  /// Ends within 1e-6 of the loop's size are joined, nearest first, at the point that comes first
  /// along the ring. Edges are reversed as needed. Remaining gaps are closed by segments, near ends
  /// before far ones, into one ring; the function then returns false, and the caller should report
  /// it. Linear in points and edges on average, in any order; where very many ends lie within the
  /// tolerance, not all are compared.
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
  kEvenOdd = 0,    ///< every other level is filled: all loops count
  kOutermost = 1,  ///< only the outermost area: loops of the two outer levels count
  kIgnore = 2,     ///< islands are filled: only outer loops count
};

/// Removes the rings that the style ignores; the others keep their order. The result is filled
/// even-odd.
///
/// A ring is inside another if the other's box contains its box and the other contains an interior
/// point of it; rings of equal box and area are not inside each other. Returns false if the rings
/// are so many and so entangled that the search was abandoned (at 1000 steps per point of all
/// rings): rings not yet classified are kept. Costs n log n in the points, plus, for each ring, the
/// edges at its height in the rings whose boxes contain it.
VEK0_API bool applyHatchStyle(std::vector<HATCH_RING>& rings, HatchStyle style);
