#include "dxf/keep/recordtransform.h"

#include <algorithm>
#include <vector>

#include "dxf/keep/recordkinds.h"

namespace vek0::detail {
namespace {

struct OwnKind {
  std::string_view kind;
  bool (*transform)(SourceRecord& record, const MeasuredMap& map);
};

constexpr OwnKind kOwnKinds[] = {
    {"INSERT", transformInsert},       {"ACAD_TABLE", transformTable},
    {"ELLIPSE", transformEllipse},     {"HELIX", transformHelix},
    {"HATCH", transformHatch},         {"MPOLYGON", transformHatch},
    {"MLEADER", transformMultileader}, {"MULTILEADER", transformMultileader},
};

bool transformRecord(SourceRecord& record, const MeasuredMap& map) {
  for (const auto ruleOf : {planeRule, noteRule})
    if (const KindRule* rule = ruleOf(record.kind())) return transformByRule(record, map, *rule);
  for (const OwnKind& own : kOwnKinds)
    if (record.is(own.kind)) return own.transform(record, map);
  return false;
}

bool isEnd(const SourceRecord& record) { return record.is("SEQEND") || record.is("ENDSEQ"); }

bool transformInsertWithAttributes(std::span<SourceRecord> records, const MeasuredMap& map) {
  return std::all_of(records.begin(), records.end(), [&](SourceRecord& record) {
    const bool isPart = &record == records.data() || record.is("ATTRIB");
    return isEnd(record) || (isPart && transformRecord(record, map));
  });
}

// A picture of the record where it was, for programs that do not know the kind.
void dropProxyGraphics(SourceRecord& record) {
  constexpr long length = 92, longLength = 160, chunk = 310;
  auto& pairs = record.pairs;
  const auto isSubclass = [](const SourcePair& pair) { return pair.code == kSubclassCode; };
  const auto begin = std::find_if(pairs.begin(), pairs.end(), isSubclass);
  if (begin == pairs.end() || begin->value != "AcDbEntity") return;
  const auto end = std::find_if(begin + 1, pairs.end(), isSubclass);
  const auto isPicture = [](const SourcePair& pair) {
    return pair.code == length || pair.code == longLength || pair.code == chunk;
  };
  pairs.erase(std::remove_if(begin, end, isPicture), end);
}

bool transformAll(std::span<SourceRecord> records, const MeasuredMap& map) {
  const bool isPolyline = records.front().is("POLYLINE");
  const auto transform = isPolyline ? transformPolyline : transformInsertWithAttributes;
  if (!transform(records, map)) return false;
  return std::all_of(records.begin(), records.end(), [&](SourceRecord& record) {
    dropProxyGraphics(record);
    RecordMapper mapper(record, map);
    mapper.applyExtended();
    return mapper.commit();
  });
}

MeasuredPlane planeOf(const SourceRecord& record, const MeasuredMap& map, const KindRule& rule) {
  const PNT_3D normal = PlaneAxes(RecordMapper::normalOf(record)).z;
  return rule.turnLetters && map.isMirroring() ? MeasuredPlane(map, normal, map.vector(normal))
                                               : MeasuredPlane(map, normal);
}

void applyExtrusion(RecordMapper& mapper, Anchors anchors) {
  constexpr long thickness = 39, normal = 210;
  SourceRecord& record = mapper.record();
  const std::size_t at = record.find(thickness);
  if (at == SourceRecord::kNone && record.find(normal) == SourceRecord::kNone) return;
  const PNT_3D before = PlaneAxes(RecordMapper::normalOf(record)).z;
  const MeasuredPlane plane(mapper.map(), before, mapper.map().vector(before));
  if (at != SourceRecord::kNone) mapper.multiply(at, plane.rise());
  mapper.setNormal(plane.normal(), plane.keepsNormal(), anchors);
}

}  // namespace

bool transformByRule(SourceRecord& record, const MeasuredMap& map, const KindRule& rule) {
  RecordMapper mapper(record, map, planeOf(record, map, rule));
  mapper.elevation = record.realOf(38);
  mapper.applyAll(rule.roles);
  if (rule.special && mapper.isOk()) rule.special(mapper);
  if (rule.normal == NormalRule::Plane) mapper.setNormal(rule.anchors);
  if (rule.normal == NormalRule::Extruded) applyExtrusion(mapper, rule.anchors);
  if (!mapper.commit()) return false;
  if (rule.turnLetters && mapper.plane().isMirrored()) rule.turnLetters(record, mapper.plane());
  return true;
}

bool transformRecords(std::span<SourceRecord> records, const SpaceMap& map) {
  const MeasuredMap measured(map);
  if (!measured.isUsable() || records.empty()) return false;
  // On copies, because a later record may fail.
  std::vector<SourceRecord> changed(records.begin(), records.end());
  if (!transformAll(changed, measured)) return false;
  std::move(changed.begin(), changed.end(), records.begin());
  return true;
}

}  // namespace vek0::detail
