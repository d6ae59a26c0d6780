// A topological order of blocks, maintained edge by edge. A new edge that agrees with the order
// costs nothing. Otherwise the blocks above its user and below its target are searched from both
// ends, in the order of their labels, until the searches meet; only these blocks are moved. Labels
// are integers with gaps, which are redistributed locally where they run out.
#include "entities/blocks/blockorder.h"

#include <algorithm>

namespace vek0::detail {
namespace {

using Item = BlockGraphItem;

constexpr std::uint64_t kLabels = std::uint64_t{1} << 62;  // exclusive upper bound
constexpr std::uint64_t kStep = std::uint64_t{1} << 40;    // spacing of labels at the ends

bool isFirst(const Item* a, const Item* b) { return a->label < b->label; }

// std heaps have the greatest element on top.
constexpr auto kLowest = [](const auto& a, const auto& b) { return a.label > b.label; };
constexpr auto kHighest = [](const auto& a, const auto& b) { return a.label < b.label; };

template <class Live, class Compare>
void push(std::vector<Live>& heap, const Live& live, Compare compare) {
  heap.push_back(live);
  std::push_heap(heap.begin(), heap.end(), compare);
}

// Returns the next edge of the top item, and removes the item from the heap after its last edge.
template <class Live, class Compare>
const BlockGraphEdge& follow(std::vector<Live>& heap, BlockGraphEdge* BlockGraphEdge::*list,
                             Compare compare) {
  const BlockGraphEdge& edge = *heap.front().next;
  heap.front().next = edge.*list;
  if (heap.front().next == nullptr) {
    std::pop_heap(heap.begin(), heap.end(), compare);
    heap.pop_back();
  }
  return edge;
}

}  // namespace

BlockOrder::BlockOrder() { m_ends.before = m_ends.after = &m_ends; }

void BlockOrder::clear() {
  m_ends.before = m_ends.after = &m_ends;
  forgetHubs();
}

void BlockOrder::remove(Item& item) {
  item.before->after = item.after;
  item.after->before = item.before;
}

void BlockOrder::insertAfter(Item& place, Item& item) {
  const auto labelBelow = [&] { return &place == &m_ends ? 0 : place.label; };
  const auto labelAbove = [&] { return place.after == &m_ends ? kLabels : place.after->label; };
  // No free label between the neighbors.
  if (labelAbove() - labelBelow() < 2) relabel(&place == &m_ends ? *place.after : place);
  const std::uint64_t low = labelBelow(), high = labelAbove();
  const std::uint64_t half = (high - low) / 2;
  item.label = low + half;
  // At either end, a fixed step leaves room for further insertions there.
  if (low != 0 && high == kLabels) item.label = low + std::min(half, kStep);
  if (low == 0 && high != kLabels) item.label = high - std::min(half, kStep);
  link(place, item);
}

void BlockOrder::link(Item& place, Item& item) {
  item.before = &place;
  item.after = place.after;
  place.after = item.after->before = &item;
}

// Redistributes the labels of the smallest range around the item that is not crowded. The density
// limit decreases with the length of the range, so that an insertion costs amortized logarithmic
// time.
void BlockOrder::relabel(Item& around) {
  constexpr double kRoomGrowth = 4.0 / 3;
  Item* first = &around;
  Item* last = &around;
  std::uint64_t count = 1, length = 1;
  double room = 1;
  std::uint64_t base = 0;
  do {
    length *= 2;
    room *= kRoomGrowth;
    base = around.label & ~(length - 1);
    for (; first->before != &m_ends && first->before->label >= base; ++count) first = first->before;
    for (; last->after != &m_ends && last->after->label - base < length; ++count)
      last = last->after;
  } while (length < kLabels && (static_cast<double>(count) > room || length / (count + 1) < 2));
  const std::uint64_t step = length / (count + 1);
  for (std::uint64_t i = 1; i <= count; ++i, first = first->after) first->label = base + i * step;
}

bool BlockOrder::isCircle(Item& user, const std::vector<Item*>& targets) {
  ++m_search;
  m_user = &user;
  m_hubsBelowDown = m_hubsAboveUp = 0;
  m_down.clear();
  m_up.clear();
  m_downLive.clear();
  m_upLive.clear();
  // An edge from a block to itself is the shortest cycle.
  if (std::find(targets.begin(), targets.end(), &user) != targets.end()) return true;
  for (Item* target : targets) meetDown(*target, nullptr);
  // All targets already come after the user.
  if (m_down.empty()) return false;
  if (meetUp(user, nullptr)) return true;
  // Once the searches have passed each other, what remains on either side cannot meet.
  while (!m_downLive.empty() && !m_upLive.empty() &&
         m_downLive.front().label < m_upLive.front().label)
    if (stepDown() || stepUp()) return true;
  return false;
}

// Records an item reachable from the targets. Items after the user cannot lead to it.
bool BlockOrder::meetDown(Item& item, Item* from) {
  if (isMet(item, down) || isFirst(m_user, &item)) return false;
  item.seen = 2 * m_search + down;
  item.metFrom = from;
  m_down.push_back(&item);
  if (item.edges != nullptr) push(m_downLive, {item.label, item.edges}, kLowest);
  touchHubs(item);
  m_hubsBelowDown |= item.hubsBelow;
  learn(from, nullptr, item.hubsBelow);
  return isHubBetween();
}

// Records an item that leads to the user.
bool BlockOrder::meetUp(Item& item, Item* from) {
  if (isMet(item, up)) return false;
  item.seen = 2 * m_search + up;
  item.metFrom = from;
  m_up.push_back(&item);
  if (item.users != nullptr) push(m_upLive, {item.label, item.users}, kHighest);
  touchHubs(item);
  m_hubsAboveUp |= item.hubsAbove;
  learn(nullptr, from, item.hubsAbove);
  return isHubBetween();
}

bool BlockOrder::stepDown() {
  const BlockGraphEdge& edge = follow(m_downLive, &BlockGraphEdge::nextOfUser, kLowest);
  // The target was deleted.
  if (edge.target == nullptr) return false;
  if (!isMet(*edge.target, up)) return meetDown(*edge.target, edge.user);
  // The searches have met, so this edge is part of a cycle; others are likely to pass through it.
  learnHub(*edge.user, *edge.target);
  return true;
}

bool BlockOrder::stepUp() {
  const BlockGraphEdge& edge = follow(m_upLive, &BlockGraphEdge::nextToTarget, kHighest);
  if (!isMet(*edge.user, down)) return meetUp(*edge.user, edge.target);
  learnHub(*edge.user, *edge.target);
  return true;
}

// Makes `above`, which has an edge to `below`, a hub if there is room.
void BlockOrder::learnHub(Item& above, Item& below) {
  if (m_noHubs == kMostHubs) return;
  learn(&above, &below, std::uint64_t{1} << m_noHubs++);
}

// Records that the path to `above` leads to the hubs, and the hubs to the path from `below`,
// stopping where this is already known. So each step only pays for new information.
void BlockOrder::learn(Item* above, Item* below, std::uint64_t hubs) {
  for (; above != nullptr && (hubs & ~above->hubsBelow) != 0; above = above->metFrom)
    above->hubsBelow |= hubs;
  for (; below != nullptr && (hubs & ~below->hubsAbove) != 0; below = below->metFrom)
    below->hubsAbove |= hubs;
}

void BlockOrder::connect(Item& user, Item& target) const {
  // Information from before the last removal of an edge is void.
  touchHubs(user);
  touchHubs(target);
  user.hubsBelow |= target.hubsBelow;
  target.hubsAbove |= user.hubsAbove;
}

void BlockOrder::touchHubs(Item& item) const {
  if (item.hubsEra == m_hubsEra) return;
  item.hubsEra = m_hubsEra;
  item.hubsBelow = item.hubsAbove = 0;
}

void BlockOrder::forgetHubs() {
  ++m_hubsEra;
  m_noHubs = 0;
}

// Items reached from above move after the user, and those reached from below before it: to the
// point where the two searches passed each other.
void BlockOrder::settle() {
  // The item that the downward search has reached.
  Item* const middle = m_downLive.empty() ? m_user : m_downLive.front().next->user;
  // Items on the right side of the middle need not move.
  std::erase_if(m_down, [&](const Item* item) { return !isFirst(item, middle); });
  std::erase_if(m_up, [&](const Item* item) { return !isFirst(middle, item); });
  std::sort(m_down.begin(), m_down.end(), isFirst);
  std::sort(m_up.begin(), m_up.end(), isFirst);
  m_up.reserve(m_up.size() + m_down.size());  // before anything changes
  for (Item* item : m_down) remove(*item);
  for (Item* item : m_up) remove(*item);
  Item& place = middle == m_user ? *m_user : *middle->before;
  m_up.insert(m_up.end(), m_down.begin(), m_down.end());
  insertAllAfter(place, m_up);
}

// Spread evenly: inserted one by one, each would take half of the remaining gap.
void BlockOrder::insertAllAfter(Item& place, const std::vector<Item*>& items) {
  const bool isFront = &place == &m_ends;
  const std::uint64_t low = isFront ? 0 : place.label;
  const std::uint64_t high = place.after == &m_ends ? kLabels : place.after->label;
  const std::uint64_t step = std::min((high - low) / (items.size() + 1), kStep);
  // At the front they are placed close to the next item, which leaves room for `addFirst`.
  std::uint64_t label = isFront ? high - step * (items.size() + 1) : low;
  Item* last = &place;
  for (Item* item : items) {
    // No gap is left for all of them, so each makes its own room.
    if (step == 0) {
      insertAfter(*last, *item);
    } else {
      link(*last, *item);
      item->label = label += step;
    }
    last = item;
  }
}

}  // namespace vek0::detail
