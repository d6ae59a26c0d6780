#pragma once

#include <memory>
#include <vector>

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"

class CBlockFactory;
class CBlockTable;
class CEnt;
class CEntFactory;
class CLayer;

/// Explodes entities into new ones with the same appearance. The visited entity is not changed;
/// replacing it is up to the caller.
///
/// - An insert yields copies of its block's entities, for every cell of its array, and its
///   visible attributes as texts. They keep their own layers; what is BYBLOCK
///   becomes that of the insert. Inserts in the block stay inserts, one level at a time,
///     except those that unequal scales would shear: these yield what they show. Where the
///   scales are unequal, circles and arcs become polylines of chords (`arcChords`), and so
///     do the arcs of polylines; scales that differ only in sign keep arcs.
/// - A polyline yields a line or an arc for every visible segment; widths are lost. An arc
///     that is not level yields its chords.
/// - A hatch yields its lines, on its own layer; a solid one the filled faces that cover it.
/// - All others, including inserts of external references, yield nothing.
///
/// An entity that would exceed the limit, counted in entities and polyline vertices, yields nothing
/// at all, however large its array claims to be. So does an insert that would shear an external
/// reference, or 200 levels of inserts.
class VEK0_API CEntExploderVisitor final : public IEntFooVisitor {
 public:
  static constexpr long kLimit = 4000000;

  /// New entities come from the factories; a hatch within a block gets its own block in the table.
  /// `pixelSize` is that of the display, for inserts of fixed pixel size.
  CEntExploderVisitor(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
                      CBlockTable& blockTable, double pixelSize = 1, long limit = kLimit);

  /// The entities produced so far, in order; in no table, with handle 0. The caller may take them
  /// between visits.
  std::vector<std::unique_ptr<CEnt>>& getEnts() { return m_ents; }
  /// Whether the last visited entity was refused, as described above or because memory ran out.
  bool isRefused() const { return m_isRefused; }
  /// Number of exploded clipped inserts, nested ones included, whose hidden parts became visible.
  long getNoLostClips() const { return m_noLostClips; }

  using IEntFooVisitor::visit;
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
  template <class Fill>
  void collect(Fill fill);
  void showContents(CEntInsertBase& ent, CLayer* layer);

  IHandleGestor& m_gestor;
  CEntFactory& m_entFactory;
  CBlockFactory& m_blockFactory;
  CBlockTable& m_blockTable;
  double m_pixelSize;
  long m_limit;  // remaining entities and vertices
  std::vector<std::unique_ptr<CEnt>> m_ents;
  bool m_isRefused = false;
  long m_noLostClips = 0;
};
