#include "recorder.h"
#include "support/test.h"
#include "vek0draw/drawindex.h"
#include "xref/referred.h"

namespace {

// Draws a frame with the index and checks that a full walk draws the same.
std::size_t shownBy(CDrawIndex& index, const CData& data) {
  CWndVpt window(1);
  window.resize(501, 501);
  window.set(-100, -100, 400, 400);
  Recorder indexed, walked;
  index.draw(CPOProjector(), window, indexed);
  drawData(data, CPOProjector(), window, walked);
  EXPECT_EQ(indexed.things.size(), walked.things.size());
  for (std::size_t i = 0; i < std::min(indexed.things.size(), walked.things.size()); ++i)
    EXPECT_TRUE(indexed.things[i].isSame(walked.things[i])) << i;
  return walked.things.size();
}

}  // namespace

// One index, kept while a reference is attached, reloaded and detached.
TEST(DrawIndex, FollowsReferences) {
  vek0::test::Sheet sheet = vek0::test::siteSheet();
  CData& data = sheet.data();
  CDrawIndex index(data);
  EXPECT_EQ(shownBy(index, data), 1u);
  sheet.resolve();
  EXPECT_EQ(shownBy(index, data), 13u);
  getLayer(data, u"FURNITURE|WOOD")->setOff(true);
  EXPECT_EQ(shownBy(index, data), 11u);

  std::string many;
  for (int i = 0; i < 300; ++i) many += lineTo(i, 100, "WOOD");
  sheet.drawings.files["furniture.dxf"] = drawingOf(layerEntry("WOOD", 3), "", many);
  sheet.resolve();
  EXPECT_EQ(shownBy(index, data), 9u);
  getLayer(data, u"FURNITURE|WOOD")->setOff(false);
  EXPECT_EQ(shownBy(index, data), 609u);

  CUndoStack undo(data);
  ASSERT_NE(bindXRef(data, undo, *sheet.xref(u"HOUSE")), nullptr);
  EXPECT_EQ(shownBy(index, data), 609u);
  undo.undo();
  EXPECT_EQ(shownBy(index, data), 609u);
  ASSERT_TRUE(detachXRef(data, undo, *sheet.xref(u"HOUSE")));
  EXPECT_EQ(shownBy(index, data), 1u);
}
