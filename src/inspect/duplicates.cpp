// Curves with the same edges, found by their boxes: those of duplicates agree, whatever the
// direction and, of closed curves, the beginning.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "inspect/chains.h"
#include "inspect/repeats.h"

namespace vek0::detail {
namespace {

constexpr double kCells = 16;             // size of a cell in distances that count as the same
constexpr std::size_t kMostLooked = 256;  // curves of one box that differ otherwise

bool areSame(const PNT_2D& a, const PNT_2D& b, double same) { return a.dist(b) <= same; }

bool areSame(const EDGE_3D& a, const EDGE_3D& b, bool isReversed, double same) {
  const PNT_3D &start = isReversed ? b.p2 : b.p1, &end = isReversed ? b.p1 : b.p2;
  return areSame(a.p1, start, same) && areSame(a.p2, end, same) &&
         areSame(a.at(0.5), b.at(0.5), same);
}

// A full circle may begin anywhere.
bool areSameCircles(const EDGE_3D& a, const EDGE_3D& b, double same) {
  return areSame(a.center, b.center, same) && std::fabs(a.radius - b.radius) <= same;
}

// Edge i of `a` is edge first + i of `b`, or first - i.
bool areSameFrom(const PATH_3D& a, const PATH_3D& b, std::size_t first, bool isReversed,
                 double same) {
  const std::size_t count = a.edges.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t j = (isReversed ? first + count - i : first + i) % count;
    if (!areSame(a.edges[i], b.edges[j], isReversed, same)) return false;
  }
  return true;
}

bool areSame(const PATH_3D& a, const PATH_3D& b, double same) {
  const std::size_t count = a.edges.size();
  if (count != b.edges.size()) return false;
  const bool isRing = isLoop(a, same);
  if (isRing != isLoop(b, same)) return false;
  if (isRing && count == 1 && a.edges[0].isArc() && b.edges[0].isArc())
    return areSameCircles(a.edges[0], b.edges[0], same);
  if (!isRing) return areSameFrom(a, b, 0, false, same) || areSameFrom(a, b, count - 1, true, same);
  for (std::size_t first = 0; first < count; ++first)
    for (const bool isReversed : {false, true})
      if (areSame(a.edges[0], b.edges[first], isReversed, same) &&
          areSameFrom(a, b, first, isReversed, same))
        return true;
  return false;
}

// Cells of the four coordinates of a box.
class BoxCells {
 public:
  BoxCells(const PATH_3D& path, double same) {
    const RECT_2D box = path.bdry();
    const double values[] = {box.min.x, box.min.y, box.max.x, box.max.y};
    for (int i = 0; i < 4; ++i) {
      const double at = values[i] / (kCells * same), cell = std::floor(at);
      m_cells[i] = cell;
      // A neighbor matters only next to its border.
      m_others[i] = at - cell < 1 / kCells       ? cell - 1
                    : at - cell > 1 - 1 / kCells ? cell + 1
                                                 : cell;
    }
  }

  std::uint64_t key() const { return key(0); }

  /// Calls `visit` with the keys of the cells where a box that is the same may be.
  template <class Visit>
  void forEachKey(Visit&& visit) const {
    for (unsigned choice = 0; choice < 16; ++choice) {
      bool isNew = true;
      for (int i = 0; i < 4; ++i)
        isNew = isNew && ((choice >> i & 1) == 0 || m_others[i] != m_cells[i]);
      if (isNew) visit(key(choice));
    }
  }

 private:
  std::uint64_t key(unsigned choice) const {
    std::uint64_t h = 0;
    for (int i = 0; i < 4; ++i) {
      h ^= std::hash<double>()((choice >> i & 1) != 0 ? m_others[i] : m_cells[i]);
      h = (h << 7 | h >> 57) * 0x9e3779b97f4a7c15u;
    }
    return h;
  }

  double m_cells[4], m_others[4];
};

}  // namespace

std::vector<std::uint32_t> firstOfSame(const std::vector<PLACED_CURVE>& curves, double same) {
  std::vector<std::uint32_t> firsts(curves.size());
  std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> cells;
  std::vector<double> lengths(curves.size());
  for (std::uint32_t i = 0; i < curves.size(); ++i) {
    firsts[i] = i;
    const PATH_3D& path = curves[i].path;
    lengths[i] = path.length();
    if (lengths[i] <= same) continue;
    const BoxCells box(path, same);
    const double slack = same * static_cast<double>(2 * path.edges.size());
    box.forEachKey([&](std::uint64_t key) {
      const auto cell = cells.find(key);
      if (cell == cells.end() || firsts[i] != i) return;
      for (const std::uint32_t other : cell->second) {
        if (std::fabs(lengths[i] - lengths[other]) > slack) continue;
        if (!areSame(path, curves[other].path, same)) continue;
        firsts[i] = other;
        return;
      }
    });
    if (firsts[i] != i) continue;
    std::vector<std::uint32_t>& own = cells[box.key()];
    if (own.size() < kMostLooked) own.push_back(i);
  }
  return firsts;
}

}  // namespace vek0::detail
