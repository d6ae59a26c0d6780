#include "dxf/keep/sourcerecord.h"

#include <algorithm>

#include "files/number.h"

namespace vek0::detail {
namespace {

ParsedDouble numberIn(std::string_view value) {
  const ParsedDouble number = parseDouble(value);
  if (number.whole || !number.finite) return number;
  std::string text(value);
  for (char& c : text) {
    if (c == ',') c = '.';
    if (c == 'D' || c == 'd') c = 'e';
  }
  return parseDouble(text);
}

// Each loop ends with the number of its entities and their handles.
void detachBoundary(SourceRecord& record) {
  constexpr long number = 97, handle = 330, isAssociative = 71;
  const auto isHandle = [&](std::size_t i) {
    return i < record.pairs.size() && record.pairs[i].code == handle;
  };
  std::size_t at = record.find(number);
  for (; at != SourceRecord::kNone; at = record.find(number, at + 1)) {
    if (!isHandle(at + 1)) continue;
    while (isHandle(at + 1)) record.erase(at + 1);
    record.setInteger(at, 0);
    const std::size_t flag = record.find(isAssociative);
    if (flag != SourceRecord::kNone) record.setInteger(flag, 0);
  }
}

}  // namespace

std::string shortestText(double value) {
  char text[kShortestRoom];
  return std::string(text, formatShortest(text, value));
}

void dropGroups(SourceRecord& record) {
  bool isInside = false;
  std::erase_if(record.pairs, [&](const SourcePair& pair) {
    const bool isMark = pair.code == kGroupCode;
    if (isMark) isInside = pair.value.starts_with('{');
    return isMark || isInside;
  });
}

void detach(SourceRecord& record) {
  constexpr long owned[] = {350, 360};
  dropGroups(record);
  std::erase_if(record.pairs, [&](const SourcePair& pair) {
    return pair.code == owned[0] || pair.code == owned[1];
  });
  if (record.is("HATCH")) detachBoundary(record);
}

double numberOf(std::string_view value) { return numberIn(value).value; }

std::size_t SourceRecord::find(long code, std::size_t from) const {
  bool isInGroup = false;
  for (std::size_t i = from; i < pairs.size() && pairs[i].code < kExtendedCode; ++i) {
    if (pairs[i].code == kEmbeddedCode && i > from) break;
    if (pairs[i].code == kGroupCode) isInGroup = pairs[i].value.starts_with('{');
    if (pairs[i].code == code && (!isInGroup || code == kGroupCode)) return i;
  }
  return kNone;
}

std::size_t SourceRecord::extendedData() const {
  const auto first = std::find_if(pairs.begin(), pairs.end(), [](const SourcePair& pair) {
    return pair.code >= kExtendedCode;
  });
  return static_cast<std::size_t>(first - pairs.begin());
}

bool SourceRecord::isFinite(std::size_t index) const { return numberIn(pairs[index].value).finite; }

double SourceRecord::real(std::size_t index) const { return numberIn(pairs[index].value).value; }

double SourceRecord::realOf(long code, double absent, std::size_t from) const {
  const std::size_t index = find(code, from);
  return index == kNone ? absent : real(index);
}

long SourceRecord::integer(std::size_t index) const { return parseLong(pairs[index].value); }

long SourceRecord::integerOf(long code, long absent, std::size_t from) const {
  const std::size_t index = find(code, from);
  return index == kNone ? absent : integer(index);
}

PNT_3D SourceRecord::pointAt(std::size_t index) const {
  const long code = pairs[index].code;
  double xyz[3] = {0, 0, 0};
  for (long axis = 0; axis < 3; ++axis) {
    const std::size_t at = index + static_cast<std::size_t>(axis);
    if (at == pairs.size() || pairs[at].code != code + 10 * axis) break;
    xyz[axis] = real(at);
  }
  return PNT_3D(xyz[0], xyz[1], xyz[2]);
}

void SourceRecord::setText(std::size_t index, std::string_view value) {
  SourcePair& pair = pairs[index];
  if (pair.value == value) return;
  pair.value = value;
  pair.isChanged = true;
}

void SourceRecord::setReal(std::size_t index, double value) {
  if (beginsWithNumber(pairs[index].value) && real(index) == value) return;
  setText(index, shortestText(value));
}

void SourceRecord::setInteger(std::size_t index, long value) {
  if (beginsWithNumber(pairs[index].value) && parseLong(pairs[index].value) == value) return;
  setText(index, std::to_string(value));
}

std::size_t SourceRecord::setPoint(std::size_t index, const PNT_3D& point) {
  const long code = pairs[index].code;
  const double xyz[3] = {point.x, point.y, point.z};
  std::size_t at = index;
  for (long axis = 0; axis < 3; ++axis) {
    const bool isThere = at < pairs.size() && pairs[at].code == code + 10 * axis;
    if (!isThere && xyz[axis] == 0) continue;
    isThere ? setReal(at, xyz[axis]) : insertReal(at, code + 10 * axis, xyz[axis]);
    ++at;
  }
  return at;
}

void SourceRecord::insert(std::size_t index, long code, std::string value) {
  pairs.insert(pairs.begin() + static_cast<std::ptrdiff_t>(index),
               SourcePair{code, std::move(value), 0, true});
}

void SourceRecord::insertReal(std::size_t index, long code, double value) {
  insert(index, code, shortestText(value));
}

void SourceRecord::erase(std::size_t index) {
  pairs.erase(pairs.begin() + static_cast<std::ptrdiff_t>(index));
}

}  // namespace vek0::detail
