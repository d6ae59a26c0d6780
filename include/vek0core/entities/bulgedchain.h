#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/handle.h"

/// A polyline vertex as stored in files, with the arc that begins there.
struct BULGED_VERTEX {
  double x, y, z;
  double widthStart, widthEnd;  ///< along the segment that begins here, drawing units
  double bulge;                 ///< tangent of a quarter of that segment's angle; 0 is straight
  vek0::Handle handle;
};

namespace vek0::detail {

/// A vertex generated from a chain: a point and the widths of the segment to the next one.
struct ChainVertex {
  PNT_3D pnt;
  double widthStart, widthEnd;
  vek0::Handle handle;
};

/// Number of chords that approximate an arc of this bulge: max(2, ceil(|angle| / (2 * acos(1 -
/// 1e-4)))), so the chords deviate from the arc by at most 1e-4 of its radius. At most 223, for the
/// full turn.
VEK0_API int chordCount(double bulge);

/// Vertices with bulges, presented as the chain of chords that approximates them, without building
/// that chain.
///
/// A drawing with a million arcs would need some hundred bytes per chord for vertex objects that
/// are rarely used; here an arc costs as much as in the file.
///
/// Chord vertices lie on the arc at equal angles, z and widths are interpolated linearly, and the
/// given vertices are exact. A segment of zero length, or whose arc has no finite center, is
/// straight whatever its bulge. The bulge of an open chain's last vertex is ignored.
class VEK0_API BulgedChain {
 public:
  using Sink = std::function<void(const ChainVertex&)>;

  explicit BulgedChain(bool closed) : m_closed(closed) {}

  bool isClosed() const { return m_closed; }
  void setClosed(bool closed);
  bool empty() const { return m_vertexes.empty(); }
  const std::vector<BULGED_VERTEX>& vertexes() const { return m_vertexes; }
  void add(const BULGED_VERTEX& vertex);
  void assign(const BULGED_VERTEX* vertexes, std::size_t count);
  void clear();

  /// Whether any vertex has a bulge, effective or not.
  bool hasBulges() const { return m_hasBulges; }
  /// Whether any vertex has a non-zero width.
  bool isWide() const;
  /// Number of chords of the segment that begins at given vertex `i`; 1 if it is straight.
  int chords(std::size_t i) const;
  /// Effective bulge of that segment; 0 if it is straight.
  double bulge(std::size_t i) const;

  /// Number of vertices of the chain of chords. The first call after a change is linear, as is the
  /// first `at`.
  std::size_t size() const;
  /// Vertex `i` of the chain of chords; logarithmic in the given vertices.
  ChainVertex at(std::size_t i) const;
  /// Passes the whole chain of chords to `sink`, in order.
  void forEach(const Sink& sink) const;

  /// Grows `box` by the points of the chain of chords. Yields exactly the box of those points, but
  /// computes only those next to an arc's extremes.
  void growBdry(RECT_3D& box) const;

  /// Editing of given vertices. A single point may be set only if there are no bulges.
  void setPos(std::size_t i, const PNT_3D& pnt);
  void setWidth(std::size_t i, double widthStart, double widthEnd);
  void setWidth(double width);
  void translate(const PNT_3D& delta);
  void rotate(const PNT_3D& centre, double angleRad);
  /// Points about `centre`, widths by the factor's magnitude.
  void scale(const PNT_3D& centre, double factor);
  /// Replaces points by their images with `image`, and negates the bulges.
  template <class Image>
  void mirror(const Image& image) {
    for (BULGED_VERTEX& v : m_vertexes) {
      PNT_3D p(v.x, v.y, v.z);
      image(p);
      v.x = p.x;
      v.y = p.y;
      v.z = p.z;
      v.bulge = v.bulge == 0 ? 0 : -v.bulge;
    }
    m_starts.clear();
  }
  void clearHandles();

  /// Equal vertices and shape; handles are not compared.
  bool operator==(const BulgedChain& other) const;

 private:
  const std::vector<std::size_t>& starts() const;
  const BULGED_VERTEX* arcEnd(std::size_t i) const;  // null if segment i is straight

  std::vector<BULGED_VERTEX> m_vertexes;
  // Index in the chain of chords of each given vertex, followed by the total number; built on
  // demand, and always empty without bulges.
  mutable std::vector<std::size_t> m_starts;
  bool m_closed;
  bool m_hasBulges = false;
};

}  // namespace vek0::detail
