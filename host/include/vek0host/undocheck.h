#pragma once

#include <string>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// All properties of the drawing as text: the content of a file, and what files cannot hold. Only
/// for comparison with the same drawing. Empty if it cannot be written.
std::string stateOf(const CData& data);

/// Undoes every step, compares the drawing with the result of `stateOf` before the first of them,
/// redoes all and compares with the initial state. Returns an empty text, or a description of the
/// difference; the drawing is then left in that state.
std::string checkUndo(CData& data, CUndoStack& undo, const std::string& before);

}  // namespace vek0::host
