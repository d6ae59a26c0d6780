// A boundary is one list of points in which each ring returns to its first point. A ring that
// touches itself in a vertex would end there for a reader, so rings begin at a point that occurs
// only once, or are split where they touch themselves.
#include "vek0core/hatch/boundary.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <numeric>
#include <utility>

namespace {

using Points = std::vector<PNT_3D>;

// Index where the ring that starts at `first` closes; the end of the boundary if it does not.
std::size_t closingPoint(const Points& boundary, std::size_t first) {
  std::size_t i = first + 1;
  // Repetitions of the first point do not close the ring, which would be empty.
  while (i < boundary.size() && boundary[i] == boundary[first]) ++i;
  while (i < boundary.size() && boundary[i] != boundary[first]) ++i;
  return i;
}

// The ring without consecutive equal points and without its closing point; empty if fewer than
// three points remain.
Points cleaned(const PNT_3D* first, std::size_t count) {
  Points ring;
  std::unique_copy(first, first + count, std::back_inserter(ring));
  while (ring.size() > 1 && ring.back() == ring.front()) ring.pop_back();
  if (ring.size() < 3) ring.clear();
  return ring;
}

void appendClosed(const Points& ring, std::size_t start, Points& out) {
  const auto middle = ring.begin() + static_cast<std::ptrdiff_t>(start);
  out.insert(out.end(), middle, ring.end());
  out.insert(out.end(), ring.begin(), middle);
  out.push_back(ring[start]);
}

using Key = std::array<std::uint64_t, 3>;

// Compares bits instead of values, a total order that includes NaN. Adding 0 removes the sign of
// negative zero, which equals positive zero.
Key keyOf(const PNT_3D& p) {
  const double xyz[3] = {p.x + 0.0, p.y + 0.0, p.z + 0.0};
  Key key;
  std::memcpy(key.data(), xyz, sizeof xyz);
  return key;
}

// Numbers the points of all rings, ring by ring, with equal numbers for equal points. Numbers count
// from 0, so there are no more of them than points.
std::vector<std::size_t> numberPoints(const std::vector<Points>& rings) {
  std::vector<Key> keys;
  for (const Points& ring : rings) {
    std::transform(ring.begin(), ring.end(), std::back_inserter(keys), keyOf);
  }
  std::vector<std::size_t> order(keys.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  std::vector<std::size_t> numbers(keys.size());
  std::size_t next = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i > 0 && keys[order[i]] != keys[order[i - 1]]) ++next;
    numbers[order[i]] = next;
  }
  return numbers;
}

// Stores rings so that `hatchRings` reads them back.
class RingJoiner {
 public:
  explicit RingJoiner(const std::vector<Points>& rings)
      : m_numbers(numberPoints(rings)), m_counts(m_numbers.size()), m_place(m_numbers.size()) {
    for (const std::size_t number : m_numbers) ++m_counts[number];
  }

  // Call in the order of the rings passed to the constructor.
  void append(const Points& ring) {
    const std::size_t* numbers = m_numbers.data() + m_done;
    m_done += ring.size();
    std::size_t start = onceIn(m_counts, numbers, ring.size());
    if (start == ring.size()) start = onceInRing(numbers, ring.size());
    if (start < ring.size()) return appendClosed(ring, start, m_out);
    appendSplit(ring, numbers);
  }

  Points take() { return std::move(m_out); }

 private:
  static std::size_t onceIn(const std::vector<std::size_t>& counts, const std::size_t* numbers,
                            std::size_t size) {
    const auto isOnce = [&](std::size_t number) { return counts[number] == 1; };
    return static_cast<std::size_t>(std::find_if(numbers, numbers + size, isOnce) - numbers);
  }

  // Uses m_place for the counts of this ring and resets it to zero.
  std::size_t onceInRing(const std::size_t* numbers, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) ++m_place[numbers[i]];
    const std::size_t start = onceIn(m_place, numbers, size);
    for (std::size_t i = 0; i < size; ++i) m_place[numbers[i]] = 0;
    return start;
  }

  // Traverses the ring and splits off a loop whenever it returns to a point. The loops have the
  // edges of the ring, and each passes through its points once.
  void appendSplit(const Points& ring, const std::size_t* numbers) {
    Points path;
    std::vector<std::size_t> pathNumbers;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      std::size_t& place = m_place[numbers[i]];  // position on the path, counted from 1
      if (place > 0) {
        appendLoop(path, place - 1);
        // The loop from the repeated point is complete, and the path continues from that point.
        for (; pathNumbers.size() > place; pathNumbers.pop_back()) m_place[pathNumbers.back()] = 0;
        path.resize(place);
        continue;
      }
      path.push_back(ring[i]);
      pathNumbers.push_back(numbers[i]);
      place = path.size();
    }
    appendLoop(path, 0);
    for (const std::size_t number : pathNumbers) m_place[number] = 0;
  }

  void appendLoop(const Points& path, std::size_t first) {
    // Two points, there and back, enclose nothing.
    if (path.size() - first < 3) return;
    m_out.insert(m_out.end(), path.begin() + static_cast<std::ptrdiff_t>(first), path.end());
    m_out.push_back(path[first]);
  }

  std::vector<std::size_t> m_numbers;  // of all points
  std::vector<std::size_t> m_counts;   // how often each number occurs
  std::vector<std::size_t> m_place;    // by number; 0 between calls
  std::size_t m_done = 0;              // points appended
  Points m_out;
};

bool isReadAsOne(const Points& boundary) { return hatchRings(boundary).size() == 1; }

// A single ring stays open, unless it accidentally divides into rings: the edges that join three of
// them enclose an area.
Points joinClean(const std::vector<Points>& rings) {
  if (rings.size() == 1 && isReadAsOne(rings[0])) return rings[0];
  RingJoiner joiner(rings);
  for (const Points& ring : rings) joiner.append(ring);
  Points boundary = joiner.take();
  if (isReadAsOne(boundary)) boundary.pop_back();
  return boundary;
}

}  // namespace

std::vector<HatchRing> hatchRings(const Points& boundary) {
  std::vector<HatchRing> rings;
  for (std::size_t first = 0; first < boundary.size();) {
    const std::size_t end = closingPoint(boundary, first);
    // A rest that does not close means that earlier repetitions were accidental: the whole boundary
    // is one open ring.
    if (end == boundary.size()) return {{0, boundary.size()}};
    rings.push_back({first, end - first});
    first = end + 1;
  }
  return rings;
}

Points joinHatchRings(const std::vector<Points>& rings) {
  std::vector<Points> kept;
  for (const Points& ring : rings) {
    Points clean = cleaned(ring.data(), ring.size());
    if (!clean.empty()) kept.push_back(std::move(clean));
  }
  return joinClean(kept);
}

void _hatch_compactVertex(const Points& in, Points& out) {
  std::vector<Points> kept;
  for (const HatchRing& ring : hatchRings(in)) {
    Points clean = cleaned(in.data() + ring.first, ring.count);
    if (!clean.empty()) kept.push_back(std::move(clean));
  }
  if (kept.size() == 1) {
    out = joinClean(kept);
    return;
  }
  Points joined;
  for (const Points& ring : kept) appendClosed(ring, 0, joined);
  out = std::move(joined);
}
