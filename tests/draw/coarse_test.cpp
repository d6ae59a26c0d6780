// Small files that expand to far more geometry than anyone can see.

#include "recorder.h"
#include "support/test.h"

namespace {

constexpr long kMost = 32767;  // cells in each direction

struct Maker {
  Scene scene;
  int blocks = 0;

  CBlock* block(const std::vector<CEnt*>& ents) {
    return scene.block(zim::WString::fromUtf8("B" + std::to_string(blocks++)), ents);
  }
  CBlock* line(double x, double y) {
    return block({createEntLine(*scene.data, LINE_3D(0, 0, 0, x, y, 0), 0)});
  }
  CEnt* array(CBlock& of, long columns, long rows, double right, double up, double turn = 0) {
    return createEntInsert(*scene.data, of, PNT_3D(0, 0, 0), 1, 1, 1, turn, columns, rows, right,
                           up, 0);
  }
  CEnt* insert(CBlock& of, double x, double y, double scale = 1, double turn = 0) {
    return scene.insert(of, x, y, scale, scale, turn);
  }
};

using Make = std::function<CEnt*(Maker&)>;

// Each level inserts the previous one twice.
Make doubled(int levels, double step, double growth) {
  return [=](Maker& m) {
    CBlock* block = m.line(900, 500);
    double at = step;
    for (int i = 0; i < levels; ++i, at *= growth)
      block = m.block({m.insert(*block, 0, 0), m.insert(*block, at, 0)});
    return m.insert(*block, 0, 0);
  };
}

// The cells of a grid, `cell` units wide, in which a picture has ink.
class Ink {
 public:
  Ink(const Recorder& picture, double cell) : m_cell(cell) {
    for (const Thing& thing : picture.things) {
      const std::size_t count = thing.points.size();
      const bool isClosed = thing.closed || thing.kind == Thing::Fill;
      mark(thing.points[0]);
      for (std::size_t i = 1; i < count + (isClosed ? 1 : 0); ++i)
        mark(thing.points[i - 1], thing.points[i % count]);
      for (double t = 0; thing.kind == Thing::Fill && t <= 1; t += 0.002)
        mark(between(thing.points[0], thing.points[1], t),
             between(thing.points[3], thing.points[2], t));
    }
  }

  /// Number of cells with ink in `other` that have none here, nor in any neighboring cell.
  std::size_t missing(const Ink& other) const {
    std::size_t count = 0;
    for (const auto& [x, y] : other.m_cells) {
      bool isNear = false;
      for (int i = 0; i < 9; ++i) isNear = isNear || m_cells.count({x + i % 3 - 1, y + i / 3 - 1});
      count += !isNear;
    }
    return count;
  }

 private:
  static PNT_2D between(const PNT_2D& a, const PNT_2D& b, double t) {
    return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
  }
  void mark(const PNT_2D& p) {
    if (p.x < 0 || p.y < 0 || p.x > 1000 || p.y > 1000) return;
    m_cells.emplace(static_cast<int>(p.x / m_cell), static_cast<int>(p.y / m_cell));
  }
  void mark(const PNT_2D& a, const PNT_2D& b) {
    const double steps = std::min(std::ceil(2 * a.dist(b) / m_cell), 1e5);
    for (double i = 0; i <= steps; ++i) mark(between(a, b, steps > 0 ? i / steps : 0));
  }

  double m_cell;
  std::set<std::pair<int, int>> m_cells;
};

}  // namespace

TEST(Coarse, TheCostFollowsTheWindow) {
  const struct {
    const char* name;
    Make make;
    std::size_t most;  // recorded items
    Thing::Kind kind;
  } cases[] = {
      {"an array", [](Maker& m) { return m.array(*m.line(.01, .01), kMost, kMost, .02, .02); }, 1,
       Thing::Fill},
      {"askew", [](Maker& m) { return m.array(*m.line(.01, .01), kMost, kMost, .02, -.03, 1); }, 1,
       Thing::Fill},
      {"a row", [](Maker& m) { return m.array(*m.line(.01, .01), kMost, 1, .02, 0); }, 1,
       Thing::Stroke},
      {"rows apart", [](Maker& m) { return m.array(*m.line(.01, .01), kMost, 101, .02, 10); }, 101,
       Thing::Stroke},
      {"cells apart", [](Maker& m) { return m.array(*m.line(.01, .01), 101, kMost, 10, .5); }, 101,
       Thing::Stroke},
      {"small and far apart", [](Maker& m) { return m.array(*m.line(.01, .01), 151, 151, 6, 6); },
       22801, Thing::Dot},
      {"arrays in arrays",
       [](Maker& m) {
         CBlock* block = m.line(.01, .005);
         for (double step = .01; step < 1000; step *= 10)
           block = m.block({m.array(*block, 10, 10, step, step)});
         return m.insert(*block, 0, 0);
       },
       1, Thing::Fill},
      {"all on one place", doubled(40, 0, 1), 1, Thing::Stroke},
      {"nearly on one place", doubled(40, 1e-9, 1), 1, Thing::Stroke},
      {"halves",
       [](Maker& m) {
         CBlock* block = m.line(1, 1);
         for (int i = 0; i < 40; ++i)
           block = m.block({m.insert(*block, 0, 0, .5), m.insert(*block, .5, .5, .5)});
         return m.insert(*block, 0, 0, 1000);
       },
       1001, Thing::Dot},
      {"overlapping", [](Maker& m) { return m.array(*m.line(300, 200), kMost, 1, .01, 0); }, 400,
       Thing::Stroke},
  };
  for (const auto& t : named(cases)) {
    Maker maker;
    maker.scene.add(t.make(maker));
    DRAW_OPTIONS options;
    options.effort = 80'000;
    const Recorder drawn = maker.scene.draw(options);
    EXPECT_FALSE(maker.scene.result.cut);
    EXPECT_GE(drawn.things.size(), std::min<std::size_t>(t.most, 100));
    EXPECT_LE(drawn.things.size(), t.most);
    EXPECT_EQ(drawn.count(t.kind), drawn.things.size());
    EXPECT_GT(maker.scene.result.simplified, 0U);
    EXPECT_LT(maker.scene.result.looked, 200'000U);
  }
}

// Content of inserts is cut when even its coarse form costs too much; entities outside are not.
TEST(Coarse, TheEffortIsBounded) {
  for (const bool isSpread : {false, true}) {
    Maker maker;
    for (int i = 0; i < 1000; ++i) maker.scene.line(0, i, 1000, i);
    if (isSpread) maker.scene.add(doubled(40, .37, 1.3)(maker));
    DRAW_OPTIONS options;
    options.effort = 100;
    EXPECT_GE(maker.scene.draw(options).count(Thing::Stroke), 1000U);
    EXPECT_EQ(maker.scene.result.cut, isSpread);
    EXPECT_LT(maker.scene.result.emitted, 200'000U);
  }
}

// Whatever is omitted or simplified, the ink stays where it was.
TEST(Coarse, ShowsTheSameInk) {
  std::mt19937 random(7);
  const auto number = [&](double from, double to) {
    return std::uniform_real_distribution<>(from, to)(random);
  };
  int coarse = 0;
  for ([[maybe_unused]] const int trial : rounds(20)) {
    Maker maker;
    CBlock* block = maker.line(number(.01, 3), number(.01, 3));
    for (int level = 0; level < 3; ++level) {
      const long columns = std::lround(number(1, 6)), rows = std::lround(number(1, 6));
      const double step = std::pow(10, number(-1.5, .6) + level * .5), turn = number(0, 7);
      block = maker.block({maker.array(*block, columns, rows, step, number(-1, 1) * step, turn),
                           maker.insert(*block, number(0, 9), 0, number(.1, 1), turn)});
    }
    maker.scene.add(maker.insert(*block, 500, 500, number(.5, 3)));
    DRAW_OPTIONS options;
    options.effort = 1e12;
    const Recorder whole = maker.scene.draw(options);
    EXPECT_EQ(maker.scene.result.simplified, 0U);
    options.effort = 4 * static_cast<double>(whole.things.size());
    const Recorder drawn = maker.scene.draw(options);
    if (maker.scene.result.cut || maker.scene.result.simplified == 0) continue;
    ++coarse;
    EXPECT_EQ(Ink(drawn, 2).missing(Ink(whole, 2)), 0U);
    EXPECT_EQ(Ink(whole, 2).missing(Ink(drawn, 2)), 0U);
  }
  EXPECT_GT(coarse, 5);
}

// A dot represents the first visible entity of the content.
TEST(Coarse, DotsLookLikeWhatTheyStandFor) {
  const struct {
    const char* name;
    std::function<std::vector<CEnt*>(Maker&, CLayer*, CLayer*)> content;
    const char* layer;
    RGB_COLOR color;
    double radius;
  } cases[] = {
      {"the first one is hidden",
       [](Maker& m, CLayer* red, CLayer* frozen) -> std::vector<CEnt*> {
         CBlock* inner = m.block({m.scene.unit(red, nullptr, 256)});
         return {m.scene.unit(frozen, nullptr, 4), m.insert(*inner, 0, 0)};
       },
       "RED",
       {255, 0, 0},
       0},
      {"as the insert",
       [](Maker& m, CLayer*, CLayer*) -> std::vector<CEnt*> {
         return {m.scene.unit(nullptr, nullptr, 0)};
       },
       "0",
       {0, 255, 0},
       0},
      {"points",
       [](Maker& m, CLayer*, CLayer*) -> std::vector<CEnt*> {
         return {createEntPnt(*m.scene.data, PNT_3D(0, 0, 0), 0)};
       },
       "0",
       {0, 0, 0},
       1.5},
      {"nothing to see",
       [](Maker& m, CLayer*, CLayer* frozen) -> std::vector<CEnt*> {
         return {m.scene.unit(frozen, nullptr, 4)};
       },
       nullptr,
       {},
       0},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    Maker m;
    CLayer *red = m.scene.layer(u"RED", 1), *frozen = m.scene.layer(u"FROZEN", 4, 1);
    CEnt* inner = m.insert(*m.block(t.content(m, red, frozen)), 0, 0, .01);
    inner->setColor(0);
    CEnt* array = m.array(*m.block({inner}), 100, 100, 9, 9);
    array->setColor(3);
    m.scene.add(array);
    DRAW_OPTIONS options;
    options.effort = 36'000;
    const Recorder drawn = m.scene.draw(options);
    EXPECT_EQ(drawn.things.empty(), t.layer == nullptr);
    EXPECT_EQ(drawn.count(Thing::Dot), drawn.things.size());
    for (const Thing& dot : drawn.things) {
      EXPECT_EQ(dot.layer, t.layer);
      EXPECT_EQ(dot.color, t.color);
      EXPECT_EQ(dot.radius, t.radius);
    }
  }
}

// Identical content in the same place is drawn once, unless its properties differ or something else
// was drawn over it in between.
TEST(Coarse, WhatWasCoveredIsDrawnAgain) {
  Maker m;
  CBlock* block = m.block({m.scene.unit(nullptr, nullptr, 0)});
  for (int i = 0; i < 40; ++i) {
    const std::vector<CEnt*> both{m.insert(*block, 0, 0), m.insert(*block, 0, 0)};
    for (CEnt* ent : both) ent->setColor(0);
    block = m.block(both);
  }
  const auto insert = [&](short color) {
    m.scene.add(m.insert(*block, 100, 100, 500))->setColor(color);
  };
  insert(1);
  insert(2);
  insert(2);
  m.scene.add(createEntHatch(*m.scene.data, m.scene.data->getHatchTypeTable().solid(), 1, 0,
                             {{0, 0, 0}, {900, 0, 0}, {0, 900, 0}}, 0));
  insert(2);
  DRAW_OPTIONS options;
  options.effort = 10'000;
  std::string kinds;
  for (const Thing& thing : m.scene.draw(options).things)
    kinds += thing.kind == Thing::Fill ? "fill " : thing.color.g > 0 ? "yellow " : "red ";
  EXPECT_EQ(kinds, "red yellow fill yellow ");
}

// The permitted effort grows with the file: only content drawn a hundred times is too much.
TEST(Coarse, LargeBlocksAreDrawnAsTheyAre) {
  Maker m;
  std::vector<CEnt*> ents;
  for (int i = 0; i < 500; ++i)
    ents.push_back(createEntLine(*m.scene.data, LINE_3D(0, i, 0, 900, i, 0), 0));
  CBlock* block = m.block(ents);
  DRAW_OPTIONS options;
  options.effort = 100;
  for (const bool isOften : {false, true}) {
    for (int i = 0; i < (isOften ? 200 : 4); ++i) m.scene.add(m.insert(*block, i, i));
    const Recorder drawn = m.scene.draw(options);
    EXPECT_EQ(m.scene.result.cut, isOften);
    EXPECT_EQ(m.scene.result.simplified, 0U);
  }
}

namespace {

std::vector<PNT_3D> squareOf(double side) {
  return {{0, 0, 0}, {side, 0, 0}, {side, side, 0}, {0, side, 0}};
}

// A square hatch of horizontal lines, `apart` units from each other.
CEntHatch* lines(Maker& m, double apart, double side) {
  const HATCH_TYPE& type = *getHatch(u"LINE");
  return createEntHatch(*m.scene.data, type, apart / std::fabs(type.lines[0].dy), 0, squareOf(side),
                        0);
}

// The same hatch without its lines, as when a file requests too many.
CEntHatch* lineless(Maker& m, double apart, double side) {
  CEntHatch* hatch = lines(m, apart, side);
  hatch->getBlock()->disposeEntities();
  hatch->getBlock()->calcBdry();
  hatch->calcBdry();
  return hatch;
}

void dashes(Maker& m, int count) {
  CLtype* dashed = m.scene.ltype(u"D", {30, -10});
  for (int i = 0; i < count; ++i) m.scene.line(0, i, 1000, i)->setLtype(dashed);
}

}  // namespace

// Hatches and dashes are simplified only if they are both too many and too fine.
TEST(Coarse, WhatIsTooFineBecomesPlain) {
  const struct {
    const char* name;
    std::function<void(Maker&)> make;
    Thing::Kind kind;
    std::size_t count, simplified, missing;
  } cases[] = {
      {"few lines", [](Maker& m) { m.scene.add(lines(m, .9, 90)); }, Thing::Stroke, 100, 0, 0},
      {"many", [](Maker& m) { m.scene.add(m.insert(*m.block({lines(m, 1.5, 900)}), 0, 0)); },
       Thing::Stroke, 600, 0, 0},
      {"many fine ones",
       [](Maker& m) { m.scene.add(m.insert(*m.block({lines(m, .9, 900)}), 0, 0)); }, Thing::Fill, 1,
       1, 0},
      {"lost fine ones", [](Maker& m) { m.scene.add(lineless(m, .9, 1000)); }, Thing::Fill, 1, 1,
       0},
      {"lost ones", [](Maker& m) { m.scene.add(lineless(m, 1.5, 3000)); }, Thing::Stroke, 1, 0, 1},
      {"lost ones in a block",
       [](Maker& m) {
         m.scene.add(
             m.insert(*m.block({m.insert(*m.block({lineless(m, 1.5, 3000)}), 9, 9)}), 9, 9));
       },
       Thing::Stroke, 1, 0, 1},
      {"few dashes", [](Maker& m) { dashes(m, 1); }, Thing::Stroke, 25, 0, 0},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    Maker m;
    t.make(m);
    DRAW_OPTIONS options;
    options.effort = 900;
    const Recorder drawn = m.scene.draw(options);
    EXPECT_EQ(drawn.things.size(), t.count);
    EXPECT_EQ(drawn.count(t.kind), t.count);
    EXPECT_EQ(m.scene.result.simplified, t.simplified);
    EXPECT_EQ(m.scene.result.missing, t.missing);
  }
}

// A wide circular band of radius 100 about (500, 500) that goes around 350 times.
TEST(Coarse, ArcsKeepWithinADetail) {
  for (const bool isDashed : {false, true}) {
    SCOPED_TRACE(isDashed);
    Maker m;
    CEntPolyline* ring = createEntPolyline(*m.scene.data, CEntPolyline::kClosed, 0, 0);
    if (isDashed) ring->setLtype(m.scene.ltype(u"D", {300, -10}));
    std::vector<BULGED_VERTEX> ends;
    for (int i = 0; i < 700; ++i) ends.push_back({i % 2 * 200 + 400.0, 500, 0, 10, 10, 1, 0});
    ring->setBulgedVertexes(ends.data(), ends.size());
    m.scene.add(ring);
    DRAW_OPTIONS options;
    options.effort = isDashed ? 120'000 : 60'000;
    const Recorder drawn = m.scene.draw(options);
    EXPECT_FALSE(m.scene.result.cut);
    EXPECT_EQ(m.scene.result.simplified, 1U);
    EXPECT_EQ(drawn.things.size(), isDashed ? 1400U : 1U);
    std::size_t points = 0;
    for (const Thing& thing : drawn.things) {
      points += thing.points.size();
      for (const PNT_2D& p : thing.points) EXPECT_NEAR(std::fabs(p.dist(500, 500) - 100), 5, 1);
    }
    EXPECT_GT(points, 10'000U);
    EXPECT_LT(points, 120'000U);
  }
}

// Vertices that the file holds itself are no unfolding, even with an arc among them.
TEST(Coarse, LongPolylinesAreDrawnAsTheyAre) {
  Maker m;
  std::vector<BULGED_VERTEX> zigzag;
  for (int i = 0; i < 70'000; ++i)
    zigzag.push_back({i % 500 * 2.0, i % 2 * 900.0, 0, 1, 1, i == 0 ? 0.5 : 0, 0});
  CEntPolyline* polyline = createEntPolyline(*m.scene.data, 0, 0, 0);
  polyline->setBulgedVertexes(zigzag.data(), zigzag.size());
  m.scene.add(polyline);
  DRAW_OPTIONS options;
  options.effort = 1000;
  m.scene.draw(options);
  EXPECT_FALSE(m.scene.result.cut);
  EXPECT_EQ(m.scene.result.simplified, 0U);
}
