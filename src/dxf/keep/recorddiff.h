#pragma once

#include <span>

#include "dxf/keep/sourcerecord.h"

namespace vek0::detail {

/// Changes the records of a source in the way in which `before` became `after`: the same records as
/// our writers form them for an entity as it was read and as it is now. Concerns only what
/// describes the kind: no handles, owners, names of classes, and none of the properties that all
/// entities have. Returns false, with the records in any state, if they are not those of `before`:
/// of another kind, in another plane, or with other values where they have to change.
bool patchRecords(std::span<SourceRecord> records, std::span<const SourceRecord> before,
                  std::span<const SourceRecord> after);

/// The same for one record of a table, all of its pairs but handles and names of classes included.
bool patchEntry(SourceRecord& record, const SourceRecord& before, const SourceRecord& after);

}  // namespace vek0::detail
