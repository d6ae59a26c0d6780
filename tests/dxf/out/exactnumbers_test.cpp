#include "dxf/out/exactnumbers.h"
#include "support/test.h"

using namespace vek0::detail;

TEST(ExactDegrees, WhatPeopleWriteComesBackAsItWas) {
  for (int tenths = -7200; tenths <= 7200; ++tenths) {
    const double degrees = tenths / 10.0;
    EXPECT_EQ(exactDegrees(readRadians(degrees)), degrees);
  }
}

TEST(ExactDegrees, AnAngleThatWasReadIsReadAgainExactly) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> degrees(-720, 720);
  for (int i = 0; i < 20000; ++i) {
    const double angle = readRadians(degrees(random));
    EXPECT_EQ(readRadians(exactDegrees(angle)), angle);
  }
}

// Some angles equal no number of degrees exactly. They must still be stable after one round trip,
// or else files would change with every saving.
TEST(ExactDegrees, AnyAngleStaysPutAfterOneReading) {
  std::mt19937_64 random(8);
  std::uniform_real_distribution<double> angles(-20, 20);
  for (int i = 0; i < 20000; ++i) {
    const double angle = angles(random), degrees = exactDegrees(angle);
    EXPECT_NEAR(readRadians(degrees), angle, 1e-14);
    EXPECT_EQ(exactDegrees(readRadians(degrees)), degrees);
  }
}

TEST(Steady, NoiseInTheLastBitsIsRoundedAway) {
  std::mt19937_64 random(9);
  std::uniform_real_distribution<double> mantissas(-10, 10), noises(-8e-15, 8e-15);
  for (int i = 0; i < 20000; ++i) {
    const double size = std::pow(10.0, static_cast<int>(random() % 12) - 4);
    const double value = steady(mantissas(random) * size, 10 * size);
    EXPECT_EQ(steady(value + noises(random) * size, 10 * size), value);
    EXPECT_EQ(steady(value, 10 * size), value);
  }
}

TEST(Steady, SizesWithoutDigitsAreLeftAlone) {
  EXPECT_EQ(steady(1.2345e-30, 1e-30), 1.2345e-30);
  EXPECT_EQ(steady(0.0, 0.0), 0.0);
  EXPECT_EQ(steady(5.0, 0.0), 5.0);
}

TEST(SteadyAngle, AFullTurnIsNone) {
  EXPECT_EQ(steadyAngle(readRadians(359.99999999999)), 0);
  EXPECT_EQ(steadyAngle(readRadians(22.5) + 1e-15), readRadians(22.5));
}
