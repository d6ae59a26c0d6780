// Objects removed from a table or a block return to their previous position.

#include "entities/blockworld.h"
#include "entities/scene.h"
#include "support/test.h"

namespace {

/// Removes objects and restores them in reverse order, in runs of random length between other
/// additions; a plain list holds the expected order.
template <class Thing, class Owner>
class PlacesTrial {
 public:
  PlacesTrial(Owner& owner, unsigned seed) : m_owner(owner), m_random(seed) {}

  template <class Make, class Read>
  void run(Make make, Read read) {
    for (int i = 0; i < 40; ++i) add(make());
    for (int round = 0; round < 60; ++round) {
      const std::vector<Thing*> before = m_expected;
      const int count = static_cast<int>(m_random() % 30);
      for (int i = 0; i < count && !m_expected.empty(); ++i) takeOne(i % 3 == 0);
      // Reading everything occasionally makes the owner compact its array.
      if (m_random() % 2 == 0) ASSERT_EQ(read(), m_expected);
      while (!m_out.empty()) putBack();
      ASSERT_EQ(m_expected, before);
      ASSERT_EQ(read(), m_expected) << "round " << round;
      if (round % 4 == 0) add(make());
    }
  }

 private:
  struct Out {
    Thing* thing;
    typename Owner::Place place;
    std::size_t index;
  };

  void add(Thing* made) {
    m_owner.add(made);
    m_expected.push_back(made);
  }
  void takeOne(bool isLast) {
    const std::size_t i = isLast ? m_expected.size() - 1 : m_random() % m_expected.size();
    Thing* thing = m_expected[i];
    m_out.push_back({thing, m_owner.getPlace(*thing), i});
    m_owner.remove(thing);
    m_expected.erase(m_expected.begin() + static_cast<std::ptrdiff_t>(i));
  }
  void putBack() {
    const Out out = m_out.back();
    m_out.pop_back();
    m_owner.restore(out.thing, out.place);
    m_expected.insert(m_expected.begin() + static_cast<std::ptrdiff_t>(out.index), out.thing);
  }

  Owner& m_owner;
  std::mt19937 m_random;
  std::vector<Thing*> m_expected;
  std::vector<Out> m_out;
};

TEST(Places, EntitiesGoBackIntoATable) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    Scene scene;
    CEntTable& table = scene.data->getEntTable();
    PlacesTrial<CEnt, CEntTable> trial(table, seed);
    // All have the same handle, which must find the first one in order.
    trial.run([&] { return scene.line(0, 0, 1, 1, 5); },
              [&] {
                const std::list<CEnt*>& all = table.getEntityTbl();
                EXPECT_EQ(table.get(5), all.empty() ? nullptr : all.front());
                return std::vector<CEnt*>(all.begin(), all.end());
              });
  }
}

TEST(Places, RanksOfTableEntitiesGrowAlongTheOrder) {
  Scene scene;
  CEntTable& table = scene.data->getEntTable();
  CEntLine* first = scene.line(0, 0, 1, 1);
  CEntLine* second = scene.line(0, 0, 1, 1);
  table.add(first);
  table.add(second);
  const CEntTable::Place place = table.getPlace(*first);
  table.remove(second);
  table.remove(first);
  table.add(second);  // without the undo stack: it gets a new rank
  table.restore(first, place);
  std::vector<std::size_t> ranks;
  for (const CEnt* ent : table.getEntityTbl()) ranks.push_back(CEntTable::getRank(*ent));
  EXPECT_TRUE(std::is_sorted(ranks.begin(), ranks.end()));
  EXPECT_EQ(ranks.size(), 2u);
}

TEST(Places, EntitiesGoBackIntoABlock) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    BlockWorld world;
    CBlock* block = world.tabled("B");
    PlacesTrial<CEnt, CBlock> trial(*block, seed);
    trial.run([&] { return world.line(1, 2, 3, 4); },
              [&] {
                std::vector<CEnt*> all;
                for (unsigned i = 0; i < block->size(); ++i) all.push_back((*block)[i]);
                return all;
              });
    // Must not be moved by the base point a second time, and must still be in the extents.
    const RECT_3D box = block->getBdry();
    const CBlock::Place place = block->getPlace(*(*block)[0]);
    CEnt* ent = (*block)[0];
    block->remove(ent);
    block->restore(ent, place);
    EXPECT_EQ(block->getBdry(), box);
  }
}

TEST(Places, StylesGoBackIntoTheirTable) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    CStyleTable table;
    CStyleFactory factory;
    std::vector<CStyle*> all;
    PlacesTrial<CStyle, CStyleTable> trial(table, seed);
    // Of two equal names, the first one added is found, even after it was removed and restored.
    trial.run([&] { return factory.create(u"same", nullptr, 0, 1, 0, 0, 0); },
              [&] {
                all.clear();
                for (int i = 1; i < table.size(); ++i) all.push_back(table[i]);
                EXPECT_EQ(table.get(u"SAME"), all.empty() ? nullptr : all.front());
                return all;
              });
    CStyle* standard = table.getStyleStandard();
    const CStyleTable::Place place = table.getPlace(*standard);
    table.remove(standard);
    EXPECT_EQ(table.getStyleStandard(), nullptr);
    table.restore(standard, place);
    EXPECT_EQ(table.getStyleStandard(), standard);
    EXPECT_EQ(table[0], standard);
  }
}

// The graph has its own order for writing blocks, which must be restored too.
TEST(Places, BlocksGoBackIntoTableAndGraph) {
  BlockWorld world;
  CBlock* inner = world.tabled("inner");
  CBlock* user = world.tabled("user", {inner});
  CBlock* other = world.tabled("other", {inner, user});
  Journal before, without, after;
  world.table.getBlockGraph().VisitUndep(before);
  const CBlockTable::Place place = world.table.getPlace(*inner);
  world.table.remove(inner);
  world.table.getBlockGraph().VisitUndep(without);
  EXPECT_EQ(without.blocks, (std::vector<CBlock*>{user, other}));
  world.table.restore(inner, place);
  world.table.getBlockGraph().VisitUndep(after);
  EXPECT_EQ(after.blocks, before.blocks);
  EXPECT_EQ(world.table[0], inner);
  EXPECT_EQ(world.table.getBlockGraph().getNoUsers(*inner), 2u);
  const std::unique_ptr<CEnt> circular(world.insert(other));
  EXPECT_FALSE(world.table.canRedefine(inner, {circular.get()}));
}

}  // namespace
