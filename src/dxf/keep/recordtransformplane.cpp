#include <algorithm>
#include <cmath>

#include "dxf/keep/recordkinds.h"

// Points, lines, faces, circles and pictures, and curves given by points.
namespace vek0::detail {
namespace {

constexpr CodeRole kLineRoles[] = {{10, Role::Point}, {11, Role::Point}};
constexpr CodeRole kFaceRoles[] = {
    {10, Role::Point}, {11, Role::Point}, {12, Role::Point}, {13, Role::Point}};
constexpr CodeRole kSolidRoles[] = {{10, Role::PlanePoint}, {11, Role::PlanePoint},
                                    {12, Role::PlanePoint}, {13, Role::PlanePoint},
                                    {38, Role::Rise},       {39, Role::Rise}};
constexpr CodeRole kCircleRoles[] = {
    {10, Role::PlanePoint}, {38, Role::Rise}, {39, Role::Rise}, {40, Role::Length}};
constexpr CodeRole kLwpolylineRoles[] = {
    {10, Role::FlatPoint}, {38, Role::Elevation}, {39, Role::Rise},  {40, Role::Length},
    {41, Role::Length},    {42, Role::Round},     {43, Role::Length}};
constexpr CodeRole kSplineRoles[] = {{10, Role::Point},
                                     {11, Role::Point},
                                     {12, Role::Vector},
                                     {13, Role::Vector},
                                     {210, Role::Direction}};
constexpr CodeRole kEndlessRoles[] = {{10, Role::Point}, {11, Role::Direction}};
constexpr CodeRole kMeshRoles[] = {{10, Role::Point}};
constexpr CodeRole kImageRoles[] = {{10, Role::Point}, {11, Role::Vector}, {12, Role::Vector}};

constexpr long kBeforePlaneNormal[] = {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 39, 40};
constexpr long kBeforeElevation[] = {70, 90, 43};
constexpr long kBeforeLwpolylineNormal[] = {90, 70, 43, 38, 39, 10, 20, 40, 41, 42, 91};

void turnArc(RecordMapper& mapper) {
  const std::size_t start = mapper.record().find(50), end = mapper.record().find(51);
  mapper.require(start != SourceRecord::kNone && end != SourceRecord::kNone);
  if (!mapper.isOk()) return;
  // The ends of a full circle mean nothing.
  const double whole = 360, near = 1e-9;
  if (std::fabs(std::fabs(mapper.real(end) - mapper.real(start)) - whole) <= near) return;
  mapper.apply(start, Role::Angle);
  mapper.apply(end, Role::Angle);
}

void raiseLwpolyline(RecordMapper& mapper) {
  constexpr long elevation = 38;
  if (mapper.record().find(elevation) != SourceRecord::kNone) return;
  const double height = mapper.plane().point(PNT_3D(0, 0, 0)).z;
  if (height != 0) mapper.insertAfter(kBeforeElevation, elevation, height);
}

// Pictures are rectangles.
void requireRectangle(RecordMapper& mapper) {
  const SourceRecord& record = mapper.record();
  const std::size_t u = record.find(11), v = record.find(12);
  mapper.require(u != SourceRecord::kNone && v != SourceRecord::kNone);
  if (!mapper.isOk() || mapper.map().isSimilar()) return;
  mapper.require(arePerpendicular(record.pointAt(u), record.pointAt(v)));
}

constexpr KindRule kPlaneRules[] = {
    {"LINE", kLineRoles, NormalRule::Extruded, kBeforePlaneNormal},
    {"3DLINE", kLineRoles, NormalRule::Extruded, kBeforePlaneNormal},
    {"POINT", kMeshRoles, NormalRule::Extruded, kBeforePlaneNormal},
    {"CIRCLE", kCircleRoles, NormalRule::Plane, kBeforePlaneNormal},
    {"ARC", kCircleRoles, NormalRule::Plane, kBeforePlaneNormal, turnArc},
    {"3DFACE", kFaceRoles},
    {"SOLID", kSolidRoles, NormalRule::Plane, kBeforePlaneNormal},
    {"TRACE", kSolidRoles, NormalRule::Plane, kBeforePlaneNormal},
    {"LWPOLYLINE", kLwpolylineRoles, NormalRule::Plane, kBeforeLwpolylineNormal, raiseLwpolyline},
    {"SPLINE", kSplineRoles},
    {"RAY", kEndlessRoles},
    {"XLINE", kEndlessRoles},
    {"MESH", kMeshRoles},
    {"IMAGE", kImageRoles, NormalRule::None, {}, requireRectangle},
    {"WIPEOUT", kImageRoles},
};

}  // namespace

const KindRule* planeRule(std::string_view kind) {
  const auto found = std::find_if(std::begin(kPlaneRules), std::end(kPlaneRules),
                                  [&](const KindRule& rule) { return rule.kind == kind; });
  return found == std::end(kPlaneRules) ? nullptr : found;
}

bool transformHelix(SourceRecord& record, const MeasuredMap& map) {
  static constexpr CodeRole helixRoles[] = {{10, Role::Point},
                                            {11, Role::Point},
                                            {12, Role::Direction},
                                            {40, Role::Length},
                                            {42, Role::Length}};
  constexpr long handedness = 290;
  RecordMapper mapper(record, map);
  mapper.require(map.isSimilar());
  Roles roles;
  const std::size_t end = record.extendedData();
  for (std::size_t i = 1; i < end && mapper.isOk();) {
    const SourcePair& pair = record.pairs[i];
    if (pair.code == kSubclassCode)
      roles = pair.value == "AcDbHelix" ? Roles(helixRoles) : kSplineRoles;
    if (pair.code == handedness && map.isMirroring())
      record.setInteger(i, record.integerOf(handedness) == 0 ? 1 : 0);
    i = mapper.apply(i, roles);
  }
  return mapper.commit();
}

}  // namespace vek0::detail
