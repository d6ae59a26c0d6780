// Used handles are bits in pages, because files number their objects densely. Pages are never
// removed: returning to an earlier state must not need memory.
#include "vek0core/drawing/handlemanager.h"

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

#include "vek0core/drawing/everyent.h"
#include "vek0core/entities/entpolyline.h"

namespace {

// The seed of a file must be above all handles.
constexpr vek0::Handle kHighest = std::numeric_limits<vek0::Handle>::max() - 1;

vek0::Handle highestVertex(const CEnt& ent) {
  vek0::Handle highest = 0;
  if (ent.getType() != CEntPolyline::kType) return highest;
  static_cast<const CEntPolyline&>(ent).forEachBulged(
      [&](const PNT_3D&, double, double, double, vek0::Handle handle) {
        highest = std::max(highest, handle);
      });
  return highest;
}

}  // namespace

void CHandleManager::start(CData& data, vek0::Handle seed) {
  m_pages.clear();
  m_origins.clear();
  m_lastPage = nullptr;
  m_lowest = 1;
  std::vector<CEnt*> without;
  vek0::Handle highest = 0;
  vek0::forEachEnt(data, [&](CEnt& ent) {
    const vek0::Handle handle = ent.GetHandle();
    if (!take(handle)) without.push_back(&ent);
    highest = std::max({highest, handle, highestVertex(ent)});
  });
  m_next = std::min(highest, kHighest) + 1;
  // Some programs state a seed that leaves no room.
  if (seed <= kHighest / 2) m_next = std::max(m_next, seed);
  m_firstGiven = m_next;
  m_isStarted = true;
  try {
    startViewports(data);
    for (const CEnt* ent : without) reserve(ent);
    m_endGiven = m_next;
  } catch (const std::bad_alloc&) {
    m_isStarted = false;
    throw;
  }
}

void CHandleManager::startViewports(CData& data) {
  for (int i = 0; i < data.getLayouts().size(); ++i) {
    std::vector<VIEWPORT> viewports = data.getLayouts()[i].getViewports();
    for (VIEWPORT& viewport : viewports) viewport.handle = bookHandle(viewport.handle);
    data.getLayouts()[i].setViewports(std::move(viewports));
  }
}

bool CHandleManager::isTaken(vek0::Handle handle) const {
  const auto page = m_pages.find(handle >> kPageBits);
  if (page == m_pages.end()) return false;
  return (page->second[handle >> 6 & 7] >> (handle & 63) & 1) != 0;
}

// False if it is not a handle, or in use.
bool CHandleManager::take(vek0::Handle handle) {
  if (handle <= 0 || handle > kHighest) return false;
  const vek0::Handle key = handle >> kPageBits;
  if (!m_lastPage || key != m_lastKey) {
    m_lastPage = &m_pages[key];
    m_lastKey = key;
  }
  std::uint64_t& word = (*m_lastPage)[static_cast<std::size_t>(handle >> 6 & 7)];
  const std::uint64_t bit = std::uint64_t{1} << (handle & 63);
  if ((word & bit) != 0) return false;
  word |= bit;
  if (handle >= m_next) m_next = handle + 1;
  return true;
}

// Above all others, or, if there is no room, the lowest free one.
vek0::Handle CHandleManager::free() const {
  if (m_next <= kHighest) return m_next;
  vek0::Handle handle = m_lowest;
  while (isTaken(handle)) ++handle;
  return handle;
}

vek0::Handle CHandleManager::bookNext() {
  if (!m_isStarted) return 0;
  const vek0::Handle handle = free();
  take(handle);
  if (m_next > kHighest) m_lowest = handle + 1;
  m_origins.erase(handle);
  return handle;
}

vek0::Handle CHandleManager::bookHandle(vek0::Handle handle) {
  if (!m_isStarted) return 0;
  return take(handle) ? handle : bookNext();
}

void CHandleManager::unbook(vek0::Handle handle) {
  const auto page = m_pages.find(handle >> kPageBits);
  if (page == m_pages.end()) return;
  page->second[static_cast<std::size_t>(handle >> 6 & 7)] &= ~(std::uint64_t{1} << (handle & 63));
  m_lowest = std::min(m_lowest, handle);
}

void CHandleManager::reserve(const IHandleEnt* ent) {
  if (!m_isStarted || take(ent->GetHandle())) return;
  // An entity is registered when it is complete; only its manager changes its handle.
  const_cast<IHandleEnt*>(ent)->SetHandle(bookNext());
}

void CHandleManager::release(vek0::Handle handle) {
  if (m_isStarted && handle > 0) unbook(handle);
}

vek0::Handle CHandleManager::nextseed() const { return m_isStarted ? free() : 0; }

void CHandleManager::setOrigin(vek0::Handle copy, vek0::Handle original) noexcept try {
  m_origins.insert_or_assign(copy, original);
} catch (const std::bad_alloc&) {
  // The copy is then written like any other new entity.
}

vek0::Handle CHandleManager::originOf(vek0::Handle copy) const {
  const auto found = m_origins.find(copy);
  return found == m_origins.end() ? 0 : found->second;
}
