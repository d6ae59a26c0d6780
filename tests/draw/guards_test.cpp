// Extreme numbers and structures that occur only in malformed or hostile files.

#include "recorder.h"
#include "support/test.h"
#include "vek0draw/layoutdrawing.h"

namespace {

// Whether all numbers are finite, and their squares: painters multiply them.
bool isFinite(const Thing& thing) {
  for (const PNT_2D& p : thing.points)
    if (!std::isfinite(p.x * p.x) || !std::isfinite(p.y * p.y)) return false;
  return std::isfinite(thing.radius * thing.radius) && std::isfinite(thing.start) &&
         std::isfinite(thing.sweep);
}

// One entity of each kind at (`at`, `at`), `size` units large.
void addAllKinds(Scene& scene, double at, double size) {
  const PNT_3D p(at, at, 0), q(at + size, at + size, 0);
  CLtype* dashed = scene.ltype(u"D", {10, -5});
  scene.add(createEntPnt(*scene.data, p, 0));
  scene.add(createEntLine(*scene.data, LINE_3D(p, q), 0))->setLtype(dashed);
  scene.add(createEntCircle(*scene.data, CIRCLE_3D(at, at, 0, size), 0));
  scene.add(createEntArc(*scene.data, ARC_3D(at, at, 0, size, 0, 1), 0))->setLtype(dashed);
  const TEXT_3D text(u"%%uabc", getStyleStandard(*scene.data), at, at, 0, size, 0, 1, 0, 5);
  scene.add(createEntText(*scene.data, text, 0));
  scene.add(createEnt3DFace(*scene.data, p, q, PNT_3D(at, at + size, 0), p, 0, 0));
  const BULGED_VERTEX wide[] = {{p.x, p.y, 0, size, size, 0.5, 0}, {q.x, q.y, 0, size, size, 0, 0}};
  CEntPolyline* polyline = createEntPolyline(*scene.data, 0, 0, 0);
  polyline->setBulgedVertexes(wide, 2);
  scene.add(polyline)->setLtype(dashed);
  CBlock* block = scene.block(u"B", {scene.unit(nullptr, dashed, 1)});
  scene.add(scene.insert(*block, at, at, size, size));
}

}  // namespace

TEST(Guards, HugeAndTinyNumbersGiveFinitePoints) {
  const double ats[] = {0, 500, 1e15, 1e150, 1e290, 1e300, -1e308};
  const double sizes[] = {0, 1e-300, 1, 1e20, 1e160, 1e300, -5};
  for (const double at : ats) {
    for (const double size : sizes) {
      SCOPED_TRACE(testing::Message() << at << ' ' << size);
      Scene scene;
      addAllKinds(scene, at, size);
      const double zooms[] = {1, 1e12, 1e-30};
      for (const double zoom : zooms) {
        scene.window.zoom(zoom);
        Recorder recorder;
        const CParalProjector askew(0.8, -0.3, 0.5, 0.6);
        drawData(*scene.data, askew, scene.window, recorder);
        for (const Thing& thing : recorder.things) EXPECT_TRUE(isFinite(thing));
        const Recorder plan = scene.draw();
        for (const Thing& thing : plan.things) EXPECT_TRUE(isFinite(thing));
      }
    }
  }
}

TEST(Guards, SheetsMayHaveThousandsOfViewports) {
  constexpr std::size_t count = 20'000;
  Scene scene;
  scene.add(createEntLine(*scene.data, LINE_3D(0, 0, 0, 1, 1, 0), 0));
  CLayout layout(u"S", *scene.block(u"S", {}));
  VIEWPORT view;
  view.width = view.height = view.viewHeight = 2;
  layout.setViewports(std::vector<VIEWPORT>(count, view));
  Recorder recorder;
  const DRAW_RESULT result = drawLayout(*scene.data, layout, scene.window, recorder);
  EXPECT_FALSE(result.cut);
  EXPECT_EQ(result.emitted, 2 * count);
}

TEST(Guards, AWindowWithoutPixelsShowsNothing) {
  Scene scene;
  scene.line(0, 0, 10, 10);
  const long sizes[] = {-1, 0, 1};
  for (const long size : sizes) {
    scene.window = CWndVpt(1);
    scene.window.resize(size, size);
    EXPECT_TRUE(scene.draw().things.empty());
    EXPECT_FALSE(scene.result.cut);
  }
}

TEST(Guards, TextsThatAreSeenFromTheirEdgeAreLeftOut) {
  Scene scene;
  scene.add(createEntText(*scene.data, TEXT_3D(u"abc", nullptr, 500, 0, 500, 10, 0, 1, 0, 0), 0));
  Recorder front;
  drawData(*scene.data, CPVProjector(), scene.window, front);
  EXPECT_EQ(front.count(Thing::Text), 0U);
}

TEST(Guards, TheLimitCutsAndTellsSo) {
  Scene scene;
  for (int i = 0; i < 10; ++i) scene.line(i, 0, i, 10);
  for (const Row& t : rows()) {
    DRAW_OPTIONS options;
    options.limit = t.count("limit");
    EXPECT_EQ(scene.draw(options).things.size(), t.count("emitted"));
    EXPECT_EQ(scene.result.emitted, t.count("emitted"));
    EXPECT_EQ(scene.result.cut, t.flag("cut")) << t.count("limit");
  }
}

TEST(Guards, PointsAndLettersAreCountedToo) {
  for (const Row& t : rows()) {
    Scene scene;
    for (int i = 0; i < 10; ++i) scene.line(i, 0, i, 10);
    scene.add(createEntText(*scene.data, TEXT_3D(u"abc", nullptr, 5, 5, 0, 10, 0, 1, 0, 0), 0));
    DRAW_OPTIONS options;
    options.pointLimit = t.count("limit");
    scene.draw(options);
    EXPECT_EQ(scene.result.cut, t.flag("cut")) << t.text("name");
  }
}

// Coordinates of maps. A pixel is about a thousand times as wide as their resolution.
TEST(Guards, FarFromTheOriginThingsStayWhereTheyAre) {
  const double far = 5e6, side = 1e-3;
  const CPOProjector plan;
  const CPORotatedProjector turned(0.3, 0, 0), turnedHere(0.3, far, far);
  const CParalProjector askew(0.8, -0.3, 0.5, 0.6);
  for (const IProjector* projector :
       std::initializer_list<const IProjector*>{&plan, &turned, &turnedHere, &askew}) {
    Scene scene;
    scene.line(far, far, far + side, far + side);
    // The same line in a block whose coordinates are as large.
    CBlock* block = scene.block(
        u"B", {createEntLine(*scene.data, LINE_3D(far, far, 0, far - side, far - side, 0), 0)});
    scene.add(scene.insert(*block, 2 * far, 2 * far, -1, -1));
    PNT_2D at, end;
    projector->to2D(PNT_3D(far, far, 0), at);
    projector->to2D(PNT_3D(far + side, far + side, 0), end);
    scene.window.set(at.x, at.y, at.x + side, at.y + side);
    Recorder drawn;
    drawData(*scene.data, *projector, scene.window, drawn);
    ASSERT_EQ(drawn.things.size(), 2U);
    const PNT_2D expected(scene.window.getViewX(end.x), scene.window.getViewY(end.y));
    for (const Thing& line : drawn.things) {
      EXPECT_LT(line.points[0].dist(seen(0, 0)), 0.01);
      EXPECT_LT(line.points[1].dist(expected), 0.01);
    }
  }
}

// Thirty levels of two inserts each yield 10^9 lines, each in a different place.
TEST(Guards, NestsThatGrowWithoutBoundsAreCut) {
  for (const bool isEmpty : {false, true}) {
    Scene scene;
    std::vector<CEnt*> ents;
    if (!isEmpty) ents = {scene.unit(nullptr, nullptr, 1)};
    CBlock* block = scene.block(u"B", ents);
    for (int level = 0; level < 30; ++level) {
      block =
          scene.block(zim::WString::fromUtf8("B" + std::to_string(level)),
                      {scene.insert(*block, 0, 0), scene.insert(*block, std::pow(1.3, level), 1)});
    }
    scene.add(scene.insert(*block, 100, 100));
    DRAW_OPTIONS options;
    options.limit = 10000;
    scene.draw(options);
    EXPECT_EQ(scene.result.cut, !isEmpty);
    EXPECT_LE(scene.result.looked, 10000U);
  }
}

TEST(Guards, TooDeepNestsAreCut) {
  Scene scene;
  CBlock* block = scene.block(u"B", {scene.unit(nullptr, nullptr, 1)});
  for (int level = 0; level < 300; ++level) {
    block = scene.block(zim::WString::fromUtf8("B" + std::to_string(level)),
                        {scene.insert(*block, 0, 0)});
  }
  scene.add(scene.insert(*block, 100, 100));
  scene.draw();
  EXPECT_TRUE(scene.result.cut);
}
