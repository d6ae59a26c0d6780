#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/drawing/data.h"

namespace vek0::tool {

/// Name of a drawing unit ("mm", "in", ...) by the number that files state it by
/// (`$INSUNITS`); null for none and unknown ones.
const char* unitName(long code);

/// The names that `unitInMetres` knows.
std::vector<std::string> unitNames();

/// Length of a unit in meters; nothing for a name that is none.
std::optional<double> unitInMetres(std::string_view name);

/// Makes everything in model space `factor` (more than 0) times as large about the origin,
/// inserts by their scales, and with it what the drawing's variables and text styles hold
/// in drawing units. Definitions of blocks stay as they are. Linear.
void scaleDrawing(CData& data, double factor);

}  // namespace vek0::tool
