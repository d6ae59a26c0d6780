#pragma once

#include <string>

#include "vek0host/drawingfile.h"
#include "vek0host/json.h"

namespace vek0::host {

/// Everything `vek0 info --json` prints of one file. For a failed file, initial items are listed
/// only if they are used.
Json summaryToJson(const std::string& path, CData& data, const ReadResult& result);

/// The same as human-readable text of several lines, with the variables and what was skipped.
std::string summaryToText(const std::string& path, CData& data, const ReadResult& result);

}  // namespace vek0::host
