#pragma once

#include "dxfin/recordreader.h"

namespace vek0::detail {

// Kinds that consist of straight edges and have no class of their own in a drawing. Each
// reader starts on the group 0 of its record.

/// SOLID and TRACE: a filled 3D face.
EntPtr readSolid(RecordReader& in);
/// MLINE: polylines along each of the parallel lines, one for each piece that it is cut
/// into; without the ends, fills and colors of its style.
EntPtr readMultiline(RecordReader& in);
/// MESH: the faces before subdivision, as 3D faces.
EntPtr readSubdivisionMesh(RecordReader& in);

}  // namespace vek0::detail
