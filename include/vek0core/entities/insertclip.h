#pragma once

#include <vector>

#include "vek0core/geometry/pnt.h"

/// What a clipped insert shows of its block: what lies inside of the boundary by the even-odd
/// rule, whatever its z.
struct INSERT_CLIP {
  /// In the coordinates of the block's definition, to which its base point belongs; the last
  /// point is joined to the first. Without points nothing is clipped.
  std::vector<PNT_2D> boundary;
};
