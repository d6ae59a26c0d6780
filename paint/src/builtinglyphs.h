#pragma once

#include <string_view>

namespace vek0::paint {

/// The file that `VEK0_GLYPHS` names, as `GlyphTable` reads it; empty if none was named.
std::string_view builtInGlyphs();

}  // namespace vek0::paint
