#pragma once

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "compare/itemids.h"

namespace vek0::detail {

/// The items of a table in two drawings, those of repeated names left out.
template <class Item>
struct ItemLists {
  std::vector<const Item*> before, after;
};

/// An item and what it became; either may be null.
template <class Item>
struct ItemPair {
  const Item* before = nullptr;
  const Item* after = nullptr;
};

/// The items of both drawings in pairs, first those of the first drawing.
template <class Item>
std::vector<ItemPair<Item>> pairsOf(const ItemLists<Item>& lists, ItemIds<Item>& ids) {
  std::map<int, const Item*> after;
  for (const Item* item : lists.after) after.try_emplace(ids(Side::After, item), item);
  std::vector<ItemPair<Item>> pairs;
  for (const Item* item : lists.before) {
    const auto found = after.find(ids(Side::Before, item));
    pairs.push_back({item, found == after.end() ? nullptr : found->second});
    if (found != after.end()) after.erase(found);
  }
  for (const Item* item : lists.after) {
    const auto found = after.find(ids(Side::After, item));
    if (found != after.end() && found->second == item) pairs.push_back({nullptr, item});
  }
  return pairs;
}

/// Finds items that only one of the drawings has, but with the same users: they were renamed.
template <class Item>
class RenameFinder {
 public:
  RenameFinder(const ItemLists<Item>& lists, ItemIds<Item>& ids) : m_ids(ids) {
    for (const ItemPair<Item>& pair : pairsOf(lists, ids)) {
      if (!pair.before) m_new.insert(pair.after);
      if (!pair.after) m_gone.insert(pair.before);
    }
  }

  bool isIdle() const { return m_gone.empty() || m_new.empty(); }
  const std::unordered_set<const Item*>& gone() const { return m_gone; }
  const std::unordered_set<const Item*>& added() const { return m_new; }

  /// The user of one item uses the other one now.
  void vote(const Item* before, const Item* after) {
    if (isIdle() || !m_gone.contains(before)) return;
    ++m_users[before];
    if (m_new.contains(after)) ++m_votes[{before, after}];
  }

  /// Renames where at least half of the users agree.
  void decide() {
    std::vector<std::pair<long, ItemPair<Item>>> votes;
    for (const auto& [pair, count] : m_votes)
      if (2 * count >= m_users[pair.first]) votes.push_back({count, {pair.first, pair.second}});
    std::sort(votes.begin(), votes.end(), [](const auto& a, const auto& b) {
      if (a.first != b.first) return a.first > b.first;
      const int order = a.second.before->getName().Compare(b.second.before->getName());
      if (order != 0) return order < 0;
      return a.second.after->getName().Compare(b.second.after->getName()) < 0;
    });
    for (const auto& [count, pair] : votes) rename(pair.before, pair.after);
    m_votes.clear();
    m_users.clear();
  }

  /// Has no effect if one of them has a partner already.
  void rename(const Item* before, const Item* after) {
    if (!m_gone.contains(before) || !m_new.contains(after)) return;
    m_ids.rename(*before, *after);
    m_gone.erase(before);
    m_new.erase(after);
  }

 private:
  ItemIds<Item>& m_ids;
  std::unordered_set<const Item*> m_gone, m_new;
  std::map<std::pair<const Item*, const Item*>, long> m_votes;
  std::unordered_map<const Item*, long> m_users;
};

}  // namespace vek0::detail
