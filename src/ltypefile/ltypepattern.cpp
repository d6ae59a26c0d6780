#include "ltypefile/ltypepattern.h"

#include <cmath>
#include <cstddef>

#include "files/number.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"
#include "vek0core/tables/styletable.h"

namespace vek0::detail {
namespace {

constexpr double kStepLimitRad = 64 * kTwoPi;
// Tolerance, in degrees, for the error of converting and adding a turn; far below a written
// decimal.
constexpr double kDegreeError = 1e-8;
constexpr std::size_t kLongestSample = 64;
constexpr std::u16string_view kBlankEscape = u"\\U+0020";

bool isBlank(zim::Char c) { return c == u' ' || c == u'\t'; }

std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// --- Reading

// A file may contain 1e300, where subtracting a full turn has no effect and the loops would never
// end.
double normalized(double angleRad) {
  if (std::fabs(angleRad) > kStepLimitRad) angleRad = std::fmod(angleRad, kTwoPi);
  while (angleRad < 0) angleRad += kTwoPi;
  while (angleRad >= kTwoPi) angleRad -= kTwoPi;
  return angleRad;
}

// A line may be as long as its file; limit the sample.
void note(ReportCode code, const LtypeReading& reading, std::u16string_view sample = {}) {
  reading.report.add(code, reading.line, sample.substr(0, kLongestSample));
}

bool hasDigit(std::u16string_view text) {
  return text.find_first_of(u"0123456789") != std::u16string_view::npos;
}

double readNumber(std::u16string_view text, const LtypeReading& reading) {
  const ParsedDouble parsed = parseDouble(text);
  if (!hasDigit(text)) {
    note(ReportCode::NumberExpected, reading, text);
  } else if (!parsed.finite) {
    note(ReportCode::NumberRange, reading, text);
  }
  return parsed.finite ? parsed.value : 0;
}

// Removes the text up to and including the first of `ends` from the front of `rest`.
std::u16string_view takeUntil(std::u16string_view& rest, std::u16string_view ends) {
  const std::size_t at = rest.find_first_of(ends);
  const std::u16string_view token = rest.substr(0, at);
  rest.remove_prefix(at == std::u16string_view::npos ? rest.size() : at + 1);
  return token;
}

// The same for a text after its opening quote. Commas and brackets inside it are ordinary
// characters.
std::u16string_view takeQuoted(std::u16string_view& rest) {
  rest.remove_prefix(1);
  return takeUntil(rest, u"\"");
}

struct TextParameters {
  double scale = 1, rotation = 0, x = 0, y = 0;  // rotation in radians
};

void readParameter(std::u16string_view item, const LtypeReading& reading,
                   TextParameters& parameters) {
  const std::u16string_view letter = trimmed(takeUntil(item, u"="));
  if (letter.size() != 1) return;
  switch (letter[0]) {
    case u'S':
    case u's':
      parameters.scale = readNumber(trimmed(item), reading);
      break;
    case u'R':
    case u'r':
      parameters.rotation = normalized(readNumber(trimmed(item), reading) * kRadiansPerDegree);
      break;
    case u'X':
    case u'x':
      parameters.x = readNumber(trimmed(item), reading);
      break;
    case u'Y':
    case u'y':
      parameters.y = readNumber(trimmed(item), reading);
      break;
    default:
      break;
  }
}

CStyle* findStyle(std::u16string_view written, const LtypeReading& reading) {
  if (written.empty()) return nullptr;
  const zim::WString name = decodeLtypeText(written);
  if (CStyle* style = reading.styles.get(name)) return style;
  CStyle* const style = reading.notifier ? reading.notifier->Notify(name) : nullptr;
  if (!style) note(ReportCode::UnknownStyle, reading, name);
  return style;
}

// Removes the element whose '[' is at the front of `rest`, up to its ']', and returns the text
// between them. A bracket inside quotes does not close it.
std::u16string_view takeElement(std::u16string_view& rest, const LtypeReading& reading) {
  rest.remove_prefix(1);
  const std::size_t first = rest.find_first_not_of(u" \t");
  std::size_t from = 0;
  if (first != std::u16string_view::npos && rest[first] == u'"') {
    from = rest.find(u'"', first + 1);
  }
  const std::size_t close = rest.find(u']', from);
  if (close == std::u16string_view::npos) {
    note(ReportCode::UnclosedElement, reading, rest);
  }
  const std::u16string_view element = rest.substr(0, close);
  rest.remove_prefix(element.size());
  takeUntil(rest, u",");
  return element;
}

void readElement(std::u16string_view element, const LtypeReading& reading,
                 CLtypeComplexDashSeq& dashes) {
  element = trimmed(element);
  if (element.empty() || element[0] != u'"') {
    const std::u16string_view shape = trimmed(element.substr(0, element.find(u',')));
    return note(ReportCode::ShapeLeftOut, reading, shape);
  }
  const zim::WString text = decodeLtypeText(takeQuoted(element));
  takeUntil(element, u",");
  CStyle* const style = findStyle(trimmed(takeUntil(element, u",")), reading);
  TextParameters parameters;
  while (!element.empty()) readParameter(takeUntil(element, u","), reading, parameters);
  dashes.AddDashText(TEXT_3D(text, style, parameters.x, parameters.y, 0, parameters.scale, 0, 1,
                             parameters.rotation, 0));
}

void readField(std::u16string_view field, const LtypeReading& reading,
               CLtypeComplexDashSeq& dashes) {
  field = trimmed(field);
  if (field.empty()) return note(ReportCode::EmptyField, reading);
  dashes.AddDashDouble(readNumber(field, reading));
}

bool isAlignment(std::u16string_view field) {
  field = trimmed(field);
  return field.size() == 1 && (field[0] == u'A' || field[0] == u'a');
}

bool isHexDigit(zim::Char c) {
  return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

// Whether the text starts with the seven units of an escape.
bool startsEscape(std::u16string_view text) {
  if (text.size() < 7 || text[0] != u'\\' || (text[1] != u'U' && text[1] != u'u')) return false;
  if (text[2] != u'+') return false;
  for (std::size_t i = 3; i < 7; ++i) {
    if (!isHexDigit(text[i])) return false;
  }
  return true;
}

// --- Writing

void appendEscape(zim::Char unit, std::u16string& out) {
  out += u"\\U+";
  for (int shift = 12; shift >= 0; shift -= 4) {
    out += u"0123456789ABCDEF"[static_cast<unsigned>(unit) >> shift & 15u];
  }
}

// Control characters would end the line, and a backslash could be read as an escape.
std::u16string encoded(std::u16string_view text) {
  std::u16string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isControl = text[i] < u' ' || (text[i] >= 0x7F && text[i] < 0xA0);
    if (isControl || startsEscape(text.substr(i))) {
      appendEscape(text[i], out);
    } else {
      out += text[i];
    }
  }
  return out;
}

// Escapes trailing blanks, which readers would trim.
void guardBack(std::u16string& text) {
  if (!text.empty() && text.back() == u' ') text.replace(text.size() - 1, 1, kBlankEscape);
}

void guardFront(std::u16string& text) {
  if (!text.empty() && text.front() == u' ') text.replace(0, 1, kBlankEscape);
}

std::u16string encodedName(std::u16string_view name, std::u16string_view separators,
                           CFileReport& report) {
  std::u16string out = encoded(name);
  bool replaced = false;
  for (zim::Char& unit : out) {
    if (separators.find(unit) == std::u16string_view::npos) continue;
    unit = u'_';
    replaced = true;
  }
  if (replaced) report.add(ReportCode::ReplacedSeparator, 0, name);
  return out;
}

std::u16string encodedStyle(std::u16string_view name, CFileReport& report) {
  std::u16string out = encodedName(name, u",]", report);
  guardBack(out);
  guardFront(out);
  return out;
}

std::u16string encodedText(std::u16string_view text, CFileReport& report) {
  std::u16string out;
  for (const zim::Char unit : encoded(text)) {
    if (unit == u'"') {
      out += u"''";
    } else {
      out += unit;
    }
  }
  if (text.find(u'"') != std::u16string_view::npos) report.add(ReportCode::ReplacedQuote, 0, text);
  return out;
}

std::u16string formatted(double value, char* (*format)(char*, double), CFileReport& report) {
  char digits[kFixedRoom];
  if (!std::isfinite(value)) report.add(ReportCode::NumberRange, 0);
  const char* const end = format(digits, value);
  return std::u16string(static_cast<const char*>(digits), end);
}

std::u16string sixDecimals(double value, CFileReport& report) {
  std::u16string digits = formatted(value, formatFixed, report);
  if (parseDouble(std::u16string_view(digits)).value != value && std::isfinite(value)) {
    report.add(ReportCode::RoundedNumber, 0, digits);
  }
  return digits;
}

// The division adds its own error to the degrees, which must not be reported as rounding.
std::u16string degrees(double angleRad, CFileReport& report) {
  const double value = angleRad / kRadiansPerDegree;
  const double whole = std::nearbyint(value * 1e6) / 1e6;
  return sixDecimals(std::fabs(value - whole) < kDegreeError ? whole : value, report);
}

std::u16string textElement(const TEXT_3D& text, CFileReport& report) {
  const CTextContext& context = text.getContext();
  const CStyle* const style = text.getStyle();
  std::u16string out = u"[\"" + encodedText(context.getString(), report) + u"\",";
  if (style) out += encodedStyle(style->getName(), report);
  out += u",S=" + sixDecimals(context.getHeight(), report);
  out += u",R=" + degrees(context.getRotate(), report);
  out += u",X=" + sixDecimals(text.x, report);
  out += u",Y=" + sixDecimals(text.y, report);
  return out + u"]";
}

}  // namespace

zim::WString decodeLtypeText(std::u16string_view text) {
  std::u16string out;
  while (!text.empty()) {
    if (startsEscape(text)) {
      out += static_cast<zim::Char>(parseHex(text.substr(3, 4)));
      text.remove_prefix(7);
    } else {
      out += text.front();
      text.remove_prefix(1);
    }
  }
  return zim::WString(std::u16string_view(out));
}

void readLtypePattern(std::u16string_view text, const LtypeReading& reading,
                      CLtypeComplexDashSeq& dashes) {
  if (isAlignment(text.substr(0, text.find(u',')))) takeUntil(text, u",");
  while (!text.empty()) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    if (!text.empty() && text.front() == u'[') {
      readElement(takeElement(text, reading), reading, dashes);
    } else {
      readField(takeUntil(text, u","), reading, dashes);
    }
  }
}

std::u16string ltypeHeader(const CLtype& ltype, CFileReport& report) {
  std::u16string description = encoded(ltype.getDesc());
  guardBack(description);
  return u"*" + encodedName(ltype.getName(), u",", report) + u"," + description + u"\n";
}

std::u16string ltypePattern(const CLtypeComplexDashSeq& dashes, CFileReport& report) {
  std::u16string out = u"A";
  for (int i = 0; i < dashes.GetNoDashes(); ++i) {
    const TEXT_3D* const text = dashes[i]->GetText();
    out += u",";
    out += text ? textElement(*text, report)
                : formatted(dashes[i]->GetValue(), formatShortest, report);
  }
  return out + u"\n";
}

}  // namespace vek0::detail
