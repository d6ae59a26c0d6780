#include "support/test.h"

using vek0::detail::kPi;

namespace {

struct Named {
  std::string name;
  std::unique_ptr<IProjector> projector;
};

std::vector<Named> allProjectors() {
  std::vector<Named> all;
  all.push_back({"plan", std::make_unique<CPOProjector>()});
  all.push_back({"front", std::make_unique<CPVProjector>()});
  all.push_back({"side", std::make_unique<CPLProjector>()});
  all.push_back({"turned", std::make_unique<CPORotatedProjector>(0.7, 12, -5)});
  all.push_back({"turned back", std::make_unique<CPORotatedProjector>(-2.5, 0, 1)});
  all.push_back({"parallel", std::make_unique<CParalProjector>(0.8, -0.3, 0.5, 0.6)});
  all.push_back({"mirrored", std::make_unique<CParalProjector>(-1, 0, 0, 0.5)});
  return all;
}

class Random {
 public:
  double coordinate() { return m_coordinates(m_engine); }
  PNT_3D point() {
    const double x = coordinate(), y = coordinate();
    return {x, y, coordinate()};
  }

 private:
  std::mt19937 m_engine{20};
  std::uniform_real_distribution<double> m_coordinates{-1000, 1000};
};

PNT_3D corner(const RECT_3D& box, int i) {
  return {i & 1 ? box.max.x : box.min.x, i & 2 ? box.max.y : box.min.y,
          i & 4 ? box.max.z : box.min.z};
}

}  // namespace

TEST(Projector, KnownPoints) {
  const CPOProjector plan;
  const CPVProjector front;
  const CPLProjector side;
  const CPORotatedProjector quarter(kPi / 2, 0, 0);
  const CPORotatedProjector aboutCentre(kPi / 2, 10, 20);
  const CParalProjector parallel(1, 2, 3, 4);
  const struct {
    const char* name;
    const IProjector& projector;
    PNT_3D p;
    PNT_2D flat;
    double depth;
  } cases[] = {
      {"plan", plan, {1, 2, 3}, {1, 2}, 3},
      {"front", front, {1, 2, 3}, {1, 3}, 2},
      {"side", side, {1, 2, 3}, {-2, 3}, 1},
      {"quarter turn", quarter, {1, 0, 0}, {0, -1}, 0},
      {"the centre is the origin", aboutCentre, {10, 20, 7}, {0, 0}, 7},
      {"right of the centre", aboutCentre, {11, 20, 7}, {0, -1}, 7},
      {"parallel", parallel, {1, 10, 5}, {31, 47}, 5},
  };
  for (const auto& t : named(cases)) {
    PNT_2D flat;
    double depth = 0;
    t.projector.to2D(t.p, flat, depth);
    EXPECT_NEAR(flat.x, t.flat.x, 1e-12);
    EXPECT_NEAR(flat.y, t.flat.y, 1e-12);
    EXPECT_EQ(depth, t.depth);
    PNT_3D back;
    t.projector.to3D(t.flat, t.depth, back);
    EXPECT_NEAR(back.dist(t.p), 0, 1e-12);
  }
}

TEST(Projector, UnprojectingUndoesProjecting) {
  Random random;
  for (const auto& [name, projector] : allProjectors()) {
    SCOPED_TRACE(name);
    for (int i = 0; i < 200; ++i) {
      const PNT_3D p = random.point();
      PNT_2D flat, plain;
      double depth = 0;
      projector->to2D(p, flat, depth);
      projector->to2D(p, plain);
      EXPECT_EQ(plain, flat);
      PNT_3D back;
      projector->to3D(flat, depth, back);
      EXPECT_LT(back.dist(p), 1e-9);
    }
  }
}

TEST(Projector, TheBoxIsTheSmallestThatHoldsTheCorners) {
  Random random;
  for (const auto& [name, projector] : allProjectors()) {
    SCOPED_TRACE(name);
    for (int i = 0; i < 100; ++i) {
      const RECT_3D box(random.point(), random.point());
      RECT_2D expected, flat;
      expected.initRegion();
      for (int k = 0; k < 8; ++k) {
        PNT_2D p;
        projector->to2D(corner(box, k), p);
        expected.updateRegion(p);
      }
      projector->to2D(box, flat);
      EXPECT_NEAR(flat.min.dist(expected.min), 0, 1e-9);
      EXPECT_NEAR(flat.max.dist(expected.max), 0, 1e-9);
    }
  }
}

TEST(Projector, AnEmptyBoxStaysEmpty) {
  RECT_3D empty;
  empty.initRegion();
  RECT_2D none;
  none.initRegion();
  for (const auto& [name, projector] : allProjectors()) {
    RECT_2D flat(0, 0, 1, 1);
    projector->to2D(empty, flat);
    EXPECT_EQ(flat, none) << name;
  }
}

TEST(Projector, LinesKeepTheDepthOfEachEnd) {
  const CPLProjector side;
  const LINE_3D line(1, 2, 3, 4, 5, 6);
  LINE_2D flat;
  side.to2D(line, flat);
  EXPECT_EQ(flat, LINE_2D(-2, 3, -5, 6));
  LINE_3D deep;
  side.to2D(line, deep);
  EXPECT_EQ(deep, LINE_3D(-2, 3, 1, -5, 6, 4));
  LINE_3D inPlace = line;
  side.to2D(inPlace, inPlace);
  EXPECT_EQ(inPlace, deep);
}

TEST(Projector, CoefficientsThatFlattenThePlanHaveNoWayBack) {
  const CParalProjector flat(1, 2, 2, 4);
  double x = 0, y = 0, z = 0;
  flat.to3D(1, 1, 5, x, y, z);
  EXPECT_FALSE(std::isfinite(x));
  EXPECT_EQ(z, 5);
}
