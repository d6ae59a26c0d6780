#pragma once

#include "vek0core/tables/colors.h"

namespace vek0::detail {

/// What stands in for a layer's colour that is none: the colour of layer "0".
inline constexpr short kColorDefault = 7;

/// Whether readers take it as the colour of an entity: BYBLOCK, an index, BYLAYER.
constexpr bool isEntityColor(short color) { return color >= 0 && color <= kColorByLayer; }
/// Whether readers take it as the colour of a layer.
constexpr bool isLayerColor(short color) { return color > 0 && color < kColorByLayer; }

}  // namespace vek0::detail
