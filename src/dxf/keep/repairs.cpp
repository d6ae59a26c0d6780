#include "dxf/keep/repairs.h"

#include "dxf/keep/forgetting.h"
#include "dxf/keep/newrecords.h"
#include "vek0core/drawing/everyent.h"

namespace vek0::detail {
namespace {

// The first record with a handle keeps it.
void replaceRepeated(EditContext& on) {
  std::unordered_set<Handle> seen;
  for (std::size_t i = 0; i < on.index.entries().size(); ++i) {
    const Handle handle = on.index[i].handle;
    const bool isFirst = handle == 0 || seen.insert(handle).second;
    if (isFirst || on.edits.isRemoved(i) || on.edits.isRewritten(i)) continue;
    SourceRecord& record = on.edits.change(i);
    const std::size_t at = record.find(on.index.is(i, "DIMSTYLE") ? 105 : 5);
    if (at == SourceRecord::kNone) continue;
    record.setText(at, hexOf(on.edits.takeHandle()));
    on.note(ReportCode::HandleRepeated, zim::WString::fromUtf8(hexOf(handle)));
  }
}

void forgetDangling(EditContext& on) {
  if (on.version.isOld) return;
  std::unordered_set<Handle>& forgotten = on.edits.forgotten();
  for (std::size_t i = 0; i < on.index.entries().size(); ++i)
    for (const SourcePair& pair : on.index.read(i).pairs) {
      const Handle handle = isPointer(pair.code) ? handleOf(pair) : 0;
      if (handle != 0 && on.index.withHandle(handle) == SourceIndex::kNone)
        forgotten.insert(handle);
    }
}

}  // namespace

void repair(EditContext& on, ItemEdits& items) {
  forEachEnt(on.data, [&items](const CEnt& ent) { items.need(ent); });
  replaceRepeated(on);
  forgetDangling(on);
  if (on.index.isCut()) on.edits.close(on.index.entries().size() - 1);
}

}  // namespace vek0::detail
