#pragma once

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// Turns the entities that accept it about the vertical axis through a center.
///
/// z stays, and so do widths, heights and the arcs of polylines. An insert turns with
/// its array; its attributes stand in the block's coordinates and are left alone. The
/// rotation of an insert is brought into [0, 2 pi) by one turn at most, which is all that
/// rotations in that range need; arcs and pattern angles of hatches by any number. The
/// rotation of a text just gains the angle. A hatch turns with the lines that it shows. A
/// center or an angle that is not finite turns nothing. A `CVertex` alone is not turned.
class VEK0_API CEntRotateXYVisitor final : public IEntVisitor {
 public:
  /// The angle is in radians, counterclockwise.
  CEntRotateXYVisitor(const PNT_3D& centre, double angle);
  /// Turns by degrees, whole turns left out. Points turn by just that angle. What files state
  /// in degrees (rotations of texts, inserts and patterns, ends of arcs) gains as many of
  /// `kRadiansPerDegree`, and a full turn is 360 of these: what stood at 0 is written as 90
  /// after a quarter turn, not as 90.00000000002.
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
  double m_degrees = 0;  // other than 0: what stated angles gain
};
