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

/// How a drawing is written.
enum class SaveForm {
  Kept,  ///< as the file that it was read from, but for the edits
  New,   ///< in one of the versions, from scratch
};

/// Options common to all commands that write a drawing.
struct SaveOptions {
  bool flatten = false;
  bool visibleOnly = false;
  bool noTables = false;
  bool plain = false;
  bool force = false;
  bool keepNames = false;
  bool backup = false;  ///< copy the replaced file to one with ".bak" behind its name
  bool repair = false;  ///< of `SaveForm::Kept`: see `CDXFSource::Damage`
  SaveForm form = SaveForm::New;
  DxfVersion version = DxfVersion::R12;  ///< for `SaveForm::New`

  /// The flags of `SaveDXF`.
  unsigned flags() const;
  bool isR12() const { return form == SaveForm::New && version == DxfVersion::R12; }
  /// Sets form and version by a name of `targetNames`.
  void setTarget(const std::string& name);
  /// The format as messages name it: "R12", "2018", or "the file" if that is kept.
  std::string targetName() const;
  /// The first of the options that belongs to R12 but is given for something else; empty if there
  /// is none.
  std::string misplacedOption() const;
};

/// What `--to` accepts: the versions "r12", "2000" and so on, in order, and "keep".
std::vector<std::string> targetNames();

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
