#pragma once

#include <list>
#include <memory>
#include <string_view>
#include <vector>

#include "vek0core/entities/blocks/blockgraph.h"
#include "vek0core/export.h"
#include "vek0core/tables/nameditem.h"

class CBlock;
class CBlockMemento;
class CBlockXRefDepend;
class CEnt;
class IHandleGestor;
class PNT_3D;

/// The blocks of a drawing and the graph of their inserts.
///
/// The table owns its blocks, whose entities are registered while they are in it. No block can be
/// redefined to insert itself, directly or indirectly.
///
/// A copy of a table is a view, as for every table of named items: it refers to the same blocks and
/// graph, owns nothing and must not be modified.
class VEK0_API CBlockTable : public CNamedItemTableImp {
 public:
  /// Both arguments must outlive the table.
  CBlockTable(IHandleGestor& gestor, CBlockXRefDepend& depend);
  CBlockTable(const CBlockTable& src) = default;
  CBlockTable& operator=(const CBlockTable&) = delete;
  virtual ~CBlockTable();

  /// Takes ownership of the block, registers its entities and adds it to the graph. Null, and a
  /// block that is already in a table, are ignored.
  virtual void add(CBlock* block);

  /// Removes the block; the caller owns it afterwards. Other blocks may still insert it, and their
  /// inserts keep referring to it. A block that is not in the table is ignored.
  virtual void remove(CBlock* block);

  using CNamedItemTableImp::contains;
  /// The position of a block in the table and in its graph.
  struct Place {
    CNamedItemTableImp::Place item;
    const CBlock* graphNext;  ///< null at the end
  };
  Place getPlace(const CBlock& block) const;
  /// Puts a removed block back at its former position; see `CNamedItemTableImp::restore`.
  void restore(CBlock* block, const Place& place);

  /// First block added of that name, ignoring case; null when there is none.
  CBlock* get(std::u16string_view name) const;
  /// Block `i` in order of addition; unchecked.
  CBlock* operator[](int i) const;

  /// Whether `block` may have these entities as its content without inserting itself, directly or
  /// through others.
  bool canRedefine(CBlock* block, const std::list<CEnt*>& newEntities) const;

  /// Replaces base point, flags and content of the block. Returns 0, or -1 with nothing changed if
  /// `canRedefine` is false.
  ///
  /// The table takes the new entities over on success only. It lets go of the old ones
  /// without deleting them: whoever keeps no undo makes a memento of the block before
  /// and calls its `destroyEntity` after success. Costs no more than the old and new
  /// content and the blocks that depend on the block. Throws `std::bad_alloc` with nothing
  /// changed.
  int Redefine(CBlock* block, const PNT_3D& base, long flags, const std::list<CEnt*>& newEntities);

  /// Restores a memento of the block and updates registration, graph and extents accordingly.
  /// Undoes `Redefine`. Throws `std::bad_alloc` with nothing changed.
  void setMemento(CBlock* block, const CBlockMemento& memento);
  /// The same; `memento` receives the block's previous state. Throws `std::bad_alloc` with nothing
  /// changed; reverting needs no memory.
  void exchange(CBlock* block, CBlockMemento& memento);

  /// Updates graph and extents after the host has added, removed or changed entities of a block in
  /// the table. Registration is up to the host.
  void updateBlock(CBlock* block);

  /// Makes every block recompute its extents on the next request, including those of inserts in
  /// blocks and excluding attribute definitions.
  void recalcBdry();

  const CBlockGraph& getBlockGraph() const { return *m_graph; }
  CBlockGraph& getBlockGraph() { return *m_graph; }
  CBlockXRefDepend& getDepend() const { return m_depend; }

  /// Unregisters and destroys every block, users before the blocks they insert.
  void clearAll();

 private:
  bool holds(const CBlock* block) const;
  void registerBlock(CBlock& block);

  IHandleGestor& m_gestor;
  CBlockXRefDepend& m_depend;
  std::shared_ptr<CBlockGraph> m_graph;  // views share the source's
};
