// A block owns its entities in an array with holes. Removing an entity leaves a hole, so that the
// others keep their positions. Restored entities reuse holes, and holes are closed when they exceed
// half of the array. Extents are computed on request. A change marks the block and all blocks that
// show it as stale, and stops at blocks whose extents were not requested since they were last
// marked.
#include "vek0core/entities/blocks/block.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

#include "entities/blocks/blockgraphitem.h"
#include "tables/holes.h"
#include "tables/ranktree.h"
#include "vek0core/entities/blocks/blockgraph.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/entmovevisitor.h"
#include "vek0core/entities/entattdef.h"

using vek0::detail::BlockGraphEdge;
using vek0::detail::BlockGraphItem;

namespace {

constexpr std::size_t kLongRun = 64;  // holes skipped before they are closed

bool isAttdef(const CEnt& ent) { return ent.getType() == CEntAttdef::kType; }

}  // namespace

std::uint64_t CBlock::nextSerial() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

// Brings extents up to date, those of inserted blocks first. Recursion would go as deep as blocks
// are nested, which a file decides, and a separate stack would need memory, so the blocks
// themselves form the stack.
class CBlock::BdryWalk {
 public:
  ~BdryWalk() {
    while (m_top != nullptr) leave();
  }

  void run(CBlock& block) {
    enter(block);
    while (m_top != nullptr) {
      if (CBlock* inner = nextStale(*m_top)) {
        enter(*inner);
      } else {
        m_top->growBdry();
        leave();
      }
    }
  }

 private:
  void enter(CBlock& block) {
    // Content that is only appended extends the extents, so the entities already included are
    // skipped.
    block.m_bdryNext = block.m_bdryStale ? 0 : block.m_noBoxed;
    block.m_bdryFrom = m_top;
    block.m_bdryBusy = true;
    m_top = &block;
  }

  void leave() {
    m_top->m_bdryBusy = false;
    m_top = m_top->m_bdryFrom;
  }

  static CBlock* nextStale(CBlock& block) {
    const std::vector<CEnt*>& entities = block.m_entities;
    while (block.m_bdryNext < entities.size()) {
      const CEnt* ent = entities[block.m_bdryNext++];
      const CEntInsertBase* insert = ent != nullptr ? ent->getEntInsert() : nullptr;
      CBlock* inner = insert != nullptr ? insert->getBlock() : nullptr;
      // A busy block is on the stack already, so this insert closes a circle.
      if (inner != nullptr && inner->isBdryStale() && !inner->m_bdryBusy) return inner;
    }
    return nullptr;
  }

  CBlock* m_top = nullptr;
};

CBlock::CBlock(const zim::WString& name) : CBlock(name, PNT_3D(0, 0, 0), 0) {}

CBlock::CBlock(const zim::WString& name, const PNT_3D& base, long flags)
    : CNamedItem(name, flags), m_base(base) {
  m_bdry.initRegion();
}

CBlock::CBlock(const CBlock& src) : CBlock(src.getName(), src.m_base, src.getFlags()) {
  SetUserInfo(src.m_userType, src.m_userData);
  // Copies have no entities, hence no attribute definitions either.
  CNamedItem::setFlags(kHasAttdefs, false);
}

CBlock& CBlock::operator=(const CBlock& src) {
  if (this == &src) return *this;
  setName(src.getName());
  setFlags(src.getFlags());
  setFlags(kHasAttdefs, m_noAttdefs != 0);
  m_base = src.m_base;
  SetUserInfo(src.m_userType, src.m_userData);
  return *this;
}

CBlock::~CBlock() {
  // The graph's items of other blocks refer to this one.
  if (m_item != nullptr) m_item->graph->forget(*this);
  for (const CEnt* ent : m_entities) delete ent;
}

void CBlock::add(CEnt* ent) {
  if (ent == nullptr || ent->isHeld()) return;
  makeRoom(1);
  // The entity is given in drawing coordinates; blocks store entities relative to their base point.
  if (m_base != PNT_3D(0, 0, 0)) {
    CEntMoveVisitor mover(-m_base);
    ent->accept(mover);
  }
  append(ent);
}

void CBlock::restore(CEnt* ent) {
  if (ent != nullptr && !ent->isHeld()) append(ent);
}

void CBlock::makeRoom(std::size_t more) {
  const std::size_t needed = m_entities.size() + more;
  // Doubles like the vector would, but before anything changes, as only this can fail.
  if (needed > m_entities.capacity()) m_entities.reserve(std::max(needed, 2 * m_entities.size()));
}

void CBlock::append(CEnt* ent) {
  // Closing the holes costs a pass, which the removals that made them have paid for.
  if (m_noHoles > m_entities.size() / 2) compact();
  m_entities.push_back(ent);
  ++m_edition;
  vek0::detail::appendUsed(m_ranks);
  own(*ent, m_entities.size() - 1);
  tellUsers();
}

void CBlock::own(CEnt& ent, std::size_t pos) {
  ent.m_owner = &m_asOwner;
  ent.m_pos = pos;
  if (!isAttdef(ent)) return;
  ++m_noAttdefs;
  setFlags(kHasAttdefs, true);
}

CBlock::Place CBlock::getPlace(const CEnt& ent) const {
  std::size_t next = firstRaw(ent.m_pos + 1);
  // A long run of holes would make a sequence of calls quadratic.
  if (next > ent.m_pos + kLongRun) {
    compact();
    next = ent.m_pos + 1;
  }
  return {next < m_entities.size() ? m_entities[next] : nullptr};
}

void CBlock::restore(CEnt* ent, const Place& place) {
  if (ent == nullptr || ent->isHeld()) return;
  // The old successor may have been removed or moved to another block meanwhile.
  const bool isNextHere = place.next != nullptr && place.next->m_owner == &m_asOwner;
  const std::size_t at = isNextHere ? place.next->m_pos : m_entities.size();
  const std::size_t before = m_entities.size();
  bool isMoved = false;
  const auto moved = [&isMoved](CEnt& other, std::size_t pos) {
    other.m_pos = pos;
    isMoved = true;
  };
  const std::size_t slot = vek0::detail::holeBefore(m_entities, at, m_noHoles, moved);
  // Ranks count positions, which have shifted.
  if (isMoved || m_entities.size() != before) m_ranks.reset();
  m_entities[slot] = ent;
  --m_noHoles;
  if (m_ranks) m_ranks->fill(slot);
  own(*ent, slot);
  invalidateBdry();
}

void CBlock::remove(CEnt* ent) {
  if (ent == nullptr || ent->m_owner != &m_asOwner) return;
  m_entities[ent->m_pos] = nullptr;
  ++m_noHoles;
  if (m_ranks) m_ranks->remove(ent->m_pos);
  disown(*ent);
  if (isAttdef(*ent)) --m_noAttdefs;
  setFlags(kHasAttdefs, m_noAttdefs != 0);
  invalidateBdry();
}

void CBlock::disown(CEnt& ent) { ent.m_owner = nullptr; }

bool CBlock::isXRef() const { return false; }

void CBlock::calcBdry() {
  invalidateBdry();
  refreshBdry();
  // Attribute definitions are not shown by inserts, so only an explicit request includes them.
  for (const CEnt* ent : m_entities)
    if (ent != nullptr && isAttdef(*ent)) m_bdry.updateRegion(ent->getBdry());
}

void CBlock::invalidateBdry() {
  ++m_edition;
  m_bdryStale = true;
  tellUsers();
}

void CBlock::redefine(const PNT_3D& base, long flags) {
  clearEntities();
  m_base = base;
  setFlags(flags);
}

void CBlock::clearEntities() {
  ++m_edition;
  for (CEnt* ent : m_entities)
    if (ent != nullptr) disown(*ent);
  m_entities.clear();
  m_ranks.reset();
  m_noHoles = m_noLookups = m_noAttdefs = m_noBoxed = 0;
  setFlags(kHasAttdefs, false);
  m_bdry.initRegion();
  m_bdryStale = false;
  tellUsers();
}

void CBlock::disposeEntities() {
  for (CEnt*& ent : m_entities) {
    delete ent;
    ent = nullptr;
  }
  clearEntities();
}

const RECT_3D& CBlock::getBdry() const {
  // From now on, changes must be reported to the blocks that show this one.
  m_bdryAsked = true;
  if (isBdryStale() && !m_bdryBusy) refreshBdry();
  return m_bdry;
}

RECT_3D& CBlock::getBdry() { return const_cast<RECT_3D&>(std::as_const(*this).getBdry()); }

void CBlock::SetUserInfo(int type, int data) {
  m_userType = type;
  m_userData = data;
}

bool CBlock::isOfDimension() const {
  const std::u16string_view name = getName().view();
  return name.size() > 2 && name.substr(0, 2) == u"*D" && name[2] >= u'0' && name[2] <= u'9';
}

void CBlock::insertBlock(IHandleGestor& gestor) const {
  auto ent = m_entities.rbegin();
  try {
    for (; ent != m_entities.rend(); ++ent)
      if (*ent != nullptr) (*ent)->addTbls(gestor);
  } catch (const std::bad_alloc&) {
    // This undoes exactly what the loop above has registered.
    for (auto done = m_entities.rbegin(); done != ent; ++done)
      if (*done != nullptr) (*done)->removeTbls(gestor);
    throw;
  }
}

void CBlock::removeBlock(IHandleGestor& gestor) const {
  for (auto ent = m_entities.rbegin(); ent != m_entities.rend(); ++ent)
    if (*ent != nullptr) (*ent)->removeTbls(gestor);
}

CBlockMemento* CBlock::createMemento() const {
  try {
    return new (std::nothrow) CBlockMemento(*this);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void CBlock::exchange(CBlockMemento& memento) {
  const long flags = getFlags();
  std::swap(m_base, memento.m_base);
  swapEntities(memento.m_entities);
  setFlags(memento.m_flags);
  memento.m_flags = flags;
}

void CBlock::swapEntities(std::vector<CEnt*>& entities) {
  // Mementos hold entities without holes.
  compact();
  m_ranks.reset();
  m_noLookups = m_noAttdefs = 0;
  for (CEnt* ent : m_entities) disown(*ent);
  m_entities.swap(entities);
  std::size_t kept = 0;
  for (CEnt* ent : m_entities) {
    if (ent->isHeld()) continue;  // by another owner meanwhile
    m_entities[kept] = ent;
    own(*ent, kept++);
  }
  m_entities.resize(kept);
  setFlags(kHasAttdefs, m_noAttdefs != 0);
  invalidateBdry();
}

void CBlock::setMemento(const CBlockMemento& memento) {
  m_entities.reserve(memento.m_entities.size());  // before anything changes
  clearEntities();
  m_base = memento.m_base;
  for (CEnt* ent : memento.m_entities) restore(ent);
  setFlags(memento.m_flags);
}

bool CBlock::operator==(const CBlockMemento& memento) const {
  if (m_base != memento.m_base || getFlags() != memento.m_flags) return false;
  // A memento's list has no holes.
  compact();
  return m_entities == memento.m_entities;
}

// A look-up through the holes is logarithmic, so the array is compacted as soon as that has cost as
// much as compaction.
CEnt* CBlock::at(std::size_t i) const {
  if (m_noHoles != 0) {
    if (m_noHoles > m_entities.size() / 2 || ++m_noLookups > m_entities.size()) {
      compact();
    } else {
      if (vek0::detail::needRanks(m_ranks, m_entities)) return m_entities[m_ranks->select(i)];
      compact();
    }
  }
  return m_entities[i];
}

std::size_t CBlock::firstRaw(std::size_t from) const {
  return vek0::detail::firstUsed(m_entities, from);
}

void CBlock::compact() const {
  if (m_noHoles == 0) return;
  std::size_t kept = 0, boxed = 0;
  for (std::size_t raw = 0; raw < m_entities.size(); ++raw) {
    CEnt* ent = m_entities[raw];
    if (ent == nullptr) continue;
    // `m_noBoxed` must keep separating the entities that the extents include from later ones.
    if (raw < m_noBoxed) ++boxed;
    ent->m_pos = kept;
    m_entities[kept++] = ent;
  }
  m_entities.resize(kept);
  m_noBoxed = boxed;
  m_noHoles = m_noLookups = 0;
  m_ranks.reset();
}

void CBlock::refreshBdry() const {
  // The extents are a cache, and every block is a heap object that is not itself const.
  BdryWalk().run(const_cast<CBlock&>(*this));
}

void CBlock::growBdry() {
  if (m_bdryStale) {
    m_bdry.initRegion();
    m_noBoxed = 0;
  }
  for (; m_noBoxed < m_entities.size(); ++m_noBoxed) {
    CEnt* ent = m_entities[m_noBoxed];
    if (ent == nullptr || isAttdef(*ent)) continue;
    // The block of an insert may have changed since its extents were computed.
    if (ent->getEntInsert() != nullptr) ent->dirtyBdry();
    m_bdry.updateRegion(ent->getBdry());
  }
  m_bdryStale = false;
}

// Extents that were never requested have no dependents, so the cost of a notification is covered by
// the computation that it invalidates. The same applies to indirect users.
void CBlock::tellUsers() {
  if (m_item == nullptr || !std::exchange(m_bdryAsked, false)) return;
  // Edges may be missing after a lack of memory, so every block is told.
  if (m_item->graph->isOutdated()) return m_item->graph->tellAll();
  BlockGraphItem* told = m_item;
  // The list of blocks to tell is linked through their items and needs no memory.
  told->nextTold = nullptr;
  while (told != nullptr) {
    const BlockGraphItem* item = std::exchange(told, told->nextTold);
    for (const BlockGraphEdge* edge = item->users; edge != nullptr; edge = edge->nextToTarget) {
      if (!edge->user->block->hearOfChange()) continue;
      edge->user->nextTold = told;
      told = edge->user;
    }
  }
}

// Marks the extents as stale because something that the block shows has changed; returns whether
// its own users must be told.
bool CBlock::hearOfChange() {
  if (m_bdryStale) return false;
  ++m_edition;
  m_bdryStale = true;
  dirtyInserts();
  return std::exchange(m_bdryAsked, false);
}

void CBlock::dirtyInserts() {
  for (CEnt* ent : m_entities)
    if (ent != nullptr && ent->getEntInsert() != nullptr) ent->dirtyBdry();
}

CBlock::CAttdefIterator::CAttdefIterator(const CBlock& block) : m_block(&block) { skip(); }

CEntAttdef* CBlock::CAttdefIterator::operator*() const {
  const auto& entities = m_block->m_entities;
  return m_raw < entities.size() ? static_cast<CEntAttdef*>(entities[m_raw]) : nullptr;
}

CBlock::CAttdefIterator& CBlock::CAttdefIterator::operator++() {
  if (m_raw < m_block->m_entities.size()) ++m_raw;
  skip();
  return *this;
}

CBlock::CAttdefIterator CBlock::CAttdefIterator::operator++(int) {
  CAttdefIterator before = *this;
  ++*this;
  return before;
}

void CBlock::CAttdefIterator::skip() {
  const auto& entities = m_block->m_entities;
  m_raw = m_block->firstRaw(m_raw);
  while (m_raw < entities.size() && !isAttdef(*entities[m_raw]))
    m_raw = m_block->firstRaw(m_raw + 1);
}

CBlock::CInsertIterator::CInsertIterator(const CBlock& block) : m_block(&block) { skip(); }

CEntInsertBase* CBlock::CInsertIterator::operator*() const {
  const auto& entities = m_block->m_entities;
  return m_raw < entities.size() ? entities[m_raw]->getEntInsert() : nullptr;
}

CBlock::CInsertIterator& CBlock::CInsertIterator::operator++() {
  if (m_raw < m_block->m_entities.size()) ++m_raw;
  skip();
  return *this;
}

CBlock::CInsertIterator CBlock::CInsertIterator::operator++(int) {
  CInsertIterator before = *this;
  ++*this;
  return before;
}

void CBlock::CInsertIterator::skip() {
  const auto& entities = m_block->m_entities;
  m_raw = m_block->firstRaw(m_raw);
  while (m_raw < entities.size() && entities[m_raw]->getEntInsert() == nullptr)
    m_raw = m_block->firstRaw(m_raw + 1);
}

CBlockMemento::CBlockMemento(const CBlock& block)
    : m_base(block.getPnt()), m_flags(block.getFlags()) {
  block.compact();
  m_entities = block.m_entities;
}

CBlockMemento::CBlockMemento(const PNT_3D& base, long flags, const std::list<CEnt*>& entities)
    : m_base(base), m_flags(flags) {
  m_entities.reserve(entities.size());
  for (CEnt* ent : entities) {
    if (ent == nullptr || ent->isHeld()) continue;
    m_entities.push_back(ent);
    if (isAttdef(*ent)) m_flags |= CBlock::kHasAttdefs;
  }
}

CBlockMemento::~CBlockMemento() = default;

void CBlockMemento::destroyEntity() {
  // Entities that are part of a block or the drawing again are not this memento's to delete.
  std::erase_if(m_entities, [](const CEnt* ent) { return ent->isHeld(); });
  for (const CEnt* ent : m_entities) delete ent;
  m_entities.clear();
}
