#include "vek0core/dxfin/filedxfilexer.h"

#include <algorithm>

#include "files/linereader.h"
#include "files/number.h"
#include "vek0core/dxfin/filedxfierror.h"
#include "vek0core/files/report.h"
#include "zim0lang/utf8.h"

using vek0::detail::LineReader;

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;
constexpr long kComment = 999;
constexpr std::size_t kMostUnits = CFileDXFILexer::kBufferUnits - 1;

std::string_view withoutLineEnd(std::string_view line) {
  const std::size_t last = line.find_last_not_of("\r\n");
  return line.substr(0, last + 1);  // npos + 1 is 0
}

std::string_view withoutTrailing(std::string_view line) {
  const char* const begin = line.data();
  const char* end = begin + line.size();
  while (end != begin &&
         (end[-1] == '\n' || end[-1] == '\r' || end[-1] == ' ' || end[-1] == '\t')) {
    --end;
  }
  return {begin, static_cast<std::size_t>(end - begin)};
}

LineReader::Source bytesOf(IFile& file) {
  return [&file](char* buf, long n) {
    const long got = file.readBytes(buf, n);
    if (got < 0) return LineReader::kNotOffered;
    return got == 0 && file.fail() ? LineReader::kFailed : got;
  };
}

// Bytes of UTF-8 that make up the first `units` units; of other bytes as many.
std::size_t bytesOfUnits(std::string_view bytes, std::size_t units) {
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

void assignUtf8(std::u16string_view units, std::string& out) {
  out.clear();
  while (!units.empty()) zim::appendUtf8(out, zim::takeUtf16(units));
}

}  // namespace

CFileDXFILexer::CFileDXFILexer(IFile& file, CFileDXFIError* err)
    : m_file(file),
      m_error(err),
      m_lines(std::make_shared<LineReader>(bytesOf(file), kBlock)),
      m_string(u"") {}

// Both end up with a value of their own: the block that it stood in goes with the
// next pair that either of them reads.
CFileDXFILexer::CFileDXFILexer(const CFileDXFILexer& other)
    : m_file(other.m_file),
      m_error(other.m_error),
      m_report(other.m_report),
      m_lines(other.m_lines),
      m_started(other.m_started),
      m_byBytes(other.m_byBytes),
      m_decoder(other.m_decoder),
      m_line(other.m_line),
      m_group(other.m_group),
      m_string(u"") {
  other.keepValue();
  m_own = other.m_value;
  m_value = m_own;
}

CFileDXFILexer::~CFileDXFILexer() = default;

void CFileDXFILexer::setError(int kind) const {
  if (m_error) m_error->SetError(static_cast<CFileDXFIError::TDXFErrors>(kind));
}

void CFileDXFILexer::start() {
  m_started = true;
  m_byBytes = m_lines->begin();
  if (!m_byBytes || m_lines->mark() != LineReader::Mark::None) m_decoder.setPage(kCodePageUtf8);
}

void CFileDXFILexer::setCodePage(int page) {
  const bool isSettled = m_started && (!m_byBytes || m_lines->mark() != LineReader::Mark::None);
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
    if (!readCode() || !readValue()) return fail();
  } while (m_group == kComment);
  return m_group;
}

// The last value went with the block that was left behind.
long CFileDXFILexer::fail() {
  m_value = {};
  m_widened = false;
  return -1;
}

// The next line, or its front when it is not `whole`; false when there is none.
bool CFileDXFILexer::readLine(std::string_view& line, bool& whole) {
  if (!m_byBytes) return readLineOfFile(line, whole);
  if (!m_lines->next(line)) return false;
  whole = line.back() == '\n';
  return true;
}

// A file may keep a unit back rather than cut a surrogate pair, so a line that
// lacks its end goes on when it fills the buffer but for one unit.
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
  const bool got = readLine(line, whole);
  const std::string_view code = withoutLineEnd(line);
  if (!got || code.empty()) {
    setError(got ? CFileDXFIError::EmptyGroupCode : CFileDXFIError::WrongStructure);
    return false;
  }
  m_group = vek0::detail::parseLong(code);
  ++m_line;
  if (!whole) skipRestOfLine();
  return true;
}

bool CFileDXFILexer::readValue() {
  std::string_view line;
  bool whole = false;
  if (!readLine(line, whole)) {
    setError(CFileDXFIError::WrongStructure);
    return false;
  }
  ++m_line;
  if (!m_byBytes) {
    m_own.swap(m_scratch);
    line = m_own;
  }
  m_value = withoutTrailing(line);
  m_widened = false;
  if (!whole || m_value.size() > kMostUnits) finishLongValue(whole);
  if (m_lines.use_count() > 1) keepValue();
  return true;
}

void CFileDXFILexer::finishLongValue(bool whole) {
  const std::size_t kept = bytesOfUnits(m_value, kMostUnits);
  bool isCut = kept < m_value.size();
  m_value = withoutTrailing(m_value.substr(0, kept));
  keepValue();
  if (!whole && skipRestOfLine()) isCut = true;
  if (isCut && m_report) m_report->add("line cut", m_line);
}

// Whether the rest was more than blanks.
bool CFileDXFILexer::skipRestOfLine() {
  bool isLost = false;
  bool whole = false;
  std::string_view line;
  while (!whole && readLine(line, whole)) isLost = isLost || !withoutTrailing(line).empty();
  return isLost;
}

// A value stands at the front of what holds it, so the pointers tell.
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

bool CFileDXFILexer::isKeyword(std::string_view keyword) const {
  return std::equal(m_value.begin(), m_value.end(), keyword.begin(), keyword.end(),
                    [](char c, char k) { return (c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c) == k; });
}

zim::WString CFileDXFILexer::getText() const { return m_decoder.decodeText(m_value); }

bool CFileDXFILexer::isNumberMissing() const {
  if (m_value.empty()) setError(CFileDXFIError::EmptyNumber);
  return m_value.empty();
}

double CFileDXFILexer::getDouble() const {
  if (isNumberMissing()) return 0;
  const vek0::detail::ParsedDouble number = vek0::detail::parseDouble(m_value);
  if (!number.finite) setError(CFileDXFIError::OutOfRange);
  return number.value;
}

long CFileDXFILexer::getInt() const {
  return isNumberMissing() ? -1 : long{vek0::detail::parseLong(m_value)};
}

long CFileDXFILexer::getHex() const {
  return isNumberMissing() ? -1 : static_cast<long>(vek0::detail::parseHex(m_value));
}
