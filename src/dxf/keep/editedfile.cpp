#include "dxf/keep/editedfile.h"

#include "dxf/keep/editcontext.h"
#include "dxf/keep/entityedits.h"
#include "dxf/keep/headeredits.h"
#include "dxf/keep/itemedits.h"
#include "dxf/keep/newrecords.h"
#include "dxf/keep/repairs.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/datafactory.h"
#include "vek0core/drawing/handlemanager.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/parse/loaddxf.h"
#include "vek0core/entities/enttable.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {
namespace {

// Reads the source again and finds the records of its entities.
bool readPristine(EditContext& on, const CFileDXFIOptions& options) {
  auto owned = std::make_unique<CHandleManager>();
  CHandleManager& manager = *owned;
  on.pristine.reset(CDataFactory().createData(std::move(owned)));
  if (!on.pristine) return false;
  on.pristine->setHatchLimit(on.data.getHatchLimit());
  CFileDXFIOptions noting = options;
  noting.onEntity = [&on](const CEnt& ent, long line) {
    const std::size_t entry = on.index.atLine(line);
    if (entry != SourceIndex::kNone) on.entries.add(ent, entry);
  };
  BytesFile file(on.text.bytes());
  CFileDXFIError error;
  const CFileDXFIResult result = loadDXF(*on.pristine, file, &error, noting);
  if (result.status != CFileDXFIResult::Done) return false;
  on.entries.sort();
  manager.start(*on.pristine, result.handleSeed);
  const std::string version = result.version.toUtf8();
  on.version = SourceVersion::of(version);
  on.version.hasHandles = !on.version.isOld || on.index.highest() != 0;
  const int page = codePageFromName(result.encoding);
  on.decoder = CTextDecoder(page);
  on.decoder.setSense(true);
  on.renames.find(*on.pristine, on.data);
  on.before = std::make_unique<RecordWriter>(*on.pristine, on.version, version, page, nullptr);
  on.after = std::make_unique<RecordWriter>(on.data, on.version, version, page, on.report);
  on.renames.encode(on.decoder,
                    [&on](std::u16string_view name) { return on.after->encoded(name); });
  return true;
}

// Nothing but entities tells that a file without sections and end mark is a drawing.
void endEmptyFragment(EditContext& on) {
  const bool isEmpty = on.data.getEntTable().getEntityTbl().empty();
  if (!isEmpty || !on.index.isFragment() || !on.index.isCut()) return;
  on.edits.addBefore(on.index.entries().size() - 1, {{pairOf(0, "EOF")}});
  on.note(ReportCode::SectionCut, {});
}

}  // namespace

bool saveEdited(const CData& data, std::string source, const CFileDXFIOptions& options,
                bool isRepaired, IFile& file, CFileReport* report) {
  EditContext on(data, std::move(source), report);
  if (!on.index.isSound() || !readPristine(on, options)) return false;
  HeaderEdits header(on);
  ItemEdits items(on);
  EntityEdits entities(on, items);
  header.planVariables();
  entities.plan();
  items.plan();
  entities.removeOwnedByGone();
  entities.addNew();
  if (isRepaired) repair(on, items);
  items.finish();
  endEmptyFragment(on);
  header.planCounters(entities.reserved());
  const auto rewrite = [&](std::size_t entry, std::vector<SourceRecord> records) {
    return entities.rewrite(entry, std::move(records));
  };
  const auto dangling = [&](std::size_t, long, Handle handle) {
    on.note(ReportCode::PointerDangling, zim::WString::fromUtf8(hexOf(handle)));
  };
  return on.edits.write(file, rewrite, dangling);
}

}  // namespace vek0::detail
