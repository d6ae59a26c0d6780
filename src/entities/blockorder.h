#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "entities/blockgraphitem.h"

namespace vek0::detail {

/// The items of a graph without circles in an order in which each stands before all that
/// it has edges to. It tells whether more edges would close a circle, and makes room for
/// them.
///
/// Formula: two-way ordered search of Haeupler, Kavitha, Mathew, Sen and Tarjan (2012).
/// The places are labels in a linked list after Bender, Cole, Demaine, Farach-Colton and
/// Zito (2002).
class BlockOrder {
 public:
  BlockOrder();
  BlockOrder(const BlockOrder&) = delete;
  BlockOrder& operator=(const BlockOrder&) = delete;

  /// An item without users may stand first, one without edges last.
  void addFirst(BlockGraphItem& item) { insertAfter(m_ends, item); }
  void addLast(BlockGraphItem& item) { insertAfter(*m_ends.before, item); }
  static void remove(BlockGraphItem& item);
  void clear();  ///< of items that are gone

  /// Whether `user` can be reached from any of `targets`, itself included.
  ///
  /// Searches down from the targets and up from the user, the former by ascending places
  /// and the latter by descending ones, until they meet or pass each other: what is outside
  /// of the stretch between user and target is not looked at, and neither is most of what
  /// is within. Constant where user and targets stand in order already.
  bool isCircle(BlockGraphItem& user, const std::vector<BlockGraphItem*>& targets);
  /// Moves `user` before all targets of the last `isCircle`, which has answered no, and
  /// since which nothing has changed. Costs no more than that search.
  void settle();

  /// Tells of a new edge, so that what is known of hubs spreads along it.
  void connect(BlockGraphItem& user, BlockGraphItem& target) const;
  /// Tells that edges have gone, after which what is known of hubs may be wrong.
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

  std::uint64_t m_search = 0;  // number of the last search
  Item* m_user = nullptr;      // of it
  std::vector<Item*> m_down;   // met from above
  std::vector<Item*> m_up;     // met from below
  // Heaps of those that are to be followed: lowest and highest label first.
  std::vector<Live> m_downLive, m_upLive;

  // A hub is an edge in which the two sides of a search met. Where most blocks hang
  // together, a few of them are between almost all pairs that would close a circle, which
  // saves the search. Known is what lay on the ways that were found.
  static constexpr std::size_t kMostHubs = 64;
  std::uint64_t m_hubsEra = 1;  // grows when edges go
  std::size_t m_noHubs = 0;
  std::uint64_t m_hubsBelowDown = 0;  // hubs that the items met from above lead to
  std::uint64_t m_hubsAboveUp = 0;    // hubs that lead to those met from below
};

}  // namespace vek0::detail
