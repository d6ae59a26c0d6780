#include "vek0core/drawing/undostack.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "drawing/drawings.h"
#include "drawing/randomeditor.h"
#include "vek0core/vek0core.h"

namespace {

using vek0::test::addedBlock;
using vek0::test::addedLayer;
using vek0::test::Drawing;
using vek0::test::insertOf;
using vek0::test::newDrawing;
using vek0::test::RandomEditor;
using vek0::test::saved;

CEntLine* newLine(CData& data, CLayer* layer = nullptr) {
  return createEntLine(data, layer ? layer : getCurLayer(data), getCurLtype(data), 256,
                       LINE_3D(0, 0, 0, 1, 2, 3), 0);
}

// Every use count of the drawing, by table and position.
std::string countsOf(const CData& data) {
  std::string out;
  const auto write = [&out](const char* kind, long first, long second) {
    out += std::string(kind) + std::to_string(first) + "/" + std::to_string(second) + " ";
  };
  for (CData::CLayerIterator i(data, true); *i != nullptr; ++i)
    write("layer", (*i)->getEntities(), 0);
  for (CData::CLtypeIterator i(data, true, true); *i != nullptr; ++i)
    write("ltype", (*i)->getEntities(), (*i)->getLayers());
  for (CData::CStyleIterator i(data, true); *i != nullptr; ++i)
    write("style", (*i)->getEntities(), (*i)->getDashes());
  for (int i = 0; i < data.getBlockTable().size(); ++i)
    write("block", data.getBlockTable()[i]->getEntities(), 0);
  return out;
}

// A copy is counted afresh.
std::string recountOf(const CData& data) {
  const CDataPtr copy(cloneData(data));
  return countsOf(*copy);
}

struct Snapshot {
  std::string file, counts;
  bool operator==(const Snapshot&) const = default;
};

Snapshot snapshotOf(const CData& data) {
  data.getEntTable().invalidateBdry();
  return {saved(data), countsOf(data)};
}

// What a drawing was after so many steps.
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
    ASSERT_TRUE(now.file == state->second.file)
        << "after " << state->first << " steps\n"
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

TEST(UndoStack, EveryStateComesBackFromAnyOther) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    const Drawing data = newDrawing();
    CUndoStack undo(*data, ~std::size_t{0});
    RandomEditor editor(*data, undo, seed);
    History history(*data, undo);
    ASSERT_NO_FATAL_FAILURE(history.note(true));
    for (int i = 0; i < 150; ++i) {
      editor.edit();
      ASSERT_NO_FATAL_FAILURE(history.note(true));
      if (editor.number(10) == 0 && undo.merge()) {
        ASSERT_NO_FATAL_FAILURE(history.note(true));
      }
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

TEST(UndoStack, AHundredThousandEditsGoBackAndForth) {
  const Drawing data = newDrawing();
  CUndoStack undo(*data, ~std::size_t{0});
  RandomEditor editor(*data, undo, 20261121);
  History history(*data, undo);
  ASSERT_NO_FATAL_FAILURE(history.note(true));
  for (int i = 1; i <= 100000; ++i) {
    editor.edit();
    ASSERT_NO_FATAL_FAILURE(history.note(i % 1000 == 0));
  }
  ASSERT_GT(undo.getNoUndo(), 80000u);
  walkBackAndForth(undo, history);
}

}  // namespace
