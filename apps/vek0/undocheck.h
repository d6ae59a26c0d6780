#pragma once

#include <string>

#include "vek0core/vek0core.h"

namespace vek0::tool {

/// The whole drawing as a file has it; empty when it cannot be written.
std::string bytesOf(const CData& data);

/// Undoes every step, compares the drawing with what `bytesOf` gave before the first of them,
/// does all again and compares with how it was found. Answers an empty text, or what is not
/// as it was; the drawing is left there then.
std::string checkUndo(CData& data, CUndoStack& undo, const std::string& before);

}  // namespace vek0::tool
