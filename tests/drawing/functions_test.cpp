#include "drawing/drawings.h"
#include "support/test.h"

namespace {

TEST(GetColor, ResolvesByBlockThenByLayer) {
  const Drawing drawing = newDrawing();
  const CLayer* layer = addedLayer(*drawing, u"L", 3);
  const struct {
    const char* name;
    short color;
    const CLayer* layer;
    short result;
  } cases[] = {
      {"by block", 0, layer, 5},
      {"by layer", 256, layer, 3},
      {"by layer, without one", 256, nullptr, 7},
      {"its own", 4, nullptr, 4},
      {"beyond the colours", 257, layer, 257},
  };
  for (const auto& t : cases) EXPECT_EQ(getColor(t.color, t.layer, 5), t.result) << t.name;
}

TEST(ScomposeName, SplitsAtTheFirstBarWithSomethingOnBothSides) {
  for (const Row& t : rows()) {
    zim::WString xref(u"untouched"), item(u"untouched");
    const bool split = !t.text("xref").empty();
    EXPECT_EQ(scomposeName(t.wide("full"), xref, item), split);
    EXPECT_EQ(xref.toUtf8(), split ? t.text("xref") : "untouched");
    EXPECT_EQ(item.toUtf8(), split ? t.text("item") : "untouched");
  }
  zim::WString name(u"A|B"), item;
  EXPECT_TRUE(scomposeName(name, name, item)) << "the name itself may take the answer";
  EXPECT_EQ(name, u"A");
  EXPECT_EQ(item, u"B");
}

TEST(TableItems, AreAddedFoundAndRemovedByPointerAndByName) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  const std::unique_ptr<CLayer> layer(addedLayer(data, u"Walls"));
  const std::unique_ptr<CLtype> ltype(addedLtype(data, u"Dashed"));
  const std::unique_ptr<CStyle> style(addedStyle(data, u"Notes"));
  EXPECT_EQ(getLayer(data, u"WALLS"), layer.get());
  EXPECT_EQ(getLtype(data, u"dashed"), ltype.get());
  EXPECT_EQ(getStyle(data, u"NOTES"), style.get());
  removeLayer(data, u"walls");
  removeLtype(data, u"DASHED");
  removeStyle(data, u"notes");
  EXPECT_EQ(getLayer(data, u"Walls"), nullptr);
  EXPECT_EQ(getLtype(data, u"Dashed"), nullptr);
  EXPECT_EQ(getStyle(data, u"Notes"), nullptr);
  removeLayer(data, u"walls");
  removeLtype(data, ltype.get());
  addLayer(data, nullptr);
  addLtype(data, nullptr);
  addStyle(data, nullptr);
  EXPECT_EQ(data.getLayerTable().size(), 0);
}

TEST(TableItems, LayerZeroCannotBeRemovedButIsNoLongerCounted) {
  const Drawing drawing = newDrawing();
  removeLayer(*drawing, u"0");
  EXPECT_EQ(getLayer(*drawing, u"0"), &drawing->getLayer0());
  EXPECT_EQ(drawing->getLtypeContinuous().getLayers(), 0);
  removeLayer(*drawing, &drawing->getLayer0());
  EXPECT_EQ(drawing->getLtypeContinuous().getLayers(), -1) << "as the table counts any layer";
}

TEST(TableItems, StandardCanBeAndLeavesNothingBehind) {
  const Drawing drawing = newDrawing();
  const std::unique_ptr<CStyle> standard(getStyleStandard(*drawing));
  removeStyle(*drawing, standard.get());
  EXPECT_EQ(getStyleStandard(*drawing), nullptr);
  EXPECT_EQ(getStyle(*drawing, u"STANDARD"), nullptr);
}

TEST(TableItems, DependentNamesAreLookedUpInTheirReference) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  CBlockXRef* xref = addedXRef(data, u"Site");
  CLayer* dependent = data.getLayerFactory().createXRef(*xref, u"Trees", nullptr, 3, 0);
  xref->getLayerTable().add(dependent);
  EXPECT_EQ(getLayer(data, u"SITE|trees"), dependent);
  EXPECT_EQ(getLayer(data, u"SITE|0"), &data.getLayer0()) << "its layer 0 is the drawing's";
  EXPECT_EQ(getLayer(data, u"Other|Trees"), nullptr);
  EXPECT_EQ(getLtype(data, u"Site|Continuous"), &data.getLtypeContinuous());
  EXPECT_EQ(getLtype(data, u"Site|Hedge"), nullptr);
  CLayer* own = addedLayer(data, u"Site|Trees");
  EXPECT_EQ(getLayer(data, u"Site|Trees"), own) << "an item of exactly that name comes first";
}

TEST(BlockNames, AreCountedByExactNames) {
  const Drawing drawing = newDrawing();
  const CBlockTable& blocks = drawing->getBlockTable();
  EXPECT_EQ(GetBlockProgressiveName(u"*PAT", blocks), u"*PAT1");
  addedBlock(*drawing, u"*pat1");
  EXPECT_EQ(GetBlockProgressiveName(u"*PAT", blocks), u"*PAT1");
  addedBlock(*drawing, u"*PAT1");
  EXPECT_EQ(GetBlockProgressiveName(u"*PAT", blocks), u"*PAT2");
}

TEST(PurgeHatchBlocks, DeletesWhatNobodyInserts) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  CBlock* inModel = addedBlock(data, u"*PAT1");
  CBlock* inBlock = addedBlock(data, u"*PAT2");
  for (const zim::Char* name : {u"*PAT3", u"*PAT04", u"*PAT", u"*PAT5x", u"*pat6", u"PLAIN"})
    addedBlock(data, name);
  data.getEntTable().add(vek0::test::insertOf(data, *inModel, 0));
  CBlock* user = addedBlock(data, u"USER");
  user->add(vek0::test::insertOf(data, *inBlock, 0));
  addedXRef(data, u"X")->add(vek0::test::insertOf(data, *addedBlock(data, u"*PAT7"), 0));
  inModel->zeroEntities();  // use counts do not decide
  EXPECT_EQ(purgeHatchBlocks(data), 2);
  for (const Row& t : rows()) {
    EXPECT_EQ(data.getBlockTable().get(t.wide("name")) != nullptr, t.flag("there"))
        << t.wide("name").toUtf8();
  }
  EXPECT_EQ(purgeHatchBlocks(data), 0);
}

TEST(ShutdownCore, WantsTheLastDrawingGone) {
  const vek0::test::QuietAsserts asserts;
  Drawing drawing = newDrawing();
  drawing.reset(cloneData(*drawing));
  shutdownCore();
#if defined(NDEBUG)
  EXPECT_TRUE(asserts.failures().empty());
#else
  EXPECT_EQ(asserts.failures().size(), 1u);
#endif
  const std::size_t before = asserts.failures().size();
  drawing.reset();
  shutdownCore();
  EXPECT_EQ(asserts.failures().size(), before);
}

TEST(CloneEnt, MakesACopyWithoutHandleInNoTable) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  data.getEntTable().add(createEntLine(data, LINE_3D(0, 0, 0, 1, 2, 3), 0x2A));
  CEnt* original = data.getEntTable().get(0x2A);
  const std::unique_ptr<CEnt> copy(cloneEnt(data, *original));
  EXPECT_EQ(copy->GetHandle(), 0);
  EXPECT_EQ(copy->getLayer(), original->getLayer());
  EXPECT_TRUE(castLine(copy.get())->getLine() == castLine(original)->getLine());
  EXPECT_EQ(data.getEntTable().getEntityTbl().size(), 1u);
}

}  // namespace
