#pragma once

#include <span>

#include "dxf/keep/recordwriter.h"

class CFileReport;

namespace vek0::detail {

/// Changes the properties that all entities have, in an entity's record and in those that belong to
/// it, in the way in which they differ between `before` and `after`. Parts that had the entity's
/// value follow it; attributes have their own. What the version cannot hold is reported.
void patchProperties(std::span<SourceRecord> records, const CEnt& before, const CEnt& after,
                     RecordWriter& writer, const SourceVersion& version, CFileReport* report);

}  // namespace vek0::detail
