#pragma once

#include <string>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// The whole drawing as file content; empty if it cannot be written.
std::string bytesOf(const CData& data);

/// Undoes every step, compares the drawing with the result of `bytesOf` before the first of them,
/// redoes all and compares with the initial state. Returns an empty text, or a description of the
/// difference; the drawing is then left in that state.
std::string checkUndo(CData& data, CUndoStack& undo, const std::string& before);

}  // namespace vek0::host
