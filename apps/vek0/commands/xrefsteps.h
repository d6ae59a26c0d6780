#pragma once

#include "commands.h"

namespace vek0::tool {

/// The verbs of `vek0 xrefs` that write a drawing: attach, bind, detach, repath.
void addXrefSteps(CLI::App& group, Session& session);

}  // namespace vek0::tool
