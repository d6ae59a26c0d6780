#pragma once

#include <vector>

#include "dxf/in/recordreader.h"
#include "dxf/ocs.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {

/// Transforms a circle, arc, text or insert from the coordinates of its plane to world coordinates.
/// If the plane is the world's XY plane seen from below, they keep their kinds, mirrored; in any
/// other plane circles and arcs become polylines, and texts and inserts are laid flat at their
/// point, which is reported. Other kinds are returned unchanged.
EntPtr placeInWorld(RecordReader& in, EntPtr ent, const PlaneAxes& axes);

/// The same for the vertices of a plane polyline; in a plane that is not seen from above
/// or below, arcs become chords.
void placeInWorld(RecordReader& in, std::vector<BULGED_VERTEX>& vertexes, const PlaneAxes& axes,
                  bool closed);

/// Transforms a text from the coordinates of one plane to those of another, such as from an
/// attribute's plane to that of its insert. If the planes are inclined, it is laid as flat as
/// possible.
void changePlane(TEXT_3D& text, const PlaneAxes& from, const PlaneAxes& to);

}  // namespace vek0::detail
