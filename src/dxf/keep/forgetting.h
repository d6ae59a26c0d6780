#pragma once

#include <functional>
#include <unordered_set>

#include "dxf/keep/sourcerecord.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// Whether the values of the code are handles of other objects.
bool isPointer(long code);
Handle handleOf(const SourcePair& pair);

/// Removes the pointers to those handles from a record where it remains valid without them: entries
/// of dictionaries, groups and sort tables, reactors, and what selection sets of that sort list.
/// Calls `dangling` for the others. Returns whether the record has changed.
bool forgetHandles(SourceRecord& record, const std::unordered_set<Handle>& handles,
                   const std::function<void(long code, Handle handle)>& dangling);

}  // namespace vek0::detail
