// The undo stack. A step is a list of actions; undo swaps them from last to first, redo from first
// to last. Making an edit means redoing its action for the first time (`perform`), so that all
// three share one path. Hosts make changes in place after `keep`, which records a snapshot once per
// object and step. If a swap runs out of memory, the actions swapped so far are swapped back. That
// needs no memory, because each keeps what it displaced until the whole step has succeeded.
#include "vek0core/drawing/undostack.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "drawing/itemuse.h"
#include "drawing/undomembers.h"
#include "drawing/undosnapshots.h"
#include "entities/newornull.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entcast.h"

using vek0::detail::BlockEntMembership;
using vek0::detail::BlockHeadSnapshot;
using vek0::detail::ContentExchange;
using vek0::detail::EntMembership;
using vek0::detail::GeometrySnapshot;
using vek0::detail::HatchExchange;
using vek0::detail::ItemMembership;
using vek0::detail::ItemSnapshot;
using vek0::detail::LayoutSnapshot;
using vek0::detail::PointerSet;
using vek0::detail::PropertiesSnapshot;
using vek0::detail::VarsSnapshot;

namespace {

constexpr std::size_t kAllocatorBytes = 16;  // overhead of a heap object

using vek0::detail::isUsed;
using vek0::detail::reinstateUsed;

// Whether the block was created for a hatch and nothing shows it at present.
bool isIdleHatchBlock(const CBlockTable& table, const CBlock* block) {
  return block != nullptr && table.contains(block) && isHatchName(block->getName()) &&
         block->getEntities() <= 0;
}

// The content of a reference is reloaded, so its edits could not be undone.
bool isContent(const CBlock* block) {
  if (block == nullptr || block->getContentOf() != nullptr) return block != nullptr;
  return block->isXRef() &&
         static_cast<const CBlockXRef*>(block)->getStatus() == CBlockXRef::Status::loaded;
}

void forgetTargets(PointerSet (&targets)[2]) {
  for (PointerSet& part : targets) part.clear();
}

bool areFree(const std::list<CEnt*>& entities) {
  return std::none_of(entities.begin(), entities.end(),
                      [](const CEnt* ent) { return ent == nullptr || ent->isHeld(); });
}

}  // namespace

// Makes an edit outside a step a step by itself.
class CUndoStack::AutoStep {
 public:
  explicit AutoStep(CUndoStack& stack) : m_stack(stack) { m_stack.begin({}); }
  AutoStep(const AutoStep&) = delete;
  AutoStep& operator=(const AutoStep&) = delete;
  ~AutoStep() { m_stack.commit(); }

 private:
  CUndoStack& m_stack;
};

CUndoStack::Step::Step(const zim::WString& given) : name(given) {}

CUndoStack::CUndoStack(CData& data, std::size_t limit) : m_data(data), m_limit(limit) {}

CUndoStack::~CUndoStack() { clear(); }

// --- Steps

void CUndoStack::begin(const zim::WString& name) {
  if (m_depth == 0) m_open.emplace_back(name);
  ++m_depth;
}

bool CUndoStack::commit() {
  if (m_depth == 0 || --m_depth != 0) return false;
  forgetTargets(m_kept);
  if (actions().empty()) {
    // A step without edits must not discard what can be redone.
    m_open.clear();
    return false;
  }
  forgetUndone();
  m_open.front().id = ++m_lastId;
  m_done.splice(m_done.end(), m_open);
  measure(m_done.back());
  trim();
  tell(m_done.back());
  return true;
}

void CUndoStack::rollback() {
  if (m_depth == 0) return;
  unwind(0);
  reinstateUsed(m_data);
  m_depth = 0;
  m_open.clear();
  forgetTargets(m_kept);
}

// Reverts the open step to its first `count` actions.
void CUndoStack::unwind(std::size_t count) {
  for (; actions().size() > count; actions().pop_back()) actions().back()->takeBack(m_data);
}

bool CUndoStack::undo() {
  if (m_depth != 0 || m_done.empty() || !trySwap(m_done.back(), false)) return false;
  reinstateUsed(m_data);
  m_undone.splice(m_undone.end(), m_done, std::prev(m_done.end()));
  // Sizes change: an action that holds a removed object counts its memory.
  measure(m_undone.back());
  tell(m_undone.back());
  return true;
}

bool CUndoStack::redo() {
  if (m_depth != 0 || m_undone.empty() || !trySwap(m_undone.back(), true)) return false;
  reinstateUsed(m_data);
  m_done.splice(m_done.end(), m_undone, std::prev(m_undone.end()));
  measure(m_done.back());
  tell(m_done.back());
  return true;
}

void CUndoStack::tell(const Step& step) const {
  if (!m_listener) return;
  for (const auto& action : step.actions) action->tell(*m_listener);
}

bool CUndoStack::trySwap(Step& step, bool forward) try {
  swapAll(step, forward);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

// Swaps all actions of a step or none: after a failure those already swapped are swapped back,
// which cannot fail.
void CUndoStack::swapAll(Step& step, bool forward) {
  const std::size_t count = step.actions.size();
  const auto action = [&](std::size_t i) -> Action& {
    return *step.actions[forward ? i : count - 1 - i];
  };
  std::size_t done = 0;
  try {
    for (; done < count; ++done) action(done).swap(m_data);
  } catch (const std::bad_alloc&) {
    while (done > 0) action(--done).swapBack(m_data);
    throw;
  }
  for (std::size_t i = 0; i < count; ++i) action(i).settle();
}

void CUndoStack::clear() {
  try {
    rollback();
  } catch (const std::bad_alloc&) {
    // Without memory the open edits cannot be taken back, but they can be dropped.
    while (!actions().empty()) actions().pop_back();
    rollback();
  }
  forgetUndone();
  while (!m_done.empty()) dropOldest();
  m_mergedId = 0;
}

const zim::WString& CUndoStack::getUndoName() const {
  return m_done.empty() ? m_noName : m_done.back().name;
}

const zim::WString& CUndoStack::getRedoName() const {
  return m_undone.empty() ? m_noName : m_undone.back().name;
}

void CUndoStack::setLimit(std::size_t bytes) {
  m_limit = bytes;
  if (m_depth == 0) trim();
}

std::size_t CUndoStack::bytesOf(const Action& action) {
  return action.size() + sizeof(std::unique_ptr<Action>) + kAllocatorBytes;
}

void CUndoStack::measure(Step& step) {
  m_bytes -= step.bytes;
  step.bytes = sizeof step;
  for (const auto& action : step.actions) step.bytes += bytesOf(*action);
  m_bytes += step.bytes;
}

void CUndoStack::trim() {
  // The last step remains, whatever its size: undoing it must always be possible.
  while (m_bytes > m_limit && m_done.size() > 1) dropOldest();
}

// Objects owned by an action are referenced only by objects removed earlier (in done steps) or
// added later (in undone steps). Those are deleted first.
void CUndoStack::dropOldest() {
  Step& step = m_done.front();
  m_bytes -= step.bytes;
  for (auto& action : step.actions) action.reset();
  m_done.pop_front();
}

void CUndoStack::forgetUndone() {
  for (Step& step : m_undone) {
    m_bytes -= step.bytes;
    while (!step.actions.empty()) step.actions.pop_back();
  }
  m_undone.clear();
}

// Adds an action to the open step whose edit is made, or is about to be made by the host.
bool CUndoStack::record(std::unique_ptr<Action> action) {
  if (!action) return false;
  try {
    // The slot first: after that, storing the action cannot fail.
    actions().push_back(nullptr);
  } catch (const std::bad_alloc&) {
    action->letGo();
    return false;
  }
  actions().back() = std::move(action);
  return true;
}

// Makes an edit by redoing it for the first time.
bool CUndoStack::perform(std::unique_ptr<Action> action) {
  Action* const edit = action.get();
  if (!record(std::move(action))) return false;
  try {
    edit->swap(m_data);
    edit->settle();
    return true;
  } catch (const std::bad_alloc&) {
    // The edit was not made, so the action must not delete its object.
    edit->letGo();
    actions().pop_back();
    return false;
  }
}

// An edit in a step; false when there is no memory.
template <class Edit>
bool CUndoStack::attempt(const Edit& edit) try {
  const AutoStep step(*this);
  return edit();
} catch (const std::bad_alloc&) {
  return false;
}

// --- Before a change in place

// Null when the open step has one already.
template <class Snapshot, class Target>
std::unique_ptr<CUndoStack::Action> CUndoStack::makeOnce(Target& target) const {
  if (m_kept[Snapshot::kPart].contains(&target)) return nullptr;
  auto snapshot = std::make_unique<Snapshot>(target);
  if (!snapshot->isValid()) throw std::bad_alloc();
  return snapshot;
}

template <class... Snapshots, class Target>
bool CUndoStack::keepOnce(Target& target) {
  return attempt([&] {
    std::unique_ptr<Action> made[] = {makeOnce<Snapshots>(target)...};
    // All memory is reserved before the first snapshot is stored: all or nothing.
    const std::size_t needed = actions().size() + sizeof...(Snapshots);
    if (needed > actions().capacity()) actions().reserve(2 * needed);
    for (PointerSet& part : m_kept) part.reserve(1);
    for (std::unique_ptr<Action>& snapshot : made) {
      if (!snapshot) continue;
      m_kept[snapshot->part()].insert(snapshot->snapshotOf());
      actions().push_back(std::move(snapshot));
    }
    return true;
    // The analyzer overlooks the destructors of arrays.
  });  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
}

bool CUndoStack::keep(CEnt& ent) { return keepOnce<PropertiesSnapshot, GeometrySnapshot>(ent); }
bool CUndoStack::keepProperties(CEnt& ent) { return keepOnce<PropertiesSnapshot>(ent); }
bool CUndoStack::keepGeometry(CEnt& ent) { return keepOnce<GeometrySnapshot>(ent); }
bool CUndoStack::keep(CLayer& layer) {
  return keepOnce<ItemSnapshot<CLayer, CLayerMemento>>(layer);
}
bool CUndoStack::keep(CLtype& ltype) {
  return keepOnce<ItemSnapshot<CLtype, CLtypeMemento>>(ltype);
}
bool CUndoStack::keep(CStyle& style) {
  return keepOnce<ItemSnapshot<CStyle, CStyleMemento>>(style);
}
bool CUndoStack::keep(CBlock& block) { return keepOnce<BlockHeadSnapshot>(block); }
bool CUndoStack::keep(CLayout& layout) { return keepOnce<LayoutSnapshot>(layout); }
bool CUndoStack::keepVars() { return keepOnce<VarsSnapshot>(m_data.getVars()); }

// --- Adding, removing, redefining

bool CUndoStack::add(CEnt* ent) {
  if (ent == nullptr || ent->isHeld()) return false;
  return attempt([&] {
    const std::size_t before = actions().size();
    if (bringBlock(*ent) && perform(newAction<EntMembership>(*ent, false))) return true;
    forget(before);
    return false;
  });
}

bool CUndoStack::add(CBlock& block, CEnt* ent) try {
  if (ent == nullptr || ent->isHeld() || isContent(&block)) return false;
  const CBlockGraph& graph = m_data.getBlockTable().getBlockGraph();
  const CEntInsertBase* insert = ent->getEntInsert();
  CBlock* inner = insert != nullptr ? insert->getBlock() : nullptr;
  // Inserting would make the block contain itself.
  if (inner != nullptr && !graph.canSubstitute(block, {inner})) return false;
  return attempt([&] {
    const std::size_t before = actions().size();
    if (bringBlock(*ent) && perform(newAction<BlockEntMembership>(block, *ent, false))) return true;
    forget(before);
    return false;
  });
} catch (const std::bad_alloc&) {
  return false;
}

bool CUndoStack::remove(CEnt* ent) {
  if (ent == nullptr) return false;
  CBlock* owner = ent->getOwnerBlock();
  // Content of references is reloaded and cannot be edited.
  if (owner == nullptr ? !m_data.getEntTable().contains(ent) : isContent(owner)) return false;
  return attempt([&] {
    const std::size_t before = actions().size();
    const bool removed = owner != nullptr
                             ? perform(newAction<BlockEntMembership>(*owner, *ent, true))
                             : perform(newAction<EntMembership>(*ent, true));
    const CEntHatch* hatch = castHatch(ent);
    if (removed && (hatch == nullptr || takeBlock(hatch->getBlock()))) return true;
    unwind(before);
    return false;
  });
}

// The block of a hatch was added to the table when the hatch was created: from now on it is added
// and removed with the hatch.
bool CUndoStack::bringBlock(CEnt& ent) {
  CBlockTable& table = m_data.getBlockTable();
  const CEntHatch* hatch = castHatch(&ent);
  CBlock* block = hatch != nullptr ? hatch->getBlock() : nullptr;
  if (!isIdleHatchBlock(table, block)) return true;
  return record(newAction<ItemMembership<CBlockTable, CBlock>>(table, *block, true));
}

bool CUndoStack::takeBlock(CBlock* block) {
  return !isIdleHatchBlock(m_data.getBlockTable(), block) || remove(block);
}

// Drops actions without an edit; they do not own their objects.
void CUndoStack::forget(std::size_t count) {
  for (; actions().size() > count; actions().pop_back()) actions().back()->letGo();
}

template <class Made, class... Args>
std::unique_ptr<Made> CUndoStack::newAction(Args&&... args) {
  return std::unique_ptr<Made>(vek0::detail::newOrNull<Made>(std::forward<Args>(args)...));
}

template <class Table, class Item>
bool CUndoStack::addItem(Table& table, Item* item) {
  if (item == nullptr || item->isHeld()) return false;
  return attempt(
      [&] { return perform(newAction<ItemMembership<Table, Item>>(table, *item, false)); });
}

template <class Table, class Item>
bool CUndoStack::removeItem(Table& table, Item* item) {
  if (item == nullptr || !table.contains(item)) return false;
  return attempt([&] {
    // An item in use cannot be removed, as its users would refer to an object outside the drawing.
    return !isUsed(m_data, *item) &&
           perform(newAction<ItemMembership<Table, Item>>(table, *item, true));
  });
}

bool CUndoStack::add(CLayer* layer) { return addItem(m_data.getLayerTable(), layer); }
bool CUndoStack::add(CLtype* ltype) { return addItem(m_data.getLtypeTable(), ltype); }
bool CUndoStack::add(CStyle* style) { return addItem(m_data.getStyleTable(), style); }
bool CUndoStack::add(CBlock* block) { return addItem(m_data.getBlockTable(), block); }
bool CUndoStack::remove(CLayer* layer) { return removeItem(m_data.getLayerTable(), layer); }
bool CUndoStack::remove(CLtype* ltype) { return removeItem(m_data.getLtypeTable(), ltype); }
bool CUndoStack::remove(CStyle* style) { return removeItem(m_data.getStyleTable(), style); }
bool CUndoStack::remove(CBlock* block) { return removeItem(m_data.getBlockTable(), block); }
bool CUndoStack::remove(CBlockXRef* xref) { return removeItem(m_data.getBlockXRefTable(), xref); }
bool CUndoStack::add(CBlockXRef* xref) { return addItem(m_data.getBlockXRefTable(), xref); }

bool CUndoStack::redefine(CBlock& block, const PNT_3D& base, long flags,
                          const std::list<CEnt*>& newEntities) {
  CBlockTable& table = m_data.getBlockTable();
  if (!table.contains(&block) || !areFree(newEntities)) return false;
  return attempt([&] {
    if (!table.canRedefine(&block, newEntities)) return false;
    auto exchange = std::make_unique<ContentExchange>(block);
    ContentExchange& made = *exchange;
    const std::size_t before = actions().size();
    if (!record(std::move(exchange))) return false;
    try {
      table.Redefine(&block, base, flags, newEntities);
    } catch (const std::bad_alloc&) {
      forget(before);
      return false;
    }
    made.adopt();
    m_data.getEntTable().invalidateBdry();
    return true;
  });
}

bool CUndoStack::redefine(CEntHatch& hatch, double scale, double rotate, const HATCH_TYPE& type) {
  if (scale == hatch.getHatchScale() && rotate == hatch.getHatchRotate() &&
      &type == &hatch.getHatchType())
    return true;
  CBlockTable& table = m_data.getBlockTable();
  return attempt([&] {
    std::unique_ptr<CBlock> fresh(
        createHatch(getHatchName(table), type, scale, rotate, hatch.getBoundary(), m_data));
    if (!fresh) return false;
    const std::size_t before = actions().size();
    CBlock* const old = hatch.getBlock();
    if (!perform(newAction<HatchExchange>(hatch, fresh.get(),
                                          vek0::detail::HatchParameters{&type, scale, rotate})))
      return false;
    if (!exchangeBlocks(old, fresh)) {
      unwind(before);
      return false;
    }
    if (CBlock* owner = hatch.getOwnerBlock()) table.updateBlock(owner);
    return true;
  });
}

// The old block is removed first, so that its number is free for the new one.
bool CUndoStack::exchangeBlocks(CBlock* old, std::unique_ptr<CBlock>& fresh) {
  try {
    if (!takeBlock(old)) return false;
    fresh->setName(getHatchName(m_data.getBlockTable()));
  } catch (const std::bad_alloc&) {
    return false;
  }
  return add(fresh.get()) && fresh.release() != nullptr;
}
