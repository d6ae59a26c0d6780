#pragma once

#include <vector>

#include "vek0core/geometry/pnt.h"

/// The visible part of a clipped insert's block: everything inside the boundary by the even-odd
/// rule, at any z.
struct INSERT_CLIP {
  /// In the coordinates of the block's definition, like its base point; the last point is joined to
  /// the first. Without points, nothing is clipped.
  std::vector<PNT_2D> boundary;
};
