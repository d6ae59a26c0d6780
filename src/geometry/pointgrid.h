#pragma once

#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// Finds numbered points near a given one, by hashed cells of the size of the tolerance.
///
/// Constant time on average. Points that are no longer usable are removed from their cell when
/// encountered. At most 256 points of a cell are examined, so that many points just out of reach
/// cannot make a search linear.
class PointGrid {
 public:
  /// `tolerance` > 0, in drawing units; points beyond 2^62 of it share cells.
  PointGrid(double tolerance, const PNT_2D& origin) : m_size(tolerance), m_origin(origin) {}

  void add(const PNT_2D& p, std::uint32_t number) {
    if (number >= m_next.size()) {
      m_next.resize(number + 1, kNone);
      m_points.resize(number + 1, PNT_2D(0, 0));
    }
    m_points[number] = p;
    const auto [at, isNew] =
        m_cells.try_emplace(key(cell(p.x - m_origin.x), cell(p.y - m_origin.y)), number);
    if (isNew) return;
    m_next[number] = at->second;
    at->second = number;
  }

  /// Calls `visit(number)` for usable points within the tolerance.
  template <class Usable, class Visit>
  void find(const PNT_2D& p, Usable&& usable, Visit&& visit) {
    const std::int64_t x = cell(p.x - m_origin.x), y = cell(p.y - m_origin.y);
    for (std::int64_t i = x - 1; i <= x + 1; ++i)
      for (std::int64_t j = y - 1; j <= y + 1; ++j) findIn(key(i, j), p, usable, visit);
  }

 private:
  static constexpr std::uint32_t kNone = 0xffffffffu;
  static constexpr int kMostLooked = 256;

  std::int64_t cell(double v) const {
    const double at = std::floor(v / m_size);
    constexpr double most = 4e18;
    // Beyond this, a conversion to an integer would be undefined.
    return std::fabs(at) < most ? static_cast<std::int64_t>(at) : 0;
  }
  static std::uint64_t key(std::int64_t x, std::int64_t y) {
    // Mixes both coordinates, so that rows and columns of points do not share buckets.
    std::uint64_t h = static_cast<std::uint64_t>(x) * 0x9e3779b97f4a7c15u;
    h ^= static_cast<std::uint64_t>(y) + 0x7f4a7c159e3779b9u + (h << 6) + (h >> 2);
    h *= 0xff51afd7ed558ccdu;
    return h ^ (h >> 33);
  }

  template <class Usable, class Visit>
  void findIn(std::uint64_t cellKey, const PNT_2D& p, Usable& usable, Visit& visit) {
    const auto at = m_cells.find(cellKey);
    if (at == m_cells.end()) return;
    std::uint32_t* link = &at->second;
    for (int looked = 0; *link != kNone && looked < kMostLooked;) {
      const std::uint32_t number = *link;
      if (!usable(number)) {
        *link = m_next[number];
        continue;
      }
      if (m_points[number].dist(p) <= m_size) visit(number);
      link = &m_next[number];
      ++looked;
    }
  }

  double m_size;
  PNT_2D m_origin;
  std::unordered_map<std::uint64_t, std::uint32_t> m_cells;
  std::vector<std::uint32_t> m_next;
  std::vector<PNT_2D> m_points;
};

}  // namespace vek0::detail
