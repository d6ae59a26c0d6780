#pragma once

#include <cstdint>
#include <unordered_map>

#include "dxf/in/parse/sectioninput.h"

namespace vek0::detail {

/// The text styles of a file by the handles of their records.
using StyleHandles = std::unordered_map<std::uint64_t, CStyle*>;

/// Reads one entry of the STYLE table, at whose group 0 the lexer is positioned, and adds it to
/// `handles`.
void readStyleEntry(SectionInput& in, StyleHandles& handles);

}  // namespace vek0::detail
