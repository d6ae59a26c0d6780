#include "recorder.h"
#include "support/test.h"

using vek0::DecodedText;
using vek0::decodeTextCodes;

using vek0::detail::kPi;

namespace {

constexpr double kAdvance = 0.9, kDescent = 1.0 / 3;  // default metrics

// The point of the text's box at these fractions of its length and height, in drawing coordinates.
PNT_2D corner(const Thing& text, double along, double up) {
  const double letters = static_cast<double>(text.string.size());
  const PNT_2D p = text.matrix.apply(along * letters * kAdvance, up);
  return {p.x, 1000 - p.y};
}

Recorder draw(Scene& scene, const zim::WString& string, double oblique, double wide, double rotate,
              long justification) {
  scene.add(createEntText(*scene.data,
                          TEXT_3D(string, getStyleStandard(*scene.data), 500, 500, 0, 10, oblique,
                                  wide, rotate, justification),
                          0));
  return scene.draw();
}

}  // namespace

// The insertion point is the point of the text's box that the justification names.
TEST(Texts, AllJustifications) {
  const double along[] = {0, 0.5, 1};
  for (const Row& way : rows()) {
    for (const long i : rounds<long>(TEXT_3D::kJustifications)) {
      Scene scene;
      const Recorder drawn = draw(scene, u"abcd", 0, way.real("wide"), way.real("rotate"), i);
      ASSERT_EQ(drawn.things.size(), 1U);
      const double up[] = {0, 1, 0.5, -kDescent};  // three each: base, top, middle, bottom
      EXPECT_LT(corner(drawn.things[0], along[i % 3], up[i / 3]).dist(PNT_2D(500, 500)), 1e-9);
    }
  }
}

// At the top, in the middle and at the bottom of the column, with marks on their letters.
TEST(Texts, VerticalStyles) {
  for (const long i : rounds<long>(3)) {
    Scene scene;
    getStyleStandard(*scene.data)->setHoriz(true);
    const Recorder drawn = draw(scene, u"ae\u0301%%099", 0, 1, i == 0 ? 1.5 * kPi : 0, i);
    ASSERT_EQ(drawn.things.size(), 3U);
    const std::string letters[] = {"a", "e\xCC\x81", "c"};
    const double length = 10 * (1 + 2 * 1.5), top = 500 + length * static_cast<double>(i) / 2;
    for (std::size_t k = 0; k < 3; ++k) {
      const Thing& letter = drawn.things[k];
      EXPECT_EQ(letter.string, letters[k]);
      const double y = top - 15 * static_cast<double>(k);
      const PNT_2D middle = letter.matrix.apply(kAdvance * (k == 1 ? 2 : 1) / 2, 1);
      EXPECT_LT(PNT_2D(middle.x, 1000 - middle.y).dist(PNT_2D(500, y)), 1e-9) << i;
    }
    const RECT_3D box = scene.data->getEntTable().getEntityTbl().front()->getBdry();
    EXPECT_NEAR(box.max.y, top, 1e-9);
    EXPECT_NEAR(box.min.y, top - length - 10 * kDescent, 1e-9);
    EXPECT_NEAR(box.max.x, 509, 1e-9) << "as wide as the letter with its mark";
  }
}

TEST(Texts, HeightWidthAndDirection) {
  for (const Row& t : rows()) {
    Scene scene;
    const Recorder drawn =
        draw(scene, u"abcd", t.real("oblique"), t.real("wide"), t.real("rotate"), 0);
    ASSERT_EQ(drawn.things.size(), 1U);
    const AFFINE_2D& m = drawn.things[0].matrix;
    EXPECT_LT(PNT_2D(m.a, -m.b).dist(t.point("x")), 1e-9);
    EXPECT_LT(PNT_2D(m.c, -m.d).dist(t.point("y")), 1e-9);
  }
}

TEST(Texts, MirroredInsertsMirrorThem) {
  Scene scene;
  CBlock* block = scene.block(
      u"B", {createEntText(*scene.data, TEXT_3D(u"ab", nullptr, 0, 0, 0, 10, 0, 1, 0, 0), 0)});
  scene.add(scene.insert(*block, 500, 500, -2, 3));
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.things.size(), 1U);
  const AFFINE_2D& m = drawn.things[0].matrix;
  EXPECT_LT(PNT_2D(m.a, m.b).dist(PNT_2D(-20, 0)), 1e-9);
  EXPECT_LT(PNT_2D(m.c, m.d).dist(PNT_2D(0, -30)), 1e-9);
}

TEST(Texts, Codes) {
  for (const Row& t : rows()) {
    const DecodedText decoded = decodeTextCodes(t.wide("text"));
    EXPECT_EQ(decoded.string.toUtf8(), t.text("seen")) << t.wide("text").toUtf8();
  }
}

TEST(Texts, LinesUnderOverAndThroughThem) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.wide("text").toUtf8());
    Scene scene;
    const Recorder drawn = draw(scene, t.wide("text"), 0, 1, 0, 0);
    ASSERT_EQ(drawn.count(Thing::Stroke), t.count("rules"));
    if (t.count("rules") == 0) continue;
    const auto& rule = drawn.things[1].points;
    EXPECT_NEAR(rule[0].x, 500 + t.real("from") * kAdvance * 10, 1e-9);
    EXPECT_NEAR(rule[1].x, 500 + t.real("to") * kAdvance * 10, 1e-9);
    EXPECT_EQ(rule[0].y < 500 - 10, t.text("side") == "over");
    EXPECT_EQ(rule[0].y > 500, t.text("side") == "under");
  }
}

// Justification measures the decoded text, without its control codes.
TEST(Texts, CodesDoNotCountForJustification) {
  Scene scene;
  const Recorder drawn = draw(scene, u"%%uab%%068", 0, 1, 0, 2);
  ASSERT_GE(drawn.things.size(), 1U);
  EXPECT_LT(corner(drawn.things[0], 1, 0).dist(PNT_2D(500, 500)), 1e-9);
}

// Accents and overlines extend above the text's metrics.
TEST(Texts, LettersThatReachIntoTheWindowAreSeen) {
  Scene scene;
  scene.add(createEntText(
      *scene.data, TEXT_3D(u"%%oabc", getStyleStandard(*scene.data), 500, -110, 0, 100, 0, 1, 0, 0),
      0));
  EXPECT_EQ(scene.draw().things.size(), 2U);
}
