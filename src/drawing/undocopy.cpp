#include <memory>
#include <new>
#include <utility>

#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/drawing/handlemanager.h"
#include "vek0core/drawing/undostack.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entcast.h"

namespace {

// A hatch has its block from the moment when it is created.
void discard(CBlockTable& table, std::unique_ptr<CEnt> ent) {
  const CEntHatch* hatch = castHatch(ent.get());
  CBlock* block = hatch != nullptr ? hatch->getBlock() : nullptr;
  ent.reset();
  if (block == nullptr) return;
  table.remove(block);
  delete block;
}

}  // namespace

CEnt* CUndoStack::copy(const CEnt& ent) try {
  std::unique_ptr<CEnt> made(cloneEnt(m_data, ent));
  if (made) made->setRecord(ent.getRecord());
  CBlock* owner = ent.getOwnerBlock();
  if (!made || !(owner != nullptr ? add(*owner, made.get()) : add(made.get()))) {
    discard(m_data.getBlockTable(), std::move(made));
    return nullptr;
  }
  auto* manager = dynamic_cast<CHandleManager*>(&m_data.getHandleGestor());
  if (manager != nullptr) manager->setOrigin(made->GetHandle(), ent.GetHandle());
  return made.release();
} catch (const std::bad_alloc&) {
  return nullptr;
}
