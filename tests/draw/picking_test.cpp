#include "vek0draw/picking.h"

#include "recorder.h"
#include "support/test.h"
#include "vek0core/entities/edit/entpath.h"
#include "vek0draw/areadrawing.h"

namespace {

// Lines, arcs, circles and polylines; some of them in blocks, some hidden.
class RandomDrawing {
 public:
  explicit RandomDrawing(unsigned seed) : m_random(seed) {
    m_hidden = scene.layer(u"HIDDEN", 1, CLayer::kOff);
    for (int i = 0; i < 120; ++i) addOne();
  }

  double number(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(m_random);
  }

  struct Known {
    CEnt* ent;     // of model space
    PATH_3D path;  // in the drawing
    bool isVisible;
  };
  vek0::test::Scene scene;
  std::vector<Known> known;

 private:
  CEnt* make() {
    CData& data = *scene.data;
    const PNT_3D at(number(0, 100), number(0, 100), 0);
    switch (m_random() % 4) {
      case 0:
        return createEntLine(
            data, LINE_3D(at, PNT_3D(at.x + number(-20, 20), at.y + number(-20, 20), 0)), 0);
      case 1:
        return createEntCircle(data, CIRCLE_3D(at.x, at.y, 0, number(0.1, 15)), 0);
      case 2:
        return createEntArc(data,
                            ARC_3D(at.x, at.y, 0, number(0.1, 15), number(0, 6), number(0, 6)), 0);
      default: {
        PATH_3D path({at, {at.x + 5, at.y, 0}, {at.x + 5, at.y + 3, 0}}, {0, number(-1, 1), 0},
                     m_random() % 2 == 0);
        const std::unique_ptr<CEnt> like(createEntPnt(data, at, 0));
        return createEntFromPath(data.getHandleGestor(), data.getEntFactory(), path, *like);
      }
    }
  }

  void addOne() {
    CEnt* ent = make();
    Known one{ent, {}, m_random() % 8 != 0};
    getEntPath(*ent, one.path);
    if (!one.isVisible) ent->setLayer(m_hidden);
    if (m_random() % 4 == 0) {
      CBlock* block =
          scene.block(zim::WString::fromUtf8("B" + std::to_string(known.size())), {ent});
      const double x = number(-20, 20), y = number(-20, 20);
      for (EDGE_3D& edge : one.path.edges) edge.move({x, y, 0});
      one.ent = scene.insert(*block, x, y);
    }
    scene.add(one.ent);
    known.push_back(std::move(one));
  }

  std::mt19937 m_random;
  CLayer* m_hidden;
};

// What is found is what a scan of all entities finds, in the order of its distance.
TEST(Picking, AgreesWithAScan) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    RandomDrawing drawing(seed);
    CDrawIndex index(*drawing.scene.data);
    const AreaDrawer draw = [&](const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& o) {
      return index.drawArea(area, painter, o);
    };
    for (int i = 0; i < 50; ++i) {
      const PNT_2D at(drawing.number(0, 100), drawing.number(0, 100));
      const double radius = drawing.number(0.01, 3);
      std::map<CEnt*, double> expected;
      for (const auto& [ent, path, isVisible] : drawing.known) {
        double distance = 1e9;
        for (const EDGE_3D& edge : path.edges) distance = std::min(distance, edge.dist(at));
        if (isVisible && distance <= radius) expected[ent] = distance;
      }
      double last = 0;
      const std::vector<PICK_HIT> hits = pickEntities(draw, at, radius);
      ASSERT_EQ(hits.size(), expected.size());
      for (const PICK_HIT& hit : hits) {
        ASSERT_TRUE(expected.contains(hit.ent));
        EXPECT_NEAR(hit.distance, expected[hit.ent], 1e-9);
        EXPECT_GE(hit.distance, last);
        last = hit.distance;
      }
    }
  }
}

TEST(Picking, BoxesAgreeWithAScan) {
  for (unsigned seed = 0; seed < 4; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    RandomDrawing drawing(seed);
    CDrawIndex index(*drawing.scene.data);
    const AreaDrawer draw = [&](const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& o) {
      return index.drawArea(area, painter, o);
    };
    const auto whole = [&](CEnt& ent, IPainter& painter) {
      index.drawEntities({&ent}, RECT_2D(-1e6, -1e6, 1e6, 1e6), painter);
    };
    for (int i = 0; i < 15; ++i) {
      const RECT_2D box(drawing.number(0, 100), drawing.number(0, 100), drawing.number(0, 100),
                        drawing.number(0, 100));
      // Points along every edge decide, so what barely touches the box may differ.
      std::vector<CEnt*> surelyCross, within;
      std::set<CEnt*> mayCross;
      RECT_2D larger = box, smaller = box;
      larger.inflate(0.1, 0.1);
      for (const auto& [ent, path, isVisible] : drawing.known) {
        if (!isVisible) continue;
        bool crosses = false, touches = false;
        for (const EDGE_3D& edge : path.edges) {
          for (int k = 0; k <= 1000; ++k) {
            crosses = crosses || box.inside(edge.at(k / 1000.0));
            touches = touches || larger.inside(edge.at(k / 1000.0));
          }
        }
        if (crosses) surelyCross.push_back(ent);
        if (touches) mayCross.insert(ent);
        if (box.inside(path.bdry())) within.push_back(ent);
      }
      const std::vector<CEnt*> found = entitiesCrossing(draw, box);
      EXPECT_THAT(found, testing::IsSupersetOf(surelyCross));
      for (CEnt* ent : found) EXPECT_TRUE(mayCross.contains(ent));
      EXPECT_EQ(entitiesWithin(draw, whole, box), within);
    }
  }
}

TEST(Picking, SnapsToTheNearestDistinguishedPoint) {
  vek0::test::Scene scene;
  scene.line(0, 0, 10, 0);
  scene.line(5, -5, 5.5, 5);
  scene.add(createEntCircle(*scene.data, CIRCLE_3D(20, 0, 0, 4), 0));
  scene.add(scene.insert(*scene.block(u"B", {scene.unit(nullptr, nullptr, 7)}), 30, 0, 2, 2));
  CDrawIndex index(*scene.data);
  const AreaDrawer draw = [&](const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& o) {
    return index.drawArea(area, painter, o);
  };
  const struct {
    const char* name;
    PNT_2D at;
    std::optional<PNT_2D> from;
    SnapKind kind;
    PNT_2D expected;
  } cases[] = {
      {"end", {0.2, 0.1}, {}, SnapKind::End, {0, 0}},
      {"middle, not the crossing beside it", {4.9, 0.05}, {}, SnapKind::Middle, {5, 0}},
      {"crossing", {5.3, 0.05}, {}, SnapKind::Intersection, {5.25, 0}},
      {"center, far from the circle", {20.1, 0.2}, {}, SnapKind::Center, {20, 0}},
      {"on the circle", {20, 4.1}, {}, SnapKind::Nearest, {20, 4}},
      {"foot on a line", {7.1, 0.1}, PNT_2D(7, 9), SnapKind::Perpendicular, {7, 0}},
      {"foot on a circle", {23.9, 0.1}, PNT_2D(40, 0), SnapKind::Perpendicular, {24, 0}},
      {"middle inside an insert", {31.1, 0.1}, {}, SnapKind::Middle, {31, 0}},
      {"on a line", {8, 0.2}, {}, SnapKind::Nearest, {8, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto snap = snapTo(draw, c.at, 0.3, c.from);
    ASSERT_TRUE(snap);
    EXPECT_EQ(static_cast<int>(snap->kind), static_cast<int>(c.kind));
    EXPECT_LT(snap->at.dist(c.expected), 1e-6) << snap->at;
  }
  EXPECT_FALSE(snapTo(draw, {8, 2}, 0.3));
}

// Drawing the plane itself is drawing a window of it, but for the map to its pixels.
TEST(AreaDrawing, AgreesWithAWindow) {
  CWndVpt window(1);
  window.resize(1001, 1001);
  window.set(0, 0, 100, 100);
  const RECT_2D seen(0, -0.1, 100.1, 100);  // the last column and row of pixels included
  DRAW_OPTIONS ofPixels, ofUnits;
  for (double DRAW_OPTIONS::*length :
       {&DRAW_OPTIONS::penReach, &DRAW_OPTIONS::leastPoint, &DRAW_OPTIONS::finestPattern})
    ofUnits.*length /= 10;
  for (unsigned seed = 0; seed < 20; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    RandomDrawing drawing(seed);
    vek0::test::Recorder pixels, plane;
    drawData(*drawing.scene.data, CPOProjector(), window, pixels, ofPixels);
    drawArea(*drawing.scene.data, seen, plane, ofUnits);
    ASSERT_EQ(plane.things.size(), pixels.things.size());
    for (std::size_t i = 0; i < plane.things.size(); ++i) {
      const vek0::test::Thing &a = plane.things[i], &b = pixels.things[i];
      ASSERT_EQ(a.kind, b.kind);
      ASSERT_EQ(a.points.size(), b.points.size());
      EXPECT_NEAR(a.radius * 10, b.radius, 1e-9);
      EXPECT_NEAR(a.sweep, -b.sweep, 1e-12);
      for (std::size_t k = 0; k < a.points.size(); ++k) {
        EXPECT_NEAR(a.points[k].x * 10, b.points[k].x, 1e-9);
        EXPECT_NEAR(1000 - a.points[k].y * 10, b.points[k].y, 1e-9);
      }
    }
  }
}

}  // namespace
