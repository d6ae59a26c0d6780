#pragma once

#include <vector>

#include "dxfin/ocs.h"
#include "dxfin/recordreader.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {

/// Puts a circle, arc, text or insert that was read in the coordinates of its plane into
/// those of the world. In the world's plane seen from below, all of them stay what they are,
/// mirrored; in any other plane circles and arcs become polylines, texts and inserts lie flat
/// at their point, which is reported. Other kinds are given back as they are.
EntPtr placeInWorld(RecordReader& in, EntPtr ent, const PlaneAxes& axes);

/// The same for the vertices of a plane polyline; in a plane that is not seen from above
/// or below, arcs become chords.
void placeInWorld(RecordReader& in, std::vector<BULGED_VERTEX>& vertexes, const PlaneAxes& axes,
                  bool closed);

/// Turns a text in the coordinates of one plane into the same in those of another: that of an
/// attribute into that of its insert. In planes across it lies as flat as it can.
void changePlane(TEXT_3D& text, const PlaneAxes& from, const PlaneAxes& to);

}  // namespace vek0::detail
