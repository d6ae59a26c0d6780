#include <ctime>

#include "support/test.h"

using vek0::detail::PointerSet;

namespace {

// The pointers are never followed, so any number is valid.
const void* at(std::uintptr_t address) { return reinterpret_cast<const void*>(address); }

}  // namespace

TEST(PointerSet, AgreesWithTheStandardOne) {
  std::mt19937 random(1);
  std::unordered_set<const void*> expected;
  PointerSet set;
  for (int i = 0; i < 200000; ++i) {
    if (random() % 50000 == 0) {
      expected.clear();
      set.clear();
    }
    const void* thing = at(16 * (1 + random() % 40000));
    ASSERT_EQ(set.contains(thing), expected.count(thing) != 0) << i;
    ASSERT_EQ(set.insert(thing), expected.insert(thing).second) << i;
  }
}

TEST(PointerSet, NullIsNeverInIt) {
  PointerSet set;
  EXPECT_FALSE(set.contains(nullptr));
  EXPECT_FALSE(set.insert(nullptr));
  EXPECT_TRUE(set.insert(at(8)));
  EXPECT_FALSE(set.contains(nullptr));
}

// Objects of one size, pages, and larger blocks: no distance between addresses may cause many
// collisions.
TEST(PointerSet, IsFastForEveryDistanceOfAddresses) {
  constexpr int kCount = 1 << 15;
  const auto millisecondsFor = [](std::uintptr_t distance) {
    const std::clock_t start = std::clock();
    PointerSet set;
    for (std::uintptr_t i = 1; i <= kCount; ++i) set.insert(at(i * distance));
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  };
  for (int bits = 0; bits < 14; ++bits) {
    const auto power = std::uintptr_t{1} << bits;
    // Comparing every pair takes more than a second.
    EXPECT_LT(millisecondsFor(power), 200) << power;
    EXPECT_LT(millisecondsFor(power * 12 + 8), 200) << power;
  }
}
