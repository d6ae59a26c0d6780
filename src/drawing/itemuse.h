#pragma once

#include "vek0core/drawing/data.h"

namespace vek0::detail {

/// Whether the drawing uses the item, or new entities would use it.
inline bool isUsed(const CData& data, const CLayer& layer) {
  return layer.getEntities() > 0 || data.getVars().getCurLayer() == &layer;
}
inline bool isUsed(const CData& data, const CLtype& ltype) {
  return ltype.getEntities() > 0 || ltype.getLayers() > 0 || data.getVars().getCurLtype() == &ltype;
}
inline bool isUsed(const CData& data, const CStyle& style) {
  return style.getEntities() > 0 || style.getDashes() > 0 || data.getVars().getCurStyle() == &style;
}
inline bool isUsed(const CData&, const CBlock& block) { return block.getEntities() > 0; }
/// Also whether the drawing uses an item of the reference, or another reference shows it. Linear in
/// the items of the reference.
bool isUsed(const CData& data, const CBlockXRef& xref);

/// Takes back items that references have retired but that are used again: undo may restore objects
/// that refer to them. Without enough memory, the next call retries.
void reinstateUsed(CData& data);

}  // namespace vek0::detail
