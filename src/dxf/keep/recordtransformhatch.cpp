#include <cmath>

#include "dxf/keep/recordkinds.h"

namespace vek0::detail {
namespace {

constexpr CodeRole kLineEdge[] = {{10, Role::FlatPoint}, {11, Role::FlatPoint}};
constexpr CodeRole kArcEdge[] = {{10, Role::FlatPoint}, {40, Role::Length}};
constexpr CodeRole kEllipseEdge[] = {
    {10, Role::FlatPoint}, {11, Role::FlatVector}, {40, Role::Round}};
constexpr CodeRole kSplineEdge[] = {
    {10, Role::FlatPoint}, {11, Role::FlatPoint}, {12, Role::FlatVector}, {13, Role::FlatVector}};
constexpr CodeRole kPolylineLoop[] = {{10, Role::FlatPoint}, {42, Role::Round}};
constexpr CodeRole kFill[] = {{10, Role::FlatPoint}, {11, Role::FlatVector}, {41, Role::Length},
                              {49, Role::Length},    {52, Role::Angle},      {53, Role::Angle},
                              {460, Role::Radians}};
constexpr CodeRole kSolidFill[] = {
    {10, Role::FlatPoint}, {11, Role::FlatVector}, {460, Role::Radians}};
constexpr Roles kEdges[] = {{}, kLineEdge, kArcEdge, kEllipseEdge, kSplineEdge};
constexpr long kArcType = 2;

constexpr long kBeforeHatchNormal[] = {10, 20, 30};

/// Walks through a hatch. What a code means depends on the part that it is in; counts are not
/// trusted.
class HatchMapper {
 public:
  HatchMapper(SourceRecord& record, const MeasuredMap& map)
      : m_mapper(record, map), m_fill(record.integerOf(70) != 0 ? Roles(kSolidFill) : kFill) {}

  bool apply();

 private:
  enum Code : long {
    Place = 10,
    BaseX = 43,
    OffsetX = 45,
    Start = 50,
    End = 51,
    EdgeType = 72,
    Sense = 73,
    Style = 75,
    PatternType = 76,
    PatternLines = 78,
    Loops = 91,
    Loop = 92,
    Sources = 97
  };
  enum class Part { Head, Loops, Fill };

  void enter(std::size_t index);
  void enterLoops(std::size_t index);
  void takeAngle(std::size_t index);
  void turnArc(bool isClockwise);
  std::size_t applyAt(std::size_t index);
  std::size_t applyToPair(std::size_t index, bool isPoint);

  RecordMapper m_mapper;
  const Roles m_fill;
  Part m_part = Part::Head;
  bool m_isPolyline = false, m_isArc = false;
  Roles m_roles;
  // Angles of the current circular arc, whose sense follows them.
  std::size_t m_start = SourceRecord::kNone, m_end = SourceRecord::kNone;
};

bool HatchMapper::apply() {
  const std::size_t end = m_mapper.record().extendedData();
  for (std::size_t i = 1; i < end && m_mapper.isOk();) {
    enter(i);
    i = applyAt(i);
  }
  turnArc(false);
  m_mapper.setNormal(kBeforeHatchNormal);
  return m_mapper.commit();
}

void HatchMapper::enter(std::size_t index) {
  const long code = m_mapper.record().pairs[index].code;
  if (m_part == Part::Head && code == Loops) m_part = Part::Loops;
  if (m_part != Part::Loops) return;
  if (code == Style || code == PatternType || code == PatternLines) {
    turnArc(false);
    m_part = Part::Fill;
    m_roles = m_fill;
    return;
  }
  enterLoops(index);
}

void HatchMapper::enterLoops(std::size_t index) {
  constexpr long polyline = 2;
  const SourceRecord& record = m_mapper.record();
  const long code = record.pairs[index].code;
  const bool isEdge = code == EdgeType && !m_isPolyline;
  if (code != Loop && code != Sources && !isEdge) return takeAngle(index);
  turnArc(false);
  const long value = record.integer(index);
  m_isArc = isEdge && value == kArcType;
  if (code == Loop) m_isPolyline = (value & polyline) != 0;
  m_roles = code == Loop && m_isPolyline ? Roles(kPolylineLoop) : Roles();
  const auto type = static_cast<std::size_t>(value);
  if (isEdge && type < std::size(kEdges)) m_roles = kEdges[type];
  // The fit points of a spline follow their number.
  if (code == Sources) m_roles = kSplineEdge;
}

void HatchMapper::takeAngle(std::size_t index) {
  if (!m_isArc) return;
  const long code = m_mapper.record().pairs[index].code;
  if (code == Start) m_start = index;
  if (code == End) m_end = index;
  if (code == Sense) turnArc(m_mapper.record().integer(index) == 0);
}

void HatchMapper::turnArc(bool isClockwise) {
  constexpr double whole = 360, near = 1e-9;
  const std::size_t start = m_start, end = m_end;
  m_start = m_end = SourceRecord::kNone;
  if (start == SourceRecord::kNone || end == SourceRecord::kNone) return;
  if (!m_mapper.isOk() || m_mapper.plane().turn() == 0) return;
  const double span = m_mapper.real(end) - m_mapper.real(start);
  const Role role = isClockwise ? Role::ClockAngle : Role::Angle;
  m_mapper.apply(start, role);
  m_mapper.apply(end, role);
  // The ends of a full circle differ by one turn.
  if (m_mapper.isOk() && std::fabs(std::fabs(span) - whole) <= near)
    m_mapper.setReal(end, m_mapper.real(start) + span);
}

std::size_t HatchMapper::applyAt(std::size_t index) {
  const long code = m_mapper.record().pairs[index].code;
  if (m_part == Part::Head && code == Place) {
    m_mapper.elevation = m_mapper.pointAt(index).z;
    return m_mapper.apply(index, Role::HeightPoint);
  }
  if (m_part == Part::Fill && code == BaseX) return applyToPair(index, true);
  if (m_part == Part::Fill && code == OffsetX) return applyToPair(index, false);
  return m_mapper.apply(index, m_roles);
}

// The base points and offsets of pattern lines have coordinates with consecutive codes.
std::size_t HatchMapper::applyToPair(std::size_t index, bool isPoint) {
  const auto& pairs = m_mapper.record().pairs;
  const std::size_t next = index + 1;
  m_mapper.require(next < pairs.size() && pairs[next].code == pairs[index].code + 1);
  m_mapper.require(m_mapper.plane().isSimilar());
  if (!m_mapper.isOk()) return next;
  const PNT_3D p(m_mapper.real(index), m_mapper.real(next), 0);
  const PNT_3D image = isPoint ? m_mapper.plane().point(p) : m_mapper.plane().vector(p);
  m_mapper.setReal(index, image.x);
  m_mapper.setReal(next, image.y);
  return next + 1;
}

}  // namespace

bool transformHatch(SourceRecord& record, const MeasuredMap& map) {
  return HatchMapper(record, map).apply();
}

}  // namespace vek0::detail
