#include "drawing/undomembers.h"

#include "vek0core/entities/enthatch.h"
#include "vek0core/entities/entpolyline.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kEntBytes = 256;   // with what the allocator adds
constexpr std::size_t kItemBytes = 256;  // likewise

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
  m_place = table.getPlace(*m_item);
  table.remove(m_item);
}

void EntMembership::put(CData& data) {
  CEntTable& table = data.getEntTable();
  m_place ? table.restore(m_item, *m_place) : table.add(m_item);
}

void BlockEntMembership::take(CData& data) {
  const bool hadAttdefs = (m_block.getFlags() & CBlock::kHasAttdefs) != 0;
  m_place = m_block.getPlace(*m_item);
  m_block.remove(m_item);
  swapAttdefFlag(hadAttdefs);
  if (isRegistered(data)) m_item->removeTbls(data.getHandleGestor());
  refresh(data);
}

void BlockEntMembership::put(CData& data) {
  const bool hadAttdefs = (m_block.getFlags() & CBlock::kHasAttdefs) != 0;
  // The first time the block moves it to where it belongs.
  m_place ? m_block.restore(m_item, *m_place) : m_block.add(m_item);
  swapAttdefFlag(hadAttdefs);
  if (isRegistered(data)) m_item->addTbls(data.getHandleGestor());
  refresh(data);
}

// Files set the flag of blocks without attribute definitions too. The block corrects it with its
// first change, which is undone with that.
void BlockEntMembership::swapAttdefFlag(bool hadAttdefs) {
  if (m_hadAttdefs) m_block.setFlags(CBlock::kHasAttdefs, *m_hadAttdefs);
  m_hadAttdefs = hadAttdefs;
}

// Tables register what their blocks hold; references and blocks in no table do not.
bool BlockEntMembership::isRegistered(const CData& data) const {
  return data.getBlockTable().contains(&m_block);
}

void BlockEntMembership::refresh(CData& data) {
  data.getEntTable().invalidateBdry();
  if (m_item->getEntInsert() != nullptr) data.getBlockTable().updateBlock(&m_block);
}

ContentExchange::ContentExchange(CBlock& block) : m_block(block), m_memento(block.createMemento()) {
  notePresent();
}

ContentExchange::~ContentExchange() {
  for (const CEnt* ent : m_owned) delete ent;
}

void ContentExchange::notePresent() {
  m_present.clear();
  m_present.reserve(m_block.size());
  for (unsigned i = 0; i < m_block.size(); ++i) m_present.push_back(m_block[i]);
}

bool ContentExchange::swap(CData& data) {
  std::unique_ptr<CBlockMemento> present(m_block.createMemento());
  if (present == nullptr) return false;
  notePresent();
  data.getBlockTable().setMemento(&m_block, *m_memento);
  data.getEntTable().invalidateBdry();
  m_memento = std::move(present);
  adopt();
  std::erase_if(m_owned, [](const CEnt* ent) { return ent->isHeld(); });
  return true;
}

std::size_t ContentExchange::size() const {
  std::size_t bytes = sizeof *this + sizeof *m_memento;
  for (const CEnt* ent : m_owned) bytes += bytesOf(*ent) + 2 * sizeof(ent);
  return bytes;
}

bool HatchExchange::swap(CData& data) {
  CBlock* block = m_hatch.getBlock();
  const double scale = m_hatch.getHatchScale(), rotate = m_hatch.getHatchRotate();
  const HATCH_TYPE* type = &m_hatch.getHatchType();
  m_hatch.setShown(m_block, m_scale, m_rotate, *m_type);
  m_block = block;
  m_scale = scale;
  m_rotate = rotate;
  m_type = type;
  data.getEntTable().invalidateBdry();
  if (CBlock* owner = m_hatch.getOwnerBlock()) {
    owner->invalidateBdry();
    data.getBlockTable().updateBlock(owner);
  }
  return true;
}

}  // namespace vek0::detail
