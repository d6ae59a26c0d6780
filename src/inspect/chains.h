#pragma once

#include <cstdint>
#include <vector>

#include "vek0core/inspect/curvefaults.h"

namespace vek0::detail {

/// A curve bends back to its own beginning only if it is that many times longer than the distance
/// of its ends; otherwise it is just short.
inline constexpr double kLeastTurns = 3;

/// Sets of numbers that are merged pair by pair.
class DisjointSets {
 public:
  explicit DisjointSets(std::size_t count);
  std::uint32_t find(std::uint32_t i);
  /// The smaller number represents both.
  void unite(std::uint32_t a, std::uint32_t b);

 private:
  std::vector<std::uint32_t> m_parents;
};

/// How the ends of open curves meet. End 2 * i is the start of curve i, 2 * i + 1 its end.
class Chains {
 public:
  static constexpr std::uint32_t kNone = 0xffffffffu;

  /// Two ends that nearly meet.
  struct Gap {
    std::uint32_t end, other;  ///< `end` is open, `other` may be where curves meet
    double size;
  };

  /// `groups` has a number for each curve: only ends of one group meet or are paired, and curves
  /// of group 0 are ignored. So are those of zero length. All arguments are borrowed.
  Chains(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
         const std::vector<std::uint32_t>& groups);

  PNT_2D pointOf(std::uint32_t end) const;
  /// Whether the curve takes part.
  bool isIn(std::size_t curve) const { return m_groups[curve] != 0; }
  /// Whether it has ends.
  bool isOpen(std::size_t curve) const { return m_nodes[2 * curve] != kNone; }
  /// The end of a curve that alone continues at this end; `kNone` if there is none.
  std::uint32_t next(std::uint32_t end) const;
  /// Whether no other end is the same.
  bool isFree(std::uint32_t end) const;

  /// Calls `visit` with two ends that are the same, so that all of them are connected.
  template <class Visit>
  void forEachMeeting(Visit&& visit) const {
    for (std::uint32_t end = 0; end < m_nodes.size(); ++end)
      if (m_nodes[end] != kNone) visit(m_all[m_nodes[end]].first, end);
  }

  /// Pairs of open ends, nearest first.
  const std::vector<Gap>& gaps() const { return m_gaps; }
  /// Whether an end is one of such a pair.
  bool isPaired(std::uint32_t end) const { return m_isPaired[end]; }

 private:
  struct Node {
    std::uint32_t degree = 0;
    std::uint32_t first = kNone, last = kNone;  // of its ends
  };

  void meet();
  void pairEnds();
  bool isOwnOther(std::uint32_t end, std::uint32_t node, double distance) const;

  const std::vector<PLACED_CURVE>& m_curves;
  const CURVE_LIMITS& m_limits;
  const std::vector<std::uint32_t>& m_groups;
  PNT_2D m_origin{0, 0};
  std::vector<std::uint32_t> m_nodes;  // by end
  std::vector<Node> m_all;
  std::vector<Gap> m_gaps;
  std::vector<bool> m_isPaired;
};

/// Whether start and end of the curve are the same.
bool isLoop(const PATH_3D& path, double same);

}  // namespace vek0::detail
