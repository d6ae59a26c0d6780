#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <vector>

#include "vek0core/entities/ent.h"
#include "vek0core/export.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/handle.h"

class CBlockXRefDepend;
class IHandleGestor;

/// Receives notifications about the entities of a table, as needed to maintain an index of them.
/// Must not throw: the change has already happened.
class VEK0_API IEntTableWatcher {
 public:
  virtual ~IEntTableWatcher() = default;
  virtual void added(CEnt& ent) = 0;
  /// The entity was removed from the table; its owner may delete it next.
  virtual void removed(CEnt& ent) = 0;
  /// The extents have changed, or will have changed on the next request. Further changes are not
  /// reported until then. A change of an insert's block is not reported until the insert's extents
  /// are recomputed.
  virtual void reshaped(CEnt& ent) = 0;
  /// All entities are about to be deleted.
  virtual void cleared() = 0;
};

/// The entities of a drawing in drawing order, with a selection and cached extents.
///
/// The table owns its entities: `clearAll` and the destructor delete them. Each entity stores its
/// table, so invalid operations are ignored instead of corrupting a list: null, adding an entity
/// that a table or block already holds, removing or selecting one that another holds, selecting
/// twice.
///
/// A copy of a table is a view: it has the same entities and extents, owns nothing, ignores `add`,
/// `remove` and the selection operations, and is valid while the source lives and keeps its
/// entities.
///
/// Adding, removing and selecting take constant time, and so does `get` on average.
class VEK0_API CEntTable {
 public:
  class CEntIterator;

  /// Both arguments must outlive the table.
  CEntTable(IHandleGestor& gestor, CBlockXRefDepend& depend);
  /// A view of `src`, see the class.
  CEntTable(const CEntTable& src);
  CEntTable& operator=(const CEntTable&) = delete;
  ~CEntTable();

  /// Takes ownership of the entity, registers it (`CEnt::addTbls`) and appends it. Valid extents
  /// grow by its box unless its layer is frozen. Throws `std::bad_alloc` with nothing changed; the
  /// caller then still owns the entity.
  void add(CEnt* ent);

  /// Deselects, removes and unregisters the entity; the caller owns it afterwards and may add it
  /// again, for instance to undo. Invalidates the extents.
  void remove(CEnt* ent);

  /// The position of an entity, as needed to restore it there.
  struct Place {
    const CEnt* next;  ///< null at the end
    std::size_t rank;  ///< see `getRank`
  };
  /// The position of an entity of this table.
  Place getPlace(const CEnt& ent) const;
  /// As `add`, but puts a removed entity back at its former position, with its former rank. Its
  /// former successor must be back already, as it is when removals are undone last to first;
  /// otherwise the entity is appended.
  void restore(CEnt* ent, const Place& place);

  /// Memory for the positions of entities in the table, one element each.
  using Slots = std::list<CEnt*>;
  /// `add`, `remove` and `restore` with a slot that the caller keeps meanwhile: the first of
  /// `slots` moves into the table, or from it to the front of `slots`. So restoring a removed
  /// entity needs no memory.
  void add(CEnt* ent, Slots& slots);
  void remove(CEnt* ent, Slots& slots);
  void restore(CEnt* ent, const Place& place, Slots& slots);

  /// Changes the drawing order to that of `order`, which lists all entities of the table. Those
  /// before the first change keep their rank; watchers see the others removed and added. Linear;
  /// does not throw.
  void reorder(const std::vector<CEnt*>& order);

  /// Whether the entity is in this table.
  bool contains(const CEnt* ent) const { return holds(ent); }

  void select(CEnt* ent);           ///< appends to the selection
  void unselect(CEnt* ent);         ///< removes from the selection
  void select(CEnt* ent, bool on);  ///< `select` or `unselect`
  void unselectAll();

  /// First entity in table order with this handle, or null. The first call for any handle but 0
  /// builds an index of all entities, which is maintained from then on; handle 0, which most
  /// entities of a host have, is searched linearly.
  CEnt* get(vek0::Handle handle) const;

  const std::list<CEnt*>& getEntityTbl() const { return m_entities; }
  /// The selected entities in order of selection.
  const std::list<CEnt*>& getSelectedEntityTbl() const { return m_selected; }
  CBlockXRefDepend& getDepend() const { return m_depend; }

  /// Makes the next `getBdry` recompute the extents. Call it after changing an entity in place or
  /// freezing a layer; a reader calls it before adding many entities, whose boxes are then not
  /// examined one by one.
  void invalidateBdry() const { m_bdryValid = false; }

  /// Union of the entities' extents, except those on frozen layers (layers that are merely off
  /// count); empty for an empty table. Linear in the entities after a removal or `invalidateBdry`,
  /// constant otherwise.
  const RECT_3D& getBdry() const;

  /// Recomputes the extents, those of the inserts first: a block may have changed in the meantime.
  void recalcBdry() const;

  /// Unregisters and deletes every entity. A view forgets them.
  void clearAll();

  /// Notifies the watcher (borrowed) of all changes from now on. Adding the first one is linear in
  /// the entities. A view sends no notifications.
  void watch(IEntTableWatcher& watcher) const;
  void unwatch(IEntTableWatcher& watcher) const;

  /// A number that increases along the drawing order, for entities of one table.
  static std::size_t getRank(const CEnt& ent) { return ent.m_pos; }

 private:
  friend class CEnt;
  class HandleIndex;

  using Node = std::list<CEnt*>::iterator;

  void insert(CEnt* ent, Node before, std::size_t rank, Slots& slots);
  void noteAdded(CEnt& ent) const;
  void tellReshaped(CEnt& ent) const;
  bool holds(const CEnt* ent) const { return ent != nullptr && ent->m_owner == &m_asOwner; }

  const vek0::detail::EntOwner m_asOwner{this, nullptr};
  CBlockXRefDepend& m_depend;
  std::list<CEnt*> m_entities;
  std::list<CEnt*> m_selected;
  IHandleGestor* m_gestor;
  mutable RECT_3D m_bdry;
  mutable bool m_bdryValid = true;
  bool m_isView = false;
  std::size_t m_nextRank = 0;
  mutable std::unique_ptr<HandleIndex> m_index;  // null until a handle is looked up
  mutable std::vector<IEntTableWatcher*> m_watchers;
};

/// Iterates over a table's entities, or its selection, in order. Entities may be added during the
/// iteration; the current one may be removed only through the iterator.
class VEK0_API CEntTable::CEntIterator {
 public:
  /// Starts at the first of all entities if `all`, otherwise of the selection.
  CEntIterator(CEntTable& table, bool all);
  virtual ~CEntIterator();
  CEntIterator(const CEntIterator&) = default;
  CEntIterator& operator=(const CEntIterator&) = delete;

  /// The current entity, null at the end.
  CEnt* operator*() const;
  CEntIterator& operator++();    ///< stays at the end
  CEntIterator operator++(int);  ///< likewise; answers the place before
  CEntIterator& operator--();    ///< stays on the first entity
  CEntIterator operator--(int);  ///< likewise; answers the place before

  /// Whether the iterator is past the last entity.
  bool isLast() const;
  /// Number of entities in the list.
  long get_no_entities() const;

  /// Removes the current entity from the list and advances to the next: from the table as
  /// `CEntTable::remove` does, or only from the selection.
  void remove();

 private:
  std::list<CEnt*>& list() const;

  CEntTable& m_table;
  bool m_all;
  std::list<CEnt*>::iterator m_current;
};
