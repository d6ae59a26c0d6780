#include "vek0host/undocheck.h"
#include "support/test.h"

namespace {

using vek0::host::checkUndo;
using vek0::host::stateOf;

// A drawing with one line, and the step that moves it.
class UndoCheck : public testing::Test {
 protected:
  void SetUp() override {
    line = createEntLine(*data, LINE_3D(0, 0, 0, 1, 2, 3), 0);
    data->getEntTable().add(line);
    before = stateOf(*data);
  }
  void moveKept() {
    ASSERT_TRUE(undo.keepGeometry(*line));
    move();
  }
  void move() {
    line->getLine().move(PNT_3D(1, 0, 0));
    line->calcBdry();
    data->getEntTable().invalidateBdry();
  }

  const CDataPtr data{CDataFactory().createData()};
  CUndoStack undo{*data};
  CEntLine* line = nullptr;
  std::string before;
};

TEST_F(UndoCheck, PassesWhatWasKept) {
  moveKept();
  const std::string after = stateOf(*data);
  EXPECT_EQ(checkUndo(*data, undo, before), "");
  EXPECT_EQ(stateOf(*data), after);
}

TEST_F(UndoCheck, SeesAChangeThatNobodyKept) {
  moveKept();
  line->setColor(3);
  EXPECT_EQ(checkUndo(*data, undo, before), "undoing did not restore the drawing");
}

TEST_F(UndoCheck, SeesTraitsThatFilesCannotHold) {
  moveKept();
  ENT_TRAITS traits;
  traits.opacity = 99;
  line->setTraits(traits);
  EXPECT_EQ(checkUndo(*data, undo, before), "undoing did not restore the drawing");
}

TEST_F(UndoCheck, SeesAnEditPastTheStack) {
  move();
  EXPECT_EQ(checkUndo(*data, undo, before), "undoing did not restore the drawing");
}

TEST_F(UndoCheck, SeesAStepThatCannotBeUndone) {
  moveKept();
  undo.begin(u"never closed");
  EXPECT_EQ(checkUndo(*data, undo, before), "a step cannot be undone");
}

TEST_F(UndoCheck, ComparesNothingWithNothing) {
  moveKept();
  EXPECT_NE(checkUndo(*data, undo, ""), "");
}

}  // namespace
