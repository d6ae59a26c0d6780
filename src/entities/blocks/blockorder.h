#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "entities/blocks/blockgraphitem.h"

namespace vek0::detail {

/// Maintains a topological order of an acyclic graph: each item precedes all items that it has
/// edges to. Determines whether new edges would close a cycle, and updates the order for them.
///
/// Algorithm: two-way ordered search of Haeupler, Kavitha, Mathew, Sen and Tarjan (2012). Positions
/// are labels in a linked list after Bender, Cole, Demaine, Farach-Colton and Zito (2002).
class BlockOrder {
 public:
  BlockOrder();
  BlockOrder(const BlockOrder&) = delete;
  BlockOrder& operator=(const BlockOrder&) = delete;

  /// An item without users may be first, one without edges last.
  void addFirst(BlockGraphItem& item) { insertAfter(m_ends, item); }
  void addLast(BlockGraphItem& item) { insertAfter(*m_ends.before, item); }
  static void remove(BlockGraphItem& item);
  void clear();  ///< all items are gone

  /// Whether `user` is reachable from any of `targets`, itself included.
  ///
  /// Searches down from the targets in ascending order and up from the user in descending order,
  /// until the searches meet or pass each other: items outside the range between user and target
  /// are not visited, nor are most of those within. Constant time if user and targets are already
  /// in order.
  bool isCircle(BlockGraphItem& user, const std::vector<BlockGraphItem*>& targets);
  /// Moves `user` before all targets of the last `isCircle`, which must have returned false and not
  /// be followed by changes. Costs no more than that search.
  void settle();

  /// Call it for every new edge, so that hub information spreads along it.
  void connect(BlockGraphItem& user, BlockGraphItem& target) const;
  /// Call it when edges were removed, which invalidates hub information.
  void forgetHubs();

 private:
  using Item = BlockGraphItem;
  enum Side : std::uint64_t { down, up };
  // An item with edges to follow, and the next of them.
  struct Live {
    std::uint64_t label;
    const BlockGraphEdge* next;
  };

  static void link(Item& place, Item& item);
  void insertAfter(Item& place, Item& item);
  void insertAllAfter(Item& place, const std::vector<Item*>& items);
  void relabel(Item& around);
  bool isMet(const Item& item, Side side) const { return item.seen == 2 * m_search + side; }
  bool meetDown(Item& item, Item* from);
  bool meetUp(Item& item, Item* from);
  bool stepDown();
  bool stepUp();
  bool isHubBetween() const { return (m_hubsBelowDown & m_hubsAboveUp) != 0; }
  void learnHub(Item& above, Item& below);
  static void learn(Item* above, Item* below, std::uint64_t hubs);
  void touchHubs(Item& item) const;

  Item m_ends;  // before the first and after the last

  std::uint64_t m_search = 0;  // number of the current search
  Item* m_user = nullptr;      // its user
  std::vector<Item*> m_down;   // reached from above
  std::vector<Item*> m_up;     // reached from below
  // Heaps of items still to be followed: lowest and highest label first.
  std::vector<Live> m_downLive, m_upLive;

  // A hub is an edge where the two sides of a search met. Where most blocks are connected, a few
  // hubs lie between almost all pairs that would close a cycle, which saves the search. Only
  // information on the paths found so far is recorded.
  static constexpr std::size_t kMostHubs = 64;
  std::uint64_t m_hubsEra = 1;  // incremented when edges are removed
  std::size_t m_noHubs = 0;
  std::uint64_t m_hubsBelowDown = 0;  // hubs reachable from the items reached from above
  std::uint64_t m_hubsAboveUp = 0;    // hubs that lead to the items reached from below
};

}  // namespace vek0::detail
