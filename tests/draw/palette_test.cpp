#include "support/test.h"
#include "vek0draw/draw.h"

namespace {

constexpr RGB_COLOR kWhite{255, 255, 255}, kDark{0, 0, 0};

}  // namespace

TEST(Palette, KnownColors) {
  for (const Row& t : rows()) {
    const RGB_COLOR got = paletteColor(t.whole("index"), kWhite);
    EXPECT_EQ((std::vector<double>{1. * got.r, 1. * got.g, 1. * got.b}), t.reals("rgb"));
  }
}

TEST(Palette, SevenIsSeenOnAnyBackground) {
  EXPECT_EQ(paletteColor(7, kDark), kWhite);
  EXPECT_EQ(paletteColor(7, {255, 255, 0}), kDark);
  EXPECT_EQ(paletteColor(7, {0, 0, 255}), kWhite);
}
