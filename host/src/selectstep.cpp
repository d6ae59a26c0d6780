#include <algorithm>
#include <iterator>

#include "vek0host/editsteps.h"
#include "vek0host/selection.h"

namespace vek0::host {
namespace {

StepOutcome select(Editing& editing, Selection selection) {
  const std::string problem = selection.findLayers(editing.data);
  if (!problem.empty()) return StepOutcome::failed(problem);
  const auto& all = editing.data.getEntTable().getEntityTbl();
  std::vector<CEnt*> found;
  std::copy_if(all.begin(), all.end(), std::back_inserter(found),
               [&](CEnt* ent) { return selection.includes(*ent); });
  if (found.empty()) return StepOutcome::failed("no entity matches");
  editing.chosen = std::move(found);
  return StepOutcome::done(countedEntities(editing.chosen.size()) + " selected");
}

}  // namespace

std::string readSelect(const std::string& text, EditStep& step) {
  Selection selection;
  std::string problem = selection.parse(text);
  if (problem.empty()) step = [selection](Editing& editing) { return select(editing, selection); };
  return problem;
}

}  // namespace vek0::host
