// A hash table with open addressing, whose slots hold the first item of each name; equal names are
// chained by rank through links in the items. It allocates only in `reserveOne`, so that inserting
// and removing cannot fail: tables rely on that to roll back.
#include "vek0core/tables/nameindex.h"

#include "vek0core/tables/nameditem.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kFirstSlots = 16;

}  // namespace

// The slot of that name, or the free one where it would be inserted. There is always a free slot.
std::size_t NameIndex::locate(std::size_t hash, std::u16string_view name) const {
  std::size_t slot = home(hash);
  while (m_slots[slot].first) {
    const bool same =
        m_slots[slot].hash == hash && zim::equalsIgnoreCase(m_slots[slot].first->m_name, name);
    if (same) return slot;
    slot = next(slot);
  }
  return slot;
}

CNamedItem* NameIndex::find(std::u16string_view name) const {
  if (m_used == 0) return nullptr;
  return m_slots[locate(zim::hashIgnoreCase(name), name)].first;
}

void NameIndex::reserveOne() {
  if ((m_used + 1) * 8 > m_slots.size() * 5) grow();
}

void NameIndex::grow() {
  std::vector<Slot> old(m_slots.empty() ? kFirstSlots : 2 * m_slots.size());
  old.swap(m_slots);
  for (const Slot& moved : old) {
    if (!moved.first) continue;
    std::size_t slot = home(moved.hash);
    while (m_slots[slot].first) slot = next(slot);
    m_slots[slot] = moved;
  }
}

void NameIndex::insert(CNamedItem* item) {
  const std::size_t hash = zim::hashIgnoreCase(item->m_name);
  Slot& slot = m_slots[locate(hash, item->m_name)];
  if (!slot.first) ++m_used;
  slot.hash = hash;
  chain(slot.first, item);
}

// The chain is ordered by rank. Its first item has the last one as its predecessor, so that
// appending, the usual case, needs no traversal.
void NameIndex::chain(CNamedItem*& first, CNamedItem* item) {
  item->m_sameNext = nullptr;
  item->m_samePrev = item;
  if (!first) {
    first = item;
    return;
  }
  CNamedItem* before = first->m_samePrev;
  while (before->m_rank > item->m_rank && before != first) before = before->m_samePrev;
  if (before->m_rank > item->m_rank) {  // before all others
    item->m_sameNext = first;
    item->m_samePrev = first->m_samePrev;
    first->m_samePrev = item;
    first = item;
    return;
  }
  item->m_sameNext = before->m_sameNext;
  item->m_samePrev = before;
  (before->m_sameNext ? before->m_sameNext : first)->m_samePrev = item;
  before->m_sameNext = item;
}

void NameIndex::remove(CNamedItem* item) {
  const std::size_t slot = locate(zim::hashIgnoreCase(item->m_name), item->m_name);
  CNamedItem*& first = m_slots[slot].first;
  if (item == first) {
    first = item->m_sameNext;
    if (first) {
      first->m_samePrev = item->m_samePrev;
    } else {
      freeSlot(slot);
    }
  } else {
    item->m_samePrev->m_sameNext = item->m_sameNext;
    (item->m_sameNext ? item->m_sameNext : first)->m_samePrev = item->m_samePrev;
  }
}

// Later slots of the same run are shifted back, so that no look-up finds a gap before its slot.
void NameIndex::freeSlot(std::size_t slot) {
  --m_used;
  for (std::size_t from = next(slot); m_slots[from].first; from = next(from)) {
    const std::size_t away = (from - home(m_slots[from].hash)) & (m_slots.size() - 1);
    if (away < ((from - slot) & (m_slots.size() - 1))) continue;
    m_slots[slot] = m_slots[from];
    slot = from;
  }
  m_slots[slot] = Slot();
}

void NameIndex::clear() {
  m_slots.clear();
  m_used = 0;
}

}  // namespace vek0::detail
