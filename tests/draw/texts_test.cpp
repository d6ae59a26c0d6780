#include <gtest/gtest.h>

#include <cmath>

#include "recorder.h"
#include "textcodes.h"

using vek0::detail::DecodedText;
using vek0::detail::decodeTextCodes;
using vek0::test::Recorder;
using vek0::test::Scene;
using vek0::test::seen;
using vek0::test::Thing;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kAdvance = 0.9, kDescent = 1.0 / 3;  // of the default measures

// Corner of the text's box by shares of its length and height, in drawing coordinates.
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

// The insertion point is that point of the text's box which the justification names.
TEST(Texts, AllJustifications) {
  const double along[] = {0, 0.5, 1};
  const struct {
    const char* name;
    double wide, rotate;
  } ways[] = {
      {"plain", 1, 0},     {"turned", 1, 0.7},       {"narrow", 0.5, 0},
      {"backward", -1, 0}, {"upside down", -1, kPi},
  };
  for (const auto& way : ways) {
    for (long i = 0; i < TEXT_3D::kJustifications; ++i) {
      SCOPED_TRACE(testing::Message() << way.name << ' ' << i);
      Scene scene;
      const Recorder drawn = draw(scene, u"abcd", 0, way.wide, way.rotate, i);
      ASSERT_EQ(drawn.things.size(), 1U);
      const double up[] = {0, 1, 0.5, -kDescent};  // by rows of three: base, top, middle, bottom
      EXPECT_LT(corner(drawn.things[0], along[i % 3], up[i / 3]).dist(PNT_2D(500, 500)), 1e-9);
    }
  }
}

TEST(Texts, HeightWidthAndDirection) {
  const struct {
    const char* name;
    double oblique, wide, rotate;
    PNT_2D x, y;  // what a unit of text space becomes in the drawing
  } cases[] = {
      {"plain", 0, 1, 0, {10, 0}, {0, 10}},          {"wide", 0, 2, 0, {20, 0}, {0, 10}},
      {"upwards", 0, 1, kPi / 2, {0, 10}, {-10, 0}}, {"oblique", kPi / 4, 1, 0, {10, 0}, {10, 10}},
      {"backward", 0, -1, 0, {-10, 0}, {0, 10}},     {"upside down", 0, -1, kPi, {10, 0}, {0, -10}},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    Scene scene;
    const Recorder drawn = draw(scene, u"abcd", t.oblique, t.wide, t.rotate, 0);
    ASSERT_EQ(drawn.things.size(), 1U);
    const AFFINE_2D& m = drawn.things[0].matrix;
    EXPECT_LT(PNT_2D(m.a, -m.b).dist(t.x), 1e-9);
    EXPECT_LT(PNT_2D(m.c, -m.d).dist(t.y), 1e-9);
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
  const struct {
    const char16_t* text;
    const char* seen;
  } cases[] = {
      {u"45%%d", "45\u00B0"},
      {u"%%D%%P%%C", "\u00B0\u00B1\u00D8"},
      {u"100%%%", "100%"},
      {u"%%065%%066", "AB"},
      {u"%%u%%o%%O", ""},
      {u"%%uab%%uc", "abc"},
      {u"%%x", "%%x"},
      {u"%%", "%%"},
      {u"%", "%"},
      {u"%%06", "%%06"},
      {u"%%000", ""},
      {u"%%%%d", "%%d"},
      {u"a%%", "a%%"},
  };
  for (const auto& t : cases) {
    const DecodedText decoded = decodeTextCodes(t.text);
    EXPECT_EQ(decoded.string.toUtf8(), t.seen) << zim::WString(t.text).toUtf8();
  }
}

TEST(Texts, LinesUnderAndOverThem) {
  const struct {
    const char16_t* text;
    std::size_t rules;
    double from, to;  // letters of the first
    bool over;
  } cases[] = {
      {u"ab%%ucd%%uef", 1, 2, 4, false},
      {u"%%oabc", 1, 0, 3, true},
      {u"%%ua%%ob%%uc", 2, 0, 2, false},
      {u"%%u%%uabc", 0, 0, 0, false},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(zim::WString(t.text).toUtf8());
    Scene scene;
    const Recorder drawn = draw(scene, t.text, 0, 1, 0, 0);
    ASSERT_EQ(drawn.count(Thing::Stroke), t.rules);
    if (t.rules == 0) continue;
    const auto& rule = drawn.things[1].points;
    EXPECT_NEAR(rule[0].x, 500 + t.from * kAdvance * 10, 1e-9);
    EXPECT_NEAR(rule[1].x, 500 + t.to * kAdvance * 10, 1e-9);
    EXPECT_EQ(rule[0].y < 500 - 10, t.over);
    EXPECT_EQ(rule[0].y > 500, !t.over);
  }
}

// Centerd is what is read, not what is written.
TEST(Texts, CodesDoNotCountForJustification) {
  Scene scene;
  const Recorder drawn = draw(scene, u"%%uab%%068", 0, 1, 0, 2);
  ASSERT_GE(drawn.things.size(), 1U);
  EXPECT_LT(corner(drawn.things[0], 1, 0).dist(PNT_2D(500, 500)), 1e-9);
}

// Accents and overlines reach above the measures of a text.
TEST(Texts, LettersThatReachIntoTheWindowAreSeen) {
  Scene scene;
  scene.add(createEntText(
      *scene.data, TEXT_3D(u"%%oabc", getStyleStandard(*scene.data), 500, -110, 0, 100, 0, 1, 0, 0),
      0));
  EXPECT_EQ(scene.draw().things.size(), 2U);
}
