#include "files/linedecoder.h"

#include "files/surrogates.h"

#include <algorithm>
#include <utility>

namespace vek0::detail {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;

}  // namespace

LineDecoder::LineDecoder(LineReader::Source source) : m_lines(std::move(source), kBlock) {}

// Appends the next line, or piece of a long one, to the rest of the last one.
bool LineDecoder::fetch() {
  std::string_view bytes;
  if (!m_lines.begin() || !m_lines.next(bytes)) return false;
  if (m_lines.mark() != LineReader::Mark::None) m_decoder.setPage(kCodePageUtf8);
  m_line.erase(0, m_used);
  m_used = 0;
  m_decoder.decode(bytes, m_line);
  return true;
}

bool LineDecoder::readLn(zim::Char* buf, long n) {
  if (n < 1) return false;
  const auto room = static_cast<std::size_t>(n) - 1;
  const auto isEnded = [this] { return m_used < m_line.size() && m_line.back() == u'\n'; };
  while (!isEnded() && m_line.size() - m_used <= room && fetch()) {
  }
  if (m_used == m_line.size()) return false;
  std::size_t count = std::min(room, m_line.size() - m_used);
  const bool isCut = m_used + count < m_line.size();
  if (isCut && count > 1 && isHighSurrogate(m_line[m_used + count - 1])) --count;
  std::copy_n(m_line.data() + m_used, count, buf);
  buf[count] = 0;
  m_used += count;
  return true;
}

}  // namespace vek0::detail
