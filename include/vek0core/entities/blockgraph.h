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
/// inserts, in order of the first insert; external references have neither. An edge to a
/// block that is not in the graph counts from when it comes, or comes back, until the
/// block that inserts it is given other ones. A block knows its item, so finding it costs
/// nothing, and it can be in one graph only. Visits keep their own stack: nesting may be of
/// any depth.
///
/// Where memory ends while a block's edges are set from its inserts, that is put off until
/// somebody asks for edges. What asks throws `std::bad_alloc`, and nothing has changed then.
class VEK0_API CBlockGraph {
 public:
  CBlockGraph();
  ~CBlockGraph();
  CBlockGraph(const CBlockGraph&) = delete;
  CBlockGraph& operator=(const CBlockGraph&) = delete;

  /// Appends an item with edges to the blocks that `block` inserts; an edge that closes
  /// a cycle is left out. A block that is in a graph already is ignored. Cost as
  /// `updateBlock`.
  void addBlock(CBlock& block);

  /// The same, but before the item of `next`; at the end when that has none.
  void addBlock(CBlock& block, const CBlock* next);
  /// Makes room for the block: adding it then needs no memory, now or after it was taken out.
  void reserve(CBlock& block);
  /// The block whose item follows, null at the end and for a block that has none.
  const CBlock* getNext(const CBlock& block) const;

  /// Takes a block out that no other block inserts, and answers 0. Otherwise the block
  /// stays, as the last of the order, and the answer is 1. A block that is not in this
  /// graph answers 0.
  int RemoveBlock(CBlock& block);

  /// Takes a block out also when others insert it; their edges wait for it to come back.
  void dropBlock(CBlock& block);

  /// Sets the block's edges anew from its inserts, as `addBlock` does. Linear in the
  /// block's entities, and a search as that of `canSubstitute`.
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
  ///
  /// The graph keeps an order of the blocks in which users stand before what they insert.
  /// A dependency behind the block costs constant time; one before it, a search of both
  /// what it inserts and what inserts the block, as far as that stands between the two:
  /// some ten steps on average in graphs of random edges, whatever their size.
  bool canSubstitute(CBlock& block, const std::list<CBlock*>& deps) const;

  /// Replaces the block's edges by edges to `deps`, unchecked. External references get
  /// none. Does nothing for a block outside the graph.
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
  mutable Items m_absent;  // see BlockGraphItem; they come and go with edges
  std::unique_ptr<vek0::detail::BlockOrder> m_order;
  mutable std::uint64_t m_collections = 0;  // of distinct items, so far
  mutable bool m_isOrdered = true;          // false: `doSubstitute` has made a circle
  mutable bool m_isOutdated = false;        // items are, see there
};
