#pragma once

#include <string>

#include "vek0host/json.h"

namespace vek0::host {

/// The patterns of the catalog: [{"name", "description", "families": [{"angle" in degrees, "base",
/// "offset" to the next line along and across it, "dashes"}]}, ...].
Json hatchPatternsToJson();

/// One line per pattern: name, number of line families, description.
std::string hatchPatternsToText();

}  // namespace vek0::host
