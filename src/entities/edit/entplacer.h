#pragma once

#include <memory>
#include <vector>

#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/tables/enttraits.h"
#include "vek0core/tables/handle.h"

class CBlock;
class CBlockFactory;
class CBlockTable;
class CEnt;
class CEntFactory;
class CLayer;
class CLtype;

namespace vek0::detail {

/// Creates entities and counts them against a limit.
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
  long lostClips = 0;  ///< of inserts that were exploded completely

  /// Counts entities or vertices; false once there are too many.
  bool spend(double units);
  /// Takes ownership of a new entity; null marks everything as refused.
  void take(CEnt* ent);
};

/// Properties that entities in a block inherit from its insert.
struct BlockLook {
  short color;
  CLtype* ltype;
  CLayer* layer;  ///< null: they keep their own
  ENT_TRAITS traits;
  CLayer* instead0 = nullptr;  ///< for those on layer "0"; null: they stay there
};

/// Creates copies of entities transformed by a matrix.
///
/// Points, lines, faces and texts keep their kind. Circles, arcs, and the arcs of polylines stay
/// arcs if the matrix is conformal, and become chords otherwise. Inserts stay inserts if their axes
/// remain perpendicular, and are exploded otherwise; hatches stay hatches if the matrix is
/// conformal and does not mirror, solid ones if it is not singular, and become the content of their
/// blocks otherwise. Attribute definitions are not copied. A null look keeps what is BYBLOCK.
class EntPlacer final : public IEntVisitor {
 public:
  EntPlacer(EntMaker& maker, const CEntInsertMatrix& matrix, const BlockLook* look, int depth);

  /// Copies everything that the insert shows, given the matrix of its container.
  static void placeContents(EntMaker& maker, const CEntInsertMatrix& outer,
                            const CEntInsertBase& insert, const BlockLook& look, int depth);

  /// `BlockLook::instead0` for the insert, which is on that layer: the pieces of a record are where
  /// the record is.
  static CLayer* layerOfRecord(const CEntInsertBase& insert, CLayer* layer);

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
  ENT_TRAITS traitsOf(const CEnt& ent) const;
  void dress(CEnt& made, const CEnt& src) const;
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
