#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// Finds numbered points near a given one, by hashed cells of four times the tolerance: a search
/// looks into 2.6 cells on average, each of which costs a cache miss.
///
/// Constant time on average. Points that are no longer usable are removed from their cell when
/// encountered. At most 1024 points of a cell are examined, so that many points just out of reach
/// cannot make a search linear.
class PointGrid {
 public:
  /// `tolerance` > 0, in drawing units; points beyond 2^62 of it share cells.
  PointGrid(double tolerance, const PNT_2D& origin)
      : m_tolerance(tolerance), m_origin(origin), m_cells(kFewest) {}

  /// Makes room for points with numbers below `count`, of which two share a cell.
  void reserve(std::size_t count) {
    m_points.reserve(count);
    resize(std::bit_ceil(std::max(count, m_cells.size())));
  }

  void add(const PNT_2D& p, std::uint32_t number) {
    if (number >= m_points.size()) m_points.resize(number + 1);
    std::uint32_t& first = firstIn(key(cell(p.x - m_origin.x), cell(p.y - m_origin.y)));
    m_points[number] = {p, std::exchange(first, number)};
  }

  /// Calls `visit(number)` for usable points within the tolerance.
  template <class Usable, class Visit>
  void find(const PNT_2D& p, Usable&& usable, Visit&& visit) {
    const double x = p.x - m_origin.x, y = p.y - m_origin.y;
    // More than the tolerance, because sums are rounded.
    const double reach = 1.25 * m_tolerance;
    const std::int64_t lastX = cell(x + reach), lastY = cell(y + reach);
    for (std::int64_t i = cell(x - reach); i <= lastX; ++i)
      for (std::int64_t j = cell(y - reach); j <= lastY; ++j) findIn(key(i, j), p, usable, visit);
  }

 private:
  static constexpr std::uint32_t kNone = 0xffffffffu, kUnset = 0xfffffffeu;
  static constexpr int kMostLooked = 1024;
  static constexpr double kCellSize = 4;  // tolerances
  static constexpr std::size_t kFewest = 64;

  // The first point of a cell, in an open hash table of a power of two, at most half full.
  struct Cell {
    std::uint64_t key = 0;
    std::uint32_t first = kUnset;  // `kNone` if all its points have been removed
  };

  struct Point {
    PNT_2D at{0, 0};
    std::uint32_t next = kNone;  // in the same cell
  };

  std::int64_t cell(double v) const {
    const double at = std::floor(v / (kCellSize * m_tolerance));
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

  // The cell with the key, or the free one for it.
  Cell& cellOf(std::uint64_t cellKey) {
    const std::size_t mask = m_cells.size() - 1;
    std::size_t at = static_cast<std::size_t>(cellKey) & mask;
    while (m_cells[at].first != kUnset && m_cells[at].key != cellKey) at = (at + 1) & mask;
    return m_cells[at];
  }

  std::uint32_t& firstIn(std::uint64_t cellKey) {
    if (2 * (m_used + 1) > m_cells.size()) resize(2 * m_cells.size());
    Cell& at = cellOf(cellKey);
    if (at.first == kUnset) {
      at = {cellKey, kNone};
      ++m_used;
    }
    return at.first;
  }

  void resize(std::size_t cells) {
    const std::vector<Cell> old = std::exchange(m_cells, std::vector<Cell>(cells));
    for (const Cell& each : old)
      if (each.first != kUnset) cellOf(each.key) = each;
  }

  template <class Usable, class Visit>
  void findIn(std::uint64_t cellKey, const PNT_2D& p, Usable& usable, Visit& visit) {
    Cell& at = cellOf(cellKey);
    if (at.first == kUnset) return;
    std::uint32_t* link = &at.first;
    for (int looked = 0; *link != kNone && looked < kMostLooked;) {
      const std::uint32_t number = *link;
      Point& point = m_points[number];
      if (!usable(number)) {
        *link = point.next;
        continue;
      }
      if (point.at.dist(p) <= m_tolerance) visit(number);
      link = &point.next;
      ++looked;
    }
  }

  double m_tolerance;
  PNT_2D m_origin;
  std::vector<Cell> m_cells;
  std::size_t m_used = 0;       // of the cells
  std::vector<Point> m_points;  // by number
};

}  // namespace vek0::detail
