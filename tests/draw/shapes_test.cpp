// The geometry that painters receive for each kind of entity.

#include "recorder.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

CEntPolyline* polyline(Scene& scene, bool closed, const std::vector<BULGED_VERTEX>& vertexes) {
  CEntPolyline* made = createEntPolyline(*scene.data, closed ? 1 : 0, 0, 0);
  made->setBulgedVertexes(vertexes.data(), vertexes.size());
  return scene.add(made);
}

// Twice the signed area of all rings.
double doubleArea(const Thing& fill) {
  double sum = 0;
  std::size_t first = 0;
  for (const std::size_t end : fill.ends) {
    for (std::size_t i = first; i < end; ++i) {
      const PNT_2D &p = fill.points[i], &q = fill.points[i + 1 < end ? i + 1 : first];
      sum += p.x * q.y - q.x * p.y;
    }
    first = end;
  }
  return sum;
}

// Winding number of a fill's rings about a point.
int windings(const Thing& fill, const PNT_2D& p) {
  int turns = 0;
  std::size_t first = 0;
  for (const std::size_t end : fill.ends) {
    for (std::size_t i = first; i < end; ++i) {
      const PNT_2D &a = fill.points[i], &b = fill.points[i + 1 < end ? i + 1 : first];
      if ((a.y <= p.y) == (b.y <= p.y)) continue;
      const double x = a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x);
      if (x > p.x) turns += b.y > a.y ? 1 : -1;
    }
    first = end;
  }
  return turns;
}

bool covers(const Recorder& drawn, const PNT_2D& p) {
  for (const Thing& thing : drawn.things) {
    const int turns = windings(thing, p);
    if (thing.rule == FillRule::NonZero ? turns != 0 : turns % 2 != 0) return true;
  }
  return false;
}

std::vector<PNT_3D> square(double x, double y, double side) {
  return {{x, y, 0}, {x + side, y, 0}, {x + side, y + side, 0}, {x, y + side, 0}};
}

// Whether a stroke passes through a point.
bool runsOver(const Thing& stroke, const PNT_2D& p) {
  const PNT_2D &a = stroke.points.front(), &b = stroke.points.back();
  return std::fabs(a.dist(p) + p.dist(b) - a.dist(b)) < 1e-6;
}

}  // namespace

TEST(Shapes, PointsAreDotsAndLinesAreStrokes) {
  Scene scene;
  scene.add(createEntPnt(*scene.data, PNT_3D(5, 6, 7), 3));
  scene.line(1, 2, 30, 40);
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.things.size(), 2U);
  EXPECT_EQ(drawn.things[0].kind, Thing::Dot);
  EXPECT_EQ(drawn.things[0].handle, 3);
  EXPECT_LT(drawn.things[0].points[0].dist(seen(5, 6)), 1e-9);
  EXPECT_EQ(drawn.things[1].kind, Thing::Stroke);
  EXPECT_LT(drawn.things[1].points[1].dist(seen(30, 40)), 1e-9);
}

// A size of 0 means 5 percent of the window; a negative size is a percentage of it.
TEST(Shapes, PointsLookAsTheDrawingSays) {
  for (const Row& t : rows()) {
    Scene scene;
    scene.data->getVars().setPointMode(t.whole<short>("mode"));
    scene.data->getVars().setPointSize(t.real("size"));
    scene.add(createEntPnt(*scene.data, PNT_3D(500, 500, 0), 0));
    scene.add(createEntPnt(*scene.data, PNT_3D(500, -1, 0), 0));
    const Recorder drawn = scene.draw();
    const std::size_t seenTwice = t.real("reach") > 1 ? 2 : 1;
    EXPECT_EQ(drawn.count(Thing::Dot), t.count("dots") * seenTwice)
        << "also at the window's border";
    EXPECT_EQ(drawn.count(Thing::Stroke), t.count("strokes") * seenTwice);
    EXPECT_EQ(drawn.count(Thing::Arc), t.count("arcs") * seenTwice);
    double reach = 0;
    for (const Thing& thing : drawn.things)
      for (const PNT_2D& p : thing.points) reach = std::max(reach, 500 - p.y + thing.radius);
    EXPECT_NEAR(reach, t.real("reach"), 1e-9);
  }
}

// Points of patterns are dots without a size; points of dimensions are not shown.
TEST(Shapes, PointsThatAreNoEntitiesOfTheirOwn) {
  Scene scene;
  scene.data->getVars().setPointMode(3);
  CBlock* picture = scene.block(u"*D1", {createEntPnt(*scene.data, PNT_3D(0, 0, 0), 0)});
  scene.add(scene.insert(*picture, 500, 500));
  EXPECT_TRUE(scene.draw().things.empty());
  scene.add(createEntHatch(*scene.data, *getHatch(u"DOTS"), 100, 0, square(0, 0, 100), 7));
  const Recorder drawn = scene.draw();
  EXPECT_GT(drawn.count(Thing::Dot), 3U);
  EXPECT_EQ(drawn.count(Thing::Dot), drawn.things.size());
  EXPECT_EQ(drawn.things[0].radius, 0);
}

// Device angles run clockwise, because y points down.
TEST(Shapes, ArcsStartAndEndWhereTheyDo) {
  for (const Row& t : rows()) {
    Scene scene;
    const ARC_3D arc(0, 0, 0, 50, 0.5, 2.5);
    CBlock* block = scene.block(u"B", {createEntArc(*scene.data, arc, 0)});
    CEntInsert* insert =
        scene.add(scene.insert(*block, 500, 500, t.real("sx"), t.real("sy"), t.real("rotation")));
    const Recorder drawn = scene.draw();
    ASSERT_EQ(drawn.things.size(), 1U);
    const Thing& got = drawn.things[0];
    ASSERT_EQ(got.kind, Thing::Arc);
    EXPECT_NEAR(std::fabs(got.sweep), 2, 1e-12);
    const CEntInsertMatrix matrix(1, *insert, 0, 0);
    const double shares[] = {0, 0.25, 1};
    for (const double share : shares) {
      const double own = 0.5 + 2 * share, device = got.start + got.sweep * share;
      PNT_3D expected;
      matrix.transform(PNT_3D(50 * std::cos(own), 50 * std::sin(own), 0), expected);
      const PNT_2D at(got.points[0].x + got.radius * std::cos(device),
                      got.points[0].y + got.radius * std::sin(device));
      EXPECT_LT(at.dist(seen(expected.x, expected.y)), 1e-9);
    }
  }
}

TEST(Shapes, ChordsStayNearTheirCurve) {
  Scene scene;
  const CIRCLE_3D circle(0, 0, 0, 100);
  CBlock* block = scene.block(u"B", {createEntCircle(*scene.data, circle, 0)});
  scene.add(scene.insert(*block, 500, 500, 3, 1));
  DRAW_OPTIONS options;
  options.chordError = 0.25;
  const Recorder drawn = scene.draw(options);
  ASSERT_EQ(drawn.things.size(), 1U);
  const auto& points = drawn.things[0].points;
  EXPECT_LT(points.size(), 120U);
  EXPECT_LT(points.front().dist(points.back()), 1e-9);
  for (std::size_t i = 1; i < points.size(); ++i) {
    const PNT_2D middle((points[i].x + points[i - 1].x) / 2, (points[i].y + points[i - 1].y) / 2);
    // The chord is at least as close in the circle's own coordinates.
    const double own = std::hypot((middle.x - 500) / 3, middle.y - 500);
    EXPECT_LE(100 - own, 0.25 + 1e-9);
  }
}

// In folded segments the corners of the sides have no room.
TEST(Shapes, WidthsCoverWhatTheirSegmentsDo) {
  for (const Row& t : rows()) {
    Scene scene;
    std::vector<BULGED_VERTEX> path;
    for (const PNT_3D& p : t.points("path"))
      path.push_back({p.x, p.y, 0, p.z, p.z, t.real("bulge"), 0});
    polyline(scene, t.flag("closed"), path);
    const Recorder drawn = scene.draw();
    for (const PNT_3D& p : t.points("in")) EXPECT_TRUE(covers(drawn, seen(p.x, p.y))) << PNT_2D(p);
    for (const PNT_3D& p : t.points("out"))
      EXPECT_FALSE(covers(drawn, seen(p.x, p.y))) << PNT_2D(p);
  }
}

TEST(Shapes, WidthsCoverEverySegmentWhateverItsNeighbours) {
  std::mt19937 random(5);
  const auto number = [&](double low, double high) {
    return std::uniform_real_distribution<>(low, high)(random);
  };
  for (int trial = 0; trial < 300; ++trial) {
    Scene scene;
    std::vector<BULGED_VERTEX> way;
    const double width = number(1, 80);
    for (int i = 0; i < 6; ++i)
      way.push_back({number(300, 500), number(300, 500), 0, width, width, 0, 0});
    if (trial % 3 == 0) way[2].widthEnd = number(1, 80);
    polyline(scene, trial % 2 != 0, way);
    const Recorder drawn = scene.draw();
    for (std::size_t i = 0; i + 1 < way.size(); ++i) {
      const double dx = way[i + 1].x - way[i].x, dy = way[i + 1].y - way[i].y;
      const double t = number(0.02, 0.98);
      const double wide = way[i].widthStart + t * (way[i].widthEnd - way[i].widthStart);
      const double side = number(-0.49, 0.49) * wide / std::hypot(dx, dy);
      const PNT_2D p(way[i].x + t * dx - side * dy, way[i].y + t * dy + side * dx);
      EXPECT_TRUE(covers(drawn, seen(p.x, p.y))) << trial << ' ' << i << p;
    }
  }
}

// Arrows are often polylines whose shaft has no width.
TEST(Shapes, SegmentsWithoutWidthAmongWideOnesAreStrokes) {
  Scene scene;
  polyline(scene, false,
           {{0, 0, 0, 0, 0, 0, 0},
            {50, 0, 0, 0, 0, 0, 0},
            {100, 0, 0, 20, 0, 0, 0},
            {120, 0, 0, 5, 5, 0, 0}});
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.things.size(), 2U);
  EXPECT_EQ(drawn.things[0].kind, Thing::Stroke);
  EXPECT_EQ(drawn.things[0].points.size(), 3U);
  ASSERT_EQ(drawn.things[1].kind, Thing::Fill);
  EXPECT_NEAR(std::fabs(doubleArea(drawn.things[1])) / 2, 200, 1e-9);
}

// Start and end point of a stroke or an arc.
std::pair<PNT_2D, PNT_2D> ends(const Thing& thing) {
  if (thing.kind != Thing::Arc) return {thing.points.front(), thing.points.back()};
  const auto at = [&](double angle) {
    return PNT_2D(thing.points[0].x + thing.radius * std::cos(angle),
                  thing.points[0].y + thing.radius * std::sin(angle));
  };
  return {at(thing.start), at(thing.start + thing.sweep)};
}

// Lines and arcs follow each other from vertex to vertex, also when mirrored and for painters
// without arcs.
TEST(Shapes, BulgesAreCurves) {
  const std::vector<BULGED_VERTEX> way = {{0, 0, 0, 0, 0, 0, 0},
                                          {50, 0, 0, 0, 0, 0, 0},
                                          {80, 0, 0, 0, 0, 1, 0},
                                          {80, 60, 0, 0, 0, -0.4, 0},
                                          {0, 60, 0, 0, 0, 0.2, 0}};
  const PNT_2D corners[] = {{0, 0}, {80, 0}, {80, 60}, {0, 60}, {0, 0}};
  for (const double scale : {1.0, -1.0}) {
    for (const bool hasArcs : {true, false}) {
      SCOPED_TRACE(testing::Message() << scale << hasArcs);
      Scene scene;
      CEntPolyline* made = createEntPolyline(*scene.data, 1, 0, 0);
      made->setBulgedVertexes(way.data(), way.size());
      CBlock* block = scene.block(u"B", {made});
      scene.add(scene.insert(*block, 500, 500, scale, 1));
      Recorder drawn(hasArcs);
      const DRAW_RESULT result = drawData(*scene.data, CPOProjector(), scene.window, drawn);
      EXPECT_EQ(result.emitted, 4U) << "an arc that was not taken does not count";
      ASSERT_EQ(drawn.things.size(), 4U);
      EXPECT_EQ(drawn.count(Thing::Arc), hasArcs ? 3U : 0U);
      for (std::size_t i = 0; i < 4; ++i) {
        const auto [from, to] = ends(drawn.things[i]);
        const PNT_2D &a = corners[i], &b = corners[i + 1];
        EXPECT_LT(from.dist(seen(500 + scale * a.x, 500 + a.y)), 1e-9) << i;
        EXPECT_LT(to.dist(seen(500 + scale * b.x, 500 + b.y)), 1e-9) << i;
      }
      // A half circle of radius 30: it turns left while the polyline runs up, so it bulges right.
      const Thing& half = drawn.things[1];
      const PNT_2D middle(500 + scale * 80, 1000 - 530);
      for (const PNT_2D& p : half.points)
        EXPECT_NEAR(p.dist(middle), hasArcs ? 0 : 30, 1e-9) << "centre, or points of the chords";
      EXPECT_NEAR(half.sweep, hasArcs ? -kPi * scale : 0, 1e-9);
    }
  }
}

TEST(Shapes, FacesShowTheirVisibleEdges) {
  for (const Row& t : rows()) {
    Scene scene;
    scene.add(createEnt3DFace(*scene.data, PNT_3D(0, 0, 0), PNT_3D(100, 0, 0), PNT_3D(100, 100, 0),
                              PNT_3D(t.real("lastX"), 100, 0), t.whole<long>("flags"), 0));
    EXPECT_EQ(scene.draw().count(Thing::Stroke), t.count("edges"));
    if (t.real("lastX") != 0) continue;  // such a face has a longer edge
    scene.data->getEntTable().getEntityTbl().front()->setLtype(scene.ltype(u"D", {10, -10}));
    EXPECT_EQ(scene.draw().count(Thing::Stroke), 5 * t.count("edges")) << "each begins anew";
  }
}

TEST(Shapes, FilledFacesShowTheirArea) {
  for (const Row& t : rows()) {
    Scene scene;
    const std::vector<PNT_3D> p = t.points("corners");
    CEnt3DFace* face = createEnt3DFace(*scene.data, p[0], p[1], p[2], p[3], 15, 0);
    face->setFill(FaceFill::Solid);
    scene.add(face);
    const Recorder drawn = scene.draw();
    EXPECT_EQ(drawn.count(Thing::Fill), drawn.things.size());
    EXPECT_TRUE(covers(drawn, seen(t.point("in").x, t.point("in").y)));
    EXPECT_FALSE(covers(drawn, seen(t.point("out").x, t.point("out").y)));
    long corner = 0;
    for (const PNT_3D& at : p) face->setVertex(corner++, PNT_3D(at.x, 100, at.y));
    EXPECT_EQ(scene.draw().count(Thing::Stroke), 1U) << "seen from its edge";
  }
}

// Drawing the faces of its block would leave seams.
TEST(Shapes, ASolidHatchIsOneFillWithItsHoles) {
  Scene scene;
  const std::vector<PNT_3D> rings =
      joinHatchRings({square(0, 0, 100), square(20, 20, 50), square(30, 30, 10)});
  CEntHatch* hatch =
      createEntHatch(*scene.data, scene.data->getHatchTypeTable().solid(), 1, 0, rings, 0);
  ASSERT_NE(hatch, nullptr);
  CBlock* block = scene.block(u"B", {hatch});
  scene.add(scene.insert(*block, 500, 500, 2, 1, kPi / 2));
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.things.size(), 1U);
  const Thing& fill = drawn.things[0];
  ASSERT_EQ(fill.kind, Thing::Fill);
  ASSERT_EQ(fill.ends, (std::vector<std::size_t>{4, 8, 12}));
  RECT_2D box;
  box.set(fill.points.data(), static_cast<int>(fill.points.size()));
  EXPECT_LT(box.min.dist(seen(400, 700)), 1e-9);
  EXPECT_LT(box.max.dist(seen(500, 500)), 1e-9);
}

TEST(Shapes, APatternHatchShowsItsLinesInItsOwnColour) {
  Scene scene;
  CLayer* green = scene.layer(u"GREEN", 3);
  scene.add(createEntHatch(*scene.data, green, nullptr, 256, *getHatch(u"ANSI31"), 100, 0,
                           square(0, 0, 100), 7));
  const Recorder drawn = scene.draw();
  EXPECT_GT(drawn.count(Thing::Stroke), 5U);
  EXPECT_EQ(drawn.count(Thing::Stroke), drawn.things.size());
  for (const Thing& thing : drawn.things) {
    EXPECT_EQ(thing.color, (RGB_COLOR{0, 255, 0}));
    EXPECT_EQ(thing.layer, "GREEN");
    EXPECT_EQ(thing.handle, 7);
  }
}

TEST(Shapes, ViewsFromTheSideShowHeights) {
  Scene scene;
  scene.add(createEntLine(*scene.data, LINE_3D(10, 500, 20, 30, 600, 40), 0));
  scene.add(createEntCircle(*scene.data, CIRCLE_3D(500, 500, 300, 100), 0));
  Recorder front;
  drawData(*scene.data, CPVProjector(), scene.window, front);
  ASSERT_EQ(front.things.size(), 2U);
  EXPECT_LT(front.things[0].points[0].dist(seen(10, 20)), 1e-9);
  EXPECT_LT(front.things[0].points[1].dist(seen(30, 40)), 1e-9);
  for (const PNT_2D& p : front.things[1].points) EXPECT_NEAR(p.y, seen(0, 300).y, 1e-9);
}

// Rays and construction lines in nested arrays of inserts, from simple to complex.
TEST(Endless, LinesCoverTheWindowFromTheirFirstPointOn) {
  std::mt19937 random(1);
  const auto number = [&](double low, double high) {
    return std::uniform_real_distribution<>(low, high)(random);
  };
  int seenPoints = 0;
  for (int i = 0; i < 200; ++i) {
    Scene scene;
    const double x = number(-900, 1900), y = number(-900, 1900), angle = number(0, 6.28);
    const PNT_3D first(x, y, 0), way(std::cos(angle), std::sin(angle), 0);
    const bool isRay = i % 2 == 0;
    CEntLine* line = createEntLine(*scene.data, LINE_3D(first, first + way), 0);
    line->setReach(isRay ? LineReach::Ray : LineReach::Endless);
    CBlock* block = scene.block(u"A", {line});
    CEntInsert* insert =
        createEntInsert(*scene.data, *scene.block(u"B", {scene.insert(*block, 0, 0)}),
                        PNT_3D(100, 50, 0), number(-2, 2), 1.5, 1, angle, 2, 1, 700, 0, 0);
    scene.add(insert);
    const Recorder walked = scene.draw();
    Recorder indexed;
    CDrawIndex(*scene.data).draw(CPOProjector(), scene.window, indexed);
    EXPECT_EQ(indexed.things.size(), walked.things.size());
    for (int k = 0; k < 100; ++k) {
      PNT_3D p;
      const double t = number(-2000, 2000);
      CEntInsertMatrix(1, *insert, 0, k % 2).transform(first + PNT_3D(way.x * t, way.y * t, 0), p);
      if (!RECT_2D(0, 0, 1000, 1000).inside(p)) continue;
      const bool isCovered =
          std::any_of(walked.things.begin(), walked.things.end(),
                      [&](const Thing& thing) { return runsOver(thing, seen(p.x, p.y)); });
      EXPECT_EQ(isCovered, t >= 0 || !isRay) << i << ' ' << t;
      ++seenPoints;
    }
  }
  EXPECT_GT(seenPoints, 1000);
}
