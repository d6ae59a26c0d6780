#pragma once

#include <string>
#include <vector>

#include "vek0host/editing.h"
#include "vek0host/session.h"

namespace vek0::host {

/// A step with the name that messages give it.
struct NamedStep {
  std::string name;
  EditStep work;
};

/// Takes the steps in their order, beginning with all of model space selected, and reports the
/// outcome of each to the session. Returns false at the first step that fails; the drawing is then
/// partly changed. `undoCheck` undoes all steps in the end, compares the drawing with the original
/// one and redoes them, which costs the memory to undo them all.
bool editDrawing(CData& data, const std::vector<NamedStep>& steps, bool undoCheck,
                 Session& session);

}  // namespace vek0::host
