#include "support/test.h"
#include "xref/referred.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::SizeIs;
using Status = CBlockXRef::Status;

// Depth of nesting of the references.
int depthOf(const std::vector<CBlockXRef*>& xrefs) {
  int depth = 0;
  for (std::vector<CBlockXRef*> level = xrefs; !level.empty() && depth < 1000; ++depth) {
    std::set<CBlockXRef*> next;
    for (const CBlockXRef* xref : level)
      next.insert(xref->getNested().begin(), xref->getNested().end());
    level.assign(next.begin(), next.end());
  }
  return depth;
}

TEST(ResolveXRefs, ShowsWhatDrawingsAndTheirReferencesHold) {
  Sheet sheet = siteSheet();
  EXPECT_THAT(linesShown(sheet.data()), SizeIs(1));
  ASSERT_EQ(sheet.resolve(), 0) << sheet.reported();
  EXPECT_EQ(sheet.reported(), "");
  EXPECT_EQ(sheet.xref(u"HOUSE")->getFile(), u"house.dxf");
  EXPECT_THAT(sheet.xref(u"HOUSE")->getNested(), ElementsAre(sheet.xref(u"FURNITURE")));

  const std::vector<std::string> lines = linesShown(sheet.data());
  EXPECT_THAT(lines, SizeIs(2 * 6 + 1));
  const auto line = [](const char* ends, int color) {
    return std::string(ends) + "color " + std::to_string(color) + " dashes 0";
  };
  // The sheet's color of a dependent layer, layer 0 like the insert, BYBLOCK, nested layers.
  EXPECT_THAT(lines, Contains(line("100.000000 0.000000 110.000000 0.000000 ", 6)));
  EXPECT_THAT(lines, Contains(line("100.000000 0.000000 100.000000 10.000000 ", 2)));
  EXPECT_THAT(lines, Contains(line("105.000000 0.000000 105.000000 4.000000 ", 1)));
  EXPECT_THAT(lines, Contains(line("102.000000 0.000000 103.000000 1.000000 ", 3)));
  EXPECT_THAT(lines, Contains(line("102.000000 0.000000 104.000000 0.000000 ", 4)));
  const RECT_3D& box = sheet.data().getEntTable().getBdry();
  EXPECT_DOUBLE_EQ(box.min.x, 0);
  EXPECT_DOUBLE_EQ(box.max.x, 300);
  EXPECT_NEAR(box.max.y, 10, 1e-9);
}

TEST(ResolveXRefs, LeavesTheDrawingItsOwn) {
  Sheet sheet = siteSheet();
  const std::size_t entities = sheet.data().getEntTable().getEntityTbl().size();
  sheet.resolve();
  EXPECT_EQ(sheet.data().getEntTable().getEntityTbl().size(), entities);
  EXPECT_EQ(sheet.data().getBlockTable().size(), 0);
  EXPECT_EQ(countsOf(sheet.data()), recountOf(sheet.data()));
  EXPECT_EQ(sheet.data().getLayer0().getEntities(), 0);
  const std::string file = saved(sheet.data());
  EXPECT_EQ(file.find("DOOR"), std::string::npos);
  EXPECT_NE(file.find("FURNITURE|WOOD"), std::string::npos);

  // A copy shows the same and saves to the same file.
  const CDataPtr copy(cloneData(sheet.data()));
  EXPECT_EQ(linesShown(*copy), linesShown(sheet.data()));
  EXPECT_EQ(saved(*copy), file);
}

TEST(ResolveXRefs, ReadsBackWhatItSaved) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  const std::vector<std::string> lines = linesShown(sheet.data());
  sheet.drawings.files["sheet.dxf"] = saved(sheet.data());
  sheet.load();
  EXPECT_EQ(saved(sheet.data()), sheet.drawings.files["sheet.dxf"]);
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(linesShown(sheet.data()), lines);
  EXPECT_EQ(saved(sheet.data()), sheet.drawings.files["sheet.dxf"]);
}

TEST(ResolveXRefs, ReadingAnewWithoutAChangeChangesNothing) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  const std::string file = saved(sheet.data());
  const std::vector<std::string> lines = linesShown(sheet.data());
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(sheet.resolve(), 0);
    EXPECT_TRUE(resolveXRef(sheet.data(), *sheet.xref(u"HOUSE"), sheet.drawings, sheet.options()));
    EXPECT_EQ(saved(sheet.data()), file);
    EXPECT_EQ(linesShown(sheet.data()), lines);
  }
  EXPECT_EQ(countsOf(sheet.data()), recountOf(sheet.data()));
}

TEST(ResolveXRefs, FollowsTheFileButForWhatTheDrawingChanged) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  CBlockXRef& house = *sheet.xref(u"HOUSE");
  const auto layer = [&](std::u16string_view name) { return house.getLayerTable().get(name); };
  layer(u"FURN")->setFrozen(true);
  CLayer* wall = layer(u"WALL");
  sheet.drawings.files["house.dxf"] =
      drawingOf(layerEntry("WALL", 8) + layerEntry("FURN", 9) + layerEntry("ROOF", 1), "",
                lineTo(20, 0, "ROOF"));
  sheet.resolve();
  EXPECT_EQ(linesShown(sheet.data()).size(), 2u + 1);
  EXPECT_EQ(layer(u"WALL"), wall);
  EXPECT_EQ(wall->getColor(), 6);  // the color that the sheet had when it was read
  EXPECT_EQ(layer(u"FURN")->getColor(), 9);
  EXPECT_TRUE(layer(u"FURN")->isFrozen());

  // Items that the file no longer contains are removed, unless the drawing uses them.
  CData& data = sheet.data();
  data.getEntTable().add(
      createEntLine(data, wall, &data.getLtypeByLayer(), 256, LINE_3D(0, 0, 0, 1, 1, 0), 0));
  sheet.drawings.files["house.dxf"] = drawingOf(layerEntry("ROOF", 4), "", lineTo(20, 0, "ROOF"));
  sheet.resolve();
  EXPECT_EQ(layer(u"WALL"), wall);
  EXPECT_EQ(layer(u"FURN"), nullptr);
  EXPECT_EQ(layer(u"ROOF")->getColor(), 4);
  EXPECT_EQ(countsOf(data), recountOf(data));
}

TEST(ResolveXRefs, BasePointsAreThoseOfTheReferenceOrOfItsDrawing) {
  for (const bool ownBase : {false, true}) {
    Sheet sheet = siteSheet();
    sheet.drawings.files["house.dxf"] =
        vek0::test::section("HEADER", vek0::test::pairs("9 $INSBASE", "10 7", "20 0", "30 0")) +
        drawingOf("", "", lineTo(20, 0));
    sheet.drawings.files["sheet.dxf"] = drawingOf("", "", "");
    sheet.load();
    CUndoStack undo(sheet.data());
    CBlockXRef* xref = attachXRef(sheet.data(), undo, u"HOUSE", u"house.dxf",
                                  PNT_3D(ownBase ? 5 : 0, 0, 0), false);
    undo.add(createEntInsertXRef(sheet.data(), sheet.data().getDepend(), *xref, PNT_3D(100, 0, 0),
                                 1, 1, 1, 0, 1, 1, 0, 0, 0));
    sheet.resolve();
    EXPECT_DOUBLE_EQ(sheet.data().getEntTable().getBdry().min.x, ownBase ? 95 : 93);
  }
}

TEST(ResolveXRefs, SaysWhyAReferenceShowsNothing) {
  const Definitions names{
      {"missing", Status::missing}, {"refused", Status::refused}, {"broken", Status::broken}};
  for (const Row& t : rowsWith(names)) {
    Sheet sheet;
    const std::string path = t.text("path");
    if (t.text("file") != "none") sheet.drawings.files[path] = t.text("file");
    sheet.drawings.files["sheet.dxf"] =
        drawingOf("", referenceTo("R", path), insertAt("R", 5) + lineTo(1, 1));
    sheet.load();
    const std::string before = saved(sheet.data());
    EXPECT_EQ(sheet.resolve(), 1);
    EXPECT_EQ(sheet.xref(u"R")->getStatus(), t.whole<Status>("status"));
    EXPECT_EQ(sheet.reported(), t.text("reported") + " R: " + path);
    EXPECT_THAT(linesShown(sheet.data()), SizeIs(1));
    EXPECT_EQ(saved(sheet.data()), before);
  }
}

TEST(ResolveXRefs, AReferenceThatIsLostShowsNothingAndComesBack) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  const std::vector<std::string> lines = linesShown(sheet.data());
  const std::string house = sheet.drawings.files["house.dxf"];
  sheet.drawings.files.erase("house.dxf");
  EXPECT_EQ(sheet.resolve(), 1);
  EXPECT_THAT(linesShown(sheet.data()), SizeIs(1));
  EXPECT_NE(getLayer(sheet.data(), u"HOUSE|WALL"), nullptr);
  sheet.drawings.files["house.dxf"] = house;
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(linesShown(sheet.data()), lines);
}

TEST(ResolveXRefs, ReadsAFileThatChangesAgainAndGivesUpOnOneThatKeepsChanging) {
  for (const int changes : {1, 100}) {
    Sheet sheet = siteSheet();
    sheet.drawings.files["sheet.dxf"] =
        drawingOf("", referenceTo("F", "furniture.dxf"), insertAt("F", 0));
    sheet.load();
    sheet.drawings.changes = changes;
    EXPECT_EQ(sheet.resolve(), changes == 1 ? 0 : 1);
    EXPECT_EQ(sheet.reported(), changes == 1 ? "" : "reference changing F: furniture.dxf");
  }
}

TEST(ResolveXRefs, BreaksCirclesWhereTheyClose) {
  Sheet sheet;
  const auto refers = [](const std::string& to, double x) {
    return drawingOf("", referenceTo("N" + to, to + ".dxf"), lineTo(x, 0) + insertAt("N" + to, x));
  };
  sheet.drawings.files["a.dxf"] = refers("b", 1);
  sheet.drawings.files["b.dxf"] = refers("c", 2);
  sheet.drawings.files["c.dxf"] = refers("a", 3);
  sheet.drawings.files["self.dxf"] = refers("self", 4);
  sheet.drawings.files["back.dxf"] = refers("sheet", 5);
  sheet.drawings.files["sheet.dxf"] = drawingOf(
      "", referenceTo("A", "a.dxf") + referenceTo("S", "self.dxf") + referenceTo("B", "back.dxf"),
      insertAt("A", 0) + insertAt("S", 0) + insertAt("B", 0));
  sheet.load();
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(sheet.reported(),
            "reference circular S|Nself: self.dxf; reference circular B|Nsheet: sheet.dxf; "
            "reference circular Nc|Na: a.dxf");
  EXPECT_THAT(linesShown(sheet.data()), SizeIs(5));
  EXPECT_EQ(saved(*CDataPtr(cloneData(sheet.data()))), saved(sheet.data()));
}

// A chain of drawings, of which the sheet inserts the first one, or all, starting at either end.
TEST(ResolveXRefs, StopsAtADepth) {
  for (const int shown : named<int>({1, 300, -300})) {
    Sheet sheet;
    const auto name = [](int i) { return "d" + std::to_string(i); };
    for (int i = 0; i < 300; ++i)
      sheet.drawings.files[name(i) + ".dxf"] =
          drawingOf("", referenceTo(name(i + 1), name(i + 1) + ".dxf"),
                    lineTo(i, 0) + insertAt(name(i + 1), 0));
    sheet.drawings.files["d300.dxf"] = drawingOf("", "", "");
    std::string blocks, inserts;
    for (int i = 0; i < std::abs(shown); ++i) {
      const std::string each = name(shown > 0 ? i : 299 - i);
      blocks += referenceTo(each, each + ".dxf");
      inserts += insertAt(each, 0);
    }
    sheet.drawings.files["sheet.dxf"] = drawingOf("", blocks, inserts);
    sheet.load();
    EXPECT_EQ(sheet.resolve(), 0);
    EXPECT_GT(sheet.report.count("reference too deep"), 0);
    EXPECT_EQ(sheet.report.count("reference circular"), 0);
    std::vector<CBlockXRef*> all;
    for (int i = 0; i < sheet.data().getBlockXRefTable().size(); ++i)
      all.push_back(sheet.data().getBlockXRefTable()[i]);
    EXPECT_LE(depthOf(all), kMaxXRefDepth);
    if (shown == 1) {
      EXPECT_EQ(sheet.reported(), "reference too deep d99|d100: d100.dxf");
      EXPECT_THAT(linesShown(sheet.data()), SizeIs(kMaxXRefDepth));
    }
  }
}

TEST(ResolveXRefs, OverlaysAreShownByTheirOwnDrawingAlone) {
  Sheet sheet = siteSheet();
  std::string& house = sheet.drawings.files["house.dxf"];
  house = drawingOf("", referenceTo("FURNITURE", "furniture.dxf", 12), insertAt("FURNITURE", 0));
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(sheet.reported(), "reference overlaid HOUSE|FURNITURE: furniture.dxf");
  EXPECT_THAT(linesShown(sheet.data()), SizeIs(1));

  sheet.drawings.files["sheet.dxf"] = house;
  sheet.load();
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_THAT(linesShown(sheet.data()), SizeIs(2));
  EXPECT_TRUE(sheet.xref(u"FURNITURE")->isOverlay());
}

TEST(ResolveXRefs, TwoDrawingsOfOneNameAreTwoReferences) {
  Sheet sheet;
  const auto withPart = [](const std::string& path) {
    return drawingOf("", referenceTo("PART", path), insertAt("PART", 0));
  };
  sheet.drawings.files["p1.dxf"] = drawingOf("", "", lineTo(1, 0));
  sheet.drawings.files["p2.dxf"] = drawingOf("", "", lineTo(2, 0));
  sheet.drawings.files["a.dxf"] = withPart("p1.dxf");
  sheet.drawings.files["b.dxf"] = withPart("p2.dxf");
  sheet.drawings.files["c.dxf"] = withPart("p1.dxf");
  std::string blocks, inserts;
  for (const std::string name : {"a", "b", "c"}) {
    blocks += referenceTo(name, name + ".dxf");
    inserts += insertAt(name, 0);
  }
  sheet.drawings.files["sheet.dxf"] = drawingOf("", blocks, inserts);
  sheet.load();
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(sheet.reported(), "reference renamed b|PART: p2.dxf");
  EXPECT_EQ(sheet.data().getBlockXRefTable().size(), 5);
  EXPECT_EQ(sheet.xref(u"a")->getNested(), sheet.xref(u"c")->getNested());
  const std::vector<std::string> lines = linesShown(sheet.data());

  // The same after saving, loading and resolving again.
  const std::string file = saved(sheet.data());
  sheet.drawings.files["sheet.dxf"] = file;
  sheet.load();
  EXPECT_EQ(sheet.resolve(), 0);
  EXPECT_EQ(linesShown(sheet.data()), lines);
  EXPECT_EQ(saved(sheet.data()), file);
}

// A drawing changes the path of its nested reference: no trace of the old path may remain.
TEST(ResolveXRefs, ANestedReferenceFollowsItsDrawing) {
  for (const bool reopened : {false, true}) {
    Sheet sheet = siteSheet();
    sheet.resolve();
    if (reopened) {
      sheet.drawings.files["sheet.dxf"] = saved(sheet.data());
      sheet.load();
    }
    std::string& house = sheet.drawings.files["house.dxf"];
    house.replace(house.find("furniture.dxf"), 13, "garden.dxf");
    sheet.drawings.files["garden.dxf"] = drawingOf("", "", lineTo(7, 7));
    EXPECT_EQ(sheet.resolve(), 0);
    EXPECT_EQ(sheet.reported(), "");
    EXPECT_EQ(sheet.data().getBlockXRefTable().size(), 2);
    EXPECT_EQ(sheet.xref(u"FURNITURE")->getPath(), u"garden.dxf");
    EXPECT_EQ(getLayer(sheet.data(), u"FURNITURE|WOOD"), nullptr);
  }
}

// A reference that the drawing itself attached keeps its path, whether shown or not, found or not.
TEST(ResolveXRefs, ANestedReferenceTakesNothingOfTheDrawing) {
  Sheet sheet = siteSheet();
  CUndoStack undo(sheet.data());
  ASSERT_NE(attachXRef(sheet.data(), undo, u"FURNITURE", u"own.dxf", PNT_3D(0, 0, 0), false),
            nullptr);
  EXPECT_EQ(sheet.resolve(), 1);
  EXPECT_EQ(
      sheet.reported(),
      "reference renamed HOUSE|FURNITURE: furniture.dxf; reference missing FURNITURE: own.dxf");
  EXPECT_EQ(sheet.xref(u"FURNITURE$1")->getPath(), u"furniture.dxf");
}

TEST(ResolveXRefs, StylesOfReferencesThatTheDrawingUsesAreSaved) {
  Sheet sheet = siteSheet();
  sheet.drawings.files["house.dxf"].insert(
      0, vek0::test::section(
             "TABLES", vek0::test::table("STYLE", vek0::test::pairs("0 STYLE", "2 SLIM", "70 0",
                                                                    "40 0", "41 0.5", "3 txt"))));
  sheet.resolve();
  CData& data = sheet.data();
  CStyle* slim = sheet.xref(u"HOUSE")->getStyleTable().get(u"SLIM");
  ASSERT_NE(slim, nullptr);
  data.getEntTable().add(createEntText(data, TEXT_3D(CTextContext(), slim, 0, 0, 0, 0), 0));
  const vek0::test::Loaded again = vek0::test::loadText(saved(data), CFileDXFIPolicy::forAnyFile());
  const CStyle* style = getStyle(*again.data, u"HOUSE|SLIM");
  ASSERT_NE(style, nullptr);
  EXPECT_EQ(style->getFlags(), 16 + 32);
  EXPECT_EQ(style->getWidthScale(), 0.5);
  EXPECT_EQ(style->getEntities(), 1);
}

TEST(ResolveXRefs, ACancelledReadingLeavesWhatWasThere) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  const std::vector<std::string> lines = linesShown(sheet.data());
  std::string many;
  for (int i = 0; i < 3000; ++i) many += lineTo(i, i);
  sheet.drawings.files["house.dxf"] = drawingOf("", "", many);
  CXRefOptions options = sheet.options();
  options.reading.progress = [](long) { return false; };
  EXPECT_EQ(resolveXRefs(sheet.data(), sheet.drawings, options), 0);
  EXPECT_EQ(linesShown(sheet.data()), lines);
}

// Missing fonts are registered by drawings; the drawing that was read is destroyed afterwards.
TEST(ResolveXRefs, FontsOutliveTheDrawingsThatNameThem) {
  const std::string styled =
      vek0::test::section(
          "TABLES",
          vek0::test::table("STYLE", vek0::test::pairs("0 STYLE", "2 STANDARD", "70 0", "40 0",
                                                       "41 1", "50 0", "3 unheard.shx"))) +
      vek0::test::section("BLOCKS", referenceTo("R", "r.dxf"));
  Sheet sheet;
  sheet.drawings.files["r.dxf"] = styled + drawingOf("", "", lineTo(1, 1));
  sheet.drawings.files["sheet.dxf"] =
      styled + vek0::test::section("ENTITIES", insertAt("R", 0)) + vek0::test::dxf();
  sheet.load();
  for (int i = 0; i < 2; ++i) ASSERT_EQ(sheet.resolve(), 0);
  const ICADFont* font = sheet.data().getStyleTable().getStyleStandard()->getFont();
  EXPECT_EQ(sheet.xref(u"R")->getStyleTable().getStyleStandard()->getFont(), font);
  CUndoStack undo(sheet.data());
  EXPECT_NE(bindXRef(sheet.data(), undo, *sheet.xref(u"R")), nullptr);
  EXPECT_NE(saved(sheet.data()).find("unheard.shx"), std::string::npos);
}

// Many references to a drawing with many hatches: the first ones get their lines, and all keep
// their entities. Every drawing has its own limit.
TEST(ResolveXRefs, HatchesOfAllDrawingsTogetherAreBounded) {
  std::ifstream in(vek0::test::samplePath("hatches_ac1015.dxf"), std::ios::binary);
  Sheet sheet;
  sheet.drawings.files["h.dxf"].assign(std::istreambuf_iterator<char>(in), {});
  std::string blocks, inserts;
  for (const char* other : {"i.dxf", "j.dxf", "k.dxf"})
    sheet.drawings.files[other] = sheet.drawings.files["h.dxf"];
  for (int i = 0; i < 43; ++i) {
    const std::string file =
        i < 40 ? "h.dxf" : std::string(1, static_cast<char>('i' + i - 40)) + ".dxf";
    blocks += referenceTo("R" + std::to_string(i), file);
    inserts += insertAt("R" + std::to_string(i), 0);
  }
  sheet.drawings.files["sheet.dxf"] = drawingOf("", blocks, inserts);
  sheet.load();
  sheet.data().setHatchLimit(5000);
  EXPECT_EQ(sheet.resolve(), 0);
  const auto linesOf = [&](int i) {
    std::size_t lines = 0;
    for (const auto& block : sheet.data().getBlockXRefTable()[i]->getBlocks())
      if (isHatchName(block->getName())) lines += block->size();
    return lines;
  };
  std::size_t all = 0;
  for (int i = 0; i < 40; ++i) all += linesOf(i);
  EXPECT_GT(linesOf(0), 100u);
  EXPECT_EQ(linesOf(39), 0u);
  EXPECT_LE(all, linesOf(0) + 1600u);
  for (int i = 40; i < 43; ++i) EXPECT_EQ(linesOf(i), linesOf(0));
  EXPECT_EQ(sheet.xref(u"R0")->size(), sheet.xref(u"R39")->size());
}

// After replacing a dependent layer, no content remains on the old one.
TEST(TableRemapper, ReachesIntoReferences) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  CData& data = sheet.data();
  CLayer* wall = getLayer(data, u"HOUSE|WALL");
  CUndoStack undo(data);
  CTableRemapper remapper(data, true);
  remapper.ChangeInto(wall, getLayer(data, u"SITE"));
  const std::vector<std::string> before = linesShown(data);
  ASSERT_TRUE(remapper.Remap(undo));
  for (const std::string& line : linesShown(data))
    EXPECT_EQ(line.find("color 6"), std::string::npos) << line;
  EXPECT_EQ(countsOf(data), recountOf(data));
  ASSERT_TRUE(undo.undo());
  EXPECT_EQ(linesShown(data), before);
  EXPECT_EQ(countsOf(data), recountOf(data));
}

TEST(ImportDXF, BringsReferencesAlong) {
  Sheet sheet = siteSheet();
  sheet.resolve();
  CFileMemory again(u"sheet.dxf", IFile::kRead, sheet.drawings.files["sheet.dxf"]);
  importDXF(sheet.data(), again, nullptr);
  EXPECT_EQ(sheet.data().getBlockXRefTable().size(), 2);
  EXPECT_THAT(linesShown(sheet.data()), SizeIs(2 * (2 * 6 + 1)));
  EXPECT_EQ(countsOf(sheet.data()), recountOf(sheet.data()));
  vek0::test::Loaded other;
  again = CFileMemory(u"sheet.dxf", IFile::kRead, sheet.drawings.files["sheet.dxf"]);
  importDXF(other.drawing(), again, nullptr);
  resolveXRefs(other.drawing(), sheet.drawings, sheet.options());
  EXPECT_THAT(linesShown(other.drawing()), SizeIs(2 * 6 + 1));
}

TEST(ResolveXRefs, TellsWhatEveryDrawingLost) {
  Sheet sheet = siteSheet();
  std::string& furniture = sheet.drawings.files["furniture.dxf"];
  furniture.insert(furniture.find("0\nENDSEC\n0\nEOF"), "0\nACIS\n8\n0\n");
  CXRefOptions options = sheet.options();
  std::vector<std::string> told;
  options.onRead = [&](const CBlockXRef& xref, const CFileDXFIResult&, const CFileReport& report) {
    told.push_back(xref.getName().toUtf8() + " " + std::to_string(report.count("kind skipped")));
  };
  resolveXRefs(sheet.data(), sheet.drawings, options);
  EXPECT_THAT(told, ElementsAre("HOUSE 0", "FURNITURE 1"));
}

}  // namespace
