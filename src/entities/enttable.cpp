// The entities of model space. They are in a linked list, and each stores its node, owner and rank,
// so that removing, restoring and testing for membership need no search. The index by handle is
// built on the first look-up and maintained from then on. Extents grow as entities are added, and
// are recomputed after a removal, which may have shrunk them.
#include "vek0core/entities/enttable.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <new>
#include <unordered_map>
#include <utility>

#include "vek0core/tables/layer.h"

namespace {

constexpr long kFrozen = 1;  // flag of a layer

bool isFrozen(const CEnt& ent) {
  return ent.getLayer() != nullptr && (ent.getLayer()->getFlags() & kFrozen) != 0;
}

}  // namespace

/// Entities by handle; among equal handles, of which a file may contain any number, by rank in the
/// table.
class CEntTable::HandleIndex {
 public:
  void add(CEnt* ent) {
    const vek0::Handle handle = ent->GetHandle();
    if (handle == 0) return;
    const auto [at, isNew] = m_first.try_emplace(handle, ent);
    if (isNew) return;
    // The first in drawing order is the one to be found by its handle.
    if (ent->m_pos < at->second->m_pos) std::swap(ent, at->second);
    m_others.emplace(std::make_pair(handle, ent->m_pos), ent);
  }

  void remove(const CEnt* ent) {
    const vek0::Handle handle = ent->GetHandle();
    const auto first = m_first.find(handle);
    if (first == m_first.end()) return;
    if (first->second != ent) {
      m_others.erase({handle, ent->m_pos});
      return;
    }
    // The next entity with the handle takes its place.
    const auto next = m_others.lower_bound({handle, 0});
    if (next == m_others.end() || next->first.first != handle) {
      m_first.erase(first);
      return;
    }
    first->second = next->second;
    m_others.erase(next);
  }

  CEnt* get(vek0::Handle handle) const {
    const auto first = m_first.find(handle);
    return first == m_first.end() ? nullptr : first->second;
  }

 private:
  std::unordered_map<vek0::Handle, CEnt*> m_first;
  std::map<std::pair<long, std::size_t>, CEnt*> m_others;
};

CEntTable::CEntTable(IHandleGestor& gestor, CBlockXRefDepend& depend)
    : m_depend(depend), m_gestor(&gestor) {
  m_bdry.initRegion();
}

CEntTable::CEntTable(const CEntTable& src)
    : m_depend(src.m_depend),
      m_entities(src.m_entities),
      m_selected(src.m_selected),
      m_gestor(src.m_gestor),
      m_bdry(src.m_bdry),
      m_bdryValid(src.m_bdryValid),
      m_isView(true) {}

CEntTable::~CEntTable() { clearAll(); }

void CEntTable::add(CEnt* ent) {
  Slots slots(1);
  add(ent, slots);
}

void CEntTable::add(CEnt* ent, Slots& slots) {
  if (ent == nullptr || ent->isHeld() || m_isView) return;
  insert(ent, m_entities.end(), m_nextRank, slots);
  ++m_nextRank;
}

CEntTable::Place CEntTable::getPlace(const CEnt& ent) const {
  const auto next = std::next(ent.m_node);
  return {next != m_entities.end() ? *next : nullptr, ent.m_pos};
}

void CEntTable::restore(CEnt* ent, const Place& place) {
  Slots slots(1);
  restore(ent, place, slots);
}

void CEntTable::restore(CEnt* ent, const Place& place, Slots& slots) {
  if (ent == nullptr || ent->isHeld() || m_isView) return;
  const auto next = holds(place.next) ? Node(place.next->m_node) : m_entities.end();
  // The rank must still lie between those of its neighbors, or the order would contradict the
  // ranks.
  const bool fits = (next == m_entities.end() || place.rank < (*next)->m_pos) &&
                    (next == m_entities.begin() || (*std::prev(next))->m_pos < place.rank);
  if (!fits) return add(ent, slots);
  insert(ent, next, place.rank, slots);
}

void CEntTable::insert(CEnt* ent, Node before, std::size_t rank, Slots& slots) {
  ent->addTbls(*m_gestor);  // first: nothing after it throws
  m_entities.splice(before, slots, slots.begin());
  ent->m_node = std::prev(before);
  *ent->m_node = ent;
  ent->m_owner = &m_asOwner;
  ent->m_pos = rank;
  noteAdded(*ent);
  // Marked, so that unwatched entities report nothing and cost nothing.
  ent->m_watched = !m_watchers.empty();
  for (IEntTableWatcher* watcher : m_watchers) watcher->added(*ent);
}

// Caches for which memory has run out are rebuilt on the next request.
void CEntTable::noteAdded(CEnt& ent) const {
  try {
    if (m_index != nullptr) m_index->add(&ent);
  } catch (const std::bad_alloc&) {
    m_index.reset();
  }
  try {
    if (m_bdryValid && !isFrozen(ent)) m_bdry.updateRegion(ent.getBdry());
  } catch (const std::bad_alloc&) {
    m_bdryValid = false;
  }
}

void CEntTable::remove(CEnt* ent) {
  Slots slots;
  remove(ent, slots);
}

void CEntTable::remove(CEnt* ent, Slots& slots) {
  if (!holds(ent)) return;
  unselect(ent);
  // The entity may have determined a side of the box.
  m_bdryValid = false;
  if (m_index != nullptr) m_index->remove(ent);
  slots.splice(slots.begin(), m_entities, ent->m_node);
  ent->m_owner = nullptr;
  ent->m_watched = false;
  ent->removeTbls(*m_gestor);
  for (IEntTableWatcher* watcher : m_watchers) watcher->removed(*ent);
}

void CEntTable::reorder(const std::vector<CEnt*>& order) {
  if (m_isView) return;
  const auto first =
      std::mismatch(order.begin(), order.end(), m_entities.begin(), m_entities.end()).first;
  if (first == order.end()) return;
  // Of equal handles, it finds the first in drawing order.
  m_index.reset();
  for (auto at = first; at != order.end(); ++at) {
    CEnt* ent = *at;
    if (!holds(ent)) continue;
    for (IEntTableWatcher* watcher : m_watchers) watcher->removed(*ent);
    m_entities.splice(m_entities.end(), m_entities, ent->m_node);
    ent->m_pos = m_nextRank++;
    for (IEntTableWatcher* watcher : m_watchers) watcher->added(*ent);
  }
}

void CEntTable::select(CEnt* ent) {
  if (!holds(ent) || ent->isSelected()) return;
  ent->setSelectStatus(m_selected.insert(m_selected.end(), ent));
}

void CEntTable::unselect(CEnt* ent) {
  if (!holds(ent) || !ent->isSelected()) return;
  m_selected.erase(ent->getSelectStatus());
  ent->unselect();
}

void CEntTable::select(CEnt* ent, bool on) { on ? select(ent) : unselect(ent); }

void CEntTable::unselectAll() {
  if (m_isView) return;
  for (CEnt* ent : m_selected) ent->unselect();
  m_selected.clear();
}

CEnt* CEntTable::get(vek0::Handle handle) const {
  if (handle == 0) {
    for (CEnt* ent : m_entities) {
      if (ent->GetHandle() == 0) return ent;
    }
    return nullptr;
  }
  if (m_index == nullptr) {
    auto index = std::make_unique<HandleIndex>();
    for (CEnt* ent : m_entities) index->add(ent);
    m_index = std::move(index);
  }
  return m_index->get(handle);
}

const RECT_3D& CEntTable::getBdry() const {
  if (!m_bdryValid) recalcBdry();
  return m_bdry;
}

void CEntTable::recalcBdry() const {
  m_bdry.initRegion();
  for (CEnt* ent : m_entities) {
    if (isFrozen(*ent)) continue;
    // The content of an insert may have changed without notice.
    if (ent->getEntInsert() != nullptr) ent->calcBdry();
    m_bdry.updateRegion(ent->getBdry());
  }
  m_bdryValid = true;
}

void CEntTable::clearAll() {
  unselectAll();
  m_index.reset();
  // Before the entities are deleted, because watchers may still refer to them.
  for (IEntTableWatcher* watcher : m_watchers) watcher->cleared();
  if (!m_isView) {
    for (CEnt* ent : m_entities) {
      ent->removeTbls(*m_gestor);
      delete ent;
    }
  }
  m_entities.clear();
  m_selected.clear();
  m_bdry.initRegion();
  m_bdryValid = true;
}

void CEntTable::watch(IEntTableWatcher& watcher) const {
  if (m_isView) return;
  m_watchers.push_back(&watcher);
  if (m_watchers.size() == 1)
    for (CEnt* ent : m_entities) ent->m_watched = true;
}

void CEntTable::unwatch(IEntTableWatcher& watcher) const {
  m_watchers.erase(std::remove(m_watchers.begin(), m_watchers.end(), &watcher), m_watchers.end());
  if (!m_watchers.empty() || m_isView) return;
  for (CEnt* ent : m_entities) ent->m_watched = false;
}

void CEntTable::tellReshaped(CEnt& ent) const {
  for (IEntTableWatcher* watcher : m_watchers) watcher->reshaped(ent);
}

CEntTable::CEntIterator::CEntIterator(CEntTable& table, bool all)
    : m_table(table), m_all(all), m_current(list().begin()) {}

CEntTable::CEntIterator::~CEntIterator() = default;

std::list<CEnt*>& CEntTable::CEntIterator::list() const {
  return m_all ? m_table.m_entities : m_table.m_selected;
}

CEnt* CEntTable::CEntIterator::operator*() const { return isLast() ? nullptr : *m_current; }

CEntTable::CEntIterator& CEntTable::CEntIterator::operator++() {
  if (!isLast()) ++m_current;
  return *this;
}

CEntTable::CEntIterator CEntTable::CEntIterator::operator++(int) {
  CEntIterator before(*this);
  ++*this;
  return before;
}

CEntTable::CEntIterator& CEntTable::CEntIterator::operator--() {
  if (m_current != list().begin()) --m_current;
  return *this;
}

CEntTable::CEntIterator CEntTable::CEntIterator::operator--(int) {
  CEntIterator before(*this);
  --*this;
  return before;
}

bool CEntTable::CEntIterator::isLast() const { return m_current == list().end(); }

long CEntTable::CEntIterator::get_no_entities() const { return static_cast<long>(list().size()); }

void CEntTable::CEntIterator::remove() {
  CEnt* ent = **this;
  ++*this;
  m_all ? m_table.remove(ent) : m_table.unselect(ent);
}
