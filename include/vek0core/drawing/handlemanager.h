#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>

#include "vek0core/export.h"
#include "vek0core/tables/handle.h"

class CData;
class CEnt;

/// A manager that gives every entity of a drawing a handle of its own, which it keeps as long as it
/// exists: through edits, undo and saving.
///
/// It is passed to `CDataFactory::createData` and does nothing until `start`, so that a file's
/// handles are read as they are. Handles of removed entities are not used again, unless the entity
/// itself returns. Vertices of polylines have a handle only if the file has one, so `handling`
/// returns false. A handle takes about a bit if they are dense, a hundred bytes if each is far from
/// all others.
class VEK0_API CHandleManager final : public IHandleGestor {
 public:
  /// Gives new handles to the entities of the drawing, whose manager it is, that have none or one
  /// that an earlier entity has, and from now on to those that are added. New handles are not below
  /// `seed`, that of the file, so that none is that of something which a drawing does not hold.
  /// Linear in the entities and vertices. Throws `std::bad_alloc`; it has not started then, but
  /// entities may have got handles.
  void start(CData& data, vek0::Handle seed = 0);

  /// Whether `start` gave this handle, so that it says nothing about the file.
  bool isGiven(vek0::Handle handle) const { return m_firstGiven <= handle && handle < m_endGiven; }

  /// 0 before `start`.
  vek0::Handle bookNext() override;
  vek0::Handle bookHandle(vek0::Handle handle) override;
  void unbook(vek0::Handle handle) override;
  /// Changes the handle of the entity if it has none or one that is in use. Throws
  /// `std::bad_alloc` with nothing changed, but not for an entity that returns.
  void reserve(const IHandleEnt* ent) override;
  void release(vek0::Handle handle) override;
  bool handling() const override { return false; }
  vek0::Handle nextseed() const override;

  /// Notes that the entity with handle `copy` was copied from another one, so that `CDXFSource`
  /// writes it as a copy of that one's record. Without memory, it is not noted.
  void setOrigin(vek0::Handle copy, vek0::Handle original) noexcept;
  /// The handle of what the entity was copied from, which may be gone or a copy itself; 0 if it is
  /// no copy.
  vek0::Handle originOf(vek0::Handle copy) const;

 private:
  static constexpr vek0::Handle kPageBits = 9;
  using Page = std::array<std::uint64_t, 8>;

  void startViewports(CData& data);
  bool take(vek0::Handle handle);
  bool isTaken(vek0::Handle handle) const;
  vek0::Handle free() const;

  bool m_isStarted = false;
  vek0::Handle m_next = 1;                        // above all handles that were ever used
  vek0::Handle m_lowest = 1;                      // all below are used
  vek0::Handle m_firstGiven = 0, m_endGiven = 0;  // by `start`
  std::unordered_map<vek0::Handle, Page> m_pages;
  std::unordered_map<vek0::Handle, vek0::Handle> m_origins;  // of copies
  Page* m_lastPage = nullptr;  // most handles are near the previous one
  vek0::Handle m_lastKey = -1;
};
