#include "vek0core/hatch/hatchtypetable.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <iterator>

#include "files/bits.h"

struct CHatchTypeTable::Pattern {
  Pattern(const zim::WString& patternName, const std::vector<HATCH_LINE>& patternLines)
      : name(patternName),
        lines(patternLines),
        type{name.c_str(), u"", lines.data(), static_cast<std::int32_t>(lines.size())} {}

  zim::WString name;
  std::vector<HATCH_LINE> lines;
  HATCH_TYPE type;
};

namespace {

constexpr std::size_t kMaxDashes = std::size(HATCH_LINE{}.dash);

using LineBits = std::array<std::uint64_t, kMaxDashes + 6>;

// Adding 0 removes the sign of negative zero.
std::uint64_t keyOf(double value) { return vek0::detail::bitsOf(value + 0.0); }

// The distinguishing data of a line, without the unused dashes. Bits instead of values: files can
// produce NaN, which must equal itself.
LineBits keyOf(const HATCH_LINE& line) {
  LineBits bits = {keyOf(line.angle), keyOf(line.x0), keyOf(line.y0), keyOf(line.dx),
                   keyOf(line.dy)};
  bits[5] = static_cast<std::uint64_t>(line.numDash);
  for (std::size_t i = 0; i < kMaxDashes && i < bits[5]; ++i) bits[6 + i] = keyOf(line.dash[i]);
  return bits;
}

bool isSame(const HATCH_LINE& a, const HATCH_LINE& b) { return keyOf(a) == keyOf(b); }

// The multiplier is 2^64 by the golden ratio. Multiplication propagates bits only upward, and the
// low bits of round numbers are all zero, so the upper half is folded down each time.
std::size_t hashOf(const zim::WString& name, const std::vector<HATCH_LINE>& lines) {
  std::uint64_t hash = std::hash<zim::WString>()(name);
  for (const HATCH_LINE& line : lines) {
    for (const std::uint64_t bits : keyOf(line)) {
      hash = (hash ^ bits) * 0x9E3779B97F4A7C15;
      hash ^= hash >> 32;
    }
  }
  return static_cast<std::size_t>(hash);
}

}  // namespace

CHatchTypeTable::CHatchTypeTable() = default;

CHatchTypeTable::~CHatchTypeTable() = default;

const HATCH_TYPE& CHatchTypeTable::intern(const zim::WString& name,
                                          const std::vector<HATCH_LINE>& lines) {
  const std::size_t hash = hashOf(name, lines);
  // Comparing hashes first keeps this fast if a file has many patterns with one name.
  const auto [first, last] = m_patterns.equal_range(hash);
  const auto known = std::find_if(first, last, [&](const auto& entry) {
    const Pattern& own = *entry.second;
    return own.name == name &&
           std::equal(own.lines.begin(), own.lines.end(), lines.begin(), lines.end(), isSame);
  });
  if (known != last) return known->second->type;
  return m_patterns.emplace(hash, std::make_unique<Pattern>(name, lines))->second->type;
}

const HATCH_TYPE& CHatchTypeTable::intern(const HATCH_TYPE& type) {
  // Patterns of the catalogue have static storage and need no copy.
  if (getHatch(type) >= 0) return type;
  return intern(type.name, std::vector<HATCH_LINE>(type.lines, type.lines + type.numLines));
}

bool isSolid(const HATCH_TYPE& type) {
  return type.numLines == 0 && zim::equalsIgnoreCase(type.name, u"SOLID");
}
