#pragma once

#include "vek0core/tables/colors.h"

namespace vek0::detail {

/// Replaces an invalid layer color: the color of layer "0".
inline constexpr short kColorDefault = 7;

/// Whether readers accept it as the color of an entity: BYBLOCK, an index, BYLAYER.
constexpr bool isEntityColor(short color) { return color >= 0 && color <= kColorByLayer; }
/// Whether readers accept it as the color of a layer.
constexpr bool isLayerColor(short color) { return color > 0 && color < kColorByLayer; }

}  // namespace vek0::detail
