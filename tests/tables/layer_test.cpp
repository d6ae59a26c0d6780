#include "support/test.h"
#include "tables/tableitems.h"

namespace {

TEST(Layer, EachSwitchIsOneBit) {
  const auto layer = vek0::test::layer(u"L", nullptr, 7, 0x1240);
  layer->setFrozen(true);
  EXPECT_EQ(layer->getFlags(), 0x1241);
  layer->setLocked(true);
  EXPECT_EQ(layer->getFlags(), 0x1245);
  layer->setOff(true);
  EXPECT_EQ(layer->getFlags(), 0x12C5);
  layer->setPrivate(true);
  EXPECT_EQ(layer->getFlags(), 0x92C5);
  EXPECT_TRUE(layer->isFrozen() && layer->isLocked() && layer->isOff() && layer->isPrivate());
  layer->setLocked(false);
  EXPECT_EQ(layer->getFlags(), 0x92C1);
  EXPECT_FALSE(layer->isLocked());
}

TEST(Layer, LinetypeCountsMoveWithTheLinetype) {
  const auto a = vek0::test::ltype(u"A"), b = vek0::test::ltype(u"B");
  const auto layer = vek0::test::layer(u"L", a.get());
  EXPECT_EQ(a->getLayers(), 0) << "a layer in no table counts nowhere";
  layer->setLtype(b.get());
  EXPECT_EQ(a->getLayers(), -1);
  EXPECT_EQ(b->getLayers(), 1);
  layer->setLtype(nullptr);
  EXPECT_EQ(b->getLayers(), 0);
  layer->setLtype(a.get());
  EXPECT_EQ(a->getLayers(), 0);
}

TEST(LayerTable, CountsListedLayersOnTheirLinetypes) {
  Tables t;
  CLayer* layer = vek0::test::layer(u"L", &t.continuous).release();
  t.layers.add(layer);
  t.layers.add(layer);
  t.layers.add(nullptr);
  t.layers.add(vek0::test::layer(u"without", nullptr).release());
  EXPECT_EQ(t.continuous.getLayers(), 1);
  t.layers.remove(layer);
  EXPECT_EQ(t.continuous.getLayers(), 0);
  t.layers.remove(layer);
  EXPECT_EQ(t.continuous.getLayers(), -1) << "removing twice counts twice";
  t.layers.add(layer);
  t.layers.clearAll();
  EXPECT_EQ(t.continuous.getLayers(), -1);
}

TEST(LayerTable, ViewCountsNothing) {
  Tables t;
  t.layers.add(vek0::test::layer(u"L", &t.continuous).release());
  {
    CLayerTable view(t.layers);
    EXPECT_EQ(view.getLayer0(), &t.layer0);
    EXPECT_EQ(view.get(u"l"), t.layers[0]);
    view.remove(view[0]);
  }
  EXPECT_EQ(t.continuous.getLayers(), 1);
  EXPECT_EQ(t.layers.size(), 1);
}

TEST(LayerTable, FindsLayerZeroBeforeAnyOther) {
  Tables t;
  t.layers.add(vek0::test::layer(u"0", &t.continuous).release());
  EXPECT_EQ(t.layers.get(u"0"), &t.layer0);
  EXPECT_TRUE(t.layers.get(u"0")->is0());
  EXPECT_FALSE(t.layers[0]->is0());
  EXPECT_EQ(t.layers.get(u"00"), nullptr);
}

TEST(LayerMemento, HoldsNameLinetypeFlagsAndColour) {
  Tables t;
  CLayer* layer = vek0::test::layer(u"Walls", &t.continuous, 3, 4).release();
  t.layers.add(layer);
  const std::unique_ptr<CLayerMemento> memento(layer->createMemento());
  const struct {
    const char* name;
    void (*change)(CLayer&, Tables&);
  } changes[] = {
      {"name", [](CLayer& l, Tables&) { l.setName(u"Doors"); }},
      {"letter case of the name", [](CLayer& l, Tables&) { l.setName(u"WALLS"); }},
      {"linetype", [](CLayer& l, Tables& s) { l.setLtype(&s.byBlock); }},
      {"flags", [](CLayer& l, Tables&) { l.setFrozen(true); }},
      {"colour", [](CLayer& l, Tables&) { l.setColor(4); }},
  };
  for (const auto& c : named(changes)) {
    EXPECT_TRUE(*memento == *layer);
    c.change(*layer, t);
    EXPECT_TRUE(*memento != *layer);
    layer->setMemento(*memento);
    EXPECT_TRUE(*memento == *layer);
    EXPECT_EQ(t.layers.get(u"walls"), layer) << "the table follows the name";
  }
  EXPECT_EQ(t.continuous.getLayers(), 1);
  EXPECT_EQ(t.byBlock.getLayers(), 0);
}

TEST(LayerVisitor, IsToldTheKind) {
  struct Kind final : ILayerVisitor {
    void visit(CLayerXRef&) override { kind = "xref"; }
    void visit(CLayer0&) override { kind = "0"; }
    void visit(CLayer&) override { kind = "layer"; }
    std::string kind;
  } visitor;
  Tables t;
  t.layer0.accept(visitor);
  EXPECT_EQ(visitor.kind, "0");
  vek0::test::layer(u"0", nullptr)->accept(visitor);
  EXPECT_EQ(visitor.kind, "layer");
}

}  // namespace
