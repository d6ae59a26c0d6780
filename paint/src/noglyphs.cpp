// In builds without a glyph table, texts have the default metrics.
#include "builtinglyphs.h"

namespace vek0::paint {

std::string_view builtInGlyphs() { return {}; }

}  // namespace vek0::paint
