#include "support/test.h"
#include "vek0draw/draw.h"

using namespace vek0::test;

namespace {

constexpr RGB_COLOR kWhite{255, 255, 255}, kDark{0, 0, 0};

}  // namespace

TEST(Palette, KnownColours) {
  const struct {
    const char* name;
    int index;
    RGB_COLOR color;
  } cases[] = {
      {"red", 1, {255, 0, 0}},
      {"magenta", 6, {255, 0, 255}},
      {"grey", 8, {128, 128, 128}},
      {"first hue is red", 10, {255, 0, 0}},
      {"half saturated", 11, {255, 127, 127}},
      {"darker", 12, {165, 0, 0}},
      {"orange", 30, {255, 127, 0}},
      {"hues come round", 240, {255, 0, 63}},
      {"last grey", 255, {255, 255, 255}},
      {"white paper, 7", 7, kDark},
      {"no colour of its own", 256, kDark},
      {"negative", -3, kDark},
  };
  for (const auto& t : named(cases)) {
    const RGB_COLOR got = paletteColor(t.index, kWhite);
    EXPECT_EQ(int{got.r}, int{t.color.r});
    EXPECT_EQ(int{got.g}, int{t.color.g});
    EXPECT_EQ(int{got.b}, int{t.color.b});
  }
}

TEST(Palette, SevenIsSeenOnAnyBackground) {
  EXPECT_EQ(paletteColor(7, kDark), kWhite);
  EXPECT_EQ(paletteColor(7, {255, 255, 0}), kDark);
  EXPECT_EQ(paletteColor(7, {0, 0, 255}), kWhite);
}
