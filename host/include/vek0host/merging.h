#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vek0host/drawingfile.h"

namespace vek0::host {

/// How drawings are merged into another one.
struct MergeOptions {
  ImportConflict onConflict = ImportConflict::Base;
  bool failsOnConflict = false;  ///< instead
  std::string prefix;            ///< as in `IMPORT_POLICY`
  /// Where the base point of each drawing (`$INSBASE`) goes; nothing: everything stays in place.
  std::optional<PNT_3D> at;
  bool scalesUnits = true;  ///< to the unit of the base, if both drawings state theirs
};

/// What merging a drawing did, one sentence each.
using MergeAccount = std::vector<std::string>;

/// Merges the drawing `path` into `base`, and adds to `account`. A file with an error is skipped;
/// it is reported to the session and counts as a failed drawing. Returns false, with the base
/// unchanged, if the options do not allow the conflicts that there are.
///
/// Reads the file twice, so that `session.readsTwice` must be set if it may be the standard input.
bool mergeFile(CData& base, const std::string& path, const MergeOptions& options, Session& session,
               MergeAccount& account);

}  // namespace vek0::host
