#include "vek0core/hatch/hatchtypetable.h"

#include <algorithm>
#include <cstdint>

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

bool isSame(const HATCH_LINE& a, const HATCH_LINE& b) {
  return a.angle == b.angle && a.x0 == b.x0 && a.y0 == b.y0 && a.dx == b.dx && a.dy == b.dy &&
         a.numDash == b.numDash && std::equal(a.dash, a.dash + a.numDash, b.dash);
}

}  // namespace

CHatchTypeTable::CHatchTypeTable() = default;

CHatchTypeTable::~CHatchTypeTable() = default;

const HATCH_TYPE& CHatchTypeTable::intern(const zim::WString& name,
                                          const std::vector<HATCH_LINE>& lines) {
  const auto [first, last] = m_patterns.equal_range(name);
  const auto known = std::find_if(first, last, [&](const auto& entry) {
    const std::vector<HATCH_LINE>& own = entry.second->lines;
    return std::equal(own.begin(), own.end(), lines.begin(), lines.end(), isSame);
  });
  if (known != last) return known->second->type;
  return m_patterns.emplace(name, std::make_unique<Pattern>(name, lines))->second->type;
}

const HATCH_TYPE& CHatchTypeTable::intern(const HATCH_TYPE& type) {
  if (getHatch(type) >= 0) return type;
  return intern(type.name, std::vector<HATCH_LINE>(type.lines, type.lines + type.numLines));
}

bool isSolid(const HATCH_TYPE& type) {
  return type.numLines == 0 && zim::equalsIgnoreCase(type.name, u"SOLID");
}
