#include "entities/blockorder.h"

#include <algorithm>

namespace vek0::detail {
namespace {

using Item = BlockGraphItem;

constexpr std::uint64_t kLabels = std::uint64_t{1} << 62;  // labels are below
constexpr std::uint64_t kStep = std::uint64_t{1} << 24;    // between labels at the ends

bool isFirst(const Item* a, const Item* b) { return a->label < b->label; }

// Heaps have on top what compares greatest.
constexpr auto kLowest = [](const auto& a, const auto& b) { return a.label > b.label; };
constexpr auto kHighest = [](const auto& a, const auto& b) { return a.label < b.label; };

template <class Live, class Compare>
void push(std::vector<Live>& heap, const Live& live, Compare compare) {
  heap.push_back(live);
  std::push_heap(heap.begin(), heap.end(), compare);
}

// The next neighbour of the first item, which leaves the heap with its last one.
template <class Live, class Neighbour, class Compare>
const Neighbour& follow(std::vector<Live>& heap, const std::vector<Neighbour>& neighbours,
                        Compare compare) {
  const Neighbour& next = neighbours[heap.front().followed++];
  if (heap.front().followed == neighbours.size()) {
    std::pop_heap(heap.begin(), heap.end(), compare);
    heap.pop_back();
  }
  return next;
}

}  // namespace

BlockOrder::BlockOrder() { m_ends.before = m_ends.after = &m_ends; }

void BlockOrder::remove(Item& item) {
  item.before->after = item.after;
  item.after->before = item.before;
}

void BlockOrder::insertAfter(Item& place, Item& item) {
  const auto labelBelow = [&] { return &place == &m_ends ? 0 : place.label; };
  const auto labelAbove = [&] { return place.after == &m_ends ? kLabels : place.after->label; };
  if (labelAbove() - labelBelow() < 2) relabel(&place == &m_ends ? *place.after : place);
  const std::uint64_t low = labelBelow(), high = labelAbove();
  const std::uint64_t half = (high - low) / 2;
  item.label = low + half;
  if (low != 0 && high == kLabels) item.label = low + std::min(half, kStep);
  if (low == 0 && high != kLabels) item.label = high - std::min(half, kStep);
  item.before = &place;
  item.after = place.after;
  place.after = item.after->before = &item;
}

// Spreads the labels of the smallest stretch around the item that is not crowded. What
// counts as crowded gets less the longer the stretch is: then an insertion costs the
// logarithm of the number of items in the long run.
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
  if (std::find(targets.begin(), targets.end(), &user) != targets.end()) return true;
  for (Item* target : targets) meetDown(*target, nullptr);
  if (m_down.empty()) return false;
  if (meetUp(user, nullptr)) return true;
  while (!m_downLive.empty() && !m_upLive.empty() &&
         m_downLive.front().label < m_upLive.front().label)
    if (stepDown() || stepUp()) return true;
  return false;
}

// Notes an item that the targets lead to. What stands after the user cannot lead to it.
bool BlockOrder::meetDown(Item& item, Item* from) {
  if (isMet(item, down) || isFirst(m_user, &item)) return false;
  item.seen = 2 * m_search + down;
  item.metFrom = from;
  m_down.push_back(&item);
  if (!item.edges.empty()) push(m_downLive, {item.label, &item, 0}, kLowest);
  touchHubs(item);
  m_hubsBelowDown |= item.hubsBelow;
  return isHubBetween();
}

// Notes an item that leads to the user.
bool BlockOrder::meetUp(Item& item, Item* from) {
  if (isMet(item, up)) return false;
  item.seen = 2 * m_search + up;
  item.metFrom = from;
  m_up.push_back(&item);
  if (!item.users.empty()) push(m_upLive, {item.label, &item, 0}, kHighest);
  touchHubs(item);
  m_hubsAboveUp |= item.hubsAbove;
  return isHubBetween();
}

bool BlockOrder::stepDown() {
  Item& item = *m_downLive.front().item;
  Item* next = follow(m_downLive, item.edges, kLowest).target;
  if (next == nullptr) return false;
  if (!isMet(*next, up)) return meetDown(*next, &item);
  learnHub(item, *next);
  return true;
}

bool BlockOrder::stepUp() {
  Item& item = *m_upLive.front().item;
  Item* next = follow(m_upLive, item.users, kHighest).item;
  if (!isMet(*next, down)) return meetUp(*next, &item);
  learnHub(*next, item);
  return true;
}

bool BlockOrder::isHubBetween() {
  const std::uint64_t hubs = m_hubsBelowDown & m_hubsAboveUp;
  if (hubs == 0) return false;
  const auto above = std::find_if(m_down.begin(), m_down.end(),
                                  [&](const Item* item) { return (item->hubsBelow & hubs) != 0; });
  const std::uint64_t known = (*above)->hubsBelow & hubs;
  const auto below = std::find_if(m_up.begin(), m_up.end(),
                                  [&](const Item* item) { return (item->hubsAbove & known) != 0; });
  learn(*above, *below, known & (*below)->hubsAbove);
  return true;
}

// `above`, which has an edge to `below`, becomes a hub while there is room for one.
void BlockOrder::learnHub(Item& above, Item& below) {
  if (m_noHubs == kMostHubs) return;
  learn(&above, &below, std::uint64_t{1} << m_noHubs++);
}

// Writes down that the way to `above` leads to the hubs, and these to the way from `below`.
void BlockOrder::learn(Item* above, Item* below, std::uint64_t hubs) {
  for (; above != nullptr; above = above->metFrom) {
    touchHubs(*above);
    above->hubsBelow |= hubs;
  }
  for (; below != nullptr; below = below->metFrom) {
    touchHubs(*below);
    below->hubsAbove |= hubs;
  }
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

// What was met from above goes behind the user, and what was met from below before that:
// to where the two searches passed each other.
void BlockOrder::settle() {
  Item* const middle = m_downLive.empty() ? m_user : m_downLive.front().item;
  std::erase_if(m_down, [&](const Item* item) { return !isFirst(item, middle); });
  std::erase_if(m_up, [&](const Item* item) { return !isFirst(middle, item); });
  std::sort(m_down.begin(), m_down.end(), isFirst);
  std::sort(m_up.begin(), m_up.end(), isFirst);
  for (Item* item : m_down) remove(*item);
  for (Item* item : m_up) remove(*item);
  Item* place = middle == m_user ? m_user : middle->before;
  for (const std::vector<Item*>* items : {&m_up, &m_down}) {
    for (Item* item : *items) {
      insertAfter(*place, *item);
      place = item;
    }
  }
}

}  // namespace vek0::detail
