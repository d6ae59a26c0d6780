#pragma once

#include "commands.h"
#include "vek0host/references.h"
#include "vek0host/saving.h"

namespace vek0::tool {

/// Adds the reading options shared by all commands.
void addReadOptions(CLI::App& app, ReadOptions& options);

/// Adds the options of commands that write a drawing.
void addSaveOptions(CLI::App& verb, SaveOptions& options);

/// Adds the options of commands that read external references.
void addReferenceOptions(CLI::App& verb, ReferenceOptions& options);

}  // namespace vek0::tool
