// Lines as views into a buffer of blocks. A line feed after the last byte serves as a sentinel, so
// the search for the end of a line needs no bound. Blocks that another thread has split tell where
// their lines end.
#include "files/linereader.h"

#include <cstring>
#include <utility>

namespace vek0::detail {
namespace {

// Smaller texts are read before another thread has begun.
constexpr std::size_t kBlocksAlone = 4;
constexpr std::size_t kBlocksAhead = 4;

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

}  // namespace

LineReader::LineReader(Source source, std::size_t block) : m_blocks(std::move(source), block) {}

LineReader::~LineReader() = default;

bool LineReader::begin() {
  if (!m_begun) {
    m_begun = true;
    m_block = m_blocks.emptyBlock();
    startBlock();
  }
  return m_blocks.begin();
}

bool LineReader::nextAfterFill(std::string_view& line) {
  while (findEnd() == m_end) {
    if (fill()) continue;
    std::string_view rest(m_position, static_cast<std::size_t>(m_end - m_position));
    if (rest.empty() || m_block.failed) return false;
    if (!m_ended) rest.remove_suffix(cutSequenceLength(rest));
    m_position += rest.size();
    while (m_ended && rest.ends_with(kCtrlZ)) rest.remove_suffix(1);
    line = rest;
    return !rest.empty();
  }
  const char* const end = findEnd();
  line = std::string_view(m_position, static_cast<std::size_t>(end + 1 - m_position));
  moveTo(end + 1);
  return isText(line);
}

// False for the line that ends the text; there are none after it.
bool LineReader::isText(std::string_view line) {
  constexpr char kEnds[] = {kCtrlZ, '\r', '\n', 0};
  if (line[0] != kCtrlZ || line.find_first_not_of(kEnds) != std::string_view::npos) return true;
  m_ended = true;
  m_position = m_end;
  m_split = m_splitEnd;
  return false;
}

// Reads more after the bytes not yet returned. False if the buffer is full or the source has ended.
bool LineReader::fill() {
  if (m_ended) return false;
  const std::string_view kept(m_position, static_cast<std::size_t>(m_end - m_position));
  const std::size_t count = kept.size();
  bool isFull = false;
  if (m_splitter && m_splitter->size() > 0)
    m_spare = std::exchange(m_block, m_splitter->take());  // begins with the same bytes
  else
    isFull = !m_blocks.read(kept, m_block);
  startBlock();
  readAhead();
  return m_block.count != count || !(isFull || m_ended);
}

void LineReader::startBlock() {
  m_position = m_block.bytes.get();
  m_end = m_position + m_block.count;
  m_split = m_block.lines.data();
  m_splitEnd = m_split + m_block.lines.size();
  m_ended = m_block.ended;
}

// Reads the blocks after the current one. Each begins with what follows the last line of the one
// before it, as it would without reading ahead.
void LineReader::readAhead() {
  if (!m_splitsAhead || m_ended) return;
  if (!m_splitter && (m_alone += m_block.count) <= kBlocksAlone * m_blocks.size()) return;
  if (!m_splitter) m_splitter = LineSplitter::start();
  m_splitsAhead = m_splitter != nullptr;
  while (m_splitsAhead && m_splitter->size() < kBlocksAhead) {
    const TextBlock& last = m_splitter->size() > 0 ? m_splitter->last() : m_block;
    const std::string_view tail = last.tail();
    // A line that does not fit into a block is returned in pieces first.
    if (last.ended || tail.size() > m_blocks.size() / 2) return;
    TextBlock block = m_spare.bytes ? std::exchange(m_spare, {}) : m_blocks.emptyBlock();
    m_blocks.read(tail, block);
    m_splitter->add(std::move(block));
  }
}

}  // namespace vek0::detail
