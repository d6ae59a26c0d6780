#include "entities/blockworld.h"
#include "support/test.h"

namespace {

class Block : public testing::Test, protected BlockWorld {
 protected:
  CEntPnt* pnt(double x, double y) {
    return ents.createEntPnt(gestor, nullptr, nullptr, 256, PNT_3D(x, y, 0), 0);
  }

  static std::vector<const CEnt*> listed(const CBlock& block) {
    std::vector<const CEnt*> entities;
    for (unsigned i = 0; i < block.size(); ++i) entities.push_back(block[i]);
    return entities;
  }
};

const RECT_3D kEmpty = [] {
  RECT_3D box;
  box.initRegion();
  return box;
}();

TEST_F(Block, StoresEntitiesRelativeToItsBasePoint) {
  const std::unique_ptr<CBlock> made(block("B", PNT_3D(1, 2, 0)));
  EXPECT_EQ(made->getBdry(), kEmpty);
  CEntPnt* ent = pnt(5, 5);
  made->add(ent);
  EXPECT_EQ(ent->getPnt(), PNT_3D(4, 3, 0));
  EXPECT_EQ(made->getBdry(), RECT_3D(4, 3, 0, 4, 3, 0));
  made->remove(ent);
  EXPECT_EQ(ent->getPnt(), PNT_3D(4, 3, 0)) << "not moved back";
  made->restore(ent);
  EXPECT_EQ(ent->getPnt(), PNT_3D(4, 3, 0));
  EXPECT_EQ(made->size(), 1u);
}

TEST_F(Block, IgnoresWhatItCannotTakeOrGive) {
  const std::unique_ptr<CBlock> one(block("1")), two(block("2"));
  CEntPnt* ent = pnt(1, 1);
  one->add(ent);
  one->add(ent);
  two->add(ent);
  two->remove(ent);
  one->add(nullptr);
  one->remove(nullptr);
  EXPECT_EQ(one->size(), 1u);
  EXPECT_EQ(two->size(), 0u);
}

TEST_F(Block, AttributeDefinitionsSetAFlagAndNoExtents) {
  const std::unique_ptr<CBlock> made(block("B"));
  CEntAttdef* def = attdef(u"TAG", 50, 50);
  made->add(def);
  EXPECT_EQ(made->getFlags(), CBlock::kHasAttdefs);
  EXPECT_EQ(made->getBdry(), kEmpty);
  made->add(pnt(1, 1));
  EXPECT_EQ(made->getBdry(), RECT_3D(1, 1, 0, 1, 1, 0));
  made->calcBdry();
  EXPECT_GT(made->getBdry().max.x, 50);
  made->add(pnt(2, 2));
  EXPECT_GT(made->getBdry().max.x, 50) << "adding only grows what there is";
  made->remove(def);
  EXPECT_EQ(made->getFlags(), 0);
  EXPECT_EQ(made->getBdry(), RECT_3D(1, 1, 0, 2, 2, 0));
  delete def;
}

// Compares the order with a vector, and the extents with the union of all points.
TEST_F(Block, RandomEditsKeepOrderAndExtents) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::unique_ptr<CBlock> made(block("B"));
    std::vector<CEnt*> naive;
    for (int step = 0; step < 600; ++step) {
      const unsigned action = random() % 16;
      // Mostly growing at first, mostly shrinking later.
      if (naive.empty() || action < (step < 300 ? 9u : 4u)) {
        naive.push_back(pnt(static_cast<double>(random() % 1000), static_cast<double>(step)));
        made->add(naive.back());
      } else if (action < 13) {
        const std::size_t i = random() % naive.size();
        ASSERT_EQ((*made)[static_cast<unsigned>(i)], naive[i]);
        made->remove(naive[i]);
        delete naive[i];
        naive.erase(naive.begin() + static_cast<std::ptrdiff_t>(i));
      } else if (action == 13) {
        RECT_3D box = kEmpty;
        for (const CEnt* ent : naive) box.updateRegion(ent->getBdry());
        ASSERT_EQ(made->getBdry(), box);
      } else if (action == 14) {
        ASSERT_EQ(listed(*made), std::vector<const CEnt*>(naive.begin(), naive.end()));
      }
      ASSERT_EQ(made->size(), naive.size());
    }
  }
}

TEST_F(Block, IteratesItsInsertsAndDefinitions) {
  CBlock* inner = tabled("I");
  const std::unique_ptr<CBlock> made(block("B"));
  CEntAttdef* def = attdef(u"A", 0, 0);
  CEntInsert* first = insert(inner);
  CEntInsert* second = insert(inner);
  CEntPnt* gone = pnt(0, 0);
  for (CEnt* ent : std::initializer_list<CEnt*>{gone, first, pnt(1, 1), def, second})
    made->add(ent);
  made->remove(gone);

  CBlock::CInsertIterator inserts(*made);
  EXPECT_EQ(*inserts, first);
  EXPECT_EQ(*inserts++, first);
  EXPECT_EQ(*inserts, second);
  EXPECT_EQ(*++inserts, nullptr);
  EXPECT_EQ(*++inserts, nullptr);

  CBlock::CAttdefIterator defs(*made);
  EXPECT_EQ(*defs++, def);
  EXPECT_EQ(*defs, nullptr);
  EXPECT_EQ(*CBlock::CAttdefIterator(*inner), nullptr);
  delete gone;
}

TEST_F(Block, ExtentsFollowTheBlocksInserted) {
  CBlock* c = tabled("C");
  CBlock* b = tabled("B", {c});
  CBlock* a = block("A");
  a->add(insert(b, PNT_3D(10, 0, 0), 2, 2));
  table.add(a);
  EXPECT_EQ(a->getBdry(), kEmpty);

  redefine(c, {line(0, 0, 1, 1)});
  EXPECT_EQ(a->getBdry(), RECT_3D(10, 0, 0, 12, 2, 0));
  EXPECT_EQ((*a)[0]->getBdry(), RECT_3D(10, 0, 0, 12, 2, 0));

  // B grows after the extents of A were computed, and C grows after B.
  b->add(line(0, 0, 0, 5));
  c->add(line(0, 0, -1, 0));
  EXPECT_EQ((*a)[0]->getBdry(), RECT_3D(8, 0, 0, 12, 10, 0));
  EXPECT_EQ(a->getBdry(), RECT_3D(8, 0, 0, 12, 10, 0));

  // A pending addition must not hide that earlier content has changed.
  a->add(pnt(0, 0));
  redefine(c, {});
  EXPECT_EQ(a->getBdry(), RECT_3D(0, 0, 0, 10, 10, 0));

  // Changed in place, without notification.
  static_cast<CEntLine&>(*(*b)[1]).setLine(0, 0, 0, 0, 7, 0);
  EXPECT_EQ(a->getBdry(), RECT_3D(0, 0, 0, 10, 10, 0));
  table.recalcBdry();
  EXPECT_EQ(a->getBdry(), RECT_3D(0, 0, 0, 10, 14, 0));
}

// For a block outside a table, the blocks that insert it are unknown.
TEST_F(Block, ComputingAnewLooksAtTheInsertedBlocksAgain) {
  const std::unique_ptr<CBlock> inner(block("I")), outer(block("O"));
  outer->add(insert(inner.get()));
  EXPECT_EQ(outer->getBdry(), kEmpty);
  inner->add(pnt(3, 4));
  outer->invalidateBdry();
  EXPECT_EQ(outer->getBdry(), RECT_3D(3, 4, 0, 3, 4, 0));
}

TEST_F(Block, RecomputingLeavesDefinitionsOut) {
  CBlock* made = tabled("B");
  made->add(pnt(0, 0));
  made->add(attdef(u"A", 9, 9));
  made->calcBdry();
  table.recalcBdry();
  EXPECT_EQ(made->getBdry(), RECT_3D(0, 0, 0, 0, 0, 0));
}

// Files can contain such a circle before the table rejects it.
TEST_F(Block, InsertsThatCloseACircleEndTheComputation) {
  const std::unique_ptr<CBlock> a(block("A")), b(block("B"));
  a->add(insert(b.get(), PNT_3D(1, 0, 0)));
  b->add(insert(a.get(), PNT_3D(1, 0, 0)));
  a->add(pnt(0, 0));
  b->add(insert(b.get()));
  EXPECT_TRUE(a->getBdry().inside(PNT_3D(0, 0, 0)));
  b->getBdry();
}

TEST_F(Block, ACopyHasNoEntities) {
  const std::unique_ptr<CBlock> made(block("B", PNT_3D(1, 2, 3)));
  made->add(attdef(u"A", 0, 0));
  made->setFlags(64, true);
  made->SetUserInfo(4, 5);
  const CBlock copy(*made);
  EXPECT_EQ(copy.getName(), u"B");
  EXPECT_EQ(copy.getPnt(), PNT_3D(1, 2, 3));
  EXPECT_EQ(copy.getFlags(), 64);
  EXPECT_EQ(copy.GetUserType(), 4);
  EXPECT_EQ(copy.GetUserData(), 5);
  EXPECT_EQ(copy.size(), 0u);
  EXPECT_EQ(copy.getBdry(), kEmpty);
  CBlock assigned(copy);
  assigned.add(attdef(u"A", 0, 0));
  assigned = copy;
  EXPECT_EQ(assigned.size(), 1u);
  EXPECT_EQ(assigned.getFlags(), 64 | CBlock::kHasAttdefs);
}

TEST_F(Block, AMementoUndoesARedefinition) {
  CBlock* inner = tabled("I");
  CBlock* other = tabled("O");
  CBlock* made = block("B", PNT_3D(1, 1, 0));
  made->add(insert(inner));
  made->add(attdef(u"A", 0, 0));
  table.add(made);
  const std::vector<const CEnt*> before = listed(*made);
  const RECT_3D box = made->getBdry();

  const std::unique_ptr<CBlockMemento> memento(made->createMemento());
  EXPECT_TRUE(*memento == *made);
  EXPECT_EQ(table.Redefine(made, PNT_3D(5, 5, 5), 64, {insert(other), insert(other)}), 0);
  EXPECT_TRUE(*memento != *made);
  EXPECT_EQ(made->getFlags(), 64);
  EXPECT_EQ(inner->getEntities(), 0);
  EXPECT_EQ(other->getEntities(), 2);

  const std::unique_ptr<CBlockMemento> redo(made->createMemento());
  table.setMemento(made, *memento);
  EXPECT_TRUE(*memento == *made);
  EXPECT_EQ(listed(*made), before);
  EXPECT_EQ(made->getPnt(), PNT_3D(1, 1, 0));
  EXPECT_EQ(made->getFlags(), CBlock::kHasAttdefs);
  EXPECT_EQ(made->getBdry(), box);
  EXPECT_EQ(inner->getEntities(), 1);
  EXPECT_EQ(other->getEntities(), 0);
  EXPECT_EQ(table.getBlockGraph().getEdges(*made), std::vector<CBlock*>{inner});
  redo->destroyEntity();
}

TEST_F(Block, ATableRegistersWhatItsBlocksHold) {
  CBlock* inner = tabled("I");
  CBlock* made = tabled("B", {inner, inner});
  EXPECT_EQ(inner->getEntities(), 2);
  table.add(made);
  EXPECT_EQ(inner->getEntities(), 2) << "already there";
  table.remove(made);
  table.remove(made);
  EXPECT_EQ(inner->getEntities(), 0);
  made->disposeEntities();
  EXPECT_EQ(made->size(), 0u);
  delete made;
  EXPECT_EQ(table.get(u"i"), inner);
  EXPECT_EQ(table.get(u"B"), nullptr);
}

// Caches of a block's content compare editions to detect changes.
TEST_F(Block, EveryEditMakesAnEditionOfTheBlockAndOfItsUsers) {
  CBlock* inner = tabled("I");
  CBlock* outer = tabled("O", {inner});
  CBlock* other = tabled("X");
  CEntPnt* ent = pnt(1, 1);
  const std::unique_ptr<CBlockMemento> empty(inner->createMemento());
  const std::function<void()> edits[] = {
      [&] { inner->add(ent); },
      [&] { inner->remove(ent); },
      [&] { inner->restore(ent); },
      [&] { ent->setPnt(PNT_3D(2, 2, 0)), inner->invalidateBdry(); },
      [&] { inner->disposeEntities(); },
      [&] { inner->setMemento(*empty); },
  };
  for (const auto& edit : edits) {
    SCOPED_TRACE(&edit - edits);
    outer->getBdry();
    const std::uint64_t before[] = {inner->getEdition(), outer->getEdition(), other->getEdition()};
    edit();
    EXPECT_GT(inner->getEdition(), before[0]);
    EXPECT_GT(outer->getEdition(), before[1]);
    EXPECT_EQ(other->getEdition(), before[2]);
    const std::uint64_t edited = outer->getEdition();
    outer->getBdry();
    EXPECT_EQ(outer->getEdition(), edited) << "asking is no edit";
  }
}

}  // namespace
