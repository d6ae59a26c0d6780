#pragma once

#include <memory>
#include <vector>

#include "vek0core/entities/entvisitor.h"
#include "vek0core/entities/insertmatrix.h"
#include "vek0core/tables/handle.h"

class CBlock;
class CBlockFactory;
class CBlockTable;
class CEnt;
class CEntFactory;
class CLayer;
class CLtype;

namespace vek0::detail {

/// Creates entities, and counts what that costs against a limit.
struct EntMaker {
  IHandleGestor& gestor;
  CEntFactory& ents;
  CBlockFactory& blocks;
  CBlockTable& table;
  double pixelSize;
  long limit;
  std::vector<std::unique_ptr<CEnt>> made;
  long cost = 0;
  bool isRefused = false;
  long lostClips = 0;  ///< of inserts that gave all that they hold

  /// Counts entities or vertices; false once there are too many.
  bool spend(double units);
  /// Takes over a new entity; null refuses all.
  void take(CEnt* ent);
};

/// What entities in a block take over from its insert.
struct BlockLook {
  short color;
  CLtype* ltype;
  CLayer* layer;  ///< null: they keep their own
};

/// Copies entities to where a matrix places them.
///
/// Points, lines, faces and texts are what they were. Circles, arcs, and the arcs of
/// polylines stay arcs when the matrix keeps angles, and become chords otherwise. Inserts
/// stay inserts when their axes stay square, and become what they show otherwise; hatches
/// stay hatches when the matrix keeps angles and does not mirror, solid ones when it flattens
/// nothing, and become what their blocks hold otherwise. Attribute definitions have no copy. A null
/// look leaves colors and linetypes.
class EntPlacer final : public IEntVisitor {
 public:
  EntPlacer(EntMaker& maker, const CEntInsertMatrix& matrix, const BlockLook* look, int depth);

  /// Copies all that the insert shows, given the matrix of what the insert stands in.
  static void placeContents(EntMaker& maker, const CEntInsertMatrix& outer,
                            const CEntInsertBase& insert, const BlockLook& look, int depth);

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
  PNT_3D placed(const PNT_3D& p) const;
  double turned(double angleRad) const;
  CLayer* layerOf(const CEnt& ent) const;
  CLtype* ltypeOf(const CEnt& ent) const;
  short colorOf(const CEnt& ent) const;
  void take(CEnt* made, const CEnt& src);
  void takeChords(const CEnt& src, const PNT_3D& center, double radius, double start, double sweep,
                  bool isClosed);
  void placeCurve(CEntPolyline& ent);
  bool setPlaced(CEntInsert& copy, const CEntInsert& ent) const;
  void copyAttribs(const CEntInsertBase& from, CEntInsertBase& to);
  void placeBlock(CEntInsertBase& ent);
  bool placeHatch(CEntHatch& ent);

  EntMaker& m_maker;
  CEntInsertMatrix m_matrix;
  const BlockLook* m_look;
  int m_depth;
  PNT_2D m_x, m_y;  // images of the unit vectors
  double m_scale;   // of lengths, on average
  bool m_keepsAngles, m_mirrors;
};

}  // namespace vek0::detail
