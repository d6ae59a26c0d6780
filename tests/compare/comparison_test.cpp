// Laws of comparing drawings, over the samples and, if there are any, the drawings of other
// programs in the folder that VEK0_CORPUS names.
#include "support/kept.h"
#include "support/test.h"

namespace {

std::vector<Source> drawings() {
  std::vector<Source> sources;
  addDrawings(sources, samplePath());
  if (const char* corpus = std::getenv("VEK0_CORPUS")) addDrawings(sources, corpus);
  return sources;
}

using Handles = std::set<vek0::Handle>;

COMPARISON compareBy(EntMatch match, const CData& before, const CData& after) {
  COMPARE_OPTIONS options;
  options.match = match;
  return compareDrawings(before, after, options);
}

std::string inShort(const COMPARISON& found) {
  std::ostringstream text;
  text << found.removed.size() << " removed, " << found.added.size() << " added, "
       << found.moved.size() << " moved, " << found.changed.size() << " changed, "
       << found.items.size() << " items; " << std::hex;
  for (const CEnt* ent : found.removed) text << " -" << ent->GetHandle();
  for (const CEnt* ent : found.added) text << " +" << ent->GetHandle();
  for (const ENT_CHANGE& change : found.moved) text << " >" << change.before->GetHandle();
  for (const ENT_CHANGE& change : found.changed)
    text << " ~" << change.before->GetHandle() << '/' << change.aspects;
  for (const ITEM_CHANGE& item : found.items) text << ' ' << item.name.toUtf8();
  return text.str();
}

// Whether handles identify the entities, and none of them came from reading.
bool hasOwnHandles(const Kept& kept) {
  const auto& manager = dynamic_cast<const CHandleManager&>(kept.data->getHandleGestor());
  bool areOwn = true;
  vek0::forEachEnt(*kept.data,
                   [&](const CEnt& ent) { areOwn = areOwn && !manager.isGiven(ent.GetHandle()); });
  return areOwn;
}

// What was done to a drawing.
struct Edits {
  PNT_3D by{12.5, -3, 0};
  Handles moved, recolored, movedAndRecolored, removed;
  std::size_t added = 0;
};

// What shows nothing cannot be seen to move.
bool isShown(const CEnt& ent) { return ent.getBdry().validRegion(); }

// Copies of records are written as their pieces.
bool isOneRecord(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  return !insert || ent.getType() != CEntInsert::kType ||
         (insert->getBlock() && !insert->getBlock()->isOfRecord());
}

Edits editAtRandom(Kept& kept, CUndoStack& undo, std::mt19937& random) {
  Edits edits;
  std::vector<CEnt*> all = kept.model();
  std::erase_if(all, [](const CEnt* ent) { return !isShown(*ent); });
  std::shuffle(all.begin(), all.end(), random);
  if (all.size() > 20) all.resize(20);
  CEntMoveVisitor move(edits.by), away(PNT_3D(1000.25, 77, 0));
  undo.begin(u"edit");
  for (std::size_t i = 0; i < all.size(); ++i) {
    CEnt& ent = *all[i];
    const std::size_t kind = i % 5;
    const vek0::Handle handle = ent.GetHandle();
    if (kind < 3) undo.keep(ent);
    if (kind == 0 || kind == 2) ent.accept(move);
    if (kind == 1 || kind == 2)
      ent.setColor(ent.getColor() == 5 && !ent.getTraits().hasTrueColor() ? 6 : 5);
    if (kind == 0) edits.moved.insert(handle);
    if (kind == 1) edits.recolored.insert(handle);
    if (kind == 2) edits.movedAndRecolored.insert(handle);
    if (kind == 3 && undo.remove(&ent)) edits.removed.insert(handle);
    if (kind != 4 || !isOneRecord(ent)) continue;
    CEnt* copy = cloneEnt(*kept.data, ent);
    copy->accept(away);
    if (undo.add(copy)) ++edits.added;
  }
  undo.commit();
  return edits;
}

Handles handlesOf(const std::vector<const CEnt*>& ents) {
  Handles handles;
  for (const CEnt* ent : ents) handles.insert(ent->GetHandle());
  return handles;
}

Handles handlesOf(const std::vector<ENT_CHANGE>& changes, bool isMoved) {
  Handles handles;
  for (const ENT_CHANGE& change : changes)
    if (change.has(EntAspect::Geometry) == isMoved) handles.insert(change.before->GetHandle());
  return handles;
}

void expectExactly(const Edits& edits, const COMPARISON& found) {
  EXPECT_EQ(handlesOf(found.removed), edits.removed);
  EXPECT_EQ(found.added.size(), edits.added);
  EXPECT_EQ(handlesOf(found.moved, true), edits.moved);
  EXPECT_EQ(handlesOf(found.changed, false), edits.recolored);
  EXPECT_EQ(handlesOf(found.changed, true), edits.movedAndRecolored);
  EXPECT_TRUE(found.items.empty());
  for (const std::vector<ENT_CHANGE>* changes : {&found.moved, &found.changed})
    for (const ENT_CHANGE& change : *changes)
      if (change.has(EntAspect::Geometry)) {
        ASSERT_TRUE(change.by);
        EXPECT_NEAR(change.by->x, edits.by.x, 4 * found.tolerance);
        EXPECT_NEAR(change.by->y, edits.by.y, 4 * found.tolerance);
      }
}

}  // namespace

TEST(Comparison, EveryDrawingEqualsItself) {
  for (const auto& [name, bytes] : drawings()) {
    SCOPED_TRACE(name);
    const Kept one(bytes), other(bytes);
    for (const EntMatch match : {EntMatch::Handles, EntMatch::Geometry})
      EXPECT_EQ(inShort(compareBy(match, *one.data, *other.data)), inShort(COMPARISON()));
  }
}

TEST(Comparison, ReportsExactlyTheEdits) {
  for (const auto& [name, bytes] : drawings()) {
    SCOPED_TRACE(name);
    const Kept before(bytes);
    if (!before.isLoaded || !hasOwnHandles(before)) continue;
    Kept edited(bytes);
    CUndoStack undo(*edited.data);
    std::mt19937 random(static_cast<unsigned>(bytes.size()));
    const Edits edits = editAtRandom(edited, undo, random);
    const COMPARISON inMemory = compareBy(EntMatch::Handles, *before.data, *edited.data);
    SCOPED_TRACE(inShort(inMemory));
    expectExactly(edits, inMemory);
    const Kept after(edited.saved());
    const COMPARISON found = compareBy(EntMatch::Handles, *before.data, *after.data);
    SCOPED_TRACE(inShort(found));
    expectExactly(edits, found);
    const COMPARISON back = compareBy(EntMatch::Handles, *after.data, *before.data);
    EXPECT_EQ(handlesOf(back.added), handlesOf(found.removed));
    EXPECT_EQ(handlesOf(back.removed), handlesOf(found.added));
    EXPECT_EQ(back.moved.size(), found.moved.size());
    EXPECT_EQ(back.changed.size(), found.changed.size());
  }
}
