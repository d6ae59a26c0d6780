#pragma once

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// Moves the entities that accept it by one vector, in drawing units.
///
/// Where that is exact, extents are moved instead of recomputed, which keeps moving wide polylines
/// and texts cheap. A polyline's arcs stay arcs. A `CVertex` alone is not moved. A non-finite
/// vector has no effect.
class VEK0_API CEntMoveVisitor final : public IEntVisitor {
 public:
  explicit CEntMoveVisitor(const PNT_3D& delta);

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
  PNT_3D m_delta;
};
