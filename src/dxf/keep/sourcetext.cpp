#include "dxf/keep/sourcetext.h"

#include <algorithm>
#include <cstring>

#include "dxf/in/binarytext.h"
#include "files/number.h"
#include "files/textblock.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "zim0lang/utf8.h"

namespace vek0::detail {
namespace {

constexpr long kComment = 999;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF", kLittleMark = "\xFF\xFE",
                           kBigMark = "\xFE\xFF";

// The group code of a line that has nothing else; -1 for any other.
long codeOf(std::string_view line) {
  const std::string_view text = withoutTrailing(line);
  const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
  constexpr std::size_t longest = 4;
  if (first == text.size() || text.size() - first > longest) return -1;
  long code = 0;
  for (const char c : text.substr(first)) {
    if (c < '0' || c > '9') return -1;
    code = 10 * code + (c - '0');
  }
  return code;
}

}  // namespace

long BytesFile::readBytes(char* buf, long n) {
  const auto most = static_cast<std::size_t>(n);
  std::size_t got = 0;
  for (std::string_view& part : m_parts) {
    const std::size_t count = part.copy(buf + got, most - got);
    part.remove_prefix(count);
    got += count;
  }
  return static_cast<long>(got);
}

SourceText::SourceText(std::string bytes) : m_bytes(std::move(bytes)) {
  const std::string_view all = m_bytes;
  if (const std::size_t mark = binaryStart(all); mark != 0) {
    m_start = mark;
    m_form = isWideBinary(all.substr(mark)) ? Form::Wide : Form::Narrow;
    return;
  }
  if (all.starts_with(kUtf8Mark)) {
    m_start = kUtf8Mark.size();
  } else if (all.starts_with(kLittleMark) || all.starts_with(kBigMark)) {
    m_start = kLittleMark.size();
    m_form = all[0] == kLittleMark[0] ? Form::Utf16Le : Form::Utf16Be;
  }
  std::size_t lone = 0;
  const std::string line = text(m_start, lineEnd(m_start, lone));
  const std::size_t content = line.find_last_not_of("\r\n") + 1;  // npos + 1 is 0
  if (content < line.size()) m_lineEnd = line.substr(content);
  m_isAligned = line.starts_with("  ");
}

std::string SourceText::text(std::size_t begin, std::size_t end) const {
  if (m_form == Form::Bytes) return m_bytes.substr(begin, end - begin);
  std::u16string units;
  for (std::size_t at = begin; at + 1 < end; at += 2) units += unitAt(at);
  std::string utf8;
  for (std::u16string_view rest = units; !rest.empty();)
    zim::appendUtf8(utf8, zim::takeUtf16(rest));
  return utf8;
}

char16_t SourceText::unitAt(std::size_t at) const {
  const auto first = static_cast<unsigned char>(m_bytes[at]);
  const auto second = static_cast<unsigned char>(m_bytes[at + 1]);
  return static_cast<char16_t>(m_form == Form::Utf16Le ? first | second << 8 : first << 8 | second);
}

// A run of CRs ends a line together with the LF after it; any other CR ends one by itself. NULs do
// not count. Offsets before `lone` are known to be in a run that no LF follows, so that long runs
// are searched once.
std::size_t SourceText::lineEnd(std::size_t begin, std::size_t& lone) const {
  if (m_form != Form::Bytes) return wideLineEnd(begin, lone);
  const std::string_view all = m_bytes;
  const std::size_t end = plainLineEnd(begin);
  if (end == all.size() || all[end] == '\n') return std::min(end + 1, all.size());
  if (end < lone) return end + 1;
  constexpr std::string_view run("\r\0", 2);
  const std::size_t after = std::min(all.find_first_not_of(run, end), all.size());
  if (after < all.size() && all[after] == '\n') return after + 1;
  lone = after;
  return end + 1;
}

// The first CR or LF; a CR directly before an LF counts as that. Looks for both in windows, because
// a file may have no LF at all.
std::size_t SourceText::plainLineEnd(std::size_t begin) const {
  constexpr std::size_t window = 512;
  const std::string_view all = m_bytes;
  for (std::size_t at = begin; at < all.size(); at += window) {
    const std::string_view part = all.substr(at, window);
    const std::size_t lf = part.find('\n');
    const std::size_t cr = part.substr(0, lf).find('\r');
    if (cr != std::string_view::npos) return lf == cr + 1 ? at + lf : at + cr;
    if (lf != std::string_view::npos) return at + lf;
  }
  return all.size();
}

std::size_t SourceText::wideLineEnd(std::size_t begin, std::size_t& lone) const {
  std::size_t at = begin;
  while (at + 1 < m_bytes.size() && unitAt(at) != u'\n' && unitAt(at) != u'\r') at += 2;
  if (at + 1 >= m_bytes.size()) return m_bytes.size();
  if (at < lone || unitAt(at) == u'\n') return at + 2;
  std::size_t run = at;
  while (run + 1 < m_bytes.size() && (unitAt(run) == u'\r' || unitAt(run) == 0)) run += 2;
  if (run + 1 < m_bytes.size() && unitAt(run) == u'\n') return run + 2;
  lone = run;
  return at + 2;
}

std::size_t SourceText::pass(std::size_t begin, long count) const {
  std::size_t at = begin, lone = 0;
  for (; count > 0 && at < m_bytes.size(); --count) {
    if (!isBinary()) {
      at = lineEnd(at, lone);
    } else if (count % 2 == 0) {
      const std::size_t size =
          binaryPairSize(std::string_view(m_bytes).substr(at), m_form == Form::Wide);
      at = size == 0 ? m_bytes.size() : at + size;
    }
  }
  return at;
}

bool SourceText::mayBeginRecord(std::size_t at) const {
  const std::size_t unit = m_form == Form::Bytes || m_form == Form::Narrow ? 1 : 2;
  const auto next = [&] { return unit == 1 ? static_cast<char16_t>(m_bytes[at]) : unitAt(at); };
  if (isBinary()) return at + unit <= m_bytes.size() && next() == 0;
  constexpr std::u16string_view leading(u"\0 \t-", 4);
  while (at + unit <= m_bytes.size() && leading.find(next()) != std::u16string_view::npos)
    at += unit;
  return at + unit <= m_bytes.size() && next() == u'0';
}

SourceRecord SourceText::read(std::size_t begin, std::size_t end) const {
  SourceRecord record;
  if (m_form == Form::Bytes && readPlain(begin, end, record)) return record;
  record.pairs.clear();
  const std::string_view all = m_bytes;
  BytesFile file(all.substr(0, m_start), all.substr(begin, end - begin));
  // No line is longer than this, in any form; most records are much smaller than the usual block.
  const std::size_t room = std::min(CFileDXFILexer::kBlockBytes, 4 * (end - begin) + m_start);
  CFileDXFILexer lexer(file, nullptr, room);
  lexer.setTolerant();
  if (!file.open()) return record;
  for (bool isFirst = true;; isFirst = false) {
    const long code = lexer.read();
    if (code == 0 && !isFirst) break;
    record.pairs.push_back(
        SourcePair{code, std::string(lexer.getBytes()), lexer.getLine() - 1, false});
  }
  return record;
}

// For records without surprises; false for all others, which the lexer reads.
bool SourceText::readPlain(std::size_t begin, std::size_t end, SourceRecord& record) const {
  const std::string_view all = m_bytes;
  long line = 1;
  std::size_t lone = 0;
  for (std::size_t at = begin; at < end; line += 2) {
    const std::size_t middle = lineEnd(at, lone);
    const std::size_t after = middle < end ? lineEnd(middle, lone) : middle;
    const long code = codeOf(all.substr(at, middle - at));
    const std::string_view raw = all.substr(middle, after - middle);
    const std::string_view value = withoutTrailing(raw);
    const bool isUsual = code >= 0 && (code != 0 || line == 1) && !value.empty() &&
                         value.size() < CFileDXFILexer::kBufferUnits &&
                         raw.find('\0') == std::string_view::npos && after <= end;
    const bool isEmptyText = value.empty() && !raw.empty() && (code < 10 || code >= 1000);
    if (!isUsual && !(isEmptyText && code > 0)) return false;
    if (code != kComment) record.pairs.push_back(SourcePair{code, std::string(value), line, false});
    at = after;
  }
  return true;
}

std::string SourceText::write(std::size_t begin, std::size_t end, const SourceRecord& original,
                              const SourceRecord& edited) const {
  std::string out;
  std::size_t at = begin;  // of the next byte to copy
  long line = 1;           // at that byte
  auto next = edited.pairs.begin();
  const auto copyTo = [&](long to) {
    const std::size_t until = std::min(pass(at, to - line), end);
    out += std::string_view(m_bytes).substr(at, until - at);
    at = until;
    line = to;
  };
  const auto addNew = [&] {
    for (; next != edited.pairs.end() && next->line == 0; ++next) append(out, *next);
  };
  for (const SourcePair& pair : original.pairs) {
    copyTo(pair.line);
    addNew();
    const bool isKept = next != edited.pairs.end() && next->line == pair.line;
    if (isKept && !next->isChanged) {
      copyTo(pair.line + 2);
    } else if (isKept) {
      rewrite(out, at, *next);
    }
    if (isKept) ++next;
    at = std::min(pass(at, pair.line + 2 - line), end);
    line = pair.line + 2;
  }
  // What follows the last pair, such as a comment, belongs behind new pairs.
  addNew();
  out += std::string_view(m_bytes).substr(at, end - at);
  return out;
}

std::string SourceText::write(const SourceRecord& record) const {
  std::string out;
  for (const SourcePair& pair : record.pairs) append(out, pair);
  return out;
}

// Keeps the line of the code, and the end of the line of the value.
void SourceText::rewrite(std::string& out, std::size_t at, const SourcePair& pair) const {
  if (isBinary()) return append(out, pair);
  std::size_t lone = 0;
  const std::size_t middle = lineEnd(at, lone);
  out += std::string_view(m_bytes).substr(at, middle - at);
  const std::string value = text(middle, lineEnd(middle, lone));
  appendText(out, pair.value);
  appendText(out, value.substr(value.find_last_not_of("\r\n") + 1));
}

void SourceText::append(std::string& out, const SourcePair& pair) const {
  if (isBinary()) return appendBinaryPair(out, pair.code, pair.value, m_form == Form::Wide);
  const std::string code = std::to_string(pair.code);
  constexpr std::size_t columns = 3;
  std::string lines;
  if (m_isAligned && code.size() < columns) lines.append(columns - code.size(), ' ');
  for (const std::string_view part : {std::string_view(code), std::string_view(m_lineEnd),
                                      std::string_view(pair.value), std::string_view(m_lineEnd)})
    lines += part;
  appendText(out, lines);
}

void SourceText::appendText(std::string& out, std::string_view utf8) const {
  if (m_form == Form::Bytes) {
    out += utf8;
    return;
  }
  std::u16string units;
  bool isValid = true;
  while (!utf8.empty()) zim::appendUtf16(units, zim::takeUtf8(utf8, isValid));
  for (const char16_t unit : units) {
    const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
    out += m_form == Form::Utf16Le ? low : high;
    out += m_form == Form::Utf16Le ? high : low;
  }
}

}  // namespace vek0::detail
