#pragma once

#include <vector>

#include "dxfin/recordreader.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

// Entities that stand for kinds without a class in a drawing. They look as the current
// record says. Each function gives null, with an error recorded, when a coordinate is not
// finite or memory is out.

/// Whether all coordinates are finite.
bool isFinitePoint(const PNT_3D& p);

/// Plain polyline through the points. `flags` are those of `CEntPolyline`: closed or not, and for
/// a curve that the linetype pattern runs on from chord to chord.
EntPtr buildChain(RecordReader& in, const std::vector<PNT_3D>& points, short flags,
                  vek0::Handle handle);

/// 3D face; bit i of `hiddenEdges` hides the edge that begins at corner i.
EntPtr buildFace(RecordReader& in, const PNT_3D (&corners)[4], long hiddenEdges,
                 vek0::Handle handle, FaceFill fill = FaceFill::None);

/// One closed polyline a ring; the first gets the handle.
std::vector<EntPtr> buildOutlines(RecordReader& in, const std::vector<std::vector<PNT_3D>>& rings,
                                  vek0::Handle handle);

/// The outlines of a patterned hatch in its place, which is noted. The others are left as the
/// record's further entities; null when there are none.
EntPtr outlineHatch(RecordReader& in, const std::vector<std::vector<PNT_3D>>& rings,
                    const zim::WString& pattern);

/// Gives the first as the record's entity and leaves the others, in order, as its further
/// ones, and notes that `kind` was replaced. Nothing at all is error 20.
EntPtr handOver(RecordReader& in, std::vector<EntPtr> built, const zim::WString& kind);

/// Takes a coordinate of one of many points: an x begins the next point, y and z complete
/// the last one. `axis` is 0 for x to 2 for z; error 20 when there is no point yet.
void takeCoordinate(RecordReader& in, long axis, std::vector<PNT_3D>& points);

}  // namespace vek0::detail
