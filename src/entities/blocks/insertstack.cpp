#include "vek0core/entities/blocks/insertstack.h"

#include "vek0core/tables/colors.h"

#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"

namespace {

constexpr short kNoColor = 7;  // default if the color is unknown
constexpr std::size_t kUsualDepth = 10;

// A layer's own linetype cannot be BYLAYER or BYBLOCK.
CLtype* ltypeOf(const CLayer* layer) {
  CLtype* ltype = layer != nullptr ? layer->getLtype() : nullptr;
  return ltype == nullptr || ltype->isByLayer() || ltype->isByBlock() ? nullptr : ltype;
}

}  // namespace

const CEntInsertBase* CEntInsertStackState::GetInsert(int i) const {
  return i < 0 || i >= GetNoInsert() ? nullptr : m_inserts[static_cast<std::size_t>(i)];
}

CLayer* CEntInsertStackState::ResolveLayer(const CEnt& ent) const {
  CLayer* layer = ent.getLayer();
  // Entities on layer 0 float to the layer of the insert.
  const bool floats = layer == nullptr || layer->is0();
  return floats && m_layer != nullptr ? m_layer : layer;
}

bool CEntInsertStackState::IsOnShownLayer(const CEnt& ent) const {
  const CLayer* layer = ResolveLayer(ent);
  if (layer == nullptr) return true;
  if (layer->isFrozen()) return false;
  if (!layer->isOff()) return true;
  const CEntInsertBase* insert = ent.getEntInsert();
  if (insert == nullptr || ent.getType() == CEntHatch::kType) return false;
  return insert->getBlock() == nullptr || !insert->getBlock()->isOfDimension();
}

short CEntInsertStackState::ResolveColor(const CEnt& ent) const {
  // BYBLOCK takes the insert's color, BYLAYER that of the layer after floating.
  if (ent.getColor() == kColorByBlock) return m_color;
  if (ent.getColor() != kColorByLayer) return ent.getColor();
  const CLayer* layer = ResolveLayer(ent);
  return layer != nullptr ? layer->getColor() : kNoColor;
}

CLtype* CEntInsertStackState::ResolveLtype(const CEnt& ent) const {
  CLtype* ltype = ent.getLtype();
  if (ltype == nullptr || ltype->isByLayer()) return ltypeOf(ResolveLayer(ent));
  return ltype->isByBlock() ? m_ltype : ltype;
}

ENT_TRAITS CEntInsertStackState::plainTraits() {
  ENT_TRAITS traits;
  traits.lineweight = ENT_TRAITS::kWeightDefault;
  traits.opacity = ENT_TRAITS::kOpaque;
  return traits;
}

ENT_TRAITS CEntInsertStackState::ResolveTraits(const CEnt& ent) const {
  ENT_TRAITS traits = ent.getTraits();
  if (m_isHatch) {
    // The lines of a hatch have no weight and opacity of their own.
    traits.lineweight = ENT_TRAITS::kWeightByBlock;
    traits.opacity = ENT_TRAITS::kOpacityByBlock;
  }
  const CLayer* layer = ResolveLayer(ent);
  const LAYER_TRAITS ofLayer = layer != nullptr ? layer->getTraits() : LAYER_TRAITS();
  if (!traits.hasTrueColor() && ent.getColor() == kColorByLayer)
    traits.trueColor = ofLayer.trueColor;
  if (!traits.hasTrueColor() && ent.getColor() == kColorByBlock)
    traits.trueColor = m_traits.trueColor;
  if (traits.lineweight == ENT_TRAITS::kWeightByLayer) traits.lineweight = ofLayer.lineweight;
  if (traits.lineweight == ENT_TRAITS::kWeightByBlock) traits.lineweight = m_traits.lineweight;
  if (traits.opacity == ENT_TRAITS::kOpacityByLayer) traits.opacity = ofLayer.opacity;
  if (traits.opacity == ENT_TRAITS::kOpacityByBlock) traits.opacity = m_traits.opacity;
  traits.isVisible = traits.isVisible && m_traits.isVisible;
  return traits;
}

CEntInsertStack::CEntInsertStack(double pixelSize) : m_pixelSize(pixelSize) {
  m_saved.reserve(kUsualDepth);
}

void CEntInsertStack::Push(const CEntInsertBase* insert, int row, int col) {
  // Saved instead of recomputed, because inverting a matrix would lose precision.
  const Saved outer{m_matrix, m_layer, m_color, m_ltype, m_traits, m_isHatch};
  m_saved.push_back(outer);
  m_inserts.push_back(insert);
  m_matrix = outer.matrix * CEntInsertMatrix(m_pixelSize, *insert, row, col);
  // The insert inherits its own properties from the surrounding state, so the layer is replaced
  // last.
  m_color = ResolveColor(*insert);
  m_ltype = ResolveLtype(*insert);
  m_traits = ResolveTraits(*insert);
  m_layer = ResolveLayer(*insert);
  m_isHatch = insert->getType() == CEntHatch::kType;
}

void CEntInsertStack::Pop() {
  if (m_saved.empty()) return;
  const Saved& outer = m_saved.back();
  m_matrix = outer.matrix;
  m_layer = outer.layer;
  m_color = outer.color;
  m_ltype = outer.ltype;
  m_traits = outer.traits;
  m_isHatch = outer.isHatch;
  m_saved.pop_back();
  m_inserts.pop_back();
}
