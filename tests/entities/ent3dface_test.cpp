#include "entities/scene.h"
#include "support/test.h"

namespace {

std::unique_ptr<CEnt3DFace> face(Scene& s, const std::string& corners, long flags = 0) {
  const auto p = pts(corners);
  return std::unique_ptr<CEnt3DFace>(
      s.factory.createEnt3DFace(s.gestor, nullptr, nullptr, 7, p[0], p[1], p[2], p[3], flags, 0));
}

TEST(Ent3DFace, TriangleBitFollowsCornersTwoAndThree) {
  Scene s;
  const auto f = face(s, "0,0 1,0 1,1 1,1");
  EXPECT_TRUE(f->isTriangular());
  f->setVertex(0, PNT_3D(-5, 0, 0));
  f->setVertex(1, PNT_3D(1, 1, 0));
  EXPECT_TRUE(f->isTriangular());
  f->setVertex(3, PNT_3D(1, 1, 1e-300));
  EXPECT_FALSE(f->isTriangular()) << "comparison is exact";
  f->setVertex(2, PNT_3D(1, 1, 1e-300));
  EXPECT_TRUE(f->isTriangular());
}

TEST(Ent3DFace, FlagsOfTheConstructorLoseOnlyAWrongTriangleBit) {
  Scene s;
  const auto f = face(s, "0,0 1,0 1,1 0,1", 5 | 128 | 64);
  EXPECT_FALSE(f->isTriangular());
  EXPECT_EQ(f->getFlags(), 5);
  for (const long i : {0L, 2L}) EXPECT_FALSE(f->isEdgeVisib(i));
  for (const long i : {1L, 3L}) EXPECT_TRUE(f->isEdgeVisib(i));
}

TEST(Ent3DFace, SetFlagsKeepsTheTriangleBit) {
  Scene s;
  for (const char* corners : {"0,0 1,0 1,1 0,1", "0,0 1,0 1,1 1,1"}) {
    const auto f = face(s, corners);
    const bool wasTriangle = f->isTriangular();
    f->setFlags(255);
    EXPECT_EQ(f->getFlags(), 15);
    EXPECT_EQ(f->isTriangular(), wasTriangle);
  }
}

TEST(Ent3DFace, EdgeIndicesThatNameNoBit) {
  Scene s;
  const auto f = face(s, "0,0 1,0 1,1 0,1", 15);
  for (const long i : named<long>({-1L, 32L, 64L, 1000L})) {
    EXPECT_TRUE(f->isEdgeVisib(i));
    f->setEdgeVisib(i, false);
    EXPECT_TRUE(f->isEdgeVisib(i));
  }
  EXPECT_EQ(f->getFlags(), 15);
  f->setEdgeVisib(1, true);
  EXPECT_EQ(f->getFlags(), 13);
}

TEST(Ent3DFace, EdgesRunRound) {
  Scene s;
  const auto f = face(s, "0,0 1,0 1,1 0,1");
  LINE_3D edge(0, 0, 0, 0, 0, 0);
  f->getLine(3, edge);
  EXPECT_EQ(edge.p1, PNT_3D(0, 1, 0));
  EXPECT_EQ(edge.p2, PNT_3D(0, 0, 0));
}

TEST(Ent3DFace, CornersOutsideAreAssertedAndClamped) {
  Scene s;
  const vek0::test::QuietAsserts asserts;
  const auto f = face(s, "0,0 1,0 1,1 0,1");
  EXPECT_EQ(f->getVertex(4), PNT_3D(0, 1, 0));
  EXPECT_EQ(f->getVertex(-1), PNT_3D(0, 0, 0));
  EXPECT_EQ(asserts.failures().size(), 2U);
}

TEST(Ent3DFace, SetTriangularLeavesTheExtents) {
  Scene s;
  const auto f = face(s, "0,0 1,0 1,1 -5,1");
  f->setTriangular();
  EXPECT_TRUE(f->isTriangular());
  EXPECT_EQ(f->getVertex(3), f->getVertex(2));
  EXPECT_EQ(f->getBdry().min.x, -5);
  f->calcBdry();
  EXPECT_EQ(f->getBdry().min.x, 0);
}

}  // namespace
