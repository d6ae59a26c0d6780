#include "entities/blockworld.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

class InsertMatrix : public testing::Test, protected BlockWorld {
 protected:
  std::unique_ptr<CEntInsert> random(std::mt19937& engine, CBlock* block = nullptr) {
    const auto number = [&] { return std::uniform_real_distribution<double>(-4, 4)(engine); };
    std::unique_ptr<CEntInsert> made(
        insert(block, PNT_3D(number(), number(), number()), number(), number(), number()));
    made->setArray(3, 2, number(), number());
    return made;
  }
};

void expectNear(const PNT_3D& got, const PNT_3D& expected, double within = 1e-12) {
  EXPECT_NEAR(got.x, expected.x, within);
  EXPECT_NEAR(got.y, expected.y, within);
  EXPECT_NEAR(got.z, expected.z, within);
}

TEST_F(InsertMatrix, TakesPointsRelativeToTheBaseScalesTurnsAndMoves) {
  CEntInsertMatrix matrix;
  PNT_3D p(1, 2, 3);
  matrix.transform(p, p);
  EXPECT_EQ(p, PNT_3D(1, 2, 3));
  matrix.set(PNT_3D(1, 1, 1), 2, 3, 4, kPi / 2, PNT_3D(100, 200, 300));
  matrix.transform(p, p);
  expectNear(p, PNT_3D(100 - 3, 200, 308));
}

TEST_F(InsertMatrix, IsotropicOnlyWhenScalesAreExactlyEqual) {
  CEntInsertMatrix matrix;
  const PNT_3D origin(0, 0, 0);
  matrix.set(origin, 2, 2, 1, kPi / 2, origin);
  EXPECT_TRUE(matrix.IsIsotropicXY());
  EXPECT_EQ(matrix.getScale(), 2);
  EXPECT_EQ(matrix.getRotate(), kPi / 2);
  CEntInsertMatrix turned;
  turned.set(origin, -3, -3, 1, 1, origin);
  const CEntInsertMatrix both = matrix * turned;
  EXPECT_TRUE(both.IsIsotropicXY());
  EXPECT_EQ(both.getScale(), -6);
  EXPECT_EQ(both.getRotate(), kPi / 2 + 1);
  matrix.set(origin, 2, 2.0000001, 1, kPi / 2, origin);
  EXPECT_FALSE(matrix.IsIsotropicXY());
  EXPECT_FALSE((matrix * turned).IsIsotropicXY());
}

// Columns run along the insert's x axis, rows along its y axis; scales do not affect spacing.
TEST_F(InsertMatrix, CellsAreOffsetAlongTheTurnedAxes) {
  const std::unique_ptr<CEntInsert> ent(insert(nullptr, PNT_3D(10, 20, 0), 5, 7, kPi / 2));
  ent->setArray(2, 3, 100, 1000);
  for (const Row& t : rows()) {
    PNT_3D p(0, 0, 0);
    CEntInsertMatrix(1, *ent, t.whole<long>("row"), t.whole<long>("col")).transform(p, p);
    expectNear(p, t.point("expect"), 1e-9);
  }
}

// Entities of a block are already stored relative to its base point.
TEST_F(InsertMatrix, OnlyExternalReferencesCountTheirBasePoint) {
  const std::unique_ptr<CBlock> plain(block("B", PNT_3D(1, 2, 3)));
  const std::unique_ptr<CEntInsert> ent(insert(plain.get()));
  EXPECT_EQ(CEntInsertMatrix::basePoint(*ent), PNT_3D(0, 0, 0));
}

TEST_F(InsertMatrix, NestedInsertsComposeAsPointsAreMappedOneByOne) {
  std::mt19937 engine(7);
  for ([[maybe_unused]] const int i : rounds(500)) {
    const auto a = random(engine), b = random(engine), c = random(engine);
    CEntInsertStack stack(1);
    stack.Push(a.get(), 1, 2);
    stack.Push(b.get(), 0, 1);
    stack.Push(c.get(), 1, 0);
    PNT_3D p(0.3, -0.8, 1.7), stepped = p, mapped;
    CEntInsertMatrix(1, *c, 1, 0).transform(stepped, stepped);
    CEntInsertMatrix(1, *b, 0, 1).transform(stepped, stepped);
    CEntInsertMatrix(1, *a, 1, 2).transform(stepped, stepped);
    stack.GetCurMatrix().transform(p, mapped);
    expectNear(mapped, stepped, 1e-9);
    PNT_3D back;
    if (stack.GetCurMatrix().invert(mapped, back)) expectNear(back, p, 1e-6);
  }
}

TEST_F(InsertMatrix, AFlatPlacementHasNoInverse) {
  CEntInsertMatrix matrix;
  matrix.set(PNT_3D(0, 0, 0), 1, 0, 1, 0, PNT_3D(0, 0, 0));
  PNT_3D p(1, 2, 3);
  EXPECT_FALSE(matrix.invert(p, p));
  EXPECT_EQ(p, PNT_3D(1, 2, 3));
}

TEST_F(InsertMatrix, AnEmptyBoxStaysEmpty) {
  CEntInsertMatrix matrix;
  matrix.set(PNT_3D(0, 0, 0), -1, -1, -1, 1, PNT_3D(5, 5, 5));
  RECT_3D box;
  box.initRegion();
  matrix.transform(box, box);
  EXPECT_FALSE(box.validRegion());
  box.set(0, 0, 0, 1, 1, 1);
  matrix.set(PNT_3D(0, 0, 0), -1, 2, -3, 0, PNT_3D(5, 5, 5));
  matrix.transform(box, box);
  EXPECT_EQ(box, RECT_3D(4, 5, 2, 5, 7, 5));
}

}  // namespace
