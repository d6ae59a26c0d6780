#pragma once

#include "vek0core/geometry/pnt.h"

class CEnt3DFace;

namespace vek0::detail {

/// A filled face as stored in a SOLID or TRACE record: in its own plane, with the last two corners
/// swapped.
struct SavedSolid {
  PNT_3D corners[4];  ///< in the axes of that plane
  PNT_3D normal;      ///< unit length up to rounding; exactly 0, 0, 1 for a horizontal face
};

/// False if the corners are not coplanar. With `flatten` all of them are at height 0.
bool savedSolid(const CEnt3DFace& face, bool flatten, SavedSolid& out);

}  // namespace vek0::detail
