#include "vek0host/editsteps.h"

namespace vek0::host {

std::string readPurge(const std::string&, EditStep& step) {
  step = [](Editing& editing) {
    const PURGED purged = purge(editing.data, editing.undo);
    return StepOutcome::done(counted(purged.blocks, "block", "blocks") + ", " +
                             counted(purged.layers, "layer", "layers") + ", " +
                             counted(purged.ltypes, "linetype", "linetypes") + " and " +
                             counted(purged.styles, "text style", "text styles") + " removed");
  };
  return {};
}

}  // namespace vek0::host
