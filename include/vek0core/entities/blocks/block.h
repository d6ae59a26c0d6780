#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

#include "vek0core/entities/ent.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/nameditem.h"

class CBlockMemento;
class CBlockXRef;
class CEnt;
class CEntAttdef;
class CEntInsertBase;
class IHandleGestor;

namespace vek0::detail {
struct BlockGraphItem;
class RankTree;
}  // namespace vek0::detail

/// A named group of entities, displayed by inserts.
///
/// The block owns its entities and stores them relative to its base point: `add` moves them there.
/// Invalid operations are ignored, because each entity knows its owner: null, adding an entity that
/// a table or block already holds, removing one that this block does not hold.
///
/// Extents cover every entity except attribute definitions. They are computed on demand, those of
/// inserted blocks first, whatever the nesting depth. Flag bit 2 is set while the block holds an
/// attribute definition.
///
/// `add` and `remove` change neither counts nor the block graph of a table that the block is in:
/// edit such a block through `CBlockTable::Redefine`, or call `CBlockTable::updateBlock`
/// afterwards.
class VEK0_API CBlock : public CNamedItem {
 public:
  class CAttdefIterator;
  class CInsertIterator;

  // Bits of the flags.
  static constexpr long kAnonymous = 1;   ///< private to its inserting object: a hatch, an array
  static constexpr long kHasAttdefs = 2;  ///< see the class
  static constexpr long kOfRecord = 256;  ///< see `isOfRecord`; not in files

  /// Copies name, base point, flags and user info. The copy has no entities, hence no flag bit 2,
  /// and is in no table.
  CBlock(const CBlock& src);
  /// Copies the same state and keeps its own entities.
  CBlock& operator=(const CBlock& src);
  /// Deletes the entities. The block is removed from its table and graph.
  ~CBlock() override;

  /// Takes ownership of the entity, moves it by the negated base point and appends it. Throws
  /// `std::bad_alloc` with nothing changed, as `restore` does; the caller then still owns the
  /// entity.
  virtual void add(CEnt* ent);

  /// Removes the entity; the caller owns it afterwards. It is not moved back: to undo, pass it to
  /// `restore`, since `add` would move it a second time. Constant time on average, and so is the
  /// indexed access that follows.
  virtual void remove(CEnt* ent);

  /// Whether this is a `CBlockXRef`.
  virtual bool isXRef() const;
  /// The external reference whose content this block is a part of; null in the drawing.
  const CBlockXRef* getContentOf() const { return m_contentOf; }

  /// Whether it holds the entities of a layout's sheet (`CLayout`). Such a block belongs to its
  /// layout: it is not listed among the blocks of the drawing, and no insert shows it.
  bool isSheet() const { return m_isSheet; }
  void setSheet(bool isSheet) { m_isSheet = isSheet; }  ///< for `CLayout`

  /// Whether it is the content of a dimension: its name is "*D" and a number.
  bool isOfDimension() const;

  /// Whether it is private to inserts that stand for records of another kind: it holds the pieces
  /// of one record, or is empty and named after a kind that is not supported (see
  /// `CFileDXFIPolicy::wholeRecords`). No file has it.
  bool isOfRecord() const { return (getFlags() & kOfRecord) != 0; }

  /// Appends an entity that is already relative to the base point.
  void restore(CEnt* ent);

  /// The position of an entity of this block, as needed to restore it there. Constant time but for
  /// long runs of holes.
  struct Place {
    const CEnt* next;  ///< null at the end
  };
  Place getPlace(const CEnt& ent) const;
  /// Puts a removed entity back at its former position, unmoved. Its former successor must be back
  /// already, as it is when removals are undone last to first; otherwise the entity is appended.
  /// Costs as much as the other `restore`, unless the block was compacted meanwhile: then it is
  /// occasionally linear.
  void restore(CEnt* ent, const Place& place);

  /// Recomputes the extents over all entities, attribute definitions included, which all other
  /// functions exclude.
  void calcBdry();

  /// Makes the next `getBdry` recompute the extents, of this block and of every block that inserts
  /// it. Call it after changing an entity in place.
  void invalidateBdry();

  /// Sets base point and flags, and releases the entities to the caller: make a memento first
  /// unless you already have a list of them.
  void redefine(const PNT_3D& base, long flags);
  /// Releases all entities without deleting them; the extents become empty.
  void clearEntities();
  /// Deletes all entities.
  void disposeEntities();

  /// A process-wide unique number.
  std::uint64_t getSerial() const { return m_serial; }

  /// A number that increases with every change of the block, of its extents and of those of the
  /// blocks that it inserts, provided `invalidateBdry` is called. Changes count only after a
  /// `getBdry`. For code that caches data computed from the content.
  std::uint64_t getEdition() const { return m_edition; }

  std::size_t size() const { return m_entities.size() - m_noHoles; }
  /// Entity `i` in order of addition; unchecked.
  CEnt* operator[](unsigned i) { return at(i); }
  const CEnt* operator[](unsigned i) const { return at(i); }

  const PNT_3D& getPnt() const { return m_base; }
  /// Relative to the base point; empty for a block that shows nothing.
  const RECT_3D& getBdry() const;
  RECT_3D& getBdry();  ///< likewise

  int GetUserType() const { return m_userType; }
  int GetUserData() const { return m_userData; }
  void SetUserType(int type) { m_userType = type; }
  void SetUserData(int data) { m_userData = data; }
  /// Sets both words of host data at once.
  void SetUserInfo(int type, int data);

  /// Registers every entity, last to first (`CEnt::addTbls`). Throws `std::bad_alloc` with none
  /// registered.
  void insertBlock(IHandleGestor& gestor) const;
  /// The inverse of `insertBlock`.
  void removeBlock(IHandleGestor& gestor) const;

  /// Snapshot of base point, flags and the list of entities. The caller owns it; null when out of
  /// memory.
  CBlockMemento* createMemento() const;
  /// Restores the snapshot; entities go back unmoved. Entities that the block releases belong to
  /// the caller; entities that meanwhile have another owner stay there. Counts and block graph are
  /// not updated: see `CBlockTable::setMemento`.
  void setMemento(const CBlockMemento& memento);
  /// The same; `memento` receives the block's previous state. Does not allocate.
  void exchange(CBlockMemento& memento);
  bool operator==(const CBlockMemento& memento) const;
  bool operator!=(const CBlockMemento& memento) const { return !(*this == memento); }
  using CNamedItem::operator==;
  using CNamedItem::operator!=;

 protected:
  friend class CBlockFactory;
  explicit CBlock(const zim::WString& name);
  CBlock(const zim::WString& name, const PNT_3D& base, long flags);

  /// Replaces the entities, releasing the old ones. Does not allocate.
  void swapEntities(std::vector<CEnt*>& entities);

  /// Sets the base point without moving the entities.
  void setOrigin(const PNT_3D& base) { m_base = base; }

 private:
  friend class CBlockGraph;
  friend class CBlockMemento;
  friend class CBlockXRef;
  class BdryWalk;

  static std::uint64_t nextSerial();
  static void disown(CEnt& ent);
  CEnt* at(std::size_t i) const;
  std::size_t firstRaw(std::size_t from) const;
  void compact() const;
  void append(CEnt* ent);
  void own(CEnt& ent, std::size_t pos);
  bool isBdryStale() const { return m_bdryStale || m_noBoxed < m_entities.size(); }
  void refreshBdry() const;
  void growBdry();
  void makeRoom(std::size_t more);
  void tellUsers();
  bool hearOfChange();
  void dirtyInserts();

  const std::uint64_t m_serial = nextSerial();
  std::uint64_t m_edition = 0;
  mutable RECT_3D m_bdry;
  PNT_3D m_base;
  int m_userType = 0;
  int m_userData = 0;

  const vek0::detail::EntOwner m_asOwner{nullptr, this};
  // Removed entities leave holes, so that removal shifts nothing; each entity stores its index.
  mutable std::vector<CEnt*> m_entities;
  mutable std::size_t m_noHoles = 0;
  mutable std::size_t m_noLookups = 0;  // look-ups through the holes since the last compaction
  mutable std::unique_ptr<vek0::detail::RankTree> m_ranks;  // only while there are holes to skip
  std::size_t m_noAttdefs = 0;

  // The extents, unless stale, cover the entities before this index; so adding one costs nothing
  // until the extents are requested.
  mutable std::size_t m_noBoxed = 0;
  mutable bool m_bdryStale = false;
  bool m_isSheet = false;
  mutable bool m_bdryBusy = false;   // being computed: stops the recursion of a block that inserts
                                     // itself
  mutable bool m_bdryAsked = false;  // extents were requested since the last notification of the
                                     // users
  // While being computed: the next entity to look at, and the block that it is computed for.
  std::size_t m_bdryNext = 0;
  CBlock* m_bdryFrom = nullptr;

  vek0::detail::BlockGraphItem* m_item = nullptr;  // its node in a table's graph
  const CBlockXRef* m_contentOf = nullptr;
};

/// Iterates over a block's attribute definitions in order. Changing the block invalidates the
/// iterator.
class VEK0_API CBlock::CAttdefIterator {
 public:
  explicit CAttdefIterator(const CBlock& block);

  /// The current one, null at the end.
  CEntAttdef* operator*() const;
  CAttdefIterator& operator++();    ///< stays at the end
  CAttdefIterator operator++(int);  ///< likewise; answers the place before

 private:
  void skip();

  const CBlock* m_block;
  std::size_t m_raw = 0;
};

/// Iterates over a block's inserts (hatches included) in order, likewise.
class VEK0_API CBlock::CInsertIterator {
 public:
  explicit CInsertIterator(const CBlock& block);

  CEntInsertBase* operator*() const;  ///< null at the end
  CInsertIterator& operator++();      ///< stays at the end
  CInsertIterator operator++(int);    ///< likewise; answers the place before

 private:
  void skip();

  const CBlock* m_block;
  std::size_t m_raw = 0;
};

/// Undo snapshot of a block: base point, flags and the list of its entities. It does not own the
/// entities, which must outlive it.
class VEK0_API CBlockMemento {
 public:
  virtual ~CBlockMemento();

  bool operator==(const CBlock& block) const { return block == *this; }
  bool operator!=(const CBlock& block) const { return block != *this; }

  const std::vector<CEnt*>& getEntities() const { return m_entities; }

  /// Deletes the listed entities that no block or table holds: for discarding the undo data of a
  /// redefinition, or of a block's creation. Entities still in the block are not affected.
  void destroyEntity();

 private:
  friend class CBlock;
  friend class CBlockTable;
  explicit CBlockMemento(const CBlock& block);
  // The memento of a state that a block is about to take.
  CBlockMemento(const PNT_3D& base, long flags, const std::list<CEnt*>& entities);

  PNT_3D m_base;
  long m_flags;
  std::vector<CEnt*> m_entities;
};
