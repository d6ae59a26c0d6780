// Linetypes along lines, polylines, arcs and circles.

#include "recorder.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

double length(const Thing& stroke) {
  double sum = 0;
  for (std::size_t i = 1; i < stroke.points.size(); ++i)
    sum += stroke.points[i].dist(stroke.points[i - 1]);
  return sum;
}

double lengthOfAll(const Recorder& drawn) {
  double sum = 0;
  for (const Thing& thing : drawn.things)
    if (thing.kind == Thing::Stroke) sum += length(thing);
  return sum;
}

// Length of [0, `way`) that dashes cover.
double covered(const std::vector<double>& dashes, double way) {
  double sum = 0, at = 0;
  for (std::size_t i = 0; at < way; i = (i + 1) % dashes.size()) {
    const double next = std::min(at + std::fabs(dashes[i]), way);
    if (dashes[i] > 0) sum += next - at;
    at += std::fabs(dashes[i]);
  }
  return sum;
}

const std::vector<double> kDashDot = {12, -3, 0, -3};

CEntPolyline* polyline(Scene& scene, long flags, const std::vector<BULGED_VERTEX>& vertexes,
                       CLtype* ltype) {
  CEntPolyline* made = createEntPolyline(*scene.data, flags, 0, 0);
  made->setBulgedVertexes(vertexes.data(), vertexes.size());
  made->setLtype(ltype);
  return scene.add(made);
}

}  // namespace

TEST(Patterns, DashesOfALineStandWhereThePatternSays) {
  Scene scene;
  CLtype* ltype = scene.ltype(u"DD", kDashDot);
  scene.line(100, 200, 140, 200)->setLtype(ltype);
  const Recorder drawn = scene.draw();
  // 0-12, dot at 15, 18-30, dot at 33, 36-40
  const struct {
    Thing::Kind kind;
    double from, to;
  } expected[] = {
      {Thing::Stroke, 0, 12}, {Thing::Dot, 15, 15},    {Thing::Stroke, 18, 30},
      {Thing::Dot, 33, 33},   {Thing::Stroke, 36, 40},
  };
  ASSERT_EQ(drawn.things.size(), std::size(expected));
  for (const std::size_t i : rounds<std::size_t>(std::size(expected))) {
    EXPECT_EQ(drawn.things[i].kind, expected[i].kind);
    EXPECT_LT(drawn.things[i].points.front().dist(seen(100 + expected[i].from, 200)), 1e-9);
    EXPECT_LT(drawn.things[i].points.back().dist(seen(100 + expected[i].to, 200)), 1e-9);
  }
}

TEST(Patterns, DashesOfCurvesAddUp) {
  for (const Row& t : rows()) {
    Scene scene;
    CLtype* ltype = scene.ltype(u"DD", kDashDot);
    double start, end;
    const ARC_3D arc(500, 500, 0, 300, t.real("start"), t.real("end"));
    arc.getSafeAngles(start, end);
    scene.add(createEntArc(*scene.data, arc, 0))->setLtype(ltype);
    DRAW_OPTIONS options;
    options.chordError = 1e-4;
    EXPECT_NEAR(lengthOfAll(scene.draw(options)), covered(kDashDot, 300 * (end - start)), 0.01);
  }
}

// The pattern either continues along the whole polyline or restarts at each vertex; arcs have no
// vertices of their own.
TEST(Patterns, PolylinesGoOnOrBeginAnew) {
  const double quarter = std::tan(kPi / 8);
  const std::vector<BULGED_VERTEX> way = {{100, 100, 0, 0, 0, 0, 0},
                                          {150, 100, 0, 0, 0, quarter, 0},
                                          {190, 140, 0, 0, 0, 0, 0},
                                          {190, 170, 0, 0, 0, 0, 0}};
  const double sides[] = {50, 40 * kPi / 2, 30, std::hypot(90, 70)};
  for (const bool generates : {false, true}) {
    for (const bool closed : {false, true}) {
      SCOPED_TRACE(testing::Message() << generates << closed);
      Scene scene;
      CLtype* ltype = scene.ltype(u"DD", kDashDot);
      polyline(scene, (closed ? 1 : 0) + (generates ? 128 : 0), way, ltype);
      double each = 0, whole = 0;
      for (std::size_t i = 0; i < (closed ? 4U : 3U); ++i) {
        each += covered(kDashDot, sides[i]);
        whole += sides[i];
      }
      const double expected = generates ? covered(kDashDot, whole) : each;
      EXPECT_NEAR(lengthOfAll(scene.draw()), expected, 0.05);
    }
  }
}

// Dashes and gaps continue across corners without a break.
TEST(Patterns, ThePhaseGoesOnOverCorners) {
  std::mt19937 random(3);
  std::uniform_real_distribution<> coordinate(0, 1000);
  for ([[maybe_unused]] const int trial : rounds(50)) {
    Scene scene;
    CLtype* ltype = scene.ltype(u"D", {10, -5});
    std::vector<BULGED_VERTEX> way;
    double whole = 0;
    for (std::size_t i = 0; i < 20; ++i) {
      way.push_back({coordinate(random), coordinate(random), 0, 0, 0, 0, 0});
      if (i > 0) whole += std::hypot(way[i].x - way[i - 1].x, way[i].y - way[i - 1].y);
    }
    polyline(scene, 128, way, ltype);
    const Recorder drawn = scene.draw();
    ASSERT_EQ(drawn.things.size(), static_cast<std::size_t>(std::floor(whole / 15)) + 1);
    for (std::size_t i = 0; i + 1 < drawn.things.size(); ++i)
      EXPECT_NEAR(length(drawn.things[i]), 10, 1e-6);
  }
}

TEST(Patterns, TheyAreMeasuredInTheDrawingWhateverTheInsert) {
  Scene scene;
  scene.data->getVars().setLtypeScale(2);
  CLtype* ltype = scene.ltype(u"D", {5, -5});
  CEntLine* line = scene.unit(nullptr, ltype, 1);
  CBlock* block = scene.block(u"B", {line});
  scene.add(scene.insert(*block, 100, 100, 95, 1, 0.5));
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.things.size(), 5U);
  EXPECT_NEAR(length(drawn.things[0]), 10, 1e-9);
  EXPECT_NEAR(length(drawn.things[4]), 10, 1e-9);
}

TEST(Patterns, TooFineOnesAreDrawnThrough) {
  Scene scene;
  scene.line(0, 500, 1000, 500)->setLtype(scene.ltype(u"FINE", {0.25, -0.25}));
  EXPECT_EQ(scene.draw().things.size(), 1U);
}

// Only the visible part of a line gets dashes, at the same places as in the whole line.
TEST(Patterns, DashesOutsideTheWindowCostNothing) {
  Scene scene;
  CLtype* ltype = scene.ltype(u"D", {10, -5});
  scene.line(-15e6, 500, 15e6, 500)->setLtype(ltype);
  const Recorder drawn = scene.draw();
  EXPECT_NEAR(static_cast<double>(drawn.things.size()), 1000 / 15.0, 2);
  bool found = false;
  for (const Thing& thing : drawn.things) {
    found = found || (thing.points[0].dist(seen(0, 500)) < 1e-6 &&
                      thing.points[1].dist(seen(10, 500)) < 1e-6);
  }
  EXPECT_TRUE(found);
}

// The visible dashes are the same, whether the line was clipped to this window or drawn whole.
TEST(Patterns, CuttingTheWayMovesNoDash) {
  std::mt19937 random(11);
  std::uniform_real_distribution<> coordinate(-3000, 4000);
  for ([[maybe_unused]] const int trial : rounds(100)) {
    Scene scene;
    CLtype* ltype = scene.ltype(u"D", {70, -50, 0, -20});
    std::vector<BULGED_VERTEX> way;
    for (int i = 0; i < 12; ++i)
      way.push_back({coordinate(random), coordinate(random), 0, 0, 0, 0, 0});
    polyline(scene, 128, way, ltype);
    const Recorder cut = scene.draw();
    // The same scale on a device that shows everything: 3000 pixels more on each side.
    scene.window = CWndVpt(1);
    scene.window.resize(7001, 7001);
    scene.window.set(-3000, -3000, 4000, 4000);
    const Recorder whole = scene.draw();
    double inside = 0, insideOfCut = 0;
    const auto isIn = [](const PNT_2D& p) {
      return p.x > 0 && p.x < 1000 && p.y > 0 && p.y < 1000;
    };
    for (const Thing& thing : whole.things) {
      std::vector<PNT_2D> points;
      for (const PNT_2D& p : thing.points) points.emplace_back(p.x - 3000, p.y - 3000);
      if (isIn(points.front()) && isIn(points.back())) inside += 1 + points.front().x;
    }
    for (const Thing& thing : cut.things)
      if (isIn(thing.points.front()) && isIn(thing.points.back()))
        insideOfCut += 1 + thing.points.front().x;
    EXPECT_NEAR(inside, insideOfCut, 1e-4);
  }
}

TEST(Patterns, WideDashesAreFilled) {
  for (const Row& t : rows()) {
    Scene scene;
    CLtype* ltype = scene.ltype(u"D", {10, -10});
    polyline(scene, t.whole<long>("flags"),
             {{100, 100, 0, 8, 0, t.real("bulge"), 0}, {140, 100, 0, 0, 0, 0, 0}}, ltype);
    const Recorder drawn = scene.draw();
    ASSERT_GE(drawn.things.size(), 2U);
    const double widths[] = {8, 4};
    for (std::size_t i = 0; i < 2; ++i) {
      ASSERT_EQ(drawn.things[i].kind, Thing::Fill);
      RECT_2D box;
      box.set(drawn.things[i].points.data(), static_cast<int>(drawn.things[i].points.size()));
      EXPECT_NEAR(box.max.y - box.min.y, widths[i], t.real("within"));
      EXPECT_NEAR(box.max.x, 110 + 20.0 * static_cast<double>(i), t.real("within"));
    }
  }
}

// The center line is outside the window, but half of the width reaches into it.
TEST(Patterns, WideDashesThatReachIntoTheWindowAreSeen) {
  Scene scene;
  CLtype* ltype = scene.ltype(u"D", {100, -100});
  polyline(scene, 0, {{0, -5, 0, 30, 30, 0, 0}, {1000, -5, 0, 30, 30, 0, 0}}, ltype);
  EXPECT_EQ(scene.draw().count(Thing::Fill), 5U);
}

TEST(Patterns, TextsStandAlongTheWay) {
  Scene scene;
  CStyle* style = getStyleStandard(*scene.data);
  CLtypeComplexDashSeq dashes;
  dashes.AddDashDouble(20);
  dashes.AddDashText(TEXT_3D(u"GAS", style, -3, 1, 0, 4, 0, 1, kPi / 2, 0));
  dashes.AddDashDouble(-10);
  addLtype(*scene.data, scene.data->getLtypeFactory().create(u"GAS", u"", dashes, 0));
  scene.data->getVars().setLtypeScale(2);
  // Straight up: the line's direction is +y, its left is -x.
  scene.line(100, 100, 100, 250)->setLtype(getLtype(*scene.data, u"GAS"));
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.count(Thing::Text), 2U);
  EXPECT_EQ(drawn.count(Thing::Stroke), 3U);
  const Thing& text = drawn.things[1];
  EXPECT_EQ(text.string, "GAS");
  EXPECT_LT(text.points[0].dist(seen(100 - 2, 140 - 6)), 1e-9);
  // A text rotated by 90 degrees in a line that goes up points left.
  EXPECT_NEAR(text.matrix.a, -8, 1e-9);
  EXPECT_NEAR(text.matrix.b, 0, 1e-9);
}

// The line is outside the window, but its glyphs reach into it.
TEST(Patterns, TextsThatReachIntoTheWindowAreSeen) {
  Scene scene;
  CLtypeComplexDashSeq dashes;
  dashes.AddDashDouble(100);
  dashes.AddDashText(TEXT_3D(u"A", nullptr, 0, 30, 0, 20, 0, 1, 0, 0));
  addLtype(*scene.data, scene.data->getLtypeFactory().create(u"A", u"", dashes, 0));
  scene.line(0, -20, 1000, -20)->setLtype(getLtype(*scene.data, u"A"));
  EXPECT_GE(scene.draw().count(Thing::Text), 9U);
}
