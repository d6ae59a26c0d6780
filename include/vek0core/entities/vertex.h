#pragma once

#include <cstddef>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"

class CVertex;
class IEntVisitor;

/// Undo snapshot of a vertex: its point and its two widths, not its handle.
class VEK0_API CVertexMemento {
 public:
  CVertexMemento(const PNT_3D& pnt, double widthStart, double widthEnd);
  CVertexMemento(const CVertexMemento&) = default;
  CVertexMemento& operator=(const CVertexMemento&) = default;

  /// Exact comparison of the point and the widths.
  bool operator==(const CVertex& vertex) const;
  bool operator!=(const CVertex& vertex) const { return !(*this == vertex); }
  /// Whether both have the same state.
  bool operator==(const CVertexMemento&) const = default;

  /// Memory use in bytes.
  std::size_t size() const { return sizeof *this; }

 private:
  friend class CVertex;
  PNT_3D m_pnt;
  double m_widthStart;
  double m_widthEnd;
};

/// One vertex of a polyline: a point, and the widths at the start and at the end of the segment
/// that begins there, in drawing units.
///
/// It has a handle but is not an entity: it has no layer, no kind and no reference to its polyline.
/// It has no bulge either; a polyline represents arcs by the vertices that it generates along them
/// (see `CEntPolyline`).
class VEK0_API CVertex : public IHandleEnt {
 public:
  CVertex(const PNT_3D& pnt, double widthStart, double widthEnd, vek0::Handle handle);
  CVertex(const CVertex& src);
  CVertex(const CVertex& src, vek0::Handle handle);
  CVertex& operator=(const CVertex& src);
  ~CVertex() override;

  /// Calls the visitor's overload for vertices.
  void accept(IEntVisitor& visitor);

  const PNT_3D& getPnt() const { return m_pnt; }
  PNT_3D& getPnt() { return m_pnt; }
  void getPnt(double& x, double& y, double& z) const { m_pnt.get(x, y, z); }
  void setPnt(const PNT_3D& pnt) { m_pnt = pnt; }
  void setPnt(double x, double y, double z) { m_pnt.set(x, y, z); }

  double GetWidthStart() const { return m_widthStart; }
  double GetWidthEnd() const { return m_widthEnd; }
  void SetWidthStart(double width) { m_widthStart = width; }
  void SetWidthEnd(double width) { m_widthEnd = width; }
  /// Whether either width is not exactly 0.
  bool IsWide() const { return m_widthStart != 0.0 || m_widthEnd != 0.0; }

  /// The caller owns it; null when out of memory.
  CVertexMemento* createMemento() const;
  void setMemento(const CVertexMemento* memento);

 private:
  PNT_3D m_pnt;
  double m_widthStart;
  double m_widthEnd;
};
