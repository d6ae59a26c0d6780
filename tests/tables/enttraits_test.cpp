#include <thread>

#include "support/test.h"

using vek0::detail::EntTraitsRef;

namespace {

ENT_TRAITS traitsOf(unsigned number) {
  ENT_TRAITS traits;
  traits.trueColor = number % 5;
  traits.lineweight = static_cast<short>(number / 5 % 7);
  traits.opacity = static_cast<short>(number / 35 % 3);
  traits.isVisible = number % 2 == 0;
  traits.ltypeScale = 1 + number / 105 % 4;
  traits.thickness = number / 420;
  return traits;
}

// Takes, copies and releases references at random; each always has the traits that it was given.
void keepRandomRefs(unsigned seed, long& faults) {
  std::mt19937 random(seed);
  std::vector<std::pair<unsigned, EntTraitsRef>> held;
  for (int i = 0; i < 40000; ++i) {
    const auto number = static_cast<unsigned>(random() % 600);
    if (held.size() < 50) {
      held.emplace_back(number, EntTraitsRef(traitsOf(number)));
    } else if (number % 3 == 0) {
      held[number % 50] = held[random() % 50];
    } else {
      std::swap(held[number % 50], held.back());
      held.pop_back();
    }
    for (const auto& [given, ref] : held) faults += ref.get() != traitsOf(given);
  }
}

}  // namespace

TEST(EntTraits, EqualOnesAreShared) {
  static_assert(sizeof(EntTraitsRef) == 4);
  EXPECT_TRUE(EntTraitsRef(ENT_TRAITS()).isDefault());
  std::vector<EntTraitsRef> first, second;
  for (unsigned i = 0; i < 3000; ++i) first.emplace_back(traitsOf(i));
  for (unsigned i = 0; i < 3000; ++i) second.emplace_back(traitsOf(i));
  EXPECT_TRUE(first == second);
  for (unsigned i = 0; i < 3000; ++i) EXPECT_EQ(first[i] == first[0], traitsOf(i) == traitsOf(0));
}

TEST(EntTraits, ReferencesOfManyThreadsKeepTheirTraits) {
#ifdef __EMSCRIPTEN__
  GTEST_SKIP() << "no threads";
#endif
  std::array<long, 4> faults{};
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < faults.size(); ++i)
    threads.emplace_back(keepRandomRefs, i, std::ref(faults[i]));
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(faults, testing::Each(0));
}
