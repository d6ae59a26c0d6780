#pragma once

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// Scales the entities that accept it uniformly about a center.
///
/// A negative factor means its magnitude and, seen from above, half a turn: radii, widths, heights
/// and pattern scales are multiplied by the magnitude, the angles of texts, arcs and hatch patterns
/// increase by pi, and inserts use the signed factor, which is equivalent. The spacings of an
/// insert's array are multiplied too, since the insert's own scales do not affect them. Attributes
/// are in block coordinates and unchanged; a hatch scales with the lines that it shows. The
/// thickness, which is one of the properties, is multiplied by the magnitude, except that of the
/// lines of a hatch. A factor of 0, which could not be undone, and a non-finite center or factor
/// have no effect. A `CVertex` alone is not scaled.
///
/// For an entity with a thickness, throws `std::bad_alloc` with nothing changed.
class VEK0_API CEntScaleVisitor final : public IEntVisitor {
 public:
  CEntScaleVisitor(const PNT_3D& centre, double factor);

  using IEntVisitor::visit;
  void visit(CEntPnt& ent) override;
  void visit(CEntLine& ent) override;
  void visit(CEntCircle& ent) override;
  void visit(CEntArc& ent) override;
  void visit(CEntPolyline& ent) override;
  void visit(CEntText& ent) override;
  void visit(CEntAttdef& ent) override;
  void visit(CEntInsert& ent) override;
  void visit(CEntFixedInsert& ent) override;
  void visit(CEntInsertXRef& ent) override;
  void visit(CEntAttrib& ent) override;
  void visit(CEntHatch& ent) override;
  void visit(CEnt3DFace& ent) override;

 private:
  bool isHalfTurned() const { return m_factor < 0; }
  void scaleThickness(CEnt& ent) const;

  PNT_3D m_centre;
  double m_factor;
  bool m_isInHatch = false;
};
