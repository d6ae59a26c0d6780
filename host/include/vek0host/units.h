#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/drawing/data.h"

namespace vek0::host {

/// Name of a drawing unit ("mm", "in", ...) by the number that files state it by
/// (`$INSUNITS`); null for none and unknown ones.
const char* unitName(long code);

/// The names that `unitInMeters` accepts.
std::vector<std::string> unitNames();

/// Length of a unit in meters; nothing for an unknown name.
std::optional<double> unitInMeters(std::string_view name);

/// Scales everything in model space by `factor` (greater than 0) about the origin, inserts through
/// their scales, along with the drawing's variables and text styles that are in drawing units.
/// Block definitions are unchanged. Linear.
void scaleDrawing(CData& data, double factor);

/// Scales everything from one unit to another. `stated` is the number of the unit in the file,
/// which is often wrong, so that a name in `from` takes precedence. The drawing's unit is the
/// target then. Returns false without a change if a unit is unknown.
bool convertUnits(CData& data, long stated, const std::string& from, const std::string& to);

}  // namespace vek0::host
