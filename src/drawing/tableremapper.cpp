// Replaces items throughout a drawing: styles in linetypes, linetypes in layers, all three in
// entities and attributes, and in the current settings. With an undo stack, each object is recorded
// before it is changed, and all changes form one step.
#include "vek0core/drawing/tableremapper.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "drawing/everyentity.h"
#include "drawing/uncountededit.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/undostack.h"

using vek0::detail::UncountedEdit;

namespace {

// The replacement of the item; null if there is none, or if it is the item itself.
template <class Item>
Item* replacementOf(const std::map<Item*, Item*>& map, Item* item) {
  const auto found = map.find(item);
  return item == nullptr || found == map.end() || found->second == item ? nullptr : found->second;
}

}  // namespace

CTableRemapper::CTableRemapper(CData& data, bool withXRefs)
    : m_data(data), m_withXRefs(withXRefs) {}

void CTableRemapper::Remap() { remapAll(nullptr); }

bool CTableRemapper::Remap(CUndoStack& undo) {
  // Within an open step, its owner decides about a rollback.
  const bool isOwnStep = !undo.isOpen();
  try {
    undo.begin({});
  } catch (const std::bad_alloc&) {
    return false;
  }
  const bool done = remapAll(&undo);
  if (!done && isOwnStep)
    undo.rollback();
  else
    undo.commit();
  return done;
}

bool CTableRemapper::remapAll(CUndoStack* undo) {
  m_unused.clear();
  for (const auto& [layer, other] : m_layers)
    if (other != nullptr && other != &m_data.getLayer0() && other->getEntities() <= 0)
      m_unused.insert(other);
  return remapLtypes(undo) && remapLayers(undo) && remapEntities(undo) && remapViewports(undo) &&
         remapCurrent(undo);
}

bool CTableRemapper::remapLtypes(CUndoStack* undo) {
  for (CData::CLtypeIterator ltype(m_data, m_withXRefs, false); *ltype != nullptr; ++ltype)
    if (!remapTexts(**ltype, undo)) return false;
  return true;
}

bool CTableRemapper::remapTexts(CLtype& ltype, CUndoStack* undo) {
  CLtypeComplexDashSeq& dashes = ltype.GetDashSeq();
  for (int i = 0; i < dashes.GetNoDashes(); ++i) {
    const TEXT_3D* old = dashes[i]->GetText();
    CStyle* style = old != nullptr ? replacementOf(m_styles, old->getStyle()) : nullptr;
    if (style == nullptr) continue;
    // Kept once per step, however many elements change.
    if (undo != nullptr && !undo->keep(ltype)) return false;
    dashes.SetTextStyle(i, style);
  }
  return true;
}

bool CTableRemapper::remapLayers(CUndoStack* undo) {
  for (CData::CLayerIterator layer(m_data, m_withXRefs); *layer != nullptr; ++layer) {
    CLtype* ltype = replacementOf(m_ltypes, (*layer)->getLtype());
    if (ltype == nullptr) continue;
    if (undo != nullptr && !undo->keep(**layer)) return false;
    (*layer)->setLtype(ltype);
  }
  return true;
}

bool CTableRemapper::remapEntities(CUndoStack* undo) {
  return vek0::detail::forEveryEntity(m_data, m_withXRefs,
                                      [&](CEnt& ent) { return remapEnt(ent, undo); });
}

bool CTableRemapper::remapEnt(CEnt& ent, CUndoStack* undo) {
  const auto hasStyle = [this](const CEnt& e) {
    return replacementOf(m_styles, e.getStyle()) != nullptr;
  };
  const auto hasItem = [this](const CEnt& e) {
    return layerFor(e) != nullptr || ltypeFor(e) != nullptr;
  };
  bool ofAttribs = false, restyled = hasStyle(ent);
  vek0::detail::forEveryAttrib(ent, [&](CEntAttrib& attrib) {
    restyled = restyled || hasStyle(attrib);
    ofAttribs = ofAttribs || hasStyle(attrib) || hasItem(attrib);
  });
  // Layer and linetype are properties; styles and attributes belong to the geometry's snapshot.
  const bool properties = hasItem(ent), geometry = restyled || ofAttribs;
  if (!properties && !geometry) return true;
  if (undo != nullptr && properties && !undo->keepProperties(ent)) return false;
  if (undo != nullptr && geometry && !undo->keepGeometry(ent)) return false;

  replace(ent);
  const bool uncounted = UncountedEdit::isFor(ent.getOwnerBlock());
  vek0::detail::forEveryAttrib(ent, [&](CEntAttrib& attrib) {
    std::optional<UncountedEdit> edit;
    if (uncounted) edit.emplace(attrib);
    replace(attrib);
  });
  // A frozen layer excludes its entities from the extents, and a font changes the width of texts.
  m_data.getEntTable().invalidateBdry();
  if (restyled) vek0::detail::spreadBdry(m_data, ent);
  return true;
}

void CTableRemapper::replace(CEnt& ent) {
  std::optional<UncountedEdit> edit;
  if (UncountedEdit::isFor(ent.getOwnerBlock())) edit.emplace(ent);
  if (CLayer* layer = layerFor(ent)) ent.setLayer(layer);
  if (CLtype* ltype = ltypeFor(ent)) ent.setLtype(ltype);
  if (CStyle* style = replacementOf(m_styles, ent.getStyle())) ent.setStyle(style);
}

// The pieces of a record are on layer 0, and have the linetype BYBLOCK, where the record has said
// nothing about them: they follow it.
CLayer* CTableRemapper::layerFor(const CEnt& ent) const {
  const CBlock* owner = ent.getOwnerBlock();
  const bool follows = owner && owner->isOfRecord() && ent.getLayer() == &m_data.getLayer0();
  return follows ? nullptr : replacementOf(m_layers, ent.getLayer());
}

CLtype* CTableRemapper::ltypeFor(const CEnt& ent) const {
  const CBlock* owner = ent.getOwnerBlock();
  const bool follows = owner && owner->isOfRecord() && ent.getLtype()->isByBlock();
  return follows ? nullptr : replacementOf(m_ltypes, ent.getLtype());
}

bool CTableRemapper::isAffected(const VIEWPORT& viewport) const {
  const auto changes = [this](CLayer* layer) { return replacementOf(m_layers, layer) != nullptr; };
  return changes(viewport.layer) || replacementOf(m_ltypes, viewport.ltype) != nullptr ||
         std::any_of(viewport.frozen.begin(), viewport.frozen.end(), changes);
}

// A viewport that hid a layer must not hide another one instead that shows entities.
void CTableRemapper::replaceItems(VIEWPORT& viewport) {
  if (CLayer* layer = replacementOf(m_layers, viewport.layer)) viewport.layer = layer;
  if (CLtype* ltype = replacementOf(m_ltypes, viewport.ltype)) viewport.ltype = ltype;
  const std::set<CLayer*> frozen(viewport.frozen.begin(), viewport.frozen.end());
  std::set<CLayer*> added;
  for (CLayer*& layer : viewport.frozen)
    if (CLayer* other = replacementOf(m_layers, layer)) {
      const bool isHidden = m_unused.count(other) != 0 && frozen.count(other) == 0;
      layer = isHidden && added.insert(other).second ? other : nullptr;
    }
  std::erase(viewport.frozen, nullptr);
}

bool CTableRemapper::remapViewports(CUndoStack* undo) {
  for (int i = 0; i < m_data.getLayouts().size(); ++i) {
    CLayout& layout = m_data.getLayouts()[i];
    const std::vector<VIEWPORT>& all = layout.getViewports();
    if (std::none_of(all.begin(), all.end(), [this](const auto& v) { return isAffected(v); }))
      continue;
    if (undo != nullptr && !undo->keep(layout)) return false;
    // Taken out meanwhile, so that the use counts are updated without a copy.
    std::vector<VIEWPORT> viewports = layout.setViewports({});
    for (VIEWPORT& viewport : viewports) replaceItems(viewport);
    layout.setViewports(std::move(viewports));
  }
  return true;
}

bool CTableRemapper::remapCurrent(CUndoStack* undo) {
  CDataVariables& vars = m_data.getVars();
  CLayer* layer = replacementOf(m_layers, vars.getCurLayer());
  CLtype* ltype = replacementOf(m_ltypes, vars.getCurLtype());
  CStyle* style = replacementOf(m_styles, vars.getCurStyle());
  if (layer == nullptr && ltype == nullptr && style == nullptr) return true;
  if (undo != nullptr && !undo->keepVars()) return false;
  if (layer != nullptr) vars.setCurLayer(layer);
  if (ltype != nullptr) vars.setCurLtype(ltype);
  if (style != nullptr) vars.setCurStyle(style);
  return true;
}
