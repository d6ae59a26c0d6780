#include "support/test.h"

namespace {

TEST(Rect, EmptyBoxGrowsToItsFirstPoint) {
  RECT_3D box;
  box.initRegion();
  EXPECT_FALSE(box.validRegion());
  EXPECT_EQ(box.min.z, 1.7e200);
  EXPECT_EQ(box.max.z, -1.7e200);
  box.updateRegion(PNT_3D(kNan, kNan, kNan));
  EXPECT_FALSE(box.validRegion());
  box.updateRegion(PNT_3D(1, -2, 3));
  EXPECT_TRUE(box.validRegion());
  EXPECT_TRUE(box == RECT_3D(1, -2, 3, 1, -2, 3));
}

TEST(Rect, AnEmptyBoxChangesNoOther) {
  RECT_3D empty, box(0, 0, 0, 1, 2, 3);
  empty.initRegion();
  const RECT_3D before = box;
  box.updateRegion(empty);
  EXPECT_TRUE(box == before);
  empty.updateRegion(box);
  EXPECT_TRUE(empty == before);
}

TEST(Rect, AnEmptyBoxStaysEmptyWhereverItGoes) {
  RECT_3D empty;
  empty.initRegion();
  const RECT_3D before = empty;
  for (const double factor : named<double>({0.0, 1e-200, -1.0, 1e200})) {
    empty.scale(PNT_3D(1, 2, 3), factor);
    empty.move(PNT_3D(1e300, 0, -1e300));
    EXPECT_TRUE(empty == before);
  }
}

TEST(Rect, GrownBoxHoldsBothAndNothingMore) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> real(-10, 10);
  const auto point = [&] { return PNT_3D(real(random), real(random), real(random)); };
  for ([[maybe_unused]] const int i : rounds(300)) {
    const PNT_3D p[] = {point(), point(), point(), point()};
    RECT_3D grown(p[0], p[1]), ofPoints(p[0], p[1]);
    grown.updateRegion(RECT_3D(p[2], p[3]));
    ofPoints.updateRegion(p[2]);
    ofPoints.updateRegion(p[3]);
    EXPECT_TRUE(grown == ofPoints);
    for (const PNT_3D& q : p) EXPECT_TRUE(grown.inside(q));
    RECT_2D flat(p[0], p[1]), ofPlanePoints;
    flat.updateRegion(RECT_2D(p[2], p[3]));
    const PNT_2D plane[] = {p[0], p[1], p[2], p[3]};
    ofPlanePoints.set(plane, 4);
    EXPECT_TRUE(flat == ofPlanePoints);
  }
}

TEST(Rect, ValidityLooksAtXAlone) {
  RECT_2D box(0, 0, 1, 1);
  box.min.y = 5;
  EXPECT_TRUE(box.validRegion());
  box.min.x = 5;
  EXPECT_FALSE(box.validRegion());
}

TEST(Rect, ConstructionOrdersEachAxisAlone) {
  EXPECT_TRUE(RECT_2D(5, 1, 2, 9) == RECT_2D(2, 9, 5, 1));
  EXPECT_TRUE(RECT_3D(5, 1, 7, 2, 9, -7).min == PNT_3D(2, 1, -7));
  EXPECT_TRUE(RECT_3D(5, 1, 7, 2, 9, -7).max == PNT_3D(5, 9, 7));
}

TEST(Rect, BoxOfPointLists) {
  const PNT_2D points[] = {{3, 1}, {-1, 4}, {2, -5}};
  RECT_2D box;
  box.set(points, 3);
  EXPECT_TRUE(box == RECT_2D(-1, -5, 3, 4));
  box.set(points, 1);
  EXPECT_TRUE(box == RECT_2D(3, 1, 3, 1));
  for (const int n : {0, -1}) {
    box.set(nullptr, n);
    EXPECT_FALSE(box.validRegion());
  }
  const double xs[] = {0, 4, 5, 1}, ys[] = {0, -3, 1, 2}, zs[] = {1, 2, 3, 4};
  box.set(xs, ys);
  EXPECT_TRUE(box == RECT_2D(0, -3, 5, 2));
  RECT_3D solid;
  solid.set(xs, ys, zs);
  EXPECT_TRUE(solid == RECT_3D(0, -3, 1, 5, 2, 4));
}

TEST(Rect, TouchingBoxesIntersect) {
  const RECT_2D box(0, 0, 4, 4);
  for (const Row& t : rows()) {
    RECT_2D common;
    EXPECT_EQ(box.intersect(t.rect<RECT_2D>("other")), t.flag("meets"));
    EXPECT_EQ(box.intersect(t.rect<RECT_2D>("other"), common), t.flag("meets"));
    EXPECT_TRUE(common == t.rect<RECT_2D>("common"));
    EXPECT_EQ(box.inside(t.rect<RECT_2D>("other")), t.flag("contains"));
  }
}

TEST(Rect, SeparateBoxesLeaveAnInvertedCommonPart) {
  const RECT_2D box(0, 0, 4, 4);
  for (const Row& t : rows()) {
    RECT_2D common;
    EXPECT_FALSE(box.intersect(t.rect<RECT_2D>("other")));
    EXPECT_FALSE(t.rect<RECT_2D>("other").intersect(box));
    EXPECT_FALSE(box.intersect(t.rect<RECT_2D>("other"), common));
    EXPECT_FALSE(box.inside(t.rect<RECT_2D>("other")));
    EXPECT_TRUE(common.min == t.point("min") && common.max == t.point("max"));
  }
}

TEST(Rect, BordersCountAsInside) {
  EXPECT_TRUE(RECT_2D(0, 0, 1, 1).inside(1, 0));
  EXPECT_FALSE(RECT_2D(0, 0, 1, 1).inside(std::nextafter(1.0, 2.0), 0));
  EXPECT_TRUE(RECT_3D(0, 0, 0, 1, 1, 1).inside(PNT_3D(0, 1, 1)));
  EXPECT_FALSE(RECT_3D(0, 0, 0, 1, 1, 1).inside(PNT_3D(0, 1, -1e-300)));
  EXPECT_FALSE(RECT_3D(0, 0, 0, 1, 1, 1).inside(PNT_3D(0, 1, 1.1)));
}

TEST(Rect, ShrinkUndoesInflate) {
  RECT_2D box(0, 0, 4, 2);
  box.inflate(1, 0.5);
  EXPECT_TRUE(box == RECT_2D(-1, -0.5, 5, 2.5));
  box.shrink(1, 0.5);
  EXPECT_TRUE(box == RECT_2D(0, 0, 4, 2));
}

TEST(Rect, ScaledAndMovedBoxHoldsTheScaledAndMovedPoints) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> real(-10, 10);
  const auto point = [&] { return PNT_3D(real(random), real(random), real(random)); };
  for ([[maybe_unused]] const int i : rounds(300)) {
    PNT_3D a = point(), b = point();
    const PNT_3D center = point(), delta = point();
    const double factor = real(random);
    RECT_3D box(a, b);
    box.scale(center, factor);
    box.move(delta);
    for (PNT_3D* p : {&a, &b}) {
      p->scale(center, factor);
      p->move(delta);
    }
    EXPECT_TRUE(box == RECT_3D(a, b));
  }
}

}  // namespace
