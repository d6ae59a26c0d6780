#include <algorithm>

#include "dxf/keep/recordkinds.h"

namespace vek0::detail {
namespace {

constexpr CodeRole kHeadRoles[] = {{10, Role::HeightPoint},
                                   {38, Role::Rise},
                                   {39, Role::Rise},
                                   {40, Role::Length},
                                   {41, Role::Length}};
constexpr CodeRole kFlatVertexRoles[] = {
    {10, Role::PlanePoint}, {40, Role::Length}, {41, Role::Length}, {42, Role::Round}};
constexpr CodeRole kRaisedVertexRoles[] = {
    {10, Role::FlatPoint}, {40, Role::Length}, {41, Role::Length}, {42, Role::Round}};
constexpr CodeRole kSpaceVertexRoles[] = {{10, Role::Point}};
constexpr long kBeforePolylineNormal[] = {10, 20, 30, 39, 40, 41, 66, 70, 71, 72, 73, 74, 75};
constexpr long kFlags = 70, kTangent = 50;

bool isInSpace(const SourceRecord& polyline) {
  constexpr long spatial = 8, mesh = 16, faces = 64;
  return (polyline.integerOf(kFlags) & (spatial | mesh | faces)) != 0;
}

// A vertex record that lists the corners of a face, and has a point without a meaning.
bool isFace(const SourceRecord& vertex) {
  constexpr long faces = 128, point = 64;
  const long flags = vertex.integerOf(kFlags);
  return (flags & faces) != 0 && (flags & point) == 0;
}

bool transformSpaceVertex(SourceRecord& vertex, const MeasuredMap& map) {
  if (isFace(vertex)) return true;
  RecordMapper mapper(vertex, map);
  mapper.applyAll(kSpaceVertexRoles);
  return mapper.commit();
}

/// What vertices in a plane take from their polyline.
struct Head {
  MeasuredPlane plane;
  bool hasElevation;
  double elevation;
};

bool transformFlatVertex(SourceRecord& vertex, const MeasuredMap& map, const Head& head) {
  constexpr long z = 30, hasTangent = 2;
  RecordMapper mapper(vertex, map, head.plane);
  mapper.elevation = head.elevation;
  const bool isRaised = head.hasElevation && vertex.find(z) == SourceRecord::kNone;
  mapper.applyAll(isRaised ? kRaisedVertexRoles : kFlatVertexRoles);
  const std::size_t tangent = vertex.find(kTangent);
  if (tangent != SourceRecord::kNone && (vertex.integerOf(kFlags) & hasTangent) != 0)
    mapper.apply(tangent, Role::Angle);
  return mapper.commit();
}

}  // namespace

bool transformPolyline(std::span<SourceRecord> records, const MeasuredMap& map) {
  SourceRecord& polyline = records.front();
  const bool inSpace = isInSpace(polyline);
  const std::size_t point = polyline.find(10);
  const bool hasElevation = point != SourceRecord::kNone;
  const Head head{MeasuredPlane(map, RecordMapper::normalOf(polyline)), hasElevation,
                  hasElevation ? polyline.pointAt(point).z : 0};
  const auto isDone = [&](SourceRecord& record) {
    if (!record.is("VERTEX")) return record.is("SEQEND") || record.is("ENDSEQ");
    return inSpace ? transformSpaceVertex(record, map) : transformFlatVertex(record, map, head);
  };
  const std::span<SourceRecord> vertices = records.subspan(1);
  if (!std::all_of(vertices.begin(), vertices.end(), isDone)) return false;
  if (inSpace) return true;
  RecordMapper mapper(polyline, map, head.plane);
  mapper.applyAll(kHeadRoles);
  mapper.setNormal(kBeforePolylineNormal);
  return mapper.commit();
}

}  // namespace vek0::detail
