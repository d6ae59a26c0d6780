// Blocks of bytes, prepared so that code that looks for lines sees only bytes and line feeds:
// UTF-16 and the line ends of other platforms are converted, block by block.
#include "files/textblock.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "files/number.h"
#include "files/surrogates.h"
#include "zim0lang/utf8.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kMarkBytes = 3;  // of the longest byte order mark
constexpr std::uint32_t kMostTrailing = (1u << 30) - 1;
constexpr std::size_t kLeastRoom = 16;  // minimum worth reading, more than a prefix needs

// Processes 64 bytes at a time without branches, so that compilers vectorize it: for files with CR
// LF this scans every byte.
bool hasCrWithoutLf(const char* bytes, std::size_t count) {
  constexpr std::size_t kStep = 64;
  std::size_t i = 0;
  for (; i + kStep < count; i += kStep) {
    unsigned char found = 0;
    for (std::size_t k = 0; k < kStep; ++k) {
      found |= static_cast<unsigned char>((bytes[i + k] == '\r') & (bytes[i + k + 1] != '\n'));
    }
    if (found) return true;
  }
  for (; i < count; ++i) {
    if (bytes[i] == '\r' && (i + 1 == count || bytes[i + 1] != '\n')) return true;
  }
  return false;
}

// A run of CRs directly before an LF belongs to that line end, because some transfers double the
// CR. Every other CR ends a line.
void turnLoneCrsIntoLfs(char* bytes, char* end) {
  for (char* p = bytes; (p = std::find(p, end, '\r')) != end;) {
    char* const run = std::find_if(p, end, [](char c) { return c != '\r'; });
    if (run == end || *run != '\n') std::fill(p, run, '\n');
    p = run;
  }
}

std::u16string unitsOf(std::string_view bytes, bool littleEndian) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[littleEndian ? i : i + 1]);
    const auto high = static_cast<unsigned char>(bytes[littleEndian ? i + 1 : i]);
    units += static_cast<char16_t>(low | high << 8);
  }
  return units;
}

// Longer ones are rare, and values of limited length may be cut.
constexpr std::size_t kMostDigits = 64;

bool readReal(std::string_view text, double& number) {
  if (text.empty() || text.size() > kMostDigits || text.front() > '9') return false;
  const ParsedDouble parsed = parseDouble(text);
  number = parsed.value;
  return parsed.finite && parsed.whole;
}

}  // namespace

BlockReader::BlockReader(Source source, std::size_t size)
    : m_source(std::move(source)), m_size(std::max<std::size_t>(size, 64)) {}

bool BlockReader::begin() {
  if (m_begun) return m_offered;
  m_begun = true;
  char bytes[kMarkBytes];
  long got = 1;
  while (m_prefix.size() < kMarkBytes && got > 0) {
    got = m_source(bytes, static_cast<long>(kMarkBytes - m_prefix.size()));
    if (got > 0) m_prefix.append(bytes, static_cast<std::size_t>(got));
  }
  m_offered = got != kNotOffered;
  m_failed = got == kFailed;
  m_ended = m_failed || (got <= 0 && m_prefix.empty());
  if (m_prefix == "\xEF\xBB\xBF") {
    m_mark = Mark::Utf8;
    m_prefix.clear();
  } else if (m_prefix.starts_with("\xFF\xFE") || m_prefix.starts_with("\xFE\xFF")) {
    m_mark = m_prefix[0] == '\xFF' ? Mark::Utf16Le : Mark::Utf16Be;
    m_prefix.erase(0, 2);
  }
  return m_offered;
}

TextBlock BlockReader::emptyBlock() const {
  TextBlock block;
  block.bytes = std::make_unique<char[]>(m_size + 1);
  block.bytes[0] = '\n';
  return block;
}

bool BlockReader::read(std::string_view kept, TextBlock& block) {
  char* const start = block.bytes.get();
  std::memmove(start, kept.data(), kept.size());
  char* const end = start + kept.size();
  const std::size_t held = std::exchange(m_heldCrs, 0);
  std::memset(end, '\r', held);
  const std::size_t room = m_size - kept.size() - held;
  const bool isFull = room < kLeastRoom;
  const std::size_t got = isFull || m_ended ? 0 : readBytes(end + held, room);
  block.count = kept.size() + clean(end, held + got);
  start[block.count] = '\n';
  block.ended = m_ended;
  block.failed = m_failed;
  block.lines.clear();
  return !isFull;
}

std::size_t BlockReader::readBytes(char* out, std::size_t room) {
  const bool isWide = m_mark == Mark::Utf16Le || m_mark == Mark::Utf16Be;
  return isWide ? readUtf16(out, room) : readPlain(out, room);
}

std::size_t BlockReader::readPlain(char* out, std::size_t room) {
  if (!m_prefix.empty()) {
    const std::size_t count = m_prefix.copy(out, room);
    m_prefix.erase(0, count);
    return count;
  }
  const long got = m_source(out, static_cast<long>(room));
  if (got > 0) return static_cast<std::size_t>(got);
  m_ended = true;
  m_failed = m_failed || got < 0;
  return 0;
}

// A unit takes at most three bytes in UTF-8, so we read only as many units as are certain to fit.
// Half a unit or half a surrogate pair stays in the prefix for the next call.
std::size_t BlockReader::readUtf16(char* out, std::size_t room) {
  std::string raw = std::move(m_prefix);
  const std::size_t kept = raw.size();
  raw.resize(room / 3 * 2);
  const long got = m_source(raw.data() + kept, static_cast<long>(raw.size() - kept));
  m_ended = got <= 0;
  m_failed = m_failed || got < 0;
  raw.resize(kept + static_cast<std::size_t>(std::max(got, 0L)));

  std::u16string units = unitsOf(raw, m_mark == Mark::Utf16Le);
  if (!m_ended && !units.empty() && isHighSurrogate(units.back())) units.pop_back();
  m_prefix = m_ended ? std::string() : raw.substr(2 * units.size());
  std::string utf8;
  for (std::u16string_view rest = units; !rest.empty();) {
    zim::appendUtf8(utf8, zim::takeUtf16(rest));
  }
  return utf8.copy(out, room);
}

// Cleans newly read bytes before the search for lines and returns how many remain. CRs at the very
// end are held back until the next block, which may begin with their LF.
std::size_t BlockReader::clean(char* bytes, std::size_t count) {
  char* end = bytes + count;
  if (std::memchr(bytes, '\0', count)) end = std::remove(bytes, end, '\0');
  if (!m_ended) {
    while (end != bytes && end[-1] == '\r' && m_heldCrs < m_size / 2) {
      --end;
      ++m_heldCrs;
    }
  }
  const auto left = static_cast<std::size_t>(end - bytes);
  if (std::memchr(bytes, '\r', left) && hasCrWithoutLf(bytes, left)) turnLoneCrsIntoLfs(bytes, end);
  return left;
}

void splitLines(TextBlock& block) {
  constexpr std::size_t bytesPerLine = 8;  // of usual files
  const char* const start = block.bytes.get();
  const char* const end = start + block.count;
  block.lines.clear();
  block.lines.reserve(block.count / bytesPerLine);
  for (const char* p = start; p != end;) {
    SplitLine line{};
    long number = 0;
    const char* next = readShortNumber(p, number);
    if (next) {
      if (next > end) break;
      line.kind = SplitLine::Kind::ShortNumber;
      line.number = static_cast<double>(number);
      line.trailing = next[-2] == '\r' ? 2 : 1;
    } else {
      next =
          static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p) + 1)) + 1;
      if (next > end) break;
      const std::string_view whole(p, static_cast<std::size_t>(next - p));
      const std::string_view text = withoutTrailing(whole);
      line.trailing = static_cast<std::uint32_t>(whole.size() - text.size()) & kMostTrailing;
      if (*p == kCtrlZ)
        line.kind = SplitLine::Kind::EndMark;
      else if (readReal(text, line.number))
        line.kind = SplitLine::Kind::Real;
    }
    line.end = static_cast<std::uint32_t>(next - start);
    block.lines.push_back(line);
    p = next;
  }
}

}  // namespace vek0::detail
