#pragma once

#include <string>

#include "vek0host/drawingfile.h"

namespace vek0::host {

/// Merges the drawing `path` into `base`, whose definitions take precedence. A file with an error
/// is skipped; it is reported to the session and counts as a failed drawing. Reads the file twice,
/// so that `session.readsTwice` must be set if it may be the standard input.
void mergeFile(CData& base, const std::string& path, Session& session);

}  // namespace vek0::host
