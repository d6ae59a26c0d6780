#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

#include "vek0core/export.h"

class CBlock;

namespace vek0::detail {
class BlockOrder;
struct BlockGraphEdge;
struct BlockGraphItem;
}  // namespace vek0::detail

/// Returned by a block operation to continue, and by a completed visit.
inline constexpr int ZORA_BLOCK_VISIT_RESULT_SUCCESS = 0;
/// Returned by a visit that found a cycle.
inline constexpr int ZORA_BLOCK_VISIT_RESULT_CYCLE = -1;

/// An operation that a visit applies to each block.
class VEK0_API IBlockOperation {
 public:
  /// Returns `ZORA_BLOCK_VISIT_RESULT_SUCCESS` to continue; any other value ends the visit, which
  /// returns it. The graph must not change meanwhile.
  virtual int doOperation(CBlock& block) = 0;

 protected:
  IBlockOperation() = default;
  IBlockOperation(const IBlockOperation&) = default;
  IBlockOperation& operator=(const IBlockOperation&) = default;
  ~IBlockOperation() = default;
};

/// Which block inserts which, for the blocks of one table.
///
/// One item per block, in order of addition, and one edge for every block that it inserts, in order
/// of the first insert; external references have neither. An edge to a block outside the graph
/// takes effect when that block is added, or added again, until the edges of the inserting block
/// are replaced. A block stores its item, so finding it is free, and it can be in only one graph.
/// Visits use an explicit stack: nesting may have any depth.
///
/// If memory runs out while a block's edges are rebuilt from its inserts, this is deferred until
/// edges are requested. The requesting function throws `std::bad_alloc` with nothing changed.
class VEK0_API CBlockGraph {
 public:
  CBlockGraph();
  ~CBlockGraph();
  CBlockGraph(const CBlockGraph&) = delete;
  CBlockGraph& operator=(const CBlockGraph&) = delete;

  /// Appends an item with edges to the blocks that `block` inserts; an edge that would close a
  /// cycle is omitted. A block that is already in a graph is ignored. Costs as much as
  /// `updateBlock`.
  void addBlock(CBlock& block);

  /// The same, but inserts before the item of `next`, or appends if it has none.
  void addBlock(CBlock& block, const CBlock* next);
  /// Reserves memory for the block: adding it then needs no memory, even after it was removed.
  void reserve(CBlock& block);
  /// The block whose item follows; null at the end and for a block without an item.
  const CBlock* getNext(const CBlock& block) const;

  /// Removes a block that no other block inserts and returns 0. Otherwise keeps the block, moves it
  /// to the end of the order and returns 1. Returns 0 for a block that is not in this graph.
  int RemoveBlock(CBlock& block);

  /// Removes a block even if others insert it; their edges are kept for its return.
  void dropBlock(CBlock& block);

  /// Rebuilds the block's edges from its inserts, as `addBlock` does. Linear in the block's
  /// entities, plus a search like that of `canSubstitute`.
  void updateBlock(CBlock& block);

  /// Applies `op` to every block in order of addition, each after all blocks that it inserts.
  /// Returns the last result of `op`, or `ZORA_BLOCK_VISIT_RESULT_CYCLE` on finding a cycle, with
  /// `op` already applied to the blocks before it.
  int VisitUndep(IBlockOperation& op) const;

  /// The reverse order of `VisitUndep`: each block before all blocks that it inserts.
  /// On a cycle `op` is not applied at all.
  int VisitDep(IBlockOperation& op) const;

  /// Whether `block` may insert the blocks of `deps` instead of its current ones without creating a
  /// cycle. A block outside the graph counts as about to be added.
  ///
  /// The graph maintains a topological order in which users precede the blocks that they insert. A
  /// dependency after the block costs constant time; one before it costs a search from both ends,
  /// limited to the blocks between the two: some ten steps on average in random graphs of any size.
  bool canSubstitute(CBlock& block, const std::list<CBlock*>& deps) const;

  /// Replaces the block's edges by edges to `deps`, unchecked. External references get none. Has no
  /// effect on a block outside the graph.
  void doSubstitute(CBlock& block, const std::list<CBlock*>& deps);

  /// Replaces the edges if `canSubstitute` allows it, and returns whether it did. Only the block's
  /// item changes, not the list of items, hence const.
  bool Substitute(CBlock& block, const std::list<CBlock*>& deps) const;

  /// Whether the block has an item here.
  bool contains(const CBlock& block) const;
  /// The blocks that `block` has edges to, in order.
  std::vector<CBlock*> getEdges(const CBlock& block) const;
  /// Number of blocks that have an edge to `block`.
  std::size_t getNoUsers(const CBlock& block) const;
  /// The blocks that have an edge to `block`.
  std::vector<CBlock*> getUsers(const CBlock& block) const;
  std::size_t size() const;

  void clearAll();

 private:
  friend class CBlock;
  using Edge = vek0::detail::BlockGraphEdge;
  using Item = vek0::detail::BlockGraphItem;
  using Items = std::list<std::unique_ptr<Item>>;

  Item* find(const CBlock& block) const;
  Item* need(CBlock* block) const;
  void forget(CBlock& block);
  void erase(Item& item) const;
  bool isCircle(Item& user, const std::vector<Item*>& targets) const;
  bool leadsTo(const std::vector<Item*>& from, const Item& to) const;
  bool makeWay(Item& user, const std::vector<Item*>& targets) const;
  std::vector<Item*> insertedItems(const CBlock& block) const;
  std::vector<Item*> itemsOf(const std::list<CBlock*>& blocks) const;
  void collect(CBlock* block, std::vector<Item*>& items) const;
  int visitUndep(IBlockOperation& op) const;
  void refresh() const;
  void refresh(Item& item) const;
  bool isOutdated() const { return m_isOutdated; }
  void tellAll() const;
  void replaceEdges(Item& item, const std::vector<Item*>& targets) const;
  void cutEdge(const Edge& edge) const;
  void orderAll() const;

  Items m_items;           // in order of addition
  mutable Items m_absent;  // see BlockGraphItem; exist only while edges refer to them
  std::unique_ptr<vek0::detail::BlockOrder> m_order;
  mutable std::uint64_t m_collections = 0;  // of distinct items, so far
  mutable bool m_isOrdered = true;          // false: `doSubstitute` has created a cycle
  mutable bool m_isOutdated = false;        // some item is outdated, see there
};
