#include "dxf/keep/headeredits.h"

#include <algorithm>
#include <array>

#include "dxf/keep/forgetting.h"
#include "dxf/keep/newrecords.h"
#include "vek0core/drawing/data.h"
#include "vek0core/entities/enttable.h"
#include "vek0core/geometry/finite.h"

namespace vek0::detail {
namespace {

constexpr long kName = 9;

// What follows from the file, or is not part of a drawing.
bool isDerived(const std::string& name) {
  constexpr std::array names{"$ACADVER", "$DWGCODEPAGE", "$HANDSEED",
                             "$EXTMIN",  "$EXTMAX",      "$INSBASE"};
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

HeaderEdits::HeaderEdits(EditContext& context) : m_on(context) {
  const SourceIndex& index = m_on.index;
  for (std::size_t i = 0; i < index.entries().size(); ++i) {
    const bool isHeader = index[i].section == SourceSection::Header && index.is(i, "SECTION");
    if (!isHeader) continue;
    m_entry = i;
    const Variables variables = variablesOf(index.read(i));
    const auto seed = variables.find("$HANDSEED");
    if (seed != variables.end() && !seed->second.empty())
      m_on.edits.setSeed(handleOf(seed->second.front()));
    return;
  }
}

HeaderEdits::Variables HeaderEdits::variablesOf(const SourceRecord& header) {
  Variables variables;
  Values* values = nullptr;
  for (const SourcePair& pair : header.pairs) {
    if (pair.code == kName)
      values = &variables[pair.value];
    else if (values)
      values->push_back(pair);
  }
  return variables;
}

void HeaderEdits::planCounters(Handle reserved) {
  if (m_entry == SourceIndex::kNone) return;
  planExtents();
  const bool isUnchanged = !m_on.edits.hasTaken() && reserved == 0;
  if (isUnchanged || !m_on.edits.hasRoomAbove()) return;
  set("$HANDSEED", {pairOf(5, hexOf(m_on.edits.nextHandle() + reserved))}, !m_on.version.isOld);
}

void HeaderEdits::planVariables() {
  if (m_entry == SourceIndex::kNone) return;
  const Variables before = variablesOf(m_on.before->header());
  const Variables after = variablesOf(m_on.after->header());
  for (const auto& [name, values] : after) {
    const auto was = before.find(name);
    const auto isSame = [](const SourcePair& a, const SourcePair& b) { return a.value == b.value; };
    const bool isChanged =
        was == before.end() ||
        !std::equal(values.begin(), values.end(), was->second.begin(), was->second.end(), isSame);
    if (isChanged && !isDerived(name)) set(name, values, !m_on.version.isOld);
  }
}

void HeaderEdits::planExtents() {
  const RECT_3D &was = m_on.pristine->getEntTable().getBdry(),
                &is = m_on.data.getEntTable().getBdry();
  if (was == is || !is.validRegion() || !isFinite(is)) return;
  const auto point = [](const PNT_3D& p) {
    return Values{pairOf(10, shortestText(p.x)), pairOf(20, shortestText(p.y)),
                  pairOf(30, shortestText(p.z))};
  };
  set("$EXTMIN", point(is.min), false);
  set("$EXTMAX", point(is.max), false);
}

// A variable that the file does not have is added if it is needed.
void HeaderEdits::set(const std::string& name, const Values& values, bool isNeeded) {
  SourceRecord& header = m_on.edits.change(m_entry);
  std::vector<SourcePair>& pairs = header.pairs;
  auto at = std::find_if(pairs.begin(), pairs.end(), [&](const SourcePair& pair) {
    return pair.code == kName && pair.value == name;
  });
  if (at == pairs.end()) {
    if (!isNeeded) return;
    pairs.push_back(pairOf(kName, name));
    pairs.insert(pairs.end(), values.begin(), values.end());
    return;
  }
  std::size_t place = static_cast<std::size_t>(at - pairs.begin()) + 1;
  for (const SourcePair& value : values) {
    const bool isThere = place < pairs.size() && pairs[place].code == value.code;
    if (isThere) header.setText(place, value.value);
    // Points of the header may have no z coordinate.
    if (isThere) ++place;
  }
}

}  // namespace vek0::detail
