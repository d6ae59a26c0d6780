// Formats pairs into a buffer of bytes, which is written when it is full. Most lines are group
// codes, numbers and plain ASCII texts; those are formatted directly, from tables or unit by unit,
// and everything else takes the general way through an encoder.
#include "vek0core/dxf/out/filedxfowriter.h"

#include "files/surrogates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "files/number.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"

namespace {

using vek0::detail::formatFixed;
using vek0::detail::formatHex;
using vek0::detail::formatInteger;
using vek0::detail::formatShortest;
using vek0::detail::kFixedRoom;
using vek0::detail::kIntegerRoom;

constexpr std::size_t kBufferSize = std::size_t{64} * 1024;
// Readers accept lines of 8192 units including line end and terminator.
constexpr std::size_t kLongestValue = 8190;
static_assert(kLongestValue + 1 <= kBufferSize && kFixedRoom + 1 <= kBufferSize);

using GroupLine = std::array<char, 3>;

constexpr char digit(int value) { return static_cast<char>('0' + value); }

constexpr GroupLine groupLine(int code) {
  return {code < 100 ? ' ' : digit(code / 100), code < 10 ? ' ' : digit(code / 10 % 10),
          digit(code % 10)};
}

constexpr int kShortGroups = 1000;

// These are a third of the lines of a file.
constexpr auto kGroupLines = [] {
  std::array<GroupLine, kShortGroups> lines{};
  for (int code = 0; code < kShortGroups; ++code)
    lines[static_cast<std::size_t>(code)] = groupLine(code);
  return lines;
}();

// Whether `encodeText` would copy the text unchanged.
bool isPlain(std::u16string_view text) {
  return !text.ends_with(u' ') && std::all_of(text.begin(), text.end(), [](zim::Char c) {
    return c >= 0x20 && c < 0x7F && c != u'^' && c != u'\\';
  });
}

}  // namespace

CFileDXFOWriter::CFileDXFOWriter(IFile& file)
    : m_file(file), m_buffer(std::make_unique<char[]>(kBufferSize)) {}

CFileDXFOWriter::~CFileDXFOWriter() {
  try {
    flush();
  } catch (const std::bad_alloc&) {
    // A host's file that runs out of memory for its lines reports that itself.
  }
}

void CFileDXFOWriter::writeGroup(long code) {
  if (code < 0 || code >= kShortGroups) return endLine(formatInteger(room(kIntegerRoom), code));
  const GroupLine& line = kGroupLines[static_cast<std::size_t>(code)];
  char* const out = room(line.size());
  std::memcpy(out, line.data(), line.size());
  endLine(out + line.size());
}

void CFileDXFOWriter::write(long code, long value) {
  writeGroup(code);
  endLine(formatInteger(room(kIntegerRoom), value));
}

void CFileDXFOWriter::write(long code, bool value) { write(code, value ? 1L : 0L); }

void CFileDXFOWriter::write(long code, double value) {
  if (m_report && !std::isfinite(value))
    m_report->add(ReportCode::NumberNotFinite, 0, zim::WString::fromUtf8(std::to_string(code)));
  writeGroup(code);
  char* out = room(kFixedRoom);
  endLine(m_exact ? formatShortest(out, value) : formatFixed(out, value));
}

void CFileDXFOWriter::write(long code, const zim::Char* text) {
  writeText(code, text ? std::u16string_view(text) : std::u16string_view());
}

void CFileDXFOWriter::writeText(long code, std::u16string_view text) {
  if (text.size() > kLongestValue || !isPlain(text)) return writeEncoded(code, encoded(text));
  writeGroup(code);
  endLine(std::transform(text.begin(), text.end(), room(text.size()),
                         [](zim::Char c) { return static_cast<char>(c); }));
}

void CFileDXFOWriter::writeHex(long code, vek0::Handle value) {
  writeGroup(code);
  endLine(formatHex(room(kIntegerRoom), hexBits(value)));
}

std::uint64_t CFileDXFOWriter::hexBits(vek0::Handle value) {
  const bool is32Bits = value < 0 && value >= std::numeric_limits<std::int32_t>::min();
  return is32Bits ? static_cast<std::uint32_t>(value) : static_cast<std::uint64_t>(value);
}

void CFileDXFOWriter::writeEncoded(long code, std::string_view value) {
  writeGroup(code);
  endLine(std::copy(value.begin(), value.end(), room(value.size())));
}

bool CFileDXFOWriter::flush() {
  if (!m_failed && m_used > 0)
    m_failed = !m_file.writeBytes(m_buffer.get(), static_cast<long>(m_used));
  m_used = 0;
  return !m_failed;
}

// The text as one value. If it is too long, it is cut: estimates of what fits are tried until one
// does, since characters need different numbers of bytes.
std::string_view CFileDXFOWriter::encoded(std::u16string_view text) {
  std::size_t keep = std::min(text.size(), kLongestValue);
  bool cut = keep < text.size();
  for (;;) {
    if (keep < text.size() && vek0::detail::isHighSurrogate(text[keep - 1])) --keep;
    m_text.clear();
    const std::u16string_view kept = text.substr(0, keep);
    m_encoder ? m_encoder->encode(kept, m_text) : encodeText(kept, m_text);
    if (m_text.size() <= kLongestValue) break;
    cut = true;
    keep = std::min(keep - 1, keep * kLongestValue / m_text.size());
  }
  if (cut && m_report) m_report->add(ReportCode::TextCut, 0, text.substr(0, 40));
  return m_text;
}

// Room for a line of that many bytes and its end.
char* CFileDXFOWriter::room(std::size_t bytes) {
  if (kBufferSize - m_used < bytes + 1) flush();
  return m_buffer.get() + m_used;
}

void CFileDXFOWriter::endLine(char* end) {
  *end = '\n';
  m_used = static_cast<std::size_t>(end + 1 - m_buffer.get());
  if (!m_buffered) flush();
}
