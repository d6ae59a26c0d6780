#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <utility>

class CBlock;
class CBlockGraph;

namespace vek0::detail {

struct BlockGraphItem;

/// An edge, in the intrusive lists of both of its ends: it is created and deleted without a search
/// and without moving anything.
struct BlockGraphEdge {
  BlockGraphItem* user;
  BlockGraphItem* target;                  // null once the target is deleted
  BlockGraphEdge* nextOfUser = nullptr;    // in order of the inserts
  BlockGraphEdge* nextToTarget = nullptr;  // unordered
  BlockGraphEdge* previousToTarget = nullptr;
};

/// A block in its graph.
///
/// A block has an item even while it is outside the graph, if blocks of the graph insert it or if
/// it was in the graph and may return: then the edges to it already exist, and its return needs no
/// memory. Such an item has no edges of its own and is skipped by visits. All data that a search
/// uses is in the first 64 bytes: in large graphs, fetching them dominates the cost. Processors
/// prefetch the other half.
struct alignas(128) BlockGraphItem {
  using Edge = BlockGraphEdge;

  BlockGraphItem() = default;
  BlockGraphItem(const BlockGraphItem&) = delete;
  BlockGraphItem& operator=(const BlockGraphItem&) = delete;
  ~BlockGraphItem() {
    for (const Edge* edge = edges; edge != nullptr;) delete std::exchange(edge, edge->nextOfUser);
  }

  enum class Mark : char { open, entered, done };

  // Maintained by BlockOrder: the position in the order,
  std::uint64_t label = 0;
  // the last search that reached the item, and from which side,
  std::uint64_t seen = 0;
  // the item from which it was reached, null where the search began,
  BlockGraphItem* metFrom = nullptr;
  // and the hubs reachable from the item and those that reach it, one bit each, as far as known in
  // that era.
  std::uint64_t hubsBelow = 0;
  std::uint64_t hubsAbove = 0;
  std::uint64_t hubsEra = 0;
  Edge* edges = nullptr;  // those from the item, and
  Edge* users = nullptr;  // those to it

  CBlock* block = nullptr;
  CBlockGraph* graph = nullptr;
  std::uint64_t collected = 0;  // number of the last collection that included it
  // The neighbors in the order, and the position in the graph's list.
  BlockGraphItem* before = nullptr;
  BlockGraphItem* after = nullptr;
  BlockGraphItem* nextTold = nullptr;  // of those that wait to hear of a change
  std::list<std::unique_ptr<BlockGraphItem>>::iterator place;
  Mark mark = Mark::done;   // of a visit
  bool isPresent = false;   // in the graph, see above
  bool isOutdated = false;  // its edges must be rebuilt
};

}  // namespace vek0::detail
