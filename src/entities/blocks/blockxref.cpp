// A reference is a block with its own tables for the layers, linetypes and styles of its file.
// Items that the file no longer contains are retired, not deleted: entities and undo steps may
// refer to them, and they return if the drawing uses them again (`reinstate`). Content is exchanged
// as a whole and numbered, so that undo steps recognize that it was replaced.
#include "vek0core/entities/blocks/blockxref.h"

#include <new>
#include <unordered_set>
#include <utility>

#include "tables/itemflags.h"
#include "vek0core/entities/blocks/entinsert.h"

namespace {

using vek0::detail::kDependent;
using vek0::detail::kResolved;

const zim::WString& compose(const CBlockXRef& xref, const zim::WString& name,
                            zim::WString& fullName) {
  fullName = xref.getName();
  fullName += u"|";
  fullName += name;
  return fullName;
}

// Removes an item from the table and keeps it.
template <class Table, class Item>
void retireFrom(Table& table, std::vector<std::unique_ptr<Item>>& retired, Item* item) {
  retired.emplace_back();  // first, because only this can fail
  table.remove(item);
  retired.back().reset(item);
}

std::vector<CBlockXRef*> shownBy(const std::vector<std::unique_ptr<CEnt>>& entities,
                                 const CBlockXRef::Blocks& blocks) {
  std::vector<CBlockXRef*> nested;
  std::unordered_set<const CBlock*> seen;
  const auto note = [&](const CEnt& ent) {
    // Once each, however often it is inserted.
    const CEntInsertBase* insert = ent.getEntInsert();
    CBlock* shown = insert != nullptr ? insert->getBlock() : nullptr;
    if (shown != nullptr && shown->isXRef() && seen.insert(shown).second)
      nested.push_back(static_cast<CBlockXRef*>(shown));
  };
  for (const std::unique_ptr<CEnt>& ent : entities) note(*ent);
  for (const std::unique_ptr<CBlock>& block : blocks)
    for (unsigned i = 0; i < block->size(); ++i) note(*(*block)[i]);
  return nested;
}

}  // namespace

CBlockXRef::CBlockXRef(CLtypeContinuous& continuous, CLtypeByLayer& byLayer, CLtypeByBlock& byBlock,
                       CLayer0& layer0, const zim::WString& name, const zim::WString& path,
                       const PNT_3D& base, long flags)
    : CBlock(name, base, flags),
      m_path(path),
      m_ltypes(continuous, byLayer, byBlock),
      m_layers(layer0) {}

CBlockXRef::~CBlockXRef() = default;

void CBlockXRef::add(CEnt* ent) { restore(ent); }

bool CBlockXRef::isXRef() const { return true; }

const PNT_3D& CBlockXRef::getContentBase() const {
  // A base point given in the drawing overrides that of the file.
  return getPnt() != PNT_3D(0, 0, 0) ? getPnt() : m_ownBase;
}

CBlockXRef::Content::Content(std::vector<std::unique_ptr<CEnt>> entities, Blocks blocks)
    : m_nested(shownBy(entities, blocks)) {
  m_entities.reserve(entities.size());
  for (std::unique_ptr<CEnt>& ent : entities) m_entities.push_back(ent.release());
  m_blocks = std::move(blocks);
}

CBlockXRef::Content::~Content() {
  for (const CEnt* ent : m_entities) delete ent;
}

void CBlockXRef::setContent(std::vector<std::unique_ptr<CEnt>> entities, Blocks blocks) {
  Content content(std::move(entities), std::move(blocks));
  exchange(content);
}

void CBlockXRef::exchange(Content& content) {
  // Only references in the drawing count what they show.
  if (isHeld()) countNested(-1);
  m_nested.swap(content.m_nested);
  if (isHeld()) countNested(1);
  // Each content gets a number once, which it keeps when it is exchanged back.
  if (content.m_number == 0) content.m_number = ++m_lastContent;
  std::swap(m_noContents, content.m_number);
  for (const std::unique_ptr<CBlock>& block : m_blocks) block->m_contentOf = nullptr;
  m_blocks.swap(content.m_blocks);
  for (const std::unique_ptr<CBlock>& block : m_blocks) block->m_contentOf = this;
  swapEntities(content.m_entities);
}

void CBlockXRef::setHead(const Head& head) {
  // Reserved first, so that assigning the head cannot fail halfway.
  m_path.reserve(head.path.Length());
  m_file.reserve(head.file.Length());
  init(head.path, head.base, head.flags);
  m_file = head.file;
  m_status = head.status;
  m_ownBase = head.ownBase;
}

void CBlockXRef::reserveRetired() {
  m_retiredLayers.reserve(m_retiredLayers.size() + static_cast<std::size_t>(m_layers.size()));
  m_retiredLtypes.reserve(m_retiredLtypes.size() + static_cast<std::size_t>(m_ltypes.size()));
  m_retiredStyles.reserve(m_retiredStyles.size() + static_cast<std::size_t>(m_styles.size()));
}

// References outside the drawing show nothing, so nothing nested is counted for them.
void CBlockXRef::countNested(long by) {
  for (CBlockXRef* nested : m_nested) nested->m_shows += by;
}

void CBlockXRef::retire(CLayer* layer) {
  strip(*layer);
  retireFrom(m_layers, m_retiredLayers, layer);
}

void CBlockXRef::retire(CLtype* ltype) {
  retireFrom(m_ltypes, m_retiredLtypes, ltype);
  strip(*ltype);
}

void CBlockXRef::retire(CStyle* style) { retireFrom(m_styles, m_retiredStyles, style); }

// The table counts the layer as a user of its linetype from then on.
void CBlockXRef::putBack(CLayer& layer) {
  CLtype* ltype = layer.getLtype();
  strip(layer);
  m_layers.add(&layer);
  layer.setLtype(ltype != nullptr ? ltype : m_ltypes.getLtypeContinuous());
  if (ltype != nullptr || !layer.isXRef()) return;
  // Not a change by the host: the layer follows its file again when it reappears there.
  std::optional<CLayerXRef::Look>& told = static_cast<CLayerXRef&>(layer).m_told;
  if (told) told->ltype = layer.getLtype();
}

void CBlockXRef::init(const zim::WString& path, const PNT_3D& base, long flags) {
  m_path = path;
  setOrigin(base);
  setFlags(flags);
}

CBlockXRefDepend::CBlockXRefDepend() = default;

CBlockXRefDepend::CBlockXRefDepend(const CBlockXRefDepend& src) { *this = src; }

CBlockXRefDepend& CBlockXRefDepend::operator=(const CBlockXRefDepend& src) {
  if (this == &src) return *this;
  std::list<Entry> list = src.m_list;
  std::unordered_map<const CBlockXRef*, std::list<Entry>::iterator> places;
  for (auto entry = list.begin(); entry != list.end(); ++entry) places.emplace(entry->first, entry);
  m_list.swap(list);
  m_places.swap(places);
  // Unused entries serve only to avoid allocations in `add`.
  m_unused.clear();
  return *this;
}

CBlockXRefDepend::~CBlockXRefDepend() = default;

void CBlockXRefDepend::add(CBlockXRef* xref) {
  if (xref == nullptr) return;
  const auto place = m_places.find(xref);
  if (place == m_places.end()) {
    std::list<Entry> made(1, Entry(xref, 1));
    m_places.emplace(xref, made.begin());
    m_list.splice(m_list.end(), made);
    // Entries that were used before return to the list without an allocation.
  } else if (place->second->second++ == 0) {
    m_list.splice(m_list.end(), m_unused, place->second);
  }
}

void CBlockXRefDepend::remove(CBlockXRef* xref) {
  const auto place = m_places.find(xref);
  if (place == m_places.end() || place->second->second == 0) return;
  if (--place->second->second == 0) m_unused.splice(m_unused.end(), m_list, place->second);
}

long CBlockXRefDepend::getCount(const CBlockXRef* xref) const {
  const auto place = m_places.find(xref);
  return place != m_places.end() ? place->second->second : 0;
}

void CBlockXRefTable::add(CBlockXRef* xref) {
  if (xref == nullptr || xref->isHeld()) return;
  CNamedItemTableImp::add(xref);
  xref->countNested(1);
}

void CBlockXRefTable::remove(CBlockXRef* xref) {
  if (!contains(xref)) return;
  CNamedItemTableImp::remove(xref);
  xref->countNested(-1);
}

void CBlockXRefTable::restore(CBlockXRef* xref, const Place& place) {
  if (xref == nullptr || xref->isHeld()) return;
  CNamedItemTableImp::restore(xref, place);
  xref->countNested(1);
}

CBlockXRef* CBlockXRefTable::get(std::u16string_view name) const {
  return static_cast<CBlockXRef*>(CNamedItemTableImp::get(name));
}

CBlockXRef* CBlockXRefTable::operator[](int i) const {
  return static_cast<CBlockXRef*>(CNamedItemTableImp::operator[](i));
}

CLayerXRef::CLayerXRef(CBlockXRef& xref, const zim::WString& name, CLtype* ltype, short color,
                       long flags)
    : CLayer(name, ltype, color, flags | kDependent | kResolved), m_xref(xref) {}

const zim::WString& CLayerXRef::getFullName() const {
  return compose(m_xref, getName(), m_fullName);
}

void CLayerXRef::setFlags(long flags) { CLayer::setFlags(flags | kDependent | kResolved); }

// Color number and true color are one property.
void CLayerXRef::followColor(const Look& look) {
  LAYER_TRAITS traits = getTraits();
  if (getColor() != m_told->color || traits.trueColor != m_told->traits.trueColor) return;
  setColor(look.color);
  traits.trueColor = look.traits.trueColor;
  setTraits(traits);
}

void CLayerXRef::follow(const Look& look) {
  if (m_told) {
    // Only properties that the host has not changed since the last reading follow the file.
    if (getLtype() == m_told->ltype) setLtype(look.ltype);
    followColor(look);
    if (getLineWidth() == m_told->width) setLineWidth(look.width);
    LAYER_TRAITS traits = getTraits();
    if (traits.lineweight == m_told->traits.lineweight) traits.lineweight = look.traits.lineweight;
    if (traits.opacity == m_told->traits.opacity) traits.opacity = look.traits.opacity;
    if (traits.isPlotted == m_told->traits.isPlotted) traits.isPlotted = look.traits.isPlotted;
    setTraits(traits);
    for (const long bit : {kFrozen, kLocked, kOff})
      if (((getFlags() ^ m_told->flags) & bit) == 0) setFlags(bit, (look.flags & bit) != 0);
  }
  m_told = look;
}

void CLayerXRef::accept(ILayerVisitor& visitor) { visitor.visit(*this); }

CLtypeXRef::CLtypeXRef(CBlockXRef& xref, const zim::WString& name, const zim::WString& desc,
                       const CLtypeComplexDashSeq& dashes, long flags)
    : CLtype(name, desc, dashes, flags | kDependent | kResolved), m_xref(xref) {}

const zim::WString& CLtypeXRef::getFullName() const {
  return compose(m_xref, getName(), m_fullName);
}

void CLtypeXRef::setFlags(long flags) { CLtype::setFlags(flags | kDependent | kResolved); }

void CLtypeXRef::accept(ILtypeVisitor& visitor) { visitor.visit(*this); }

CLayerXRef* CLayerFactory::createXRef(CBlockXRef& xref, const zim::WString& name, CLtype* ltype,
                                      short color, long flags) try {
  return new (std::nothrow) CLayerXRef(xref, name, ltype, color, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CLtypeXRef* CLtypeFactory::createXRef(CBlockXRef& xref, const zim::WString& name,
                                      const zim::WString& desc, const CLtypeComplexDashSeq& dashes,
                                      long flags) try {
  return new (std::nothrow) CLtypeXRef(xref, name, desc, dashes, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}
