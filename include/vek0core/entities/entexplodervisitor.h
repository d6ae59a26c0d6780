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

/// Takes entities apart into new ones that show the same. The visited entity stays as it
/// is; whoever wants it replaced does that.
///
/// - An insert gives copies of its block's entities, for every cell of its array, and its
///   visible attributes as texts. They keep their own layers; color and linetype BYBLOCK
///   become those of the insert. Inserts in the block stay inserts, one level at a time,
///   but for those that unequal scales would shear: these give what they show. Where the
///   scales are unequal, circles and arcs become polylines of chords (`arcChords`), and so
///   do the arcs of polylines; scales that differ in sign alone keep arcs.
/// - A polyline gives a line or an arc for every visible segment; widths are lost. An arc
///   that is not level gives its chords.
/// - A hatch gives its lines, on its own layer; a solid one the filled faces that cover it.
/// - All others, inserts of external references too, give nothing.
///
/// An entity with which the visitor would have given more than the limit, counted in entities
/// and in the vertices of polylines, gives nothing at all, however large its array claims to
/// be. So does an insert that would shear an external reference, or 200 levels of inserts.
class VEK0_API CEntExploderVisitor final : public IEntFooVisitor {
 public:
  static constexpr long kLimit = 4000000;

  /// New entities come from the factories; a hatch within a block gets a block of its own
  /// in the table. `pixelSize` is that of the display, for inserts of fixed pixel size.
  CEntExploderVisitor(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
                      CBlockTable& blockTable, double pixelSize = 1, long limit = kLimit);

  /// What the entities visited so far have given, in order. In no table, of handle 0. Yours
  /// to take out between visits.
  std::vector<std::unique_ptr<CEnt>>& getEnts() { return m_ents; }
  /// Whether the entity visited last has been refused, as told above or for want of memory.
  bool isRefused() const { return m_isRefused; }
  /// How many clipped inserts, those that had to give what they show too, have given what was
  /// hidden of them.
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
  long m_limit;  // what may still be given
  std::vector<std::unique_ptr<CEnt>> m_ents;
  bool m_isRefused = false;
  long m_noLostClips = 0;
};
