#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <string>

#include "commands.h"
#include "drawingfile.h"
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

/// Warns of what reading `in` has lost or changed, unless nothing is to be said.
void tellLosses(const std::string& in, const ReadResult& result, const Session& session);

/// What every command that writes a drawing does: loads `in`, lets `change` work on the
/// drawing (told what reading gave), saves it as `out`. Complains and sets the exit code when
/// one of them fails (`change` says by its answer whether to go on), and warns of what could not
/// be written. Nothing is loaded when `out` cannot be written anyway. Gives the bytes written; 0
/// when nothing was.
std::uintmax_t rewrite(const std::string& in, const std::string& out, const SaveOptions& options,
                       Session& session,
                       const std::function<bool(CData&, const ReadResult&)>& change);

}  // namespace vek0::tool
