// Additions, removals and exchanges. An object belongs either to the drawing or, while it is out of
// the drawing, to the action. An action remembers the object's place, so that undo restores the
// drawing order as well. Sizes are estimates that limit the memory of the stack.
#include "drawing/undomembers.h"

#include <new>

#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entpolyline.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kEntBytes = 256;   // including allocator overhead
constexpr std::size_t kItemBytes = 256;  // including allocator overhead

}  // namespace

std::size_t bytesOf(const CEnt& ent) {
  std::size_t bytes = kEntBytes;
  if (ent.getType() == CEntPolyline::kType) {
    static_cast<const CEntPolyline&>(ent).forEachBulged(
        [&bytes](const PNT_3D&, double, double, double, long) { bytes += sizeof(BULGED_VERTEX); });
  }
  if (const CEntInsertBase* insert = ent.getEntInsert())
    bytes += insert->GetNoAttribs() * kEntBytes;
  return bytes;
}

std::size_t bytesOf(const CBlock& block) { return kItemBytes + block.size() * kEntBytes; }

std::size_t bytesOf(const CBlockXRef& xref) {
  std::size_t bytes = bytesOf(static_cast<const CBlock&>(xref));
  for (const auto& block : xref.getBlocks()) bytes += bytesOf(*block);
  const int items = xref.getLayerTable().size() + xref.getLtypeTable().size();
  return bytes + static_cast<std::size_t>(items) * kItemBytes;
}

std::size_t bytesOf(const CNamedItem&) { return kItemBytes; }

void countUses(const CLtype& ltype, bool on) {
  for (int i = 0; i < ltype.getNoDashes(); ++i) {
    const TEXT_3D* text = ltype[i]->GetText();
    CStyle* style = text != nullptr ? text->getStyle() : nullptr;
    if (style != nullptr) on ? style->addDash() : style->decDash();
  }
}

void countUses(const CBlockXRef& xref, bool on) {
  for (int i = 0; i < xref.getLayerTable().size(); ++i)
    if (CLtype* ltype = xref.getLayerTable()[i]->getLtype())
      on ? ltype->addLayer() : ltype->decLayer();
  for (int i = 0; i < xref.getLtypeTable().size(); ++i) countUses(*xref.getLtypeTable()[i], on);
}

void EntMembership::take(CData& data) {
  CEntTable& table = data.getEntTable();
  // The place is only valid until the next change, hence before the removal.
  m_place = table.getPlace(*m_item);
  table.remove(m_item, m_slots);
}

void EntMembership::put(CData& data) {
  CEntTable& table = data.getEntTable();
  // The first addition has no previous place and appends.
  m_place ? table.restore(m_item, *m_place, m_slots) : table.add(m_item, m_slots);
}

void BlockEntMembership::take(CData& data) {
  const bool hadAttdefs = (m_block.getFlags() & CBlock::kHasAttdefs) != 0;
  m_place = m_block.getPlace(*m_item);
  // The block corrects the flag when its content changes, see `swapAttdefFlag`.
  m_block.remove(m_item);
  swapAttdefFlag(hadAttdefs);
  if (isRegistered(data)) m_item->removeTbls(data.getHandleGestor());
  refresh(data);
}

void BlockEntMembership::put(CData& data) {
  const bool hadAttdefs = (m_block.getFlags() & CBlock::kHasAttdefs) != 0;
  const bool isCounted = isRegistered(data);
  // Registered first: this can fail, while restoring within the reserved capacity cannot.
  if (isCounted) m_item->addTbls(data.getHandleGestor());
  try {
    // On first insertion, the block moves the entity by its base point.
    m_place ? m_block.restore(m_item, *m_place) : m_block.add(m_item);
  } catch (const std::bad_alloc&) {
    if (isCounted) m_item->removeTbls(data.getHandleGestor());
    throw;
  }
  swapAttdefFlag(hadAttdefs);
  refresh(data);
}

// Files set the flag even for blocks without attribute definitions. The block corrects it with its
// first change; undoing that change must restore it.
void BlockEntMembership::swapAttdefFlag(bool hadAttdefs) {
  if (m_hadAttdefs) m_block.setFlags(CBlock::kHasAttdefs, *m_hadAttdefs);
  m_hadAttdefs = hadAttdefs;
}

// Tables register the entities of their blocks; references and blocks outside a table do not.
bool BlockEntMembership::isRegistered(const CData& data) const {
  return data.getBlockTable().contains(&m_block);
}

void BlockEntMembership::refresh(CData& data) {
  data.getEntTable().invalidateBdry();
  if (m_item->getEntInsert() != nullptr) data.getBlockTable().updateBlock(&m_block);
}

ContentExchange::ContentExchange(CBlock& block) : m_block(block), m_memento(block.createMemento()) {
  if (m_memento == nullptr) throw std::bad_alloc();
}

ContentExchange::~ContentExchange() {
  // Entities in the memento belong to it only after the redefinition was made.
  if (m_isMade) m_memento->destroyEntity();
}

void ContentExchange::swap(CData& data) {
  // The memento holds the other content afterwards.
  data.getBlockTable().exchange(&m_block, *m_memento);
  data.getEntTable().invalidateBdry();
}

std::size_t ContentExchange::size() const {
  std::size_t bytes = sizeof *this + sizeof *m_memento;
  if (!m_isMade) return bytes;
  for (const CEnt* ent : m_memento->getEntities()) bytes += bytesOf(*ent) + 2 * sizeof(void*);
  return bytes;
}

void HatchExchange::swap(CData& data) {
  CBlock* block = m_hatch.getBlock();
  const HatchParameters present{&m_hatch.getHatchType(), m_hatch.getHatchScale(),
                                m_hatch.getHatchRotate()};
  m_hatch.setShown(m_block, m_parameters.scale, m_parameters.rotate, *m_parameters.type);
  m_block = block;
  m_parameters = present;
  data.getEntTable().invalidateBdry();
  // The containing block has an edge to the hatch's block.
  if (CBlock* owner = m_hatch.getOwnerBlock()) {
    owner->invalidateBdry();
    data.getBlockTable().updateBlock(owner);
  }
}

}  // namespace vek0::detail
