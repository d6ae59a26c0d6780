#include "vek0host/editdrawing.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

#include "vek0host/losslog.h"
#include "vek0host/undocheck.h"

namespace vek0::host {
namespace {

bool runSteps(Editing& editing, const std::vector<NamedStep>& steps, Session& session) {
  for (const NamedStep& step : steps) {
    const StepOutcome outcome = takeStep(editing, step);
    const std::string message = step.name + ": " + outcome.text;
    if (!outcome.ok) {
      session.fail(kDrawingFailed, message);
      return false;
    }
    session.notify(message);
    if (!session.log) continue;
    for (const StepOutcome::Change& change : outcome.changes)
      session.log->addChange(change.code, change.handle, change.message);
  }
  return true;
}

bool passesUndoCheck(Editing& editing, const std::string& before, Session& session) {
  const std::size_t count = editing.undo.getNoUndo(), bytes = editing.undo.size();
  const std::string problem = checkUndo(editing.data, editing.undo, before);
  if (!problem.empty()) {
    session.fail(kDrawingFailed, "undo check: " + problem);
  } else {
    session.notify("undo check: " + counted(count, "step", "steps") + " (" + std::to_string(bytes) +
                   " bytes) undone, which restored the drawing, and redone");
  }
  return problem.empty();
}

bool undoAll(CUndoStack& undo, Session& session) {
  const std::size_t count = undo.getNoUndo();
  while (undo.getNoUndo() > 0) {
    if (undo.undo()) continue;
    session.fail(kDrawingFailed, "a step cannot be undone");
    return false;
  }
  session.notify(counted(count, "step", "steps") + " undone");
  return true;
}

}  // namespace

StepOutcome takeStep(Editing& editing, const NamedStep& step) {
  if (step.isTravel) return step.work(editing);
  editing.undo.begin(zim::WString::fromUtf8(step.name));
  StepOutcome outcome = StepOutcome::noMemory();
  try {
    outcome = step.work(editing);
  } catch (const std::bad_alloc&) {
    // As reported; what the step has done so far is reverted below.
  }
  if (outcome.ok)
    editing.undo.commit();
  else
    editing.undo.rollback();
  return outcome;
}

bool editDrawing(CData& data, const std::vector<NamedStep>& steps, const EditOptions& options,
                 Session& session) {
  // If nothing is undone, only the last step is kept.
  const bool isUndone =
      options.undoCheck || options.undoAll ||
      std::any_of(steps.begin(), steps.end(), [](const NamedStep& step) { return step.isTravel; });
  CUndoStack undo(data, isUndone ? std::numeric_limits<std::size_t>::max() : 0);
  const auto& all = data.getEntTable().getEntityTbl();
  Editing editing{data, undo, {all.begin(), all.end()}, options.leaveUnsupported};
  const std::string before = options.undoCheck ? stateOf(data) : std::string();
  return runSteps(editing, steps, session) &&
         (!options.undoCheck || passesUndoCheck(editing, before, session)) &&
         (!options.undoAll || undoAll(undo, session));
}

}  // namespace vek0::host
