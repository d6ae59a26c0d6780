#include "dxf/keep/recorddiff.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

#include "files/number.h"

namespace vek0::detail {
namespace {

constexpr long kBraces = 102, kExtendedData = 1000, kVertex = 10;

// A code and the number of its occurrence.
using Key = std::pair<long, std::size_t>;

/// Where the keys of a part are, sorted. Most records are small, so a vector is faster than a tree.
class Places {
 public:
  using Entry = std::pair<Key, std::size_t>;

  /// Several times for a code, with ascending places.
  void add(long code, std::size_t place) { m_all.emplace_back(Key(code, 0), place); }
  /// When all are added.
  void count() {
    std::sort(m_all.begin(), m_all.end(), [](const Entry& a, const Entry& b) {
      return std::pair(a.first.first, a.second) < std::pair(b.first.first, b.second);
    });
    for (std::size_t i = 1; i < m_all.size(); ++i)
      if (m_all[i].first.first == m_all[i - 1].first.first)
        m_all[i].first.second = m_all[i - 1].first.second + 1;
  }
  auto begin() const { return m_all.begin(); }
  auto end() const { return m_all.end(); }
  std::vector<Entry>::const_iterator find(const Key& key) const {
    const auto found =
        std::lower_bound(m_all.begin(), m_all.end(), key,
                         [](const Entry& entry, const Key& k) { return entry.first < k; });
    return found != m_all.end() && found->first == key ? found : m_all.end();
  }
  bool contains(const Key& key) const { return find(key) != end(); }

 private:
  std::vector<Entry> m_all;
};

bool isOfFrame(long code) {
  constexpr long codes[] = {0, 5, 100, 105, 330, 360, 390};
  return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

bool isCommon(long code) {
  constexpr long codes[] = {6, 8, 48, 60, 62, 66, 67, 370, 410, 420, 440};
  return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

// The part of a record from `first` to `last`; both move with insertions.
struct Part {
  std::size_t first, last;
};

class Patch {
 public:
  explicit Patch(bool withCommon) : m_withCommon(withCommon) {}

  bool apply(SourceRecord& record, Part part, const SourceRecord& before, Part partBefore,
             const SourceRecord& after, Part partAfter) const {
    const Places was = placesOf(before, partBefore), is = placesOf(after, partAfter);
    // From the back, so that the places before stay valid.
    std::vector<std::pair<std::size_t, Key>> order;
    for (const auto& [key, place] : is) order.emplace_back(place, key);
    std::sort(order.begin(), order.end());
    Places now = placesOf(record, part);
    for (const auto& [place, key] : order)
      if (!set(record, part, now, before, was, after, is, key)) return false;
    removeGone(record, part, now, was, is);
    return true;
  }

 private:
  Places placesOf(const SourceRecord& record, Part part) const {
    Places places;
    bool isInGroup = false;
    for (std::size_t i = part.first; i < part.last; ++i) {
      const SourcePair& pair = record.pairs[i];
      if (pair.code == kBraces) isInGroup = pair.value.starts_with('{');
      const bool isLeftOut = isInGroup || pair.code == kBraces || pair.code >= kExtendedData ||
                             isOfFrame(pair.code) || (!m_withCommon && isCommon(pair.code));
      if (!isLeftOut) places.add(pair.code, i);
    }
    places.count();
    return places;
  }

  // Removes what only `was` has.
  static void removeGone(SourceRecord& record, Part part, const Places& now, const Places& was,
                         const Places& is) {
    std::vector<bool> isGone(part.last, false);
    for (const auto& [key, place] : was) {
      const auto found = is.contains(key) ? now.end() : now.find(key);
      if (found != now.end()) isGone[found->second] = true;
    }
    std::size_t kept = part.first;
    for (std::size_t i = part.first; i < record.pairs.size(); ++i) {
      if (i < part.last && isGone[i]) continue;
      if (kept != i) record.pairs[kept] = std::move(record.pairs[i]);
      ++kept;
    }
    record.pairs.resize(kept);
  }

  // `now` are the places in the record.
  bool set(SourceRecord& record, Part& part, Places& now, const SourceRecord& before,
           const Places& was, const SourceRecord& after, const Places& is, const Key& key) const {
    const std::string& value = after.pairs[is.find(key)->second].value;
    const auto old = was.find(key);
    if (old != was.end() && before.pairs[old->second].value == value) return true;
    const auto found = now.find(key);
    if (found == now.end()) {
      if (old != was.end() && !isDefault(key.first, before.pairs[old->second].value)) return false;
      record.insert(placeFor(now, is, key, part), key.first, value);
      ++part.last;
      now = placesOf(record, part);
      return true;
    }
    // What changes has to mean the same in both.
    const std::string& stated = record.pairs[found->second].value;
    if (old != was.end() && !isSame(key.first, stated, before.pairs[old->second].value))
      return false;
    record.setText(found->second, value);
    return true;
  }

  // Behind the nearest pair before it that the record has.
  static std::size_t placeFor(const Places& now, const Places& is, const Key& key, Part part) {
    const std::size_t own = is.find(key)->second;
    std::size_t place = part.first, nearest = 0;
    bool isFound = false;
    for (const auto& [other, at] : is) {
      const auto there = now.find(other);
      const bool isCloser = at < own && (!isFound || at > nearest);
      if (there == now.end() || !isCloser) continue;
      isFound = true;
      nearest = at;
      place = there->second + 1;
    }
    return isFound ? place : std::min(part.last, part.first + 1);
  }

  // What a record means that lacks the code.
  static bool isDefault(long code, const std::string& value) {
    if (!beginsWithNumber(value)) return true;
    constexpr long firstScale = 41, lastScale = 43;
    const double number = parseDouble(value).value;
    return number == 0 || (number == 1 && code >= firstScale && code <= lastScale);
  }

  static bool isSame(long code, const std::string& a, const std::string& b) {
    if (a == b) return true;
    constexpr long firstNumber = 10;
    if (code < firstNumber || !beginsWithNumber(a)) return false;
    const double x = numberOf(a), y = parseDouble(b).value;
    constexpr double precision = 1e-9;
    return std::fabs(x - y) <= precision * (1 + std::max(std::fabs(x), std::fabs(y)));
  }

  bool m_withCommon;
};

Part whole(const SourceRecord& record) { return {0, record.extendedData()}; }

// The parts of a light polyline: the head, and each vertex from its x coordinate on.
std::vector<Part> vertexesOf(const SourceRecord& record) {
  const std::size_t end = record.extendedData();
  std::vector<Part> parts{{0, end}};
  for (std::size_t i = 0; i < end; ++i) {
    if (record.pairs[i].code != kVertex) continue;
    parts.back().last = i;
    parts.push_back({i, end});
  }
  return parts;
}

// Each part becomes a record, so that an insertion moves only its own vertex.
bool patchVertexes(SourceRecord& record, const std::vector<Part>& parts, const SourceRecord& before,
                   const std::vector<Part>& was, const SourceRecord& after,
                   const std::vector<Part>& is) {
  const Patch patch(false);
  std::vector<SourcePair> patched;
  const auto take = [&](std::vector<SourcePair>& to, std::size_t first, std::size_t last) {
    std::move(record.pairs.begin() + static_cast<std::ptrdiff_t>(first),
              record.pairs.begin() + static_cast<std::ptrdiff_t>(last), std::back_inserter(to));
  };
  for (std::size_t i = 0; i < parts.size(); ++i) {
    SourceRecord part;
    take(part.pairs, parts[i].first, parts[i].last);
    if (!patch.apply(part, {0, part.pairs.size()}, before, was[i], after, is[i])) return false;
    std::move(part.pairs.begin(), part.pairs.end(), std::back_inserter(patched));
  }
  take(patched, parts.back().last, record.pairs.size());
  record.pairs = std::move(patched);
  return true;
}

bool patchLight(SourceRecord& record, const SourceRecord& before, const SourceRecord& after) {
  const std::vector<Part> parts = vertexesOf(record), was = vertexesOf(before),
                          is = vertexesOf(after);
  if (parts.size() != was.size()) return false;
  if (parts.size() == is.size()) return patchVertexes(record, parts, before, was, after, is);
  if (parts.size() < 2 || is.size() < 2) return false;
  // Other vertices replace all; their number changes with the head.
  auto first = record.pairs.begin() + static_cast<std::ptrdiff_t>(parts[1].first);
  first = record.pairs.erase(first,
                             record.pairs.begin() + static_cast<std::ptrdiff_t>(parts.back().last));
  record.pairs.insert(first, after.pairs.begin() + static_cast<std::ptrdiff_t>(is[1].first),
                      after.pairs.begin() + static_cast<std::ptrdiff_t>(is.back().last));
  return Patch(false).apply(record, parts[0], before, was[0], after, is[0]);
}

}  // namespace

bool patchRecords(std::span<SourceRecord> records, std::span<const SourceRecord> before,
                  std::span<const SourceRecord> after) {
  if (records.size() != before.size() || before.size() != after.size()) return false;
  for (std::size_t i = 0; i < records.size(); ++i) {
    const bool isSameKind =
        records[i].kind() == before[i].kind() && before[i].kind() == after[i].kind();
    if (!isSameKind) return false;
    const bool isDone = records[i].is("LWPOLYLINE")
                            ? patchLight(records[i], before[i], after[i])
                            : Patch(false).apply(records[i], whole(records[i]), before[i],
                                                 whole(before[i]), after[i], whole(after[i]));
    if (!isDone) return false;
  }
  return true;
}

bool patchEntry(SourceRecord& record, const SourceRecord& before, const SourceRecord& after) {
  return Patch(true).apply(record, whole(record), before, whole(before), after, whole(after));
}

}  // namespace vek0::detail
