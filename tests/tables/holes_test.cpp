// Restoring items between their old neighbors, in arrays that were compacted meanwhile.
#include "tables/holes.h"
#include "support/test.h"

namespace {

// Numbered items in an array with holes; each stores its position, as in real use.
class Shelf {
 public:
  explicit Shelf(std::size_t count) : m_things(count) {
    for (std::size_t i = 0; i < count; ++i) m_things[i] = {i, i};
    for (Thing& thing : m_things) m_slots.push_back(&thing);
  }

  void remove(std::size_t number) {
    m_slots[m_things[number].pos] = nullptr;
    ++m_holes;
  }
  // Restores before the next higher number that is present: `present` has an 'x' for each. It is a
  // string because its search is fast even without optimization.
  void restore(std::size_t number, const std::string& present) {
    const std::size_t next = present.find('x', number + 1);
    const std::size_t at = next != std::string::npos ? m_things[next].pos : m_slots.size();
    const std::size_t slot =
        vek0::detail::holeBefore(m_slots, at, m_holes, [this](Thing& thing, std::size_t pos) {
          thing.pos = pos;
          ++m_moves;
        });
    ASSERT_EQ(m_slots[slot], nullptr);
    m_slots[slot] = &m_things[number];
    m_things[number].pos = slot;
    --m_holes;
  }
  void closeUp() {
    m_slots.erase(std::remove(m_slots.begin(), m_slots.end(), nullptr), m_slots.end());
    for (std::size_t i = 0; i < m_slots.size(); ++i) m_slots[i]->pos = i;
    m_holes = 0;
  }

  // Whether numbers ascend, positions are correct, and the count of holes is right.
  bool isSound() const {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
      if (m_slots[i] == nullptr) continue;
      if (m_slots[i]->pos != i) return false;
      numbers.push_back(m_slots[i]->number);
    }
    return std::is_sorted(numbers.begin(), numbers.end()) &&
           numbers.size() + m_holes == m_slots.size();
  }
  std::size_t size() const { return m_slots.size(); }
  std::size_t moves() const { return m_moves; }

 private:
  struct Thing {
    std::size_t number, pos;
  };
  std::vector<Thing> m_things;
  std::vector<Thing*> m_slots;
  std::size_t m_holes = 0, m_moves = 0;
};

std::vector<std::size_t> shuffled(std::size_t count, unsigned seed) {
  std::vector<std::size_t> order(count);
  for (std::size_t i = 0; i < count; ++i) order[i] = i;
  std::shuffle(order.begin(), order.end(), std::mt19937(seed));
  return order;
}

}  // namespace

TEST(HoleBefore, KeepsOrderAndCountWhateverComesBack) {
  for (const unsigned seed : rounds<unsigned>(200)) {
    std::mt19937 random(seed);
    const std::size_t count = 1 + random() % 150;
    Shelf shelf(count);
    std::string present(count, 'x');
    for (int i = 0; i < 600; ++i) {
      const std::size_t number = random() % count;
      const bool isPresent = present[number] == 'x';
      if (isPresent)
        shelf.remove(number);
      else
        shelf.restore(number, present);
      present[number] = isPresent ? ' ' : 'x';
      if (random() % 20 == 0) shelf.closeUp();
      ASSERT_TRUE(shelf.isSound());
    }
  }
}

// Nearly everything is removed, the array is compacted, and everything is restored. It used to grow
// by a fraction of its size, holes included, for every item restored elsewhere.
TEST(HoleBefore, GrowsAndMovesWithWhatIsInUse) {
  constexpr std::size_t kCount = 20000;
  std::vector<std::size_t> forwards(kCount);
  for (std::size_t i = 0; i < kCount; ++i) forwards[i] = i;
  const std::vector<std::size_t> backwards(forwards.rbegin(), forwards.rend());
  const struct {
    const char* name;
    std::vector<std::size_t> order;
  } cases[] = {
      {"in no order", shuffled(kCount, 1)},
      {"forwards", forwards},
      {"backwards", backwards},
  };
  for (const auto& t : named(cases)) {
    Shelf shelf(kCount);
    std::string present(kCount, ' ');
    present[kCount / 2] = 'x';
    for (const std::size_t number : t.order)
      if (present[number] != 'x') shelf.remove(number);
    shelf.closeUp();
    for (const std::size_t number : t.order) {
      if (present[number] == 'x') continue;
      shelf.restore(number, present);
      present[number] = 'x';
    }
    EXPECT_TRUE(shelf.isSound());
    EXPECT_LE(shelf.size(), 2 * kCount);
    EXPECT_LE(shelf.moves(), 200 * kCount) << "the square of the logarithm is 205";
  }
}
