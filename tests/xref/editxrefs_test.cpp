#include "support/test.h"
#include "xref/referred.h"

namespace {

using testing::SizeIs;
using Lines = std::vector<std::string>;

// Everything observable in a drawing.
struct State {
  std::string file, counts;
  Lines lines;
  std::size_t depend;
  bool operator==(const State&) const = default;
};

State stateOf(const CData& data) {
  return {saved(data), countsOf(data), linesShown(data), data.getDepend().size()};
}

// Undoes and redoes `edit` twice and expects the same drawings each time.
template <class Edit>
void expectTurnsBack(CData& data, CUndoStack& undo, const Edit& edit) {
  const State before = stateOf(data);
  const std::size_t steps = undo.getNoUndo();
  edit();
  ASSERT_EQ(undo.getNoUndo(), steps + 1);
  const State after = stateOf(data);
  EXPECT_EQ(after.counts, recountOf(data));
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(undo.undo());
    EXPECT_TRUE(stateOf(data) == before) << stateOf(data).counts << "\n" << before.counts;
    ASSERT_TRUE(undo.redo());
    EXPECT_TRUE(stateOf(data) == after);
  }
}

// Entities on layer "0" stay there when exploded, so colors change and are not compared.
Lines endsOf(Lines lines) {
  for (std::string& line : lines) line.resize(line.find("color"));
  std::sort(lines.begin(), lines.end());
  return lines;
}

// Explodes inserts until none is left.
void explodeAll(CData& data) {
  std::vector<CEnt*> inserts;
  do {
    for (CEnt* ent : inserts) {
      CEntExploderVisitor exploder(data.getHandleGestor(), data.getEntFactory(),
                                   data.getBlockFactory(), data.getBlockTable());
      ent->accept(exploder);
      for (auto& made : exploder.getEnts()) data.getEntTable().add(made.release());
      data.getEntTable().remove(ent);
      delete ent;
    }
    inserts.clear();
    for (CEnt* ent : data.getEntTable().getEntityTbl())
      if (ent->getEntInsert() != nullptr) inserts.push_back(ent);
  } while (!inserts.empty());
}

TEST(AttachXRef, RefusesNamesThatAreTakenOrNone) {
  Sheet sheet = siteSheet();
  CData& data = sheet.data();
  vek0::test::addedBlock(data, u"BLOCK");
  CUndoStack undo(data);
  for (const char16_t* name : {u"", u"A|B", u"*U1", u"house", u"Block"})
    EXPECT_EQ(attachXRef(data, undo, name, u"p.dxf", PNT_3D(0, 0, 0), false), nullptr);
  EXPECT_EQ(undo.getNoUndo(), 0u);
  expectTurnsBack(data, undo, [&] {
    const CBlockXRef* xref = attachXRef(data, undo, u"new", u"p.dxf", PNT_3D(1, 2, 0), true);
    ASSERT_NE(xref, nullptr);
    EXPECT_TRUE(xref->isOverlay());
    EXPECT_NE(saved(data).find("p.dxf"), std::string::npos);
  });
}

TEST(SetXRefPath, CanBeUndone) {
  Sheet sheet = siteSheet();
  CUndoStack undo(sheet.data());
  expectTurnsBack(sheet.data(), undo,
                  [&] { setXRefPath(undo, *sheet.xref(u"HOUSE"), u"elsewhere.dxf"); });
  EXPECT_EQ(sheet.xref(u"HOUSE")->getPath(), u"elsewhere.dxf");
}

// Adds entities of the drawing that use items of the reference in every possible way.
void useItemsOf(CData& data, CBlockXRef& xref) {
  CLayer* wall = xref.getLayerTable().get(u"WALL");
  CLtype* dashed = vek0::test::addedDependentLtype(data, xref, u"DASHED");
  CStyle* style = xref.getStyleTable().getStyleStandard();
  data.getEntTable().add(createEntLine(data, wall, dashed, 256, LINE_3D(0, 0, 0, 1, 1, 0), 0));
  data.getEntTable().add(createEntText(data, wall, dashed, 256, vek0::test::dashText(style), 0));
  CBlock* block = vek0::test::addedBlock(data, u"OWN");
  block->add(createEntInsertXRef(data, wall, dashed, 256, xref, PNT_3D(5, 5, 0), 2, 2, 1, 0, 1, 1,
                                 0, 0, 0));
  data.getBlockTable().remove(block);
  data.getBlockTable().add(block);
  data.getEntTable().add(vek0::test::insertOf(data, *block, 400));
  vek0::test::addedLayer(data, u"DASHES")->setLtype(dashed);
  vek0::test::addedLtype(data, u"TEXTS")->AddDashText(vek0::test::dashText(style));
  vek0::test::addedStyle(data, xref.getName() + u"|NOTES");
  // Some programs declare the blocks of references like this.
  vek0::test::addedBlock(data, xref.getName() + u"|DOOR");
  setCurLayer(data, wall);
  setCurLtype(data, dashed);
}

TEST(DetachXRef, LeavesNoNameAndNoCount) {
  for (const bool used : {false, true}) {
    Sheet sheet = siteSheet();
    CData& data = sheet.data();
    sheet.resolve();
    if (used) useItemsOf(data, *sheet.xref(u"HOUSE"));
    CUndoStack undo(data);
    EXPECT_FALSE(detachXRef(data, undo, *sheet.xref(u"FURNITURE")));  // the house still inserts it
    expectTurnsBack(data, undo,
                    [&] { EXPECT_TRUE(detachXRef(data, undo, *sheet.xref(u"HOUSE"))); });
    EXPECT_EQ(data.getBlockXRefTable().size(), 0);
    EXPECT_EQ(data.getDepend().size(), 0u);
    const std::string file = saved(data);
    EXPECT_EQ(file.find("HOUSE"), std::string::npos);
    EXPECT_EQ(file.find("FURN"), std::string::npos);
    EXPECT_EQ(file.find('|'), std::string::npos);
  }
}

TEST(DetachXRefs, AllOrNone) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  CData& data = sheet.data();
  CUndoStack undo(data);
  const State before = stateOf(data);
  EXPECT_FALSE(detachXRefs(data, undo, {sheet.xref(u"FURNITURE")}));
  EXPECT_TRUE(stateOf(data) == before);
  EXPECT_TRUE(detachXRefs(data, undo, {sheet.xref(u"FURNITURE"), sheet.xref(u"HOUSE")}));
  EXPECT_EQ(data.getBlockXRefTable().size(), 0);
  EXPECT_TRUE(undo.undo());
  EXPECT_TRUE(stateOf(data) == before);
}

TEST(DetachXRef, KeepsWhatOthersShow) {
  Sheet sheet = siteSheet();
  sheet.drawings.files["garden.dxf"] =
      drawingOf("", referenceTo("FURNITURE", "furniture.dxf"), insertAt("FURNITURE", 0));
  sheet.drawings.files["sheet.dxf"] =
      drawingOf("", referenceTo("HOUSE", "house.dxf") + referenceTo("GARDEN", "garden.dxf"),
                insertAt("HOUSE", 0) + insertAt("GARDEN", 0));
  sheet.load();
  ASSERT_EQ(sheet.resolve(), 0);
  CData& data = sheet.data();
  CUndoStack undo(data);
  EXPECT_TRUE(detachXRef(data, undo, *sheet.xref(u"HOUSE")));
  EXPECT_NE(sheet.xref(u"FURNITURE"), nullptr);
  EXPECT_THAT(linesShown(data), SizeIs(2));
  EXPECT_TRUE(detachXRef(data, undo, *sheet.xref(u"GARDEN")));
  EXPECT_EQ(data.getBlockXRefTable().size(), 0);
}

TEST(UndoStack, TakesNoReferenceOutThatIsUsed) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  CData& data = sheet.data();
  CUndoStack undo(data);
  EXPECT_FALSE(undo.remove(sheet.xref(u"HOUSE")));      // inserted
  EXPECT_FALSE(undo.remove(sheet.xref(u"FURNITURE")));  // nested
  CBlockXRef* idle = attachXRef(data, undo, u"IDLE", u"furniture.dxf", PNT_3D(0, 0, 0), false);
  resolveXRef(data, *idle, sheet.drawings, sheet.options());
  setCurLayer(data, getLayer(data, u"IDLE|WOOD"));
  EXPECT_FALSE(undo.remove(idle));
  setCurLayer(data, &data.getLayer0());
  EXPECT_TRUE(undo.remove(idle));
}

TEST(BindXRef, MakesWhatIsShownTheDrawingsOwn) {
  for (const bool used : {false, true}) {
    Sheet sheet = siteSheet();
    CData& data = sheet.data();
    sheet.resolve();
    if (used) useItemsOf(data, *sheet.xref(u"HOUSE"));
    const Lines lines = linesShown(data);
    CUndoStack undo(data);
    expectTurnsBack(data, undo, [&] {
      const CBlock* block = bindXRef(data, undo, *sheet.xref(u"HOUSE"));
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(block->getName(), u"HOUSE");
    });
    EXPECT_EQ(linesShown(data), lines);
    EXPECT_EQ(data.getBlockXRefTable().size(), 0);
    for (const char16_t* name : {u"HOUSE", u"HOUSE$0$DOOR", u"HOUSE$0$FURNITURE"})
      EXPECT_NE(data.getBlockTable().get(name), nullptr);
    EXPECT_EQ(getLayer(data, u"HOUSE$0$WALL")->getColor(), 6);
    EXPECT_NE(getLayer(data, u"FURNITURE$0$WOOD"), nullptr);
    if (used) EXPECT_EQ(getCurLayer(data), getLayer(data, u"HOUSE$0$WALL"));
    EXPECT_EQ(saved(data).find('|'), std::string::npos);

    undo.clear();
    explodeAll(data);
    EXPECT_EQ(endsOf(linesShown(data)), endsOf(lines));
  }
}

TEST(BindXRef, CountsNamesUpThatAreTaken) {
  Sheet sheet = siteSheet();
  CData& data = sheet.data();
  sheet.resolve();
  vek0::test::addedLayer(data, u"house$0$wall", 1);
  vek0::test::addedBlock(data, u"HOUSE$0$DOOR");
  const Lines lines = linesShown(data);
  CUndoStack undo(data);
  ASSERT_NE(bindXRef(data, undo, *sheet.xref(u"HOUSE")), nullptr);
  EXPECT_NE(getLayer(data, u"HOUSE$1$WALL"), nullptr);
  EXPECT_NE(data.getBlockTable().get(u"HOUSE$1$DOOR"), nullptr);
  EXPECT_EQ(linesShown(data), lines);
}

TEST(BindXRef, LeavesReferencesThatAreNotLoaded) {
  Sheet sheet = siteSheet();
  sheet.drawings.files.erase("furniture.dxf");
  CData& data = sheet.data();
  EXPECT_EQ(sheet.resolve(), 1);
  CUndoStack undo(data);
  EXPECT_EQ(bindXRef(data, undo, *sheet.xref(u"FURNITURE")), nullptr);
  const char16_t* const paths[][3] = {
      {u"house.dxf", u"furniture.dxf", u"furniture.dxf"},
      {u"plans/house.dxf", u"furniture.dxf", u"plans/furniture.dxf"},
      {u"..\\plans\\house.dxf", u"parts/furniture.dxf", u"..\\plans\\parts/furniture.dxf"},
      {u"plans/house.dxf", u"/parts/furniture.dxf", u"/parts/furniture.dxf"},
      {u"plans/house.dxf", u"C:\\furniture.dxf", u"C:\\furniture.dxf"},
  };
  for (const auto& [outer, inner, bound] : paths) {
    sheet.xref(u"HOUSE")->setPath(outer);
    sheet.xref(u"FURNITURE")->setPath(inner);
    const State before = stateOf(data);
    ASSERT_NE(bindXRef(data, undo, *sheet.xref(u"HOUSE")), nullptr);
    ASSERT_NE(sheet.xref(u"FURNITURE"), nullptr);
    EXPECT_EQ(sheet.xref(u"FURNITURE")->getPath(), bound);
    EXPECT_EQ(data.getDepend().getCount(sheet.xref(u"FURNITURE")), 1);
    ASSERT_TRUE(undo.undo());
    EXPECT_EQ(sheet.xref(u"FURNITURE")->getPath(), inner);
    EXPECT_TRUE(stateOf(data) == before);
  }
}

// Content that lines do not represent: fills with their private blocks, texts with styles,
// attributes, dashes with texts.
TEST(BindXRef, TakesEveryKindAlong) {
  std::ifstream in(vek0::test::samplePath("hatches_ac1015.dxf"), std::ios::binary);
  std::ifstream kinds(vek0::test::samplePath("every_kind_r12.dxf"), std::ios::binary);
  Sheet sheet;
  sheet.drawings.files["hatches.dxf"].assign(std::istreambuf_iterator<char>(in), {});
  sheet.drawings.files["kinds.dxf"].assign(std::istreambuf_iterator<char>(kinds), {});
  sheet.drawings.files["sheet.dxf"] =
      drawingOf("", referenceTo("H", "hatches.dxf") + referenceTo("K", "kinds.dxf"),
                insertAt("H", 0) + insertAt("K", 500));
  sheet.load();
  CData& data = sheet.data();
  ASSERT_EQ(sheet.resolve(), 0) << sheet.reported();
  const RECT_3D box = data.getEntTable().getBdry();
  const Lines lines = linesShown(data);
  CUndoStack undo(data);
  std::vector<CBlockXRef*> both{sheet.xref(u"H"), sheet.xref(u"K")};
  expectTurnsBack(data, undo, [&] { EXPECT_TRUE(bindXRefs(data, undo, both)); });
  EXPECT_EQ(linesShown(data), lines);
  data.getEntTable().invalidateBdry();
  EXPECT_TRUE(data.getEntTable().getBdry() == box);
  EXPECT_NE(data.getBlockTable().get(u"*PAT1"), nullptr);

  // The saved file loads as the same drawing.
  const vek0::test::Loaded again = vek0::test::loadText(saved(data), CFileDXFIPolicy::forAnyFile());
  EXPECT_EQ(again.result.status, CFileDXFIResult::Done);
  EXPECT_THAT(linesShown(*again.data), SizeIs(lines.size()));
}

// Drawings with random references to each other, including circles.
std::string randomDrawing(std::mt19937& random, int drawings, int self) {
  const auto pick = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  std::string layers, blocks, entities;
  for (int i = 0; i < 3; ++i)
    layers += layerEntry("L" + std::to_string(i), 1 + pick(7), pick(2) ? "CONTINUOUS" : "BYLAYER");
  const auto layer = [&] { return pick(4) == 0 ? "0" : "L" + std::to_string(pick(3)); };
  const auto color = [&] {
    return pick(3) == 0 ? "62 0" : pick(2) ? "62 " + std::to_string(1 + pick(200)) : "";
  };
  for (int i = 0; i < 2; ++i) {
    blocks += vek0::test::pairs("0 BLOCK", "8 0", "70 0", "10 1", "20 2") +
              vek0::test::pairText("2 B" + std::to_string(i)) +
              lineTo(pick(90), pick(90), layer(), color());
    if (i == 1) blocks += insertAt("B0", pick(50), layer(), "50 30");
    blocks += vek0::test::pairs("0 ENDBLK");
    entities += insertAt("B" + std::to_string(i), pick(90), layer(),
                         color() + (pick(2) ? "" : "|70 2|44 3"));
  }
  for (int i = 0; i < pick(4); ++i) {
    const std::string to = std::to_string(pick(drawings));
    const std::string name =
        "X" + std::to_string(pick(2)) + "_" + std::to_string(self) + std::to_string(i);
    blocks += referenceTo(pick(2) ? "X" + to : name, "x" + to + ".dxf", pick(8) ? 4 : 12);
    entities += insertAt(pick(2) ? "X" + to : name, pick(90), layer(), "41 2|42 0.5|50 45");
  }
  return drawingOf(layers, blocks, entities + lineTo(pick(90), pick(90), layer(), color()));
}

TEST(BindXRef, BindingEverythingAndExplodingItShowsTheSame) {
  for (const unsigned seed : rounds<unsigned>(60)) {
    std::mt19937 random(seed);
    Sheet sheet;
    for (int i = 0; i < 6; ++i)
      sheet.drawings.files["x" + std::to_string(i) + ".dxf"] = randomDrawing(random, 6, i);
    sheet.drawings.files["sheet.dxf"] = randomDrawing(random, 6, 9);
    sheet.load();
    sheet.resolve();
    CData& data = sheet.data();
    const State before = stateOf(data);
    EXPECT_EQ(before.counts, recountOf(data));
    sheet.resolve();
    EXPECT_TRUE(stateOf(data) == before);

    CUndoStack undo(data);
    std::vector<CBlockXRef*> loaded;
    for (int i = 0; i < data.getBlockXRefTable().size(); ++i) {
      CBlockXRef* xref = data.getBlockXRefTable()[i];
      if (xref->getStatus() == CBlockXRef::Status::loaded) loaded.push_back(xref);
    }
    std::shuffle(loaded.begin(), loaded.end(), random);
    ASSERT_TRUE(bindXRefs(data, undo, loaded));
    EXPECT_EQ(linesShown(data), before.lines);
    EXPECT_EQ(countsOf(data), recountOf(data));
    for (int i = 0; i < data.getBlockXRefTable().size(); ++i)
      EXPECT_NE(data.getBlockXRefTable()[i]->getStatus(), CBlockXRef::Status::loaded);
    const State bound = stateOf(data);
    if (undo.undo()) {
      EXPECT_TRUE(stateOf(data) == before);
      ASSERT_TRUE(undo.redo());
      EXPECT_TRUE(stateOf(data) == bound);
    }
    undo.clear();
    explodeAll(data);
    EXPECT_EQ(endsOf(linesShown(data)), endsOf(before.lines));
  }
}

}  // namespace
