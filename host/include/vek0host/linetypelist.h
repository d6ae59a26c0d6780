#pragma once

#include <string>

#include "vek0core/ltypefile/ltypeloader.h"
#include "vek0host/inputfault.h"
#include "vek0host/json.h"

namespace vek0::host {

/// What a definition file contains, as {"file", "ok", "error", "linetypes", "report"}; `fault` is
/// that of `loadLinetypes`.
Json linetypesToJson(const std::string& path, const CLtypeLoader& loader, const InputFault& fault);

/// The same as lines for humans.
std::string linetypesToText(const std::string& path, const CLtypeLoader& loader,
                            const InputFault& fault);

}  // namespace vek0::host
