// Lines as views into a buffer of blocks. A line feed after the last byte serves as a sentinel, so
// the search for the end of a line needs no bound. UTF-16 and the line ends of other platforms are
// converted block by block, so that code that reads lines sees only bytes and line feeds.
#include "files/linereader.h"

#include "files/surrogates.h"

#include <algorithm>
#include <utility>

#include "zim0lang/utf8.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kMarkBytes = 3;   // of the longest byte order mark
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

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Number of bytes that follow the first byte of a UTF-8 sequence.
std::size_t followersOf(unsigned char first) {
  if (first < 0xC0) return 0;
  if (first < 0xE0) return 1;
  return first < 0xF0 ? 2 : 3;
}

// Number of bytes at the end that form an incomplete UTF-8 sequence.
std::size_t cutSequenceLength(std::string_view text) {
  std::size_t back = 0;
  while (back < 3 && back < text.size() && isContinuation(text[text.size() - 1 - back])) ++back;
  if (back == text.size()) return 0;
  const auto first = static_cast<unsigned char>(text[text.size() - 1 - back]);
  return followersOf(first) > back ? back + 1 : 0;
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

}  // namespace

LineReader::LineReader(Source source, std::size_t block)
    : m_source(std::move(source)), m_block(std::max<std::size_t>(block, 64)) {}

bool LineReader::begin() {
  if (m_begun) return m_offered;
  m_begun = true;
  m_buffer = std::make_unique<char[]>(m_block + 1);
  m_position = m_end = m_buffer.get();
  *m_end = '\n';
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

bool LineReader::nextAfterFill(std::string_view& line) {
  while (findEnd() == m_end) {
    if (fill()) continue;
    std::string_view rest(m_position, static_cast<std::size_t>(m_end - m_position));
    if (rest.empty() || m_failed) return false;
    if (!m_ended) rest.remove_suffix(cutSequenceLength(rest));
    m_position += rest.size();
    while (m_ended && rest.ends_with(kCtrlZ)) rest.remove_suffix(1);
    line = rest;
    return !rest.empty();
  }
  const char* const end = findEnd();
  line = std::string_view(m_position, static_cast<std::size_t>(end + 1 - m_position));
  m_position = end + 1;
  return isText(line);
}

// False for the line that ends the text; there are none after it.
bool LineReader::isText(std::string_view line) {
  constexpr char kEnds[] = {kCtrlZ, '\r', '\n', 0};
  if (line[0] != kCtrlZ || line.find_first_not_of(kEnds) != std::string_view::npos) return true;
  m_ended = true;
  m_position = m_end;
  return false;
}

// Reads more after the bytes not yet returned. False if the buffer is full or the source has ended.
bool LineReader::fill() {
  if (m_ended) return false;
  const auto kept = static_cast<std::size_t>(m_end - m_position);
  std::memmove(m_buffer.get(), m_position, kept);
  m_position = m_buffer.get();
  m_end = m_buffer.get() + kept;
  const std::size_t held = std::exchange(m_heldCrs, 0);
  std::memset(m_end, '\r', held);
  const std::size_t room = m_block - kept - held;
  const bool isFull = room < kLeastRoom;
  const std::size_t got = isFull ? 0 : readBlock(m_end + held, room);
  m_end += clean(m_end, held + got);
  *m_end = '\n';
  return m_end != m_position + kept || !(isFull || m_ended);
}

std::size_t LineReader::readBlock(char* out, std::size_t room) {
  const bool isWide = m_mark == Mark::Utf16Le || m_mark == Mark::Utf16Be;
  return isWide ? readUtf16(out, room) : readPlain(out, room);
}

std::size_t LineReader::readPlain(char* out, std::size_t room) {
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
std::size_t LineReader::readUtf16(char* out, std::size_t room) {
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
std::size_t LineReader::clean(char* bytes, std::size_t count) {
  char* end = bytes + count;
  if (std::memchr(bytes, '\0', count)) end = std::remove(bytes, end, '\0');
  if (!m_ended) {
    while (end != bytes && end[-1] == '\r' && m_heldCrs < m_block / 2) {
      --end;
      ++m_heldCrs;
    }
  }
  const auto left = static_cast<std::size_t>(end - bytes);
  if (std::memchr(bytes, '\r', left) && hasCrWithoutLf(bytes, left)) turnLoneCrsIntoLfs(bytes, end);
  return left;
}

}  // namespace vek0::detail
