#include "dxf/keep/newrecords.h"

#include <cstdint>
#include <utility>

namespace vek0::detail {

SourcePair pairOf(long code, std::string value) { return {code, std::move(value), 0, true}; }

std::string hexOf(Handle handle) {
  char digits[2 * sizeof handle];
  auto bits = static_cast<std::uint64_t>(handle);
  std::size_t at = sizeof digits;
  do {
    digits[--at] = "0123456789ABCDEF"[bits & 15];
    bits >>= 4;
  } while (bits != 0);
  return std::string(digits + at, sizeof digits - at);
}

void setFrame(SourceRecord& record, Handle handle, Handle owner) {
  const std::size_t own = record.find(5), of = record.find(330);
  if (own != SourceRecord::kNone) record.setText(own, hexOf(handle));
  if (of != SourceRecord::kNone) record.setText(of, hexOf(owner));
}

bool isPart(const SourceRecord& record) {
  return record.is("VERTEX") || record.is("ATTRIB") || record.is("SEQEND");
}

void setFrames(std::span<SourceRecord> records, Handle first, Handle owner, SourceEdits& edits) {
  Handle entity = first;
  for (SourceRecord& record : records) {
    const Handle handle = &record == &records.front() ? first : edits.takeHandle();
    if (!isPart(record)) entity = handle;
    setFrame(record, handle, isPart(record) ? entity : owner);
  }
}

}  // namespace vek0::detail
