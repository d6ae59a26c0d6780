#include "entities/blockworld.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

struct Placed {
  PNT_3D position;
  double height, width, rotation, oblique;
};

class AttribPlacement : public testing::Test, protected BlockWorld {
 protected:
  std::unique_ptr<CEntInsert> placed(const PNT_3D& pnt, double sx, double sy, double rotation) {
    return std::unique_ptr<CEntInsert>(insert(nullptr, pnt, sx, sy, rotation));
  }

  Placed toDrawing(const CEntInsertBase& insert, const TEXT_3D& text) {
    const std::unique_ptr<CEntAttrib> attrib(
        ents.createEntAttrib(gestor, nullptr, nullptr, 256, text, u"T", 0, 0));
    Placed p;
    transform_attrib_logic_2_phisic(1, insert, *attrib, p.position, p.height, p.width, p.rotation,
                                    p.oblique);
    return p;
  }

  static TEXT_3D text(const PNT_3D& at, double height, double width, double rotation,
                      double oblique) {
    return TEXT_3D(CTextContext(height, oblique, width, rotation, u"x"), nullptr, at.x, at.y, at.z,
                   0);
  }
};

// A point of the text, at `along` widths and `up` heights in its own plane.
PNT_2D pointOf(const Placed& p, double along, double up) {
  const double c = std::cos(p.rotation), s = std::sin(p.rotation), t = std::tan(p.oblique);
  const double x = p.height * (p.width * along + t * up), y = p.height * up;
  return PNT_2D(p.position.x + c * x - s * y, p.position.y + s * x + c * y);
}

TEST_F(AttribPlacement, KnownPlacements) {
  for (const Row& t : rows()) {
    const auto insert =
        placed(PNT_3D(10, 20, 0), t.real("sx"), t.real("sy"), t.real("insertRotation"));
    const Placed p =
        toDrawing(*insert, text(PNT_3D(1, 0, 5), 2, t.real("width"), t.real("rotation"), 0));
    EXPECT_NEAR(p.position.x, t.real("expectX"), 1e-12);
    EXPECT_NEAR(p.position.y, t.real("expectY"), 1e-12);
    EXPECT_EQ(p.position.z, 5);
    EXPECT_NEAR(p.height, t.real("height"), 1e-12);
    EXPECT_NEAR(p.width, t.real("expectWidth"), 1e-12);
    EXPECT_NEAR(p.rotation, t.real("expectRotation"), 1e-12);
    EXPECT_NEAR(p.oblique, 0, 1e-12);
  }
}

// For texts that are not written backward, every point must appear where the insert's own placement
// puts it; mirrored texts run in the opposite direction on the same line.
TEST_F(AttribPlacement, RandomTextsGoThereAndBack) {
  std::mt19937 random(20240607);
  const auto between = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  const auto scale = [&] { return between(0.1, 5) * (random() % 2 ? 1 : -1); };
  double worst = 0;
  for ([[maybe_unused]] const int i : rounds(20000)) {
    const double sx = scale(), sy = random() % 4 ? scale() : sx;
    const auto insert =
        placed(PNT_3D(between(-9, 9), between(-9, 9), between(-9, 9)), sx, sy, between(0, 2 * kPi));
    const TEXT_3D logical = text(PNT_3D(between(-9, 9), between(-9, 9), between(-9, 9)),
                                 between(0.1, 5), scale(), between(0, 2 * kPi), between(-1, 1));
    const CTextContext& before = logical.getContext();
    const Placed p = toDrawing(*insert, logical);
    EXPECT_GE(p.rotation, 0);
    EXPECT_LT(p.rotation, 2 * kPi);

    const CEntInsertMatrix matrix(1, *insert, 0, 0);
    const Placed own{logical, before.getHeight(), before.getWidthScale(), before.getRotate(),
                     before.getOblique()};
    const PNT_2D corner = pointOf(own, 1, 1);
    PNT_3D expected;
    matrix.transform(PNT_3D(corner.x, corner.y, logical.z), expected);
    const PNT_2D got = pointOf(p, 1, 1);
    EXPECT_NEAR(got.x, expected.x, 1e-10);
    EXPECT_NEAR(got.y, expected.y, 1e-10);

    TEXT_3D back = text(p.position, p.height, p.width, p.rotation, p.oblique);
    transform_attrib_phisic_2_logic(1, *insert, back);
    const CTextContext& after = back.getContext();
    const double turn = std::remainder(after.getRotate() - before.getRotate(), 2 * kPi);
    for (const double error : {back.dist(logical), after.getHeight() - before.getHeight(),
                               after.getWidthScale() - before.getWidthScale(), turn,
                               after.getOblique() - before.getOblique()})
      worst = std::max(worst, std::fabs(error));
  }
  EXPECT_LT(worst, 1e-12);
}

// Rounding would change drawings that are merely loaded and saved.
TEST_F(AttribPlacement, APlainInsertChangesNoDigit) {
  const auto insert = placed(PNT_3D(0, 0, 0), 1, 1, 0);
  const TEXT_3D logical = text(PNT_3D(0.1, 0.7, 0.3), 2.3, 0.9, 1.1, 0.2);
  TEXT_3D back = logical;
  transform_attrib_phisic_2_logic(1, *insert, back);
  EXPECT_EQ(back, logical);
}

TEST_F(AttribPlacement, FixedInsertsArePlacedByThePixelSize) {
  const std::unique_ptr<CEntFixedInsert> insert(ents.createEntFixedInsert(
      gestor, nullptr, nullptr, 256, nullptr, PNT_3D(10, 0, 0), 10, 50, 0, 0));
  TEXT_3D back = text(PNT_3D(15, 0, 0), 10, 1, 0, 0);
  transform_attrib_phisic_2_logic(1, *insert, back);
  EXPECT_DOUBLE_EQ(back.x, 1);
  EXPECT_DOUBLE_EQ(back.getContext().getHeight(), 2);
}

}  // namespace
