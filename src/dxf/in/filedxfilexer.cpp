// The lexer keeps a value as bytes of the file and converts it only on request: most values are
// numbers or keywords and never become wide strings. Files with line access only, such as those of
// a host, are read as wide lines and encoded, so that everything after `readLine` sees bytes. Under
// the tolerant policy the lexer also keeps pairs aligned. A text that its program broke over two
// lines shifts all later pairs by one, and would cost the rest of the file. So lines that cannot be
// group codes are skipped, and a pair whose value cannot belong to its code is shifted back
// (`alignPair`). The end of the file then reads as an EOF record, whatever its cause.
#include "vek0core/dxf/in/filedxfilexer.h"

#include <algorithm>
#include <iterator>

#include "dxf/in/binarytext.h"
#include "files/linereader.h"
#include "files/number.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/files/report.h"
#include "zim0lang/utf8.h"

using vek0::detail::BinaryText;
using vek0::detail::LineReader;
using vek0::detail::SplitLine;
using vek0::detail::withoutTrailing;

namespace {

constexpr long kComment = 999;
constexpr std::size_t kMostUnits = CFileDXFILexer::kBufferUnits - 1;

std::string_view withoutLineEnd(std::string_view line) {
  const std::size_t last = line.find_last_not_of("\r\n");
  return line.substr(0, last + 1);  // npos + 1 is 0
}

LineReader::Source bytesOf(IFile& file) {
  return [&file](char* buf, long n) {
    const long got = file.readBytes(buf, n);
    if (got < 0) return LineReader::kNotOffered;
    return got == 0 && file.fail() ? LineReader::kFailed : got;
  };
}

// Number of UTF-8 bytes of the first `units` units; malformed bytes count as one unit each.
std::size_t bytesOfUnits(std::string_view bytes, std::size_t units) {
  // Each unit needs at least one byte.
  if (bytes.size() <= units) return bytes.size();
  if (!zim::isValidUtf8(bytes)) return units;
  std::string_view rest = bytes;
  while (!rest.empty()) {
    std::string_view after = rest;
    bool valid = true;
    const std::size_t needed = zim::takeUtf8(after, valid) < 0x10000 ? 1 : 2;
    if (needed > units) break;
    units -= needed;
    rest = after;
  }
  return bytes.size() - rest.size();
}

constexpr std::size_t kSampleBytes = 40;
// In the first line of binary DXF files, and at the start of DWG files, before the two digits of a
// version.
constexpr std::string_view kBinaryMark = " Binary DXF", kDwgMark = "AC10";

std::string_view trimmed(std::string_view line) {
  const std::string_view text = withoutTrailing(line);
  return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

bool isNumber(std::string_view text) {
  if (!text.empty() && text[0] == '-') text.remove_prefix(1);
  // Longer numbers are values, not codes.
  return !text.empty() && text.size() < 6 &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Whether the values of a group code are real numbers.
bool isReal(long code) {
  return (code >= 10 && code <= 59) || (code >= 110 && code <= 149) ||
         (code >= 210 && code <= 239) || (code >= 1010 && code <= 1059);
}

// Whether they are numbers of any kind. Codes above belong to extended data, which only its program
// interprets.
bool isNumeric(long code) {
  struct Range {
    long first, last;
  };
  constexpr Range texts[] = {{100, 109}, {300, 369}, {390, 399}, {410, 419}, {430, 439}};
  return code >= 10 && code < 470 &&
         std::none_of(std::begin(texts), std::end(texts), [&](const Range& range) {
           return code >= range.first && code <= range.last;
         });
}

// Whether a line without a line end is cut off: the end mark may omit it.
bool isCutOff(std::string_view line) {
  constexpr std::size_t longest =
      CFileDXFILexer::kBlockBytes / 2;  // a longer one may be the first piece of its line
  return line.size() < longest && trimmed(line) != "EOF";
}

void assignUtf8(std::u16string_view units, std::string& out) {
  out.clear();
  while (!units.empty()) zim::appendUtf8(out, zim::takeUtf16(units));
}

}  // namespace

CFileDXFILexer::CFileDXFILexer(IFile& file, CFileDXFIError* err, std::size_t block)
    : m_file(file),
      m_error(err),
      m_bytes(std::make_shared<BinaryText>(bytesOf(file))),
      m_lines(std::make_shared<LineReader>(
          [bytes = m_bytes](char* out, long room) { return bytes->read(out, room); }, block)),
      m_string(u"") {}

// Both get their own copy of the value, because its buffer is overwritten when either of them reads
// the next pair.
CFileDXFILexer::CFileDXFILexer(const CFileDXFILexer& other)
    : m_file(other.m_file),
      m_error(other.m_error),
      m_report(other.m_report),
      m_bytes(other.m_bytes),
      m_lines(other.m_lines),
      m_started(other.m_started),
      m_byBytes(other.m_byBytes),
      m_tolerant(other.m_tolerant),
      m_refusesJunk(other.m_refusesJunk),
      m_pageFixed(other.m_pageFixed),
      m_stopped(other.m_stopped),
      m_cut(other.m_cut),
      m_form(other.m_form),
      m_blankLines(other.m_blankLines),
      m_decoder(other.m_decoder),
      m_line(other.m_line),
      m_group(other.m_group),
      m_number(other.m_number),
      m_isNumber(other.m_isNumber),
      m_string(u"") {
  other.keepValue();
  m_own = other.m_value;
  m_value = m_own;
}

CFileDXFILexer::~CFileDXFILexer() = default;

void CFileDXFILexer::note(ReportCode code, std::string_view sample) const {
  if (!m_report) return;
  // A copy, because decoding changes what a decoder has sensed.
  CTextDecoder decoder = m_decoder;
  std::u16string text;
  decoder.decode(sample, text);
  m_report->add(code, m_line, text);
}

void CFileDXFILexer::setError(int kind) const {
  if (m_error) m_error->SetError(static_cast<CFileDXFIError::TDXFErrors>(kind));
}

void CFileDXFILexer::start() {
  m_started = true;
  m_byBytes = m_lines->begin();
  // A byte order mark overrides the declared code page.
  if (!m_byBytes || m_lines->mark() != LineReader::Mark::None) m_decoder.setPage(kCodePageUtf8);
}

void CFileDXFILexer::setTolerant() {
  m_tolerant = true;
  m_bytes->recognize();
  refuseJunk();
  m_decoder.setSense(true);
}

void CFileDXFILexer::splitAhead() { m_lines->splitAhead(); }

void CFileDXFILexer::fixCodePage(int page) {
  m_decoder.setPage(page);
  m_decoder.setSense(false);
  m_pageFixed = true;
}

void CFileDXFILexer::setCodePage(int page, int otherPage) {
  m_decoder.setOtherPage(otherPage);
  const bool isMarked = m_started && (!m_byBytes || m_lines->mark() != LineReader::Mark::None);
  const bool isSettled = m_pageFixed || isMarked;
  if (!isSettled) m_decoder.setPage(page);
}

std::string CFileDXFILexer::getEncodingName() const {
  if (m_started && !m_byBytes) return "utf-16";
  switch (m_lines->mark()) {
    case LineReader::Mark::Utf16Le:
      return "utf-16le";
    case LineReader::Mark::Utf16Be:
      return "utf-16be";
    default:
      return m_decoder.getName();
  }
}

long CFileDXFILexer::read() {
  if (!m_started) start();
  do {
    if (m_stopped) return endFile();
    if (!readCode() || !readValue()) return m_tolerant ? endFile() : fail();
    // A cheap test, as it runs for every pair: misaligned pairs have an empty value, or a number
    // for a keyword.
    const bool isUsual = !m_value.empty() && (m_group != 0 || m_value.front() >= 'A');
    if (m_tolerant && !isUsual && !alignPair()) return endFile();
  } while (m_group == kComment);
  return m_group;
}

long CFileDXFILexer::endFile() {
  if (!m_cut && !m_stopped) note(ReportCode::FileCut);
  m_cut = !m_stopped;
  m_own = "EOF";
  m_value = m_own;
  m_isNumber = false;
  m_widened = false;
  return m_group = 0;
}

// The last value was in the buffer that has been discarded.
long CFileDXFILexer::fail() {
  m_value = {};
  m_isNumber = false;
  m_widened = false;
  return -1;
}

// The next line, or its front if it is not `whole`; false if there is none.
bool CFileDXFILexer::readLine(std::string_view& line, bool& whole) {
  if (!m_byBytes) return readLineOfFile(line, whole);
  if (!m_lines->next(line)) return false;
  whole = line.back() == '\n';
  return true;
}

// A file may hold back a unit rather than cut a surrogate pair, so a line without its end continues
// if it fills all but one unit of the buffer.
bool CFileDXFILexer::readLineOfFile(std::string_view& line, bool& whole) {
  if (!m_units) m_units = std::make_unique<zim::Char[]>(kBufferUnits);
  zim::Char* const buffer = m_units.get();
  m_widened = false;
  buffer[0] = 0;
  if (!m_file.readLn(buffer, kBufferUnits) || m_file.fail()) return false;
  buffer[kMostUnits] = 0;
  const std::u16string_view units(buffer);
  whole = units.size() + 1 < kMostUnits || units.back() == u'\n';
  assignUtf8(units, m_scratch);
  line = m_scratch;
  return true;
}

bool CFileDXFILexer::readCode() {
  if (m_byBytes && m_lines->nextIfShortNumber(m_group)) {
    ++m_line;
    return true;
  }
  std::string_view line;
  bool whole = false;
  bool got = readLine(line, whole);
  // Binary formats are recognized in the first line, before their bytes are taken for text.
  if (got && m_line == 0 && isForeign(line)) {
    if (!m_tolerant) setError(CFileDXFIError::WrongStructure);
    return false;
  }
  while (m_tolerant && got && passStrayLine(line)) {
    if (!whole) skipRestOfLine();
    got = readLine(line, whole);
  }
  if (!got && m_line == m_blankLines) m_form = CFileDXFIError::EmptyForm;
  const std::string_view code = withoutLineEnd(line);
  if (!got || code.empty()) {
    if (!m_tolerant)
      setError(got ? CFileDXFIError::EmptyGroupCode : CFileDXFIError::WrongStructure);
    return false;
  }
  m_group = vek0::detail::parseLong(code);
  ++m_line;
  if (!whole) skipRestOfLine();
  return true;
}

// Skips a line that cannot be a group code: blank, or the rest of a text that its program broke.
bool CFileDXFILexer::passStrayLine(std::string_view line) {
  const std::string_view text = trimmed(line);
  if (isNumber(text)) return false;
  ++m_line;
  if (text.empty()) {
    ++m_blankLines;
    note(ReportCode::BlankLine);
  } else {
    note(ReportCode::StrayLine, text.substr(0, kSampleBytes));
  }
  return true;
}

bool CFileDXFILexer::isForeign(std::string_view line) {
  if (line.find(kBinaryMark) != std::string_view::npos)
    m_form = CFileDXFIError::BinaryForm;
  else if (line.substr(0, kDwgMark.size()) == kDwgMark)
    m_form = CFileDXFIError::DwgForm;
  if (m_form == CFileDXFIError::TextForm) return false;
  ++m_line;
  m_stopped = true;
  return true;
}

bool CFileDXFILexer::readValue() {
  if (const SplitLine* split = m_lines->nextIfSplit(m_value)) {
    m_number = split->number;
    m_isNumber = split->kind != SplitLine::Kind::Other;
    return takeValue(true);
  }
  m_isNumber = false;
  std::string_view line;
  bool whole = false;
  if (!readLine(line, whole)) {
    if (!m_tolerant) setError(CFileDXFIError::WrongStructure);
    return false;
  }
  // A value cut off by the end of the file may be incomplete, and so invalid.
  if (m_tolerant && !whole && isCutOff(line)) return false;
  if (!m_byBytes) {
    m_own.swap(m_scratch);
    line = m_own;
  }
  m_value = withoutTrailing(line);
  return takeValue(whole);
}

bool CFileDXFILexer::takeValue(bool whole) {
  ++m_line;
  m_widened = false;
  if (!whole || m_value.size() > kMostUnits) finishLongValue(whole);
  // A copy of this lexer may advance the shared buffer.
  if (m_lines.use_count() > 1) keepValue();
  return true;
}

// The value of code 0 is a keyword: if it is a number, a line is missing, the 0 was a value, and
// the number is the next code. If a number is expected but the line is blank, the number is in the
// next line, or missing if that is a code.
bool CFileDXFILexer::alignPair() {
  for (;;) {
    if (m_group == 0 && isNumber(trimmed(m_value))) {
      note(ReportCode::StrayLine, "0");
    } else if (m_value.empty() && isReal(m_group)) {
      if (!readValue()) return false;
      const bool isCode = isNumber(trimmed(m_value));
      note(isCode ? ReportCode::NumberReplaced : ReportCode::BlankLine);
      if (!isCode) continue;
    } else {
      return true;
    }
    m_group = vek0::detail::parseLong(m_value);
    if (!readValue()) return false;
  }
}

void CFileDXFILexer::finishLongValue(bool whole) {
  const std::size_t kept = bytesOfUnits(m_value, kMostUnits);
  bool isCut = kept < m_value.size();
  m_value = withoutTrailing(m_value.substr(0, kept));
  keepValue();
  if (!whole && skipRestOfLine()) isCut = true;
  if (isCut && m_report) m_report->add(ReportCode::LineCut, m_line);
}

// Whether the rest was more than blanks.
bool CFileDXFILexer::skipRestOfLine() {
  bool isLost = false;
  bool whole = false;
  std::string_view line;
  while (!whole && readLine(line, whole)) isLost = isLost || !withoutTrailing(line).empty();
  return isLost;
}

// A value is at the front of its buffer, so comparing pointers suffices.
void CFileDXFILexer::keepValue() const {
  if (m_value.data() == m_own.data()) return;
  m_own = m_value;
  m_value = m_own;
}

const SmartString& CFileDXFILexer::getString() const {
  if (m_widened) return m_string;
  if (!m_units) m_units = std::make_unique<zim::Char[]>(kBufferUnits);
  m_units[m_decoder.decode(m_value, m_units.get(), kMostUnits)] = 0;
  m_string = m_units.get();
  m_widened = true;
  return m_string;
}

bool CFileDXFILexer::equals(std::string_view keyword) const {
  std::string_view value = m_value;
  // Some programs indent keywords.
  while (m_tolerant && !value.empty() && (value.front() == ' ' || value.front() == '\t'))
    value.remove_prefix(1);
  if (value.size() != keyword.size()) return false;
  return std::equal(value.begin(), value.end(), keyword.begin(),
                    [](char c, char k) { return (c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c) == k; });
}

zim::WString CFileDXFILexer::getText() const { return m_decoder.decodeText(m_value); }

bool CFileDXFILexer::isNumberMissing() const {
  if (m_value.empty()) setError(CFileDXFIError::EmptyNumber);
  return m_value.empty();
}

double CFileDXFILexer::getDouble() const {
  if (m_isNumber) return m_number;
  if (isNumberMissing()) return 0;
  const vek0::detail::ParsedDouble number = vek0::detail::parseDouble(m_value);
  if (m_tolerant && number.finite && !number.whole) return repairedDouble();
  const bool isJunk = m_refusesJunk && !number.whole && !vek0::detail::beginsWithNumber(m_value);
  if (!number.finite || isJunk) setError(CFileDXFIError::OutOfRange);
  return number.value;
}

// Interprets "1,5" and "1D2" as intended, and returns the number in "12abc".
double CFileDXFILexer::repairedDouble() const {
  std::string text(m_value);
  const bool isForm = text.find_first_of(",Dd") != std::string::npos;
  for (char& c : text) {
    if (c == ',') c = '.';
    if (c == 'D' || c == 'd') c = 'e';
  }
  const vek0::detail::ParsedDouble number = vek0::detail::parseDouble(text);
  const bool isNumber = number.finite && vek0::detail::beginsWithNumber(text);
  if (isNumber)
    note(ReportCode::NumberRepaired, isForm ? "1,5 or 1D2" : "12abc");
  else
    setError(CFileDXFIError::OutOfRange);
  return number.value;
}

long CFileDXFILexer::getInt() const {
  if (isNumberMissing()) return -1;
  // parseLong returns 0 for text, too.
  const long number{vek0::detail::parseLong(m_value)};
  if (number == 0 && m_refusesJunk && !vek0::detail::beginsWithNumber(m_value))
    setError(CFileDXFIError::OutOfRange);
  return number;
}

vek0::Handle CFileDXFILexer::getHex() const {
  return isNumberMissing() ? -1 : static_cast<vek0::Handle>(vek0::detail::parseHex(m_value));
}

void CFileDXFILexer::checkNumber() const {
  if (isNumeric(m_group) && !m_value.empty() && !vek0::detail::beginsWithNumber(m_value))
    setError(CFileDXFIError::OutOfRange);
}
