#pragma once

#include <list>
#include <memory>
#include <string_view>
#include <vector>

#include "vek0core/entities/blockgraph.h"
#include "vek0core/export.h"
#include "vek0core/tables/nameditem.h"

class CBlock;
class CBlockMemento;
class CBlockXRefDepend;
class CEnt;
class IHandleGestor;
class PNT_3D;

/// The blocks of a drawing, and which of them inserts which.
///
/// The table owns its blocks, and registers their entities while it has them. No block
/// can be redefined so that it comes to insert itself.
///
/// A copy of a table is a view, as for every table of named items: it names the same
/// blocks and graph, owns nothing and is not to be changed.
class VEK0_API CBlockTable : public CNamedItemTableImp {
 public:
  /// Both arguments must outlive the table.
  CBlockTable(IHandleGestor& gestor, CBlockXRefDepend& depend);
  CBlockTable(const CBlockTable& src) = default;
  CBlockTable& operator=(const CBlockTable&) = delete;
  virtual ~CBlockTable();

  /// Takes the block over, registers its entities and adds it to the graph. Null and
  /// a block that is in a table already are ignored.
  virtual void add(CBlock* block);

  /// Takes the block out, which the caller owns from then on, also when other blocks
  /// insert it; their inserts then still name it. What is not in the table is ignored.
  virtual void remove(CBlock* block);

  using CNamedItemTableImp::contains;
  /// Where a block stands in the table and in its graph.
  struct Place {
    CNamedItemTableImp::Place item;
    const CBlock* graphNext;  ///< null at the end
  };
  Place getPlace(const CBlock& block) const;
  /// Puts a block that was taken out back to where it stood; see
  /// `CNamedItemTableImp::restore`.
  void restore(CBlock* block, const Place& place);

  /// First block added of that name, ignoring case; null when there is none.
  CBlock* get(std::u16string_view name) const;
  /// Block `i` in order of addition; unchecked.
  CBlock* operator[](int i) const;

  /// Whether `block` may have these entities instead of its own without inserting
  /// itself, directly or through others.
  bool canRedefine(CBlock* block, const std::list<CEnt*>& newEntities) const;

  /// Gives the block a new base point, flags and content. Answers -1, with nothing changed, when
  /// `canRedefine` says no, else 0.
  ///
  /// The table takes the new entities over on success only. It lets go of the old ones
  /// without deleting them: whoever keeps no undo makes a memento of the block before
  /// and calls its `destroyEntity` after success. Costs no more than the old and new
  /// content and the blocks that depend on the block. Throws `std::bad_alloc` with nothing
  /// changed.
  int Redefine(CBlock* block, const PNT_3D& base, long flags, const std::list<CEnt*>& newEntities);

  /// Restores a memento of the block with everything that hangs on it: registration,
  /// graph and extents. Undoes `Redefine`.
  void setMemento(CBlock* block, const CBlockMemento& memento);
  /// The same, and `memento` becomes one of what the block was. Throws `std::bad_alloc` with
  /// nothing changed; going back needs no memory.
  void exchange(CBlock* block, CBlockMemento& memento);

  /// Brings graph and extents up to date after the host has added or removed entities
  /// of a block in the table, or changed them. Registration is the host's.
  void updateBlock(CBlock* block);

  /// Makes every block compute its extents anew when they are next asked for, inserts
  /// in blocks included and attribute definitions left out.
  void recalcBdry();

  const CBlockGraph& getBlockGraph() const { return *m_graph; }
  CBlockGraph& getBlockGraph() { return *m_graph; }
  CBlockXRefDepend& getDepend() const { return m_depend; }

  /// Unregisters and destroys every block, users before what they insert.
  void clearAll();

 private:
  bool holds(const CBlock* block) const;
  void registerBlock(CBlock& block);

  IHandleGestor& m_gestor;
  CBlockXRefDepend& m_depend;
  std::shared_ptr<CBlockGraph> m_graph;  // views name the source's
};
