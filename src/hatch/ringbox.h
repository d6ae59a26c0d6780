#pragma once

#include <vector>

#include "vek0core/geometry/rect.h"

namespace vek0::detail {

inline RECT_2D boxOf(const std::vector<PNT_3D>& points) {
  RECT_2D box;
  box.initRegion();
  for (const PNT_3D& p : points) box.updateRegion(p);
  return box;
}

}  // namespace vek0::detail
