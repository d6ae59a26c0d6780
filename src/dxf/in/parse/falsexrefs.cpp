#include "dxf/in/parse/falsexrefs.h"

#include <memory>

#include "dxf/in/itemflags.h"
#include "tables/addnew.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/drawing/tableremapper.h"
#include "vek0core/entities/blocks/blockxref.h"

namespace vek0::detail {
namespace {

long ownFlags(const CNamedItem& item) { return item.getFlags() & ~(kOfXRef | kResolved); }

void replaceItems(CData& data, CBlockXRef& xref, CTableRemapper& items) {
  for (int i = 0; i < xref.getLtypeTable().size(); ++i) {
    CLtype& of = *xref.getLtypeTable()[i];
    const zim::WString name = of.getFullName();
    if (!data.getLtypeTable().get(name))
      addNew(data.getLtypeTable(),
             data.getLtypeFactory().create(name, of.getDesc(), of.GetDashSeq(), ownFlags(of)));
    items.ChangeInto(&of, data.getLtypeTable().get(name));
  }
  for (int i = 0; i < xref.getLayerTable().size(); ++i) {
    CLayer& of = *xref.getLayerTable()[i];
    const zim::WString name = of.getFullName();
    if (!data.getLayerTable().get(name))
      addNew(data.getLayerTable(),
             data.getLayerFactory().create(name, of.getLtype(), of.getColor(), ownFlags(of)))
          ->copyExtras(of);
    items.ChangeInto(&of, data.getLayerTable().get(name));
  }
}

}  // namespace

void dropFalseXRefs(CData& data, const std::vector<CBlockXRef*>& xrefs) {
  if (xrefs.empty()) return;
  CTableRemapper items(data, false);
  for (CBlockXRef* xref : xrefs) replaceItems(data, *xref, items);
  items.Remap();
  for (CBlockXRef* xref : xrefs) {
    data.getBlockXRefTable().remove(xref);
    delete xref;
  }
}

}  // namespace vek0::detail
