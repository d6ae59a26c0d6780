#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "vek0core/tables/handle.h"

class CBlock;
class CData;
class CEnt;

namespace vek0::detail {

/// Where an entity is held: model space, a sheet or a block.
struct Container {
  const CBlock* block = nullptr;  ///< null: model space
  bool isSheet = false;
};

/// An entity with its place.
struct HeldEnt {
  const CEnt* ent = nullptr;
  Container container;
};

/// The entities of a drawing by handle, in drawing order within their containers. The lines of
/// hatches and the pieces of records, which follow from those, and the content of references are
/// left out.
class HeldEnts {
 public:
  enum Index { WithIndex, WithoutIndex };
  /// Borrows the drawing. `find` needs the index. n log n with it, else linear.
  explicit HeldEnts(const CData& data, Index index = WithIndex);

  const std::vector<HeldEnt>& all() const { return m_all; }
  /// The first of that handle; null if there is none.
  const HeldEnt* find(Handle handle) const;

 private:
  void add(const CEnt& ent, const Container& container);

  std::vector<HeldEnt> m_all;
  std::vector<std::pair<Handle, std::size_t>> m_places;  // sorted; files are nearly
};

/// Whether both are model space, sheets or blocks of the same name, in two drawings.
bool isSamePlace(const Container& a, const Container& b);

}  // namespace vek0::detail
