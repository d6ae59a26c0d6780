#include "support/test.h"

namespace {

CWndVpt viewport(long width, long height, double ratio = 1) {
  CWndVpt result(ratio);
  result.resize(width, height);
  return result;
}

double scaleX(const CWndVpt& v) {
  double sx = 0, sy = 0;
  v.getScaleFactor(sx, sy);
  return sx;
}

double scaleY(const CWndVpt& v) {
  double sx = 0, sy = 0;
  v.getScaleFactor(sx, sy);
  return sy;
}

bool same(const CWndVpt& a, const CWndVpt& b) {
  const std::unique_ptr<CWndVptMemento> memento(a.createMemento());
  return *memento == b;
}

void expectNear(const RECT_2D& got, const RECT_2D& want, double tolerance = 1e-9) {
  EXPECT_NEAR(got.min.x, want.min.x, tolerance);
  EXPECT_NEAR(got.min.y, want.min.y, tolerance);
  EXPECT_NEAR(got.max.x, want.max.x, tolerance);
  EXPECT_NEAR(got.max.y, want.max.y, tolerance);
}

}  // namespace

TEST(WndVpt, BeforeTheDeviceIsKnown) {
  CWndVpt v(1);
  EXPECT_EQ(v.getWindow(), RECT_2D(0, 0, 1, 1));
  EXPECT_EQ(v.GetWindowCenter(), PNT_2D(0.5, 0.5));
  EXPECT_EQ(v.GetPixelSize(), 0);
  long width = 0, height = 0;
  v.get(width, height);
  EXPECT_EQ(width, -1);
  EXPECT_EQ(height, -1);
  v.set(10, 20, 30, 50);
  EXPECT_EQ(v.getWindow(), RECT_2D(10, 20, 30, 50)) << "nothing to extend it for";
  EXPECT_EQ(v.getWorldX(400), 10);
  EXPECT_EQ(v.getWorldY(400), 20);
  EXPECT_EQ(v.getWorldXDistance(400), 0);
  v.zoom(2);
  EXPECT_EQ(v.getWindow(), RECT_2D(10, 20, 30, 50));
}

TEST(WndVpt, SetShowsAllOfTheRectangle) {
  for (const Row& t : rows()) {
    CWndVpt v = viewport(t.whole<long>("width"), t.whole<long>("height"), t.real("ratio"));
    v.set(t.rect<RECT_2D>("asked"));
    expectNear(v.getWindow(), t.rect<RECT_2D>("window"));
    EXPECT_NEAR(scaleX(v) / scaleY(v), t.real("ratio"), 1e-12);
    EXPECT_NEAR(v.getViewX(t.rect<RECT_2D>("window").min.x), 0, 1e-9);
    EXPECT_NEAR(v.getViewY(t.rect<RECT_2D>("window").max.y), 0, 1e-9) << "the top is the first row";
    EXPECT_EQ(v.getViewXInt(t.rect<RECT_2D>("window").max.x), t.whole<long>("width") - 1);
    EXPECT_EQ(v.getViewYInt(t.rect<RECT_2D>("window").min.y), t.whole<long>("height") - 1);
  }
}

TEST(WndVpt, WhatMakesNoWindowChangesNothing) {
  RECT_2D empty;
  empty.initRegion();
  CWndVpt v = viewport(640, 480);
  v.set(-3, 2, 50, 40);
  const CWndVpt before = v;
  v.set(empty);
  v.set(0, 0, kInf, 1);
  v.set(0, kNan, 1, 1);
  v.set(-1.7e308, 0, 1.7e308, 1);
  v.set(1e20, 1e20, 1e20, 1e20);  // a unit of the drawing is below the resolution here
  for (const double f : {0.0, -1.0, kInf, kNan, 5e-324}) {
    v.zoom(f);
    v.setScaleFactor(f);
  }
  v.pan(kInf, 0);
  v.pan(0, kNan);
  v.zoom(1e300);    // the window would collapse by rounding,
  v.pan(1e300, 0);  // and here as well
  EXPECT_TRUE(same(v, before));
  EXPECT_EQ(v.getRatioFactor(), 1);
  EXPECT_TRUE(CWndVpt(0).isIsotropic());
  EXPECT_TRUE(CWndVpt(kNan).isIsotropic());
}

TEST(WndVpt, PixelsAndWorldAreInverse) {
  std::mt19937 engine(7);
  std::uniform_real_distribution<double> world(-1e4, 1e4), ratio(0.2, 5);
  std::uniform_int_distribution<int> pixels(2, 3000);
  for (int i = 0; i < 300; ++i) {
    CWndVpt v = viewport(pixels(engine), pixels(engine), ratio(engine));
    v.set(world(engine), world(engine), world(engine), world(engine));
    v.zoom(1 + std::fabs(world(engine)) / 100);
    const int px = pixels(engine), py = pixels(engine);
    EXPECT_EQ(v.getViewXInt(v.getWorldX(px)), px);
    EXPECT_EQ(v.getViewYInt(v.getWorldY(py)), py);
    const double x = world(engine);
    EXPECT_NEAR(v.getWorldX(v.getViewX(x)), x, 1e-7);
    EXPECT_NEAR(v.getWorldYDistance(v.getViewYDistance(x)), x, 1e-9);
    EXPECT_NEAR(v.getWorldX(1) - v.getWorldX(0), v.GetPixelSize(), 1e-7);
  }
}

TEST(WndVpt, ZoomHalvesTheWindowAboutItsCentre) {
  CWndVpt v = viewport(101, 101);
  v.set(0, 0, 100, 100);
  const RECT_2D before = v.getWindow();
  v.zoom(2);
  expectNear(v.getWindow(), RECT_2D(25, 25, 75, 75));
  EXPECT_DOUBLE_EQ(scaleX(v), 2);
  v.zoom(0.5);
  expectNear(v.getWindow(), before);
  v.pan(10, -5);
  expectNear(v.getWindow(), RECT_2D(10, -5, 110, 95));
  EXPECT_NEAR(v.getViewX(10), 0, 1e-9) << "the content moves the other way";
}

TEST(WndVpt, TheRatioKeepsScaleXAndTheCentre) {
  CWndVpt v = viewport(101, 101);
  v.set(0, 0, 100, 100);
  v.setScaleFactor(2);
  EXPECT_FALSE(v.isIsotropic());
  EXPECT_DOUBLE_EQ(scaleX(v), 1);
  EXPECT_DOUBLE_EQ(scaleY(v), 0.5);
  expectNear(v.getWindow(), RECT_2D(0, -50, 100, 150));
  EXPECT_EQ(v.GetWindowCenter(), PNT_2D(50, 50));
}

TEST(WndVpt, ResizeKeepsTheScaleOnceThereIsOne) {
  CWndVpt v(1);
  v.set(0, 0, 10, 10);
  EXPECT_TRUE(v.resize(101, 101));
  EXPECT_FALSE(v.resize(101, 101));
  expectNear(v.getWindow(), RECT_2D(0, 0, 10, 10));
  EXPECT_TRUE(v.resize(201, 101));
  EXPECT_DOUBLE_EQ(scaleX(v), 10);
  expectNear(v.getWindow(), RECT_2D(-5, 0, 15, 10));
}

TEST(WndVpt, AViewSurvivesBeingHidden) {
  for (const Row& t : rows()) {
    CWndVpt v = viewport(101, 101);
    v.set(0, 0, 10, 10);
    v.resize(t.whole<long>("width"), t.whole<long>("height"));
    v.resize(0, 5);
    v.resize(t.whole<long>("width"), t.whole<long>("height"));
    v.resize(101, 101);
    expectNear(v.getWindow(), RECT_2D(0, 0, 10, 10));
    EXPECT_NEAR(scaleX(v), 10, 1e-9);
  }
  CWndVpt started = viewport(1, 1);
  started.resize(101, 101);
  EXPECT_NEAR(scaleX(started), 100, 1e-9) << "a first device of one pixel gives no scale to keep";
  CWndVpt shown = viewport(101, 101);
  shown.resize(1, 1);
  shown.set(0, 0, 50, 50);
  shown.resize(101, 101);
  expectNear(shown.getWindow(), RECT_2D(0, 0, 50, 50));
}

TEST(WndVpt, AMementoBringsTheViewBack) {
  std::mt19937 engine(11);
  std::uniform_real_distribution<double> number(-100, 100);
  CWndVpt v = viewport(640, 480);
  v.set(0, 0, 100, 60);
  for (int round = 0; round < 50; ++round) {
    const CWndVpt before = v;
    const std::unique_ptr<CWndVptMemento> memento(v.createMemento());
    for (int i = 0; i < 5; ++i) {
      v.pan(number(engine), number(engine));
      v.zoom(std::exp(number(engine) / 50));
      v.setScaleFactor(std::exp(number(engine) / 100));
      if (i == 2) v.set(number(engine), number(engine), number(engine), number(engine));
    }
    EXPECT_TRUE(*memento != v);
    v.setMemento(*memento);
    EXPECT_TRUE(*memento == v);
    EXPECT_EQ(v.getViewX(12), before.getViewX(12));
    EXPECT_EQ(v.getRatioFactor(), before.getRatioFactor());
    v.zoom(0.9);
    v.pan(1, 2);
  }
}

TEST(WndVpt, AMementoOnAnotherDevice) {
  CWndVpt v = viewport(101, 101);
  v.set(0, 0, 10, 10);
  const std::unique_ptr<CWndVptMemento> memento(v.createMemento());
  v.resize(201, 101);
  v.zoom(3);
  v.setMemento(*memento);
  EXPECT_DOUBLE_EQ(scaleX(v), 10);
  expectNear(v.getWindow(), RECT_2D(-5, 0, 15, 10));

  CWndVpt early(1);
  early.set(0, 0, 10, 10);
  const std::unique_ptr<CWndVptMemento> unscaled(early.createMemento());
  early.resize(101, 101);
  early.set(5, 5, 6, 6);
  early.setMemento(*unscaled);
  expectNear(early.getWindow(), RECT_2D(0, 0, 10, 10));
  EXPECT_DOUBLE_EQ(scaleX(early), 10);
}
