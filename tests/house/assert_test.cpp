#include "vek0core/assert.h"

#include <gtest/gtest.h>

#include "support/quietasserts.h"

TEST(Assert, AReturningHandlerLetsTheLibraryGoOn) {
  const vek0::test::QuietAsserts quiet;
  const int answer = 41;
  ZORA_ASSERT(answer == 42);
  ZORA_ASSERT(answer == 41);
  ASSERT_EQ(quiet.failures().size(), 1u);
  EXPECT_EQ(quiet.failures()[0], "answer == 42");
}

TEST(AssertDeathTest, TheDefaultPrintsTheProjectPathAndEnds) {
  EXPECT_DEATH_IF_SUPPORTED(ZORA_ASSERT(1 + 1 == 3),
                            "^tests/house/assert_test.cpp:.+ assertion failure:\n1 . 1 == 3");
}
