#include "entities/scene.h"
#include "support/test.h"

namespace {

class BlockXRef : public testing::Test {
 protected:
  CBlockXRef* xref(const char16_t* name, const PNT_3D& base = PNT_3D(0, 0, 0)) {
    CBlockXRef* made = scene.data->getBlockFactory().createXRef(
        scene.data->getLtypeContinuous(), scene.data->getLtypeByLayer(),
        scene.data->getLtypeByBlock(), scene.data->getLayer0(), name, u"other.dxf", base, 4);
    scene.data->getBlockXRefTable().add(made);
    return made;
  }

  CEntInsertXRef* insert(CBlockXRef* xref) {
    return scene.factory.createEntInsertXRef(scene.gestor, scene.layer(), scene.ltype(), 7,
                                             scene.data->getDepend(), xref, PNT_3D(10, 0, 0), 1, 1,
                                             1, 0, 1, 1, 0, 0, 5);
  }

  Scene scene;
};

TEST_F(BlockXRef, StartsUnresolvedAndShowsNothing) {
  CBlockXRef* made = xref(u"X");
  EXPECT_TRUE(made->isXRef());
  EXPECT_EQ(made->getStatus(), CBlockXRef::Status::unresolved);
  EXPECT_EQ(made->getPath(), u"other.dxf");
  EXPECT_FALSE(made->getBdry().validRegion());
  EXPECT_EQ(scene.data->getBlockXRefTable().get(u"x"), made);
  EXPECT_EQ(scene.data->getBlockXRefTable()[0], made);
  scene.data->getBlockFactory().initXRef(*made, u"new.dxf", PNT_3D(1, 2, 3), 36);
  EXPECT_EQ(made->getPath(), u"new.dxf");
  EXPECT_EQ(made->getPnt(), PNT_3D(1, 2, 3));
  EXPECT_EQ(made->getFlags(), 36);
}

TEST_F(BlockXRef, ItsFixedItemsAreTheDrawingsOwn) {
  CBlockXRef* made = xref(u"X");
  EXPECT_EQ(made->getLayerTable().get(u"0"), scene.layer());
  EXPECT_EQ(made->getLtypeTable().get(u"Continuous"), scene.ltype());
}

TEST_F(BlockXRef, DependentItemsHaveComposedNamesAndTwoFlags) {
  CBlockXRef* made = xref(u"X");
  CLayerXRef* layer = scene.data->getLayerFactory().createXRef(*made, u"WALL", scene.ltype(), 3, 1);
  made->getLayerTable().add(layer);
  EXPECT_TRUE(layer->isXRef());
  EXPECT_EQ(layer->getName(), u"WALL");
  EXPECT_EQ(layer->getFullName(), u"X|WALL");
  EXPECT_EQ(layer->getFlags(), 1 | 16 | 32);
  layer->setFlags(4);
  EXPECT_EQ(layer->getFlags(), 4 | 16 | 32);
  made->setName(u"Y");
  EXPECT_EQ(layer->getFullName(), u"Y|WALL");

  CLtypeXRef* ltype =
      scene.data->getLtypeFactory().createXRef(*made, u"DASHED", u"- -", CLtypeComplexDashSeq(), 0);
  made->getLtypeTable().add(ltype);
  EXPECT_TRUE(ltype->isXRef());
  EXPECT_EQ(ltype->getFullName(), u"Y|DASHED");
  EXPECT_EQ(ltype->getFlags(), 16 | 32);
  ltype->setFlags(0);
  EXPECT_EQ(ltype->getFlags(), 16 | 32);
}

TEST_F(BlockXRef, TraitsOfLayersFollowTheFileUnlessChanged) {
  CBlockXRef* made = xref(u"X");
  CLayerXRef* layer = scene.data->getLayerFactory().createXRef(*made, u"L", scene.ltype(), 1, 0);
  made->getLayerTable().add(layer);
  const auto follow = [&](const LAYER_TRAITS& traits) {
    layer->follow({layer->getLtype(), 1, 0, lineWidthDefault, traits});
  };
  const LAYER_TRAITS first{1, 10, 100, true}, second{2, 20, 200, false};
  layer->setTraits(first);
  follow(first);
  follow(second);
  EXPECT_TRUE(layer->getTraits() == second);
  layer->setTraits({2, 99, 200, false});
  follow(first);
  EXPECT_TRUE(layer->getTraits() == (LAYER_TRAITS{1, 99, 100, true}));
  layer->setTraits({7, 99, 100, true});
  follow(second);
  EXPECT_TRUE(layer->getTraits() == (LAYER_TRAITS{7, 99, 200, false}));
}

TEST_F(BlockXRef, VisitorsTellDependentItems) {
  struct LayerKinds : ILayerVisitor {
    void visit(CLayerXRef&) override { ++dependent; }
    void visit(CLayer0&) override {}
    void visit(CLayer&) override {}
    int dependent = 0;
  } layers;
  CBlockXRef* made = xref(u"X");
  CLayer* layer = scene.data->getLayerFactory().createXRef(*made, u"L", scene.ltype(), 3, 0);
  made->getLayerTable().add(layer);
  layer->accept(layers);
  scene.layer()->accept(layers);
  EXPECT_EQ(layers.dependent, 1);
}

TEST_F(BlockXRef, EntitiesAreShownThroughTheBasePoint) {
  CBlockXRef* made = xref(u"X", PNT_3D(1, 1, 0));
  made->add(scene.line(1, 1, 2, 2));
  EXPECT_EQ(made->getBdry(), RECT_3D(1, 1, 0, 2, 2, 0)) << "not moved";
  const std::unique_ptr<CEntInsertXRef> ent(insert(made));
  EXPECT_EQ(CEntInsertMatrix::basePoint(*ent), PNT_3D(1, 1, 0));
  EXPECT_EQ(ent->getBdry(), RECT_3D(10, 0, 0, 11, 1, 0));
}

TEST_F(BlockXRef, RegisteredInsertsAreRecorded) {
  CBlockXRef* made = xref(u"X");
  CBlockXRefDepend& depend = scene.data->getDepend();
  CEntInsertXRef* ent = insert(made);
  EXPECT_EQ(ent->getType(), 8);
  EXPECT_EQ(ent->getXRef(), made);
  EXPECT_EQ(depend.size(), 0u);
  scene.data->getEntTable().add(ent);
  const std::unique_ptr<CEnt> clone(scene.factory.clone(scene.gestor, scene.data->getBlockFactory(),
                                                        scene.data->getBlockTable(), *ent));
  EXPECT_EQ(static_cast<CEntInsertXRef&>(*clone).getXRef(), made);
  EXPECT_EQ(depend.getCount(made), 1);
  clone->addTbls(scene.gestor);
  EXPECT_EQ(depend.getCount(made), 2);
  EXPECT_EQ(made->getEntities(), 2);
  CBlockXRefDepend copy(depend);
  clone->removeTbls(scene.gestor);
  scene.data->getEntTable().remove(ent);
  EXPECT_EQ(depend.getCount(made), 0);
  EXPECT_TRUE(depend.getList().empty());
  depend.remove(made);
  copy.remove(made);
  EXPECT_EQ(copy.getCount(made), 1) << "a copy counts by itself";
  delete ent;
}

TEST_F(BlockXRef, HasNoPartInTheBlockGraph) {
  CBlockXRef* made = xref(u"X");
  CBlockTable& table = scene.data->getBlockTable();
  CBlock* block = scene.data->getBlockFactory().create(u"B", 0);
  block->add(insert(made));
  table.add(block);
  EXPECT_TRUE(table.getBlockGraph().getEdges(*block).empty());
  std::list<CEnt*> entities{insert(made)};
  const std::unique_ptr<CBlockMemento> old(block->createMemento());
  EXPECT_EQ(table.Redefine(block, PNT_3D(0, 0, 0), 0, entities), 0);
  old->destroyEntity();
}

}  // namespace
