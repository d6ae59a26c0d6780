// Formats pairs into a buffer of bytes, which is written when it is full. Most lines are group
// codes, numbers and plain ASCII texts; those are formatted directly, from tables or unit by unit,
// and everything else takes the general way through an encoder.
#include "vek0core/dxf/out/filedxfowriter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "dxf/out/pairtape.h"
#include "files/surrogates.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"

namespace {

using vek0::detail::GroupPair;
using vek0::detail::kGroupRoom;
using vek0::detail::kValueRoom;
using vek0::detail::PairTape;

constexpr std::size_t kBufferSize = std::size_t{64} * 1024;
// Readers accept lines of 8192 units including line end and terminator.
constexpr std::size_t kLongestValue = 8190;
static_assert(kLongestValue + 1 <= kBufferSize && kValueRoom + 1 <= kBufferSize);

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

void CFileDXFOWriter::setThreads(bool allowed) {
  flush();
  m_tape = allowed ? std::make_unique<PairTape>() : nullptr;
}

void CFileDXFOWriter::writeGroup(long code) {
  if (m_tape) flush();
  endLine(vek0::detail::formatGroup(room(kGroupRoom), code));
}

void CFileDXFOWriter::put(const GroupPair& pair) {
  if (m_tape) {
    m_tape->add(pair);
    return turn();
  }
  writeGroup(pair.code);
  endLine(vek0::detail::formatValue(room(kValueRoom), pair));
}

// Writes what another thread has formatted, if it is worth it.
void CFileDXFOWriter::turn() {
  if (m_tape->isFull()) writeBytes(m_tape->turn());
}

void CFileDXFOWriter::write(long code, long value) {
  put({{.integer = value}, static_cast<std::int32_t>(code), GroupPair::Kind::Integer});
}

void CFileDXFOWriter::write(long code, bool value) { write(code, value ? 1L : 0L); }

void CFileDXFOWriter::write(long code, double value) {
  if (m_report && !std::isfinite(value))
    m_report->add(ReportCode::NumberNotFinite, 0, zim::WString::fromUtf8(std::to_string(code)));
  put({{.number = value},
       static_cast<std::int32_t>(code),
       m_exact ? GroupPair::Kind::Shortest : GroupPair::Kind::Fixed});
}

void CFileDXFOWriter::write(long code, const zim::Char* text) {
  writeText(code, text ? std::u16string_view(text) : std::u16string_view());
}

void CFileDXFOWriter::writeText(long code, std::u16string_view text) {
  if (text.size() > kLongestValue || !isPlain(text)) return writeEncoded(code, encoded(text));
  const auto narrow = [&text](char* out) {
    return std::transform(text.begin(), text.end(), out,
                          [](zim::Char c) { return static_cast<char>(c); });
  };
  if (m_tape) {
    m_text.resize(text.size());
    narrow(m_text.data());
    return writeEncoded(code, m_text);
  }
  writeGroup(code);
  endLine(narrow(room(text.size())));
}

void CFileDXFOWriter::writeHex(long code, vek0::Handle value) {
  put({{.bits = hexBits(value)}, static_cast<std::int32_t>(code), GroupPair::Kind::Hex});
}

std::uint64_t CFileDXFOWriter::hexBits(vek0::Handle value) {
  const bool is32Bits = value < 0 && value >= std::numeric_limits<std::int32_t>::min();
  return is32Bits ? static_cast<std::uint32_t>(value) : static_cast<std::uint64_t>(value);
}

void CFileDXFOWriter::writeEncoded(long code, std::string_view value) {
  if (m_tape) {
    m_tape->add(code, value);
    return turn();
  }
  writeGroup(code);
  endLine(std::copy(value.begin(), value.end(), room(value.size())));
}

bool CFileDXFOWriter::flush() {
  writeBytes({m_buffer.get(), std::exchange(m_used, 0)});
  // The first turn returns what is being formatted, the second one the rest.
  for (int turns = m_tape ? 2 : 0; turns > 0; --turns) writeBytes(m_tape->turn());
  return !m_failed;
}

void CFileDXFOWriter::writeBytes(std::string_view bytes) {
  while (!m_failed && !bytes.empty()) {
    const std::size_t size = std::min(bytes.size(), kBufferSize);
    m_failed = !m_file.writeBytes(bytes.data(), static_cast<long>(size));
    bytes.remove_prefix(size);
  }
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
