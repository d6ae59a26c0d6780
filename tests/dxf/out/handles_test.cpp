#include "dxf/out/savehandles.h"
#include "support/test.h"

using vek0::Handle;
using vek0::detail::SaveHandles;

namespace {

struct Given {
  std::vector<Handle> things, ends;
  Handle seed;
};

Given give(const std::vector<Handle>& carried, int ends) {
  SaveHandles handles;
  for (const Handle handle : carried) handles.note(handle);
  for (int i = 0; i < ends; ++i) handles.noteEnd();
  handles.settle();
  Given given{{}, {}, handles.seed()};
  for (const Handle handle : carried) given.things.push_back(handles.take(handle));
  for (int i = 0; i < ends; ++i) given.ends.push_back(handles.takeEnd());
  return given;
}

}  // namespace

TEST(SaveHandles, FirstUserKeepsItAndOthersGetFreeNumbers) {
  const struct {
    const char* name;
    std::vector<Handle> carried;
    int ends;
    std::vector<Handle> things, endNumbers;
    Handle seed;
  } cases[] = {
      {"nothing", {}, 0, {}, {}, 1},
      {"none has one", {0, 0}, 1, {1, 2}, {3}, 4},
      {"all have one", {7, 3}, 0, {7, 3}, {}, 8},
      {"ends follow", {16, 0}, 2, {16, 17}, {18, 19}, 20},
      {"twice the same", {5, 9, 5}, 0, {5, 9, 10}, {}, 11},
      {"three times", {5, 5, 5}, 1, {5, 6, 7}, {8}, 9},
      {"no room above", {0, 0x7FFFFFFF, 2, 0}, 1, {1, 0x7FFFFFFF, 2, 3}, {4}, 0x80000000},
      {"64 bits", {0x100000001, 0}, 1, {0x100000001, 1}, {2}, 0x100000002},
      {"the highest", {0x7FFFFFFFFFFFFFFF, 0}, 1, {0x7FFFFFFFFFFFFFFF, 1}, {2}, 3},
      {"same digits", {-1, 0xFFFFFFFF}, 0, {-1, 1}, {}, 0x100000000},
  };
  for (const auto& t : named(cases)) {
    const Given given = give(t.carried, t.ends);
    EXPECT_EQ(given.things, t.things);
    EXPECT_EQ(given.ends, t.endNumbers);
    EXPECT_EQ(given.seed, t.seed);
  }
}

// Wherever they are in the file.
TEST(SaveHandles, VerticesYieldToAllOthers) {
  SaveHandles handles;
  for (const Handle vertex : {5, 6, 6, 7}) handles.noteVertex(vertex);
  for (const Handle other : {5, 9, 9}) handles.note(other);
  handles.settle();
  std::vector<Handle> given;
  for (const Handle vertex : {5, 6, 6, 7}) given.push_back(handles.takeVertex(vertex));
  for (const Handle other : {5, 9, 9}) given.push_back(handles.take(other));
  EXPECT_EQ(given, (std::vector<Handle>{10, 6, 11, 7, 5, 9, 12}));
}

TEST(SaveHandles, RandomHandlesAreUniqueKeptAndStableOnceWritten) {
  std::mt19937 random(11);
  for ([[maybe_unused]] const int round : rounds(300)) {
    std::vector<Handle> carried;
    for (auto n = random() % 40; n > 0; --n) carried.push_back(static_cast<Handle>(random() % 30));
    const int ends = static_cast<int>(random() % 5);
    const Given given = give(carried, ends);
    std::set<Handle> seen;
    for (std::size_t i = 0; i < carried.size(); ++i) {
      const bool first = carried[i] != 0 && seen.count(carried[i]) == 0;
      EXPECT_TRUE(!first || given.things[i] == carried[i]);
      EXPECT_TRUE(seen.insert(given.things[i]).second);
    }
    for (const Handle end : given.ends) EXPECT_TRUE(seen.insert(end).second);
    EXPECT_EQ(seen.count(0), 0u);
    EXPECT_TRUE(seen.empty() || *seen.rbegin() < given.seed);
    const Given again = give(given.things, ends);
    EXPECT_EQ(again.things, given.things);
    EXPECT_EQ(again.ends, given.ends);
  }
}
