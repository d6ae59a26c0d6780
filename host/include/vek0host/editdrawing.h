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
  bool isTravel = false;  ///< undoes or redoes others and is no step of the undo stack itself
};

/// Takes one step, which can then be undone as one. A step that fails changes nothing.
StepOutcome takeStep(Editing& editing, const NamedStep& step);

/// How steps are taken.
struct EditOptions {
  /// Undo all steps in the end, compare the drawing with the original one and redo them, which
  /// costs the memory to undo them all.
  bool undoCheck = false;
  /// Undo all steps in the end.
  bool undoAll = false;
  /// As in `Editing`.
  bool leaveUnsupported = false;
};

/// Takes the steps in their order, beginning with all of model space selected, and reports the
/// outcome of each to the session. Returns false at the first step that fails; the steps before it
/// are then taken.
bool editDrawing(CData& data, const std::vector<NamedStep>& steps, const EditOptions& options,
                 Session& session);

}  // namespace vek0::host
