#pragma once

#include <optional>

#include "dxf/keep/spacemap.h"

class CEnt;

namespace vek0::detail {

/// The affine map that makes `to` of `from`, an earlier state of the same entity; none if there is
/// no such map. What the points leave open is as little as possible: those of a line determine a
/// rotation about the vertical axis and a uniform scale, those of a plane figure a map that keeps
/// its normal vertical or turns it along. Linear in the points.
std::optional<SpaceMap> mapBetween(const CEnt& from, const CEnt& to);

}  // namespace vek0::detail
