#include "dxf/keep/recordmapper.h"

#include <algorithm>
#include <cmath>

#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr long kNormal = 210;

constexpr bool isPoint(Role role) { return role <= Role::FlatVector && role != Role::Elevation; }

constexpr bool isFlat(Role role) { return role == Role::FlatPoint || role == Role::FlatVector; }

// Whether the code is that of the y or z coordinate of a point, separated from its x coordinate.
bool isLostCoordinate(long code, Roles roles) {
  return std::any_of(roles.begin(), roles.end(), [&](const CodeRole& r) {
    return isPoint(r.role) && (code == r.code + 10 || (code == r.code + 20 && !isFlat(r.role)));
  });
}

bool hasFiniteValues(const PNT_3D& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool isAmong(long code, Anchors codes) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

}  // namespace

PNT_3D RecordMapper::normalOf(const SourceRecord& record) {
  const std::size_t at = record.find(kNormal);
  return at == SourceRecord::kNone ? PNT_3D(0, 0, 1) : record.pointAt(at);
}

RecordMapper::RecordMapper(SourceRecord& record, const MeasuredMap& map)
    : RecordMapper(record, map, MeasuredPlane(map, normalOf(record))) {}

RecordMapper::RecordMapper(SourceRecord& record, const MeasuredMap& map, const MeasuredPlane& plane)
    : m_record(record), m_map(map), m_plane(plane), m_isOk(plane.isUsable()) {}

double RecordMapper::real(std::size_t index) {
  require(m_record.isFinite(index));
  return m_record.real(index);
}

void RecordMapper::setReal(std::size_t index, double value) {
  require(std::isfinite(value));
  // A value that is no number means 0, and stays if that does.
  if (isOk() && m_record.real(index) != value) m_record.setReal(index, value);
}

void RecordMapper::multiply(std::size_t index, double factor) {
  if (factor != 1) setReal(index, real(index) * factor);
}

PNT_3D RecordMapper::pointAt(std::size_t index) {
  const long code = m_record.pairs[index].code;
  for (std::size_t at = index; at < m_record.pairs.size() && at < index + 3; ++at)
    if (m_record.pairs[at].code == code + 10 * static_cast<long>(at - index)) real(at);
  return m_record.pointAt(index);
}

std::size_t RecordMapper::setPoint(std::size_t index, const PNT_3D& point) {
  require(hasFiniteValues(point));
  const long code = m_record.pairs[index].code;
  const double xyz[3] = {point.x, point.y, point.z};
  std::size_t at = index;
  for (long axis = 0; axis < 3; ++axis) {
    const bool isThere = at < m_record.pairs.size() && m_record.pairs[at].code == code + 10 * axis;
    if (isThere) {
      setReal(at++, xyz[axis]);
    } else if (xyz[axis] != 0) {
      insert(at, code + 10 * axis, xyz[axis]);
    }
  }
  return at;
}

// Leaves a z coordinate alone, which some files have where none belongs.
std::size_t RecordMapper::setFlat(std::size_t index, const PNT_3D& point) {
  const PNT_3D before = m_record.pointAt(index);
  return setPoint(index, PNT_3D(point.x, point.y, before.z));
}

std::size_t RecordMapper::apply(std::size_t index, Roles roles) {
  const long code = m_record.pairs[index].code;
  const auto found =
      std::find_if(roles.begin(), roles.end(), [&](const CodeRole& r) { return r.code == code; });
  if (found != roles.end()) return apply(index, found->role);
  require(!isLostCoordinate(code, roles));
  return index + 1;
}

std::size_t RecordMapper::apply(std::size_t index, Role role) {
  if (isPoint(role)) return applyToPoint(index, role);
  applyToNumber(index, role);
  return index + 1;
}

std::size_t RecordMapper::applyToPoint(std::size_t index, Role role) {
  PNT_3D p = pointAt(index);
  if (isFlat(role)) p.z = role == Role::FlatPoint ? elevation : 0;
  switch (role) {
    case Role::Point:
      return setPoint(index, m_map.point(p));
    case Role::PlanePoint:
      return setPoint(index, m_plane.point(p));
    case Role::FlatPoint:
      return setFlat(index, m_plane.point(p));
    case Role::HeightPoint:
      return setPoint(index, PNT_3D(p.x, p.y, m_plane.point(PNT_3D(0, 0, p.z)).z));
    case Role::Vector:
      return setPoint(index, m_map.vector(p));
    case Role::Direction:
      return setPoint(index, m_map.direction(p));
    case Role::PlaneVector:
      return setPoint(index, m_plane.vector(p));
    default:
      return setFlat(index, m_plane.vector(p));
  }
}

void RecordMapper::applyToNumber(std::size_t index, Role role) {
  const double value = real(index);
  if (role == Role::Elevation) return setReal(index, m_plane.point(PNT_3D(0, 0, value)).z);
  if (role == Role::Rise) return multiply(index, m_plane.rise());
  const bool isAngle = role != Role::Length && role != Role::Round;
  require(m_plane.isSimilar() || (value == 0 && !isAngle));
  if (role == Role::Length) return multiply(index, m_plane.scale());
  if (!isAngle || (m_plane.turn() == 0 && !m_plane.isMirrored())) return;
  const double unit = role == Role::Radians ? 180 / kPi : 1;
  const double turn = role == Role::ClockAngle ? -m_plane.turn() : m_plane.turn();
  const double degrees = m_plane.isMirrored() ? -value * unit : value * unit;
  setReal(index, tidyAngle(degrees + turn) / unit);
}

void RecordMapper::applyAll(Roles roles) {
  bool isInGroup = false;
  for (std::size_t i = 1; i < m_record.pairs.size() && isOk();) {
    const SourcePair& pair = m_record.pairs[i];
    if (pair.code == kEmbeddedCode || pair.code >= kExtendedCode) return;
    if (pair.code == kGroupCode) isInGroup = pair.value.starts_with('{');
    i = isInGroup ? i + 1 : apply(i, roles);
  }
}

// The last of the anchors in the first subclass that has any; else the end of the record proper.
std::size_t RecordMapper::afterAnchors(Anchors anchors) const {
  std::size_t after = SourceRecord::kNone, i = 1;
  for (; i < m_record.pairs.size(); ++i) {
    const long code = m_record.pairs[i].code;
    if (code == kEmbeddedCode || code >= kExtendedCode) break;
    if (code == kSubclassCode && after != SourceRecord::kNone) break;
    if (isAmong(code, anchors)) after = i + 1;
  }
  return after == SourceRecord::kNone ? i : after;
}

void RecordMapper::insert(std::size_t index, long code, double value) {
  require(std::isfinite(value));
  if (isOk()) m_insertions.push_back({index, {code, shortestText(value), 0, true}});
}

void RecordMapper::insertAfter(Anchors anchors, long code, double value) {
  insert(afterAnchors(anchors), code, value);
}

void RecordMapper::insertPoint(Anchors anchors, long code, const PNT_3D& point) {
  const std::size_t at = afterAnchors(anchors);
  insert(at, code, point.x);
  insert(at, code + 10, point.y);
  insert(at, code + 20, point.z);
}

bool RecordMapper::commit() {
  if (!isOk() || m_insertions.empty()) return isOk();
  std::stable_sort(m_insertions.begin(), m_insertions.end(),
                   [](const Insertion& a, const Insertion& b) { return a.index < b.index; });
  std::vector<SourcePair> merged;
  merged.reserve(m_record.pairs.size() + m_insertions.size());
  auto next = m_insertions.begin();
  for (std::size_t i = 0; i <= m_record.pairs.size(); ++i) {
    for (; next != m_insertions.end() && next->index == i; ++next)
      merged.push_back(std::move(next->pair));
    if (i < m_record.pairs.size()) merged.push_back(std::move(m_record.pairs[i]));
  }
  m_record.pairs = std::move(merged);
  m_insertions.clear();
  return true;
}

void RecordMapper::setNormal(const PNT_3D& normal, bool isKept, Anchors anchors) {
  if (isKept || !isOk()) return;
  std::size_t at = m_record.find(kNormal);
  if (at == SourceRecord::kNone) {
    if (normal != PNT_3D(0, 0, 1)) insertPoint(anchors, kNormal, normal);
    return;
  }
  for (; at != SourceRecord::kNone && isOk(); at = m_record.find(kNormal, at + 1))
    setPoint(at, normal);
}

void RecordMapper::turnMissing(long code, Anchors anchors) {
  if (!isOk() || m_record.find(code) != SourceRecord::kNone) return;
  const double angle = m_plane.angle(0);
  if (angle != 0) insertAfter(anchors, code, angle);
}

void RecordMapper::turnMissingDirection(long code, Anchors anchors) {
  if (!isOk() || m_record.find(code) != SourceRecord::kNone) return;
  const PNT_3D x(1, 0, 0);
  if (m_map.direction(x) != x) insertPoint(anchors, code, m_map.vector(x));
}

void RecordMapper::applyExtended() {
  constexpr long point = 1011, displacement = 1012, direction = 1013, distance = 1041,
                 factor = 1042;
  for (std::size_t i = m_record.extendedData(); i < m_record.pairs.size() && isOk();) {
    const long code = m_record.pairs[i].code;
    if (code == point)
      i = setPoint(i, m_map.point(pointAt(i)));
    else if (code == displacement)
      i = setPoint(i, m_map.vector(pointAt(i)));
    else if (code == direction)
      i = setPoint(i, m_map.direction(pointAt(i)));
    else if (code == distance || code == factor)
      multiply(i++, m_map.scale());
    else
      ++i;
  }
}

}  // namespace vek0::detail
