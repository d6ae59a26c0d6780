#pragma once

#include <vector>

#include "dxf/in/recordreader.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

// Builds entities that approximate unsupported kinds, with the properties of the current record.
// Each function returns null and records an error if a coordinate is non-finite or memory runs out.

/// Plain polyline through the points. `flags` are those of `CEntPolyline`: closed or not, and for a
/// curve that the linetype pattern continues from chord to chord.
EntPtr buildChain(RecordReader& in, const std::vector<PNT_3D>& points, short flags,
                  vek0::Handle handle);

/// 3D face; bit i of `hiddenEdges` hides the edge that begins at corner i.
EntPtr buildFace(RecordReader& in, const PNT_3D (&corners)[4], long hiddenEdges,
                 vek0::Handle handle, FaceFill fill = FaceFill::None);

/// One closed polyline per ring; the first gets the handle.
std::vector<EntPtr> buildOutlines(RecordReader& in, const std::vector<std::vector<PNT_3D>>& rings,
                                  vek0::Handle handle);

/// Replaces a patterned hatch by its outlines, and reports it. All but the first become the
/// record's further entities; null if there are none.
EntPtr outlineHatch(RecordReader& in, const std::vector<std::vector<PNT_3D>>& rings,
                    const zim::WString& pattern);

/// Returns the first as the record's entity, makes the others its further entities, in order, and
/// reports that `kind` was replaced. An empty list is error 20.
EntPtr handOver(RecordReader& in, std::vector<EntPtr> built, const zim::WString& kind);

/// Processes a coordinate of a list of points: x begins the next point, y and z complete the last
/// one. `axis` is 0 for x to 2 for z; error 20 if there is no point yet.
void takeCoordinate(RecordReader& in, long axis, std::vector<PNT_3D>& points);

}  // namespace vek0::detail
