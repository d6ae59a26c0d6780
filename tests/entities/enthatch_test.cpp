#include "support/test.h"

namespace {

using Ring = std::vector<PNT_3D>;

const Ring kSquare = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};

const HATCH_TYPE& pattern(const zim::Char* name) { return *getHatch(zim::WString(name)); }

// The content of a hatch's block as text.
std::string shown(const CEntHatch& hatch) {
  std::string text;
  const CBlock& block = *hatch.getBlock();
  for (unsigned i = 0; i < block.size(); ++i) {
    const RECT_3D& box = block[i]->getBdry();
    for (const double number : {box.min.x, box.min.y, box.max.x, box.max.y})
      text += std::to_string(number) + " ";
    text += "\n";
  }
  return text;
}

class Hatches : public testing::Test {
 protected:
  ~Hatches() override { setHatchMessageHandler(nullptr); }

  CEntHatch* make(const Ring& boundary = kSquare, const zim::Char* name = u"ANSI31") {
    return createEntHatch(*data, pattern(name), 4, 0, boundary, 0);
  }
  CEntHatch* added(const Ring& boundary = kSquare) {
    CEntHatch* hatch = make(boundary);
    data->getEntTable().add(hatch);
    return hatch;
  }
  CBlockTable& blocks() { return data->getBlockTable(); }

  CDataPtr data{CDataFactory().createData()};
};

}  // namespace

TEST_F(Hatches, ShowABlockOfLines) {
  CEntHatch* hatch = added();
  ASSERT_EQ(blocks().size(), 1);
  EXPECT_EQ(hatch->getBlock(), blocks()[0]);
  EXPECT_EQ(blocks()[0]->getName(), zim::WString(u"*PAT1"));
  EXPECT_EQ(blocks()[0]->getFlags() & 1, 1) << "anonymous";
  EXPECT_GT(blocks()[0]->size(), 20u);
  const CEnt& line = *(*blocks()[0])[0];
  EXPECT_EQ(line.getLayer(), &data->getLayer0());
  EXPECT_EQ(line.getLtype(), &data->getLtypeContinuous());
  EXPECT_EQ(line.getColor(), 0);
  EXPECT_EQ(castHatch(hatch), hatch);
  EXPECT_EQ(hatch->getEntInsert(), hatch);
  const RECT_3D& box = hatch->getBdry();
  EXPECT_GE(box.min.x, 0);
  EXPECT_LE(box.max.y, 10);
  EXPECT_EQ(added()->getBlock()->getName(), zim::WString(u"*PAT2"));
}

TEST_F(Hatches, CountOnTheirBlockWhileRegistered) {
  CEntHatch* hatch = make();
  EXPECT_EQ(hatch->getBlock()->getEntities(), 0);
  hatch->redefine(*data, 4, 0.5, hatch->getHatchType());
  EXPECT_EQ(hatch->getBlock()->getEntities(), 0);
  data->getEntTable().add(hatch);
  hatch->redefine(*data, 4, 0, hatch->getHatchType());
  EXPECT_EQ(hatch->getBlock()->getEntities(), 1);
  data->getEntTable().remove(hatch);
  EXPECT_EQ(hatch->getBlock()->getEntities(), 0);
  delete hatch;
  EXPECT_EQ(purgeHatchBlocks(*data), 1);
  EXPECT_EQ(blocks().size(), 0);
}

TEST_F(Hatches, RedefineReplacesTheBlock) {
  CEntHatch* hatch = added();
  CBlock* block = hatch->getBlock();
  const std::string before = shown(*hatch);
  EXPECT_TRUE(hatch->redefine(*data, 4, 0, hatch->getHatchType()));
  EXPECT_EQ(hatch->getBlock(), block) << "nothing to do";
  hatch->setHatchScale(8);
  EXPECT_EQ(shown(*hatch), before) << "setters leave the lines";
  EXPECT_TRUE(hatch->redefine(*data, 4, 0.5, pattern(u"NET")));
  EXPECT_NE(shown(*hatch), before);
  ASSERT_EQ(blocks().size(), 1);
  EXPECT_EQ(blocks()[0], hatch->getBlock());
  EXPECT_EQ(blocks()[0]->getName(), zim::WString(u"*PAT1"));
  EXPECT_TRUE(hatch->redefine(*data, 4, 0, pattern(u"ANSI31")));
  EXPECT_EQ(shown(*hatch), before);
}

TEST_F(Hatches, WhatCannotBeGeneratedChangesNothing) {
  static std::vector<std::string> told;
  told.clear();
  setHatchMessageHandler([](const HATCH_TYPE& type, const zim::WString& message) {
    told.push_back(zim::WString(type.name).toUtf8() + ": " + message.toUtf8());
  });
  CEntHatch* hatch = added();
  CBlock* block = hatch->getBlock();
  const std::string before = shown(*hatch);
  data->setHatchLimit(100);
  EXPECT_FALSE(hatch->redefine(*data, 0.01, 0, hatch->getHatchType()));
  EXPECT_FALSE(hatch->redefine(*data, 0, 0, hatch->getHatchType()));
  EXPECT_FALSE(hatch->redefine(*data, 1, 0, data->getHatchTypeTable().intern(u"?", {})));
  EXPECT_EQ(hatch->getBlock(), block);
  EXPECT_EQ(shown(*hatch), before);
  EXPECT_EQ(hatch->getHatchScale(), 4);
  EXPECT_EQ(createEntHatch(*data, pattern(u"DOTS"), 0.01, 0, kSquare, 0), nullptr);
  EXPECT_EQ(make({kSquare[0], kSquare[1], kSquare[1], kSquare[0]}), nullptr) << "no area";
  EXPECT_EQ(blocks().size(), 1);
  ASSERT_EQ(told.size(), 4u);
  EXPECT_NE(told[0].find("ANSI31: The hatch is too dense"), std::string::npos) << told[0];
}

TEST_F(Hatches, CopiesHaveABlockOfTheirOwn) {
  CEntHatch* hatch = added();
  CEnt* copy = cloneEnt(*data, *hatch);
  data->getEntTable().add(copy);
  const CEntHatch& twin = *castHatch(copy);
  EXPECT_NE(twin.getBlock(), hatch->getBlock());
  EXPECT_NE(twin.getBlock()->getName(), hatch->getBlock()->getName());
  EXPECT_EQ(blocks().size(), 2);
  EXPECT_EQ(shown(twin), shown(*hatch));
}

TEST_F(Hatches, MoveWithTheirLines) {
  CEntHatch* hatch = added();
  const RECT_3D before = hatch->getBdry();
  CEntMoveVisitor move(PNT_3D(100, 20, 3));
  hatch->accept(move);
  EXPECT_NEAR(hatch->getBdry().min.x, before.min.x + 100, 1e-9);
  EXPECT_NEAR(hatch->getBdry().max.y, before.max.y + 20, 1e-9);
  EXPECT_EQ(hatch->getPnt(2), PNT_3D(110, 30, 3));
}

TEST_F(Hatches, MementosRestoreLinesWhereTheyCan) {
  CEntHatch* hatch = added();
  const std::string before = shown(*hatch);
  const std::unique_ptr<IEntDerivedMemento> memento(hatch->createDerivedMemento());
  EXPECT_TRUE(*hatch == *memento);
  CBlock* block = hatch->getBlock();

  CEntMoveVisitor move(PNT_3D(5, 5, 0));
  hatch->accept(move);
  EXPECT_FALSE(*hatch == *memento);
  hatch->setMemento(*data, memento.get());
  EXPECT_EQ(hatch->getBlock(), block) << "the same lines, put back";
  EXPECT_EQ(shown(*hatch), before);
  EXPECT_TRUE(*hatch == *memento);

  hatch->redefine(*data, 2, 1, pattern(u"ANSI37"));
  hatch->setMemento(*data, memento.get());
  EXPECT_EQ(shown(*hatch), before) << "generated anew";
  EXPECT_EQ(hatch->getHatchScale(), 4);
  EXPECT_EQ(&hatch->getHatchType(), &pattern(u"ANSI31"));
  EXPECT_EQ(blocks().size(), 1);

  CEntPnt* point = createEntPnt(*data, PNT_3D(1, 1, 0), 0);
  const std::unique_ptr<IEntDerivedMemento> foreign(point->createDerivedMemento());
  hatch->setMemento(*data, foreign.get());
  EXPECT_EQ(shown(*hatch), before) << "a memento of another kind is ignored";
  delete point;

  data->setHatchLimit(1);
  const CBlock* kept = hatch->getBlock();
  const std::unique_ptr<IEntDerivedMemento> full(hatch->createDerivedMemento());
  hatch->getBlock()->disposeEntities();
  hatch->setMemento(*data, full.get());
  EXPECT_EQ(hatch->getBlock(), kept) << "nothing can be generated";
  EXPECT_EQ(kept->size(), 0u);
}

// A hatch has no lines if a file requests too many.
TEST_F(Hatches, MementosOfHatchesWithoutLinesRestoreThat) {
  CEntHatch* hatch = added();
  hatch->getBlock()->disposeEntities();
  hatch->setHatchScale(1e-9);
  const std::unique_ptr<IEntDerivedMemento> memento(hatch->createDerivedMemento());
  EXPECT_TRUE(hatch->redefine(*data, 4, 0, hatch->getHatchType()));
  EXPECT_GT(hatch->getBlock()->size(), 0u);
  hatch->setMemento(*data, memento.get());
  EXPECT_EQ(hatch->getHatchScale(), 1e-9);
  EXPECT_EQ(hatch->getBlock()->size(), 0u);
  EXPECT_EQ(hatch->getBlock()->getEntities(), 1);
  EXPECT_EQ(blocks().size(), 1);
}

// A hatch replaces its own block, so the list of blocks that its owner inserts must follow.
TEST_F(Hatches, LiveInBlocks) {
  CBlock* block = data->getBlockFactory().create(u"B", PNT_3D(1, 1, 0), 0);
  CEntHatch* hatch = make();
  block->add(hatch);
  blocks().add(block);
  CBlockGraph& graph = blocks().getBlockGraph();
  EXPECT_EQ(graph.getEdges(*block), std::vector<CBlock*>{hatch->getBlock()});
  EXPECT_EQ(hatch->getPnt(0), PNT_3D(-1, -1, 0)) << "moved with the block's base point";
  EXPECT_GE(static_cast<const CBlock&>(*block).getBdry().min.x, -1 - 1e-9);
  EXPECT_TRUE(hatch->redefine(*data, 1, 0, hatch->getHatchType()));
  EXPECT_EQ(graph.getEdges(*block), std::vector<CBlock*>{hatch->getBlock()});
  EXPECT_EQ(blocks().size(), 2);
  EXPECT_EQ(hatch->getBlock()->getEntities(), 1);
  const RECT_3D box = static_cast<const CBlock&>(*block).getBdry();
  EXPECT_EQ(box, static_cast<const CBlock&>(*hatch->getBlock()).getBdry()) << "of the new lines";
  EXPECT_GE(box.min.x, -1 - 1e-9);
  EXPECT_LE(box.max.x, 9 + 1e-9);
}

TEST_F(Hatches, ABlockThatAnInsertShowsTooStays) {
  CEntHatch* hatch = added();
  CBlock* old = hatch->getBlock();
  data->getEntTable().add(
      createEntInsert(*data, *old, PNT_3D(50, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 0));
  EXPECT_TRUE(hatch->redefine(*data, 1, 0, hatch->getHatchType()));
  EXPECT_NE(hatch->getBlock(), old);
  EXPECT_EQ(blocks().get(u"*PAT1"), old);
  EXPECT_EQ(blocks().get(u"*PAT2"), hatch->getBlock());
}

TEST_F(Hatches, AreFilledWithHiddenFaces) {
  const Ring withHole = joinHatchRings({kSquare, {{2, 2, 0}, {8, 2, 0}, {8, 8, 0}, {2, 8, 0}}});
  CEntHatch* hatch = createEntHatch(*data, data->getHatchTypeTable().solid(), 1, 0, withHole, 0);
  ASSERT_NE(hatch, nullptr);
  data->getEntTable().add(hatch);
  double area = 0;
  CBlock& block = *hatch->getBlock();
  for (unsigned i = 0; i < block.size(); ++i) {
    CEnt3DFace* face = cast3DFace(block[i]);
    ASSERT_NE(face, nullptr);
    EXPECT_EQ(face->getFlags(), 15);
    EXPECT_TRUE(face->isFilled());
    for (long a = 0; a < 4; ++a) {
      const PNT_3D &p = face->getVertex(a), &q = face->getVertex((a + 1) % 4);
      area += (p.x * q.y - p.y * q.x) / 2;
    }
  }
  EXPECT_NEAR(std::abs(area), 100 - 36, 1e-9);
}

TEST_F(Hatches, OfACopiedDrawingNameItsOwnPatterns) {
  const HATCH_TYPE& own = data->getHatchTypeTable().intern(u"MINE", {{0, 0, 0, 0, 1, {}, 0}});
  EXPECT_EQ(&own, &data->getHatchTypeTable().intern(u"MINE", {{0, 0, 0, 0, 1, {}, 0}}));
  data->getEntTable().add(createEntHatch(*data, own, 1, 0, kSquare, 0));
  CDataPtr copy(cloneData(*data));
  ASSERT_EQ(copy->getEntTable().getEntityTbl().size(), 1u);
  CEntHatch* hatch = castHatch(copy->getEntTable().getEntityTbl().front());
  const std::string before = shown(*castHatch(data->getEntTable().getEntityTbl().front()));
  data.reset();
  EXPECT_EQ(shown(*hatch), before);
  EXPECT_EQ(zim::WString(hatch->getHatchType().name), zim::WString(u"MINE"));
  EXPECT_EQ(hatch->getBlock(), copy->getBlockTable()[0]);
  EXPECT_TRUE(hatch->redefine(*copy, 2, 0, hatch->getHatchType()));
}
