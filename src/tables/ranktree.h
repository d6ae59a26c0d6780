#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <vector>

namespace vek0::detail {

/// Finds the k-th used slot of an array with holes, in logarithmic time (a Fenwick tree of counts).
/// Positions and ranks count from 0.
class RankTree {
 public:
  /// For an array of pointers in which null is a hole. Linear.
  template <class T>
  explicit RankTree(const std::vector<T*>& slots) {
    m_counts.reserve(slots.size() + 1);
    m_counts.push_back(0);
    for (const T* slot : slots) append(slot != nullptr);
  }

  void append(bool used) {
    const std::size_t node = m_counts.size();
    std::size_t count = used ? 1 : 0;
    for (std::size_t step = 1; step < lowBit(node); step <<= 1) count += m_counts[node - step];
    m_counts.push_back(count);
  }

  /// Marks the slot at `position` as a hole.
  void remove(std::size_t position) {
    for (std::size_t node = position + 1; node < m_counts.size(); node += lowBit(node))
      --m_counts[node];
  }

  /// Marks the hole at `position` as used.
  void fill(std::size_t position) {
    for (std::size_t node = position + 1; node < m_counts.size(); node += lowBit(node))
      ++m_counts[node];
  }

  /// Position of the used slot with exactly `rank` used slots before it; the number of slots if
  /// there is none.
  std::size_t select(std::size_t rank) const {
    std::size_t step = 1;
    while (2 * step < m_counts.size()) step *= 2;
    std::size_t position = 0;
    for (; step != 0; step /= 2) {
      if (position + step >= m_counts.size() || m_counts[position + step] > rank) continue;
      position += step;
      rank -= m_counts[position];
    }
    return position;
  }

 private:
  static std::size_t lowBit(std::size_t node) { return node & (~node + 1); }

  std::vector<std::size_t> m_counts;  // [n]: used slots among the lowBit(n) before n
};

/// Whether the array has a tree. Creating it fails without memory; then the array must be compacted
/// instead.
template <class T>
bool needRanks(std::unique_ptr<RankTree>& ranks, const std::vector<T*>& slots) try {
  if (!ranks) ranks = std::make_unique<RankTree>(slots);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

/// Informs the tree, if there is one, that the array has one more slot, which is in use.
inline void appendUsed(std::unique_ptr<RankTree>& ranks) try {
  if (ranks) ranks->append(true);
} catch (const std::bad_alloc&) {
  ranks.reset();  // rebuilt on the next request
}

}  // namespace vek0::detail
