#include "xref/xrefedit.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "drawing/everyentity.h"
#include "drawing/itemuse.h"
#include "vek0core/drawing/functions.h"

namespace vek0::detail {
namespace {

// The reference that a text style or block belongs to, according to its name.
const CBlockXRef* ownerOf(const CData& data, const CNamedItem& item) {
  zim::WString xref, rest;
  return scomposeName(item.getName(), xref, rest) ? data.getBlockXRefTable().get(xref) : nullptr;
}

template <class Table>
auto namedAfter(const CData& data, const Table& table, const XRefs& xrefs) {
  const std::unordered_set<const CBlockXRef*> owners(xrefs.begin(), xrefs.end());
  std::vector<decltype(table[0])> items;
  for (int i = 0; i < table.size(); ++i)
    if (owners.count(ownerOf(data, *table[i])) != 0) items.push_back(table[i]);
  return items;
}

}  // namespace

std::vector<CEnt*> insertsOf(CData& data, const XRefs& xrefs) {
  std::unordered_set<const CBlock*> inserted;
  for (const CBlockXRef* xref : xrefs)
    if (xref->getEntities() > 0) inserted.insert(xref);
  std::vector<CEnt*> inserts;
  // A reference without entities has no inserts, which saves the search through the drawing.
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
    // Shown by nothing else, so it disappears with its inserts.
    if (asked.insert(xref).second && xref->getShows() == 0) going.push_back(xref);
  for (std::size_t i = 0; i < going.size(); ++i)
    for (CBlockXRef* nested : going[i]->getNested())
      // The last reference that showed it is going as well.
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
    // Only layers of the remaining references matter; those of the drawing are remapped elsewhere.
    if (!(*layer)->isXRef() || isTheirs(static_cast<const CLayerXRef&>(**layer))) continue;
    if (ltype == nullptr || !ltype->isXRef() || !isTheirs(static_cast<const CLtypeXRef&>(*ltype)))
      continue;
    if (!undo.keep(**layer)) return false;
    (*layer)->setLtype(standIn(ltype));
  }
  return true;
}

bool removeXRefs(CData& data, CUndoStack& undo, const XRefs& going) {
  // By name, because styles and blocks of references are listed in the drawing's tables.
  for (CStyle* style : namedAfter(data, data.getStyleTable(), going))
    if (!isUsed(data, *style) && !undo.remove(style)) return false;
  for (CBlock* block : namedAfter(data, data.getBlockTable(), going))
    if (block->getEntities() <= 0 && !undo.remove(block)) return false;
  for (CBlockXRef* xref : going)
    if (!undo.remove(xref)) return false;
  return true;
}

}  // namespace vek0::detail
