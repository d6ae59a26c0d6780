// Variables are collected pair by pair, as their types are known only from the group codes of their
// values, and then looked up by name in the tables below. Names of current items are kept until the
// end of the file, when the tables are complete.
#include "dxf/in/parse/headersection.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "files/number.h"
#include "vek0core/assert.h"
#include "vek0core/drawing/datavariables.h"
#include "vek0core/files/textcodec.h"
#include "vek0core/tables/enttraits.h"

namespace vek0::detail {
namespace {

constexpr long kNewestVersion = 15;  // of "AC1015"

using Reals = double[3];

void setLimMin(CDataVariables& vars, const Reals& v) { vars.setLimMin(PNT_2D(v[0], v[1])); }
void setLimMax(CDataVariables& vars, const Reals& v) { vars.setLimMax(PNT_2D(v[0], v[1])); }
void setInsertionBase(CDataVariables& vars, const Reals& v) {
  vars.setInsertionBase(PNT_3D(v[0], v[1], v[2]));
}
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

// Whether the version is supported: those up to R12 by the rules of R12, later ones by those of the
// newest.
bool isReadVersion(const zim::WString& name) {
  constexpr const zim::Char* numbers[] = {u"01", u"02", u"03", u"04", u"06", u"10", u"11",
                                          u"13", u"18", u"21", u"24", u"27", u"32"};
  return name.Length() == 6 && name.view().substr(0, 4) == u"AC10" &&
         std::any_of(std::begin(numbers), std::end(numbers),
                     [&](const zim::Char* number) { return name.view().substr(4) == number; });
}

// Whether newer versions store integers under this code.
bool isFurtherInteger(long code) { return (code >= 280 && code < 300) || code / 10 == 37; }

template <class Value>
struct Variable {
  const zim::Char* name;
  void (*set)(CDataVariables& vars, const Value& value);
  bool isFurther = false;                         // read only by tolerant reading
  bool (*isValid)(const Value& value) = nullptr;  // null: every value is, or is replaced silently
};

void setPointSize(CDataVariables& vars, const Reals& v) { vars.setPointSize(v[0]); }
void setPointMode(CDataVariables& vars, const long& value) {
  constexpr long most = 127;  // all defined bits
  if (value >= 0 && value <= most) vars.setPointMode(static_cast<short>(value));
}

void setCurLtypeScale(CDataVariables& vars, const Reals& v) { vars.setCurLtypeScale(v[0]); }
bool isPositive(const Reals& v) { return v[0] > 0; }
void setDefaultLineweight(CDataVariables& vars, const long& value) {
  vars.setDefaultLineweight(static_cast<short>(value));
}
bool isWeight(const long& value) { return value >= 0 && value <= ENT_TRAITS::kWidestWeight; }
void setPaperLtypeScale(CDataVariables& vars, const long& value) {
  vars.setPaperLtypeScale(value != 0);
}
void setLineweightShown(CDataVariables& vars, const long& value) {
  vars.setLineweightShown(value != 0);
}
void setUnits(CDataVariables& vars, const long& value) { vars.setUnits(static_cast<short>(value)); }
bool isUnit(const long& value) {
  constexpr long most = 24;  // the last unit defined
  return value >= 0 && value <= most;
}

constexpr Variable<Reals> kRealVariables[] = {
    {u"$LIMMIN", setLimMin},
    {u"$LIMMAX", setLimMax},
    {u"$LTSCALE", setLtypeScale},
    {u"$PLINEWID", setPLineWid},
    {u"$ANGBASE", setAngDir},
    {u"$PDSIZE", setPointSize, true},
    {u"$INSBASE", setInsertionBase, true},
    {u"$CELTSCALE", setCurLtypeScale, true, isPositive},
};
constexpr Variable<long> kIntegerVariables[] = {
    {u"$CECOLOR", setColor},
    {u"$AUNITS", setAngleUnit},
    {u"$ORTHOMODE", setOrtho},
    {u"$PLINEGEN", setPLineGen},
    {u"$ANGDIR", setClockWise},
    {u"$PDMODE", setPointMode, true},
    {u"$LWDEFAULT", setDefaultLineweight, true, isWeight},
    {u"$LWDISPLAY", setLineweightShown, true},
    {u"$PSLTSCALE", setPaperLtypeScale, true},
    {u"$INSUNITS", setUnits, true, isUnit},
};

/// Variables that a drawing cannot store, which lose nothing at their default value: units, and the
/// display of fills and attributes.
struct Setting {
  const zim::Char* name;
  long usual;
  ReportCode code;
  bool isKept = false;  // by tolerant reading
};
constexpr Setting kSettings[] = {
    {u"$INSUNITS", 0, ReportCode::UnitDropped, true},
    {u"$MEASUREMENT", 0, ReportCode::UnitDropped},
    {u"$LUNITS", 2, ReportCode::UnitDropped},
    {u"$FILLMODE", 1, ReportCode::SettingDropped},
    {u"$ATTMODE", 1, ReportCode::SettingDropped},
    {u"$QTEXTMODE", 0, ReportCode::SettingDropped},
};

template <class Value, std::size_t count>
void setVariable(const Variable<Value> (&variables)[count], const zim::WString& name,
                 SectionInput& in, const Value& value) {
  for (const Variable<Value>& variable : variables) {
    if (!zim::equalsIgnoreCase(name, variable.name)) continue;
    if (variable.isFurther && !in.isTolerant()) return;
    if (variable.isValid && !variable.isValid(value))
      return in.note(ReportCode::NumberReplaced, name);
    return variable.set(*in.semantor.getVars(), value);
  }
}

// Some programs put blanks before it.
Handle handleIn(std::u16string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(u' '), text.size()));
  return static_cast<Handle>(parseHex(text));
}

}  // namespace

// Its kind is that of its last pair.
struct HeaderSection::Value {
  enum Kind { None, Text, Real, Integer } kind = None;
  zim::WString text;
  double reals[3] = {0, 0, 0};
  int count = 0;  // of reals
  long integer = 0;
};

void HeaderSection::read() {
  m_in.read();
  while (!m_in.failed()) {
    if (m_in.code() == 9) {
      readVariable();
    } else if (m_in.code() != 0) {
      m_in.read();
    } else if (m_in.atSectionEnd()) {
      return;
    } else if (!m_in.passRecord()) {
      return m_in.fail(CFileDXFIError::WrongStructure);
    }
  }
}

void HeaderSection::readVariable() {
  const zim::WString name = m_in.lexer.getText();
  Value value;
  for (;;) {
    const long code = m_in.read();
    if (m_in.failed()) return;
    if (code == 0 || code == 9) return take(name, value);
    collect(code, value);
    if (m_in.failed()) return dropVariable(name);
  }
}

void HeaderSection::dropVariable(const zim::WString& name) {
  if (!m_in.forgive(ReportCode::VariableDropped, name)) return;
  while (m_in.code() != 0 && m_in.code() != 9) m_in.read();
}

void HeaderSection::collect(long code, Value& value) {
  if (code >= 0 && code < 10) {
    value.kind = Value::Text;
    value.text = m_in.lexer.getText();
  } else if ((code >= 10 && code < 60) || (code >= 210 && code < 240)) {
    const double real = m_in.lexer.getDouble();
    value.kind = Value::Real;
    if (value.count < 3) value.reals[value.count++] = real;
  } else if ((code >= 60 && code < 80) || (m_in.isTolerant() && isFurtherInteger(code))) {
    value.kind = Value::Integer;
    value.integer = m_in.lexer.getInt();
  } else {
    m_in.passPair();
  }
}

void HeaderSection::take(const zim::WString& name, const Value& value) {
  switch (value.kind) {
    case Value::Text:
      return takeString(name, value.text);
    case Value::Real:
      return takeReals(name, value.reals);
    case Value::Integer:
      return takeInteger(name, value.integer);
    case Value::None:
      return;
  }
}

void HeaderSection::takeString(const zim::WString& name, const zim::WString& value) {
  if (zim::equalsIgnoreCase(name, u"$ACADVER")) return takeVersion(value);
  if (zim::equalsIgnoreCase(name, u"$DWGCODEPAGE")) {
    m_codePageName = value;
    return takeCodePage();
  }
  if (zim::equalsIgnoreCase(name, u"$HANDSEED")) m_handleSeed = handleIn(value.view());
  m_dimStyles.takeVariable(name, value);
  if (!m_in.semantor.shouldReadHeaders()) return;
  if (zim::equalsIgnoreCase(name, u"$CELTYPE")) m_curLtype = value;
  if (zim::equalsIgnoreCase(name, u"$CELAYER")) m_curLayer = value;
  if (m_in.isTolerant() && zim::equalsIgnoreCase(name, u"$CLAYER")) m_curLayer = value;
  if (zim::equalsIgnoreCase(name, u"$TEXTSTYLE")) m_curStyle = value;
}

void HeaderSection::takeReals(const zim::WString& name, const double (&value)[3]) {
  m_dimStyles.takeVariable(name, value[0]);
  if (zim::equalsIgnoreCase(name, u"$INSBASE")) {
    m_insertionBase = PNT_3D(value[0], value[1], value[2]);
    if (m_insertionBase != PNT_3D(0, 0, 0) && !m_in.isTolerant())
      noteSetting(ReportCode::SettingDropped, name);
  }
  if (zim::equalsIgnoreCase(name, u"$PLIMMIN")) m_sheetMin = PNT_2D(value[0], value[1]);
  if (zim::equalsIgnoreCase(name, u"$PLIMMAX")) m_sheetMax = PNT_2D(value[0], value[1]);
  if (!m_in.semantor.shouldReadHeaders()) return;
  setVariable(kRealVariables, name, m_in, value);
}

void HeaderSection::takeInteger(const zim::WString& name, long value) {
  if (zim::equalsIgnoreCase(name, u"$INSUNITS")) m_units = value;
  if (zim::equalsIgnoreCase(name, u"$MEASUREMENT")) m_measurement = value;
  m_dimStyles.takeVariable(name, static_cast<double>(value));
  for (const Setting& setting : kSettings)
    if (zim::equalsIgnoreCase(name, setting.name) && value != setting.usual &&
        !(setting.isKept && m_in.isTolerant()))
      noteSetting(setting.code, name);
  if (!m_in.semantor.shouldReadHeaders()) return;
  setVariable(kIntegerVariables, name, m_in, value);
}

RECT_2D HeaderSection::getSheetLimits() const {
  RECT_2D limits;
  limits.initRegion();
  if (m_sheetMin.x < m_sheetMax.x && m_sheetMin.y < m_sheetMax.y)
    limits.set(m_sheetMin.x, m_sheetMin.y, m_sheetMax.x, m_sheetMax.y);
  return limits;
}

// When importing, the drawing keeps its own.
void HeaderSection::noteSetting(ReportCode code, const zim::WString& name) {
  if (m_in.semantor.shouldReadHeaders()) m_in.note(code, name);
}

void HeaderSection::takeVersion(const zim::WString& name) {
  m_versionName = name;
  takeCodePage();
  constexpr const zim::Char* known[] = {u"AC1009", u"AC1012", u"AC1014", u"AC1015"};
  for (short i = 0; i < 4; ++i)
    if (name.view() == known[i]) {
      m_version = static_cast<short>(i + 1);
      return;
    }
  if (m_in.isTolerant()) {
    if (!isReadVersion(name)) m_in.note(ReportCode::VersionUnknown, name);
    return;
  }
  if (name.Length() != 6 || name.view().substr(0, 4) != u"AC10")
    return m_in.fail(CFileDXFIError::OutOfRange);
  if (parseLong(name.view().substr(4)) > kNewestVersion) m_in.fail(CFileDXFIError::NewerVersion);
}

void HeaderSection::takeCodePage() {
  const std::string name = m_codePageName.toUtf8();
  m_in.lexer.setCodePage(codePageOfDrawing(m_versionName.toUtf8(), name), codePageFromName(name));
}

void HeaderSection::takeCurrentItems() {
  if (!m_in.semantor.shouldReadHeaders()) return;
  CDataVariables* vars = m_in.semantor.getVars();
  ZORA_ASSERT(vars != nullptr);
  if (!vars) return;
  if (CLayer* layer = m_in.semantor.getLayer(m_curLayer)) vars->setCurLayer(layer);
  if (CLtype* ltype = m_in.semantor.getLtype(m_curLtype)) vars->setCurLtype(ltype);
  if (CStyle* style = m_in.semantor.getStyle(m_curStyle)) vars->setCurStyle(style);
}

}  // namespace vek0::detail
