#pragma once

#include "vek0core/geometry/pnt.h"

class CEnt3DFace;

namespace vek0::detail {

/// A filled face as a SOLID or TRACE record has it: in a plane of its own, with the last two
/// corners exchanged.
struct SavedSolid {
  PNT_3D corners[4];  ///< in the axes of that plane
  PNT_3D normal;      ///< of length 1 but for rounding; exactly 0, 0, 1 for a level face
};

/// False when the corners are not in one plane. With `flatten` all of them are at height 0.
bool savedSolid(const CEnt3DFace& face, bool flatten, SavedSolid& out);

}  // namespace vek0::detail
