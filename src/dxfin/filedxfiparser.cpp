#include "vek0core/dxfin/filedxfiparser.h"

#include <algorithm>
#include <limits>
#include <list>
#include <new>
#include <utility>

#include "dxfin/dimstyles.h"
#include "dxfin/droppedobjects.h"
#include "dxfin/filedxfiversionloader.h"
#include "files/number.h"
#include "vek0core/assert.h"
#include "vek0core/drawing/datavariables.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/blocktable.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"
#include "vek0core/tables/palette.h"

namespace {

constexpr long kNewestVersion = 15;  // of "AC1015"
constexpr long kReferenced = 64;     // bit of code 70 in tables: of no use in memory
constexpr long kOfXRef = 16;         // likewise: the item belongs to an external reference
constexpr long kLayerOff = 128;      // our own bit for a colour below 0
constexpr long kWhite = 7;
constexpr long kShapeFile = 1;  // STYLE: not a text font
constexpr long kXRefBlock = 4;  // of a block's flags

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Reals = double[3];

void setLimMin(CDataVariables& vars, const Reals& v) { vars.setLimMin(PNT_2D(v[0], v[1])); }
void setLimMax(CDataVariables& vars, const Reals& v) { vars.setLimMax(PNT_2D(v[0], v[1])); }
void setLtypeScale(CDataVariables& vars, const Reals& v) { vars.setLtypeScale(v[0]); }
void setPLineWid(CDataVariables& vars, const Reals& v) { vars.setPLineWid(v[0]); }
void setAngDir(CDataVariables& vars, const Reals& v) { vars.setAngDir(v[0] * kRadiansPerDegree); }

void setColor(CDataVariables& vars, const long& value) {
  if (value >= 0 && value <= 256) vars.setCurColor(static_cast<short>(value));
}
void setOrtho(CDataVariables& vars, const long& value) { vars.setOrtho(value != 0); }
void setPLineGen(CDataVariables& vars, const long& value) { vars.setPLineGen(value != 0); }
void setClockWise(CDataVariables& vars, const long& value) { vars.setAngClockWise(value != 0); }

// 1 (degrees, minutes, seconds) and 4 (surveyor's units) do not exist here.
void setAngleUnit(CDataVariables& vars, const long& value) {
  const bool fits =
      value >= std::numeric_limits<short>::min() && value <= std::numeric_limits<short>::max();
  if (fits && value != 1 && value != 4) vars.setAngFormat(static_cast<short>(value));
}

// Whether files of the version read as their own rules say: those up to R12 by the ones of
// R12, later ones by those of the newest.
bool isReadVersion(const zim::WString& name) {
  constexpr const zim::Char* numbers[] = {u"01", u"02", u"03", u"04", u"06", u"10", u"11",
                                          u"13", u"18", u"21", u"24", u"27", u"32"};
  return name.Length() == 6 && name.view().substr(0, 4) == u"AC10" &&
         std::any_of(std::begin(numbers), std::end(numbers),
                     [&](const zim::Char* number) { return name.view().substr(4) == number; });
}

template <class Value>
struct Variable {
  const zim::Char* name;
  void (*set)(CDataVariables& vars, const Value& value);
};

constexpr Variable<Reals> kRealVariables[] = {
    {u"$LIMMIN",   setLimMin    },
    {u"$LIMMAX",   setLimMax    },
    {u"$LTSCALE",  setLtypeScale},
    {u"$PLINEWID", setPLineWid  },
    {u"$ANGBASE",  setAngDir    },
};
constexpr Variable<long> kIntegerVariables[] = {
    {u"$CECOLOR",   setColor    },
    {u"$AUNITS",    setAngleUnit},
    {u"$ORTHOMODE", setOrtho    },
    {u"$PLINEGEN",  setPLineGen },
    {u"$ANGDIR",    setClockWise},
};

// What only tolerant reading knows.
void setPointSize(CDataVariables& vars, const Reals& v) { vars.setPointSize(v[0]); }
void setPointMode(CDataVariables& vars, const long& value) {
  constexpr long most = 127;  // all bits that mean anything
  if (value >= 0 && value <= most) vars.setPointMode(static_cast<short>(value));
}
constexpr Variable<Reals> kFurtherReals[] = {
    {u"$PDSIZE", setPointSize}
};
constexpr Variable<long> kFurtherIntegers[] = {
    {u"$PDMODE", setPointMode}
};

/// Variables that a drawing has no place for and that nothing is lost with at their usual value:
/// units, and how fills and attributes are shown.
struct Setting {
  const zim::Char* name;
  long usual;
  const char* code;
};
constexpr Setting kSettings[] = {
    {u"$INSUNITS",    0, "unit dropped"   },
    {u"$MEASUREMENT", 0, "unit dropped"   },
    {u"$LUNITS",      2, "unit dropped"   },
    {u"$FILLMODE",    1, "setting dropped"},
    {u"$ATTMODE",     1, "setting dropped"},
    {u"$QTEXTMODE",   0, "setting dropped"},
};

template <class Value, std::size_t count>
void setVariable(const Variable<Value> (&variables)[count], const zim::WString& name,
                 CDataVariables& vars, const Value& value) {
  for (const Variable<Value>& variable : variables)
    if (zim::equalsIgnoreCase(name, variable.name)) variable.set(vars, value);
}

// Names of the blocks of the layouts, but for their first letter: what they hold is drawn by
// nobody.
constexpr std::u16string_view kModelName = u"model_space", kPaperName = u"paper_space";

bool isLayout(const zim::WString& name, std::u16string_view layout) {
  return !name.empty() && zim::equalsIgnoreCase(name.view().substr(1, layout.size()), layout);
}

}  // namespace

/// Entities on their way from the file to their block: deleted unless taken.
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
  constexpr const char* codes[] = {nullptr, "binary file", "dwg file", "empty file"};
  const int form = m_lexer.getForm();
  if (form == CFileDXFIError::TextForm) return;
  note(codes[form]);
  m_err.SetForm(static_cast<CFileDXFIError::Form>(form));
}

bool CFileDXFIParser::expect(long code) {
  const long found = read();
  if (!failed() && found != code) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

void CFileDXFIParser::note(const char* code, const zim::WString& sample) const {
  if (m_options.report) m_options.report->add(code, m_lexer.getLine(), sample);
}

bool CFileDXFIParser::forgive(const char* code, const zim::WString& sample) {
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
  return isNumber &&
         forgive("number dropped", zim::WString::fromUtf8(std::to_string(getGroupValue())));
}

bool CFileDXFIParser::recover(const char* code, const zim::WString& sample) {
  if (!forgive(code, sample)) return false;
  if (getGroupValue() != 0) readEntityOther();
  return true;
}

bool CFileDXFIParser::passRecord() {
  if (!isTolerant()) return false;
  note("record skipped", m_lexer.getText());
  readEntityOther();
  return true;
}

bool CFileDXFIParser::atSectionEnd() {
  if (isKeyword("ENDSEC") || m_lexer.isStopped()) return true;
  m_pending = isTolerant() && getGroupValue() == 0 && isPending();
  if (m_pending) note("section cut");
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
    if (recover("section cut", {})) m_pending = true;
    if (failed()) return;
  }
}

bool CFileDXFIParser::toSection() {
  nextRecord();
  if (isTolerant() && !m_isDrawing) readFragment();
  while (isTolerant() && !isSectionOrEnd()) {
    if (getGroupValue() == 0) note("record skipped", m_lexer.getText());
    read();
  }
  if (!failed() && !isSectionOrEnd()) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

// The line that begins a section may be broken: its name tells as well.
bool CFileDXFIParser::isSectionOrEnd() const {
  if (getGroupValue() == 0) return isPending();
  return isTolerant() && getGroupValue() == 2 && findSection() != nullptr;
}

// Some programs write records of entities alone, and files lose their front.
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

// A file of something else has no section either.
void CFileDXFIParser::readEnd() {
  const bool isForeign = m_lexer.getForm() != CFileDXFIError::TextForm;
  if (isForeign || (m_lexer.isCut() && !m_isDrawing)) return fail(CFileDXFIError::WrongStructure);
  if (m_lexer.isEncodingOther()) note("encoding differs", m_codePageName);
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

// What a section of an unknown name holds may be a part of the drawing.
void CFileDXFIParser::noteSection() {
  const bool isKnown = isKeyword("OBJECTS") || isKeyword("THUMBNAILIMAGE") || isKeyword("ACDSDATA");
  note(isKnown ? "section skipped" : "section unknown", m_lexer.getText());
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

// Only at the end of the file do all the tables exist that the names refer to.
void CFileDXFIParser::takeCurrentItems() {
  if (!m_semantor.shouldReadHeaders()) return;
  CDataVariables* vars = m_semantor.getVars();
  ZORA_ASSERT(vars != nullptr);
  if (!vars) return;
  if (CLayer* layer = m_semantor.getLayer(m_curLayer)) vars->setCurLayer(layer);
  if (CLtype* ltype = m_semantor.getLtype(m_curLtype)) vars->setCurLtype(ltype);
  if (CStyle* style = m_semantor.getStyle(m_curStyle)) vars->setCurStyle(style);
}

// -- HEADER --------------------------------------------------------------------

/// What stands after a variable's name. Its kind is that of its last value.
struct CFileDXFIParser::HeaderValue {
  enum Kind { None, Text, Real, Integer } kind = None;
  zim::WString text;
  double reals[3] = {0, 0, 0};
  int count = 0;  // of reals
  long integer = 0;
};

void CFileDXFIParser::readHeader() {
  read();
  while (!failed()) {
    if (getGroupValue() == 9) {
      readHeaderVariable();
    } else if (getGroupValue() != 0) {
      read();
    } else if (atSectionEnd()) {
      return;
    } else if (!passRecord()) {
      return fail(CFileDXFIError::WrongStructure);
    }
  }
}

void CFileDXFIParser::readHeaderVariable() {
  const zim::WString name = m_lexer.getText();
  HeaderValue value;
  for (;;) {
    const long code = read();
    if (failed()) return;
    if (code == 0 || code == 9) return readHeaderValue(name, value);
    collect(code, value);
    if (failed()) return dropVariable(name);
  }
}

void CFileDXFIParser::dropVariable(const zim::WString& name) {
  if (!forgive("variable dropped", name)) return;
  while (getGroupValue() != 0 && getGroupValue() != 9) read();
}

void CFileDXFIParser::collect(long code, HeaderValue& value) {
  if (code >= 0 && code < 10) {
    value.kind = HeaderValue::Text;
    value.text = m_lexer.getText();
  } else if ((code >= 10 && code < 60) || (code >= 210 && code < 240)) {
    const double real = getDouble();
    value.kind = HeaderValue::Real;
    if (value.count < 3) value.reals[value.count++] = real;
  } else if (code >= 60 && code < 80) {
    value.kind = HeaderValue::Integer;
    value.integer = getInt();
  }
}

void CFileDXFIParser::readHeaderValue(const zim::WString& name, const HeaderValue& value) {
  switch (value.kind) {
    case HeaderValue::Text:
      return readHeaderString(name, value.text);
    case HeaderValue::Real:
      return readHeaderDouble(name, value.reals);
    case HeaderValue::Integer:
      return readHeaderLong(name, value.integer);
    case HeaderValue::None:
      return;
  }
}

void CFileDXFIParser::readHeaderString(const zim::WString& name, const zim::WString& value) {
  if (zim::equalsIgnoreCase(name, u"$ACADVER")) return takeVersion(value);
  if (zim::equalsIgnoreCase(name, u"$DWGCODEPAGE")) {
    m_codePageName = value;
    return takeCodePage();
  }
  m_dimStyles->takeVariable(name, value);
  if (!m_semantor.shouldReadHeaders()) return;
  if (zim::equalsIgnoreCase(name, u"$CELTYPE")) m_curLtype = value;
  if (zim::equalsIgnoreCase(name, u"$CELAYER")) m_curLayer = value;
  if (isTolerant() && zim::equalsIgnoreCase(name, u"$CLAYER")) m_curLayer = value;
  if (zim::equalsIgnoreCase(name, u"$TEXTSTYLE")) m_curStyle = value;
}

void CFileDXFIParser::readHeaderDouble(const zim::WString& name, const double (&value)[3]) {
  m_dimStyles->takeVariable(name, value[0]);
  if (zim::equalsIgnoreCase(name, u"$INSBASE")) {
    m_insertionBase = PNT_3D(value[0], value[1], value[2]);
    if (m_insertionBase != PNT_3D(0, 0, 0)) noteSetting("setting dropped", name);
  }
  if (!m_semantor.shouldReadHeaders()) return;
  setVariable(kRealVariables, name, *m_semantor.getVars(), value);
  if (isTolerant()) setVariable(kFurtherReals, name, *m_semantor.getVars(), value);
}

void CFileDXFIParser::readHeaderLong(const zim::WString& name, long value) {
  if (zim::equalsIgnoreCase(name, u"$INSUNITS")) m_units = value;
  if (zim::equalsIgnoreCase(name, u"$MEASUREMENT")) m_measurement = value;
  m_dimStyles->takeVariable(name, static_cast<double>(value));
  for (const Setting& setting : kSettings)
    if (zim::equalsIgnoreCase(name, setting.name) && value != setting.usual)
      noteSetting(setting.code, name);
  if (!m_semantor.shouldReadHeaders()) return;
  setVariable(kIntegerVariables, name, *m_semantor.getVars(), value);
  if (isTolerant()) setVariable(kFurtherIntegers, name, *m_semantor.getVars(), value);
}

// The drawing that is imported into keeps its own.
void CFileDXFIParser::noteSetting(const char* code, const zim::WString& name) {
  if (m_semantor.shouldReadHeaders()) note(code, name);
}

void CFileDXFIParser::takeVersion(const zim::WString& name) {
  m_versionName = name;
  takeCodePage();
  constexpr const zim::Char* known[] = {u"AC1009", u"AC1012", u"AC1014", u"AC1015"};
  for (short i = 0; i < 4; ++i)
    if (name.view() == known[i]) {
      m_version = static_cast<short>(i + 1);
      return;
    }
  if (isTolerant() && !isReadVersion(name)) return note("version unknown", name);
  if (isTolerant()) return;
  if (name.Length() != 6 || name.view().substr(0, 4) != u"AC10")
    return fail(CFileDXFIError::OutOfRange);
  if (vek0::detail::parseLong(name.view().substr(4)) > kNewestVersion)
    fail(CFileDXFIError::NewerVersion);
}

void CFileDXFIParser::takeCodePage() {
  const std::string name = m_codePageName.toUtf8();
  m_lexer.setCodePage(codePageOfDrawing(m_versionName.toUtf8(), name), codePageFromName(name));
}

// The first section that needs the version settles it.
void CFileDXFIParser::RealizeVersion() {
  if (m_pACADVersionLoader) return;
  m_pACADVersionLoader = vek0::detail::createVersionLoader(
      m_version, {m_lexer, m_semantor, m_factory, m_err, m_options, *m_dimStyles});
  if (!m_pACADVersionLoader) fail(CFileDXFIError::NewerVersion);
}

// -- TABLES --------------------------------------------------------------------

void CFileDXFIParser::readTables() {
  RealizeVersion();
  while (!failed()) {
    nextRecord();
    if (failed()) return fail(CFileDXFIError::WrongStructure);
    if (atSectionEnd()) return;
    if (isKeyword("TABLE")) {
      readTable();
      if (recover("table cut", {})) m_pending = true;
    } else {
      m_pending = passRecord();
      if (!m_pending) fail(CFileDXFIError::WrongStructure);
    }
  }
}

void CFileDXFIParser::readTable() {
  if (!expect(2)) return;
  if (isKeyword("LTYPE")) return readTablesLtype();
  if (isKeyword("LAYER")) return readTablesLayer();
  if (isKeyword("STYLE")) return readTablesStyle();
  if (isTolerant() && isKeyword("DIMSTYLE"))
    return readEntries("DIMSTYLE", &CFileDXFIParser::readDimStyleEntry);
  if (isTolerant() && isKeyword("BLOCK_RECORD"))
    return readEntries("BLOCK_RECORD", &CFileDXFIParser::readBlockRecordEntry);
  readTablesOther();
}

void CFileDXFIParser::readTablesLtype() { readEntries("LTYPE", &CFileDXFIParser::readLtypeEntry); }
void CFileDXFIParser::readTablesLayer() { readEntries("LAYER", &CFileDXFIParser::readLayerEntry); }
void CFileDXFIParser::readTablesStyle() { readEntries("STYLE", &CFileDXFIParser::readStyleEntry); }
void CFileDXFIParser::readTablesOther() { skipTo("ENDTAB"); }
void CFileDXFIParser::readPreambolo() { readEntityOther(); }

void CFileDXFIParser::readEntries(std::string_view keyword, ReadEntry readEntry) {
  readPreambolo();
  while (!failed() && !isKeyword("ENDTAB")) {
    if (isKeyword(keyword)) {
      (this->*readEntry)();
      recover("entry dropped", zim::WString::fromUtf8(keyword));
    } else if (isTolerant() && (isKeyword("TABLE") || isKeyword("ENDSEC") || isPending())) {
      m_pending = true;
      return note("table cut", zim::WString::fromUtf8(keyword));
    } else if (!passRecord()) {
      return fail(CFileDXFIError::WrongStructure);
    }
  }
}

void CFileDXFIParser::readLtypeEntry() { m_pACADVersionLoader->readLtype(); }

struct CFileDXFIParser::LayerEntry {
  zim::WString name;
  CLtype* ltype = nullptr;
  zim::WString unknownLtype;  // for which ltype stands in until a table has it
  short colour = 7;
  short trueColour = 0;  // what comes nearest to it, and goes before the other; 0 for none
  bool off = false;
  long flags = 0;
};

void CFileDXFIParser::readLayerEntry() {
  LayerEntry layer;
  for (;;) {
    const long code = read();
    if (failed()) return;
    if (code == 0) return createLayer(layer);
    readLayerPair(code, layer);
    if (failed() && !spareNumber()) return;
  }
}

void CFileDXFIParser::readLayerPair(long code, LayerEntry& layer) {
  switch (code) {
    case 2:
      layer.name = m_lexer.getText();
      break;
    case 6:
      layer.ltype = m_semantor.getLtype(m_lexer.getText());
      if (layer.ltype) break;
      if (!isTolerant()) return fail(CFileDXFIError::LtypeNotFound);
      layer.unknownLtype = m_lexer.getText();
      layer.ltype = m_semantor.getLtypeByLayer();  // which no layer has
      break;
    case 62: {
      long colour = getInt();
      if (failed()) return;
      const bool inRange = colour != 0 && colour >= -255 && colour <= 255;
      if (!inRange && !isTolerant()) return fail(CFileDXFIError::OutOfRange);
      if (!inRange) {
        note("color replaced", m_lexer.getText());
        colour = colour < 0 ? -kWhite : kWhite;
      }
      layer.off = colour < 0;
      layer.colour = static_cast<short>(colour < 0 ? -colour : colour);
      break;
    }
    case 70:
      layer.flags = readFlags() & ~kReferenced;
      break;
    default:
      leaveOutOfLayer(code, layer);
  }
}

void CFileDXFIParser::leaveOutOfLayer(long code, LayerEntry& layer) {
  constexpr long notPlotted = 290, weight = 370, trueColor = 420, mask = 0xFFFFFF;
  if (code == trueColor && isTolerant()) {
    const RGB_COLOR color = unpackColor(getInt() & mask);
    if (failed()) return;
    layer.trueColour = nearestPaletteColor(color);
    return note("color approximated", u"LAYER");
  }
  const bool isWeight = code == weight && vek0::detail::parseLong(m_lexer.getBytes()) >= 0;
  const bool isHidden = code == notPlotted && vek0::detail::parseLong(m_lexer.getBytes()) == 0 &&
                        !zim::equalsIgnoreCase(layer.name, u"DEFPOINTS");
  if (isWeight || isHidden || code == trueColor)
    note("code dropped", zim::WString::fromUtf8("LAYER " + std::to_string(code)));
}

long CFileDXFIParser::readFlags() {
  const long flags = getInt();
  if (flags >= 0 || failed() || !isTolerant()) return flags;
  note("flags replaced", m_lexer.getText());
  return 0;
}

// Whether the layer took what the entry says, or was there before, the stand-in tells.
void CFileDXFIParser::createLayer(LayerEntry& layer) {
  if (layer.trueColour != 0) layer.colour = layer.trueColour;
  placeLayer(layer);
  CLayer* made = failed() || layer.unknownLtype.empty() ? nullptr : m_semantor.getLayer(layer.name);
  if (!made || made->getLtype() != layer.ltype) return;
  made->setLtype(m_semantor.getLtype(u"Continuous"));
  m_unsettled.push_back({made, layer.unknownLtype});
}

// Whether a layer is off and its flags come in either order: they are joined here.
void CFileDXFIParser::placeLayer(const LayerEntry& layer) {
  const long flags = layer.flags | (layer.off ? kLayerOff : 0);
  if (layer.name.empty()) return fail(CFileDXFIError::WrongStructure);
  if (layer.name.view() == u"0") return m_semantor.createLayer0(layer.ltype, layer.colour, flags);
  if ((flags & kOfXRef) == 0)
    return m_semantor.createLayer(layer.name, layer.ltype, layer.colour, flags);
  zim::WString xref, local;
  if (scomposeName(layer.name, xref, local))
    return m_semantor.createLayerXRef(xref, local, layer.ltype, layer.colour, flags);
  if (!isTolerant()) return fail(CFileDXFIError::WrongStructure);
  note("flags replaced", layer.name);
  m_semantor.createLayer(layer.name, layer.ltype, layer.colour, flags & ~kOfXRef);
}

// The linetypes may have come after the layers.
void CFileDXFIParser::settleLayers() {
  for (const auto& [layer, name] : m_unsettled) {
    if (CLtype* ltype = m_semantor.getLtype(name))
      layer->setLtype(ltype);
    else
      note("linetype unknown", name);
  }
  m_unsettled.clear();
}

struct CFileDXFIParser::StyleEntry {
  zim::WString name, fontName;
  double fixedHeight = 0, widthScale = 1, obliqueDeg = 0, lastHeight = 0.2;
  long flags = 0;
  long fontLine = 0;   // of code 3; 0: there was none
  long rangeLine = 0;  // of the first number out of range; 0: all are within
};

void CFileDXFIParser::readStyleEntry() {
  StyleEntry style;
  for (;;) {
    const long code = read();
    if (failed()) return;
    if (code == 0) return createStyle(style);
    readStylePair(code, style);
    if (failed() && !spareNumber()) return;
  }
}

void CFileDXFIParser::readStylePair(long code, StyleEntry& style) {
  constexpr double maxOblique = 85;  // degrees
  switch (code) {
    case 2:
      style.name = m_lexer.getText();
      break;
    case 3:
      style.fontName = m_lexer.getText();
      style.fontLine = m_lexer.getLine();
      break;
    case 40:
      takeStyleNumber(0, kInfinity, style, style.fixedHeight);
      break;
    case 41:
      takeStyleNumber(0.01, 100, style, style.widthScale);
      break;
    case 42:
      takeStyleNumber(0, kInfinity, style, style.lastHeight);
      break;
    case 50:
      takeStyleNumber(-maxOblique, maxOblique, style, style.obliqueDeg);
      break;
    case 70:
      style.flags = readFlags() & ~kReferenced;
      break;
    default:
      break;
  }
}

void CFileDXFIParser::takeStyleNumber(double least, double most, StyleEntry& style,
                                      double& target) {
  const double number = getDouble();
  if (failed()) return;
  target = number;
  if (number >= least && number <= most) return;
  if (!isTolerant()) {
    if (style.rangeLine == 0) style.rangeLine = m_lexer.getLine();
    return;
  }
  note("number replaced", m_lexer.getText());
  // A width of 0 is what programs write that have none to tell.
  target = number == 0 && least > 0 ? 1 : std::clamp(number, least, most);
}

// Entries of shape files are skipped whatever they hold, and the flag that says so
// may come last: nothing is judged before.
void CFileDXFIParser::createStyle(const StyleEntry& style) {
  if ((style.flags & kShapeFile) != 0) return;
  if (style.rangeLine != 0) {
    m_faultLine = style.rangeLine;
    return fail(CFileDXFIError::OutOfRange);
  }
  const bool named = !style.name.empty() && (style.fontLine != 0 || isTolerant());
  if (!named) return fail(CFileDXFIError::WrongStructure);
  const ICADFont* font = m_semantor.getFont(style.fontName);
  if (!font) {
    m_faultLine = style.fontLine;
    return fail(CFileDXFIError::FontNotFound);
  }
  const double oblique = style.obliqueDeg * kRadiansPerDegree;
  if (zim::equalsIgnoreCase(style.name, u"STANDARD"))
    m_semantor.createStyleStandard(font, style.fixedHeight, style.widthScale, oblique,
                                   style.lastHeight, style.flags);
  else
    m_semantor.createStyle(style.name, font, style.fixedHeight, style.widthScale, oblique,
                           style.lastHeight, style.flags);
}

void CFileDXFIParser::readDimStyleEntry() {
  zim::WString name;
  vek0::detail::DimStyle style;
  for (long code = read(); code != 0 && !failed(); code = read()) {
    if (code == 2) name = m_lexer.getText();
    style.take(code, m_lexer);
  }
  if (!zim::equalsIgnoreCase(name, u"STANDARD") || !style.isDefault())
    note("dimension style dropped", name);
  m_dimStyles->add(name, style);
}

void CFileDXFIParser::readBlockRecordEntry() {
  zim::WString name;
  std::uint64_t handle = 0;
  for (long code = read(); code != 0 && !failed(); code = read()) {
    if (code == 2) name = m_lexer.getText();
    if (code == 5) handle = vek0::detail::parseHex(m_lexer.getBytes());
  }
  m_dimStyles->addBlock(handle, name);
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
  // An insert may have come before its block was filled. Once is enough: what further
  // sections of blocks bring is measured at the end, and a file may have thousands.
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
  recover("block dropped", block.name);
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
        break;
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
  if (isCut) note("block cut");
  return isCut;
}

// The rules leave the first letter open, and so refuse blocks that are somebody's own.
bool CFileDXFIParser::isLayoutName(const zim::WString& name) const {
  if (!isLayout(name, kModelName) && !isLayout(name, kPaperName)) return false;
  return !isTolerant() || name[0] == u'*' || name[0] == u'$';
}

void CFileDXFIParser::createBlock(const BlockHeader& block, OwnedEntities& entities) {
  if (block.name.empty()) return fail(CFileDXFIError::WrongStructure);
  if (isLayoutName(block.name)) {
    if (isTolerant() && !entities.list().empty()) note("block dropped", block.name);
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
  static_cast<void>(ent.release());  // not before the drawing has it
}

// Whoever watches is asked every thousand entities.
bool CFileDXFIParser::isTimeToStop() {
  constexpr long between = 1000;
  ++m_entities;
  m_cancelled = m_cancelled || (m_entities % between == 0 && m_options.progress &&
                                !m_options.progress(m_lexer.getLine()));
  const bool tooMany = m_options.maxEntities > 0 && m_entities > m_options.maxEntities;
  if (!m_cancelled && !tooMany) return false;
  if (tooMany && !m_cancelled) note("limit reached");
  m_lexer.stop();
  readEntityOther();
  return true;
}

// Neither section nor file can end inside a block or before its ENDSEC.
CEnt* CFileDXFIParser::readAnEntity() {
  if (isTimeToStop()) return nullptr;
  if (isKeyword("ENDSEC") || isKeyword("EOF")) {
    fail(CFileDXFIError::WrongStructure);
    return nullptr;
  }
  if (!isTolerant()) return m_pACADVersionLoader->readEntity();
  m_kind = m_lexer.getBytes();
  CEnt* ent = m_pACADVersionLoader->readEntity();
  if (failed() && recover("entity dropped", zim::WString::fromUtf8(m_kind)))
    m_pACADVersionLoader->getFurther().clear();
  return ent;
}
