#pragma once

#include <span>
#include <string>

#include "dxf/keep/sourceedits.h"

namespace vek0::detail {

SourcePair pairOf(long code, std::string value);
std::string hexOf(Handle handle);

/// Sets handle and owner of a record that has pairs for them.
void setFrame(SourceRecord& record, Handle handle, Handle owner);
/// Whether the record belongs to the entity before it.
bool isPart(const SourceRecord& record);
/// The same for the records of entities, with `first` and fresh handles: parts belong to their
/// entity, the entities to `owner`.
void setFrames(std::span<SourceRecord> records, Handle first, Handle owner, SourceEdits& edits);

}  // namespace vek0::detail
