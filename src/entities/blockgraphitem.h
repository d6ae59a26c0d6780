#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

class CBlock;
class CBlockGraph;

namespace vek0::detail {

/// A block in its graph. Every edge stands at both of its ends, and each end knows
/// where the other is, so cutting one costs no search.
struct BlockGraphItem {
  struct Edge {
    BlockGraphItem* target;  // null once the target has left the graph
    std::size_t place;       // in the target's users
  };
  struct User {
    BlockGraphItem* item;
    std::size_t place;  // in the user's edges
  };
  enum class Mark : char { open, entered, done };

  CBlock* block;
  CBlockGraph* graph;
  std::list<std::unique_ptr<BlockGraphItem>>::iterator place;
  std::vector<Edge> edges;  // in order of the block's inserts
  std::vector<User> users;  // in no order
  Mark mark = Mark::open;   // of a visit
  std::int64_t rank = 0;    // see CBlockGraph
  // Numbers of the last searches that met it from above and from below.
  unsigned long seenDown = 0;
  unsigned long seenUp = 0;
};

}  // namespace vek0::detail
