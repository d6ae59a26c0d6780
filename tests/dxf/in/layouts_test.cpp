// The layouts of a file: their paper, their viewports, and what is on their sheets.
#include <random>

#include "support/test.h"
#include "vek0core/dxf/out/savedxf.h"

using namespace vek0::test;

namespace {

const std::string kFrame = "0 VIEWPORT|8 0|67 1|10 50|20 40|40 20|41 10|69 2|";

Loaded loadLayout(const std::string& plot, const std::string& entities) {
  return loadAny(section("ENTITIES", pairsOf(entities)) +
                 section("OBJECTS", pairsOf("0 LAYOUT|100 AcDbPlotSettings|1 page|" + plot +
                                            "|100 AcDbLayout|1 Plan|71 1|330 1A")) +
                 dxf());
}

const VIEWPORT& onlyViewport(const Loaded& got) {
  static const VIEWPORT none;
  const CLayoutTable& layouts = got.data->getLayouts();
  const bool isOnly = layouts.size() == 1 && layouts[0].getViewports().size() == 1;
  EXPECT_TRUE(isOnly);
  return isOnly ? layouts[0].getViewports()[0] : none;
}

std::string savedForm(const Loaded& got) {
  CFileMemory file(u"saved.dxf", IFile::kWrite);
  EXPECT_TRUE(SaveDXF(got.drawing(), file, kSaveExchange, nullptr));
  return file.bytes();
}

}  // namespace

TEST(Layouts, PaperIsThatOfThePlot) {
  for (const Row& t : rows()) {
    const Loaded got = loadLayout(t.text("plot"), "");
    ASSERT_EQ(got.data->getLayouts().size(), 1);
    const CLayout& layout = got.data->getLayouts()[0];
    EXPECT_EQ(layout.getName(), u"Plan");
    EXPECT_EQ(PNT_2D(layout.getPlot().width, layout.getPlot().height), PNT_2D(t.point("paper")));
    EXPECT_DOUBLE_EQ(layout.getPlot().scale, t.real("scale"));
    EXPECT_EQ(layout.getPlot().hasLineweights, t.whole<int>("weights") != 0);
    const RECT_2D shown = layout.getPaper();
    ASSERT_EQ(shown.validRegion(), !t.text("shown").empty());
    if (!shown.validRegion()) continue;
    const RECT_2D expected = t.rect<RECT_2D>("shown");
    EXPECT_LT(shown.min.dist(expected.min) + shown.max.dist(expected.max), 1e-9);
  }
}

TEST(Layouts, ViewportsShowTheModel) {
  for (const Row& t : rows()) {
    const Loaded got = loadAny(section("ENTITIES", pairsOf(kFrame + t.text("record"))) + dxf());
    const VIEWPORT& view = onlyViewport(got);
    EXPECT_LT(view.toSheet(t.point("model")).dist(t.point("sheet")), 1e-9);
    EXPECT_EQ(view.isOn, t.real("on") != 0);
    EXPECT_EQ(got.report.count("view simplified"), t.text("report") == "view simplified");
    EXPECT_EQ(got.report.empty(), t.text("report").empty()) << "only what is lost";
  }
}

// Of files without LAYOUT objects. The viewport is that of `kFrame`, 20 x 10 at (50, 40).
TEST(Layouts, LimitsAreThePaper) {
  for (const Row& t : rows()) {
    const Loaded got = loadAny(section("HEADER", pairsOf(t.text("header"))) +
                               section("ENTITIES", pairsOf(kFrame + "45 20")) + dxf());
    ASSERT_EQ(got.data->getLayouts().size(), 1);
    const PLOT_SETTINGS& plot = got.data->getLayouts()[0].getPlot();
    EXPECT_LT(PNT_2D(plot.width, plot.height).dist(t.point("paper")), 1e-9);
    EXPECT_EQ(plot.scale, t.real("scale"));
    CFileReport report;
    CFileMemory file(u"saved.dxf", IFile::kWrite);
    EXPECT_TRUE(SaveDXF(got.drawing(), file, kSaveExchange, &report));
    EXPECT_EQ(loadAny(file.bytes()).data->getLayouts()[0].getPlot() == plot,
              report.count("plot settings dropped") == 0);
  }
}

// Layers and boundaries are named by handles, which the file defines earlier or later.
TEST(Layouts, ViewportsAreClippedAndHideLayers) {
  const std::string tables =
      section("TABLES", table("LAYER", pairsOf("0 LAYER|5 2F|2 A|62 1|0 LAYER|5 30|2 B|62 1|"
                                               "0 LAYER|5 31|2 C|62 1")));
  const std::string boundary =
      "|0 LWPOLYLINE|5 77|8 A|67 1|70 1|90 3|10 0|20 0|10 4|20 0|10 4|20 3";
  for (const bool isKnown : {true, false}) {
    const Loaded got =
        loadAny(tables +
                section("ENTITIES", pairsOf(kFrame + "45 20|90 65536|331 30|331 99|340 77" +
                                            (isKnown ? boundary : "|0 POINT|5 77|8 A|10 0|20 0"))) +
                dxf());
    const VIEWPORT& view = onlyViewport(got);
    ASSERT_EQ(view.frozen.size(), 1u);
    EXPECT_EQ(view.frozen[0]->getName(), u"B");
    EXPECT_EQ(view.boundary.size(), isKnown ? 3u : 0u);
    EXPECT_EQ(got.report.count("clip ignored"), isKnown ? 0 : 1);
    CUndoStack undo(*got.data);
    EXPECT_FALSE(undo.remove(view.frozen[0])) << "it is in use";
    CTableRemapper remapper(*got.data, false);
    // Entities on A remain visible, and C has none.
    CLayer* const other = got.data->getLayerTable().get(isKnown ? u"A" : u"C");
    remapper.ChangeInto(view.frozen[0], other);
    EXPECT_TRUE(remapper.Remap(undo));
    const std::vector<CLayer*> hidden = onlyViewport(got).frozen;
    EXPECT_EQ(hidden, isKnown ? std::vector<CLayer*>() : std::vector<CLayer*>{other});
    undo.undo();
    ASSERT_EQ(onlyViewport(got).frozen.size(), 1u);
    EXPECT_EQ(onlyViewport(got).frozen[0]->getName(), u"B");
    const CDataPtr copy(cloneData(*got.data));
    EXPECT_EQ(copy->getLayouts()[0].getViewports()[0].frozen[0], copy->getLayerTable().get(u"B"));
  }
}

// Layouts without an object of their own, and what belongs to which.
TEST(Layouts, SheetsFindTheirLayouts) {
  const std::string object = "0 LAYOUT|100 AcDbLayout|1 ";
  const Loaded got = loadAny(
      section("BLOCKS",
              pairsOf("0 BLOCK|2 *Paper_Space|330 1A|10 0|20 0|0 ENDBLK|0 BLOCK|2 *Paper_Space0|"
                      "330 1B|10 0|20 0|0 VIEWPORT|8 A|40 9|41 9|" +
                      kDiagonal + "|" + kDiagonal + "|" + kFrame + "45 1|0 ENDBLK")) +
      section("ENTITIES", pairsOf(kDiagonal + "|" + kDiagonal + "|67 1|" + kDiagonal +
                                  "|67 1|410 Third|" + kDiagonal + "|67 1|410 fourth")) +
      section("OBJECTS", pairsOf(object + "Second|71 2|330 1B|" + object + "First|71 1|330 1A|" +
                                 object + "Model|330 1C|" + object + "Third|71 3")) +
      dxf());
  const std::pair<const zim::Char*, std::size_t> expected[] = {
      {u"First", 1}, {u"Second", 2}, {u"Third", 1}, {u"fourth", 1}};
  const CLayoutTable& layouts = got.data->getLayouts();
  ASSERT_EQ(layouts.size(), 4);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(layouts[i].getName(), expected[i].first);
    EXPECT_EQ(layouts[i].getBlock().size(), expected[i].second);
  }
  EXPECT_EQ(layouts[1].getViewports().size(), 1u) << "the first one is the sheet";
  EXPECT_EQ(layouts.getActive(), &layouts[0]);
  EXPECT_EQ(got.data->getEntTable().getEntityTbl().size(), 1u);
}

TEST(Layouts, RandomSheetsSurviveSaving) {
  for (const int round : rounds(10)) {
    std::mt19937 random(static_cast<unsigned>(round));
    const auto number = [&random](long code, int most) {
      return std::to_string(code) + " " + std::to_string(random() % static_cast<unsigned>(most)) +
             (random() % 2 != 0 ? ".375|" : "|");
    };
    std::string entities = kDiagonal;
    for (unsigned i = 0, n = static_cast<unsigned>(random() % 9); i < n; ++i)
      entities += "|" + kDiagonal + "|67 1|0 POLYLINE|8 B|67 1|66 1|0 VERTEX|8 B|" + number(10, 9) +
                  number(20, 9) + "0 VERTEX|8 B|" + number(10, 9) + number(20, 9) + "0 SEQEND";
    for (unsigned i = 0, n = static_cast<unsigned>(1 + random() % 3); i < n; ++i)
      entities += "|0 VIEWPORT|8 B|67 1|" + number(10, 99) + number(20, 99) + "40 1" +
                  number(0, 9).substr(2) + "41 5|69 " + std::to_string(i + 2) + "|" +
                  number(12, 99) + number(22, 99) + number(51, 360) + number(17, 9) + "45 3";
    const Loaded got = loadLayout(number(44, 500) + "45 210|72 1", entities);
    const Loaded again = loadAny(savedForm(got));
    ASSERT_EQ(again.data->getLayouts().size(), 1);
    const CLayout &a = got.data->getLayouts()[0], &b = again.data->getLayouts()[0];
    EXPECT_EQ(b.getBlock().size(), a.getBlock().size());
    ASSERT_EQ(b.getViewports().size(), a.getViewports().size());
    for (std::size_t i = 0; i < a.getViewports().size(); ++i) {
      const VIEWPORT &v = a.getViewports()[i], &w = b.getViewports()[i];
      EXPECT_LT(v.toSheet(PNT_2D(100, 100)).dist(w.toSheet(PNT_2D(100, 100))), 1e-9);
      EXPECT_EQ(v.layer->getName(), w.layer->getName());
    }
    EXPECT_EQ(savedForm(again), savedForm(got));
  }
}
