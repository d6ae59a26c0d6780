// The graph of which block inserts which. Every block that the graph has encountered has an item,
// present or absent: an insert may refer to a block outside the table, and finds its edge when that
// block returns. Edges are in two linked lists, that of their user and that of their target, so
// that both directions are walked without a search. Edges follow the content of blocks lazily: if
// memory runs out, the item is marked as outdated and refreshed by the next query. `BlockOrder`
// maintains a topological order, in which finding a cycle requires a search between the two blocks
// only. The order is abandoned while there is a cycle that a host created by `doSubstitute`, and
// queries search the graph instead.
#include "vek0core/entities/blocks/blockgraph.h"

#include <algorithm>
#include <new>
#include <utility>

#include "entities/blocks/blockgraphitem.h"
#include "entities/blocks/blockorder.h"
#include "entities/blocks/collectblocks.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"

using Mark = vek0::detail::BlockGraphItem::Mark;

namespace {

using Item = vek0::detail::BlockGraphItem;
using Edge = vek0::detail::BlockGraphEdge;

// An item that a visit has entered, and the next of its edges to follow.
struct Entered {
  Item* item;
  const Edge* edge;
};

// Follows one more edge of the innermost item, or applies `op` when there is none.
int visitStep(std::vector<Entered>& stack, IBlockOperation& op) {
  Entered& top = stack.back();
  if (top.edge == nullptr) {
    Item& item = *top.item;
    stack.pop_back();
    const int result = op.doOperation(*item.block);
    item.mark = Mark::done;
    return result;
  }
  // The target is null if the block was deleted while still inserted.
  Item* target = std::exchange(top.edge, top.edge->nextOfUser)->target;
  if (target == nullptr || target->mark == Mark::done) return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  if (target->mark == Mark::entered) return ZORA_BLOCK_VISIT_RESULT_CYCLE;
  target->mark = Mark::entered;
  stack.push_back({target, target->edges});
  return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
}

}  // namespace

CBlockGraph::CBlockGraph() : m_order(std::make_unique<vek0::detail::BlockOrder>()) {}

// Blocks may outlive their graph.
CBlockGraph::~CBlockGraph() { clearAll(); }

void CBlockGraph::addBlock(CBlock& block) { addBlock(block, nullptr); }

const CBlock* CBlockGraph::getNext(const CBlock& block) const {
  const Item* item = find(block);
  if (item == nullptr || std::next(item->place) == m_items.end()) return nullptr;
  return (*std::next(item->place))->block;
}

void CBlockGraph::reserve(CBlock& block) {
  if (block.m_item == nullptr || !block.m_item->isPresent) need(&block);
}

void CBlockGraph::addBlock(CBlock& block, const CBlock* next) {
  // Already in the graph: adding twice must not change the order of writing.
  if (block.m_item != nullptr && block.m_item->isPresent) return;
  Item* item = need(&block);
  if (item == nullptr) return;
  const Item* after = next != nullptr ? find(*next) : nullptr;
  // `next` restores the previous place after undo; otherwise the block comes last.
  m_items.splice(after != nullptr ? after->place : m_items.end(), m_absent, item->place);
  item->isPresent = true;
  updateBlock(block);
}

int CBlockGraph::RemoveBlock(CBlock& block) {
  refresh();
  Item* item = find(block);
  if (item == nullptr) return 0;
  if (item->users != nullptr) {
    m_items.splice(m_items.end(), m_items, item->place);
    return 1;
  }
  dropBlock(block);
  return 0;
}

void CBlockGraph::dropBlock(CBlock& block) {
  Item* item = find(block);
  if (item == nullptr) return;
  replaceEdges(*item, {});
  m_absent.splice(m_absent.end(), m_items, item->place);
  // Marked as done, so that visits skip it while it is absent.
  item->isPresent = item->isOutdated = false;
  item->mark = Mark::done;
}

// The block is about to be deleted.
void CBlockGraph::forget(CBlock& block) {
  dropBlock(block);
  Item* item = block.m_item;
  if (item == nullptr) return;
  // The edges remain in the lists of their users, where finding them would need a search.
  for (Edge* edge = item->users; edge != nullptr; edge = edge->nextToTarget) edge->target = nullptr;
  erase(*item);
}

// Of an absent block.
void CBlockGraph::erase(Item& item) const {
  item.block->m_item = nullptr;
  m_order->remove(item);
  m_absent.erase(item.place);
}

void CBlockGraph::updateBlock(CBlock& block) {
  Item* item = find(block);
  if (item == nullptr) return;
  try {
    refresh();
    refresh(*item);
  } catch (const std::bad_alloc&) {
    item->isOutdated = m_isOutdated = true;  // until edges are requested
    // As `replaceEdges` would have done.
    block.invalidateBdry();
  }
}

void CBlockGraph::refresh(Item& item) const {
  std::vector<Item*> targets = insertedItems(*item.block);
  // A file may contain circles: only the inserts that close one are left out of the graph.
  if (!makeWay(item, targets)) {
    std::erase_if(targets, [&](Item* target) { return isCircle(item, {target}); });
    makeWay(item, targets);
  }
  replaceEdges(item, targets);
  item.isOutdated = false;
}

void CBlockGraph::refresh() const {
  if (!m_isOutdated) return;
  for (const auto& item : m_items)
    if (item->isOutdated) refresh(*item);
  m_isOutdated = false;
}

void CBlockGraph::tellAll() const {
  for (const auto& item : m_items) item->block->hearOfChange();
}

int CBlockGraph::VisitUndep(IBlockOperation& op) const {
  refresh();
  return visitUndep(op);
}

int CBlockGraph::visitUndep(IBlockOperation& op) const {
  for (const auto& item : m_items) item->mark = Mark::open;
  // An explicit stack, because blocks can be nested arbitrarily deep.
  std::vector<Entered> stack;
  for (const auto& item : m_items) {
    if (item->mark != Mark::open) continue;
    item->mark = Mark::entered;
    stack.push_back({item.get(), item->edges});
    while (!stack.empty()) {
      const int result = visitStep(stack, op);
      if (result != ZORA_BLOCK_VISIT_RESULT_SUCCESS) return result;
    }
  }
  return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
}

int CBlockGraph::VisitDep(IBlockOperation& op) const {
  // The reverse of the order in which inserted blocks come first.
  vek0::detail::CollectBlocks collect;
  int result = VisitUndep(collect);
  for (auto block = collect.blocks.rbegin();
       result == ZORA_BLOCK_VISIT_RESULT_SUCCESS && block != collect.blocks.rend(); ++block)
    result = op.doOperation(**block);
  return result;
}

bool CBlockGraph::canSubstitute(CBlock& block, const std::list<CBlock*>& deps) const {
  refresh();
  // A block must not insert itself; references have no edges, so it does not matter there.
  if (std::find(deps.begin(), deps.end(), &block) != deps.end()) return block.isXRef();
  Item* item = block.m_item;
  // Nothing in the graph leads to an unknown block, so it cannot close a cycle.
  if (item == nullptr || item->graph != this) return true;
  std::vector<Item*> targets;
  for (const CBlock* dep : deps)
    if (Item* target = dep != nullptr ? find(*dep) : nullptr) targets.push_back(target);
  return !isCircle(*item, targets);
}

void CBlockGraph::doSubstitute(CBlock& block, const std::list<CBlock*>& deps) {
  refresh();
  Item* item = find(block);
  if (item == nullptr) return;
  const std::vector<Item*> targets = itemsOf(deps);
  // The host takes responsibility for the cycle; from now on queries search the graph.
  if (!makeWay(*item, targets)) m_isOrdered = false;
  replaceEdges(*item, targets);
}

bool CBlockGraph::Substitute(CBlock& block, const std::list<CBlock*>& deps) const {
  refresh();
  Item* item = find(block);
  if (item == nullptr || block.isXRef()) return canSubstitute(block, deps);
  const std::vector<Item*> targets = itemsOf(deps);
  if (!makeWay(*item, targets)) return false;
  replaceEdges(*item, targets);
  return true;
}

bool CBlockGraph::contains(const CBlock& block) const { return find(block) != nullptr; }

std::vector<CBlock*> CBlockGraph::getEdges(const CBlock& block) const {
  refresh();
  std::vector<CBlock*> blocks;
  if (const Item* item = find(block))
    for (const Edge* edge = item->edges; edge != nullptr; edge = edge->nextOfUser)
      if (edge->target != nullptr && edge->target->isPresent) blocks.push_back(edge->target->block);
  return blocks;
}

std::size_t CBlockGraph::getNoUsers(const CBlock& block) const { return getUsers(block).size(); }

std::vector<CBlock*> CBlockGraph::getUsers(const CBlock& block) const {
  refresh();
  std::vector<CBlock*> blocks;
  if (const Item* item = find(block))
    for (const Edge* edge = item->users; edge != nullptr; edge = edge->nextToTarget)
      blocks.push_back(edge->user->block);
  return blocks;
}

std::size_t CBlockGraph::size() const { return m_items.size(); }

void CBlockGraph::clearAll() {
  for (Items* items : {&m_items, &m_absent}) {
    for (const auto& item : *items) item->block->m_item = nullptr;
    items->clear();
  }
  m_order->clear();
  m_isOrdered = true;
  m_isOutdated = false;
}

CBlockGraph::Item* CBlockGraph::find(const CBlock& block) const {
  Item* item = block.m_item;
  return item != nullptr && item->graph == this && item->isPresent ? item : nullptr;
}

// The block's item, created as absent if necessary; null for a block of another graph.
CBlockGraph::Item* CBlockGraph::need(CBlock* block) const {
  if (block == nullptr) return nullptr;
  Item* item = block->m_item;
  // The block was removed from another graph, which still has an absent item for it.
  if (item != nullptr && item->graph != this && !item->isPresent) {
    item->graph->forget(*block);
    item = nullptr;
  }
  if (item != nullptr) return item->graph == this ? item : nullptr;
  auto made = std::make_unique<Item>();
  item = m_absent.emplace_back(std::move(made)).get();
  item->block = block;
  item->graph = const_cast<CBlockGraph*>(this);
  item->place = std::prev(m_absent.end());
  // A new item has no users, so it may come first.
  m_order->addFirst(*item);
  block->m_item = item;
  return item;
}

std::vector<CBlockGraph::Item*> CBlockGraph::insertedItems(const CBlock& block) const {
  ++m_collections;
  std::vector<Item*> items;
  // External references are not part of the graph: their content is replaced as a whole.
  for (CBlock::CInsertIterator insert(block); *insert != nullptr && !block.isXRef(); ++insert)
    collect((*insert)->getBlock(), items);
  return items;
}

// The items of the blocks that may have edges, each once.
std::vector<CBlockGraph::Item*> CBlockGraph::itemsOf(const std::list<CBlock*>& blocks) const {
  ++m_collections;
  std::vector<Item*> items;
  for (CBlock* block : blocks) collect(block, items);
  return items;
}

void CBlockGraph::collect(CBlock* block, std::vector<Item*>& items) const {
  Item* item = block != nullptr && !block->isXRef() ? need(block) : nullptr;
  // Numbering the collections detects repetitions without a set.
  if (item == nullptr || item->collected == m_collections) return;
  item->collected = m_collections;
  items.push_back(item);
}

bool CBlockGraph::isCircle(Item& user, const std::vector<Item*>& targets) const {
  return m_isOrdered ? m_order->isCircle(user, targets) : leadsTo(targets, user);
}

// Without a topological order, everything below must be searched.
bool CBlockGraph::leadsTo(const std::vector<Item*>& from, const Item& to) const {
  ++m_collections;
  std::vector<Item*> found = from;
  // Also counts as visited, so each item is expanded once.
  while (!found.empty()) {
    Item* item = found.back();
    found.pop_back();
    if (item == &to) return true;
    if (item->collected == m_collections) continue;
    item->collected = m_collections;
    for (const Edge* edge = item->edges; edge != nullptr; edge = edge->nextOfUser)
      if (edge->target != nullptr) found.push_back(edge->target);
  }
  return false;
}

// Updates the order for these edges, which will be created next; false if they would close a cycle.
bool CBlockGraph::makeWay(Item& user, const std::vector<Item*>& targets) const {
  if (isCircle(user, targets)) return false;
  if (m_isOrdered) m_order->settle();
  return true;
}

// All are made before the first old one goes: then nothing has changed when memory ends.
void CBlockGraph::replaceEdges(Item& item, const std::vector<Item*>& targets) const {
  std::vector<std::unique_ptr<Edge>> made;
  made.reserve(targets.size());
  for (Item* target : targets) made.push_back(std::make_unique<Edge>(Edge{&item, target}));
  const Edge* old = std::exchange(item.edges, nullptr);
  Edge** end = &item.edges;
  for (auto& owned : made) {
    Edge* edge = *end = owned.release();
    Item* target = edge->target;
    end = &edge->nextOfUser;
    edge->nextToTarget = target->users;
    if (target->users != nullptr) target->users->previousToTarget = edge;
    target->users = edge;
    m_order->connect(item, *target);
  }
  while (old != nullptr) cutEdge(*std::exchange(old, old->nextOfUser));
  if (!m_isOrdered) orderAll();
  // Extents depend on the blocks inserted.
  item.block->invalidateBdry();
}

// Deletes the edge, which is already removed from its user's list.
void CBlockGraph::cutEdge(const Edge& edge) const {
  const std::unique_ptr<const Edge> owned(&edge);
  if (edge.target == nullptr) return;
  // Hubs summarize paths that may have used the edge.
  m_order->forgetHubs();
  Edge* next = edge.nextToTarget;
  Edge* previous = edge.previousToTarget;
  if (next != nullptr) next->previousToTarget = previous;
  (previous != nullptr ? previous->nextToTarget : edge.target->users) = next;
}

// Tries to reorder the blocks. This is a pass over the graph at every change, but only while there
// is a cycle, which only a host can create.
void CBlockGraph::orderAll() const {
  vek0::detail::CollectBlocks collect;
  try {
    m_isOrdered = visitUndep(collect) == ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  } catch (const std::bad_alloc&) {
    return;  // the next change tries again
  }
  if (!m_isOrdered) return;
  for (const CBlock* block : collect.blocks) {
    m_order->remove(*block->m_item);
    m_order->addFirst(*block->m_item);
  }
}
