#include "entities/scene.h"
#include "support/test.h"

namespace {

constexpr short kByBlock = 0, kByLayer = 256;

class InsertStack : public testing::Test {
 protected:
  InsertStack() : dashed(makeLtype(u"DASHED")), dotted(makeLtype(u"DOTTED")) {
    wall = createLayer(u"WALL", dashed, 3);
    door = createLayer(u"DOOR", dotted, 5);
  }

  CLtype* makeLtype(const char16_t* name) {
    double dash = 1;
    CLtype* ltype = scene.data->getLtypeFactory().create(name, u"", &dash, 1, 0);
    addLtype(*scene.data, ltype);
    return ltype;
  }

  CLayer* createLayer(const char16_t* name, CLtype* ltype, short color) {
    CLayer* layer = scene.data->getLayerFactory().create(name, ltype, color, 0);
    addLayer(*scene.data, layer);
    return layer;
  }

  std::unique_ptr<CEntInsert> insert(CLayer* layer, CLtype* ltype, short color) {
    return std::unique_ptr<CEntInsert>(scene.factory.createEntInsert(
        scene.gestor, layer, ltype, color, nullptr, PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 0));
  }

  CLtype* byLayer() { return &scene.data->getLtypeByLayer(); }
  CLtype* byBlock() { return &scene.data->getLtypeByBlock(); }

  Scene scene;
  CLtype* dashed;
  CLtype* dotted;
  CLayer* wall;
  CLayer* door;
};

TEST_F(InsertStack, RemembersTheWayIn) {
  const auto a = insert(wall, byLayer(), kByLayer), b = insert(door, byLayer(), kByLayer);
  CEntInsertStack stack(1);
  EXPECT_EQ(stack.GetBaseInsert(), nullptr);
  EXPECT_EQ(stack.GetTopMostInsert(), nullptr);
  stack.Pop();
  stack.Push(a.get(), 0, 0);
  stack.Push(b.get(), 0, 0);
  EXPECT_EQ(stack.GetState().GetNoInsert(), 2);
  EXPECT_EQ(stack.GetBaseInsert(), a.get());
  EXPECT_EQ(stack.GetTopMostInsert(), b.get());
  EXPECT_EQ(stack.GetInsert(2), nullptr);
  stack.Pop();
  EXPECT_EQ(stack.GetTopMostInsert(), a.get());
  EXPECT_EQ(stack.GetCurLayer(), wall);
  stack.Pop();
  EXPECT_EQ(stack.GetCurLayer(), nullptr);
}

TEST_F(InsertStack, TheLayerOfTheInsertCountsUnlessItIsLayer0Inside) {
  CLayer* zero = scene.layer();
  const auto onWall = insert(wall, byLayer(), kByLayer), onZero = insert(zero, byLayer(), kByLayer);
  CEntInsertStack stack(1);
  stack.Push(onZero.get(), 0, 0);
  EXPECT_EQ(stack.GetCurLayer(), zero) << "there is none around it";
  stack.Push(onWall.get(), 0, 0);
  EXPECT_EQ(stack.GetCurLayer(), wall);
  stack.Push(onZero.get(), 0, 0);
  EXPECT_EQ(stack.GetCurLayer(), wall);
}

TEST_F(InsertStack, ResolvesWhatEntitiesInherit) {
  CLayer* zero = scene.layer();
  CLayer* circular = createLayer(u"CIRCULAR", byLayer(), 6);
  const auto plain = insert(wall, byLayer(), kByLayer), colored = insert(door, dashed, 1),
             passing = insert(zero, byBlock(), kByBlock);
  const std::map<std::string, CLayer*> layers{
      {"0", zero}, {"WALL", wall}, {"DOOR", door}, {"CIRCULAR", circular}, {"none", nullptr}};
  const std::map<std::string, CLtype*> ltypes{{"dashed", dashed},
                                              {"dotted", dotted},
                                              {"byLayer", byLayer()},
                                              {"byBlock", byBlock()},
                                              {"none", nullptr}};
  const std::map<std::string, CEntInsert*> inserts{
      {"plain", plain.get()}, {"colored", colored.get()}, {"passing", passing.get()}};
  const Definitions names{{"byBlock", kByBlock}, {"byLayer", kByLayer}};
  for (const Row& t : rowsWith(names)) {
    CEntInsertStack stack(1);
    for (const std::string& entered : t.list("inserts")) stack.Push(inserts.at(entered), 0, 0);
    const auto ent =
        insert(layers.at(t.text("layer")), ltypes.at(t.text("ltype")), t.whole<short>("color"));
    EXPECT_EQ(stack.ResolveLayer(*ent), layers.at(t.text("shownLayer")));
    EXPECT_EQ(stack.ResolveLtype(*ent), ltypes.at(t.text("shownLtype")));
    EXPECT_EQ(stack.ResolveColor(*ent), t.whole("shownColor"));
  }
}

// Every way to inherit, two inserts deep: traits are what the innermost that has a value says.
TEST_F(InsertStack, ResolvesTraitsFromEntityLayerAndInserts) {
  const auto traitsOf = [](std::uint32_t color, short weight, short opacity, bool isVisible) {
    return ENT_TRAITS{color, weight, opacity, isVisible, 1, 0};
  };
  const std::uint32_t none = ENT_TRAITS::kNoTrueColor;
  wall->setTraits({0x111111, 13, 100, true});
  const auto outer = insert(wall, byLayer(), kByLayer), inner = insert(door, byLayer(), kByBlock);
  inner->setTraits(traitsOf(none, ENT_TRAITS::kWeightByBlock, 50, true));
  const ENT_TRAITS byLayers = traitsOf(none, -1, -1, true), byBlocks = traitsOf(none, -2, -2, true);
  const auto expectTraits = [&](const std::vector<const CEntInsertBase*>& inserts, CLayer* layer,
                                short color, const ENT_TRAITS& own, const ENT_TRAITS& expected) {
    CEntInsertStack stack(1);
    for (const CEntInsertBase* entered : inserts) stack.Push(entered, 0, 0);
    const auto ent = insert(layer, byLayer(), color);
    ent->setTraits(own);
    EXPECT_TRUE(stack.ResolveTraits(*ent) == expected);
  };
  const ENT_TRAITS defaults = traitsOf(none, -3, 255, true),
                   outside = traitsOf(0x111111, 13, 100, true);
  const CEntInsertBase *out = outer.get(), *in = inner.get();
  expectTraits({}, wall, 9, traitsOf(5, 7, 9, false), traitsOf(5, 7, 9, false));
  expectTraits({}, wall, 9, byLayers, traitsOf(none, 13, 100, true));  // its own color number
  expectTraits({}, wall, kByLayer, byLayers, outside);
  expectTraits({}, door, kByLayer, byLayers, defaults);
  expectTraits({}, nullptr, kByLayer, byLayers, defaults);
  expectTraits({}, wall, kByBlock, byBlocks, defaults);
  expectTraits({out}, door, kByBlock, byBlocks, outside);
  expectTraits({out}, scene.layer(), kByLayer, byLayers, outside);
  expectTraits({out, in}, door, kByBlock, byBlocks, traitsOf(0x111111, 13, 50, true));
  outer->setTraits(traitsOf(none, -1, -1, false));
  CEntInsertStack stack(1);
  stack.Push(outer.get(), 0, 0);
  stack.Push(inner.get(), 0, 0);
  EXPECT_FALSE(stack.ResolveTraits(*inner).isVisible);
  // The lines of a hatch have the traits of the hatch.
  const std::unique_ptr<CEntHatch> hatch(
      createEntHatch(*scene.data, wall, byLayer(), kByLayer, *getHatch(zim::WString(u"ANSI31")), 1,
                     0, {PNT_3D(0, 0, 0), PNT_3D(9, 0, 0), PNT_3D(9, 9, 0)}, 0));
  hatch->setTraits(traitsOf(none, 50, 60, true));
  CEntInsertStack inHatch(1);
  inHatch.Push(hatch.get(), 0, 0);
  EXPECT_EQ(inHatch.ResolveTraits(*(*hatch->getBlock())[0]), traitsOf(0x111111, 50, 60, true));
}

}  // namespace
