#include "dxf/in/convert/replacement.h"

#include <algorithm>
#include <cmath>

#include "dxf/in/coordinate.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/geometry/finite.h"

namespace vek0::detail {

namespace {

template <class Points>
bool areFinite(const Points& points) {
  return std::all_of(std::begin(points), std::end(points),
                     [](const PNT_3D& p) { return isFinite(p); });
}

EntPtr takeFirst(RecordReader& in, std::vector<EntPtr>& built) {
  for (std::size_t i = 1; i < built.size(); ++i) in.further.push_back(std::move(built[i]));
  return std::move(built.front());
}

}  // namespace

EntPtr buildChain(RecordReader& in, const std::vector<PNT_3D>& points, short flags,
                  vek0::Handle handle) {
  if (!areFinite(points)) {
    in.fail(CFileDXFIError::InconsistentRecord);
    return nullptr;
  }
  const Record& r = in.record();
  auto polyline = in.make().polyline(r.withHandle(handle), flags, 0);
  if (!polyline) return nullptr;
  std::vector<BULGED_VERTEX> vertexes;
  vertexes.reserve(points.size());
  for (const PNT_3D& p : points) vertexes.push_back({p.x, p.y, p.z, 0, 0, 0, 0});
  polyline->setBulgedVertexes(in.gestor(), in.factory(), vertexes.data(), vertexes.size());
  return polyline;
}

EntPtr buildFace(RecordReader& in, const PNT_3D (&corners)[4], long hiddenEdges,
                 vek0::Handle handle, FaceFill fill) {
  if (!areFinite(corners)) {
    in.fail(CFileDXFIError::InconsistentRecord);
    return nullptr;
  }
  const Record& r = in.record();
  return in.make().filledFace(r.withHandle(handle), corners[0], corners[1], corners[2], corners[3],
                              hiddenEdges, fill);
}

std::vector<EntPtr> buildOutlines(RecordReader& in, const std::vector<std::vector<PNT_3D>>& rings,
                                  vek0::Handle handle) {
  std::vector<EntPtr> outlines;
  for (const std::vector<PNT_3D>& ring : rings)
    if (EntPtr outline = buildChain(in, ring, CEntPolyline::kClosed, outlines.empty() ? handle : 0))
      outlines.push_back(std::move(outline));
  return outlines;
}

EntPtr outlineHatch(RecordReader& in, const std::vector<std::vector<PNT_3D>>& rings,
                    const zim::WString& pattern) {
  std::vector<EntPtr> outlines = buildOutlines(in, rings, in.record().handle);
  if (in.failed() || outlines.empty()) return nullptr;
  in.note(ReportCode::HatchAsOutline, pattern);
  return takeFirst(in, outlines);
}

EntPtr handOver(RecordReader& in, std::vector<EntPtr> built, const zim::WString& kind) {
  if (!in.failed() && built.empty()) in.fail(CFileDXFIError::InconsistentRecord);
  if (in.failed()) return nullptr;
  in.note(ReportCode::KindReplaced, kind);
  return takeFirst(in, built);
}

void takeCoordinate(RecordReader& in, long axis, std::vector<PNT_3D>& points) {
  const double value = in.lexer().getDouble();
  if (axis == 0) points.emplace_back(0, 0, 0);
  if (points.empty()) return in.fail(CFileDXFIError::InconsistentRecord);
  coordinate(points.back(), axis) = value;
}

}  // namespace vek0::detail
