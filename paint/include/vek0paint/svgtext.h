#pragma once

#include <string>
#include <string_view>

#include "vek0core/tables/handle.h"
#include "vek0draw/painter.h"

namespace vek0::paint {

/// A factor of unknown magnitude, with as many digits as a picture can show.
std::string factorText(double value);

/// Text or an attribute's value in UTF-8, without characters that are invalid in XML.
std::string escapedXml(std::string_view utf8);

/// The name of a layer in UTF-8 as part of an id: other characters than letters, digits, "-" and
/// "_" become "_".
std::string idPart(const std::string& layer);

}  // namespace vek0::paint
