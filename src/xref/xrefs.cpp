// Attaching and detaching references.
#include "vek0core/xref/xrefs.h"

#include <memory>
#include <new>
#include <vector>

#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/drawing/tableremapper.h"
#include "vek0core/drawing/undostack.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "xref/xrefedit.h"

namespace {

using vek0::detail::areOutermost;
using vek0::detail::EditStep;
using vek0::detail::insertsOf;
using vek0::detail::leaveLtypes;
using vek0::detail::removeXRefs;
using vek0::detail::shownOnlyBy;

// Names with an asterisk are those of program-generated blocks.
bool isFree(const CData& data, const zim::WString& name) {
  return !name.empty() && name[0] != u'*' && name.view().find(u'|') == std::u16string_view::npos &&
         data.getBlockTable().get(name) == nullptr && data.getBlockXRefTable().get(name) == nullptr;
}

void leaveItems(CData& data, const CBlockXRef& xref, CTableRemapper& items) {
  for (int i = 0; i < xref.getLayerTable().size(); ++i)
    items.ChangeInto(xref.getLayerTable()[i], &data.getLayer0());
  for (int i = 0; i < xref.getLtypeTable().size(); ++i)
    items.ChangeInto(xref.getLtypeTable()[i], &data.getLtypeContinuous());
  for (int i = 0; i < xref.getStyleTable().size(); ++i)
    items.ChangeInto(xref.getStyleTable()[i], getStyleStandard(data));
}

}  // namespace

CBlockXRef* attachXRef(CData& data, CUndoStack& undo, const zim::WString& name,
                       const zim::WString& path, const PNT_3D& base, bool overlay) {
  constexpr long kExternal = 4;
  if (!isFree(data, name)) return nullptr;
  std::unique_ptr<CBlockXRef> xref(data.getBlockFactory().createXRef(
      data.getLtypeContinuous(), data.getLtypeByLayer(), data.getLtypeByBlock(), data.getLayer0(),
      name, path, base, kExternal | (overlay ? CBlockXRef::kOverlay : 0)));
  return xref && undo.add(xref.get()) ? xref.release() : nullptr;
}

bool detachXRef(CData& data, CUndoStack& undo, CBlockXRef& xref) try {
  return detachXRefs(data, undo, {&xref});
} catch (const std::bad_alloc&) {
  return false;
}

bool detachXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs) try {
  if (!areOutermost(data, xrefs)) return false;
  EditStep step(undo);
  for (CEnt* insert : insertsOf(data, xrefs))
    if (!undo.remove(insert)) return false;
  const std::vector<CBlockXRef*> going = shownOnlyBy(xrefs);
  CTableRemapper items(data, false);
  for (CBlockXRef* gone : going) leaveItems(data, *gone, items);
  const auto continuous = [&data](CLtype*) { return &data.getLtypeContinuous(); };
  return items.Remap(undo) && leaveLtypes(data, undo, going, continuous) &&
         removeXRefs(data, undo, going) && step.done();
} catch (const std::bad_alloc&) {
  return false;
}

bool setXRefPath(CUndoStack& undo, CBlockXRef& xref, const zim::WString& path) try {
  xref.reservePath(path.Length());
  if (!undo.keep(xref)) return false;
  xref.setPath(path);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}
