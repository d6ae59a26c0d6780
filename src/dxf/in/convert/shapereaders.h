#pragma once

#include "dxf/in/recordreader.h"

namespace vek0::detail {

// Unsupported kinds that consist of straight edges. Each reader starts at the group 0 of its
// record.

/// SOLID and TRACE: a filled 3D face.
EntPtr readSolid(RecordReader& in);
/// MLINE: polylines along each of the parallel lines, one per piece; end caps, fills and colors of
/// its style are ignored.
EntPtr readMultiline(RecordReader& in);
/// MESH: the faces before subdivision, as 3D faces.
EntPtr readSubdivisionMesh(RecordReader& in);

}  // namespace vek0::detail
