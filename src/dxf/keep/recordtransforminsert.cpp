#include <algorithm>
#include <cmath>

#include "dxf/keep/recordkinds.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr long kExtendedText = 1000;
constexpr long kFactors[] = {41, 42, 43};
constexpr long kBeforeFactors[] = {2, 10, 20, 30, 41, 42};
constexpr long kBeforeInsertAngle[] = {2, 10, 20, 30, 41, 42, 43};
constexpr long kBeforeInsertNormal[] = {2, 10, 20, 30, 41, 42, 43, 50, 70, 71, 44, 45};

/// What becomes of the axes of a block where an insert shows it.
struct AxisFactors {
  bool areAxes;  // whether they are still perpendicular to each other
  double x, y, z;
};

AxisFactors factorsOf(const MeasuredMap& map, const PlaneAxes& axes, double degrees) {
  const double angle = degrees * kPi / 180, c = std::cos(angle), s = std::sin(angle);
  const PNT_3D x = map.vector(axes.toWorld(PNT_3D(c, s, 0)));
  const PNT_3D y = map.vector(axes.toWorld(PNT_3D(-s, c, 0)));
  const PNT_3D z = map.vector(axes.z);
  const bool areAxes = arePerpendicular(x, y) && arePerpendicular(y, z) && arePerpendicular(z, x);
  const double hand = dot(cross(z, x), y) < 0 ? -1 : 1;
  if (map.isSimilar()) return {true, map.scale(), hand * map.scale(), map.scale()};
  return {areAxes, length(x), hand * length(y), length(z)};
}

void multiplyFactors(RecordMapper& mapper, const AxisFactors& factors) {
  const double values[] = {factors.x, factors.y, factors.z};
  for (std::size_t axis = 0; axis < std::size(kFactors); ++axis) {
    const std::size_t at = mapper.record().find(kFactors[axis]);
    if (at != SourceRecord::kNone)
      mapper.multiply(at, values[axis]);
    else if (values[axis] != 1)
      mapper.insertAfter(Anchors(kBeforeFactors).first(4 + axis), kFactors[axis], values[axis]);
  }
}

// An insert may stand for a hatch, whose extended data describes the area in its own way.
bool isHatch(const SourceRecord& record) {
  return std::any_of(record.pairs.begin(), record.pairs.end(), [](const SourcePair& pair) {
    return pair.code == kExtendedText && pair.value == "R14_HATCH_DATA";
  });
}

}  // namespace

// Blocks can be mirrored, so that the normal follows the block's own Z axis.
bool transformInsert(SourceRecord& record, const MeasuredMap& map) {
  static constexpr CodeRole roles[] = {{10, Role::PlanePoint}, {38, Role::Rise}};
  constexpr long angle = 50, columnStep = 44, rowStep = 45;
  const PlaneAxes axes(RecordMapper::normalOf(record));
  RecordMapper mapper(record, map, MeasuredPlane(map, axes.z, map.vector(axes.z)));
  const AxisFactors factors = factorsOf(map, axes, record.realOf(angle));
  mapper.require(factors.areAxes && !isHatch(record));
  mapper.applyAll(roles);
  if (!mapper.isOk()) return false;
  multiplyFactors(mapper, factors);
  const std::size_t angleAt = record.find(angle);
  const std::size_t column = record.find(columnStep), row = record.find(rowStep);
  if (column != SourceRecord::kNone) mapper.multiply(column, factors.x);
  if (row != SourceRecord::kNone) mapper.multiply(row, factors.y);
  if (angleAt == SourceRecord::kNone)
    mapper.turnMissing(angle, kBeforeInsertAngle);
  else if (!map.isMove())
    mapper.setReal(angleAt, mapper.plane().angle(mapper.real(angleAt)));
  mapper.setNormal(kBeforeInsertNormal);
  return mapper.commit();
}

// The cells have sizes of their own, and the block that displays them shows them upright. The codes
// of the place occur again in the cells.
bool transformTable(SourceRecord& record, const MeasuredMap& map) {
  constexpr long place = 10, direction = 11;
  RecordMapper mapper(record, map);
  mapper.require(map.isSimilar() && map.scale() == 1 && !map.isMirroring());
  const std::size_t at = record.find(place), along = record.find(direction);
  mapper.require(at != SourceRecord::kNone && mapper.plane().keepsNormal());
  if (!mapper.isOk()) return false;
  mapper.apply(at, Role::Point);
  mapper.require(along != SourceRecord::kNone || map.isMove());
  if (mapper.isOk() && along != SourceRecord::kNone) mapper.apply(along, Role::Direction);
  return mapper.commit();
}

}  // namespace vek0::detail
