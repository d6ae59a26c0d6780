#pragma once

#include <cstddef>
#include <list>
#include <memory>

#include "vek0core/entities/entrecord.h"
#include "vek0core/export.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/enttraits.h"
#include "vek0core/tables/handle.h"

class CBlock;
class CBlockFactory;
class CBlockTable;
class CData;
class CEntBaseMemento;
class CEntFactory;
class CEntInsertBase;
class CEntTable;
class CLayer;
class CLtype;
class CStyle;
class IEntDerivedMemento;
class IEntVisitor;

namespace vek0::detail {
class AttribsMemento;
class EntParts;

// Who owns an entity. Tables and blocks each contain one that refers to themselves, so that an
// entity needs a single pointer.
struct EntOwner {
  const CEntTable* table = nullptr;
  CBlock* block = nullptr;
};
}  // namespace vek0::detail

/// Base of everything that can be drawn: point, line, text, insert and so on.
///
/// An entity is created by a `CEntFactory` and belongs to the caller until it is added to a
/// `CEntTable` or a `CBlock`, and again after it is removed. It stores its owner, so removal needs
/// no search.
///
/// Layer, linetype and text style are shared items that count their users. Uses are counted by
/// `addTbls`, which tables call, not by the constructor; the counts mean "probably used" and are
/// never a reason to delete anything. Each of these pointers may be null; nothing is counted then.
///
/// Kinds are distinguished by `getType` and by visitors, not by RTTI. Coordinates are in drawing
/// units, angles in radians.
class VEK0_API CEnt : public IHandleEnt {
 public:
  /// Calls the visitor's overload for this object's own class.
  virtual void accept(IEntVisitor& visitor) = 0;

  /// Frees only the object itself: use counts are released by `removeTbls`.
  ~CEnt() override;

  /// Registers the entity: reserves its handle, then counts it as a user of its layer and linetype.
  /// Kinds with further parts register those too. The first use of an item may throw
  /// `std::bad_alloc`; nothing is registered then.
  virtual void addTbls(IHandleGestor& gestor) const;

  /// The inverse of `addTbls`.
  virtual void removeTbls(IHandleGestor& gestor) const;

  /// Restores the kind-specific state. `memento` must come from the same kind of entity; null has
  /// no effect. `data` is the drawing that contains the entity. May throw `std::bad_alloc` if there
  /// are parts or longer texts to restore; reverting to the previous state, with these parts, then
  /// needs no memory.
  virtual void setMemento(CData& data, const IEntDerivedMemento* memento) = 0;

  /// Replaces the entity's vertices, attributes or lines by those of a memento of its kind, where
  /// the objects differ, and returns the displaced ones, or null if there are none. `setMemento`
  /// begins with this and then sets their state, unless `EntParts::isAll`. Throws `std::bad_alloc`
  /// with nothing changed.
  virtual std::unique_ptr<vek0::detail::EntParts> replaceParts(CData& data,
                                                               const IEntDerivedMemento& memento);

  /// Text style; null for kinds other than text.
  virtual CStyle* getStyle() const;

  /// Extents on a display with pixels of `pixelSize` drawing units. Only inserts of fixed pixel
  /// size depend on that size.
  virtual void GetBdry(double pixelSize, RECT_3D& box) const;

  /// Replaces the text style; ignored by kinds without one.
  virtual void setStyle(CStyle* style);

  /// This entity as an insert (a hatch is one too), or null.
  virtual CEntInsertBase* getEntInsert();
  virtual const CEntInsertBase* getEntInsert() const;  ///< likewise

  /// Kind: 1 point, 2 line, 3 circle, 4 arc, 5 polyline, 6 text, 7 attribute
  /// definition, 8 insert (of an external reference too), 9 attribute, 10 hatch,
  /// 11 3D face, 12 insert of fixed pixel size.
  virtual short getType() const = 0;

  /// Recomputes the cached extents from the geometry.
  virtual void calcBdry() = 0;

  /// Makes the next `getBdry` recompute them.
  void invalidateBdry() { dirtyBdry(); }

  /// Snapshot of the kind-specific state. The caller owns it; null when there is no memory.
  virtual IEntDerivedMemento* createDerivedMemento() const = 0;

  CLayer* getLayer() const { return m_layer; }
  CLtype* getLtype() const { return m_ltype; }
  /// Color number: 0 is BYBLOCK, 256 BYLAYER.
  short getColor() const { return m_color; }
  long getUserType() const { return m_userType; }
  long getUserData() const { return m_userData; }

  /// Cached extents; the empty box for an entity that shows nothing. Kinds with lazy evaluation
  /// compute them here, so the first call after a change may be linear in the geometry.
  const RECT_3D& getBdry() const {
    if (m_bdryDirty) refreshBdry();
    return m_bdry;
  }

  /// Whether a table or a block owns it.
  bool isHeld() const { return m_owner != nullptr; }
  /// The block that owns it, or null.
  CBlock* getOwnerBlock() const { return m_owner != nullptr ? m_owner->block : nullptr; }

  /// Whether it is selected in its table.
  bool isSelected() const { return m_selected; }

  /// Moves the use count from the current item to the new one, whether or not the entity is
  /// registered: setting an unregistered entity's layer leaves the counts off by one. The setters
  /// of linetype and style behave the same.
  void setLayer(CLayer* layer);
  void setLtype(CLtype* ltype);  ///< see `setLayer`
  /// Also removes the true color, which would hide the new one. Throws `std::bad_alloc` with
  /// nothing changed if other traits are left.
  void setColor(short color);
  /// True color, lineweight, opacity, visibility, linetype scale and thickness. Valid until they
  /// change.
  const ENT_TRAITS& getTraits() const { return m_traits.get(); }
  /// Throws `std::bad_alloc` with nothing changed.
  void setTraits(const ENT_TRAITS& traits) { m_traits = vek0::detail::EntTraitsRef(traits); }
  /// Copies what no factory takes: traits and user info. Allocates nothing.
  void copyExtras(const CEnt& src);
  /// The kind of record in the file that it comes from. Copies are `EntRecord::Own`,
  /// but for inserts of a `CBlock::isOfRecord`, which only stand for a record.
  EntRecord getRecord() const { return static_cast<EntRecord>(m_record); }
  void setRecord(EntRecord record) {
    static_assert(kEntRecords <= 32);
    m_record = static_cast<unsigned char>(record) & 31;
  }
  void setUserType(long type) { m_userType = type; }
  void setUserData(long data) { m_userData = data; }
  /// Sets both words of host data at once.
  void setUserInfo(long type, long data);

  /// Translates the cached extents without examining the geometry. An empty box stays empty, and
  /// stale extents stay stale.
  void moveBdry(const PNT_3D& delta);

  /// Snapshot of layer, linetype, color and traits. The caller owns it; null when out of memory.
  CEntBaseMemento* createBaseMemento() const;

  /// Restores them and updates the counts as `setLayer` does. Allocates nothing.
  void setMemento(const CEntBaseMemento* memento);
  /// The same, and `memento` becomes one of what the entity was. Allocates nothing.
  void exchange(CEntBaseMemento& memento);

  /// Whether the entity's state equals that of the memento.
  bool operator==(const CEntBaseMemento& memento) const;
  bool operator!=(const CEntBaseMemento& memento) const;
  bool operator==(const IEntDerivedMemento& memento) const;
  bool operator!=(const IEntDerivedMemento& memento) const;

  CEnt(const CEnt&) = delete;
  CEnt& operator=(const CEnt&) = delete;

 protected:
  friend class CEntFactory;
  friend class CEntTable;
  friend class vek0::detail::AttribsMemento;
  friend class CBlock;

  /// Position in a list of entities; the tables store it in each of their entities.
  using Node = std::list<CEnt*>::iterator;

  CEnt(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color);

  /// Copies the extents, layer, linetype, color, traits and user info. The copy is in no table, is
  /// not selected, and is not counted.
  CEnt(const CEnt& src, vek0::Handle handle);

  /// New heap copy with the given handle; the caller owns it, null when out of memory. The
  /// factories and the table are for kinds with parts.
  virtual CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
                      CBlockTable& blockTable, vek0::Handle handle) const = 0;

  /// Stores newly computed extents; the last step of every `calcBdry`.
  void setBdry(const RECT_3D& box) {
    const bool isNews = m_watched && !m_bdryDirty && m_bdry != box;
    m_bdry = box;
    m_bdryDirty = false;
    if (isNews) tellWatchers();
  }

  /// Marks the extents as stale, to be recomputed on demand.
  void dirtyBdry() {
    const bool isNews = m_watched && !m_bdryDirty;
    m_bdryDirty = true;
    if (isNews) tellWatchers();
  }
  bool isBdryDirty() const { return m_bdryDirty; }

  /// A byte for use by the derived class; initially 0. A separate member would add 16 bytes to the
  /// allocation of every line. It is not copied.
  unsigned char getOwnByte() const { return m_ownByte; }
  void setOwnByte(unsigned char value) { m_ownByte = value; }

  /// Node in the owning table's selection list; meaningful only while selected.
  Node getSelectStatus() const { return m_selectStatus; }
  void setSelectStatus(Node node);
  /// Clears the selection flag without touching any list.
  void unselect() { m_selected = false; }

 private:
  void refreshBdry() const;
  void tellWatchers();

  RECT_3D m_bdry;
  Node m_selectStatus;
  CLayer* m_layer;
  CLtype* m_ltype;
  long m_userType = 0;
  long m_userData = 0;
  vek0::detail::EntTraitsRef m_traits;
  short m_color;
  unsigned char m_ownByte = 0;
  // One byte, which the traits need: a line fills its allocation.
  bool m_bdryDirty : 1 = false;
  bool m_selected : 1 = false;
  bool m_watched : 1 = false;  // in a table whose watchers are notified of changed extents
  unsigned char m_record : 5 = 0;

  // A drawing has millions of entities, and removing one must not search: each stores the table or
  // block that owns it (null while the caller does) and its position there.
  const vek0::detail::EntOwner* m_owner = nullptr;
  Node m_node;            // in a table: its list node
  std::size_t m_pos = 0;  // in a block: its index; in a table: its rank in order of addition
};
