#pragma once

#include "vek0core/entities/entline.h"
#include "vek0core/geometry/rect.h"

namespace vek0::detail {

/// The segment that replaces an infinite line or ray where only segments are supported: its part
/// inside the slightly enlarged extents of its container, including at least its two points. A
/// segment is returned unchanged.
LINE_3D segmentOf(const CEntLine& ent, const RECT_3D& around);

}  // namespace vek0::detail
