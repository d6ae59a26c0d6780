// Copies the content of another drawing into a reference. Items of the reference with the same name
// are updated in place, because entities of the drawing may use them; others are added. Entities
// are copied with their items mapped, and blocks before the blocks that insert them.
#include "xref/xrefcontent.h"

#include "entities/blocks/collectblocks.h"

#include <utility>
#include <vector>

#include "drawing/everyentity.h"
#include "drawing/itemuse.h"
#include "tables/handover.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blockgraph.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "xref/xrefjournal.h"

namespace vek0::detail {
namespace {

template <class Table, class Unused>
void retireUnless(CBlockXRef& xref, const Table& table, const Unused& isKept) {
  for (int i = table.size(); i-- > 0;)
    if (!isKept(*table[i])) xref.retire(table[i]);
}

}  // namespace

void noteItems(CBlockXRef& xref, Items& items) {
  const auto noteEnt = [&items](const CEnt& ent) {
    items.insert(ent.getLayer());
    items.insert(ent.getLtype());
  };
  const auto note = [&](CBlock& block) {
    for (unsigned i = 0; i < block.size(); ++i) {
      noteEnt(*block[i]);
      forEveryAttrib(*block[i], noteEnt);
    }
  };
  note(xref);
  for (const auto& block : xref.getBlocks()) note(*block);
}

void retireOthers(const CData& data, CBlockXRef& xref, const Items& items) {
  const auto isKept = [&](const auto& item) {
    return items.count(&item) != 0 || isUsed(data, item);
  };
  retireUnless(xref, xref.getLayerTable(), isKept);
  retireUnless(xref, xref.getLtypeTable(), isKept);
  retireUnless(xref, xref.getStyleTable(),
               [&](const CStyle& style) { return isKept(style) || style.isStandard(); });
}

XRefContent::XRefContent(CData& data, CBlockXRef& xref, const CData& src, Items& present,
                         XRefJournal& journal)
    : m_data(data), m_xref(xref), m_src(src), m_present(present), m_journal(journal) {
  m_journal.reinstate(xref);  // to be found again by name
  adoptFixed();
  adoptStyles();
}

void XRefContent::adoptFixed() {
  // Fixed items correspond to those of the drawing.
  const CLtypeTable& ltypes = m_src.getLtypeTable();
  m_map.add<CLtype>(ltypes.getLtypeContinuous(), &m_data.getLtypeContinuous());
  m_map.add<CLtype>(ltypes.getLtypeByLayer(), &m_data.getLtypeByLayer());
  m_map.add<CLtype>(ltypes.getLtypeByBlock(), &m_data.getLtypeByBlock());
  m_map.add<CLayer>(m_src.getLayerTable().getLayer0(), &m_data.getLayer0());
}

// A font that only the other drawing has would be destroyed with it.
const ICADFont* XRefContent::fontHere(const ICADFont* font) {
  if (font == nullptr || CFontTable::getInstance().get(font->getName(), false) == font) return font;
  return m_data.needFont(font->getName());
}

void XRefContent::adoptStyles() {
  const CStyleTable& from = m_src.getStyleTable();
  CStyleTable& to = m_xref.getStyleTable();
  for (int i = 0; i < from.size(); ++i) {
    CStyle* style = to.get(from[i]->getName());
    if (style != nullptr) {
      m_journal.keep(*style);
      style->setMemento(CStyleMemento(*from[i]));
    } else {
      style = m_journal.add(to, m_data.getStyleFactory().create(*from[i]));
    }
    style->setFont(fontHere(from[i]->getFont()));
    m_map.add(from[i], style);
    m_present.insert(style);
  }
}

void XRefContent::adoptItem(const CLtype& from, CBlockXRef& to, const zim::WString& name) {
  CLtype* ltype = to.getLtypeTable().get(name);
  if (ltype == nullptr) {
    ltype = m_journal.add<CLtypeTable, CLtype>(
        to.getLtypeTable(),
        m_data.getLtypeFactory().createXRef(to, name, from.getDesc(), cloneDashes(from, m_map),
                                            from.getFlags()));
    // Items of a nested reference are defined by its own file.
  } else if (&to == &m_xref) {
    m_journal.define(*ltype, from.getDesc(), cloneDashes(from, m_map));
  }
  m_map.add(&from, ltype);
  m_present.insert(ltype);
}

void XRefContent::adoptItem(const CLayer& from, CBlockXRef& to, const zim::WString& name) {
  const CLayerXRef::Look look{m_map(from.getLtype()), from.getColor(), from.getFlags(),
                              from.getLineWidth(), from.getTraits()};
  CLayer* layer = to.getLayerTable().get(name);
  const bool isNew = layer == nullptr;
  if (isNew) {
    layer = m_journal.add<CLayerTable, CLayer>(
        to.getLayerTable(),
        m_data.getLayerFactory().createXRef(to, name, look.ltype, look.color, look.flags));
    layer->copyExtras(from);
  } else {
    m_journal.keep(*layer);
  }
  // Only the file that defines the layer decides on its properties.
  if (layer->isXRef() && (&to == &m_xref || isNew)) static_cast<CLayerXRef*>(layer)->follow(look);
  m_map.add(&from, layer);
  m_present.insert(layer);
}

void XRefContent::stand(const CBlockXRef& nested, CBlockXRef* here) {
  m_map.add<CBlock>(&nested, here);
  m_nested.emplace_back(&nested, here);
}

// A drawing may have entities on items of its references. If such a reference is skipped, the items
// are created here, named as if it were bound.
template <class Table>
void XRefContent::adoptItems(const Table& (CData::*own)() const,
                             const Table& (CBlockXRef::*dependent)() const) {
  const Table& table = (m_src.*own)();
  for (int i = 0; i < table.size(); ++i) adoptItem(*table[i], m_xref, table[i]->getName());
  for (const auto& [nested, here] : m_nested) {
    const Table& items = (nested->*dependent)();
    const zim::WString prefix = here != nullptr ? zim::WString() : nested->getName() + u"$0$";
    for (int i = 0; i < items.size(); ++i)
      if (isUsed(m_src, *items[i]))
        adoptItem(*items[i], here != nullptr ? *here : m_xref, prefix + items[i]->getName());
  }
}

void XRefContent::adopt() {
  // Linetypes first, because layers name them.
  adoptItems<CLtypeTable>(&CData::getLtypeTable, &CBlockXRef::getLtypeTable);
  adoptItems<CLayerTable>(&CData::getLayerTable, &CBlockXRef::getLayerTable);
  fill();
}

bool XRefContent::isShown(const CEnt& ent) const {
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert == nullptr || insert->getBlock() == nullptr || m_map(insert->getBlock()) != nullptr;
}

void XRefContent::fill() {
  CollectBlocks collected;  // each after those that it inserts
  m_src.getBlockTable().getBlockGraph().VisitUndep(collected);
  CBlockXRef::Blocks blocks;
  for (const CBlock* from : collected.blocks) {
    blocks.emplace_back();
    blocks.back().reset(orThrow(
        m_data.getBlockFactory().create(from->getName(), from->getPnt(), from->getFlags())));
    CBlock& block = *blocks.back();
    m_map.add(from, &block);
    for (unsigned i = 0; i < from->size(); ++i)
      // Inserts of skipped references have no counterpart.
      if (isShown(*(*from)[i])) restoreTo(block, cloneOnto(m_data, m_map, *(*from)[i]));
  }
  std::vector<std::unique_ptr<CEnt>> entities;
  for (const CEnt* ent : m_src.getEntTable().getEntityTbl())
    if (isShown(*ent)) entities.push_back(cloneOnto(m_data, m_map, *ent));
  m_journal.setContent(m_xref, {std::move(entities), std::move(blocks)});
}

}  // namespace vek0::detail
