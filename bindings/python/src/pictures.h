#pragma once

#include <map>
#include <string>
#include <vector>

#include "drawing.h"
#include "values.h"

namespace vek0::python {

/// Writes a picture of the drawing with the options of `vek0 render`, by their names with
/// underscores. Returns warnings. Throws `Fault` if it cannot be written, and
/// `std::invalid_argument` for a wrong option.
std::vector<std::string> renderPicture(Drawing& drawing, const std::string& path,
                                       const std::map<std::string, py::object>& options);

}  // namespace vek0::python
