#include "tables/ranktree.h"
#include "support/test.h"

namespace {

// Position of the used slot with `rank` used slots before it, found by counting.
std::size_t scan(const std::vector<int*>& slots, std::size_t rank) {
  std::size_t position = 0;
  for (; position < slots.size(); ++position)
    if (slots[position] && rank-- == 0) break;
  return position;
}

TEST(RankTree, FindsWhatCountingFinds) {
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  int item = 0;
  for (const std::size_t initial :
       {std::size_t{0}, std::size_t{1}, std::size_t{63}, std::size_t{64}}) {
    std::vector<int*> slots(initial, &item);
    vek0::detail::RankTree tree(slots);
    for (int step = 0; step < 300; ++step) {
      const std::size_t at = slots.empty() ? 0 : random() % slots.size();
      if (random() % 2 && !slots.empty() && slots[at]) {
        slots[at] = nullptr;
        tree.remove(at);
      } else {
        const bool used = random() % 4 != 0;
        slots.push_back(used ? &item : nullptr);
        tree.append(used);
      }
      for (std::size_t rank = 0; rank < slots.size(); rank += 1 + random() % 5)
        ASSERT_EQ(tree.select(rank), scan(slots, rank)) << "of " << initial << ", step " << step;
    }
  }
}

}  // namespace
