#include "entities/blockworld.h"
#include "support/test.h"

namespace {

using Blocks = std::vector<CBlock*>;

Blocks reversed(Blocks blocks) {
  std::reverse(blocks.begin(), blocks.end());
  return blocks;
}

// The graph by definition: searches and recursion instead of caches.
class NaiveGraph {
 public:
  // Sets the blocks that `block` inserts, without those that would close a circle. Blocks may be
  // inserted before they are added to the table.
  void set(CBlock* block, const Blocks& inserted) {
    if (!has(block)) m_order.push_back(block);
    Blocks& edges = m_edges[block];
    edges.clear();
    for (CBlock* inner : inserted)
      if (std::find(edges.begin(), edges.end(), inner) == edges.end() && !reaches(inner, block))
        edges.push_back(inner);
  }

  void drop(CBlock* block) {
    m_order.erase(std::find(m_order.begin(), m_order.end(), block));
    m_edges.erase(block);
  }

  bool has(CBlock* block) const { return m_edges.count(block) != 0; }

  bool reaches(CBlock* from, CBlock* to) const {
    std::set<CBlock*> seen;
    return reaches(from, to, seen);
  }

  Blocks visitUndep() const {
    Blocks visited;
    for (CBlock* block : m_order) visit(block, visited);
    return visited;
  }

  const Blocks& order() const { return m_order; }
  Blocks edges(CBlock* block) const {
    Blocks edges = m_edges.at(block);
    std::erase_if(edges, [&](CBlock* inner) { return !has(inner); });
    return edges;
  }
  std::size_t users(CBlock* block) const {
    return static_cast<std::size_t>(
        std::count_if(m_edges.begin(), m_edges.end(), [&](const auto& item) {
          return std::count(item.second.begin(), item.second.end(), block) != 0;
        }));
  }

 private:
  bool reaches(CBlock* from, CBlock* to, std::set<CBlock*>& seen) const {
    if (from == to) return true;
    if (!has(from) || !seen.insert(from).second) return false;
    const Blocks& edges = m_edges.at(from);
    return std::any_of(edges.begin(), edges.end(), [&](CBlock* b) { return reaches(b, to, seen); });
  }

  void visit(CBlock* block, Blocks& visited) const {
    if (!has(block) || std::find(visited.begin(), visited.end(), block) != visited.end()) return;
    for (CBlock* inner : m_edges.at(block)) visit(inner, visited);
    visited.push_back(block);
  }

  Blocks m_order;
  std::map<CBlock*, Blocks> m_edges;
};

// A block that records its destruction.
class MortalBlock final : public CBlock {
 public:
  MortalBlock(const zim::WString& name, std::vector<const CBlock*>& graves)
      : CBlock(name), m_graves(graves) {}
  ~MortalBlock() override { m_graves.push_back(this); }

 private:
  std::vector<const CBlock*>& m_graves;
};

class BlockGraph : public testing::Test, protected BlockWorld {
 protected:
  CBlockGraph& graph() { return table.getBlockGraph(); }
};

Blocks insertedBy(const CBlock& block) {
  Blocks inserted;
  for (CBlock::CInsertIterator at(block); *at; ++at) inserted.push_back((*at)->getBlock());
  return inserted;
}

// Blocks are added, removed and redefined, and inserted while they are not in the table.
TEST_F(BlockGraph, RandomEditsGiveWhatSearchingGives) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto anyOf = [&](const Blocks& some) { return some[random() % some.size()]; };
    NaiveGraph naive;
    Blocks outside;
    for (int step = 0; step < 400; ++step) {
      Blocks all = naive.order(), inserted;
      all.insert(all.end(), outside.begin(), outside.end());
      for (std::size_t n = all.empty() ? 0 : random() % 4; n != 0; --n)
        inserted.push_back(anyOf(all));
      const std::size_t action = random() % 10;
      if (naive.order().size() < 3 || action < 3) {
        naive.set(tabled("B" + std::to_string(step), inserted), inserted);
      } else if (action < 7) {
        CBlock* block = anyOf(naive.order());
        const bool allowed = std::none_of(inserted.begin(), inserted.end(), [&](CBlock* inner) {
          return naive.reaches(inner, block);
        });
        EXPECT_EQ(redefine(block, inserts(inserted)), allowed ? 0 : -1);
        if (allowed) naive.set(block, inserted);
      } else if (action < 9 || outside.empty()) {
        outside.push_back(anyOf(naive.order()));
        table.remove(outside.back());
        naive.drop(outside.back());
      } else {
        std::swap(outside[random() % outside.size()], outside.back());
        table.add(outside.back());
        naive.set(outside.back(), insertedBy(*outside.back()));
        outside.pop_back();
      }
      ASSERT_EQ(graph().size(), naive.order().size());
      for (CBlock* block : naive.order()) {
        ASSERT_EQ(graph().getEdges(*block), naive.edges(block));
        ASSERT_EQ(graph().getNoUsers(*block), naive.users(block));
      }
      Journal undep, dep;
      ASSERT_EQ(graph().VisitUndep(undep), 0);
      ASSERT_EQ(graph().VisitDep(dep), 0);
      ASSERT_EQ(undep.blocks, naive.visitUndep());
      ASSERT_EQ(dep.blocks, reversed(undep.blocks));
    }
    for (CBlock* block : naive.order()) redefine(block, {});
    for (const CBlock* block : outside) delete block;
    table.clearAll();
  }
}

// During a visit, asks for every pair of blocks whether one may insert the other.
class Asking final : public IBlockOperation {
 public:
  Asking(const CBlockGraph& graph, const NaiveGraph& naive) : m_graph(graph), m_naive(naive) {}

  int doOperation(CBlock& block) override {
    blocks.push_back(&block);
    for (CBlock* other : m_naive.order())
      EXPECT_EQ(m_graph.canSubstitute(block, {other}), !m_naive.reaches(other, &block));
    return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  }

  Blocks blocks;

 private:
  const CBlockGraph& m_graph;
  const NaiveGraph& m_naive;
};

// Each round reverses the order of the previous one, so the first block must become the last.
TEST_F(BlockGraph, AnOrderTurnedOverAndOverStaysFreeOfCircles) {
  std::mt19937 random(1);
  NaiveGraph naive;
  for (int i = 0; i < 24; ++i) naive.set(tabled("B" + std::to_string(i)), {});
  for ([[maybe_unused]] const int round : rounds(25)) {
    Blocks behind = naive.order();
    std::shuffle(behind.begin(), behind.end(), random);
    while (!behind.empty()) {
      CBlock* block = behind.back();
      behind.pop_back();
      Blocks inserted;
      for (int n = 0; n < 2 && !behind.empty(); ++n)
        inserted.push_back(behind[random() % behind.size()]);
      const bool allowed = std::none_of(inserted.begin(), inserted.end(),
                                        [&](CBlock* b) { return naive.reaches(b, block); });
      EXPECT_EQ(redefine(block, inserts(inserted)), allowed ? 0 : -1);
      if (allowed) naive.set(block, inserted);
    }
    Asking asking(graph(), naive);
    EXPECT_EQ(graph().VisitUndep(asking), ZORA_BLOCK_VISIT_RESULT_SUCCESS);
    EXPECT_EQ(asking.blocks, naive.visitUndep());
  }
}

TEST_F(BlockGraph, VisitsBlocksAfterWhatTheyInsert) {
  CBlock* c = tabled("C");
  CBlock* b = tabled("B", {c, c});
  CBlock* a = tabled("A", {b, c});
  EXPECT_EQ(graph().getEdges(*b), Blocks{c}) << "one edge, however many inserts";
  Journal journal;
  EXPECT_EQ(graph().VisitUndep(journal), ZORA_BLOCK_VISIT_RESULT_SUCCESS);
  EXPECT_EQ(journal.blocks, (Blocks{c, b, a}));
}

TEST_F(BlockGraph, AnOperationEndsTheVisit) {
  CBlock* b = tabled("B");
  CBlock* a = tabled("A", {b});
  tabled("Z");
  Journal undep(a), dep(a);
  EXPECT_EQ(graph().VisitUndep(undep), 42);
  EXPECT_EQ(undep.blocks, (Blocks{b, a}));
  EXPECT_EQ(graph().VisitDep(dep), 42);
  EXPECT_EQ(dep.blocks.back(), a);
  EXPECT_EQ(dep.blocks.size(), 2u);
}

TEST_F(BlockGraph, RefusesToRedefineInCircles) {
  CBlock* c = tabled("C");
  CBlock* b = tabled("B", {c});
  CBlock* a = tabled("A", {b});
  const CEnt* before = (*a)[0];
  EXPECT_EQ(redefine(a, inserts({a})), -1);
  EXPECT_EQ((*a)[0], before);
  EXPECT_EQ(redefine(c, inserts({a})), -1);
  EXPECT_EQ(c->size(), 0u);
  EXPECT_TRUE(table.canRedefine(c, {}));
  EXPECT_FALSE(table.canRedefine(nullptr, {}));
  // A block outside the graph is treated as one that is about to be added.
  const std::unique_ptr<CBlock> fresh(block("F"));
  EXPECT_TRUE(graph().canSubstitute(*fresh, {a, b}));
  EXPECT_FALSE(graph().canSubstitute(*fresh, {a, fresh.get()}));
}

// The search proceeds from both ends, so either side may meet the other.
TEST_F(BlockGraph, SeesACircleThroughAnyOfMany) {
  CBlock* used = tabled("USED");
  Blocks middle;
  for (int i = 0; i < 12; ++i) middle.push_back(tabled("M" + std::to_string(i), {used}));
  CBlock* top = tabled("TOP", middle);
  for (CBlock* block : middle) {
    EXPECT_FALSE(graph().canSubstitute(*used, {block}));
    EXPECT_FALSE(graph().canSubstitute(*block, {top}));
    EXPECT_TRUE(graph().canSubstitute(*block, {middle[0] == block ? middle[1] : middle[0]}));
  }
}

TEST_F(BlockGraph, SubstitutesOnlyWhatItMay) {
  CBlock* c = tabled("C");
  CBlock* b = tabled("B", {c});
  EXPECT_FALSE(graph().Substitute(*c, {b}));
  EXPECT_TRUE(graph().getEdges(*c).empty());
  CBlock* d = tabled("D");
  EXPECT_TRUE(graph().Substitute(*c, {d, d}));
  EXPECT_EQ(graph().getEdges(*c), Blocks{d});
}

TEST_F(BlockGraph, KeepsABlockThatOthersInsert) {
  CBlock* b = tabled("B");
  CBlock* a = tabled("A", {b});
  EXPECT_NE(graph().RemoveBlock(*b), 0);
  EXPECT_TRUE(graph().contains(*b));
  EXPECT_EQ(graph().RemoveBlock(*a), 0);
  EXPECT_EQ(graph().RemoveBlock(*a), 0) << "not there any more";
  EXPECT_EQ(graph().RemoveBlock(*b), 0);
  EXPECT_EQ(graph().size(), 0u);
}

TEST_F(BlockGraph, ADeletedBlockLeavesTableAndGraph) {
  CBlock* b = tabled("B");
  CBlock* a = tabled("A", {b});
  delete a;
  EXPECT_EQ(table.size(), 1);
  EXPECT_EQ(graph().getNoUsers(*b), 0u);
}

TEST_F(BlockGraph, AnInsertOfItselfGetsNoEdge) {
  CBlock* a = block("A");
  a->add(insert(a));
  table.add(a);
  EXPECT_TRUE(graph().getEdges(*a).empty());
  Journal journal;
  EXPECT_EQ(graph().VisitUndep(journal), 0);
}

TEST_F(BlockGraph, UpdateLeavesOutTheEdgeThatClosesACycle) {
  CBlock* c = tabled("C");
  CBlock* b = tabled("B", {c});
  CBlock* other = tabled("O");
  c->add(insert(b));
  c->add(insert(other));
  table.updateBlock(c);
  EXPECT_EQ(graph().getEdges(*c), Blocks{other});
}

TEST_F(BlockGraph, SaysThatItMetACycle) {
  CBlock* a = tabled("A");
  CBlock* b = tabled("B", {a});
  graph().doSubstitute(*a, {b});  // unchecked
  Journal undep, dep;
  EXPECT_EQ(graph().VisitUndep(undep), ZORA_BLOCK_VISIT_RESULT_CYCLE);
  EXPECT_EQ(graph().VisitDep(dep), ZORA_BLOCK_VISIT_RESULT_CYCLE);
  EXPECT_TRUE(dep.blocks.empty());
}

TEST_F(BlockGraph, ClearingDestroysEachBlockOnceUsersFirst) {
  std::vector<const CBlock*> graves;
  CBlock* used = new MortalBlock(u"U", graves);
  table.add(used);
  std::vector<const CBlock*> users;
  for (int i = 0; i < 3; ++i) {
    CBlock* user = new MortalBlock(u"A", graves);
    user->add(insert(used));
    user->add(insert(used));
    table.add(user);
    users.push_back(user);
  }
  EXPECT_EQ(used->getEntities(), 6);
  CEntInsert* outside = insert(used);
  outside->addTbls(gestor);
  table.clearAll();
  ASSERT_EQ(graves.size(), 4u);
  EXPECT_EQ(graves.back(), used);
  EXPECT_EQ(std::set<const CBlock*>(graves.begin(), graves.end()).size(), 4u);
  EXPECT_EQ(table.size(), 0);
  EXPECT_EQ(graph().size(), 0u);
  delete outside;
}

TEST_F(BlockGraph, ClearingDestroysACycleToo) {
  std::vector<const CBlock*> graves;
  CBlock* a = new MortalBlock(u"A", graves);
  CBlock* b = new MortalBlock(u"B", graves);
  table.add(a);
  table.add(b);
  graph().doSubstitute(*a, {b});
  graph().doSubstitute(*b, {a});
  table.clearAll();
  EXPECT_EQ(graves, (std::vector<const CBlock*>{a, b}));
}

// Recursion would need a stack frame per block.
TEST_F(BlockGraph, NestingMayBeOfAnyDepth) {
  constexpr int kDepth = 100000;
  CBlock* innermost = block("INNERMOST");
  innermost->add(line(0, 0, 1, 0));
  table.add(innermost);
  CBlock* last = innermost;
  for (int i = 0; i < kDepth; ++i) {
    CBlock* next = block("B" + std::to_string(i));
    next->add(insert(last, PNT_3D(1, 0, 0)));
    table.add(next);
    last = next;
  }
  Journal journal;
  EXPECT_EQ(graph().VisitUndep(journal), 0);
  EXPECT_EQ(journal.blocks.size(), std::size_t{kDepth} + 1);
  EXPECT_EQ(journal.blocks.back(), last);
  EXPECT_EQ(last->getBdry(), RECT_3D(kDepth, 0, 0, kDepth + 1, 0, 0));
  EXPECT_FALSE(table.canRedefine(innermost, {(*last)[0]}));
  // The change reaches all blocks that show the innermost one.
  redefine(innermost, {line(0, 0, 2, 0)});
  EXPECT_EQ(last->getBdry().max.x, kDepth + 2);
}

// Copied drawings get such a view.
TEST_F(BlockGraph, ACopiedTableIsAView) {
  CBlock* b = tabled("B");
  tabled("A", {b});
  CBlockTable view(table);
  EXPECT_EQ(view.size(), 2);
  EXPECT_EQ(view.get(u"b"), b);
  Journal journal;
  EXPECT_EQ(view.getBlockGraph().VisitUndep(journal), 0);
  EXPECT_EQ(journal.blocks.size(), 2u);
  view.remove(b);
  const std::unique_ptr<CBlock> fresh(block("C"));
  view.add(fresh.get());
  EXPECT_EQ(view.size(), 2);
  EXPECT_EQ(graph().size(), 2u);
}

}  // namespace
