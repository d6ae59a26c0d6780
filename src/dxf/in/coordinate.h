#pragma once

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// The coordinate of a point by its axis: 0 x, 1 y, any other z. The group codes of the three
/// coordinates differ by 10.
inline double& coordinate(PNT_3D& p, long axis) {
  switch (axis) {
    case 0:
      return p.x;
    case 1:
      return p.y;
    default:
      return p.z;
  }
}

}  // namespace vek0::detail
