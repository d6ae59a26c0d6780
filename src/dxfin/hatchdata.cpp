#include "dxfin/hatchdata.h"

namespace vek0::detail {
namespace {

constexpr long kText = 1000, kApplication = 1001, kBrace = 1002;
constexpr long kPointX = 1010, kDirectionX = 1011, kReal = 1040;
constexpr long kShort = 1070, kLong = 1071;

bool isReal(long code) { return code >= 1010 && code < 1070; }

}  // namespace

// Other programs' data is not looked into: nothing in it can be wrong.
bool HatchData::take(const CFileDXFILexer& lexer) {
  const long code = lexer.getGroupValue();
  if (code == kApplication ? m_state != Empty : m_state == Empty) m_state = Over;
  if (m_state == Over) return false;
  Pair pair{code, 0, 0, {}};
  if (isReal(code))
    pair.real = lexer.getDouble();
  else if (code >= kShort)
    pair.integer = lexer.getInt();
  else
    pair.text = lexer.getText();
  m_state = stateAfter(m_state, pair);
  if (m_state != Over) m_pairs.push_back(std::move(pair));
  return m_state != Over;
}

HatchData::State HatchData::stateAfter(State state, const Pair& pair) {
  switch (state) {
    case Empty:
      return pair.text == u"ACAD" ? Named : Over;
    case Named:
      return pair.code == kText && pair.text == u"HATCH" ? Open : Over;
    default:
      return state;
  }
}

bool HatchData::takeText(long code, std::u16string_view text) {
  return has(code) && m_pairs[m_next++].text.view() == text;
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
  long noRings;
  if (!parseHead(name) || !takeInteger(kLong, noRings)) return false;
  for (; noRings > 0; --noRings) {
    rings.emplace_back();
    if (!parseRing(rings.back())) return false;
  }
  type = getHatch(name);
  std::vector<HATCH_LINE> lines;
  if (has(kText)) {
    if (!parseFamilies(lines)) return false;
    type = &types.intern(name, lines);
  }
  return takeText(kBrace, u"}") && type != nullptr && !rings.empty();
}

bool HatchData::parseHead(zim::WString& name) {
  long one, zero, evenOdd;
  zim::WString handle;
  PNT_3D seed, elevation, normal;
  return takeText(kApplication, u"ACAD") && takeText(kText, u"HATCH") && takeText(kBrace, u"{") &&
         takeInteger(kShort, one) && takeText(name) && takeReal(scale) && takeReal(angleRad) &&
         takeText(kText, u"ASC_BOUNDS") && takeInteger(kShort, one) && takeInteger(kShort, zero) &&
         takeText(kText, u"ASC_SEEDPOINT") && takePoint(kPointX, seed) &&
         takeText(kText, u"R14_HATCH_DATA") && takeText(handle) && takePoint(kPointX, elevation) &&
         takePoint(kDirectionX, normal) && takeInteger(kShort, evenOdd);
}

// The count is that of the points behind the first.
bool HatchData::parseRing(std::vector<PNT_3D>& ring) {
  long kind, further;
  double elevation;
  if (!takeInteger(kShort, kind) || !takeReal(elevation) || !takeInteger(kLong, further))
    return false;
  for (; further >= 0; --further) {
    ring.emplace_back();
    if (!takePoint(kPointX, ring.back())) return false;
  }
  return ring.size() >= 3;
}

bool HatchData::parseFamilies(std::vector<HATCH_LINE>& lines) {
  long noFamilies;
  if (!takeText(kText, u"PATTERN_LINES") || !takeInteger(kLong, noFamilies)) return false;
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
  if (!takeReal(line.angle) || !takePoint(kPointX, base) || !takePoint(kDirectionX, offset) ||
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
