#include "xref/xrefcontent.h"

#include <utility>
#include <vector>

#include "vek0core/entities/block.h"
#include "vek0core/entities/blockfactory.h"
#include "vek0core/entities/blockgraph.h"
#include "vek0core/entities/blockxref.h"
#include "vek0core/entities/entinsert.h"

namespace vek0::detail {
namespace {

class CollectBlocks final : public IBlockOperation {
 public:
  int doOperation(CBlock& block) override {
    blocks.push_back(&block);
    return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  }
  std::vector<const CBlock*> blocks;
};

template <class Table, class Unused>
void retireUnless(CBlockXRef& xref, const Table& table, const Unused& isKept) {
  for (int i = table.size(); i-- > 0;)
    if (!isKept(*table[i])) xref.retire(table[i]);
}

}  // namespace

XRefContent::XRefContent(CData& data, CBlockXRef& xref, const CData& src)
    : m_data(data), m_xref(xref), m_src(src) {
  adoptFixed();
  adoptStyles();
}

void XRefContent::adoptFixed() {
  const CLtypeTable& ltypes = m_src.getLtypeTable();
  m_map.add<CLtype>(ltypes.getLtypeContinuous(), &m_data.getLtypeContinuous());
  m_map.add<CLtype>(ltypes.getLtypeByLayer(), &m_data.getLtypeByLayer());
  m_map.add<CLtype>(ltypes.getLtypeByBlock(), &m_data.getLtypeByBlock());
  m_map.add<CLayer>(m_src.getLayerTable().getLayer0(), &m_data.getLayer0());
}

void XRefContent::adoptStyles() {
  m_src.shareFonts(m_data);
  const CStyleTable& from = m_src.getStyleTable();
  CStyleTable& to = m_xref.getStyleTable();
  for (int i = 0; i < from.size(); ++i) {
    CStyle* style = to.get(from[i]->getName());
    if (style != nullptr) {
      style->setMemento(CStyleMemento(*from[i]));
    } else {
      style = orThrow(m_data.getStyleFactory().create(*from[i]));
      to.add(style);
    }
    m_map.add(from[i], style);
    m_present.insert(style);
  }
}

void XRefContent::adoptItem(const CLtype& from, CBlockXRef& to, const zim::WString& name) {
  CLtype* ltype = to.getLtypeTable().get(name);
  if (ltype == nullptr) {
    ltype = orThrow(m_data.getLtypeFactory().createXRef(to, name, from.getDesc(),
                                                        cloneDashes(from, m_map), from.getFlags()));
    to.getLtypeTable().add(ltype);
  } else if (&to == &m_xref) {
    ltype->setDesc(from.getDesc());
    ltype->GetDashSeq() = cloneDashes(from, m_map);
  }
  m_map.add(&from, ltype);
  m_present.insert(ltype);
}

void XRefContent::adoptItem(const CLayer& from, CBlockXRef& to, const zim::WString& name) {
  const CLayerXRef::Look look{m_map(from.getLtype()), from.getColor(), from.getFlags(),
                              from.getLineWidth()};
  CLayer* layer = to.getLayerTable().get(name);
  const bool isNew = layer == nullptr;
  if (isNew) {
    layer =
        orThrow(m_data.getLayerFactory().createXRef(to, name, look.ltype, look.color, look.flags));
    layer->setLineWidth(look.width);
    to.getLayerTable().add(layer);
  }
  if (layer->isXRef() && (&to == &m_xref || isNew)) static_cast<CLayerXRef*>(layer)->follow(look);
  m_map.add(&from, layer);
  m_present.insert(layer);
}

// A drawing may put entities of its own on items of what it refers to. Where that is left
// out they find these items here, named as if it were bound.
void XRefContent::stand(const CBlockXRef& nested, CBlockXRef* here) {
  m_map.add<CBlock>(&nested, here);
  const zim::WString prefix = here != nullptr ? zim::WString() : nested.getName() + u"$0$";
  CBlockXRef& to = here != nullptr ? *here : m_xref;
  for (int i = 0; i < nested.getLtypeTable().size(); ++i) {
    const CLtype& ltype = *nested.getLtypeTable()[i];
    if (ltype.getEntities() + ltype.getLayers() > 0) adoptItem(ltype, to, prefix + ltype.getName());
  }
  for (int i = 0; i < nested.getLayerTable().size(); ++i) {
    const CLayer& layer = *nested.getLayerTable()[i];
    if (layer.getEntities() > 0) adoptItem(layer, to, prefix + layer.getName());
  }
}

void XRefContent::adopt() {
  const CLtypeTable& ltypes = m_src.getLtypeTable();
  for (int i = 0; i < ltypes.size(); ++i) adoptItem(*ltypes[i], m_xref, ltypes[i]->getName());
  const CLayerTable& layers = m_src.getLayerTable();
  for (int i = 0; i < layers.size(); ++i) adoptItem(*layers[i], m_xref, layers[i]->getName());
  fill();
  retireOthers();
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
    CBlock& block = *blocks.emplace_back(orThrow(
        m_data.getBlockFactory().create(from->getName(), from->getPnt(), from->getFlags())));
    m_map.add(from, &block);
    for (unsigned i = 0; i < from->size(); ++i)
      if (isShown(*(*from)[i])) block.restore(cloneOnto(m_data, m_map, *(*from)[i]).release());
  }
  std::vector<std::unique_ptr<CEnt>> entities;
  for (const CEnt* ent : m_src.getEntTable().getEntityTbl())
    if (isShown(*ent)) entities.push_back(cloneOnto(m_data, m_map, *ent));
  m_xref.setContent(std::move(entities), std::move(blocks));
}

// What the drawing itself has on an item keeps it.
void XRefContent::retireOthers() {
  const auto isCurrent = [this](const CNamedItem* item) {
    const CDataVariables& vars = m_data.getVars();
    return item == vars.getCurLayer() || item == vars.getCurLtype() || item == vars.getCurStyle();
  };
  const auto isKept = [&](const CNamedItem& item) {
    return m_present.count(&item) != 0 || item.getEntities() > 0 || isCurrent(&item);
  };
  retireUnless(m_xref, m_xref.getLayerTable(), isKept);
  retireUnless(m_xref, m_xref.getLtypeTable(),
               [&](const CLtype& item) { return isKept(item) || item.getLayers() > 0; });
  retireUnless(m_xref, m_xref.getStyleTable(), [&](const CStyle& item) {
    return isKept(item) || item.getDashes() > 0 || item.isStandard();
  });
}

}  // namespace vek0::detail
