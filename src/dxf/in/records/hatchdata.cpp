// Restores the hatch from the extended data of an insert (see dxf/hatchdatalayout.h). The pairs are
// collected as they are read and parsed at the end of the record. Anything unexpected means that it
// is an ordinary insert, never an error.
#include "dxf/in/records/hatchdata.h"

#include <algorithm>

#include "dxf/hatchdatalayout.h"

namespace vek0::detail {

using namespace hatchdata;

namespace {

bool isReal(long code) { return code >= kPoint && code < kShort; }

bool equals(const zim::WString& text, std::string_view ascii) {
  return std::equal(text.view().begin(), text.view().end(), ascii.begin(), ascii.end());
}

}  // namespace

// Data of other programs is not checked: nothing in it can be wrong.
bool HatchData::take(const CFileDXFILexer& lexer) {
  const long code = lexer.getGroupValue();
  if (code == kApplication) m_taking = empty() && equals(lexer.getText(), kOwner);
  if (!m_taking) return false;
  Pair pair{code, 0, 0, {}};
  if (isReal(code))
    pair.real = lexer.getDouble();
  else if (code >= kShort)
    pair.integer = lexer.getInt();
  else
    pair.text = lexer.getText();
  m_pairs.push_back(std::move(pair));
  // The second pair decides whether the rest is worth collecting.
  m_taking = m_pairs.size() != 2 || claimsHatch();
  return m_taking;
}

void HatchData::spoil() {
  m_pairs.pop_back();
  m_taking = false;
}

bool HatchData::isMark(const Pair& pair) { return pair.code == kText && equals(pair.text, kMark); }

bool HatchData::takeText(long code, std::string_view text) {
  return has(code) && equals(m_pairs[m_next++].text, text);
}

bool HatchData::takeText(zim::WString& text) {
  if (!has(kText)) return false;
  text = m_pairs[m_next++].text;
  return true;
}

bool HatchData::takeInteger(long code, long& value) {
  if (!has(code)) return false;
  value = m_pairs[m_next++].integer;
  return true;
}

bool HatchData::takeConstant(long code, long value) {
  return has(code) && m_pairs[m_next++].integer == value;
}

bool HatchData::takeReal(double& value) {
  if (!has(kReal)) return false;
  value = m_pairs[m_next++].real;
  return true;
}

bool HatchData::takePoint(long code, PNT_3D& pnt) {
  double* const parts[] = {&pnt.x, &pnt.y, &pnt.z};
  for (double* part : parts) {
    if (!has(code)) return false;
    *part = m_pairs[m_next++].real;
    code += 10;
  }
  return true;
}

bool HatchData::parse(CHatchTypeTable& types) {
  m_next = 0;
  rings.clear();
  zim::WString name;
  long noBounds, noRings;
  if (!parseHead(name, noBounds) || !takeInteger(kLong, noRings)) return false;
  for (; noRings > 0; --noRings) {
    rings.emplace_back();
    if (!parseRing(rings.back())) return false;
  }
  const std::size_t bounds = std::min<std::size_t>(rings.size() + 1, kMostShort);
  if (rings.empty() || noBounds != static_cast<long>(bounds)) return false;
  std::vector<HATCH_LINE> lines;
  const bool own = has(kText);
  if (own && !parseFamilies(lines)) return false;
  if (!takeText(kBrace, kClose) || m_next != m_pairs.size()) return false;
  type = own ? &types.intern(name, lines) : getHatch(name);
  return type != nullptr;
}

bool HatchData::parseHead(zim::WString& name, long& noBounds) {
  zim::WString handle;
  PNT_3D seed, elevation, normal;
  return takeText(kApplication, kOwner) && takeText(kText, kMark) && takeText(kBrace, kOpen) &&
         takeConstant(kShort, kVersion) && takeText(name) && takeReal(scale) &&
         takeReal(angleRad) && takeText(kText, kBounds) && takeInteger(kShort, noBounds) &&
         takeConstant(kShort, 0) && takeText(kText, kSeed) && takePoint(kPoint, seed) &&
         takeText(kText, kRings) && takeText(handle) && takePoint(kPoint, elevation) &&
         takePoint(kDirection, normal) && takeConstant(kShort, kEvenOdd);
}

// The count excludes the first point.
bool HatchData::parseRing(std::vector<PNT_3D>& ring) {
  double elevation;
  long further;
  if (!takeConstant(kShort, kPolylineRing) || !takeReal(elevation) || !takeInteger(kLong, further))
    return false;
  for (; further >= 0; --further) {
    ring.emplace_back();
    if (!takePoint(kPoint, ring.back())) return false;
  }
  return ring.size() >= 3;
}

bool HatchData::parseFamilies(std::vector<HATCH_LINE>& lines) {
  long noFamilies;
  if (!takeText(kText, kPatternLines) || !takeInteger(kLong, noFamilies)) return false;
  for (; noFamilies > 0; --noFamilies) {
    lines.emplace_back();
    if (!parseFamily(lines.back())) return false;
  }
  return true;
}

bool HatchData::parseFamily(HATCH_LINE& line) {
  constexpr long kMaxDashes = 6;
  PNT_3D base, offset;
  long noDashes;
  if (!takeReal(line.angle) || !takePoint(kPoint, base) || !takePoint(kDirection, offset) ||
      !takeInteger(kShort, noDashes) || noDashes < 0 || noDashes > kMaxDashes)
    return false;
  line.x0 = base.x;
  line.y0 = base.y;
  line.dx = offset.x;
  line.dy = offset.y;
  for (; line.numDash < noDashes; ++line.numDash)
    if (!takeReal(line.dash[line.numDash])) return false;
  return true;
}

}  // namespace vek0::detail
