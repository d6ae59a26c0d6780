#include "dxf/keep/repairs.h"

#include <algorithm>

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

// Objects without an owner go to the dictionary or object that names them as its own.
void giveOwners(EditContext& on) {
  std::unordered_map<Handle, Handle> owners;
  const std::size_t count = on.index.entries().size();
  const auto isObject = [&on](std::size_t i) {
    return on.index[i].section == SourceSection::Objects && on.index[i].handle != 0;
  };
  for (std::size_t i = 0; i < count; ++i)
    if (isObject(i))
      for (const SourcePair& pair : on.index.read(i).pairs)
        if (pair.code == 350 || pair.code == 360)
          owners.try_emplace(handleOf(pair), on.index[i].handle);
  for (std::size_t i = 0; i < count; ++i) {
    const auto owner = owners.find(on.index[i].handle);
    if (!isObject(i) || owner == owners.end() || on.edits.isRemoved(i)) continue;
    const SourceRecord record = on.edits.read(i);
    const std::size_t at = record.find(330);
    const std::size_t body = std::min(record.find(kSubclassCode), record.extendedData());
    const bool isStated = at < body;
    if (isStated && on.index.withHandle(handleOf(record.pairs[at])) != SourceIndex::kNone) continue;
    if (isStated)
      on.edits.change(i).setText(at, hexOf(owner->second));
    else
      on.edits.change(i).insert(body, 330, hexOf(owner->second));
    on.note(ReportCode::OwnerMissing, zim::WString::fromUtf8(std::string(on.index.kindOf(i))));
  }
}

// Texts in styles that no table has get the usual one, as when they are read.
void replaceStyles(EditContext& on) {
  std::unordered_set<std::string> declared;
  const std::size_t count = on.index.entries().size();
  for (std::size_t i = 0; i < count; ++i)
    if (on.index.is(i, "STYLE")) declared.insert(upperCase(on.index.nameOf(i)));
  for (std::size_t i = 0; i < count; ++i) {
    const SourceSection section = on.index[i].section;
    const bool isEntity = section == SourceSection::Blocks || section == SourceSection::Entities;
    if (!isEntity || on.edits.isRemoved(i) || on.edits.isRewritten(i)) continue;
    const SourceRecord record = on.edits.read(i);
    const bool isText = std::any_of(record.pairs.begin(), record.pairs.end(), [](const auto& pair) {
      return pair.code == kSubclassCode && (pair.value == "AcDbText" || pair.value == "AcDbMText");
    });
    const std::size_t style = isText ? record.find(7) : SourceRecord::kNone;
    if (style == SourceRecord::kNone) continue;
    const std::string name = record.pairs[style].value;
    if (declared.contains(upperCase(name))) continue;
    on.edits.change(i).erase(style);
    on.note(ReportCode::StyleUnknown, zim::WString::fromUtf8(name));
  }
}

}  // namespace

void repair(EditContext& on, ItemEdits& items) {
  forEachEnt(on.data, [&items](const CEnt& ent) { items.need(ent); });
  replaceRepeated(on);
  if (!on.version.isOld) {
    giveOwners(on);
    replaceStyles(on);
  }
  forgetDangling(on);
  if (on.index.isCut()) on.edits.close(on.index.entries().size() - 1);
}

}  // namespace vek0::detail
