// Dimension styles as tables of numbers and texts by group code. Entries of the DIMSTYLE table,
// header variables and overrides in a dimension's extended data share these codes. Only codes that
// the drawing of dimensions uses have names in `DimStyle`; the others serve to recognize a style
// that is not at its defaults, and is therefore reported as lost.
#include "dxf/in/convert/dimstyles.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "files/number.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

constexpr long kLastText = 7, kFirstHandle = 340, kLastHandle = 345;
constexpr long kOldUnit = 270;  // like `kUnit`, but 4 and 5 stack fractions, which 6 and 7 do not

struct Default {
  long code;
  double value;
};

// Defaults other than 0.
constexpr Default kDefaults[] = {
    {DimStyle::kScale, 1},
    {DimStyle::kArrow, 0.18},
    {DimStyle::kExtensionStart, 0.0625},
    {43, 0.38},  // steps of baselines
    {DimStyle::kExtensionEnd, 0.18},
    {DimStyle::kTextLevel, 1},
    {74, 1},  // texts outside are horizontal
    {DimStyle::kTextHeight, 0.18},
    {141, 0.09},  // center marks
    {143, 25.4},  // factor of alternate units
    {DimStyle::kFactor, 1},
    {146, 1},  // size of tolerances
    {DimStyle::kGap, 0.09},
    {171, 2},  // decimals of alternate units
    {kOldUnit, 2},
    {DimStyle::kDecimals, 4},
    {272, 4},  // decimals of tolerances
    {273, 2},  // form of alternate units
    {274, 2},  // decimals of their tolerances
    {DimStyle::kUnit, 2},
    {DimStyle::kSeparator, u'.'},
    {283, 1},   // place of tolerances
    {287, 3},   // what moves if there is no room
    {289, 3},   // likewise
    {371, -2},  // line weights: those of the block
    {372, -2},
};

double defaultOf(long code) {
  for (const Default& entry : kDefaults)
    if (entry.code == code) return entry.value;
  return 0;
}

struct Variable {
  std::u16string_view name;
  long code;
};

constexpr Variable kVariables[] = {
    {u"DIMPOST", DimStyle::kPost},
    {u"DIMBLK", DimStyle::kBlock},
    {u"DIMBLK1", DimStyle::kFirstBlock},
    {u"DIMBLK2", DimStyle::kSecondBlock},
    {u"DIMSCALE", DimStyle::kScale},
    {u"DIMASZ", DimStyle::kArrow},
    {u"DIMEXO", DimStyle::kExtensionStart},
    {u"DIMEXE", DimStyle::kExtensionEnd},
    {u"DIMRND", DimStyle::kRound},
    {u"DIMDLE", DimStyle::kLineEnd},
    {u"DIMTIH", DimStyle::kTextLevel},
    {u"DIMSE1", DimStyle::kNoFirst},
    {u"DIMSE2", DimStyle::kNoSecond},
    {u"DIMZIN", DimStyle::kZeroes},
    {u"DIMAZIN", DimStyle::kAngleZeroes},
    {u"DIMTXT", DimStyle::kTextHeight},
    {u"DIMTSZ", DimStyle::kTick},
    {u"DIMLFAC", DimStyle::kFactor},
    {u"DIMGAP", DimStyle::kGap},
    {u"DIMTOFL", DimStyle::kLineInside},
    {u"DIMSAH", DimStyle::kEndsDiffer},
    {u"DIMCLRD", DimStyle::kLineColor},
    {u"DIMCLRE", DimStyle::kExtensionColor},
    {u"DIMCLRT", DimStyle::kTextColor},
    {u"DIMADEC", DimStyle::kAngleDecimals},
    {u"DIMDEC", DimStyle::kDecimals},
    {u"DIMAUNIT", DimStyle::kAngleUnit},
    {u"DIMDSEP", DimStyle::kSeparator},
    {u"DIMLUNIT", DimStyle::kUnit},
};

// Of the drawing.
constexpr Variable kUnits[] = {
    {u"LUNITS", DimStyle::kUnit},
    {u"LUPREC", DimStyle::kDecimals},
    {u"AUNITS", DimStyle::kAngleUnit},
    {u"AUPREC", DimStyle::kAngleDecimals},
};

template <std::size_t count>
long codeOf(const Variable (&variables)[count], const zim::WString& variable) {
  const std::u16string_view name =
      variable.view().substr(std::min<std::size_t>(1, variable.view().size()));
  for (const Variable& entry : variables)
    if (zim::equalsIgnoreCase(name, entry.name)) return entry.code;
  return -1;
}

bool isNumber(long code) {
  return (code >= 40 && code < 80) || (code >= 140 && code < 180) || (code >= 270 && code < 290) ||
         (code >= 370 && code < 380);
}

std::u16string folded(const zim::WString& name) {
  std::u16string text(name.view());
  for (char16_t& c : text) c = zim::foldCase(c);
  return text;
}

}  // namespace

void DimStyle::take(long code, const CFileDXFILexer& lexer) {
  const std::string_view bytes = lexer.getBytes();
  if (code >= kPost && code <= kLastText) {
    m_texts[code] = lexer.getText();
  } else if (code >= vek0::detail::kFirstHandle && code <= kLastHandle) {
    // Handles of 48 bits are exact in a double.
    m_numbers[code] = static_cast<double>(parseHex(bytes) & 0xFFFFFFFFFFFF);
  } else if (isNumber(code) && beginsWithNumber(bytes)) {
    const ParsedDouble value = parseDouble(bytes);
    if (value.finite) m_numbers[code] = value.value;
    if (value.finite && code == kOldUnit)
      // An explicit unit takes precedence over the older code.
      m_numbers.try_emplace(kUnit, value.value > 5 ? value.value - 2 : value.value);
  }
}

void DimStyle::takeVariable(const zim::WString& name, double value) {
  const long code = codeOf(kVariables, name);
  if (code > kLastText) m_numbers[code] = value;
}

void DimStyle::takeVariable(const zim::WString& name, const zim::WString& value) {
  const long code = codeOf(kVariables, name);
  if (code >= 0 && code <= kLastText) m_texts[code] = value;
}

void DimStyle::change(const DimStyle& by) {
  for (const auto& [code, value] : by.m_numbers) m_numbers[code] = value;
  for (const auto& [code, value] : by.m_texts) m_texts[code] = value;
}

double DimStyle::number(long code) const {
  const auto known = m_numbers.find(code);
  return known == m_numbers.end() ? defaultOf(code) : known->second;
}

long DimStyle::integer(long code) const {
  // Files contain any number; a conversion beyond `long` would be undefined.
  constexpr double most = 1e9;
  return static_cast<long>(std::clamp(number(code), -most, most));
}

zim::WString DimStyle::text(long code) const {
  const auto known = m_texts.find(code);
  return known == m_texts.end() ? zim::WString() : known->second;
}

double DimStyle::length(long code) const {
  const double scale = number(kScale);
  // 0 is the scale of a style that a layout determines, and means 1 here.
  return number(code) * (scale > 0 ? scale : 1);
}

double DimStyle::textHeight() const {
  const double height = length(kTextHeight);
  return height > 0 && std::isfinite(height) ? height : defaultOf(kTextHeight);
}

// Handles refer to items that also have other codes, or to a text style.
bool DimStyle::isDefault() const {
  return std::all_of(m_numbers.begin(), m_numbers.end(),
                     [](const auto& entry) {
                       return !isNumber(entry.first) || entry.second == defaultOf(entry.first);
                     }) &&
         std::all_of(m_texts.begin(), m_texts.end(),
                     [](const auto& entry) { return entry.second.empty(); });
}

void DimStyles::add(const zim::WString& name, const DimStyle& style) {
  m_styles.emplace(folded(name), style);
}

void DimStyles::takeVariable(const zim::WString& name, double value) {
  m_header.takeVariable(name, value);
  const long unit = codeOf(kUnits, name);
  if (unit >= 0) m_units.set(unit, value);
}

void DimStyles::takeVariable(const zim::WString& name, const zim::WString& value) {
  m_header.takeVariable(name, value);
  if (zim::equalsIgnoreCase(name, u"$DIMSTYLE")) m_current = value;
}

DimStyle DimStyles::get(const zim::WString& name) const {
  const auto known = m_styles.find(folded(name));
  const bool isKnown = known != m_styles.end();
  // Old files state no decimals and use the units of the drawing.
  const bool isOld = !m_header.has(DimStyle::kDecimals);
  DimStyle style;
  if (isOld) style.change(m_units);
  // The header states the current style, and supplies what the style itself does not state.
  if (!isKnown || zim::equalsIgnoreCase(name, m_current)) style.change(m_header);
  if (isKnown) style.change(known->second);
  return style;
}

zim::WString DimStyles::blockName(std::uint64_t handle) const {
  const auto known = m_blocks.find(handle);
  return known == m_blocks.end() ? zim::WString() : known->second;
}

bool DimStyleReader::take(const CFileDXFILexer& lexer) {
  constexpr long application = 1001, text = 1000, brace = 1002, shortInteger = 1070;
  const long code = lexer.getGroupValue();
  if (code == kName) {
    m_name = lexer.getText();
  } else if (code == application) {
    m_place = lexer.isKeyword("ACAD") ? Application : Outside;
    return m_place == Application;
  } else if (m_place == Application) {
    // Overrides follow the text "DSTYLE" in braces, as pairs of code and value. Anything unexpected
    // ends them.
    m_place = code == text && lexer.isKeyword("DSTYLE") ? Mark : Outside;
  } else if (m_place == Mark) {
    m_place = code == brace ? Code : Outside;
  } else if (m_place == Code) {
    m_code = parseLong(lexer.getBytes());
    m_place = code == shortInteger ? Value : Outside;
  } else if (m_place == Value) {
    m_changes.take(m_code, lexer);
    m_place = Code;
  }
  return true;
}

DimStyle DimStyleReader::style(const DimStyles& styles) const {
  DimStyle style = styles.get(m_name);
  style.change(m_changes);
  return style;
}

}  // namespace vek0::detail
