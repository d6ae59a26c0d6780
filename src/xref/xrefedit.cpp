#include "xref/xrefedit.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "drawing/everyentity.h"
#include "vek0core/drawing/functions.h"

namespace vek0::detail {
namespace {

// The reference that a text style's name says it belongs to.
const CBlockXRef* ownerOf(const CData& data, const CStyle& style) {
  zim::WString xref, item;
  return scomposeName(style.getName(), xref, item) ? data.getBlockXRefTable().get(xref) : nullptr;
}

}  // namespace

std::vector<CEnt*> insertsOf(CData& data, const CBlockXRef& xref) {
  std::vector<CEnt*> inserts;
  if (xref.getEntities() <= 0) return inserts;
  forEveryEntity(data, false, [&](CEnt& ent) {
    const CEntInsertBase* insert = ent.getEntInsert();
    if (insert != nullptr && insert->getBlock() == &xref) inserts.push_back(&ent);
    return true;
  });
  return inserts;
}

std::unordered_map<const CBlockXRef*, int> countShows(const CData& data) {
  std::unordered_map<const CBlockXRef*, int> shows;
  const CBlockXRefTable& xrefs = data.getBlockXRefTable();
  for (int i = 0; i < xrefs.size(); ++i)
    for (const CBlockXRef* nested : xrefs[i]->getNested()) ++shows[nested];
  return shows;
}

std::vector<CBlockXRef*> shownOnlyBy(const CData& data, CBlockXRef& xref) {
  std::unordered_map<const CBlockXRef*, int> shows = countShows(data);
  std::vector<CBlockXRef*> going{&xref};
  for (std::size_t i = 0; i < going.size(); ++i)
    for (CBlockXRef* nested : going[i]->getNested())
      if (--shows[nested] == 0 && nested->getEntities() <= 0) going.push_back(nested);
  return going;
}

bool removeXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& going) {
  const std::unordered_set<const CBlockXRef*> owners(going.begin(), going.end());
  std::vector<CStyle*> named;
  for (CData::CStyleIterator style(data, false); *style != nullptr; ++style)
    if (owners.count(ownerOf(data, **style)) != 0) named.push_back(*style);
  for (CStyle* style : named) undo.remove(style);
  for (CBlockXRef* xref : going)
    if (!undo.remove(xref)) return false;
  return true;
}

}  // namespace vek0::detail
