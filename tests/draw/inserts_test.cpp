// Properties that entities of blocks inherit from the enclosing inserts.

#include "recorder.h"
#include "support/test.h"

namespace {

constexpr short kByBlock = 0, kByLayer = 256;
constexpr RGB_COLOR kRed{255, 0, 0}, kYellow{255, 255, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255},
    kBlack{0, 0, 0};

// A line in a block within a block. "INNER" is green, "OUTER" blue, "OWN" yellow.
struct Nest {
  Nest() {
    own = scene.layer(u"OWN", 2);
    inner = scene.layer(u"INNER", 3);
    outer = scene.layer(u"OUTER", 5);
  }

  Recorder draw(CLayer* lineLayer, short lineColor, CLayer* innerLayer, short innerColor,
                CLayer* outerLayer, short outerColor) {
    CBlock* deep = scene.block(u"DEEP", {scene.unit(lineLayer, nullptr, lineColor)});
    CEntInsert* held = scene.insert(*deep, 0, 0);
    held->setLayer(innerLayer);
    held->setColor(innerColor);
    CBlock* shallow = scene.block(u"SHALLOW", {held});
    CEntInsert* shown = scene.add(scene.insert(*shallow, 500, 500));
    shown->setLayer(outerLayer);
    shown->setColor(outerColor);
    return scene.draw();
  }

  CLayer* layer0() { return &scene.data->getLayer0(); }

  Scene scene;
  CLayer *own, *inner, *outer;
};

}  // namespace

TEST(Inserts, ColorsAndLayersComeFromOutside) {
  const Definitions names{{"byBlock", kByBlock}, {"byLayer", kByLayer}};
  for (const Row& t : rowsWith(names)) {
    Nest nest;
    std::map<std::string, CLayer*> layers{
        {"0", nest.layer0()}, {"OWN", nest.own}, {"INNER", nest.inner}, {"OUTER", nest.outer}};
    const auto color = [&](const char* column) { return t.whole<short>(column); };
    const Recorder drawn =
        nest.draw(layers.at(t.text("line")), color("lineColor"), layers.at(t.text("inner")),
                  color("innerColor"), layers.at(t.text("outer")), color("outerColor"));
    ASSERT_EQ(drawn.things.size(), 1U);
    const RGB_COLOR& got = drawn.things[0].color;
    EXPECT_EQ((std::vector<double>{1. * got.r, 1. * got.g, 1. * got.b}), t.reals("rgb"));
    EXPECT_EQ(drawn.things[0].layer, t.text("layer"));
  }
}

TEST(Inserts, LayersThatAreOffOrFrozenHide) {
  constexpr long kOff = CLayer::kOff, kFrozen = CLayer::kFrozen;
  const Definitions names{{"kOff", kOff}, {"kFrozen", kFrozen}};
  for (const Row& t : rowsWith(names)) {
    Nest nest;
    nest.own->setFlags(t.whole<long>("own"));
    nest.inner->setFlags(t.whole<long>("inner"));
    nest.outer->setFlags(t.whole<long>("outer"));
    CLayer* line = t.flag("lineOnZero") ? nest.layer0() : nest.own;
    EXPECT_EQ(nest.draw(line, 1, nest.inner, 1, nest.outer, 1).things.size(), t.count("shown"));
    DRAW_OPTIONS all;
    all.hiddenLayers = true;
    EXPECT_EQ(nest.scene.draw(all).things.size(), 1U);
  }
}

TEST(Inserts, AHatchHidesWithItsLayer) {
  Scene scene;
  const std::vector<PNT_3D> triangle = {{0, 0, 0}, {100, 0, 0}, {0, 100, 0}};
  CLayer* layer = scene.layer(u"L");
  CEntHatch* hatch = scene.add(
      createEntHatch(*scene.data, layer, nullptr, 256, *getHatch(u"ANSI31"), 100, 0, triangle, 0));
  EXPECT_FALSE(scene.draw().things.empty());
  layer->setOff(true);
  EXPECT_TRUE(scene.draw().things.empty());
  EXPECT_FALSE(drawnExtents(*scene.data, CPOProjector()).validRegion());
  hatch->setLayer(&scene.data->getLayer0());
  EXPECT_FALSE(scene.draw().things.empty());
}

// Linetypes are inherited by the same rules as colors.
TEST(Inserts, LinetypesComeFromOutside) {
  enum Which { None, ByLayer, ByBlock, Dashed };
  const Definitions names{
      {"Dashed", Dashed}, {"None", None}, {"ByBlock", ByBlock}, {"ByLayer", ByLayer}};
  for (const Row& t : rowsWith(names)) {
    Scene scene;
    CLtype* dashed = scene.ltype(u"D", {0.125, -0.125});
    CLtype* ltypes[] = {nullptr, getLtypeByLayer(*scene.data), getLtypeByBlock(*scene.data),
                        dashed};
    scene.window.zoom(100);
    scene.window.pan(-500, -500);
    CLayer* layer = scene.layer(u"L");
    if (t.flag("layerDashed")) layer->setLtype(dashed);
    CBlock* block = scene.block(
        u"B", {scene.unit(&scene.data->getLayer0(), ltypes[t.whole<Which>("line")], kByLayer)});
    CEntInsert* insert = scene.add(scene.insert(*block, 0, 0));
    insert->setLayer(layer);
    insert->setLtype(ltypes[t.whole<Which>("insert")]);
    EXPECT_EQ(scene.draw().things.size(), t.flag("dashed") ? 4U : 1U);
  }
}

TEST(Inserts, AttributesShowOnceAndWithTheInsert) {
  Scene scene;
  CStyle* style = getStyleStandard(*scene.data);
  const TEXT_3D place(u"TAG", style, 2, 3, 0, 10, 0, 1, 0, 0);
  CEntAttdef* def = createEntAttdef(*scene.data, place, u"value", u"", 0, 0);
  CEntAttdef* secret = createEntAttdef(*scene.data, place, u"value", u"", 1, 0);
  CBlock* block = scene.block(u"B", {def, secret, scene.unit(nullptr, nullptr, kByBlock)});
  CEntInsert* insert =
      createEntInsert(*scene.data, *block, PNT_3D(100, 100, 0), 2, 2, 1, 0, 3, 2, 50, 50, 0);
  insert->setColor(1);
  insert->add(createEntAttrib(*scene.data, u"shown", *def, 0));
  insert->add(createEntAttrib(*scene.data, u"not shown", *secret, 0));
  insert->GetAttrib(0)->setColor(kByBlock);
  scene.add(insert);
  const Recorder drawn = scene.draw();
  EXPECT_EQ(drawn.count(Thing::Stroke), 6U);
  ASSERT_EQ(drawn.count(Thing::Text), 1U);
  const Thing& text = drawn.things.back();
  EXPECT_EQ(text.string, "shown");
  EXPECT_EQ(text.color, kRed);
  EXPECT_LT(text.points[0].dist(seen(104, 106)), 1e-9);
  EXPECT_NEAR(text.matrix.d, -20, 1e-9);
}

TEST(Inserts, VisibleDefinitionsShowTheirTagOutsideOfBlocksOnly) {
  Scene scene;
  const TEXT_3D place(u"TAG", nullptr, 2, 3, 0, 10, 0, 1, 0, 0);
  scene.add(createEntAttdef(*scene.data, place, u"value", u"", 0, 0));
  scene.add(createEntAttdef(*scene.data, place, u"value", u"", 1, 0));
  CBlock* block = scene.block(u"B", {createEntAttdef(*scene.data, place, u"value", u"", 0, 0),
                                     scene.unit(nullptr, nullptr, 1)});
  scene.add(scene.insert(*block, 100, 100));
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.count(Thing::Text), 1U);
  EXPECT_EQ(drawn.things[0].string, "TAG");
}

// Drawing nested blocks is the same as drawing their entities at the places that the product of the
// inserts' matrices puts them.
TEST(Inserts, NestedPlacementsAreTheProductOfTheirs) {
  std::mt19937 random(8);
  const auto number = [&](double low, double high) {
    return std::uniform_real_distribution<>(low, high)(random);
  };
  for ([[maybe_unused]] const int trial : rounds(100)) {
    Scene scene;
    CBlock* block = scene.block(u"B0", {scene.unit(nullptr, nullptr, 1)});
    PNT_3D from(0, 0, 0), to(1, 0, 0);
    for (int level = 1; level <= 4; ++level) {
      CEntInsert* insert = scene.insert(*block, number(-20, 20), number(-20, 20), number(0.5, 2),
                                        number(-2, -0.5), number(0, 6));
      if (level == 4) insert->setPnt(PNT_3D(500, 500, 0));
      const CEntInsertMatrix matrix(1, *insert, 0, 0);
      matrix.transform(from, from);
      matrix.transform(to, to);
      if (level == 4)
        scene.add(insert);
      else
        block = scene.block(zim::WString::fromUtf8("B" + std::to_string(level)), {insert});
    }
    const Recorder drawn = scene.draw();
    ASSERT_EQ(drawn.things.size(), 1U);
    EXPECT_LT(drawn.things[0].points[0].dist(seen(from.x, from.y)), 1e-6);
    EXPECT_LT(drawn.things[0].points[1].dist(seen(to.x, to.y)), 1e-6);
  }
}

TEST(Inserts, FixedOnesKeepTheirSizeOnTheDisplay) {
  Scene scene;
  CBlock* block = scene.block(u"B", {scene.unit(nullptr, nullptr, 1)});
  scene.add(createEntFixedInsert(*scene.data, *block, PNT_3D(500, 500, 0), 1, 30, 0, 0));
  const double zooms[] = {1, 0.01, 100};
  for (const double zoom : zooms) {
    scene.window.zoom(zoom);
    const Recorder drawn = scene.draw();
    ASSERT_EQ(drawn.things.size(), 1U);
    EXPECT_NEAR(drawn.things[0].points[0].dist(drawn.things[0].points[1]), 30, 1e-6);
    EXPECT_NEAR(drawn.things[0].points[0].dist(PNT_2D(500, 500)), 0, 1e-6);
  }
}

// A clipped insert inside a rotated and scaled one: hidden content is not emitted, and the boundary
// moves with the content.
TEST(Inserts, ClipsArePlacedLikeTheirContent) {
  Scene scene;
  CBlock* content = scene.data->getBlockFactory().create(u"C", PNT_3D(3, 4, 0), 0);
  for (int i = 0; i < 10; ++i)
    content->add(createEntLine(*scene.data, LINE_3D(i * 10, 0, 0, i * 10, 8, 0), 0));
  scene.data->getBlockTable().add(content);
  CEntInsert* clipped = scene.insert(*content, 5, 6, 2, 3, 0.5);
  auto clip = std::make_shared<INSERT_CLIP>();
  clip->boundary = {PNT_2D(20, 0), PNT_2D(40, 0), PNT_2D(40, 8)};  // corners lie on ends of lines
  clipped->setClip(clip);
  scene.add(scene.insert(*scene.block(u"OUTER", {clipped}), 300, 300, -1.5, 1, 1));
  const Recorder clipping = scene.draw();
  EXPECT_EQ(scene.result.unclipped, 0U);
  ASSERT_EQ(clipping.clips.size(), 1U);
  EXPECT_EQ(clipping.popped, 1U);
  EXPECT_LT(clipping.things.size(), 10U);
  Recorder whole;
  whole.canClip = false;
  EXPECT_EQ(drawData(*scene.data, CPOProjector(), scene.window, whole).unclipped, 1U);
  ASSERT_EQ(whole.things.size(), 10U);
  const PNT_2D corners[] = {whole.things[2].points[0], whole.things[4].points[0],
                            whole.things[4].points[1]};
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(clipping.clips[0][i].dist(corners[i]), 0, 1e-6);
  whole.canClip = true;
  EXPECT_EQ(drawData(*scene.data, CPVProjector(), scene.window, whole).unclipped, 1U) << "aside";
}
