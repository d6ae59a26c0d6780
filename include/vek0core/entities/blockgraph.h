#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

#include "vek0core/export.h"

class CBlock;

namespace vek0::detail {
struct BlockGraphItem;
}

/// What a block operation answers to go on, and a visit that came to its end.
inline constexpr int ZORA_BLOCK_VISIT_RESULT_SUCCESS = 0;
/// What a visit answers when it met a cycle.
inline constexpr int ZORA_BLOCK_VISIT_RESULT_CYCLE = -1;

/// Work that a visit does on one block after the other.
class VEK0_API IBlockOperation {
 public:
  /// `ZORA_BLOCK_VISIT_RESULT_SUCCESS` goes on; anything else ends the visit, which
  /// then answers the same. The graph must not change meanwhile.
  virtual int doOperation(CBlock& block) = 0;

 protected:
  IBlockOperation() = default;
  IBlockOperation(const IBlockOperation&) = default;
  IBlockOperation& operator=(const IBlockOperation&) = default;
  ~IBlockOperation() = default;
};

/// Which block inserts which, for the blocks of one table.
///
/// One item a block, in order of addition, and one edge for every block that it
/// inserts, in order of the first insert; external references have neither. A block
/// knows its item, so finding it costs nothing, and it can be in one graph only.
/// Visits keep their own stack: nesting may be of any depth.
class VEK0_API CBlockGraph {
 public:
  CBlockGraph();
  ~CBlockGraph();
  CBlockGraph(const CBlockGraph&) = delete;
  CBlockGraph& operator=(const CBlockGraph&) = delete;

  /// Appends an item with edges to the blocks that `block` inserts, as far as they
  /// are in the graph; an edge that closes a cycle is left out. A block that is in a
  /// graph already is ignored. Linear in the block's entities.
  void addBlock(CBlock& block);

  /// The same, but before the item of `next`; at the end when that has none.
  void addBlock(CBlock& block, const CBlock* next);
  /// The block whose item follows, null at the end and for a block that has none.
  const CBlock* getNext(const CBlock& block) const;

  /// Takes a block out that no other block inserts, and answers 0. Otherwise the block
  /// stays, as the last of the order, and the answer is 1. A block that is not in this
  /// graph answers 0.
  int RemoveBlock(CBlock& block);

  /// Takes a block out with all edges to it.
  void dropBlock(CBlock& block);

  /// Sets the block's edges anew from its inserts, as `addBlock` does. Linear in the
  /// block's entities and, for an edge against the order of the ranks, in the smaller of
  /// the two sets of blocks that are to be searched (see `canSubstitute`).
  void updateBlock(CBlock& block);

  /// Applies `op` to every block in order of addition, each after all blocks that it
  /// inserts. Answers what `op` last did, or `ZORA_BLOCK_VISIT_RESULT_CYCLE` on
  /// meeting a cycle, with `op` applied to what came before.
  int VisitUndep(IBlockOperation& op) const;

  /// The reverse order of `VisitUndep`: each block before all blocks that it inserts.
  /// On a cycle `op` is not applied at all.
  int VisitDep(IBlockOperation& op) const;

  /// Whether `block` may insert the blocks of `deps` instead of what it inserts: no
  /// cycle must come about. A block outside the graph counts as one about to be added.
  /// Costs the smaller of two sets: the blocks reachable from `deps`, and those that
  /// insert `block`, directly or not.
  bool canSubstitute(CBlock& block, const std::list<CBlock*>& deps) const;

  /// Replaces the block's edges by edges to `deps`, unchecked. External references and
  /// blocks outside the graph get none. Does nothing for a block outside the graph.
  void doSubstitute(CBlock& block, const std::list<CBlock*>& deps);

  /// `canSubstitute` and, when it allows, the replacement. Only the block's item
  /// changes, not the list of items, hence const.
  bool Substitute(CBlock& block, const std::list<CBlock*>& deps) const;

  /// Whether the block has an item here.
  bool contains(const CBlock& block) const;
  /// The blocks that `block` has edges to, in order.
  std::vector<CBlock*> getEdges(const CBlock& block) const;
  /// Number of blocks that have an edge to `block`.
  std::size_t getNoUsers(const CBlock& block) const;
  /// These blocks.
  std::vector<CBlock*> getUsers(const CBlock& block) const;
  std::size_t size() const;

  void clearAll();

 private:
  using Item = vek0::detail::BlockGraphItem;

  Item* find(const CBlock& block) const;
  bool isBehind(const std::vector<Item*>& from, const Item& to) const;
  void rankAll() const;
  bool reaches(const std::vector<Item*>& from, Item& to) const;
  bool search(const std::vector<Item*>& from, Item& to) const;
  void rankEdge(Item& user, Item& target) const;
  void meet(const CBlock* block, unsigned long number, std::vector<Item*>& items) const;
  std::vector<Item*> itemsOf(const std::list<CBlock*>& blocks) const;
  void setEdges(Item& item, const std::vector<Item*>& targets) const;

  std::list<std::unique_ptr<Item>> m_items;
  mutable unsigned long m_search = 0;  // number of the present search, see BlockGraphItem
  // While the graph is ranked, the rank of a block is below that of all that it inserts,
  // so an edge that goes upwards in rank closes no cycle.
  mutable bool m_ranked = true;
  mutable std::int64_t m_firstRank = 0;  // no rank is below
  mutable std::int64_t m_lastRank = 0;   // none is above
  mutable std::size_t m_searched = 0;    // steps since all were ranked
};
