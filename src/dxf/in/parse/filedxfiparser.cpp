// The file level: sections in any order, and what precedes, separates or follows them. Under the
// tolerant policy, a file may begin in the middle or consist of entities only (`readFragment`), and
// anything between sections is passed over. Each section has its own reader; `Sections` holds them
// and what they share.
#include "vek0core/dxf/in/parse/filedxfiparser.h"

#include <new>

#include "dxf/in/parse/blockssection.h"
#include "dxf/in/parse/draworder.h"
#include "dxf/in/parse/droppedobjects.h"
#include "dxf/in/parse/entitiessection.h"
#include "dxf/in/parse/headersection.h"
#include "dxf/in/parse/sectioninput.h"
#include "dxf/in/parse/sheets.h"
#include "dxf/in/parse/tablessection.h"
#include "dxf/sheetplot.h"
#include "files/threads.h"
#include "vek0core/files/file.h"
#include "vek0core/files/textcodec.h"

/// The readers of the sections, which the parser calls in the order of the file.
struct CFileDXFIParser::Sections {
  Sections(CFileDXFILexer& lexer, IFileDXFISemantor& semantor, CFileDXFIError& err,
           const CFileDXFIOptions& options)
      : in(lexer, semantor, err, options),
        dropped(lexer, err, options.report),
        sheets(in, err, dimStyles, tables),
        order(in, dimStyles, options),
        entities(in, sheets, order, options) {}

  vek0::detail::SectionInput in;
  vek0::detail::DimStyles dimStyles;
  vek0::detail::DroppedObjects dropped;
  vek0::detail::HeaderSection header{in, dimStyles};
  vek0::detail::TablesSection tables{in, dimStyles};
  vek0::detail::Sheets sheets;
  vek0::detail::DrawOrder order;
  vek0::detail::EntitiesSection entities;
  vek0::detail::BlocksSection blocks{in, entities, sheets, dropped};
};

CFileDXFIParser::CFileDXFIParser(IFile& file, IFileDXFISemantor& semantor, CEntFactory& factory,
                                 CFileDXFIError* err, const CFileDXFIOptions& options)
    : m_file(file),
      m_err(err ? *err : m_ownErr),
      m_lexer(file, &m_err),
      m_semantor(semantor),
      m_options(options),
      m_factory(factory),
      m_sections(std::make_unique<Sections>(m_lexer, semantor, m_err, m_options)) {
  m_lexer.setReport(options.report);
  m_lexer.refuseJunk();
  if (options.policy.tolerant) m_lexer.setTolerant();
  if (vek0::detail::allowsThread(options.threads)) m_lexer.splitAhead();
  if (options.codePage != kCodePageAuto) m_lexer.fixCodePage(options.codePage);
}

CFileDXFIParser::~CFileDXFIParser() = default;

bool CFileDXFIParser::isCancelled() const { return m_sections->entities.isCancelled(); }
bool CFileDXFIParser::isOutdated() const { return m_sections->entities.isOutdated(); }
const zim::WString& CFileDXFIParser::getVersionName() const {
  return m_sections->header.getVersionName();
}
long CFileDXFIParser::getUnits() const { return m_sections->header.getUnits(); }
long CFileDXFIParser::getMeasurement() const { return m_sections->header.getMeasurement(); }
vek0::Handle CFileDXFIParser::getHandleSeed() const { return m_sections->header.getHandleSeed(); }
const PNT_3D& CFileDXFIParser::getInsertionBase() const {
  return m_sections->header.getInsertionBase();
}

// -- the file ------------------------------------------------------------------

bool CFileDXFIParser::load() {
  if (!m_file.open()) return false;
  m_err = CFileDXFIError();
  const bool done = doLoad();
  m_file.close();
  m_semantor.transition();
  return done && !m_err.HasAnError();
}

bool CFileDXFIParser::doLoad() {
  try {
    readGlobal();
  } catch (const std::bad_alloc&) {
    m_err.SetError(CFileDXFIError::GeneralError);
  }
  if (!m_err.HasAnError()) return true;
  noteForm();
  m_err.SetFileName(m_file.getName());
  m_err.SetErrorLine(m_sections->in.faultLine());
  m_semantor.unrecovableError();
  return false;
}

void CFileDXFIParser::noteForm() {
  const auto form = static_cast<CFileDXFIError::Form>(m_lexer.getForm());
  switch (form) {
    case CFileDXFIError::TextForm:
      return;
    case CFileDXFIError::BinaryForm:
      m_sections->in.note(ReportCode::BinaryFile);
      break;
    case CFileDXFIError::DwgForm:
      m_sections->in.note(ReportCode::DwgFile);
      break;
    case CFileDXFIError::EmptyForm:
      m_sections->in.note(ReportCode::EmptyFile);
      break;
  }
  m_err.SetForm(form);
}

void CFileDXFIParser::readGlobal() {
  vek0::detail::SectionInput& in = m_sections->in;
  while (toSection()) {
    if (in.isKeyword("EOF")) return readEnd();
    m_isDrawing = true;
    readSection();
    // The record at which a section failed may begin the next one.
    if (in.recover(ReportCode::SectionCut, {})) in.keepRecord();
    if (in.failed()) return;
  }
}

bool CFileDXFIParser::toSection() {
  vek0::detail::SectionInput& in = m_sections->in;
  in.nextRecord();
  if (in.isTolerant()) seekSection();
  if (!in.failed() && !isSectionOrEnd()) in.fail(CFileDXFIError::WrongStructure);
  return !in.failed();
}

void CFileDXFIParser::seekSection() {
  vek0::detail::SectionInput& in = m_sections->in;
  if (!m_isDrawing && !m_sections->entities.hasAdded()) readFragment();
  while (!isSectionOrEnd()) {
    if (in.code() == 0) in.note(ReportCode::RecordSkipped, m_lexer.getText());
    in.read();
  }
}

// The line that begins a section may be damaged: its name identifies it as well.
bool CFileDXFIParser::isSectionOrEnd() const {
  const vek0::detail::SectionInput& in = m_sections->in;
  if (in.code() == 0) return in.isBeyondSection();
  return in.isTolerant() && in.code() == 2 && findSection() != nullptr;
}

// Some programs write only entity records, and files lose their beginning.
void CFileDXFIParser::readFragment() {
  const vek0::detail::SectionInput& in = m_sections->in;
  while (!in.failed() && !isSectionOrEnd() && !in.isKeyword("ENDSEC")) {
    RealizeVersion();
    if (in.code() != 0)
      read();
    else if (in.isKeyword("BLOCK"))
      readLooseBlock();
    else
      m_sections->entities.addOne();
  }
}

void CFileDXFIParser::readLooseBlock() {
  m_sections->entities.endPassing();
  m_sections->blocks.readBlock();
}

// A file of a different format has no section either. What depends on everything that was read
// comes last: names in the header and in layers, clips of inserts, sheets, drawing order.
void CFileDXFIParser::readEnd() {
  Sections& all = *m_sections;
  const bool isDrawing = m_isDrawing || all.entities.hasAdded();
  if (m_lexer.getForm() != CFileDXFIError::TextForm || (m_lexer.isCut() && !isDrawing))
    return all.in.fail(CFileDXFIError::WrongStructure);
  if (m_lexer.isEncodingOther())
    all.in.note(ReportCode::EncodingDiffers, all.header.getCodePageName());
  if (all.in.loader && all.in.loader->isSheetUsed())
    all.dropped.addSheet(all.blocks.getActiveSheet());
  all.dropped.tell();
  all.sheets.settle(vek0::detail::plotOfLimits(all.header.getSheetLimits(), all.header.isMetric()));
  all.order.settle();
  if (all.in.loader) all.in.loader->getClips().settle();
  all.tables.settle();
  all.header.takeCurrentItems();
}

// -- sections ------------------------------------------------------------------

CFileDXFIParser::ReadSection CFileDXFIParser::findSection() const {
  const vek0::detail::SectionInput& in = m_sections->in;
  if (in.isKeyword("HEADER")) return &CFileDXFIParser::readHeader;
  if (in.isKeyword("TABLES")) return &CFileDXFIParser::readTables;
  if (in.isKeyword("BLOCKS")) return &CFileDXFIParser::readBlocks;
  if (in.isKeyword("ENTITIES")) return &CFileDXFIParser::readEntities;
  return nullptr;
}

void CFileDXFIParser::readSection() {
  vek0::detail::SectionInput& in = m_sections->in;
  if (in.code() != 2 && !in.expect(2)) return;
  if (const ReadSection readKnown = findSection()) {
    if (!in.isKeyword("ENTITIES")) m_sections->entities.endPassing();
    return (this->*readKnown)();
  }
  if (in.isTolerant()) return readFurtherSection();
  readOtherSection();
}

// A section with an unknown name may contain parts of the drawing. Classes lose nothing: they
// describe objects that are reported where they occur.
void CFileDXFIParser::readFurtherSection() {
  vek0::detail::SectionInput& in = m_sections->in;
  if (in.isKeyword("CLASSES")) return readOtherSection();
  const bool isObjects = in.isKeyword("OBJECTS");
  const bool isKnown = isObjects || in.isKeyword("THUMBNAILIMAGE") || in.isKeyword("ACDSDATA");
  in.note(isKnown ? ReportCode::SectionSkipped : ReportCode::SectionUnknown, m_lexer.getText());
  isObjects ? readObjects() : readOtherSection();
}

void CFileDXFIParser::readObjects() {
  vek0::detail::SectionInput& in = m_sections->in;
  in.read();
  while (in.atRecord() && !in.atSectionEnd()) {
    const bool isClip = in.loader && in.loader->getClips().readObject();
    if (isClip) continue;
    if (in.loader && in.loader->keepsSheets() && in.isKeyword("LAYOUT"))
      m_sections->sheets.readObject();
    else if (in.isKeyword("SORTENTSTABLE"))
      m_sections->order.readTable();
    else
      m_sections->dropped.readRecord();
  }
}

void CFileDXFIParser::readOtherSection() { m_sections->in.skipTo("ENDSEC"); }

void CFileDXFIParser::RealizeVersion() {
  vek0::detail::SectionInput& in = m_sections->in;
  if (in.loader) return;
  in.loader = vek0::detail::createVersionLoader(
      m_sections->header.getVersion(),
      {m_lexer, m_semantor, m_factory, m_err, m_options, m_sections->dimStyles});
  if (!in.loader) in.fail(CFileDXFIError::NewerVersion);
}

void CFileDXFIParser::readHeader() { m_sections->header.read(); }
void CFileDXFIParser::readHeaderString(const zim::WString& name, const zim::WString& value) {
  m_sections->header.takeString(name, value);
}
void CFileDXFIParser::readHeaderDouble(const zim::WString& name, const double (&value)[3]) {
  m_sections->header.takeReals(name, value);
}
void CFileDXFIParser::readHeaderLong(const zim::WString& name, long value) {
  m_sections->header.takeInteger(name, value);
}

void CFileDXFIParser::readTables() {
  RealizeVersion();
  m_sections->tables.read();
}
void CFileDXFIParser::readPreambolo() { m_sections->in.skipRecord(); }
void CFileDXFIParser::readTablesLtype() { m_sections->tables.readLtypes(); }
void CFileDXFIParser::readTablesLayer() { m_sections->tables.readLayers(); }
void CFileDXFIParser::readTablesStyle() { m_sections->tables.readStyles(); }
void CFileDXFIParser::readTablesOther() { m_sections->tables.skipTable(); }

void CFileDXFIParser::readBlocks() {
  RealizeVersion();
  m_sections->blocks.read();
}

void CFileDXFIParser::readEntities() {
  RealizeVersion();
  m_sections->entities.read();
}
CEnt* CFileDXFIParser::readAnEntity() { return m_sections->entities.readOne().release(); }
void CFileDXFIParser::readEntityOther() { m_sections->in.skipRecord(); }
