// The HEADER section.
#include <algorithm>
#include <iterator>
#include <limits>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/parse/filedxfiversionloader.h"
#include "files/number.h"
#include "vek0core/drawing/datavariables.h"
#include "vek0core/dxf/in/parse/filedxfiparser.h"
#include "vek0core/files/textcodec.h"

namespace {

constexpr long kNewestVersion = 15;  // of "AC1015"

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

// Whether the version is supported: those up to R12 by the rules of R12, later ones by those of the
// newest.
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
    {u"$LIMMIN", setLimMin},     {u"$LIMMAX", setLimMax},  {u"$LTSCALE", setLtypeScale},
    {u"$PLINEWID", setPLineWid}, {u"$ANGBASE", setAngDir},
};
constexpr Variable<long> kIntegerVariables[] = {
    {u"$CECOLOR", setColor},     {u"$AUNITS", setAngleUnit}, {u"$ORTHOMODE", setOrtho},
    {u"$PLINEGEN", setPLineGen}, {u"$ANGDIR", setClockWise},
};

// Variables read only by tolerant reading.
void setPointSize(CDataVariables& vars, const Reals& v) { vars.setPointSize(v[0]); }
void setPointMode(CDataVariables& vars, const long& value) {
  constexpr long most = 127;  // all defined bits
  if (value >= 0 && value <= most) vars.setPointMode(static_cast<short>(value));
}
constexpr Variable<Reals> kFurtherReals[] = {{u"$PDSIZE", setPointSize}};
constexpr Variable<long> kFurtherIntegers[] = {{u"$PDMODE", setPointMode}};

/// Variables that a drawing cannot store, which lose nothing at their default value: units, and the
/// display of fills and attributes.
struct Setting {
  const zim::Char* name;
  long usual;
  ReportCode code;
};
constexpr Setting kSettings[] = {
    {u"$INSUNITS", 0, ReportCode::UnitDropped},   {u"$MEASUREMENT", 0, ReportCode::UnitDropped},
    {u"$LUNITS", 2, ReportCode::UnitDropped},     {u"$FILLMODE", 1, ReportCode::SettingDropped},
    {u"$ATTMODE", 1, ReportCode::SettingDropped}, {u"$QTEXTMODE", 0, ReportCode::SettingDropped},
};

template <class Value, std::size_t count>
void setVariable(const Variable<Value> (&variables)[count], const zim::WString& name,
                 CDataVariables& vars, const Value& value) {
  for (const Variable<Value>& variable : variables)
    if (zim::equalsIgnoreCase(name, variable.name)) variable.set(vars, value);
}

}  // namespace

/// The value of a variable. Its kind is that of its last pair.
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
  if (!forgive(ReportCode::VariableDropped, name)) return;
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
  } else if (isTolerant()) {
    m_lexer.checkNumber();
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
    if (m_insertionBase != PNT_3D(0, 0, 0)) noteSetting(ReportCode::SettingDropped, name);
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

// When importing, the drawing keeps its own.
void CFileDXFIParser::noteSetting(ReportCode code, const zim::WString& name) {
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
  if (isTolerant() && !isReadVersion(name)) return note(ReportCode::VersionUnknown, name);
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

// Called by the first section that needs the version.
void CFileDXFIParser::RealizeVersion() {
  if (m_pACADVersionLoader) return;
  m_pACADVersionLoader = vek0::detail::createVersionLoader(
      m_version, {m_lexer, m_semantor, m_factory, m_err, m_options, *m_dimStyles});
  if (!m_pACADVersionLoader) fail(CFileDXFIError::NewerVersion);
}
