#include "drawing/itemuse.h"

#include <new>
#include <unordered_map>

#include "vek0core/entities/blocks/blockxref.h"

namespace vek0::detail {
namespace {

// How often the items of a reference use each other, by the item used.
std::unordered_map<const void*, long> innerUses(const CBlockXRef& xref) {
  std::unordered_map<const void*, long> uses;
  for (int i = 0; i < xref.getLayerTable().size(); ++i) ++uses[xref.getLayerTable()[i]->getLtype()];
  for (int i = 0; i < xref.getLtypeTable().size(); ++i) {
    const CLtype& ltype = *xref.getLtypeTable()[i];
    for (int j = 0; j < ltype.getNoDashes(); ++j)
      if (const TEXT_3D* text = ltype.GetDash(j)->GetText()) ++uses[text->getStyle()];
  }
  return uses;
}

}  // namespace

bool isUsed(const CData& data, const CBlockXRef& xref) {
  if (xref.getEntities() > 0 || xref.getShows() > 0) return true;
  // Uses of items by items of the same reference do not count: they disappear together.
  std::unordered_map<const void*, long> own = innerUses(xref);
  const CDataVariables& vars = data.getVars();
  for (int i = 0; i < xref.getLayerTable().size(); ++i)
    if (isUsed(data, *xref.getLayerTable()[i])) return true;
  for (int i = 0; i < xref.getLtypeTable().size(); ++i) {
    const CLtype* ltype = xref.getLtypeTable()[i];
    if (ltype->getEntities() > 0 || ltype->getLayers() > own[ltype]) return true;
    if (vars.getCurLtype() == ltype) return true;
  }
  for (int i = 0; i < xref.getStyleTable().size(); ++i) {
    const CStyle* style = xref.getStyleTable()[i];
    if (style->getEntities() > 0 || style->getDashes() > own[style]) return true;
    if (vars.getCurStyle() == style) return true;
  }
  return false;
}

void reinstateUsed(CData& data) try {
  for (int i = 0; i < data.getBlockXRefTable().size(); ++i)
    data.getBlockXRefTable()[i]->reinstate([&](const auto& item) { return isUsed(data, item); });
} catch (const std::bad_alloc&) {
  // Items that stay retired are valid.
}

}  // namespace vek0::detail
