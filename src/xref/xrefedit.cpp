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

std::vector<CEnt*> insertsOf(CData& data, const XRefs& xrefs) {
  std::unordered_set<const CBlock*> inserted;
  for (const CBlockXRef* xref : xrefs)
    if (xref->getEntities() > 0) inserted.insert(xref);
  std::vector<CEnt*> inserts;
  if (inserted.empty()) return inserts;
  forEveryEntity(data, false, [&](CEnt& ent) {
    const CEntInsertBase* insert = ent.getEntInsert();
    if (insert != nullptr && inserted.count(insert->getBlock()) != 0) inserts.push_back(&ent);
    return true;
  });
  return inserts;
}

XRefs shownOnlyBy(const XRefs& xrefs) {
  std::unordered_set<const CBlockXRef*> asked;
  std::unordered_map<const CBlockXRef*, long> passed;  // of the references that show it
  XRefs going;
  for (CBlockXRef* xref : xrefs)
    if (asked.insert(xref).second && xref->getShows() == 0) going.push_back(xref);
  for (std::size_t i = 0; i < going.size(); ++i)
    for (CBlockXRef* nested : going[i]->getNested())
      if (++passed[nested] == nested->getShows() &&
          (asked.count(nested) != 0 || nested->getEntities() <= 0))
        going.push_back(nested);
  return going;
}

bool areOutermost(const CData& data, const XRefs& xrefs) {
  const XRefs going = shownOnlyBy(xrefs);
  const std::unordered_set<const CBlockXRef*> gone(going.begin(), going.end());
  return std::all_of(xrefs.begin(), xrefs.end(), [&](const CBlockXRef* xref) {
    return data.getBlockXRefTable().contains(xref) && gone.count(xref) != 0;
  });
}

bool leaveLtypes(CData& data, CUndoStack& undo, const XRefs& going,
                 const std::function<CLtype*(CLtype*)>& standIn) {
  const std::unordered_set<const CBlockXRef*> owners(going.begin(), going.end());
  const auto isTheirs = [&owners](const auto& item) { return owners.count(&item.getXRef()) != 0; };
  for (CData::CLayerIterator layer(data, true); *layer != nullptr; ++layer) {
    CLtype* ltype = (*layer)->getLtype();
    if (!(*layer)->isXRef() || isTheirs(static_cast<const CLayerXRef&>(**layer))) continue;
    if (ltype == nullptr || !ltype->isXRef() || !isTheirs(static_cast<const CLtypeXRef&>(*ltype)))
      continue;
    if (!undo.keep(**layer)) return false;
    (*layer)->setLtype(standIn(ltype));
  }
  return true;
}

bool removeXRefs(CData& data, CUndoStack& undo, const XRefs& going) {
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
