#pragma once

#include <CLI/CLI.hpp>

#include "commands.h"
#include "outputfile.h"
#include "vek0core/drawing/data.h"

namespace vek0::tool {

/// The options that every command which writes a drawing takes.
struct SaveOptions {
  bool flatten = false;
  bool visibleOnly = false;
  bool noTables = false;
  bool plain = false;
  bool force = false;

  /// The flags of `SaveDXF`.
  unsigned flags() const;
};

void addSaveOptions(CLI::App& verb, SaveOptions& options);

/// Saves into `output` and puts it in place; complains and sets the exit code when
/// that fails, and warns of what could not be written.
void save(const CData& data, OutputFile& output, const SaveOptions& options, Session& session);

}  // namespace vek0::tool
