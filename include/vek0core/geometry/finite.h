#pragma once

#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

namespace vek0::detail {

/// Whether both are finite. Multiplying by 0 tests this without a branch: non-finite values become
/// NaN.
inline bool isFinite(double a, double b) { return a * 0 + b * 0 == 0; }
/// Whether all coordinates are finite.
inline bool isFinite(const PNT_2D& p) { return isFinite(p.x, p.y); }
inline bool isFinite(const PNT_3D& p) { return p.x * 0 + p.y * 0 + p.z * 0 == 0; }
inline bool isFinite(const RECT_2D& r) { return isFinite(r.min) && isFinite(r.max); }
inline bool isFinite(const RECT_3D& r) { return isFinite(r.min) && isFinite(r.max); }

}  // namespace vek0::detail
