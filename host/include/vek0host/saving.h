#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vek0core/drawing/data.h"
#include "vek0core/dxf/out/modern/saveoptions.h"
#include "vek0host/drawingfile.h"
#include "vek0host/session.h"

namespace vek0::host {

/// Options common to all commands that write a drawing.
struct SaveOptions {
  bool flatten = false;
  bool visibleOnly = false;
  bool noTables = false;
  bool plain = false;
  bool force = false;
  bool keepNames = false;
  DxfVersion version = DxfVersion::R12;

  /// The flags of `SaveDXF`.
  unsigned flags() const;
};

/// The versions by the names that `--to` accepts: "r12", "2000" and so on, in order.
std::vector<std::string> versionNames();
/// The version of that name, which must be one of them.
DxfVersion versionOf(const std::string& name);

/// Warns about losses and changes in reading `in`, unless the session is quiet.
void warnOfLosses(const std::string& in, const ReadResult& result, const Session& session);

/// The common part of all commands that write a drawing: loads `in`, calls `change` with the
/// drawing and the read result, saves it as `out`. Reports a failure to the session if one of
/// them fails (`change` returns whether to continue), and warns about what could not be written. If
/// `out` cannot be written, nothing is loaded. Returns the number of bytes written; 0 if none.
std::uintmax_t rewrite(const std::string& in, const std::string& out, const SaveOptions& options,
                       Session& session,
                       const std::function<bool(CData&, const ReadResult&)>& change);

}  // namespace vek0::host
