#pragma once

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

class CEntInsertBase;
class CHatchTypeTable;
class TEXT_3D;

/// Mirrors the entities that accept it at a vertical plane, seen from above at the line through two
/// points.
///
/// z, widths, heights and thickness are preserved. An arc exchanges its ends, bulges change their
/// sign, and an insert that of its Y scale and row spacing. A hatch is mirrored with the lines that
/// it shows, and gets a mirrored copy of its pattern. Inserts of fixed pixel size keep their block
/// as it is.
///
/// Texts stay readable: the area that a text covers is mirrored, and its letters are not. What was
/// upright stays upright; the justification changes to the side of the area where the insertion
/// point is. The same holds for attributes. Vertical and fitted texts, and records that consist of
/// text (MTEXT, TOLERANCE, ACAD_TABLE), are moved and turned until they cover the mirrored area.
/// Texts inside blocks are mirrored with their block.
///
/// Two equal or non-finite points have no effect. A `CVertex` alone is not mirrored.
class VEK0_API CEntMirrorVisitor final : public IEntVisitor {
 public:
  /// `patterns`, of the drawing, is borrowed.
  CEntMirrorVisitor(CHatchTypeTable& patterns, const PNT_3D& from, const PNT_3D& to);

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
  void mirror(PNT_3D& p) const;
  double mirrored(double angleRad) const;
  double turnOf(double degrees, bool& isReversed) const;
  void mirrorText(TEXT_3D& text, bool isOwn) const;
  void carryText(TEXT_3D& text) const;
  bool carryRecord(CEntInsert& ent) const;
  void mirrorInsert(CEntInsert& ent) const;

  CHatchTypeTable* m_patterns;
  PNT_3D m_base{0, 0, 0};
  // Cosine and sine of twice the angle of the line, and that in degrees.
  double m_cos = 1, m_sin = 0, m_degrees = 0;
  bool m_isIdle = true;
};
