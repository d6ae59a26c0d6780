#include "entities/scene.h"
#include "support/test.h"

using namespace vek0::test;

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

TEST_F(InsertStack, ResolvesWhatEntitiesTakeOver) {
  CLayer* zero = scene.layer();
  CLayer* circular = createLayer(u"CIRCULAR", byLayer(), 6);
  const auto plain = insert(wall, byLayer(), kByLayer), coloured = insert(door, dashed, 1),
             passing = insert(zero, byBlock(), kByBlock);
  const struct {
    const char* name;
    std::vector<const CEntInsertBase*> inserts;
    CLayer* layer;
    CLtype* ltype;
    short color;
    CLayer* expectLayer;
    CLtype* expectLtype;  // null is Continuous
    short expectColor;
  } cases[] = {
      {"own values", {}, wall, dotted, 9, wall, dotted, 9},
      {"by layer", {}, wall, byLayer(), kByLayer, wall, dashed, 3},
      {"by block without a block", {}, wall, byBlock(), kByBlock, wall, nullptr, 7},
      {"the layer's linetype refers back", {}, circular, byLayer(), kByLayer, circular, nullptr, 6},
      {"no layer, no linetype", {}, nullptr, nullptr, kByLayer, nullptr, nullptr, 7},
      {"layer 0 takes the insert's", {plain.get()}, zero, byLayer(), kByLayer, wall, dashed, 3},
      {"other layers stay", {plain.get()}, door, byLayer(), kByLayer, door, dotted, 5},
      {"by block is the insert's layer", {plain.get()}, door, byBlock(), kByBlock, door, dashed, 3},
      {"by block is the insert's own",
       {coloured.get()},
       zero,
       byBlock(),
       kByBlock,
       door,
       dashed,
       1},
      {"passed on from further out",
       {coloured.get(), passing.get()},
       zero,
       byBlock(),
       kByBlock,
       door,
       dashed,
       1},
      {"nobody gives a colour", {passing.get()}, zero, byBlock(), kByBlock, zero, nullptr, 7},
  };
  for (const auto& t : named(cases)) {
    CEntInsertStack stack(1);
    for (const CEntInsertBase* entered : t.inserts) stack.Push(entered, 0, 0);
    const auto ent = insert(t.layer, t.ltype, t.color);
    EXPECT_EQ(stack.ResolveLayer(*ent), t.expectLayer);
    EXPECT_EQ(stack.ResolveLtype(*ent), t.expectLtype);
    EXPECT_EQ(stack.ResolveColor(*ent), t.expectColor);
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
  const struct {
    const char* name;
    std::vector<const CEntInsertBase*> inserts;
    CLayer* layer;
    short color;
    ENT_TRAITS own, expected;
  } cases[] = {
      {"own", {}, wall, 9, traitsOf(5, 7, 9, false), traitsOf(5, 7, 9, false)},
      {"own color number", {}, wall, 9, byLayers, traitsOf(none, 13, 100, true)},
      {"by layer", {}, wall, kByLayer, byLayers, traitsOf(0x111111, 13, 100, true)},
      {"layer without", {}, door, kByLayer, byLayers, traitsOf(none, -3, 255, true)},
      {"no layer", {}, nullptr, kByLayer, byLayers, traitsOf(none, -3, 255, true)},
      {"no insert", {}, wall, kByBlock, byBlocks, traitsOf(none, -3, 255, true)},
      {"insert", {outer.get()}, door, kByBlock, byBlocks, traitsOf(0x111111, 13, 100, true)},
      {"layer 0",
       {outer.get()},
       scene.layer(),
       kByLayer,
       byLayers,
       traitsOf(0x111111, 13, 100, true)},
      {"inner insert",
       {outer.get(), inner.get()},
       door,
       kByBlock,
       byBlocks,
       traitsOf(0x111111, 13, 50, true)},
  };
  for (const auto& t : named(cases)) {
    CEntInsertStack stack(1);
    for (const CEntInsertBase* entered : t.inserts) stack.Push(entered, 0, 0);
    const auto ent = insert(t.layer, byLayer(), t.color);
    ent->setTraits(t.own);
    EXPECT_TRUE(stack.ResolveTraits(*ent) == t.expected);
  }
  outer->setTraits(traitsOf(none, -1, -1, false));
  CEntInsertStack stack(1);
  stack.Push(outer.get(), 0, 0);
  stack.Push(inner.get(), 0, 0);
  EXPECT_FALSE(stack.ResolveTraits(*inner).isVisible);
}

}  // namespace
