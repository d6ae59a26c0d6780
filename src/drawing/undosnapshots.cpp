#include "drawing/undosnapshots.h"

#include <optional>
#include <utility>

#include "drawing/everyentity.h"
#include "drawing/uncountededit.h"
#include "vek0core/entities/enthatch.h"

namespace vek0::detail {
namespace {

std::size_t textBytes(const zim::WString& text) {
  return static_cast<std::size_t>(text.Length()) * sizeof(zim::Char);
}

// Extents of what shows the entity, and the edges of the block that it is in.
void refreshOwner(CData& data, CEnt& ent) {
  data.getEntTable().invalidateBdry();
  CBlock* block = ent.getOwnerBlock();
  if (block == nullptr) return;
  block->invalidateBdry();
  if (ent.getEntInsert() != nullptr) data.getBlockTable().updateBlock(block);
}

// Fonts decide how far texts reach.
void refreshTexts(CData& data, const CStyle& style) {
  forEveryEntity(data, true, [&](CEnt& ent) {
    bool shows = ent.getStyle() == &style;
    forEveryAttrib(ent, [&](CEntAttrib& attrib) {
      if (attrib.getStyle() != &style) return;
      attrib.calcBdry();
      shows = true;
    });
    if (shows) spreadBdry(data, ent);
    return true;
  });
}

void refreshUsers(CData& data, const CLayer&) { data.getEntTable().invalidateBdry(); }
void refreshUsers(CData&, const CLtype&) {}
void refreshUsers(CData& data, const CStyle& style) { refreshTexts(data, style); }

std::size_t heapBytes(const CLayer& layer) { return textBytes(layer.getName()); }
std::size_t heapBytes(const CStyle& style) { return textBytes(style.getName()); }
std::size_t heapBytes(const CLtype& ltype) {
  return textBytes(ltype.getName()) + textBytes(ltype.getDesc()) +
         static_cast<std::size_t>(ltype.getNoDashes()) * sizeof(TEXT_3D);
}

}  // namespace

ContentMark::ContentMark(const CEnt& ent) : m_xref(nullptr), m_noContents(0) {
  const CBlock* owner = ent.getOwnerBlock();
  if (owner == nullptr) return;
  m_xref = owner->isXRef() ? static_cast<const CBlockXRef*>(owner) : owner->getContentOf();
  if (m_xref != nullptr) m_noContents = m_xref->getNoContents();
}

bool ContentMark::isGone() const {
  return m_xref != nullptr && m_xref->getNoContents() != m_noContents;
}

bool PropertiesSnapshot::swap(CData& data) {
  if (m_mark.isGone()) return true;
  std::unique_ptr<CEntBaseMemento> present(m_ent.createBaseMemento());
  if (present == nullptr) return false;
  std::optional<UncountedEdit> edit;
  if (UncountedEdit::isFor(m_ent.getOwnerBlock())) edit.emplace(m_ent);
  m_ent.setMemento(m_memento.get());
  m_memento = std::move(present);
  data.getEntTable().invalidateBdry();  // the layer may be frozen
  return true;
}

bool GeometrySnapshot::swap(CData& data) {
  if (m_mark.isGone()) return true;
  std::unique_ptr<IEntDerivedMemento> present(m_ent.createDerivedMemento());
  if (present == nullptr) return false;
  std::optional<UncountedEdit> edit;
  if (UncountedEdit::isFor(m_ent.getOwnerBlock())) edit.emplace(m_ent);
  m_ent.setMemento(data, m_memento.get());
  m_memento = std::move(present);
  refreshOwner(data, m_ent);
  return true;
}

// A hatch's snapshot holds for the block that the hatch shows, and another action of the
// same step may have changed that.
const void* GeometrySnapshot::snapshotOf() const {
  return m_mark.isGone() || m_ent.getType() == CEntHatch::kType ? nullptr : &m_ent;
}

template <class Item, class Memento>
bool ItemSnapshot<Item, Memento>::swap(CData& data) {
  std::unique_ptr<Memento> present(m_item.createMemento());
  if (present == nullptr) return false;
  m_item.setMemento(*m_memento);
  m_memento = std::move(present);
  refreshUsers(data, m_item);
  return true;
}

template <class Item, class Memento>
std::size_t ItemSnapshot<Item, Memento>::size() const {
  return sizeof *this + sizeof *m_memento + heapBytes(m_item);
}

template class ItemSnapshot<CLayer, CLayerMemento>;
template class ItemSnapshot<CLtype, CLtypeMemento>;
template class ItemSnapshot<CStyle, CStyleMemento>;

BlockHeadSnapshot::BlockHeadSnapshot(CBlock& block)
    : m_block(block),
      m_name(block.getName()),
      m_flags(block.getFlags()),
      m_userType(block.GetUserType()),
      m_userData(block.GetUserData()) {
  if (block.isXRef()) m_path = static_cast<CBlockXRef&>(block).getPath();
}

bool BlockHeadSnapshot::swap(CData&) {
  BlockHeadSnapshot present(m_block);
  // Whether there are attribute definitions is for the block itself to say.
  const bool hasAttdefs = (m_block.getFlags() & CBlock::kHasAttdefs) != 0;
  m_block.setName(m_name);
  m_block.setFlags(m_flags);
  m_block.setFlags(CBlock::kHasAttdefs, hasAttdefs);
  m_block.SetUserInfo(m_userType, m_userData);
  if (m_block.isXRef()) static_cast<CBlockXRef&>(m_block).setPath(m_path);
  std::swap(m_name, present.m_name);
  std::swap(m_path, present.m_path);
  m_flags = present.m_flags;
  m_userType = present.m_userType;
  m_userData = present.m_userData;
  return true;
}

std::size_t BlockHeadSnapshot::size() const {
  return sizeof *this + textBytes(m_name) + textBytes(m_path);
}

bool VarsSnapshot::swap(CData&) {
  std::swap(m_vars, m_kept);
  return true;
}

}  // namespace vek0::detail
