#include "vek0core/entities/blockgraph.h"

#include "entities/collectblocks.h"

#include <algorithm>

#include "entities/blockgraphitem.h"
#include "vek0core/entities/block.h"
#include "vek0core/entities/entinsert.h"

using Mark = vek0::detail::BlockGraphItem::Mark;

namespace {

using Item = vek0::detail::BlockGraphItem;

void cutEdge(Item& user, std::size_t i) {
  const Item::Edge edge = user.edges[i];
  if (edge.target == nullptr) return;
  std::vector<Item::User>& users = edge.target->users;
  users[edge.place] = users.back();
  users[edge.place].item->edges[users[edge.place].place].place = edge.place;
  users.pop_back();
  user.edges[i].target = nullptr;
}

// One of the two fronts of a search: the items met, and how far their neighbours have
// been looked at.
class Front {
 public:
  void meet(Item& item) { m_items.push_back(&item); }
  bool isSpent() const { return m_item == m_items.size(); }
  const Item& current() const { return *m_items[m_item]; }

  // The next neighbour of the current item out of `count`, or `count` on going on to
  // the next item.
  std::size_t step(std::size_t count) {
    if (m_neighbour < count) return m_neighbour++;
    ++m_item;
    m_neighbour = 0;
    return count;
  }

 private:
  std::vector<Item*> m_items;
  std::size_t m_item = 0, m_neighbour = 0;
};

// An item that a visit has entered, and how many of its edges it has followed.
struct Entered {
  Item* item;
  std::size_t edge;
};

// Follows one more edge of the innermost item, or applies `op` when there is none.
int visitStep(std::vector<Entered>& stack, IBlockOperation& op) {
  Entered& top = stack.back();
  if (top.edge == top.item->edges.size()) {
    Item& item = *top.item;
    stack.pop_back();
    const int result = op.doOperation(*item.block);
    item.mark = Mark::done;
    return result;
  }
  Item* target = top.item->edges[top.edge++].target;
  if (target == nullptr || target->mark == Mark::done) return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  if (target->mark == Mark::entered) return ZORA_BLOCK_VISIT_RESULT_CYCLE;
  target->mark = Mark::entered;
  stack.push_back({target, 0});
  return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
}

}  // namespace

CBlockGraph::CBlockGraph() = default;

CBlockGraph::~CBlockGraph() = default;

void CBlockGraph::addBlock(CBlock& block) { addBlock(block, nullptr); }

const CBlock* CBlockGraph::getNext(const CBlock& block) const {
  const Item* item = find(block);
  if (item == nullptr || std::next(item->place) == m_items.end()) return nullptr;
  return (*std::next(item->place))->block;
}

void CBlockGraph::addBlock(CBlock& block, const CBlock* next) {
  if (block.m_item != nullptr) return;
  const Item* after = next != nullptr ? find(*next) : nullptr;
  const auto place =
      m_items.insert(after != nullptr ? after->place : m_items.end(), std::make_unique<Item>());
  Item& item = **place;
  item.block = &block;
  item.graph = this;
  item.place = place;
  item.rank = --m_firstRank;
  block.m_item = &item;
  updateBlock(block);
}

int CBlockGraph::RemoveBlock(CBlock& block) {
  Item* item = find(block);
  if (item == nullptr) return 0;
  if (!item->users.empty()) {
    m_items.splice(m_items.end(), m_items, item->place);
    return 1;
  }
  dropBlock(block);
  return 0;
}

void CBlockGraph::dropBlock(CBlock& block) {
  Item* item = find(block);
  if (item == nullptr) return;
  // The users' edges keep their places, which others know.
  for (const Item::User& user : item->users) user.item->edges[user.place].target = nullptr;
  setEdges(*item, {});
  block.m_item = nullptr;
  m_items.erase(item->place);
}

void CBlockGraph::updateBlock(CBlock& block) {
  Item* item = find(block);
  if (item == nullptr) return;
  std::vector<Item*> targets;
  const unsigned long number = ++m_search;
  for (CBlock::CInsertIterator insert(block); *insert != nullptr && !block.isXRef(); ++insert)
    meet((*insert)->getBlock(), number, targets);
  if (reaches(targets, *item)) {
    const auto closesCycle = [&](Item* target) { return reaches({target}, *item); };
    targets.erase(std::remove_if(targets.begin(), targets.end(), closesCycle), targets.end());
  }
  setEdges(*item, targets);
}

int CBlockGraph::VisitUndep(IBlockOperation& op) const {
  for (const auto& item : m_items) item->mark = Mark::open;
  std::vector<Entered> stack;
  for (const auto& item : m_items) {
    if (item->mark != Mark::open) continue;
    item->mark = Mark::entered;
    stack.push_back({item.get(), 0});
    while (!stack.empty()) {
      const int result = visitStep(stack, op);
      if (result != ZORA_BLOCK_VISIT_RESULT_SUCCESS) return result;
    }
  }
  return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
}

int CBlockGraph::VisitDep(IBlockOperation& op) const {
  vek0::detail::CollectBlocks collect;
  int result = VisitUndep(collect);
  for (auto block = collect.blocks.rbegin();
       result == ZORA_BLOCK_VISIT_RESULT_SUCCESS && block != collect.blocks.rend(); ++block)
    result = op.doOperation(**block);
  return result;
}

bool CBlockGraph::canSubstitute(CBlock& block, const std::list<CBlock*>& deps) const {
  if (std::find(deps.begin(), deps.end(), &block) != deps.end()) return block.isXRef();
  Item* item = find(block);
  return item == nullptr || !reaches(itemsOf(deps), *item);
}

void CBlockGraph::doSubstitute(CBlock& block, const std::list<CBlock*>& deps) {
  if (Item* item = find(block)) setEdges(*item, itemsOf(deps));
}

bool CBlockGraph::Substitute(CBlock& block, const std::list<CBlock*>& deps) const {
  if (!canSubstitute(block, deps)) return false;
  if (Item* item = find(block)) setEdges(*item, itemsOf(deps));
  return true;
}

bool CBlockGraph::contains(const CBlock& block) const { return find(block) != nullptr; }

std::vector<CBlock*> CBlockGraph::getEdges(const CBlock& block) const {
  std::vector<CBlock*> blocks;
  if (const Item* item = find(block))
    for (const Item::Edge& edge : item->edges)
      if (edge.target != nullptr) blocks.push_back(edge.target->block);
  return blocks;
}

std::size_t CBlockGraph::getNoUsers(const CBlock& block) const {
  const Item* item = find(block);
  return item != nullptr ? item->users.size() : 0;
}

std::vector<CBlock*> CBlockGraph::getUsers(const CBlock& block) const {
  std::vector<CBlock*> blocks;
  if (const Item* item = find(block))
    for (const Item::User& user : item->users) blocks.push_back(user.item->block);
  return blocks;
}

std::size_t CBlockGraph::size() const { return m_items.size(); }

void CBlockGraph::clearAll() {
  for (const auto& item : m_items) item->block->m_item = nullptr;
  m_items.clear();
}

CBlockGraph::Item* CBlockGraph::find(const CBlock& block) const {
  return block.m_item != nullptr && block.m_item->graph == this ? block.m_item : nullptr;
}

// Whether ranks alone tell that nothing leads from `from` to `to`.
bool CBlockGraph::isBehind(const std::vector<Item*>& from, const Item& to) const {
  return m_ranked && std::all_of(from.begin(), from.end(),
                                 [&](const Item* item) { return item->rank > to.rank; });
}

// Users before what they insert. Costs a pass over the graph, which searches have to have
// cost before. Only for calls that change the graph: whoever asks may be in a visit.
void CBlockGraph::rankAll() const {
  vek0::detail::CollectBlocks collect;
  m_ranked = VisitUndep(collect) == ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  m_searched = 0;
  for (const CBlock* block : collect.blocks) find(*block)->rank = --m_firstRank;
}

bool CBlockGraph::reaches(const std::vector<Item*>& from, Item& to) const {
  return !isBehind(from, to) && search(from, to);
}

// Searches downward from `from` and upward from `to` in turn, one edge at a time, so
// that the smaller side decides the cost: placeholders that files define one by one
// have either few users or little in them.
bool CBlockGraph::search(const std::vector<Item*>& from, Item& to) const {
  const unsigned long number = ++m_search;
  Front down, up;
  to.seenUp = number;
  up.meet(to);
  for (Item* item : from) {
    if (item == &to) return true;
    item->seenDown = number;
    down.meet(*item);
  }
  for (; !down.isSpent() && !up.isSpent(); ++m_searched) {
    const Item& upper = down.current();
    const std::size_t edge = down.step(upper.edges.size());
    Item* target = edge < upper.edges.size() ? upper.edges[edge].target : nullptr;
    if (target != nullptr && target->seenUp == number) return true;
    if (target != nullptr && target->seenDown != number) {
      target->seenDown = number;
      down.meet(*target);
    }
    const Item& lower = up.current();
    const std::size_t place = up.step(lower.users.size());
    Item* user = place < lower.users.size() ? lower.users[place].item : nullptr;
    if (user != nullptr && user->seenDown == number) return true;
    if (user != nullptr && user->seenUp != number) {
      user->seenUp = number;
      up.meet(*user);
    }
  }
  return false;
}

// Keeps ranks true to a new edge where that takes no search: what nobody inserts may be
// first, what inserts nothing may be last.
void CBlockGraph::rankEdge(Item& user, Item& target) const {
  if (!m_ranked || user.rank < target.rank) return;
  if (user.users.empty())
    user.rank = --m_firstRank;
  else if (target.edges.empty())
    target.rank = ++m_lastRank;
  else
    m_ranked = false;
}

// Appends the block's item unless the search of that number has met it already, or the
// block has no edges.
void CBlockGraph::meet(const CBlock* block, unsigned long number, std::vector<Item*>& items) const {
  Item* item = block != nullptr && !block->isXRef() ? find(*block) : nullptr;
  if (item == nullptr || item->seenDown == number) return;
  item->seenDown = number;
  items.push_back(item);
}

std::vector<CBlockGraph::Item*> CBlockGraph::itemsOf(const std::list<CBlock*>& blocks) const {
  const unsigned long number = ++m_search;
  std::vector<Item*> items;
  for (const CBlock* block : blocks) meet(block, number, items);
  return items;
}

void CBlockGraph::setEdges(Item& item, const std::vector<Item*>& targets) const {
  if (!m_ranked && m_searched > m_items.size()) rankAll();
  for (std::size_t i = 0; i < item.edges.size(); ++i) cutEdge(item, i);
  item.edges.clear();
  for (Item* target : targets) {
    rankEdge(item, *target);
    target->users.push_back({&item, item.edges.size()});
    item.edges.push_back({target, target->users.size() - 1});
  }
  item.block->invalidateBdry();
}
