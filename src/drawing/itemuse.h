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

}  // namespace vek0::detail
