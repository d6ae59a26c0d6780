#include "vek0host/editdrawing.h"

#include <cstddef>
#include <limits>

#include "vek0host/undocheck.h"

namespace vek0::host {
namespace {

// Each step is one undo step, so that undo is exercised as a program would use it.
bool runSteps(Editing& editing, const std::vector<NamedStep>& steps, Session& session) {
  for (const NamedStep& step : steps) {
    editing.undo.begin(zim::WString::fromUtf8(step.name));
    const StepOutcome outcome = step.work(editing);
    editing.undo.commit();
    const std::string message = step.name + ": " + outcome.text;
    if (!outcome.ok) {
      session.fail(kDrawingFailed, message);
      return false;
    }
    session.notify(message);
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

}  // namespace

bool editDrawing(CData& data, const std::vector<NamedStep>& steps, bool undoCheck,
                 Session& session) {
  // Without the check nothing is undone, so only the last step is kept.
  CUndoStack undo(data, undoCheck ? std::numeric_limits<std::size_t>::max() : 0);
  const auto& all = data.getEntTable().getEntityTbl();
  Editing editing{data, undo, {all.begin(), all.end()}};
  const std::string before = undoCheck ? stateOf(data) : std::string();
  return runSteps(editing, steps, session) &&
         (!undoCheck || passesUndoCheck(editing, before, session));
}

}  // namespace vek0::host
