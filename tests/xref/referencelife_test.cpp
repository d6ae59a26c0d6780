#include "support/test.h"
#include "xref/referred.h"

// Undo steps, other references and the drawing itself may still name items of a reference that is
// reloaded, detached or bound.

namespace {

using testing::Contains;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

bool isInDrawing(const CData& data, const CEnt& ent) {
  const CLayer* layer = ent.getLayer();
  const CLtype* ltype = ent.getLtype();
  return (layer == &data.getLayer0() || layer->isHeld()) &&
         (ltype->isByLayer() || ltype->isByBlock() || ltype->isHeld());
}

// Whether everything shown uses layers and linetypes of a table.
bool areItemsInDrawing(const CData& data) {
  bool are = true;
  const auto look = [&](const CBlock& block) {
    for (unsigned i = 0; i < block.size(); ++i) are = are && isInDrawing(data, *block[i]);
  };
  for (const CEnt* ent : data.getEntTable().getEntityTbl()) are = are && isInDrawing(data, *ent);
  for (int i = 0; i < data.getBlockXRefTable().size(); ++i) {
    look(*data.getBlockXRefTable()[i]);
    for (const auto& block : data.getBlockXRefTable()[i]->getBlocks()) look(*block);
  }
  return are;
}

// A house with its own line on a layer of the furniture.
std::string houseOnIron(const std::string& ltype) {
  const std::string dashed =
      pairs("0 LTYPE", "2 DASHED", "70 0", "3 -", "72 65", "73 2", "40 2", "49 1", "49 -1");
  return vek0::test::section("TABLES", vek0::test::table("LTYPE", dashed)) +
         drawingOf(layerEntry("FURNITURE|IRON", 4, ltype, 16),
                   referenceTo("FURNITURE", "furniture.dxf"),
                   lineTo(10, 0, "FURNITURE|IRON") + insertAt("FURNITURE", 2));
}

TEST(ReferenceLife, ItemsThatAnotherReferenceIsOnStay) {
  for (const bool isThere : {false, true}) {
    Sheet sheet = siteSheet();
    CData& data = sheet.data();
    if (isThere)
      sheet.drawings.files["furniture.dxf"] =
          drawingOf(layerEntry("IRON", 4), "", lineTo(1, 1, "IRON"));
    sheet.drawings.files["house.dxf"] = houseOnIron("DASHED");
    for (int i = 0; i < 2; ++i) {
      ASSERT_EQ(sheet.resolve(), 0);
      const CLayer* iron = getLayer(data, u"FURNITURE|IRON");
      ASSERT_NE(iron, nullptr);
      EXPECT_EQ(iron->getLtype(),
                isThere ? &data.getLtypeContinuous() : getLtype(data, u"HOUSE|DASHED"));
      EXPECT_TRUE(areItemsInDrawing(data));
      for (const char16_t* name : {u"FURNITURE", u"HOUSE"})
        EXPECT_TRUE(resolveXRef(data, *sheet.xref(name), sheet.drawings, sheet.options()));
      EXPECT_TRUE(areItemsInDrawing(data));
      EXPECT_EQ(countsOf(data), recountOf(data));
    }
    const CDataPtr copy(cloneData(data));
    EXPECT_TRUE(areItemsInDrawing(*copy));
    EXPECT_EQ(linesShown(*copy), linesShown(data));
  }
}

TEST(ReferenceLife, UndoingBringsItemsBackThatTheFileHasNoMore) {
  Sheet sheet = siteSheet();
  CData& data = sheet.data();
  ASSERT_EQ(sheet.resolve(), 0);
  const std::string house = sheet.drawings.files["house.dxf"];
  CLayer* furn = getLayer(data, u"HOUSE|FURN");
  CEntLine* line =
      createEntLine(data, furn, &data.getLtypeByLayer(), 256, LINE_3D(0, 0, 0, 1, 1, 0), 0);
  data.getEntTable().add(line);
  CUndoStack undo(data);
  ASSERT_TRUE(undo.remove(line));
  sheet.drawings.files["house.dxf"] = drawingOf("", "", lineTo(20, 0));
  ASSERT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(getLayer(data, u"HOUSE|FURN"), nullptr);
  ASSERT_TRUE(undo.undo());
  EXPECT_EQ(getLayer(data, u"HOUSE|FURN"), furn);
  EXPECT_TRUE(areItemsInDrawing(data));
  EXPECT_EQ(countsOf(data), recountOf(data));

  // The same layer is reused when the file contains it again, and removed when it is unused.
  sheet.drawings.files["house.dxf"] = house;
  ASSERT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(getLayer(data, u"HOUSE|FURN"), furn);
  EXPECT_EQ(furn->getLtype(), &data.getLtypeContinuous());
  ASSERT_TRUE(undo.redo());
  sheet.drawings.files["house.dxf"] = drawingOf("", "", lineTo(20, 0));
  ASSERT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(getLayer(data, u"HOUSE|FURN"), nullptr);
}

TEST(ReferenceLife, WhatHasGoneCountsOnNothingAfterUndoing) {
  Sheet sheet = siteSheet();
  CData& data = sheet.data();
  ASSERT_EQ(sheet.resolve(), 0);
  CLayer* furn = getLayer(data, u"HOUSE|FURN");
  furn->setLtype(vek0::test::addedLtype(data, u"OWN"));
  CUndoStack undo(data);
  ASSERT_TRUE(undo.keep(*furn));
  furn->setLtype(&data.getLtypeContinuous());
  sheet.drawings.files["house.dxf"] = drawingOf("", "", lineTo(20, 0));
  ASSERT_EQ(sheet.resolve(), 0);
  ASSERT_TRUE(undo.undo());
  EXPECT_EQ(getLtype(data, u"OWN")->getLayers(), 0);
  EXPECT_EQ(countsOf(data), recountOf(data));
}

TEST(ReferenceLife, StepsPassOverContentThatHasGone) {
  Sheet sheet = siteSheet();
  CData& data = sheet.data();
  ASSERT_EQ(sheet.resolve(), 0);
  const Lines lines = linesShown(data);
  CUndoStack undo(data);
  CTableRemapper remapper(data, true);
  remapper.ChangeInto(getLayer(data, u"HOUSE|WALL"), getLayer(data, u"SITE"));
  ASSERT_TRUE(remapper.Remap(undo));
  ASSERT_EQ(sheet.resolve(), 0);
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(undo.undo());
    EXPECT_EQ(linesShown(data), lines);
    EXPECT_EQ(countsOf(data), recountOf(data));
    EXPECT_TRUE(undo.redo());
  }
}

TEST(ReferenceLife, ContentIsNeitherAddedToNorTakenFrom) {
  Sheet sheet = siteSheet();
  CData& data = sheet.data();
  ASSERT_EQ(sheet.resolve(), 0);
  CBlockXRef& house = *sheet.xref(u"HOUSE");
  CUndoStack undo(data);
  for (CBlock* block : {static_cast<CBlock*>(&house), house.getBlocks().front().get()}) {
    const std::unique_ptr<CEntLine> line(createEntLine(
        data, &data.getLayer0(), &data.getLtypeByLayer(), 256, LINE_3D(0, 0, 0, 1, 1, 0), 0));
    EXPECT_FALSE(undo.add(*block, line.get()));
    EXPECT_FALSE(undo.remove((*block)[0]));
  }
  EXPECT_EQ(undo.getNoUndo(), 0u);
}

// The sheet and the house refer to the same file with different base points.
TEST(ReferenceLife, OneFileMayHaveSeveralBasePoints) {
  const auto based = [](double x) {
    return pairs("0 BLOCK", "8 0", "70 4", "2 F", "20 0", "30 0", "1 furniture.dxf") +
           pairText("10 " + std::to_string(x)) + pairs("0 ENDBLK");
  };
  const auto house = [&](double x) { return drawingOf("", based(x), insertAt("F", 0)); };
  Sheet sheet = siteSheet();
  sheet.drawings.files["house.dxf"] = house(5);
  sheet.drawings.files["sheet.dxf"] = drawingOf("", based(0) + referenceTo("HOUSE", "house.dxf"),
                                                insertAt("HOUSE", 0) + insertAt("F", 0));
  sheet.load();
  ASSERT_EQ(sheet.resolve(), 0);
  const Lines lines = linesShown(sheet.data());
  EXPECT_THAT(lines, Contains(HasSubstr("-5.000000")));
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(linesShown(sheet.data()), lines);
  sheet.drawings.files["sheet.dxf"] = saved(sheet.data());
  sheet.load();
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(linesShown(sheet.data()), lines);

  sheet.drawings.files["house.dxf"] = house(7);
  const int references = sheet.data().getBlockXRefTable().size();
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(sheet.data().getBlockXRefTable().size(), references);
  EXPECT_THAT(linesShown(sheet.data()), Contains(HasSubstr("-7.000000")));
}

TEST(ReferenceLife, NamesAndPathsComeBackFromTheFile) {
  for (const char16_t* name : {u"Möbel Haus", u"a$0$b", u"A\nB", u" lead", u"日本", u"x\u0001y"}) {
    SCOPED_TRACE(zim::WString(name).toUtf8());
    Sheet sheet = siteSheet();
    CUndoStack undo(sheet.data());
    CBlockXRef* xref =
        attachXRef(sheet.data(), undo, name, u"furniture.dxf", PNT_3D(0, 0, 0), false);
    ASSERT_NE(xref, nullptr);
    undo.add(createEntInsertXRef(sheet.data(), &sheet.data().getLayer0(),
                                 &sheet.data().getLtypeByLayer(), 256, *xref, PNT_3D(100, 0, 0), 1,
                                 1, 1, 0, 1, 1, 0, 0, 0));
    ASSERT_EQ(sheet.resolve(), 0);
    const Lines lines = linesShown(sheet.data());
    sheet.drawings.files["sheet.dxf"] = saved(sheet.data());
    sheet.load();
    EXPECT_EQ(sheet.resolve(), 0);
    EXPECT_EQ(linesShown(sheet.data()), lines);
  }
  for (const char16_t* path : {u"C:\\büro\\日本 %%d.dxf", u"a\nb.dxf", u" lead.dxf", u"x\u0001y",
                               u"\\U+00e4.dxf", u"a^Jb", u"\U0001F600.dxf"}) {
    Sheet sheet = siteSheet();
    CUndoStack undo(sheet.data());
    attachXRef(sheet.data(), undo, u"NEW", path, PNT_3D(0, 0, 0), false);
    sheet.drawings.files["sheet.dxf"] = saved(sheet.data());
    sheet.load();
    ASSERT_NE(sheet.xref(u"NEW"), nullptr);
    EXPECT_EQ(sheet.xref(u"NEW")->getPath().toUtf8(), zim::WString(path).toUtf8());
  }
}

// A host may assign a linetype of one reference to a layer of another.
TEST(ReferenceLife, LayersLeaveLinetypesOfWhatGoes) {
  for (const bool binds : {false, true}) {
    Sheet sheet = siteSheet();
    sheet.drawings.files["garden.dxf"] = drawingOf("", "", lineTo(9, 9));
    sheet.drawings.files["sheet.dxf"] =
        drawingOf("", referenceTo("HOUSE", "house.dxf") + referenceTo("GARDEN", "garden.dxf"),
                  insertAt("HOUSE", 0) + insertAt("GARDEN", 0));
    sheet.load();
    CData& data = sheet.data();
    ASSERT_EQ(sheet.resolve(), 0);
    CLayer* wall = getLayer(data, u"HOUSE|WALL");
    wall->setLtype(vek0::test::addedDependentLtype(data, *sheet.xref(u"GARDEN"), u"DASHED"));
    const std::string before = saved(data), counts = countsOf(data);
    CUndoStack undo(data);
    CBlockXRef& garden = *sheet.xref(u"GARDEN");
    EXPECT_TRUE(binds ? bindXRef(data, undo, garden) != nullptr : detachXRef(data, undo, garden));
    EXPECT_EQ(wall->getLtype(),
              binds ? getLtype(data, u"GARDEN$0$DASHED") : &data.getLtypeContinuous());
    EXPECT_EQ(countsOf(data), recountOf(data));
    ASSERT_TRUE(undo.undo());
    EXPECT_EQ(saved(data), before);
    EXPECT_EQ(countsOf(data), counts);
  }
}

TEST(ReferenceLife, WhatIsOutOfTheDrawingIsNotRead) {
  Sheet sheet = siteSheet();
  CBlockXRef& house = *sheet.xref(u"HOUSE");
  CUndoStack undo(sheet.data());
  ASSERT_TRUE(detachXRef(sheet.data(), undo, house));
  EXPECT_FALSE(resolveXRef(sheet.data(), house, sheet.drawings, sheet.options()));
  EXPECT_EQ(sheet.data().getBlockXRefTable().size(), 0);
}

TEST(ReferenceLife, WhatIsNamedTwiceGoesOnce) {
  Sheet sheet = siteSheet();
  ASSERT_EQ(sheet.resolve(), 0);
  CUndoStack undo(sheet.data());
  CBlockXRef* house = sheet.xref(u"HOUSE");
  EXPECT_TRUE(detachXRefs(sheet.data(), undo, {house, house}));
  EXPECT_EQ(sheet.data().getBlockXRefTable().size(), 0);
}

}  // namespace
