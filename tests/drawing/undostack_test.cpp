#include "drawing/drawings.h"
#include "drawing/randomeditor.h"
#include "support/test.h"

namespace {

CEntLine* newLine(CData& data, CLayer* layer = nullptr) {
  return createEntLine(data, layer ? layer : getCurLayer(data), getCurLtype(data), 256,
                       LINE_3D(0, 0, 0, 1, 2, 3), 0);
}

struct Snapshot {
  std::string file, counts;
  bool operator==(const Snapshot&) const = default;
};

Snapshot snapshotOf(const CData& data) {
  data.getEntTable().invalidateBdry();
  return {saved(data), countsOf(data)};
}

// The states of a drawing after each step.
class History {
 public:
  History(const CData& data, const CUndoStack& undo) : m_data(data), m_undo(undo) {}

  void note(bool isKept) {
    const std::size_t now = m_undo.getNoUndo();
    m_states.erase(m_states.lower_bound(now), m_states.end());
    if (!isKept) return;
    m_states.emplace(now, snapshotOf(m_data));
    ASSERT_EQ(countsOf(m_data), recountOf(m_data)) << "after " << now << " steps";
  }
  void check() const {
    const auto state = m_states.find(m_undo.getNoUndo());
    if (state == m_states.end()) return;
    const Snapshot now = snapshotOf(m_data);
    ASSERT_TRUE(now.file == state->second.file) << "after " << state->first << " steps\n"
                                                << difference(now.file, state->second.file);
    ASSERT_EQ(now.counts, state->second.counts) << "after " << state->first << " steps";
  }
  std::size_t size() const { return m_states.size(); }

 private:
  static std::string difference(const std::string& a, const std::string& b) {
    std::size_t at = 0;
    while (at < a.size() && at < b.size() && a[at] == b[at]) ++at;
    const std::size_t from = at > 100 ? at - 100 : 0;
    return a.substr(from, 160) + "\n--- against\n" + b.substr(from, 160);
  }

  const CData& m_data;
  const CUndoStack& m_undo;
  std::map<std::size_t, Snapshot> m_states;
};

void walkBackAndForth(CUndoStack& undo, const History& history) {
  while (undo.undo()) ASSERT_NO_FATAL_FAILURE(history.check());
  EXPECT_EQ(undo.getNoUndo(), 0u);
  while (undo.redo()) ASSERT_NO_FATAL_FAILURE(history.check());
  EXPECT_EQ(undo.getNoRedo(), 0u);
}

// Tests that take minutes without optimization run only on request.
bool isLong() { return std::getenv("VEK0_LONG_TESTS") != nullptr; }

TEST(UndoStack, EveryStateComesBackFromAnyOther) {
  const unsigned seeds = isLong() ? 40 : 4;
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    const Drawing data = newDrawing();
    CUndoStack undo(*data, ~std::size_t{0});
    RandomEditor editor(*data, undo, seed);
    History history(*data, undo);
    ASSERT_NO_FATAL_FAILURE(history.note(true));
    for (int i = 0; i < 150; ++i) {
      editor.edit();
      ASSERT_NO_FATAL_FAILURE(history.note(true));
      if (editor.number(10) == 0 && undo.merge()) ASSERT_NO_FATAL_FAILURE(history.note(true));
      if (editor.number(10) != 0) continue;
      for (int back = editor.number(6); back > 0 && undo.undo(); --back)
        ASSERT_NO_FATAL_FAILURE(history.check());
      for (int forth = editor.number(6); forth > 0 && undo.redo(); --forth)
        ASSERT_NO_FATAL_FAILURE(history.check());
    }
    ASSERT_GT(history.size(), 50u);
    ASSERT_NO_FATAL_FAILURE(walkBackAndForth(undo, history));
  }
}

TEST(UndoStack, ThousandsOfEditsGoBackAndForth) {
  const int edits = isLong() ? 100000 : 10000;
  const Drawing data = newDrawing();
  CUndoStack undo(*data, ~std::size_t{0});
  RandomEditor editor(*data, undo, 20261121);
  History history(*data, undo);
  ASSERT_NO_FATAL_FAILURE(history.note(true));
  for (int i = 1; i <= edits; ++i) {
    editor.edit();
    ASSERT_NO_FATAL_FAILURE(history.note(i % 1000 == 0));
  }
  ASSERT_GT(undo.getNoUndo(), static_cast<std::size_t>(edits) * 8 / 10);
  walkBackAndForth(undo, history);
}

TEST(UndoStack, StepsHaveNamesAndNestAndCountOnlyWithEdits) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  undo.begin(u"empty");
  EXPECT_FALSE(undo.commit());
  EXPECT_FALSE(undo.undo());
  undo.begin(u"outer");
  undo.begin(u"inner");
  EXPECT_TRUE(undo.add(newLine(*data)));
  EXPECT_FALSE(undo.commit());
  EXPECT_FALSE(undo.undo()) << "within an open step";
  EXPECT_TRUE(undo.commit());
  EXPECT_FALSE(undo.commit()) << "without an open step";
  EXPECT_EQ(undo.getUndoName(), zim::WString(u"outer"));
  EXPECT_TRUE(undo.add(newLine(*data)));
  EXPECT_EQ(undo.getUndoName(), zim::WString());
  EXPECT_EQ(undo.getNoUndo(), 2u);
  EXPECT_TRUE(undo.undo());
  EXPECT_TRUE(undo.undo());
  EXPECT_FALSE(undo.undo());
  EXPECT_EQ(undo.getRedoName(), zim::WString(u"outer"));
  EXPECT_TRUE(data->getEntTable().getEntityTbl().empty());
  EXPECT_TRUE(undo.add(newLine(*data)));
  EXPECT_FALSE(undo.redo()) << "a new edit ends what could be done again";
}

TEST(UndoStack, RollbackTakesTheWholeStepBack) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  CEntLine* line = newLine(*data);
  undo.add(line);
  const Snapshot before = snapshotOf(*data);
  undo.begin(u"dragging");
  undo.keep(*line);
  line->setColor(3);
  undo.begin(u"inner");
  undo.add(newLine(*data));
  undo.remove(line);
  undo.rollback();
  EXPECT_FALSE(undo.isOpen());
  EXPECT_EQ(snapshotOf(*data), before);
  EXPECT_EQ(undo.getNoUndo(), 1u);
}

// The second entity in drawing order must return to its place between its neighbors.
TEST(UndoStack, TheOrderOfDrawingComesBack) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  std::vector<CEnt*> lines;
  for (int i = 0; i < 100; ++i) undo.add(lines.emplace_back(newLine(*data)));
  const std::list<CEnt*> before = data->getEntTable().getEntityTbl();
  std::vector<std::size_t> ranks;
  for (const CEnt* line : lines) ranks.push_back(CEntTable::getRank(*line));
  std::mt19937 random(1);
  std::shuffle(lines.begin(), lines.end(), random);
  for (CEnt* line : lines) undo.remove(line);
  for (std::size_t i = 0; i < lines.size(); ++i) undo.undo();
  EXPECT_EQ(data->getEntTable().getEntityTbl(), before);
  std::vector<std::size_t> back;
  for (const CEnt* line : before) back.push_back(CEntTable::getRank(*line));
  EXPECT_EQ(back, ranks);
}

// In files, blocks without attribute definitions may be flagged as having some.
TEST(UndoStack, FalseFlagsOfBlocksComeBack) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  CBlock* block = addedBlock(*data, u"flagged");
  CEntLine* line = newLine(*data);
  block->add(line);
  block->setFlags(CBlock::kHasAttdefs, true);
  ASSERT_TRUE(undo.remove(line));
  for (const bool isUndone : {true, false, true}) {
    isUndone ? undo.undo() : undo.redo();
    EXPECT_EQ(block->getFlags(), isUndone ? CBlock::kHasAttdefs : 0);
  }
}

TEST(UndoStack, WhatTheDrawingUsesIsNotRemoved) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  CLayer* used = addedLayer(*data, u"used");
  CLayer* current = addedLayer(*data, u"current");
  CLayer* idle = addedLayer(*data, u"idle");
  CBlock* shown = addedBlock(*data, u"shown");
  setCurLayer(*data, current);
  data->getEntTable().add(newLine(*data, used));
  data->getEntTable().add(insertOf(*data, *shown, 1));
  EXPECT_FALSE(undo.remove(used));
  EXPECT_FALSE(undo.remove(current));
  EXPECT_FALSE(undo.remove(&data->getLayer0()));
  EXPECT_FALSE(undo.remove(&data->getLtypeContinuous()));
  EXPECT_FALSE(undo.remove(shown));
  EXPECT_TRUE(undo.remove(idle));
  EXPECT_EQ(getLayer(*data, u"idle"), nullptr);
  EXPECT_EQ(undo.getNoUndo(), 1u);
  EXPECT_TRUE(undo.undo());
  EXPECT_EQ(getLayer(*data, u"idle"), idle);
}

// An earlier step names the layer, so it must not be deleted together with the step that removed
// it.
TEST(UndoStack, ARemovedLayerAndBlockOutliveTheStepsThatNameThem) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  CLayer* layer = addedLayer(*data, u"going");
  CBlock* block = addedBlock(*data, u"going");
  CEntLine* line = newLine(*data, layer);
  CEntInsert* insert = insertOf(*data, *block, 1);
  data->getEntTable().add(line);
  data->getEntTable().add(insert);
  const Snapshot before = snapshotOf(*data);
  undo.begin(u"purge");
  undo.keep(*line);
  line->setLayer(&data->getLayer0());
  EXPECT_TRUE(undo.remove(insert));
  EXPECT_TRUE(undo.remove(block));
  EXPECT_TRUE(undo.remove(layer));
  undo.commit();
  const Snapshot after = snapshotOf(*data);
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(undo.undo());
    EXPECT_EQ(snapshotOf(*data), before);
    EXPECT_TRUE(undo.redo());
    EXPECT_EQ(snapshotOf(*data), after);
  }
  undo.clear();
  EXPECT_EQ(snapshotOf(*data), after);
}

TEST(UndoStack, ABlockIsNotMadeToInsertItself) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  CBlock* inner = addedBlock(*data, u"inner");
  CBlock* outer = addedBlock(*data, u"outer");
  EXPECT_TRUE(undo.add(*outer, insertOf(*data, *inner, 1)));
  const std::unique_ptr<CEntInsert> circular(insertOf(*data, *outer, 1));
  EXPECT_FALSE(undo.add(*inner, circular.get()));
  EXPECT_FALSE(undo.redefine(*inner, PNT_3D(0, 0, 0), 0, {circular.get()}));
  EXPECT_FALSE(circular->isHeld());
  EXPECT_TRUE(undo.undo());
  EXPECT_EQ(data->getBlockTable().getBlockGraph().getNoUsers(*inner), 0u);
  EXPECT_TRUE(undo.redo());
  EXPECT_EQ(data->getBlockTable().getBlockGraph().getNoUsers(*inner), 1u);
}

TEST(UndoStack, OldStepsGoBeyondTheLimitAndTheLastOneStays) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data, 4000);
  CEntLine* line = newLine(*data);
  data->getEntTable().add(line);
  for (int i = 0; i < 1000; ++i) {
    undo.keep(*line);
    line->setColor(static_cast<short>(i));
    EXPECT_LE(undo.size(), 4000u);
  }
  EXPECT_GT(undo.getNoUndo(), 5u);
  const std::size_t left = undo.getNoUndo();
  for (std::size_t i = 0; i < left; ++i) EXPECT_TRUE(undo.undo());
  EXPECT_EQ(line->getColor(), static_cast<short>(999 - left));
  undo.setLimit(0);
  EXPECT_TRUE(undo.remove(line));
  EXPECT_EQ(undo.getNoUndo(), 1u);
  EXPECT_TRUE(undo.undo());
  undo.clear();
  EXPECT_EQ(undo.size(), 0u);
}

// A drag makes a thousand edits. Merged, they need the memory of one edit and are undone by one
// step.
TEST(UndoStack, MergedStepsKeepTheOldestSnapshot) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  CEntLine* line = newLine(*data);
  data->getEntTable().add(line);
  const LINE_3D start = line->getLine();
  CEntMoveVisitor mover(PNT_3D(1, 0, 0));
  std::size_t once = 0;
  for (int i = 0; i < 1000; ++i) {
    undo.begin(i == 0 ? u"drag" : u"");
    undo.keepGeometry(*line);
    line->accept(mover);
    undo.commit();
    if (i == 0) once = undo.size();
    EXPECT_TRUE(i == 0 || undo.merge());
  }
  EXPECT_EQ(undo.size(), once);
  EXPECT_EQ(undo.getUndoName(), zim::WString(u"drag"));
  const LINE_3D end = line->getLine();
  EXPECT_TRUE(undo.undo());
  EXPECT_EQ(line->getLine(), start);
  EXPECT_TRUE(undo.redo());
  EXPECT_EQ(line->getLine(), end);
  EXPECT_FALSE(undo.merge()) << "nothing before it";
}

TEST(UndoStack, AHatchTakesItsBlockAlong) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  const Snapshot empty = snapshotOf(*data);
  CEntHatch* hatch = createEntHatch(*data, *getHatch(zim::WString(u"ANSI31")), 10, 0,
                                    {PNT_3D(0, 0, 0), PNT_3D(90, 0, 0), PNT_3D(90, 90, 0)}, 0);
  EXPECT_TRUE(undo.add(hatch));
  const Snapshot first = snapshotOf(*data);
  EXPECT_TRUE(undo.redefine(*hatch, 20, 1, hatch->getHatchType()));
  EXPECT_EQ(data->getBlockTable().size(), 1);
  const Snapshot second = snapshotOf(*data);
  EXPECT_NE(second, first);
  EXPECT_TRUE(undo.remove(hatch));
  EXPECT_EQ(data->getBlockTable().size(), 0);
  EXPECT_TRUE(undo.undo());
  EXPECT_EQ(snapshotOf(*data), second);
  EXPECT_TRUE(undo.undo());
  EXPECT_EQ(snapshotOf(*data), first);
  EXPECT_TRUE(undo.undo());
  EXPECT_EQ(snapshotOf(*data), empty);
}

// What a listener is told is where the drawing differs.
TEST(UndoStack, TellsWhatStepsTouch) {
  class Listener final : public IUndoListener {
   public:
    void touched(CEnt& ent) override { ents[&ent] = ent.isHeld(); }
    void touched(CBlock& block) override { blocks.insert(&block); }
    void touched(CNamedItem& item) override { items.insert(&item); }
    void touched(CLayout&) override { ++others; }
    void touchedVars() override { ++others; }
    void forget() { *this = Listener(); }

    std::map<const CEnt*, bool> ents;  // whether they are in the drawing
    std::set<const CBlock*> blocks;
    std::set<const CNamedItem*> items;
    int others = 0;
  };
  using Ents = std::map<const CEnt*, bool>;
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  Listener listener;
  undo.setListener(&listener);
  CEntLine *line = newLine(*data), *other = newLine(*data);
  CLayer* layer = addedLayer(*data, u"L");
  undo.begin(u"step");
  undo.add(line);
  undo.add(other);
  EXPECT_TRUE(listener.ents.empty());
  undo.commit();
  EXPECT_EQ(listener.ents, (Ents{{line, true}, {other, true}}));
  listener.forget();
  undo.begin(u"step");
  undo.keepProperties(*line);
  line->setColor(3);
  undo.keep(*layer);
  layer->setOff(true);
  undo.commit();
  EXPECT_EQ(listener.ents, (Ents{{line, true}}));
  EXPECT_EQ(listener.items, std::set<const CNamedItem*>{layer});
  listener.forget();
  undo.undo();
  EXPECT_EQ(listener.ents, (Ents{{line, true}}));
  EXPECT_EQ(listener.items, std::set<const CNamedItem*>{layer});
  listener.forget();
  undo.undo();
  EXPECT_EQ(listener.ents, (Ents{{line, false}, {other, false}}));
  undo.redo();
  EXPECT_EQ(listener.ents, (Ents{{line, true}, {other, true}}));
  listener.forget();
  undo.begin(u"step");
  undo.remove(line);
  undo.rollback();
  EXPECT_TRUE(listener.ents.empty());
  EXPECT_EQ(listener.others, 0);
}

TEST(UndoStack, WhatCannotBeAddedStaysTheCallers) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data);
  CEntLine* line = newLine(*data);
  data->getEntTable().add(line);
  EXPECT_FALSE(undo.add(line));
  EXPECT_FALSE(undo.add(static_cast<CEnt*>(nullptr)));
  EXPECT_FALSE(undo.remove(static_cast<CEnt*>(nullptr)));
  EXPECT_FALSE(undo.add(addedLayer(*data, u"L")));
  const std::unique_ptr<CEntLine> loose(newLine(*data));
  EXPECT_FALSE(undo.remove(loose.get()));
  EXPECT_EQ(undo.getNoUndo(), 0u);
}

}  // namespace
