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

/// Base of linetypes, layers, text styles and blocks: a name, flag bits whose meaning
/// each kind gives them, and how many entities use the item.
///
/// The use count goes down below zero when it is taken down too often: it is a hint
/// and never a reason to delete. An item knows the table it is in, so that renaming
/// keeps look-ups right and a deleted item leaves its table.
class VEK0_API CNamedItem {
 public:
  virtual ~CNamedItem();

  /// Equal names, ignoring case, and equal flags.
  bool operator==(const CNamedItem& other) const;
  bool operator!=(const CNamedItem& other) const { return !(*this == other); }

  const zim::WString& getName() const { return m_name; }
  /// Throws `std::bad_alloc` with nothing changed. Going back to a name that the item has had
  /// allocates nothing.
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
  /// Copies name and flags. The copy is in no table and nobody uses it.
  CNamedItem(const CNamedItem& src) : m_name(src.m_name), m_flags(src.m_flags) {}
  /// Takes name and flags over; the count and the place in a table stay.
  CNamedItem& operator=(const CNamedItem& src);

 private:
  friend class CNamedItemTableImp;
  friend class vek0::detail::NameIndex;

  zim::WString m_name;
  long m_flags;
  long m_entities = 0;
  CNamedItemTableImp* m_table = nullptr;
  std::size_t m_pos = 0;             // in the table's array
  std::size_t m_rank = 0;            // of addition: among equal names the lowest is found
  CNamedItem* m_sameNext = nullptr;  // links of the name index
  CNamedItem* m_samePrev = nullptr;
};

/// Ordered table of named items, the base of every table of a drawing.
///
/// The table owns its items. Names may repeat: look-up ignores letter case and finds
/// the item added first. Null, and an item that is in a table already, are not added.
/// Adding, removing, renaming and look-ups by name cost constant time on average, and so
/// do look-ups by position; removals in between make those logarithmic for a while.
///
/// Whatever adds or renames throws `std::bad_alloc` with nothing changed. Items that were taken
/// out come back without memory being needed: the table keeps the room that it had for them.
///
/// A copy is a view of its source: it names the same items as the source has at that
/// moment, owns nothing, cannot be added to or removed from, and is valid while the
/// source keeps its items and their names.
class VEK0_API CNamedItemTableImp {
 public:
  /// Where an item stands in its table: what it takes to put it there again.
  struct Place {
    const CNamedItem* next;  ///< null at the end
    std::size_t rank;        ///< of addition
  };

  /// Number of items.
  int size() const { return static_cast<int>(m_items.size() - m_holes); }

  /// Deletes every item. A view forgets them.
  void clearAll();

  /// Smallest n >= 1 such that no item is named exactly `prefix` followed by n. Letter
  /// case counts here, unlike in look-ups, and so does the spelling of the number:
  /// "A01" does not take 1. The first call for a prefix looks at every item, later
  /// ones cost constant time.
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
  /// Takes the item out; the caller owns it afterwards. Others are ignored.
  void remove(CNamedItem* item);
  /// Where an item of this table stands. Constant time but for long runs of holes.
  Place getPlace(const CNamedItem& item) const;
  /// Puts an item that was taken out back to where it stood, so that order and look-ups
  /// are as before. What stood next to it has to be back already, as it is when removals
  /// are undone last to first; where it is not, the item goes to the end. Costs what `add`
  /// does, unless the table was closed up meanwhile: then it is linear once in a while.
  void restore(CNamedItem* item, const Place& place);
  /// Takes all items out at once, for less than one by one; the caller owns them afterwards. A view
  /// only forgets them and answers none. In order.
  std::vector<CNamedItem*> removeAll();
  /// First item added whose name equals `name`, ignoring case; null when none does.
  CNamedItem* get(std::u16string_view name) const;
  /// Item at a position, unchecked.
  CNamedItem* operator[](int i) const;
  /// Whether the item is in this table itself, not in one that it is a view of.
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
  // The numbers that follow one prefix in the names of the table: the ranges from 1 on
  // that no name has, first to last, and how many names beyond its first each has. Names
  // seldom repeat, so numbering in sequence allocates nothing here.
  struct Numbers {
    std::unordered_map<int, int> repeated;
    std::map<int, int> free{
        {1, std::numeric_limits<int>::max()}
    };

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
  mutable std::size_t m_lookups = 0;  // through the holes, since they were last closed
  mutable std::unique_ptr<vek0::detail::RankTree> m_ranks;  // while holes are looked through
  std::size_t m_nextRank = 0;
  bool m_isView = false;
  vek0::detail::NameIndex m_byName;
  mutable std::unordered_map<zim::WString, Numbers, ExactHash, ExactEqual> m_numbers;
};
