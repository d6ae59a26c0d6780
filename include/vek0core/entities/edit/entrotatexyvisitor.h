#pragma once

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// Rotates the entities that accept it about the vertical axis through a center.
///
/// z, widths, heights and the arcs of polylines are preserved. An insert rotates with its array;
/// its attributes are in block coordinates and unchanged. The rotation of an insert is reduced to
/// [0, 2*pi) by at most one turn, which suffices for rotations in that range; arcs and pattern
/// angles of hatches are reduced fully. The angle is simply added to the rotation of a text. A
/// hatch rotates with the lines that it shows. A non-finite center or angle has no effect. A
/// `CVertex` alone is not rotated.
class VEK0_API CEntRotateXYVisitor final : public IEntVisitor {
 public:
  /// The angle is in radians, counterclockwise.
  CEntRotateXYVisitor(const PNT_3D& centre, double angle);
  /// Rotates by degrees, modulo a full turn. Points rotate by exactly that angle. Angles that files
  /// state in degrees (rotations of texts, inserts and patterns, ends of arcs) are increased by
  /// that number of `kRadiansPerDegree`, and a full turn is 360 of these: after a quarter turn, an
  /// angle of 0 is written as 90, not as 90.00000000002.
  static CEntRotateXYVisitor byDegrees(const PNT_3D& centre, double degrees);

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
  void rotateText(CEntText& ent) const;
  template <class Insert>
  void rotateInsert(Insert& ent) const;
  double degreesFrom(double stated) const;
  double turned(double stated) const;
  double normalTurned(double stated) const;

  PNT_3D m_centre;
  double m_angle;
  double m_degrees = 0;  // if non-zero: added to angles stated in files
};
