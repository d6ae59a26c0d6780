#include "entities/scene.h"
#include "support/test.h"

namespace {

/// A table separate from the drawing's own, with helpers to fill it.
struct TableScene : Scene {
  TableScene() : table(gestor, data->getDepend()) {}

  CEntLine* add(double x1, double y1, double x2, double y2, vek0::Handle handle = 0) {
    CEntLine* ent = line(x1, y1, x2, y2, handle);
    table.add(ent);
    return ent;
  }

  CEntTable table;
};

std::vector<CEnt*> contents(const std::list<CEnt*>& list) { return {list.begin(), list.end()}; }

/// The extents by definition, without any cache.
RECT_3D plainExtents(const CEntTable& table) {
  RECT_3D box;
  box.initRegion();
  for (const CEnt* ent : table.getEntityTbl()) box.updateRegion(ent->getBdry());
  return box;
}

TEST(EntTable, WhatDoesNotFitIsIgnored) {
  TableScene s;
  CEntTable other(s.gestor, s.data->getDepend());
  CEntLine* ours = s.add(0, 0, 1, 1);
  const std::unique_ptr<CEntLine> free(s.line(5, 5, 6, 6));
  const long users = s.layer()->getEntities();

  s.table.add(nullptr);
  s.table.add(ours);
  other.add(ours);
  other.remove(ours);
  other.select(ours);
  s.table.remove(free.get());
  s.table.remove(nullptr);
  s.table.select(free.get());
  s.table.unselect(ours);
  s.table.unselect(nullptr);
  s.table.select(nullptr);

  EXPECT_EQ(contents(s.table.getEntityTbl()), std::vector<CEnt*>{ours});
  EXPECT_TRUE(other.getEntityTbl().empty());
  EXPECT_TRUE(s.table.getSelectedEntityTbl().empty());
  EXPECT_FALSE(free->isSelected());
  EXPECT_EQ(s.layer()->getEntities(), users);
}

TEST(EntTable, SelectingTwiceSelectsOnce) {
  TableScene s;
  CEntLine* ent = s.add(0, 0, 1, 1);
  s.table.select(ent);
  s.table.select(ent, true);
  EXPECT_EQ(s.table.getSelectedEntityTbl().size(), 1U);
  s.table.select(ent, false);
  EXPECT_TRUE(s.table.getSelectedEntityTbl().empty());
  EXPECT_FALSE(ent->isSelected());
}

TEST(EntTable, ClearAllForgetsTheSelectionToo) {
  TableScene s;
  s.table.select(s.add(0, 0, 1, 1, 7));
  ASSERT_NE(s.table.get(7), nullptr);
  const long users = s.layer()->getEntities();
  s.table.clearAll();
  EXPECT_TRUE(s.table.getSelectedEntityTbl().empty());
  EXPECT_TRUE(s.table.getEntityTbl().empty());
  EXPECT_EQ(s.table.get(7), nullptr);
  EXPECT_FALSE(s.table.getBdry().validRegion());
  EXPECT_EQ(s.layer()->getEntities(), users - 1);
}

TEST(EntTable, RemovedEntityMayComeBack) {
  TableScene s;
  CEntLine* ent = s.add(0, 0, 1, 1, 7);
  s.add(2, 2, 3, 3);
  s.table.select(ent);
  s.table.remove(ent);
  EXPECT_FALSE(ent->isSelected());
  EXPECT_EQ(s.table.get(7), nullptr);
  s.table.add(ent);
  EXPECT_EQ(s.table.getEntityTbl().back(), ent);
  EXPECT_EQ(s.table.get(7), ent);
  EXPECT_EQ(s.gestor.reserved, (std::vector<vek0::Handle>{7, 0, 7}));
}

TEST(EntTable, FrozenLayersDoNotCountButOffOnesDo) {
  for (const long flags :
       named<long>({0, CLayer::kFrozen, CLayer::kOff, CLayer::kOff | CLayer::kFrozen})) {
    TableScene s;
    s.layer()->setFlags(flags);
    s.add(0, 0, 1, 1);
    const bool counts = (flags & CLayer::kFrozen) == 0;
    EXPECT_EQ(s.table.getBdry().validRegion(), counts);
    s.table.invalidateBdry();
    EXPECT_EQ(s.table.getBdry().validRegion(), counts);
  }
}

TEST(EntTable, InvalidatedExtentsFollowAnEditInPlace) {
  TableScene s;
  CEntLine* ent = s.add(0, 0, 1, 1);
  ent->setLine(5, 5, 0, 6, 6, 0);
  EXPECT_EQ(s.table.getBdry().max.x, 1) << "the table cannot know";
  s.table.invalidateBdry();
  EXPECT_EQ(s.table.getBdry(), ent->getBdry());
  // A removal also triggers the recomputation, wherever the removed entity lies.
  const std::unique_ptr<CEntLine> inside(s.add(5.5, 5.5, 5.6, 5.6));
  ent->setLine(0, 0, 0, 1, 1, 0);
  s.table.remove(inside.get());
  EXPECT_EQ(s.table.getBdry(), ent->getBdry());
}

TEST(EntTable, RemovingTheLastPointEmptiesTheBox) {
  TableScene s;
  std::vector<std::unique_ptr<CEntPnt>> points;
  for (int i = 0; i < 2; ++i) {
    points.emplace_back(s.factory.createEntPnt(s.gestor, nullptr, nullptr, 7, PNT_3D(1, 1, 1), 0));
    s.table.add(points.back().get());
  }
  s.table.remove(points[0].get());
  EXPECT_EQ(s.table.getBdry(), points[1]->getBdry());
  s.table.remove(points[1].get());
  EXPECT_FALSE(s.table.getBdry().validRegion());
}

TEST(EntTable, FirstOfEqualHandlesIsFound) {
  TableScene s;
  CEntLine* first = s.add(0, 0, 1, 1, 5);
  CEntLine* second = s.add(0, 0, 2, 2, 5);
  s.add(0, 0, 3, 3, -4);
  CEntLine* third = s.add(0, 0, 4, 4, 5);
  EXPECT_EQ(s.table.get(5), first);
  s.table.remove(second);
  s.table.remove(first);
  EXPECT_EQ(s.table.get(5), third);
  s.table.add(first);
  EXPECT_EQ(s.table.get(5), third);
  s.table.remove(third);
  EXPECT_EQ(s.table.get(5), first);
  EXPECT_EQ(s.table.get(-4)->getBdry().max.x, 3);
  EXPECT_EQ(s.table.get(6), nullptr);
  delete second;
  delete third;
}

TEST(EntTable, RandomEditsAgreeWithAPlainModel) {
  constexpr unsigned kSeed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  const auto below = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  TableScene s;
  std::vector<CEnt*> all;
  std::vector<CEnt*> selected;
  std::vector<std::unique_ptr<CEnt>> taken;
  const auto drop = [](std::vector<CEnt*>& from, CEnt* ent) { std::erase(from, ent); };

  for (int step = 0; step < 4000; ++step) {
    const int action = below(10);
    CEnt* some =
        all.empty() ? nullptr : all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
    if (action < 4) {
      // Few distinct values, so that boxes share borders and handles repeat.
      all.push_back(s.add(below(9), below(9), below(9), below(9), below(20)));
    } else if (action < 6) {
      s.table.remove(some);
      drop(all, some);
      drop(selected, some);
      if (some != nullptr) taken.emplace_back(some);
    } else if (action < 8) {
      s.table.select(some);
      drop(selected, nullptr);
      if (some != nullptr && std::count(selected.begin(), selected.end(), some) == 0)
        selected.push_back(some);
    } else if (action < 9) {
      s.table.unselect(some);
      drop(selected, some);
    } else if (below(9) == 0) {
      std::shuffle(all.begin() + below(static_cast<int>(all.size()) + 1), all.end(), random);
      s.table.reorder(all);
    } else if (below(30) == 0) {
      s.table.unselectAll();
      selected.clear();
    }
    ASSERT_EQ(contents(s.table.getEntityTbl()), all) << "step " << step;
    ASSERT_EQ(contents(s.table.getSelectedEntityTbl()), selected) << "step " << step;
    ASSERT_EQ(s.table.getBdry(), plainExtents(s.table)) << "step " << step;
    const vek0::Handle handle = below(20);
    const auto found = std::find_if(all.begin(), all.end(),
                                    [handle](CEnt* ent) { return ent->GetHandle() == handle; });
    ASSERT_EQ(s.table.get(handle), found == all.end() ? nullptr : *found) << "step " << step;
  }
}

TEST(EntTable, CopyIsAViewThatOwnsNothing) {
  TableScene s;
  CEntLine* ent = s.add(0, 0, 1, 1, 7);
  s.table.select(ent);
  const std::unique_ptr<CEntLine> free(s.line(5, 5, 6, 6));
  const long users = s.layer()->getEntities();
  {
    CEntTable view(s.table);
    EXPECT_EQ(contents(view.getSelectedEntityTbl()), std::vector<CEnt*>{ent});
    EXPECT_EQ(view.get(7), ent);
    EXPECT_EQ(view.getBdry(), s.table.getBdry());
    view.add(free.get());
    view.remove(ent);
    view.unselectAll();
    EXPECT_EQ(contents(view.getEntityTbl()), std::vector<CEnt*>{ent});
    view.clearAll();
    EXPECT_TRUE(view.getEntityTbl().empty());
  }
  EXPECT_TRUE(ent->isSelected());
  EXPECT_EQ(s.table.getEntityTbl().front(), ent);
  EXPECT_EQ(s.layer()->getEntities(), users);
}

/// What a watcher can observe: the entities by rank, with the extents last seen.
class Mirror : public IEntTableWatcher {
 public:
  explicit Mirror(const CEntTable& table) : m_table(table) {
    for (CEnt* ent : table.getEntityTbl()) added(*ent);
    table.watch(*this);
  }
  ~Mirror() override { m_table.unwatch(*this); }

  void added(CEnt& ent) override { m_boxes[CEntTable::getRank(ent)] = {&ent, ent.getBdry()}; }
  void removed(CEnt& ent) override { EXPECT_EQ(m_boxes.erase(CEntTable::getRank(ent)), 1U); }
  void reshaped(CEnt& ent) override { m_told.push_back(CEntTable::getRank(ent)); }
  void cleared() override { m_boxes.clear(); }

  /// Refreshes the entities reported as changed, then compares everything.
  void expectInStep() {
    for (const std::size_t rank : m_told) {
      const auto at = m_boxes.find(rank);
      if (at != m_boxes.end()) at->second.second = at->second.first->getBdry();
    }
    m_told.clear();
    ASSERT_EQ(m_boxes.size(), m_table.getEntityTbl().size());
    auto ours = m_boxes.begin();
    for (const CEnt* ent : m_table.getEntityTbl()) {
      EXPECT_EQ(ours->second.first, ent);
      EXPECT_EQ(ours->second.second, ent->getBdry());
      ++ours;
    }
  }

 private:
  const CEntTable& m_table;
  std::map<std::size_t, std::pair<CEnt*, RECT_3D>> m_boxes;
  std::vector<std::size_t> m_told;
};

TEST(EntTableWatcher, HearsOfEveryChangeOfExtents) {
  TableScene s;
  std::mt19937 random(9);
  const auto number = [&] { return std::uniform_real_distribution<>(-9, 9)(random); };
  std::vector<std::unique_ptr<CEnt>> removed;
  for (int i = 0; i < 10; ++i) s.add(number(), number(), number(), number());
  auto first = std::make_unique<Mirror>(s.table);
  Mirror second(s.table);
  for (const int step : rounds(3000)) {
    const auto& ents = s.table.getEntityTbl();
    CEnt* ent = ents.empty() ? nullptr
                             : *std::next(ents.begin(), static_cast<long>(random() % ents.size()));
    const unsigned what = random() % 8;
    if (what == 0 || !ent) {
      s.add(number(), number(), number(), number());
    } else if (what == 1) {
      s.table.remove(ent);
      removed.emplace_back(ent);
    } else if (what == 2 && !removed.empty()) {
      s.table.add(removed.back().release());
      removed.pop_back();
    } else if (what == 3) {
      ent->moveBdry(PNT_3D(number(), 0, 0));
    } else if (what == 4) {
      ent->calcBdry();
    } else if (what == 5 && random() % 100 == 0) {
      removed.clear();
      s.table.clearAll();
    } else {
      static_cast<CEntLine*>(ent)->setLine(LINE_3D(number(), number(), 0, number(), number(), 0));
    }
    if (step == 2000) first.reset();
    if (first && random() % 3 == 0) first->expectInStep();
    second.expectInStep();
  }
  // Entities removed from a watched table are no longer watched.
  for (const auto& ent : removed) ent->moveBdry(PNT_3D(1, 1, 1));
}

TEST(EntIterator, StaysWithinTheList) {
  TableScene s;
  CEntTable::CEntIterator none(s.table, true);
  EXPECT_EQ(*++none, nullptr);
  EXPECT_EQ(*--none, nullptr);

  CEnt* a = s.add(0, 0, 1, 1);
  CEnt* b = s.add(0, 0, 2, 2);
  CEntTable::CEntIterator it(s.table, true);
  EXPECT_EQ(it.get_no_entities(), 2);
  EXPECT_EQ(*--it, a);
  EXPECT_EQ(*it++, a);
  EXPECT_EQ(*it, b);
  EXPECT_EQ(*++it, nullptr);
  EXPECT_TRUE(it.isLast());
  EXPECT_EQ(*++it, nullptr);
  EXPECT_EQ(*it--, nullptr);
  EXPECT_EQ(*it, b);
}

TEST(EntIterator, RemovesFromTheWalkedListOnly) {
  TableScene s;
  CEnt* a = s.add(0, 0, 1, 1);
  CEnt* b = s.add(0, 0, 2, 2);
  s.table.select(b);
  s.table.select(a);

  CEntTable::CEntIterator selection(s.table, false);
  selection.remove();
  EXPECT_EQ(*selection, a);
  EXPECT_FALSE(b->isSelected());
  EXPECT_EQ(s.table.getEntityTbl().size(), 2U);

  CEntTable::CEntIterator all(s.table, true);
  all.remove();
  const std::unique_ptr<CEnt> removed(a);
  EXPECT_EQ(*all, b);
  EXPECT_FALSE(a->isSelected());
  EXPECT_TRUE(s.table.getSelectedEntityTbl().empty());
  EXPECT_EQ(s.table.getBdry(), b->getBdry());
  ++all;
  all.remove();
  EXPECT_EQ(s.table.getEntityTbl().size(), 1U) << "at the end there is nothing to remove";
}

}  // namespace
