#include "vek0core/ltypefile/addltypes.h"

#include <memory>

#include "ltypefile/isoltypes.h"
#include "tables/handover.h"
#include "vek0core/drawing/data.h"
#include "vek0core/files/filememory.h"
#include "vek0core/ltypefile/ltypeloader.h"

namespace {

// The elements with their styles replaced by those of that table.
CLtypeComplexDashSeq withStylesOf(const CStyleTable& styles, const CLtypeComplexDashSeq& src) {
  CLtypeComplexDashSeq dashes;
  for (int i = 0; i < src.GetNoDashes(); ++i) {
    if (!src[i]->IsText()) {
      dashes.AddDashDouble(src[i]->GetValue());
      continue;
    }
    TEXT_3D text = *src[i]->GetText();
    if (const CStyle* style = text.getStyle()) text.setStyle(styles.get(style->getName()));
    dashes.AddDashText(text);
  }
  return dashes;
}

}  // namespace

int addLtypes(CData& data, const CLtypeLoader& loader) {
  int added = 0;
  CLtypeTable& table = data.getLtypeTable();
  for (int i = 0; i < loader.GetNoLtype(); ++i) {
    const CLtype& src = *loader.GetLtypeNo(i);
    if (src.getName().empty() || table.get(src.getName())) continue;
    std::unique_ptr<CLtype> ltype(data.getLtypeFactory().create(
        src.getName(), src.getDesc(),
        withStylesOf(data.getStyleTable(), src.GetLtypeComplexDashSeq()), src.getFlags()));
    if (!ltype) return added;
    vek0::detail::addTo(table, std::move(ltype));
    ++added;
  }
  return added;
}

int addIsoLtypes(CData& data) {
  CFileMemory file(u"iso.lin", IFile::kRead, vek0::detail::kIsoLtypes);
  CLtypeLoader loader(data.getStyleTable(), data.getLtypeFactory());
  loader.Load(file);
  return addLtypes(data, loader);
}
