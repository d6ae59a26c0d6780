#pragma once

#include <deque>
#include <vector>

#include "vek0core/entities/bulgedchain.h"
#include "vek0core/geometry/pnt.h"

class CEnt;
class CEntFactory;
class CEntPolyline;
class IHandleGestor;

namespace vek0::detail {

/// The vertices of an open chain, to which others can be appended.
class OpenChain {
 public:
  /// Takes over the vertices of a line segment, an arc, or an open polyline (its visible vertices,
  /// if there are at least two); false for everything else, and if both ends coincide within the
  /// tolerance.
  bool take(const CEnt& ent, double tolerance);
  /// The same for a line segment that is known to have two ends.
  void takeLine(const PNT_3D& from, const PNT_3D& to);

  const BULGED_VERTEX& front() const { return m_vertexes.front(); }
  const BULGED_VERTEX& back() const { return m_vertexes.back(); }
  static PNT_3D pointOf(const BULGED_VERTEX& v) { return {v.x, v.y, v.z}; }
  PNT_3D start() const { return pointOf(front()); }
  PNT_3D end() const { return pointOf(back()); }
  std::size_t size() const { return m_vertexes.size(); }

  /// Appends `other`, which starts at this chain's end; the joint keeps this chain's point.
  void append(const OpenChain& other);
  /// Appends it reversed: its end joins this chain's end.
  void appendReversed(const OpenChain& other);
  /// Prepends `other` at the start in the same way.
  void prepend(const OpenChain& other);
  void prependReversed(const OpenChain& other);
  /// Drops the last vertex if it coincides with the first; returns whether it did.
  bool close(double tolerance);

  /// Replaces the vertices of a plain polyline.
  void write(IHandleGestor& gestor, CEntFactory& factory, CEntPolyline& polyline) const;

 private:
  std::deque<BULGED_VERTEX> m_vertexes;
};

}  // namespace vek0::detail
