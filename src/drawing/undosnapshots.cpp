// Snapshots of objects that a host changes in place. A swap exchanges the memento for one of the
// present state and then refreshes whatever depends on the object: extents, graph edges, use
// counts. Entities of a reference's content are skipped once the content has been reloaded
// (`ContentMark`), because they no longer exist.
#include "drawing/undosnapshots.h"

#include <new>
#include <optional>
#include <utility>

#include "drawing/everyentity.h"
#include "drawing/uncountededit.h"
#include "vek0core/entities/blocks/enthatch.h"

namespace vek0::detail {
namespace {

std::size_t textBytes(const zim::WString& text) {
  return static_cast<std::size_t>(text.Length()) * sizeof(zim::Char);
}

// Updates the extents of everything that shows the entity, and the graph edges of its block.
void refreshOwner(CData& data, CEnt& ent) {
  data.getEntTable().invalidateBdry();
  CBlock* block = ent.getOwnerBlock();
  if (block == nullptr) return;
  block->invalidateBdry();
  // An insert may have changed its block, hence the edges of the block that contains it.
  if (ent.getEntInsert() != nullptr) data.getBlockTable().updateBlock(block);
}

// Fonts determine the extents of texts.
void refreshTexts(CData& data, const CStyle& style) {
  forEveryEntity(data, true, [&](CEnt& ent) {
    bool shows = ent.getStyle() == &style;
    forEveryAttrib(ent, [&](CEntAttrib& attrib) {
      if (attrib.getStyle() != &style) return;
      attrib.invalidateBdry();
      shows = true;
    });
    if (shows) spreadBdry(data, ent);
    return true;
  });
}

template <class Item, class Memento>
void setMemento(Item& item, const Memento& memento, NoParts) {
  item.setMemento(memento);
}
void setMemento(CLtype& ltype, const CLtypeMemento& memento, CLtypeComplexDashSeq& dashes) {
  ltype.setMemento(memento, dashes);
}

void refreshUsers(CData& data, const CLayer&) { data.getEntTable().invalidateBdry(); }
// Linetypes do not influence extents.
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

void PropertiesSnapshot::swap(CData& data) {
  if (m_mark.isGone()) return;
  std::optional<UncountedEdit> edit;
  // Entities of references are not counted, but their setters count.
  if (UncountedEdit::isFor(m_ent.getOwnerBlock())) edit.emplace(m_ent);
  m_ent.exchange(*m_memento);
  data.getEntTable().invalidateBdry();  // the layer may be frozen
}

void PropertiesSnapshot::tell(IUndoListener& listener) const {
  if (!m_mark.isGone()) listener.touched(m_ent);
}

void GeometrySnapshot::tell(IUndoListener& listener) const {
  if (!m_mark.isGone()) listener.touched(m_ent);
}

void GeometrySnapshot::swap(CData& data) {
  if (m_mark.isGone()) return;
  // Created first: after a failure here, nothing has changed.
  std::unique_ptr<IEntDerivedMemento> present(m_ent.createDerivedMemento());
  if (present == nullptr) throw std::bad_alloc();
  std::optional<UncountedEdit> edit;
  if (UncountedEdit::isFor(m_ent.getOwnerBlock())) edit.emplace(m_ent);
  m_displaced = m_ent.replaceParts(data, *m_memento);
  m_set = std::move(m_memento);
  m_memento = std::move(present);
  try {
    // If the parts cover everything, the geometry is already restored.
    if (!m_displaced || !m_displaced->isAll()) m_ent.setMemento(data, m_set.get());
  } catch (const std::bad_alloc&) {
    swapBack(data);
    throw;
  }
  refreshOwner(data, m_ent);
}

void GeometrySnapshot::swapBack(CData& data) {
  if (m_mark.isGone()) return;
  std::optional<UncountedEdit> edit;
  if (UncountedEdit::isFor(m_ent.getOwnerBlock())) edit.emplace(m_ent);
  // The parts first, because the memento describes the original ones.
  if (m_displaced) m_displaced->putBack();
  m_ent.setMemento(data, m_memento.get());
  m_memento = std::move(m_set);
  m_displaced.reset();
  refreshOwner(data, m_ent);
}

void GeometrySnapshot::settle() {
  m_set.reset();
  m_displaced.reset();
}

void GeometrySnapshot::takeBack(CData& data) {
  if (m_mark.isGone()) return;
  std::optional<UncountedEdit> edit;
  if (UncountedEdit::isFor(m_ent.getOwnerBlock())) edit.emplace(m_ent);
  m_ent.setMemento(data, m_memento.get());
  refreshOwner(data, m_ent);
}

// A hatch's snapshot is only valid for the block that the hatch shows, which another action of the
// same step may have replaced.
const void* GeometrySnapshot::snapshotOf() const {
  return m_mark.isGone() || m_ent.getType() == CEntHatch::kType ? nullptr : &m_ent;
}

template <class Item, class Memento>
void ItemSnapshot<Item, Memento>::swap(CData& data) {
  std::unique_ptr<Memento> present(m_item.createMemento());
  if (present == nullptr) throw std::bad_alloc();
  // The elements are created in advance, so that setting them cannot fail.
  m_displaced.emplace(makeParts(*m_memento));
  setMemento(m_item, *m_memento, *m_displaced);
  m_set = std::exchange(m_memento, std::move(present));
  refreshUsers(data, m_item);
}

template <class Item, class Memento>
void ItemSnapshot<Item, Memento>::swapBack(CData& data) {
  setMemento(m_item, *m_memento, *m_displaced);
  m_memento = std::move(m_set);
  settle();
  refreshUsers(data, m_item);
}

template <class Item, class Memento>
void ItemSnapshot<Item, Memento>::settle() {
  m_set.reset();
  m_displaced.reset();
}

template <class Item, class Memento>
void ItemSnapshot<Item, Memento>::takeBack(CData& data) {
  m_item.setMemento(*m_memento);
  refreshUsers(data, m_item);
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

CBlockXRef* BlockHeadSnapshot::xref() const {
  return m_block.isXRef() ? static_cast<CBlockXRef*>(&m_block) : nullptr;
}

// The spare texts reserve room for the present ones, so that swapping back needs no memory.
void BlockHeadSnapshot::swap(CData& data) {
  m_spareName = m_block.getName();
  if (xref() != nullptr) m_sparePath = xref()->getPath();
  takeBack(data);
  std::swap(m_name, m_spareName);
  std::swap(m_path, m_sparePath);
}

void BlockHeadSnapshot::takeBack(CData&) {
  // The path first; if the name fails for lack of memory, the old path fits again.
  if (xref() != nullptr) xref()->setPath(m_path);
  try {
    m_block.setName(m_name);
  } catch (const std::bad_alloc&) {
    if (xref() != nullptr) xref()->setPath(m_sparePath);
    throw;
  }
  exchangeHead();
}

void BlockHeadSnapshot::exchangeHead() {
  const long flags = m_block.getFlags();
  const int userType = m_block.GetUserType(), userData = m_block.GetUserData();
  m_block.setFlags(m_flags);
  // The block itself determines whether it has attribute definitions.
  m_block.setFlags(CBlock::kHasAttdefs, (flags & CBlock::kHasAttdefs) != 0);
  m_block.SetUserInfo(m_userType, m_userData);
  m_flags = flags;
  m_userType = userType;
  m_userData = userData;
}

std::size_t BlockHeadSnapshot::size() const {
  return sizeof *this + textBytes(m_name) + textBytes(m_path);
}

void VarsSnapshot::swap(CData&) { std::swap(m_vars, m_kept); }

std::size_t LayoutSnapshot::size() const {
  std::size_t bytes = sizeof *this + m_viewports.size() * sizeof(VIEWPORT);
  for (const VIEWPORT& viewport : m_viewports)
    bytes += viewport.boundary.size() * sizeof(PNT_2D) + viewport.frozen.size() * sizeof(CLayer*);
  return bytes;
}

void LayoutSnapshot::swap(CData&) {
  const PLOT_SETTINGS present = m_layout.getPlot();
  m_layout.setPlot(m_plot);
  m_plot = present;
  m_viewports = m_layout.setViewports(std::move(m_viewports));
}

}  // namespace vek0::detail
