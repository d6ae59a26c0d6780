// Copies a drawing. `ItemMap` maps each item to its copy, so items are copied before the items that
// refer to them: styles, linetypes, layers, blocks, entities. Blocks are created empty before any
// is filled, because their contents refer to each other.
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

#include "drawing/entcloner.h"
#include "tables/handover.h"
#include "vek0core/drawing/datafactory.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"

using vek0::detail::addNew;
using vek0::detail::cloneDashes;
using vek0::detail::cloneOnto;
using vek0::detail::ItemMap;
using vek0::detail::orThrow;
using vek0::detail::restoreTo;

namespace {

class DrawingCopy {
 public:
  DrawingCopy(const CData& src, CData& copy) : m_src(src), m_copy(copy) {}

  void run() {
    // Styles refer to fonts, which the copy shares with its source.
    m_src.shareFonts(m_copy);
    copyTables();
    copyBlocks();
    copyLayouts();
    copyEntities();
    copyVariables();
  }

 private:
  // Styles first, then the items that refer to them, and so on; each for the drawing and all its
  // external references, which may refer to each other's items.
  void copyTables() {
    copyStyles(m_src.getStyleTable(), m_copy.getStyleTable());
    copyXRefs();
    mapFixedItems();
    copyLtypes(m_src.getLtypeTable());
    forEachXRef([this](const CBlockXRef& from, CBlockXRef& to) { copyLtypes(from, to); });
    copyLayers(m_src.getLayerTable());
    forEachXRef([this](const CBlockXRef& from, CBlockXRef& to) { copyLayers(from, to); });
    // Layer 0 refers to a linetype, which must have been copied.
    copyLayer(*m_src.getLayerTable().getLayer0(), m_copy.getLayer0());
  }

  // Calls `each` with every copied external reference and its copy.
  template <class Each>
  void forEachXRef(const Each& each) {
    const CBlockXRefTable& from = m_src.getBlockXRefTable();
    for (int i = 0; i < from.size(); ++i) each(*from[i], *m_copy.getBlockXRefTable()[i]);
  }

  void mapFixedItems() {
    const CLtypeTable& ltypes = m_src.getLtypeTable();
    copyFixed(*ltypes.getLtypeContinuous(), m_copy.getLtypeContinuous());
    copyFixed(*ltypes.getLtypeByLayer(), m_copy.getLtypeByLayer());
    copyFixed(*ltypes.getLtypeByBlock(), m_copy.getLtypeByBlock());
    m_map.add<CLayer>(m_src.getLayerTable().getLayer0(), &m_copy.getLayer0());
  }

  // A host may have changed their elements or descriptions.
  void copyFixed(const CLtype& from, CLtype& to) {
    to.setDesc(from.getDesc());
    to.setFlags(from.getFlags());
    to.GetDashSeq() = cloneDashes(from, m_map);
    m_map.add(&from, &to);
  }

  void copyStyles(const CStyleTable& from, CStyleTable& to) {
    // A host may have removed the style that every new drawing has.
    if (!from.getStyleStandard()) removeStandard(to);
    for (int i = 0; i < from.size(); ++i) {
      const CStyle& style = *from[i];
      CStyle* made = nullptr;
      if (&style == from.getStyleStandard()) {
        made = to.getStyleStandard();
        made->setMemento(CStyleMemento(style));
      } else {
        made = addNew(to, m_copy.getStyleFactory().create(style));
      }
      m_map.add(&style, made);
    }
  }

  static void removeStandard(CStyleTable& table) {
    std::unique_ptr<CStyle> standard(table.getStyleStandard());
    table.remove(standard.get());
  }

  void copyLtypes(const CLtypeTable& from) {
    for (int i = 0; i < from.size(); ++i) {
      m_map.add(from[i], addNew(m_copy.getLtypeTable(),
                                m_copy.getLtypeFactory().create(
                                    from[i]->getName(), from[i]->getDesc(),
                                    cloneDashes(*from[i], m_map), from[i]->getFlags())));
    }
  }

  void copyLayers(const CLayerTable& from) {
    for (int i = 0; i < from.size(); ++i) {
      const CLayer& layer = *from[i];
      CLayer* made = addNew(m_copy.getLayerTable(), m_copy.getLayerFactory().create(
                                                        layer.getName(), m_map(layer.getLtype()),
                                                        layer.getColor(), layer.getFlags()));
      made->copyExtras(layer);
      m_map.add(&layer, made);
    }
  }

  void copyLayer(const CLayer& from, CLayer& to) {
    to.setLtype(m_map(from.getLtype()));
    to.setColor(from.getColor());
    to.setFlags(from.getFlags());
    to.copyExtras(from);
  }

  void copyXRefs() {
    const CBlockXRefTable& from = m_src.getBlockXRefTable();
    for (int i = 0; i < from.size(); ++i) {
      CBlockXRef& xref =
          *addNew(m_copy.getBlockXRefTable(),
                  m_copy.getBlockFactory().createXRef(
                      m_copy.getLtypeContinuous(), m_copy.getLtypeByLayer(),
                      m_copy.getLtypeByBlock(), m_copy.getLayer0(), from[i]->getName(),
                      from[i]->getPath(), from[i]->getPnt(), from[i]->getFlags()));
      xref.setStatus(from[i]->getStatus());
      xref.setOwnBase(from[i]->getOwnBase());
      xref.setFile(from[i]->getFile());
      m_map.add<CBlock>(from[i], &xref);
      xref.SetUserInfo(from[i]->GetUserType(), from[i]->GetUserData());
      copyStyles(from[i]->getStyleTable(), xref.getStyleTable());
    }
  }

  void copyLtypes(const CBlockXRef& from, CBlockXRef& to) {
    for (int i = 0; i < from.getLtypeTable().size(); ++i) {
      const CLtype& ltype = *from.getLtypeTable()[i];
      CLtype* made = addNew(to.getLtypeTable(), m_copy.getLtypeFactory().createXRef(
                                                    to, ltype.getName(), ltype.getDesc(),
                                                    cloneDashes(ltype, m_map), ltype.getFlags()));
      m_map.add(&ltype, made);
    }
  }

  void copyLayers(const CBlockXRef& from, CBlockXRef& to) {
    for (int i = 0; i < from.getLayerTable().size(); ++i) {
      const CLayer& layer = *from.getLayerTable()[i];
      CLayerXRef* made =
          addNew(to.getLayerTable(),
                 m_copy.getLayerFactory().createXRef(to, layer.getName(), m_map(layer.getLtype()),
                                                     layer.getColor(), layer.getFlags()));
      made->copyExtras(layer);
      m_map.add<CLayer>(&layer, made);
      if (!layer.isXRef()) continue;
      // The copy must recognize later changes of the file in the same way.
      auto told = static_cast<const CLayerXRef&>(layer).getTold();
      if (told)
        made->follow({m_map(told->ltype), told->color, told->flags, told->width, told->traits});
    }
  }

  // All blocks first, empty, because their contents refer to each other.
  void copyBlocks() {
    const CBlockTable& from = m_src.getBlockTable();
    for (int i = 0; i < from.size(); ++i) {
      CBlock* made = addNew(m_copy.getBlockTable(),
                            m_copy.getBlockFactory().create(from[i]->getName(), from[i]->getPnt(),
                                                            from[i]->getFlags()));
      made->SetUserInfo(from[i]->GetUserType(), from[i]->GetUserData());
      m_map.add(from[i], made);
    }
    for (int i = 0; i < from.size(); ++i) fill(*from[i], *m_map(from[i]));
    forEachXRef([this](const CBlockXRef& xref, CBlockXRef& to) { copyContent(xref, to); });
  }

  void fill(const CBlock& from, CBlock& to) {
    for (unsigned i = 0; i < from.size(); ++i) restoreTo(to, cloneOnto(m_copy, m_map, *from[i]));
    // The block was added empty, so its entities are registered and its edges computed now.
    to.insertBlock(m_copy.getHandleGestor());
    m_copy.getBlockTable().updateBlock(&to);
  }

  // Each block comes after those that it inserts.
  void copyContent(const CBlockXRef& from, CBlockXRef& to) {
    CBlockXRef::Blocks blocks;
    for (const auto& block : from.getBlocks()) {
      blocks.emplace_back();
      blocks.back().reset(orThrow(
          m_copy.getBlockFactory().create(block->getName(), block->getPnt(), block->getFlags())));
      CBlock& made = *blocks.back();
      m_map.add(block.get(), &made);
      for (unsigned i = 0; i < block->size(); ++i)
        restoreTo(made, cloneOnto(m_copy, m_map, *(*block)[i]));
    }
    std::vector<std::unique_ptr<CEnt>> entities;
    for (unsigned i = 0; i < from.size(); ++i)
      entities.push_back(cloneOnto(m_copy, m_map, *from[i]));
    to.setContent(std::move(entities), std::move(blocks));
  }

  void copyLayouts() {
    const CLayoutTable& from = m_src.getLayouts();
    const CLayout* const active = from.getActive();
    for (int i = 0; i < from.size(); ++i) {
      CLayout& made = m_copy.getLayouts().add(
          std::make_unique<CLayout>(from[i].getName(), *m_map(&from[i].getBlock())));
      made.setPlot(from[i].getPlot());
      std::vector<VIEWPORT> viewports = from[i].getViewports();
      for (VIEWPORT& viewport : viewports) {
        viewport.layer = m_map(viewport.layer);
        viewport.ltype = m_map(viewport.ltype);
        for (CLayer*& layer : viewport.frozen) layer = m_map(layer);
      }
      made.setViewports(std::move(viewports));
      if (&from[i] == active) m_copy.getLayouts().setActive(made);
    }
  }

  void copyEntities() {
    CEntTable& to = m_copy.getEntTable();
    // Invalid extents are not updated with every addition.
    to.invalidateBdry();
    std::unordered_map<const CEnt*, CEnt*> selected;
    for (const CEnt* ent : m_src.getEntTable().getEntityTbl()) {
      CEnt* copy = addNew(to, cloneOnto(m_copy, m_map, *ent).release());
      if (ent->isSelected()) selected.emplace(ent, copy);
    }
    // The order of the selection is kept as well.
    for (const CEnt* ent : m_src.getEntTable().getSelectedEntityTbl()) to.select(selected[ent]);
  }

  void copyVariables() {
    CDataVariables& vars = m_copy.getVars();
    vars = m_src.getVars();
    vars.setCurLayer(m_map(vars.getCurLayer()));
    vars.setCurLtype(m_map(vars.getCurLtype()));
    vars.setCurStyle(m_map(vars.getCurStyle()));
  }

  const CData& m_src;
  CData& m_copy;
  ItemMap m_map;
};

}  // namespace

CData* cloneData(const CData& data) {
  CDataFactory factory;
  std::unique_ptr<CData> copy(factory.createData());
  if (!copy) return nullptr;
  try {
    DrawingCopy(data, *copy).run();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return copy.release();
}
