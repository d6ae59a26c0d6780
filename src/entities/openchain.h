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

/// The vertices of something with two ends, to which others of the kind can be appended.
class OpenChain {
 public:
  /// Of a line, an arc, or an open polyline (its visible vertices, if they are enough);
  /// false for everything else, and where both ends are the same within the tolerance.
  bool take(const CEnt& ent, double tolerance);

  const BULGED_VERTEX& front() const { return m_vertexes.front(); }
  const BULGED_VERTEX& back() const { return m_vertexes.back(); }
  static PNT_3D pointOf(const BULGED_VERTEX& v) { return {v.x, v.y, v.z}; }
  PNT_3D start() const { return pointOf(front()); }
  PNT_3D end() const { return pointOf(back()); }
  std::size_t size() const { return m_vertexes.size(); }

  /// Appends `other`, whose start is here the end: that point is the one of this chain.
  void append(const OpenChain& other);
  /// Appends it reversed: its end is here the end.
  void appendReversed(const OpenChain& other);
  /// The same at the start: `other` comes to stand before it.
  void prepend(const OpenChain& other);
  void prependReversed(const OpenChain& other);
  /// Lets go of the last vertex, which is the first again, and answers whether it could.
  bool close(double tolerance);

  /// Replaces the vertices of a plain polyline.
  void write(IHandleGestor& gestor, CEntFactory& factory, CEntPolyline& polyline) const;

 private:
  std::deque<BULGED_VERTEX> m_vertexes;
};

}  // namespace vek0::detail
