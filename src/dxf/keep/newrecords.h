#pragma once

#include <span>
#include <string>

#include "dxf/keep/sourceedits.h"

namespace vek0::detail {

SourcePair pairOf(long code, std::string value);
std::string hexOf(Handle handle);

/// Sets handle and owner of a record that has pairs for them.
void setFrame(SourceRecord& record, Handle handle, Handle owner);
/// The same for an entity's records with fresh handles: the first belongs to `owner`, the others to
/// the first.
void setFrames(std::span<SourceRecord> records, Handle owner, SourceEdits& edits);

}  // namespace vek0::detail
