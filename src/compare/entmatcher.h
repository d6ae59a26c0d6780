#pragma once

#include <cstdint>
#include <vector>

#include "compare/entcomparer.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// An entity on its way to its partner in the other drawing.
struct MatchEnt {
  static constexpr std::int32_t kAlone = -1;

  const CEnt* ent = nullptr;
  Handle handle = 0;              ///< 0: none, or not that of the file
  std::int32_t place = 0;         ///< equal for corresponding places
  std::int32_t partner = kAlone;  ///< index in the other drawing
  bool isSame = false;            ///< known to differ in nothing from the partner
};
using MatchEnts = std::vector<MatchEnt>;

/// Finds out which entities of two drawings are the same.
///
/// Handles of two drawings correspond if most that both have are those of entities of one kind,
/// and if they explain at least as many entities as their places do: programs number entities anew
/// when they convert a drawing, and unrelated drawings have the same numbers.
class EntMatcher {
 public:
  /// All are borrowed.
  EntMatcher(EntComparer& comparer, MatchEnts& before, MatchEnts& after)
      : m_comparer(comparer), m_before(before), m_after(after) {}

  /// Returns whether the handles correspond; only then there are partners. n log n.
  bool matchHandles();

  /// Finds partners for the rest: first those that are in the same place and equal, then those with
  /// other properties, then those with other content, such as another text. After that, unless the
  /// handles say that these are different entities: equal ones elsewhere, and texts, inserts and
  /// circles at the same point. n log n.
  void matchGeometry(bool byHandles);

 private:
  struct Pass;
  struct Key;
  class KeyMaker;

  std::vector<std::pair<std::int32_t, std::int32_t>> sharedHandles() const;
  bool explainsMost(const std::vector<std::pair<std::int32_t, std::int32_t>>& pairs);
  void matchInOrder();
  void run(const Pass& pass, bool byHandles);
  std::vector<Key> keysOf(const Pass& pass, Side side);
  void pairUp(const Pass& pass, bool byHandles, const Key* before, const Key* beforeEnd,
              const Key* after, const Key* afterEnd);
  bool fits(const Pass& pass, const MatchEnt& before, const MatchEnt& after);
  void join(std::int32_t before, std::int32_t after);

  EntComparer& m_comparer;
  MatchEnts &m_before, &m_after;
};

}  // namespace vek0::detail
