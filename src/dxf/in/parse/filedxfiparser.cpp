#include "vek0core/dxf/in/parse/filedxfiparser.h"

#include <list>
#include <new>
#include <utility>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/parse/droppedobjects.h"
#include "dxf/in/parse/filedxfiversionloader.h"
#include "files/number.h"
#include "vek0core/assert.h"
#include "vek0core/drawing/datavariables.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"

namespace {

constexpr long kXRefBlock = 4;  // of a block's flags

// Names of the layout blocks, without their first letter: their content is not drawn.
constexpr std::u16string_view kModelName = u"model_space", kPaperName = u"paper_space";

bool isLayout(const zim::WString& name, std::u16string_view layout) {
  return !name.empty() && zim::equalsIgnoreCase(name.view().substr(1, layout.size()), layout);
}

}  // namespace

/// Owns entities between reading and their block: deletes them unless they are taken.
class CFileDXFIParser::OwnedEntities {
 public:
  OwnedEntities() = default;
  OwnedEntities(const OwnedEntities&) = delete;
  OwnedEntities& operator=(const OwnedEntities&) = delete;
  ~OwnedEntities() {
    for (CEnt* ent : m_list) delete ent;
  }
  void take(vek0::detail::EntPtr ent) {
    m_list.push_back(nullptr);
    m_list.back() = ent.release();
  }
  std::list<CEnt*>& list() { return m_list; }

 private:
  std::list<CEnt*> m_list;
};

CFileDXFIParser::CFileDXFIParser(IFile& file, IFileDXFISemantor& semantor, CEntFactory& factory,
                                 CFileDXFIError* err, const CFileDXFIOptions& options)
    : m_file(file),
      m_err(err ? *err : m_ownErr),
      m_lexer(file, &m_err),
      m_semantor(semantor),
      m_options(options),
      m_factory(factory),
      m_dimStyles(std::make_unique<vek0::detail::DimStyles>()),
      m_dropped(std::make_unique<vek0::detail::DroppedObjects>(m_lexer, m_err, options.report)) {
  m_lexer.setReport(options.report);
  m_lexer.refuseJunk();
  if (isTolerant()) m_lexer.setTolerant();
  if (options.codePage != kCodePageAuto) m_lexer.fixCodePage(options.codePage);
}

CFileDXFIParser::~CFileDXFIParser() = default;

bool CFileDXFIParser::load() {
  if (!m_file.open()) return false;
  m_err = CFileDXFIError();
  const bool done = doLoad();
  m_file.close();
  m_semantor.transition();
  return done && !failed();
}

bool CFileDXFIParser::doLoad() {
  try {
    readGlobal();
  } catch (const std::bad_alloc&) {
    fail(CFileDXFIError::GeneralError);
  }
  if (!failed()) return true;
  noteForm();
  m_err.SetFileName(m_file.getName());
  m_err.SetErrorLine(m_faultLine != 0 ? m_faultLine : m_lexer.getLine());
  m_semantor.unrecovableError();
  return false;
}

void CFileDXFIParser::noteForm() {
  const int form = m_lexer.getForm();
  switch (form) {
    case CFileDXFIError::BinaryForm:
      note(ReportCode::BinaryFile);
      break;
    case CFileDXFIError::DwgForm:
      note(ReportCode::DwgFile);
      break;
    case CFileDXFIError::EmptyForm:
      note(ReportCode::EmptyFile);
      break;
    default:
      return;
  }
  m_err.SetForm(static_cast<CFileDXFIError::Form>(form));
}

bool CFileDXFIParser::expect(long code) {
  const long found = read();
  if (!failed() && found != code) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

void CFileDXFIParser::note(ReportCode code, const zim::WString& sample) const {
  if (m_options.report) m_options.report->add(code, m_lexer.getLine(), sample);
}

bool CFileDXFIParser::forgive(ReportCode code, const zim::WString& sample) {
  if (!isTolerant() || !failed() || m_err.GetErrorType() == CFileDXFIError::GeneralError)
    return false;
  note(code, sample);
  m_err = CFileDXFIError();
  m_faultLine = 0;
  return true;
}

bool CFileDXFIParser::spareNumber() {
  const CFileDXFIError::TDXFErrors kind = m_err.GetErrorType();
  const bool isNumber = kind == CFileDXFIError::OutOfRange || kind == CFileDXFIError::EmptyNumber;
  return isNumber && forgive(ReportCode::NumberDropped,
                             zim::WString::fromUtf8(std::to_string(getGroupValue())));
}

bool CFileDXFIParser::recover(ReportCode code, const zim::WString& sample) {
  if (!forgive(code, sample)) return false;
  if (getGroupValue() != 0) readEntityOther();
  return true;
}

bool CFileDXFIParser::passRecord() {
  if (!isTolerant()) return false;
  note(ReportCode::RecordSkipped, m_lexer.getText());
  readEntityOther();
  return true;
}

bool CFileDXFIParser::atSectionEnd() {
  if (isKeyword("ENDSEC") || m_lexer.isStopped()) return true;
  m_pending = isTolerant() && getGroupValue() == 0 && isPending();
  if (m_pending) note(ReportCode::SectionCut);
  return m_pending;
}

void CFileDXFIParser::nextRecord() {
  if (!std::exchange(m_pending, false)) read();
}

bool CFileDXFIParser::atRecord() {
  if (isTolerant() && getGroupValue() != 0) readEntityOther();
  if (!failed() && getGroupValue() != 0) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

// -- the file ------------------------------------------------------------------

void CFileDXFIParser::readGlobal() {
  while (toSection()) {
    if (isKeyword("EOF")) return readEnd();
    m_isDrawing = true;
    readSection();
    if (recover(ReportCode::SectionCut, {})) m_pending = true;
    if (failed()) return;
  }
}

bool CFileDXFIParser::toSection() {
  nextRecord();
  if (isTolerant() && !m_isDrawing) readFragment();
  while (isTolerant() && !isSectionOrEnd()) {
    if (getGroupValue() == 0) note(ReportCode::RecordSkipped, m_lexer.getText());
    read();
  }
  if (!failed() && !isSectionOrEnd()) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

// The line that begins a section may be damaged: its name identifies it as well.
bool CFileDXFIParser::isSectionOrEnd() const {
  if (getGroupValue() == 0) return isPending();
  return isTolerant() && getGroupValue() == 2 && findSection() != nullptr;
}

// Some programs write only entity records, and files lose their beginning.
void CFileDXFIParser::readFragment() {
  while (!failed() && !isSectionOrEnd() && !isKeyword("ENDSEC")) {
    RealizeVersion();
    if (getGroupValue() != 0)
      read();
    else if (isKeyword("BLOCK"))
      readBlock();
    else
      addEntity();
  }
}

// A file of a different format has no section either.
void CFileDXFIParser::readEnd() {
  const bool isForeign = m_lexer.getForm() != CFileDXFIError::TextForm;
  if (isForeign || (m_lexer.isCut() && !m_isDrawing)) return fail(CFileDXFIError::WrongStructure);
  if (m_lexer.isEncodingOther()) note(ReportCode::EncodingDiffers, m_codePageName);
  if (m_pACADVersionLoader && m_pACADVersionLoader->isSheetUsed())
    m_dropped->addSheet(m_activeSheet);
  m_dropped->tell();
  if (m_pACADVersionLoader) m_pACADVersionLoader->getClips().settle();
  settleLayers();
  takeCurrentItems();
}

CFileDXFIParser::ReadSection CFileDXFIParser::findSection() const {
  if (isKeyword("HEADER")) return &CFileDXFIParser::readHeader;
  if (isKeyword("TABLES")) return &CFileDXFIParser::readTables;
  if (isKeyword("BLOCKS")) return &CFileDXFIParser::readBlocks;
  if (isKeyword("ENTITIES")) return &CFileDXFIParser::readEntities;
  return nullptr;
}

void CFileDXFIParser::readSection() {
  if (getGroupValue() != 2 && !expect(2)) return;
  if (const ReadSection readKnown = findSection()) return (this->*readKnown)();
  if (isTolerant() && !isKeyword("CLASSES")) noteSection();
  if (isTolerant() && isKeyword("OBJECTS")) return readObjects();
  readOtherSection();
}

void CFileDXFIParser::readObjects() {
  read();
  while (atRecord() && !atSectionEnd()) {
    const bool isClip = m_pACADVersionLoader && m_pACADVersionLoader->getClips().readObject();
    if (!isClip) m_dropped->readRecord();
  }
}

// A section with an unknown name may contain parts of the drawing.
void CFileDXFIParser::noteSection() {
  const bool isKnown = isKeyword("OBJECTS") || isKeyword("THUMBNAILIMAGE") || isKeyword("ACDSDATA");
  note(isKnown ? ReportCode::SectionSkipped : ReportCode::SectionUnknown, m_lexer.getText());
}

void CFileDXFIParser::readOtherSection() { skipTo("ENDSEC"); }

void CFileDXFIParser::skipTo(std::string_view keyword) {
  do {
    read();
    if (isTolerant() && getGroupValue() == 0 && (atSectionEnd() || isKeyword("TABLE"))) {
      m_pending = !isKeyword(keyword);
      return;
    }
  } while (!failed() && (getGroupValue() != 0 || !isKeyword(keyword)));
}

void CFileDXFIParser::readEntityOther() {
  do {
    read();
  } while (!failed() && getGroupValue() != 0);
}

// The tables that the names refer to are complete only at the end of the file.
void CFileDXFIParser::takeCurrentItems() {
  if (!m_semantor.shouldReadHeaders()) return;
  CDataVariables* vars = m_semantor.getVars();
  ZORA_ASSERT(vars != nullptr);
  if (!vars) return;
  if (CLayer* layer = m_semantor.getLayer(m_curLayer)) vars->setCurLayer(layer);
  if (CLtype* ltype = m_semantor.getLtype(m_curLtype)) vars->setCurLtype(ltype);
  if (CStyle* style = m_semantor.getStyle(m_curStyle)) vars->setCurStyle(style);
}

// -- BLOCKS --------------------------------------------------------------------

struct CFileDXFIParser::BlockHeader {
  zim::WString name, path;
  double base[3] = {0, 0, 0};
  long flags = 0;
  std::uint64_t owner = 0;  // handle of its record
};

void CFileDXFIParser::readBlocks() {
  RealizeVersion();
  read();
  while (atRecord() && !atSectionEnd()) readBlock();
  m_pACADVersionLoader->endBlocks();
  // An insert may precede the definition of its block. Once is enough: extents from further BLOCKS
  // sections are computed at the end, and a file may have thousands of them.
  if (failed() || m_blocksMeasured || !m_pACADVersionLoader->hasReadInsert()) return;
  m_blocksMeasured = true;
  m_semantor.getBlockTable().recalcBdry();
}

void CFileDXFIParser::readBlock() {
  if (!isKeyword("BLOCK") && passRecord()) return;
  BlockHeader block;
  OwnedEntities entities;
  readBlockHeader(block);
  const bool isSheet = isTolerant() && isLayoutName(block.name) && isLayout(block.name, kPaperName);
  m_pACADVersionLoader->enterBlock(m_semantor.findBlock(block.name),
                                   isSheet ? block.name : zim::WString());
  readBlockEntities(entities);
  if (m_pACADVersionLoader->leaveBlock()) m_dropped->addSheet(block.owner);
  if (isSheet && block.name.Length() == 1 + kPaperName.size()) m_activeSheet = block.owner;
  if (!failed()) createBlock(block, entities);
  recover(ReportCode::BlockDropped, block.name);
}

void CFileDXFIParser::readBlockHeader(BlockHeader& block) {
  while (!failed()) {
    switch (read()) {
      case 0:
        return;
      case 1:
        block.path = m_lexer.getText();
        break;
      case 2:
        block.name = m_lexer.getText();
        break;
      case 10:
        block.base[0] = getDouble();
        break;
      case 20:
        block.base[1] = getDouble();
        break;
      case 30:
        block.base[2] = getDouble();
        break;
      case 70:
        block.flags = readFlags();
        break;
      case 330:
        if (block.owner == 0) block.owner = vek0::detail::parseHex(m_lexer.getBytes());
        break;
      default:
        if (isTolerant()) m_lexer.checkNumber();
    }
    if (failed()) spareNumber();
  }
}

void CFileDXFIParser::readBlockEntities(OwnedEntities& entities) {
  while (!failed() && !isKeyword("ENDBLK") && !isBlockCut()) {
    if (vek0::detail::EntPtr ent{readAnEntity()}) entities.take(std::move(ent));
    for (vek0::detail::EntPtr& ent : m_pACADVersionLoader->getFurther())
      entities.take(std::move(ent));
    m_pACADVersionLoader->getFurther().clear();
  }
  if (!failed() && isKeyword("ENDBLK")) readEntityOther();
}

bool CFileDXFIParser::isBlockCut() {
  if (m_lexer.isStopped()) return true;
  const bool isCut = isTolerant() && (isKeyword("BLOCK") || isKeyword("ENDSEC") || isPending());
  if (isCut) note(ReportCode::BlockCut);
  return isCut;
}

// The strict rule ignores the first letter, and so also skips ordinary blocks of such names.
bool CFileDXFIParser::isLayoutName(const zim::WString& name) const {
  if (!isLayout(name, kModelName) && !isLayout(name, kPaperName)) return false;
  return !isTolerant() || name[0] == u'*' || name[0] == u'$';
}

void CFileDXFIParser::createBlock(const BlockHeader& block, OwnedEntities& entities) {
  if (block.name.empty()) return fail(CFileDXFIError::WrongStructure);
  if (isLayoutName(block.name)) {
    if (isTolerant() && !entities.list().empty()) note(ReportCode::BlockDropped, block.name);
    return;
  }
  const bool anonymous = block.name[0] == u'*';
  if (anonymous && entities.list().empty() && (block.flags & CBlock::kAnonymous) == 0) return;
  const PNT_3D base(block.base[0], block.base[1], block.base[2]);
  if ((block.flags & kXRefBlock) != 0)
    m_semantor.createBlockXRef(block.name, block.path, base, block.flags);
  else
    m_semantor.createBlock(block.name, base, block.flags, entities.list());
}

// -- ENTITIES ------------------------------------------------------------------

void CFileDXFIParser::readEntities() {
  RealizeVersion();
  read();
  while (atRecord() && !atSectionEnd()) addEntity();
}

void CFileDXFIParser::addEntity() {
  add(vek0::detail::EntPtr(readAnEntity()));
  for (vek0::detail::EntPtr& ent : m_pACADVersionLoader->getFurther()) add(std::move(ent));
  m_pACADVersionLoader->getFurther().clear();
}

void CFileDXFIParser::add(std::unique_ptr<CEnt> ent) {
  if (!ent) return;
  m_isDrawing = true;
  m_semantor.add(ent.get());
  static_cast<void>(ent.release());  // only now that the drawing owns it
}

// Calls the progress callback every thousand entities.
bool CFileDXFIParser::isTimeToStop() {
  constexpr long between = 1000;
  ++m_entities;
  m_cancelled = m_cancelled || (m_entities % between == 0 && m_options.progress &&
                                !m_options.progress(m_lexer.getLine()));
  const bool tooMany = m_options.maxEntities > 0 && m_entities > m_options.maxEntities;
  if (!m_cancelled && !tooMany) return false;
  if (tooMany && !m_cancelled) note(ReportCode::LimitReached);
  m_lexer.stop();
  readEntityOther();
  return true;
}

// Neither section nor file may end inside a block or before its ENDSEC.
CEnt* CFileDXFIParser::readAnEntity() {
  if (isTimeToStop()) return nullptr;
  if (isKeyword("ENDSEC") || isKeyword("EOF")) {
    fail(CFileDXFIError::WrongStructure);
    return nullptr;
  }
  if (!isTolerant()) return m_pACADVersionLoader->readEntity();
  m_kind = m_lexer.getBytes();
  vek0::detail::EntPtr ent(m_pACADVersionLoader->readEntity());
  if (failed() && recover(ReportCode::EntityDropped, zim::WString::fromUtf8(m_kind)))
    m_pACADVersionLoader->getFurther().clear();
  return ent.release();
}
