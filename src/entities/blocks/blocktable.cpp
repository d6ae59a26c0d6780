// The table of blocks keeps the graph of blocks and the registration of entities up to date. Adding
// a block reserves its place in the graph first and registers its entities last, so that a failure
// in between leaves nothing behind.
#include "vek0core/entities/blocks/blocktable.h"

#include "entities/blocks/collectblocks.h"

#include <new>
#include <utility>
#include <vector>

#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/entmovevisitor.h"

namespace {

std::list<CBlock*> insertedBlocks(const std::list<CEnt*>& entities) {
  std::list<CBlock*> blocks;
  for (const CEnt* ent : entities) {
    const CEntInsertBase* insert = ent != nullptr ? ent->getEntInsert() : nullptr;
    CBlock* block = insert != nullptr ? insert->getBlock() : nullptr;
    // References are not in the graph of blocks.
    if (block != nullptr && !block->isXRef()) blocks.push_back(block);
  }
  return blocks;
}

// The blocks of a graph, users before the blocks they insert; empty if there is a cycle or memory
// runs out.
std::vector<CBlock*> usersFirst(const CBlockGraph& graph) {
  vek0::detail::CollectBlocks collect;
  try {
    if (graph.VisitDep(collect) == ZORA_BLOCK_VISIT_RESULT_SUCCESS)
      return std::move(collect.blocks);
  } catch (const std::bad_alloc&) {
    // Any order will do then.
  }
  return {};
}

}  // namespace

CBlockTable::CBlockTable(IHandleGestor& gestor, CBlockXRefDepend& depend)
    : m_gestor(gestor), m_depend(depend), m_graph(std::make_shared<CBlockGraph>()) {}

CBlockTable::~CBlockTable() { CBlockTable::clearAll(); }

void CBlockTable::add(CBlock* block) {
  if (block == nullptr || block->isHeld() || isView()) return;
  m_graph->reserve(*block);
  CNamedItemTableImp::add(block);
  registerBlock(*block);
  m_graph->addBlock(*block);
}

// The last operation that can run out of memory, so only the table must be restored.
void CBlockTable::registerBlock(CBlock& block) try {
  block.insertBlock(m_gestor);
} catch (const std::bad_alloc&) {
  CNamedItemTableImp::remove(&block);
  throw;
}

void CBlockTable::remove(CBlock* block) {
  if (!holds(block)) return;
  CNamedItemTableImp::remove(block);
  block->removeBlock(m_gestor);
  m_graph->dropBlock(*block);
}

CBlockTable::Place CBlockTable::getPlace(const CBlock& block) const {
  return {CNamedItemTableImp::getPlace(block), m_graph->getNext(block)};
}

void CBlockTable::restore(CBlock* block, const Place& place) {
  if (block == nullptr || block->isHeld() || isView()) return;
  m_graph->reserve(*block);
  CNamedItemTableImp::restore(block, place.item);
  registerBlock(*block);
  m_graph->addBlock(*block, place.graphNext);
}

CBlock* CBlockTable::get(std::u16string_view name) const {
  return static_cast<CBlock*>(CNamedItemTableImp::get(name));
}

CBlock* CBlockTable::operator[](int i) const {
  return static_cast<CBlock*>(CNamedItemTableImp::operator[](i));
}

bool CBlockTable::canRedefine(CBlock* block, const std::list<CEnt*>& newEntities) const {
  return block != nullptr && m_graph->canSubstitute(*block, insertedBlocks(newEntities));
}

int CBlockTable::Redefine(CBlock* block, const PNT_3D& base, long flags,
                          const std::list<CEnt*>& newEntities) {
  if (!canRedefine(block, newEntities)) return -1;
  // The memento takes the new entities, and afterwards holds the old ones.
  CBlockMemento content(base, flags, newEntities);
  holds(block) ? exchange(block, content) : block->exchange(content);
  // Applied in place: the entities were given in drawing coordinates.
  if (base == PNT_3D(0, 0, 0) || block->isXRef()) return 0;
  CEntMoveVisitor mover(-base);
  for (unsigned i = 0; i < block->size(); ++i) (*block)[i]->accept(mover);
  return 0;
}

void CBlockTable::setMemento(CBlock* block, const CBlockMemento& memento) {
  CBlockMemento copy(memento);
  exchange(block, copy);
}

void CBlockTable::exchange(CBlock* block, CBlockMemento& memento) {
  if (!holds(block)) return;
  // Registrations are counted by layers and linetypes, so those of the old content end first.
  block->removeBlock(m_gestor);
  block->exchange(memento);
  try {
    block->insertBlock(m_gestor);
  } catch (const std::bad_alloc&) {
    // Exchanging back needs no memory, and neither does registering what was registered before.
    block->exchange(memento);
    block->insertBlock(m_gestor);
    throw;
  }
  m_graph->updateBlock(*block);
}

void CBlockTable::updateBlock(CBlock* block) {
  if (holds(block)) m_graph->updateBlock(*block);
}

void CBlockTable::recalcBdry() {
  for (int i = 0; i < size(); ++i) (*this)[i]->invalidateBdry();
}

void CBlockTable::clearAll() {
  if (isView()) return CNamedItemTableImp::clearAll();
  // Unregister all before destroying the first: an insert is counted by its block.
  for (int i = 0; i < size(); ++i) (*this)[i]->removeBlock(m_gestor);
  const std::vector<CBlock*> ordered = usersFirst(*m_graph);
  // Table and graph release all blocks at once: looking up each block's name and edges took a
  // quarter of the time of closing a drawing with many blocks.
  std::vector<CNamedItem*> others = removeAll();
  // Blocks that the order does not cover are deleted last.
  if (!ordered.empty())
    std::erase_if(others,
                  [&](CNamedItem* b) { return m_graph->contains(*static_cast<CBlock*>(b)); });
  m_graph->clearAll();
  for (const CBlock* block : ordered) delete block;
  for (const CNamedItem* block : others) delete block;
}

bool CBlockTable::holds(const CBlock* block) const { return contains(block); }
