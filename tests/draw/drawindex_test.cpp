#include "vek0draw/drawindex.h"
#include "recorder.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

// A drawing with all kinds of entities across ten thousand units, and random edits of it.
class Draughtsman {
 public:
  explicit Draughtsman(unsigned seed) : m_random(seed) {
    CLtypeComplexDashSeq dashes;
    dashes.AddDashDouble(40);
    dashes.AddDashText(TEXT_3D(u"GAS", style(), 0, 15, 0, 10, 0, 1, 0, 0));
    dashes.AddDashDouble(-20);
    addLtype(data(), data().getLtypeFactory().create(u"GAS", u"", dashes, 0));
    scene.layer(u"OFF", 1, CLayer::kOff);
    scene.layer(u"FROZEN", 1, CLayer::kFrozen);
    m_block =
        scene.block(u"B", {createEntCircle(data(), CIRCLE_3D(10, 0, 0, 20), 0),
                           createEntText(data(), text(0, 0), 0), scene.unit(nullptr, nullptr, 0)});
  }

  CData& data() { return *scene.data; }

  void addSome(int count) {
    for (int i = 0; i < count; ++i) {
      CEnt* ent = make();
      const int layer = below(12);
      if (layer < 2) ent->setLayer(getLayer(data(), layer == 0 ? u"OFF" : u"FROZEN"));
      if (below(4) == 0) ent->setLtype(getLtype(data(), u"GAS"));
      scene.add(ent);
      m_ents.push_back(ent);
    }
  }

  void editSome(int count) {
    for (int i = 0; i < count && !m_ents.empty(); ++i) edit();
  }

  void removeSome(int count) {
    for (int i = 0; i < count && !m_ents.empty(); ++i) {
      const std::unique_ptr<CEnt> ent(takeAny());
      data().getEntTable().remove(ent.get());
    }
  }

  void clear() {
    data().getEntTable().clearAll();
    m_ents.clear();
  }

  /// A block large enough to get a tree, which also inserts the other block.
  void addLargeBlock() {
    std::vector<CEnt*> ents;
    for (int i = 0; i < 1000; ++i) ents.push_back(make());
    m_large = scene.block(u"LARGE", ents);
    for (int i = 0; i < 3; ++i) {
      m_ents.push_back(scene.add(scene.insert(*m_large, number(0, 5000), number(0, 5000),
                                              number(0.1, 1), number(-1, 1), number(0, 6))));
    }
  }

  void editLargeBlock() {
    const auto last = static_cast<unsigned>(m_large->size() - 1);
    const std::unique_ptr<CEnt> gone((*m_large)[static_cast<unsigned>(below(900))]);
    m_large->remove(gone.get());
    m_large->add(make());
    CEntMoveVisitor mover(PNT_3D(number(-5000, 5000), 0, 0));
    (*m_large)[last]->accept(mover);
    m_large->invalidateBdry();
    data().getBlockTable().updateBlock(m_large);
    data().getEntTable().recalcBdry();
  }

  void redefineBlock() {
    CEntLine* line = createEntLine(data(), LINE_3D(0, 0, 0, number(-300, 300), 200, 0), 0);
    line->setReach(static_cast<LineReach>(below(3)));
    m_block->add(line);
    data().getBlockTable().updateBlock(m_block);
    data().getEntTable().recalcBdry();
  }

  // Moves the window to a random place, `size` units wide.
  void look(double size) {
    const double x = number(-1000, 11000), y = number(-1000, 11000);
    scene.window.set(x, y, x + size, y + size);
  }

  double number(double low, double high) {
    return std::uniform_real_distribution<>(low, high)(m_random);
  }
  int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

  Scene scene;

 private:
  CStyle* style() { return getStyleStandard(data()); }
  PNT_3D place() {
    const double x = number(0, 10000), y = number(0, 10000);
    return {x, y, number(0, 100)};
  }
  TEXT_3D text(double x, double y) {
    return TEXT_3D(u"%%ulabel", style(), x, y, 0, 15, 0.2, 1, number(0, 6), below(12));
  }

  CEnt* make() {
    const PNT_3D p = place();
    const PNT_3D q(p.x + number(-200, 200), p.y + number(-200, 200), p.z);
    switch (below(9)) {
      case 0:
        return createEntPnt(data(), p, 0);
      case 1:
        return createEntCircle(data(), CIRCLE_3D(p.x, p.y, p.z, number(0, 100)), 0);
      case 2:
        return createEntArc(data(), ARC_3D(p.x, p.y, p.z, 100, number(0, 6), number(0, 6)), 0);
      case 3:
        return createEntText(data(), text(p.x, p.y), 0);
      case 4:
        return createEntInsert(data(), *m_block, p, number(-2, 2), 1, 1, number(0, 6), 1 + below(4),
                               1 + below(3), 100, -150, 0);
      case 5:
        return createEntFixedInsert(data(), *m_block, p, 40, 60, 0.5, 0);
      case 6:
        return data().getEntFactory().createEntSolid(
            data().getHandleGestor(), getCurLayer(data()), getCurLtype(data()), 256, p, q, place(),
            p, below(16), below(2) ? FaceFill::Solid : FaceFill::None, 0);
      case 7: {
        CEntPolyline* polyline = createEntPolyline(data(), below(2) + 128 * below(2), 0, 0);
        for (int i = 0; i < 4; ++i) {
          polyline->addBulgedVertex(PNT_3D(p.x + number(0, 100), p.y + number(0, 100), 0),
                                    below(2) * 10.0, 5 * below(2), number(-1, 1), 0);
        }
        return polyline;
      }
      default:
        return createEntLine(data(), LINE_3D(p, q), 0);
    }
  }

  CEnt* takeAny() {
    const std::size_t i = m_random() % m_ents.size();
    std::swap(m_ents[i], m_ents.back());
    CEnt* ent = m_ents.back();
    m_ents.pop_back();
    return ent;
  }

  void edit() {
    CEnt* ent = m_ents[m_random() % m_ents.size()];
    CEntMoveVisitor mover(PNT_3D(number(-5000, 5000), number(-5000, 5000), 0));
    switch (below(4)) {
      case 0:
        return ent->accept(mover);
      case 1:  // drawn last, hence on top
        data().getEntTable().remove(ent);
        data().getEntTable().add(ent);
        return;
      case 2:
        if (ent->getType() == CEntLine::kType) static_cast<CEntLine*>(ent)->setLine(LINE_3D());
        return;
      default:
        ent->moveBdry(PNT_3D(0, 0, 0));
    }
  }

  std::mt19937 m_random;
  CBlock* m_block;
  CBlock* m_large = nullptr;
  std::vector<CEnt*> m_ents;
};

void expectSame(const Recorder& a, const Recorder& b) {
  ASSERT_EQ(a.things.size(), b.things.size());
  for (std::size_t i = 0; i < a.things.size(); ++i)
    ASSERT_TRUE(a.things[i].isSame(b.things[i])) << i;
}

std::unique_ptr<IProjector> anyView(Draughtsman& author) {
  switch (author.below(4)) {
    case 0:
      return std::make_unique<CPVProjector>();
    case 1:
      return std::make_unique<CPORotatedProjector>(author.number(0, 6), 0, 0);
    case 2:
      return std::make_unique<CParalProjector>(0.8, -0.3, 0.5, 0.6);
    default:
      return std::make_unique<CPOProjector>();
  }
}

// Whether the bounding box of a stroke, an arc or a fill meets the window.
bool isNear(const Thing& thing, const RECT_2D& window) {
  std::vector<PNT_2D> points = thing.points;
  if (thing.kind == Thing::Arc) {
    constexpr int steps = 64;
    for (int i = 0; i <= steps; ++i) {
      const double angle = thing.start + thing.sweep * i / steps;
      points.emplace_back(thing.points[0].x + thing.radius * std::cos(angle),
                          thing.points[0].y + thing.radius * std::sin(angle));
    }
    points.erase(points.begin());
  }
  RECT_2D box;
  box.set(points.data(), static_cast<int>(points.size()));
  return thing.kind != Thing::Text && box.intersect(window);
}

}  // namespace

// Compares the index with a full walk, over random windows and edits.
TEST(DrawIndex, EmitsWhatAFullWalkEmits) {
  for (unsigned seed = 0; seed < 2; ++seed) {
    Draughtsman author(seed);
    author.addSome(seed == 0 ? 0 : 3000);
    author.addLargeBlock();
    CDrawIndex index(author.data());
    for ([[maybe_unused]] const int round : rounds(30)) {
      author.look(author.number(10, 8000));
      const std::unique_ptr<IProjector> view = anyView(author);
      Recorder indexed, walked;
      index.draw(*view, author.scene.window, indexed);
      drawData(author.data(), *view, author.scene.window, walked);
      expectSame(indexed, walked);
      if (HasFatalFailure()) return;
      switch (author.below(8)) {
        case 0:
          author.addSome(1 + author.below(900));
          break;
        case 1:
          author.removeSome(author.below(900));
          break;
        case 2:
          author.editSome(900);
          break;
        case 3:
          author.redefineBlock();
          break;
        case 4:
          author.editLargeBlock();
          break;
        case 5:
          if (author.below(5) == 0) author.clear();
          break;
        default:
          author.editSome(3);
      }
    }
  }
}

TEST(DrawIndex, AFrameLooksAtLittleMoreThanItShows) {
  Draughtsman author(1);
  for (int i = 0; i < 300; ++i)
    for (int k = 0; k < 300; ++k) author.scene.line(i * 30, k * 30, i * 30 + 20, k * 30 + 20);
  CDrawIndex index(author.data());
  for (int frame = 0; frame < 50; ++frame) {
    author.look(300);
    Recorder recorder;
    const DRAW_RESULT result = index.draw(CPOProjector(), author.scene.window, recorder);
    EXPECT_LE(result.looked, 4 * result.emitted + 500) << frame;
  }
}

// A box too large to be indexed must not hide its neighbors.
TEST(DrawIndex, HugeEntitiesHideNothing) {
  Scene scene;
  for (int i = 0; i < 100; ++i) scene.line(i * 100, 0, i * 100 + 50, 50);
  scene.line(0, 0, 1e300, 1e300);
  scene.line(-1.5e308, 0, 1.5e308, 0);
  CDrawIndex index(*scene.data);
  const double sizes[] = {1e12, 1000, 10, 1e-7};
  for (const double size : named(sizes)) {
    scene.window.set(20, 20, 20 + size, 20 + size);
    Recorder indexed;
    index.draw(CPOProjector(), scene.window, indexed);
    EXPECT_GE(indexed.things.size(), 1U);
    expectSame(indexed, scene.draw());
  }
}

// Nothing reads the extents of the outer block between the two edits.
TEST(DrawIndex, EditsOfBlocksWithinBlocksAreHeardOf) {
  Scene scene;
  CBlock* inner = scene.block(u"INNER", {scene.unit(nullptr, nullptr, 1)});
  std::vector<CEnt*> ents = {scene.insert(*inner, 0, 0)};
  for (int i = 0; i < 300; ++i) ents.push_back(scene.unit(nullptr, nullptr, 1));
  CBlock* outer = scene.block(u"OUTER", ents);
  scene.add(scene.insert(*outer, 5000, 5000));
  scene.window.set(4900, 4900, 5000.5, 5000.5);
  CDrawIndex index(*scene.data);
  Recorder recorder;
  index.draw(CPOProjector(), scene.window, recorder);
  outer->add(scene.unit(nullptr, nullptr, 1));
  outer->invalidateBdry();
  index.draw(CPOProjector(), scene.window, recorder);
  inner->add(createEntLine(*scene.data, LINE_3D(-4900, 0, 0, -4910, 0, 0), 0));
  scene.data->getEntTable().recalcBdry();
  scene.window.set(50, 4950, 150, 5050);
  recorder.things.clear();
  index.draw(CPOProjector(), scene.window, recorder);
  EXPECT_EQ(recorder.things.size(), 1U);
}

// A drawing in a single block is as fast as the same entities in model space.
TEST(DrawIndex, LargeBlocksAreLookedAtWhereTheWindowIs) {
  Scene scene;
  std::vector<CEnt*> ents;
  for (int i = 0; i < 200; ++i)
    for (int k = 0; k < 200; ++k)
      ents.push_back(createEntLine(*scene.data, LINE_3D(i, k, 0, i + 0.5, k, 0), 0));
  CBlock* block = scene.block(u"MAP", ents);
  scene.add(scene.insert(*block, 0, 0, 50, 50, 0.3));
  CDrawIndex index(*scene.data);
  Recorder recorder, walked;
  const DRAW_RESULT result = index.draw(CPOProjector(), scene.window, recorder);
  EXPECT_GT(result.emitted, 300U);
  EXPECT_LE(result.looked, 4 * result.emitted);
  drawData(*scene.data, CPOProjector(), scene.window, walked);
  expectSame(recorder, walked);
}

TEST(DrawIndex, EditsDoNotMakeItLookAtEverything) {
  Draughtsman author(2);
  author.addSome(20000);
  CDrawIndex index(author.data());
  for (int frame = 0; frame < 50; ++frame) {
    author.editSome(200);
    author.look(200);
    Recorder recorder;
    const DRAW_RESULT result = index.draw(CPOProjector(), author.scene.window, recorder);
    EXPECT_LE(result.looked, 6000U);  // one insert in nine is fixed
  }
}

TEST(DrawIndex, TwoIndexesOfADrawingAndNoneAfterwards) {
  Draughtsman author(4);
  author.addSome(100);
  author.look(6000);
  Recorder first, second, walked;
  {
    CDrawIndex a(author.data());
    a.draw(CPOProjector(), author.scene.window, first);
    {
      CDrawIndex b(author.data());
      b.draw(CPOProjector(), author.scene.window, second);
    }
    author.editSome(50);
    first.things.clear();
    a.draw(CPOProjector(), author.scene.window, first);
  }
  drawData(author.data(), CPOProjector(), author.scene.window, walked);
  expectSame(first, walked);
  author.editSome(50);  // no index is registered any more
  author.removeSome(50);
}

// Whatever meets the window when everything is drawn must also be drawn for the window alone. The
// pen's width is not considered, because painters clip.
TEST(Culling, NothingThatMeetsTheWindowIsMissing) {
  for (unsigned seed = 10; seed < 14; ++seed) {
    Draughtsman author(seed);
    author.addSome(600);
    for ([[maybe_unused]] const int round : rounds(10)) {
      author.look(1000);
      const Recorder seen = author.scene.draw();
      // The same view in a corner of a device that shows the whole drawing.
      const RECT_2D window = author.scene.window.getWindow();
      CWndVpt all(1);
      all.resize(40001, 40001);
      all.set(window.min.x - 20000, window.max.y - 20000, window.min.x + 20000,
              window.max.y + 20000);
      Recorder whole;
      drawData(author.data(), CPOProjector(), all, whole);
      std::size_t needed = 0, found = 0;
      const RECT_2D device(20000, 20000, 21000, 21000), own(0, 0, 1000, 1000);
      for (const Thing& thing : whole.things) needed += isNear(thing, device);
      for (const Thing& thing : seen.things) found += isNear(thing, own);
      EXPECT_EQ(found, needed);
    }
  }
}

TEST(Culling, ExtentsAreThoseOfWhatIsShown) {
  Scene scene;
  EXPECT_FALSE(drawnExtents(*scene.data, CPOProjector()).validRegion());
  scene.line(10, 20, 30, 40);
  scene.line(-500, 0, 0, 0)->setLayer(scene.layer(u"OFF", 7, CLayer::kOff));
  RECT_2D box = drawnExtents(*scene.data, CPOProjector());
  EXPECT_EQ(box.min.x, 10);
  EXPECT_EQ(box.max.y, 40);
  DRAW_OPTIONS all;
  all.hiddenLayers = true;
  EXPECT_EQ(drawnExtents(*scene.data, CPOProjector(), all).min.x, -500);
  box = drawnExtents(*scene.data, CPORotatedProjector(kPi / 2, 0, 0));
  EXPECT_NEAR(box.min.y, -30, 1e-9);
}
