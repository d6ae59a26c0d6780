// A drawing and the order in which its parts are made and destroyed. The fixed linetypes and layer
// "0" are members, so tables never own them. Copies of a `CData` are views that share tables and
// factories with their source.
#include "vek0core/drawing/data.h"

#include <utility>

#include "entities/entservices.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/entfactory.h"

namespace {

constexpr short kLayer0Color = 7;

}  // namespace

CData::CData(std::unique_ptr<IHandleGestor> gestor, std::unique_ptr<CLtypeFactory> ltypeFactory,
             std::unique_ptr<CLayerFactory> layerFactory,
             std::unique_ptr<CStyleFactory> styleFactory,
             std::unique_ptr<CBlockFactory> blockFactory, std::unique_ptr<CEntFactory> entFactory)
    : m_gestor(std::move(gestor)),
      m_layer0(&m_continuous, kLayer0Color, 0),
      m_vars(m_layer0, m_byLayer),
      m_ltypes(m_continuous, m_byLayer, m_byBlock),
      m_layers(m_layer0),
      m_blocks(*m_gestor, m_depend),
      m_layouts(std::make_shared<CLayoutTable>()),
      m_entities(*m_gestor, m_depend),
      m_ltypeFactory(std::move(ltypeFactory)),
      m_layerFactory(std::move(layerFactory)),
      m_styleFactory(std::move(styleFactory)),
      m_blockFactory(std::move(blockFactory)),
      m_entFactory(std::move(entFactory)),
      m_hatchTypes(std::make_shared<CHatchTypeTable>()) {
  m_vars.setCurStyle(m_styles.getStyleStandard());
  // The layer table counts listed layers only.
  m_continuous.addLayer();
}

CData::CData(CData& src) = default;

CData::~CData() {
  m_blockFactory.reset();
  m_styleFactory.reset();
  m_layerFactory.reset();
  m_ltypeFactory.reset();
  m_entFactory.reset();
  clearUsers();
  m_styles.clearAll();
}

void CData::clearAll() {
  clearUsers();
  for (int i = m_styles.size(); i-- > 0;) {
    CStyle* style = m_styles[i];
    // STANDARD is part of every drawing.
    if (style->isStandard()) continue;
    m_styles.remove(style);
    delete style;
  }
  CNamedItem* const fixed[] = {&m_layer0, &m_continuous, &m_byLayer, &m_byBlock};
  for (CNamedItem* item : fixed) item->zeroEntities();
  if (CStyle* standard = m_styles.getStyleStandard()) standard->zeroEntities();
}

// Users before the items they use: layouts and entities refer to blocks, all three to layers,
// layers to linetypes, linetypes to styles.
void CData::clearUsers() {
  if (!isView()) {
    releaseCounts();
    m_layouts->clearAll();
  }
  m_entities.clearAll();
  m_blocks.clearAll();
  m_xrefs.clearAll();
  m_layers.clearAll();
  m_ltypes.clearAll();
}

// A listed layer may refer to a linetype of an external reference and vice versa; the same holds
// for styles. So no order of deletion is correct while layers and linetypes still hold counted
// references.
void CData::releaseCounts() {
  for (CLayerIterator it(*this, true); *++it != nullptr;) (*it)->setLtype(nullptr);
  for (CLtypeIterator it(*this, true, true); *it; ++it) (*it)->ClearDashes();
}

const ICADFont* CData::needFont(const zim::WString& name) {
  std::shared_ptr<const ICADFont>& font = m_fonts[name];
  if (!font) font = std::make_shared<CNamedFont>(name);
  return font.get();
}

namespace vek0::detail {

EntServices servicesOf(CData& data) {
  return {data.getHandleGestor(), data.getEntFactory(), data.getBlockFactory(),
          data.getBlockTable(),   data.getLayer0(),     data.getLtypeContinuous(),
          data.getHatchLimit()};
}

std::atomic<long> LivingDrawing::s_count{0};

template <class Item, class Table>
ItemWalk<Item, Table>::ItemWalk(const CData& data, const Table& own, XRefTable ofXRef,
                                bool withXRefs)
    : m_xrefs(&data.getBlockXRefTable()), m_own(&own), m_ofXRef(ofXRef), m_withXRefs(withXRefs) {}

template <class Item, class Table>
const Table* ItemWalk<Item, Table>::table() const {
  if (m_xref < 0) return m_own;
  if (!m_withXRefs || m_xref >= m_xrefs->size()) return nullptr;
  return &((*m_xrefs)[m_xref]->*m_ofXRef)();
}

// Advances to the next table that has an item at the current position, if any.
template <class Item, class Table>
void ItemWalk<Item, Table>::skipExhausted() const {
  while (const Table* current = table()) {
    if (m_pos < current->size()) return;
    ++m_xref;
    m_pos = 0;
  }
}

template <class Item, class Table>
Item* ItemWalk<Item, Table>::operator*() const {
  if (m_atFixed < m_fixedCount) return m_fixed[m_atFixed];
  skipExhausted();
  const Table* current = table();
  return current ? (*current)[m_pos] : nullptr;
}

template <class Item, class Table>
void ItemWalk<Item, Table>::findNext() const {
  if (m_atFixed < m_fixedCount) {
    ++m_atFixed;
  } else if (table()) {
    skipExhausted();
    if (table()) ++m_pos;
  }
}

template <class Item, class Table>
int ItemWalk<Item, Table>::size() const {
  int count = static_cast<int>(m_fixedCount) + m_own->size();
  for (int i = 0; m_withXRefs && i < m_xrefs->size(); ++i) {
    count += ((*m_xrefs)[i]->*m_ofXRef)().size();
  }
  return count;
}

template class ItemWalk<CLayer, CLayerTable>;
template class ItemWalk<CLtype, CLtypeTable>;
template class ItemWalk<CStyle, CStyleTable>;

}  // namespace vek0::detail

CData::CLayerIterator::CLayerIterator(const CData& data, bool withXRefs)
    : ItemWalk(data, data.getLayerTable(), &CBlockXRef::getLayerTable, withXRefs) {
  addFixed(data.getLayerTable().getLayer0());
}

CData::CLayerIterator& CData::CLayerIterator::operator++() {
  findNext();
  return *this;
}

CData::CLayerIterator CData::CLayerIterator::operator++(int) const {
  CLayerIterator before(*this);
  findNext();
  return before;
}

CData::CLtypeIterator::CLtypeIterator(const CData& data, bool withXRefs, bool withByLayerByBlock)
    : ItemWalk(data, data.getLtypeTable(), &CBlockXRef::getLtypeTable, withXRefs) {
  const CLtypeTable& table = data.getLtypeTable();
  if (withByLayerByBlock) {
    addFixed(table.getLtypeByLayer());
    addFixed(table.getLtypeByBlock());
  }
  addFixed(table.getLtypeContinuous());
}

CData::CLtypeIterator& CData::CLtypeIterator::operator++() {
  findNext();
  return *this;
}

CData::CLtypeIterator CData::CLtypeIterator::operator++(int) const {
  CLtypeIterator before(*this);
  findNext();
  return before;
}

CData::CStyleIterator::CStyleIterator(const CData& data, bool withXRefs)
    : ItemWalk(data, data.getStyleTable(), &CBlockXRef::getStyleTable, withXRefs) {}

CData::CStyleIterator& CData::CStyleIterator::operator++() {
  findNext();
  return *this;
}

CData::CStyleIterator CData::CStyleIterator::operator++(int) const {
  CStyleIterator before(*this);
  findNext();
  return before;
}
