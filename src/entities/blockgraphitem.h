#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

class CBlock;
class CBlockGraph;

namespace vek0::detail {

struct BlockGraphItem;

struct BlockGraphEdge {
  BlockGraphItem* target;  // null once the target is deleted
  std::size_t place;       // in the target's users
};

/// A block in its graph. Every edge stands at both of its ends, and each end knows
/// where the other is, so cutting one costs no search.
///
/// A block that blocks of the graph insert, and that is not in the graph itself, has an
/// item too, so that the edges to it are there when it comes (back). It has no edges of
/// its own, and visits pass it over.
/// What a search looks at is in the first 64 bytes, and what a change of edges needs in the
/// next: in large graphs, fetching them from memory is most of the time.
struct alignas(64) BlockGraphItem {
  using Edge = BlockGraphEdge;
  struct User {
    BlockGraphItem* item;
    std::size_t place;  // in the user's edges
  };
  enum class Mark : char { open, entered, done };

  // What BlockOrder keeps: the place in the order,
  std::uint64_t label = 0;
  // the last search that met the item, and from which side,
  std::uint64_t seen = 0;
  // the item that it was met from, null where the search began,
  BlockGraphItem* metFrom = nullptr;
  // and which hubs the item leads to and which lead to it, one bit each, as far as was known
  // in that era.
  std::uint64_t hubsBelow = 0;
  std::uint64_t hubsAbove = 0;
  std::uint64_t hubsEra = 0;
  std::vector<Edge> edges;  // in order of the block's inserts
  std::vector<User> users;  // in no order

  CBlock* block = nullptr;
  CBlockGraph* graph = nullptr;
  std::uint64_t collected = 0;  // number of the last collection of distinct items
  Mark mark = Mark::done;       // of a visit
  bool isPresent = false;       // in the graph, see above
  // The neighbours in the order, and the place in the graph's list.
  BlockGraphItem* before = nullptr;
  BlockGraphItem* after = nullptr;
  std::list<std::unique_ptr<BlockGraphItem>>::iterator place;
};

}  // namespace vek0::detail
