// Writes the sections of a file. The entities of the model and of the current sheet are in the
// ENTITIES section, those of other sheets in their blocks.
#include "vek0core/dxf/out/modern/saveoptions.h"

#include <new>

#include "dxf/out/blockrecord.h"
#include "dxf/out/modern/filesections.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/modern/layoutobjects.h"
#include "files/threads.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/files/file.h"

namespace vek0::detail {
namespace {

struct BlockHead {
  Handle record, begin, end;
  std::string_view name;
  long flags = 0;
  PNT_3D base{0, 0, 0};
  zim::WString path = {};
  bool isSheet = false;
};

class ModernSaver {
 public:
  ModernSaver(FilePlan& plan, IFile& file, int threads)
      : m_plan(plan), m_file(file), m_out(file), m_records(plan, m_out) {
    m_out.setBuffered(true);
    m_out.setThreads(allowsThread(threads));
    m_out.setExact(true);
    m_out.setEncoder(&plan.encoder);
    m_out.setReport(plan.report);
  }

  bool save() {
    writeHeaderSection(m_plan, m_out);
    writeClassesSection(m_plan, m_out);
    if (!sectionDone()) return false;
    writeTablesSection(m_plan, m_out);
    if (!sectionDone()) return false;
    writeBlocks();
    if (!sectionDone()) return false;
    writeEntities();
    if (!sectionDone()) return false;
    writeObjectsSection(m_plan, m_out);
    m_out.writeEncoded(0, "EOF");
    return sectionDone();
  }

 private:
  // Each section ends with a check, so that a full medium is noticed early.
  bool sectionDone() { return m_out.flush() && !m_file.fail(); }

  void writeBlocks();
  void writeBlock(const SavedBlock& saved);
  void writeSpace(const SavedSpace& space, bool withContent);
  void writeContent(const SavedSpace& space);
  void writeEntities();
  void beginBlock(const BlockHead& head);
  void endBlock(const BlockHead& head);

  FilePlan& m_plan;
  IFile& m_file;
  CFileDXFOWriter m_out;
  EntityRecords m_records;
};

void ModernSaver::writeBlocks() {
  beginSection(m_out, "BLOCKS");
  // Blocks precede those that insert them.
  for (std::size_t i = 0; i < 2; ++i) writeSpace(m_plan.spaces[i], false);
  for (const SavedBlock& saved : m_plan.blocks) writeBlock(saved);
  for (std::size_t i = 2; i < m_plan.spaces.size(); ++i) writeSpace(m_plan.spaces[i], true);
  endSection(m_out);
}

void ModernSaver::writeSpace(const SavedSpace& space, bool withContent) {
  BlockHead head{space.record, space.begin, space.end, space.block};
  head.isSheet = &space != &m_plan.spaces.front();
  beginBlock(head);
  if (withContent) writeContent(space);
  endBlock(head);
}

// Entities are relative to the base point of their block, but those of references are not.
void ModernSaver::writeBlock(const SavedBlock& saved) {
  CBlock& block = *saved.block;
  const SavedItem& item = m_plan.blockNames[&block];
  BlockHead head{saved.record, saved.begin, saved.end, item.name};
  head.flags = m_plan.fileFlags(block.getFlags(), item, block.getName());
  head.flags &= ~(kExternal | CBlock::kAnonymous);
  if (head.name.starts_with('*')) head.flags |= CBlock::kAnonymous;
  if (saved.isXRef) {
    const auto& xref = static_cast<const CBlockXRef&>(block);
    head.flags |= kExternal;
    head.path = xref.getPath();
    if (isFinite(xref.getPnt())) head.base = xref.getPnt();
  }
  beginBlock(head);
  m_records.enter(saved.record, false);
  for (unsigned i = 0; i < block.size() && !saved.isXRef && !m_out.fail(); ++i)
    block[i]->accept(m_records);
  endBlock(head);
}

void ModernSaver::beginBlock(const BlockHead& head) {
  m_records.enter(head.record, head.isSheet);
  m_records.begin("BLOCK", head.begin, head.record);
  m_out.writeEncoded(8, "0");
  m_out.writeEncoded(100, "AcDbBlockBegin");
  m_out.writeEncoded(2, head.name);
  m_out.write(70, head.flags);
  writePoint(m_out, 10, head.base.x, head.base.y, head.base.z);
  m_out.writeEncoded(3, head.name);
  m_out.writeText(1, head.path);
}

void ModernSaver::endBlock(const BlockHead& head) {
  m_records.enter(head.record, head.isSheet);
  m_records.begin("ENDBLK", head.end, head.record);
  m_out.writeEncoded(8, "0");
  m_out.writeEncoded(100, "AcDbBlockEnd");
}

void ModernSaver::writeEntities() {
  beginSection(m_out, "ENTITIES");
  writeContent(m_plan.spaces[0]);
  writeContent(m_plan.spaces[1]);
  endSection(m_out);
}

void ModernSaver::writeContent(const SavedSpace& space) {
  const bool isSheet = &space != &m_plan.spaces.front();
  m_records.enter(space.record, isSheet);
  m_plan.forEachIn(space, [this](CEnt& ent) {
    ent.accept(m_records);
    return !m_out.fail();
  });
  if (isSheet) SheetViewports(m_plan, m_out, m_records).write(space);
}

bool savePlanned(const CData& data, IFile& file, const CFileDXFOOptions& options) {
  FilePlan plan(data, *rulesOf(options.version), (options.flags & kSaveSelectedOnly) != 0,
                options.report);
  if (!plan.isCyclic) return ModernSaver(plan, file, options.threads).save();
  plan.note(ReportCode::BlocksInACircle, {});
  return false;
}

bool saveModern(const CData& data, IFile& file, const CFileDXFOOptions& options) {
  constexpr unsigned accepted = kSaveExchange | kSaveSelectedOnly | kSaveKeepNames;
  const bool isVersion = options.version <= DxfVersion::R2018;
  if (!isVersion || (options.flags & ~accepted) != 0 || !file.open()) return false;
  const struct Closer {
    ~Closer() { opened.close(); }
    IFile& opened;
  } closer{file};
  try {
    return savePlanned(data, file, options);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace
}  // namespace vek0::detail

bool SaveDXF(const CData& data, IFile& file, const CFileDXFOOptions& options) {
  if (options.version != DxfVersion::R12) return vek0::detail::saveModern(data, file, options);
  return SaveDXF(data, file, options.flags, options.report, options.threads);
}
