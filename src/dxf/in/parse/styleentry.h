#pragma once

#include "dxf/in/parse/sectioninput.h"

namespace vek0::detail {

/// Reads one entry of the STYLE table, at whose group 0 the lexer is positioned.
void readStyleEntry(SectionInput& in);

}  // namespace vek0::detail
