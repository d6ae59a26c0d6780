#pragma once

#include "vek0core/entities/entline.h"
#include "vek0core/geometry/rect.h"

namespace vek0::detail {

/// What stands for an endless line or a ray where only segments are known: the part within the
/// extents, grown a little, of what surrounds it; its two points at least. A segment is itself.
LINE_3D segmentOf(const CEntLine& ent, const RECT_3D& around);

}  // namespace vek0::detail
