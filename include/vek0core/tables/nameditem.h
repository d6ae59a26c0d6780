#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/tables/nameindex.h"
#include "zim0lang/wstring.h"

class CNamedItemTableImp;

namespace vek0::detail {
class RankTree;
}

/// Base of linetypes, layers, text styles and blocks: a name, flag bits with a meaning specific to
/// the kind, and the number of entities that use the item.
///
/// The use count becomes negative if it is decremented too often: it is a hint and never a reason
/// to delete. An item holds a pointer to its table, so that renaming keeps look-ups correct and
/// deleting an item removes it from its table.
class VEK0_API CNamedItem {
 public:
  virtual ~CNamedItem();

  /// Equal names, ignoring case, and equal flags.
  bool operator==(const CNamedItem& other) const;
  bool operator!=(const CNamedItem& other) const { return !(*this == other); }

  const zim::WString& getName() const { return m_name; }
  /// Throws `std::bad_alloc` with nothing changed. Reverting to an earlier name does not allocate.
  void setName(const zim::WString& name);

  long getFlags() const { return m_flags; }
  void setFlags(long flags) { m_flags = flags; }
  /// Sets the bits of `mask` when `on`, else clears them.
  void setFlags(long mask, bool on) { m_flags = on ? m_flags | mask : m_flags & ~mask; }

  /// Whether a table owns it.
  bool isHeld() const { return m_table != nullptr; }

  /// Number of entities that use the item, see above.
  long getEntities() const { return m_entities; }
  void addEntity() { ++m_entities; }
  void decEntity() { --m_entities; }
  void zeroEntities() { m_entities = 0; }

 protected:
  CNamedItem(const zim::WString& name, long flags) : m_name(name), m_flags(flags) {}
  /// Copies name and flags. The copy is in no table and has no users.
  CNamedItem(const CNamedItem& src) : m_name(src.m_name), m_flags(src.m_flags) {}
  /// Copies name and flags; the use count and the position in a table are unchanged.
  CNamedItem& operator=(const CNamedItem& src);

 private:
  friend class CNamedItemTableImp;
  friend class vek0::detail::NameIndex;

  zim::WString m_name;
  long m_flags;
  long m_entities = 0;
  CNamedItemTableImp* m_table = nullptr;
  std::size_t m_pos = 0;             // in the table's array
  std::size_t m_rank = 0;            // order of addition: of equal names, look-up finds the lowest
  CNamedItem* m_sameNext = nullptr;  // links of the name index
  CNamedItem* m_samePrev = nullptr;
};

/// Ordered table of named items, the base of every table of a drawing.
///
/// The table owns its items. Names may repeat: look-up ignores letter case and finds the item added
/// first. Adding null, or an item that is already in a table, has no effect. Adding, removing,
/// renaming and look-ups by name cost constant time on average, and so do look-ups by position;
/// removals in between temporarily make the latter logarithmic.
///
/// Adding and renaming may throw `std::bad_alloc`, with nothing changed. Restoring removed items
/// needs no memory: the table keeps the space reserved for them.
///
/// A copy is a view of its source: it lists the items that the source has at that moment, owns
/// nothing, cannot be modified, and is valid while the source keeps its items and their names.
class VEK0_API CNamedItemTableImp {
 public:
  /// The position of an item in its table, as needed to restore it there.
  struct Place {
    const CNamedItem* next;  ///< null at the end
    std::size_t rank;        ///< of addition
  };

  /// Number of items.
  int size() const { return static_cast<int>(m_items.size() - m_holes); }

  /// Deletes every item. A view forgets them.
  void clearAll();

  /// Smallest n >= 1 such that no item is named exactly `prefix` followed by n. Unlike look-ups,
  /// this is case-sensitive, and the spelling of the number matters: "A01" does not occupy 1. The
  /// first call for a prefix is linear in the items, later ones take constant time.
  int getProgNum(const zim::WString& prefix) const;
  /// `prefix` followed by that number.
  zim::WString GetProgName(const zim::WString& prefix) const;

 protected:
  CNamedItemTableImp();
  CNamedItemTableImp(const CNamedItemTableImp& src);
  CNamedItemTableImp& operator=(const CNamedItemTableImp&) = delete;
  ~CNamedItemTableImp();

  /// Appends the item, which then belongs to the table.
  void add(CNamedItem* item);
  /// Removes the item; the caller owns it afterwards. Items of other tables are ignored.
  void remove(CNamedItem* item);
  /// The position of an item of this table. Constant time but for long runs of holes.
  Place getPlace(const CNamedItem& item) const;
  /// Puts a removed item back at its former position, so that order and look-ups are as before. Its
  /// former successor must be back already, as it is when removals are undone last to first;
  /// otherwise the item is appended. Costs as much as `add`, unless the table was compacted
  /// meanwhile: then it is occasionally linear.
  void restore(CNamedItem* item, const Place& place);
  /// Removes all items at once, which is cheaper than one by one, and returns them in order; the
  /// caller owns them afterwards. A view merely forgets its items and returns none.
  std::vector<CNamedItem*> removeAll();
  /// First item added whose name equals `name`, ignoring case; null if there is none.
  CNamedItem* get(std::u16string_view name) const;
  /// Item at a position, unchecked.
  CNamedItem* operator[](int i) const;
  /// Whether the item is in this table itself, rather than in the source of this view.
  bool contains(const CNamedItem* item) const { return item && item->m_table == this; }
  bool isView() const { return m_isView; }

 private:
  friend class CNamedItem;

  struct ExactHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view text) const {
      return std::hash<std::u16string_view>()(text);
    }
  };
  struct ExactEqual {
    using is_transparent = void;
    bool operator()(std::u16string_view a, std::u16string_view b) const { return a == b; }
  };
  // The numbers that follow one prefix in the names of the table: the unused ranges from 1 on,
  // first to last, and for each number the count of names beyond the first. Names seldom repeat, so
  // sequential numbering allocates nothing here.
  struct Numbers {
    std::unordered_map<int, int> repeated;
    std::map<int, int> free{{1, std::numeric_limits<int>::max()}};

    void take(int number);
    void give(int number);
    int smallestFree() const { return free.begin()->first; }
  };

  using NumberChange = void (Numbers::*)(int);

  void rename(CNamedItem* item, const zim::WString& name);
  void changeNumbers(std::u16string_view name, NumberChange change);
  void compact() const;
  std::size_t slotFor(const Place& place);

  mutable std::vector<CNamedItem*> m_items;  // null where an item was removed
  mutable std::size_t m_holes = 0;
  mutable std::size_t m_lookups = 0;  // look-ups through the holes since they were last closed
  mutable std::unique_ptr<vek0::detail::RankTree> m_ranks;  // only while there are holes to skip
  std::size_t m_nextRank = 0;
  bool m_isView = false;
  vek0::detail::NameIndex m_byName;
  mutable std::unordered_map<zim::WString, Numbers, ExactHash, ExactEqual> m_numbers;
};
